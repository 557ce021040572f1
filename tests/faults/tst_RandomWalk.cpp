#include "faults/support/WillingService.h"
#include "support/FakeSockJSServer.h"
#include "support/ProcessResources.h"

#include <CalyxClient/AssessmentOptions>
#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterAssessment>
#include <CalyxClient/PresenterCollab>
#include <CalyxClient/QuestionBase>
#include <CalyxClient/SockJSConnector>
#include <CalyxClient/SockJSTransport>

#include <QEventLoop>
#include <QMetaMethod>
#include <QNetworkProxy>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace {

constexpr int roundLength = 2000; // milliseconds
constexpr int deepest = 5;        // slots that act inside one another

} // namespace

/// A host that does anything from any slot: every operation, deletion, and loops of its own, by seed. Nothing
/// is stated but that it neither crashes nor hangs, and leaves nothing behind.
class TestRandomWalk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        qputenv("QT_LOGGING_RULES", "*.debug=false");
        m_before = std::make_unique<ProcessResources::Snapshot>([this] { walk(0, 500); });
    }

    // 20 seconds, or what the environment says.
    void anythingInAnySlot_data()
    {
        QTest::addColumn<quint32>("seed");
        const int seconds = qEnvironmentVariableIntValue("CALYX_WALK_SECONDS");
        const int first = qEnvironmentVariableIntValue("CALYX_WALK_SEED");
        for (int i = 1; i <= (seconds > 0 ? seconds : 20) * 1000 / roundLength; ++i)
            QTest::addRow("seed %d", first + i) << quint32(first + i);
    }
    void anythingInAnySlot()
    {
        QFETCH(quint32, seed);
        walk(seed, roundLength);
        QVERIFY(m_steps > 10);
    }

    void cleanupTestCase() { QCOMPARE(m_before->waitForSurplusToGo(), QString()); }

public Q_SLOTS:
    void act()
    {
        if (m_depth < deepest && m_random.bounded(2) == 0)
            step();
    }

private:
    using Action = std::function<void()>;

    void walk(quint32 seed, int msecs)
    {
        m_random.seed(seed);
        m_steps = 0;
        FakeSockJSServer bus;
        m_bus = &bus;
        const WillingService service(bus.url(), &m_random, 10);
        m_service = service.url();
        m_isOver = false;
        QTimer ticks;
        connect(&ticks, &QTimer::timeout, this, [this] { step(); });
        ticks.start(5);
        QTimer::singleShot(msecs, this, [this] { m_isOver = true; });
        while (!m_isOver) // quit() is one of the actions
            QCoreApplication::exec();
        ticks.stop();
        removeClient();
        delete m_collab;
        m_bus = nullptr;
    }

    void step()
    {
        if (m_depth >= deepest)
            return;
        if (m_isOver) {
            QCoreApplication::quit();
            return;
        }
        ++m_steps;
        ++m_depth;
        if (!m_client)
            makeClient();
        else if (!m_collab)
            startLesson();
        else
            any({[this] { operate(); }, [this] { operate(); }, [this] { publish(); },
                 [this] { connection(); }, [this] { farEnd(); }, [this] { farEnd(); }, [this] { ownLoop(); },
                 [this] { remove(); }});
        --m_depth;
    }

    void any(const QList<Action>& actions) { actions.at(m_random.bounded(actions.size()))(); }

    // Every signal, destroyed() included.
    void listenTo(QObject* object)
    {
        const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("act()"));
        for (int i = 0; i < object->metaObject()->methodCount(); ++i) {
            const QMetaMethod method = object->metaObject()->method(i);
            if (method.methodType() == QMetaMethod::Signal && method.name() != "objectNameChanged")
                connect(object, method, this, slot);
        }
    }

    void makeClient()
    {
        m_client = new PresenterClient(nullptr, m_service);
        listenTo(m_client);
        m_client->sessionSuccessResponse(QString::fromLatin1(ClientOperations::ALL_IS_WELL));
    }

    void startLesson()
    {
        m_client->setSockJSOverrideProtocols({transport()});
        const QPointer<PresenterClient> client(m_client);
        PresenterCollab* collab = nullptr;
        if (!client->startWebsocket(&collab) || !client || client != m_client)
            return;
        m_collab = client->collab();
        if (!m_collab)
            return;
        for (QObject* object : {static_cast<QObject*>(m_collab), static_cast<QObject*>(m_collab->connector()),
                                static_cast<QObject*>(m_collab->messageHandler())})
            listenTo(object);
        listenToTransports();
    }

    void listenToTransports()
    {
        // Not to what belongs to these: of a reply's end and its manager's, one inside the other, Qt dies.
        const auto children =
            m_collab->connector()->findChildren<SockJSTransport*>(QString(), Qt::FindDirectChildrenOnly);
        for (SockJSTransport* child : children)
            connect(child, &QObject::destroyed, this, &TestRandomWalk::act, Qt::UniqueConnection);
    }

    QString transport()
    {
        const QStringList all = {"websocket", "xhr-streaming", "xhr-polling"};
        return all.at(m_random.bounded(all.size()));
    }

    void operate()
    {
        static const auto operations = ClientOperations::operations();
        operations.at(m_random.bounded(operations.size())).second.call(m_client);
    }

    void publish()
    {
        PresenterCollab* collab = m_collab;
        const QString d = QStringLiteral("d");
        any({[=] { collab->startPoll(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4, 1); },
             [=] { collab->startPoll(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::NUMBER, 0, 0); },
             [=] {
                 collab->sendQuestion(
                     collab->createPollQuestion(Calyx::PollType::SCALE, Calyx::OrdinalType::NUMBER, 5, 0));
             },
             [=] { collab->pausePoll(); }, [=] { collab->resumePoll(); }, [=] { collab->stopPoll(); },
             [=] { collab->removeLearner(d); }, [=] { collab->setCardImage(QByteArray(1000, 'x')); },
             [=] { collab->setCardImageRef(d); }, [=] { collab->clearCardImage(); },
             [=] { collab->showImageCard(true); }, [=] { collab->sendHeavy(); }, [=] { collab->sendPing(); },
             [=] { collab->publishMessage(d, QStringLiteral("{}")); },
             [=] { collab->publishMessage64(d, d, QStringLiteral("{}")); },
             [=] { collab->sendCurrentLessonToRemote(d, d); },
             [=] { collab->sendPresenterIsActiveToRemote(); }, [=] { collab->sendCurrentCardToRemote(1, 3); },
             [=] { assess(collab); }});
    }

    static void assess(PresenterCollab* collab)
    {
        PresenterAssessment assessment(nullptr, collab);
        Calyx::AssessmentOptions options;
        assessment.start(QString(), &options);
        assessment.sendMessage(QStringLiteral("text"), true, false);
        assessment.stop();
    }

    void connection()
    {
        PresenterCollab* collab = m_collab;
        const QString name = transport();
        const auto list = SockJSConnector::GetProtocolsFromStrings({name});
        any({[=] { collab->close(); }, [=] { collab->connector()->close(); }, [=] { collab->open({name}); },
             [=] { collab->connector()->open(QUrl(collab->serverUrl()), list); },
             [=] {
                 collab->close();
                 collab->open({name});
             }});
        if (m_collab)
            listenToTransports();
    }

    void farEnd()
    {
        using Server = FakeSockJSServer;
        any({[this] { m_bus->closeSession(); }, [this] { m_bus->dropConnections(); },
             [this] { m_bus->setUpgrade(Server::Upgrade(m_random.bounded(int(Server::Silent)))); },
             [this] { m_bus->setUpgrade(Server::Open); }, [this] { m_bus->setUpgrade(Server::Open); },
             [this] { messages(); }, [this] { messages(); }, [this] { messages(); }});
    }

    void messages()
    {
        QString block;
        Lzma::compress64(QStringLiteral("{}"), &block);
        QStringList texts;
        for (const char* type : {"join", "pollResponse", "questionResponse", "questionGet", "pause", "else"})
            texts.append(
                QStringLiteral(R"({"body":{"from":"d","type":"%1","data":["%2"]}})").arg(type, block));
        m_bus->injectMessages(texts.mid(m_random.bounded(texts.size())));
    }

    void ownLoop()
    {
        QEventLoop loop;
        QTimer::singleShot(m_random.bounded(20), &loop, &QEventLoop::quit);
        loop.exec();
    }

    void remove()
    {
        any({[this] { delete m_collab; }, [this] { removeClient(); }, [this] { m_collab->deleteLater(); },
             [this] {
                 m_client->deleteLater();
                 removeClient();
             },
             [] { QCoreApplication::quit(); }});
    }

    // Its destructor waits for the session's end, and nobody deletes an object a second time meanwhile.
    void removeClient()
    {
        if (m_removed == m_client)
            return;
        m_removed = m_client;
        delete m_client;
    }

    QRandomGenerator m_random;
    QPointer<FakeSockJSServer> m_bus;
    QString m_service;
    QPointer<PresenterClient> m_client;
    QPointer<PresenterClient> m_removed;
    QPointer<PresenterCollab> m_collab;
    bool m_isOver = false;
    int m_steps = 0;
    int m_depth = 0;
    std::unique_ptr<ProcessResources::Snapshot> m_before;
};

QTEST_GUILESS_MAIN(TestRandomWalk)
#include "tst_RandomWalk.moc"
