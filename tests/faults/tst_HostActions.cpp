#include "support/ConnectorTest.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
#include "support/WaitFor.h"

#include <QNetworkProxy>
#include <QTest>

/// Hosts that close, open and delete a connector at every moment of its life and from each of its signals, on
/// each transport.
class TestHostActions : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        m_before = std::make_unique<ProcessResources::Snapshot>([this] {
            setUp();
            QVERIFY(anotherSessionOpens());
            m_protocols = {SockJSConnector::XHR_POLLING};
            QVERIFY(openFirst());
            m_connector->sendMessage(QStringLiteral("one"), false);
            QCOMPARE(m_server->nextMessage(), QStringLiteral("one"));
            tearDown();
        });
    }

    void hostActs_data()
    {
        columns<QString, int, QString>();
        for (const char* transport : {"websocket", "fallback", "xhr-streaming", "xhr-polling"}) {
            for (int i = 0; i < moments().size(); ++i) {
                // While an XHR transport is opened no event is processed, and nobody can act.
                if (moments().at(i).isWithinOpen && qstrcmp(transport, "websocket") != 0)
                    continue;
                for (const char* action : {"close", "open", "delete"})
                    QTest::addRow("%s, %s %s", transport, action, moments().at(i).name)
                        << QString::fromLatin1(transport) << i << QString::fromLatin1(action);
            }
        }
    }

    void hostActs()
    {
        const auto [transport, moment, action] = row<QString, int, QString>();
        m_falls = transport == QLatin1String("fallback");
        m_isWebSocket = transport == QLatin1String("websocket");
        m_protocols = m_falls         ? webSocket
                      : m_isWebSocket ? webSocketThenPolling // of which the second is not tried
                                      : SockJSConnector::GetProtocolsFromStrings({transport});
        if (m_falls)
            m_server->setUpgrade(Server::CloseAfterUpgrade);
        m_action = action;
        m_acted = false;
        (this->*moments().at(moment).reach)();
        if (QTest::currentTestFailed())
            return;
        QTRY_VERIFY(m_acted);
        verify(moments().at(moment).closed);
        if (QTest::currentTestFailed())
            return;
        QVERIFY(!m_isWebSocket || m_server->count(QStringLiteral("/xhr")) == 0);
        QCOMPARE(m_log->warnings(), QStringList());
        tearDown();
        QCOMPARE(m_before->waitForSurplusToGo(), QString());
    }

private:
    // How a moment and `closed` belong together.
    enum Closed {
        Never,   ///< there is no connection yet
        Follows, ///< there is one: `closed` follows from close(), and only from it
        Pending, ///< it has ended already, and `closed` is on its way
        Ending,  ///< it is just being ended from elsewhere
        Told     ///< `closed` has been emitted
    };
    struct Moment
    {
        const char* name;
        void (TestHostActions::*reach)();
        Closed closed;
        bool isWithinOpen = false;
    };

    static const QVector<Moment>& moments()
    {
        using T = TestHostActions;
        static const QVector<Moment> all = {
            {"before opening", &T::beforeOpening, Never},
            {"while opening", &T::whileOpening<Server::Silent>, Never, true},
            {"while being refused", &T::whileOpening<Server::Refuse403>, Never, true},
            {"while being reset", &T::whileOpening<Server::ResetInstead>, Never, true},
            {"in connected within open", &T::inConnectedWithinOpen, Follows, true},
            {"before the open frame", &T::beforeTheOpenFrame, Follows},
            {"in connected", &T::inConnected, Follows},
            {"when open", &T::whenOpen, Follows},
            {"in a message", &T::inMessage, Follows},
            {"with half a frame received", &T::withHalfAFrame, Follows},
            {"right after sending", &T::afterSending, Follows},
            {"with an unanswered post", &T::withAnUnansweredPost, Follows},
            {"when the connection is just lost", &T::afterTheConnectionIsLost, Ending},
            {"when the server has just closed", &T::afterTheServersClose, Ending},
            {"in closed by the server", &T::inClosedByTheServer, Told},
            {"right after close", &T::afterClose, Pending},
            {"in closed by us", &T::inClosed, Told},
            {"when closed", &T::whenClosed, Told},
        };
        return all;
    }

    void beforeOpening() { act(); }

    template<Server::Upgrade upgrade>
    void whileOpening()
    {
        m_server->setUpgrades({upgrade, Server::Open});
        // Queued: from the event loop in which open() waits, not from inside the server.
        const auto guard = connect(m_server.get(), &Server::requested, this, &TestHostActions::actOnce,
                                   Qt::QueuedConnection);
        QVERIFY(open(QStringLiteral("/first")));
        disconnect(guard);
    }

    void beforeTheOpenFrame()
    {
        m_server->setFirstFrames({});
        QVERIFY(open(QStringLiteral("/first")));
        QTRY_VERIFY(!m_server->requests().isEmpty() &&
                    (!m_falls || m_server->count(QStringLiteral("/xhr")) > 0));
        m_server->setFirstFrames({QStringLiteral("o")});
        act();
    }

    void inConnected()
    {
        connect(m_connector, &SockJSConnector::connected, this, &TestHostActions::actOnce);
        QVERIFY(open(QStringLiteral("/first")));
    }

    void inConnectedWithinOpen()
    {
        m_server->setUpgrades({Server::OpenInSamePacket, Server::Open});
        inConnected();
    }

    void whenOpen()
    {
        QVERIFY(openFirst());
        act();
    }

    void inMessage()
    {
        m_server->setFirstFrames({"o", "a[\"one\",\"two\"]", "a[\"three\"]"});
        connect(m_connector, &SockJSConnector::sockJSMessage, this, &TestHostActions::actOnce);
        QVERIFY(open(QStringLiteral("/first")));
    }

    void withHalfAFrame()
    {
        if (m_isWebSocket || m_falls)
            m_server->setUpgrades({Server::OpenInSamePacket, Server::Open});
        QVERIFY(openFirst());
        m_server->injectHalf();
        QVERIFY(anotherSessionOpens());
        act();
    }

    void afterSending()
    {
        QVERIFY(openFirst());
        m_connector->sendMessage(QString(1024 * 1024, QLatin1Char('x')), false);
        act();
    }

    void withAnUnansweredPost()
    {
        m_server->holdPosts();
        QVERIFY(openFirst());
        m_connector->sendMessage(QStringLiteral("one"), false);
        m_connector->sendMessage(QStringLiteral("two"), false);
        QTRY_VERIFY(!m_server->unreadFrames().isEmpty());
        act();
    }

    void afterTheConnectionIsLost()
    {
        QVERIFY(openFirst());
        m_server->dropConnections();
        act();
    }

    void afterTheServersClose()
    {
        QVERIFY(openFirst());
        m_server->closeSession();
        act();
    }

    void inClosedByTheServer()
    {
        QVERIFY(openFirst());
        connect(m_connector, &SockJSConnector::closed, this, &TestHostActions::actOnce);
        m_server->closeSession();
    }

    void afterClose()
    {
        QVERIFY(openFirst());
        m_connector->close();
        act();
    }

    void inClosed()
    {
        QVERIFY(openFirst());
        connect(m_connector, &SockJSConnector::closed, this, &TestHostActions::actOnce);
        m_connector->close();
    }

    void whenClosed()
    {
        QVERIFY(openFirst());
        m_connector->close();
        QTRY_VERIFY(m_probe->hasClosed());
        act();
    }

    // By its end everything that was on its way before has happened.
    bool anotherSessionOpens()
    {
        m_server->setUpgrade(Server::Open);
        m_server->setFirstFrames({QStringLiteral("o")});
        SockJSConnector other;
        return ConnectorProbe(&other).openSession(m_server->url(QStringLiteral("/other")), webSocket);
    }

    bool open(const QString& path) { return m_probe->open(m_server->url(path), m_protocols); }

    bool openFirst()
    {
        return open(QStringLiteral("/first")) && waitFor([this] { return isOpen(); });
    }
    bool isOpen() const { return m_connector && m_connector->isConnected(); }
    int closedCount() const { return m_probe->count(QStringLiteral("closed false")); }

    void act()
    {
        m_acted = true;
        if (m_action == QLatin1String("close"))
            m_connector->close();
        else if (m_action == QLatin1String("delete"))
            delete m_connector;
        else
            open(QStringLiteral("/second"));
    }

    void actOnce()
    {
        if (!m_acted)
            act();
    }

    void verify(Closed closed)
    {
        if (m_action == QLatin1String("delete"))
            return verifyDeleted(closed);
        if (m_action == QLatin1String("close"))
            verifyClosed(closed);
        if (!QTest::currentTestFailed())
            verifySecondSession();
        const int times = closedCount();
        if (m_action == QLatin1String("close"))
            QCOMPARE(times, closed == Never ? 0 : 1);
        else if (closed == Ending)
            QVERIFY(times <= 1);
        else
            QCOMPARE(times, closed == Pending || closed == Told ? 1 : 0);
    }

    void verifyDeleted(Closed closed)
    {
        QVERIFY(!m_connector);
        QVERIFY(anotherSessionOpens());
        QCOMPARE(closedCount(), closed == Told ? 1 : 0);
    }

    void verifyClosed(Closed closed)
    {
        QTRY_COMPARE(closedCount(), closed == Never ? 0 : 1);
        QVERIFY(!m_connector->isConnected());
        QVERIFY(open(QStringLiteral("/second")));
    }

    // It works in both directions, and the end of the first one does not touch it.
    void verifySecondSession()
    {
        QTRY_VERIFY(isOpen());
        QVERIFY(syncInbound());
        const auto text = QStringLiteral("to the second session");
        m_connector->sendMessage(text, true);
        QString message;
        do {
            message = m_server->nextMessage();
        } while (!message.isNull() && message != text);
        QCOMPARE(message, text);
        QVERIFY(m_server->paths().last().startsWith(QLatin1String("/second/")));
        QVERIFY(syncInbound());
        QVERIFY(isOpen());
        const QStringList events = m_probe->events();
        QVERIFY2(events.lastIndexOf(QStringLiteral("closed false")) <
                     events.lastIndexOf(QStringLiteral("connected")),
                 qPrintable(events.join(QLatin1Char('|'))));
    }

    std::unique_ptr<ProcessResources::Snapshot> m_before;
    Protocols m_protocols;
    bool m_falls = false;
    bool m_isWebSocket = false;
    QString m_action;
    bool m_acted = false;
};

QTEST_GUILESS_MAIN(TestHostActions)
#include "tst_HostActions.moc"
