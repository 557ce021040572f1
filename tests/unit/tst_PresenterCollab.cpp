#include "collab/CalyxCollabMessage.h"
#include "collab/CollaborationMessageHandler.h"
#include "collab/PresenterCollab.h"
#include "support/Rows.h"
#include "support/SessionTest.h"
#include "support/TimerClock.h"
#include "support/TypeNamed.h"
#include "support/WallClock.h"
#include "transport/SockJSConnector.h"

#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

using Calyx::CalyxCollabMessage;

namespace {

const auto pingMessage = QStringLiteral("{\"type\":\"ping\"}");

const auto emptyText = QStringLiteral("\"\"");

// What Qt's debug stream does to a text that it quotes.
QString unquoted(QString line)
{
    return line.replace(QLatin1String("\\\""), QLatin1String("\""))
        .replace(QLatin1String("\\n"), QLatin1String("\n"));
}

} // namespace

/// The session itself: opening, registering, pinging, relaying, what it publishes, and its end, from either
/// side.
class TestPresenterCollab : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void keepsWhatItWasConstructedWith()
    {
        QObject parent;
        auto* session = new PresenterCollab(&parent, "http://h/b", "123456", "token", "user");
        QCOMPARE(session->parent(), &parent);
        QCOMPARE(session->serverUrl(), QStringLiteral("http://h/b"));
        QCOMPARE(session->sessionCode(), QStringLiteral("123456"));
        QCOMPARE(session->sessionToken(), QStringLiteral("token"));
        QCOMPARE(session->userToken(), QStringLiteral("user"));
        QVERIFY(session->currentPollId().isEmpty());
        QVERIFY(session->currentQuestionId().isEmpty());
        QVERIFY(!session->isConnected());
        QCOMPARE(session->connector()->parent(), session);
        QCOMPARE(session->messageHandler()->parent(), session);
        auto* timer = session->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(timer);
        QVERIFY(!timer->isActive());
        QCOMPARE(session->getCardImageRef(false), QString());
    }

    void declaresItsSignalsAndSlotsInOrder()
    {
        QCOMPARE(signaturesOf(PresenterCollab::staticMetaObject),
                 QStringList({"signal connectionClosed(bool)",
                              "signal learnerPollResponse(QString,QString,int,QString)",
                              "signal learnerJoin(Learner)", "signal learnerUnregister(QString)",
                              "signal controllerRegister(bool)", "signal remoteControl(RemoteControlMessage)",
                              "signal unhandledMessage(QVariantMap,QVariant)", "protected slot onConnected()",
                              "protected slot onClosed(bool)", "protected slot onPingTimer()"}));
    }

    void openUsesTheDefaultTransports()
    {
        server().setUpgrade(Server::Refuse403);
        collab()->open();
        const auto logged = log().debug("Connecting to collaboration server (default):");
        QCOMPARE(logged.size(), 1);
        QVERIFY(logged.first().contains(collab()->serverUrl()));
        // The second comes up, and registers at once.
        QTRY_VERIFY(server().requests().size() >= 5);
        QVERIFY(server().paths().at(0).endsWith(QLatin1String("/websocket")));
        QVERIFY(server().paths().at(1).endsWith(QLatin1String("/xhr_streaming")));
        QVERIFY(server().paths().at(0).startsWith(QLatin1String("/bus/eventbus/119/")));
    }

    void openUsesTheNamedTransports()
    {
        server().setFirstFrames({});
        collab()->open({"carrier-pigeon", "xhr-polling"});
        const auto logged = log().debug("Connecting to collaboration server:");
        QCOMPARE(logged.size(), 1);
        const auto text = logged.first();
        QVERIFY2(text.indexOf(collab()->serverUrl()) < text.indexOf(QLatin1String(" [")), qPrintable(text));
        QVERIFY2(text.contains(QRegularExpression("carrier-pigeon, xhr-polling.*]")), qPrintable(text));
        QTRY_VERIFY(!server().requests().isEmpty());
        QVERIFY(server().paths().first().endsWith(QLatin1String("/xhr")));
    }

    void registersNothingBeforeTheChannelIsUp()
    {
        server().setUpgrade(Server::Mute);
        collab()->open({"websocket"});
        QVERIFY(!collab()->isConnected());
        QVERIFY(!pingTimer()->isActive());
        QVERIFY(m_session->nothingWasSent());
        server().inject("o");
        QVERIFY(m_session->readRegisters());
        QVERIFY(collab()->isConnected());
        QVERIFY(pingTimer()->isActive());
        QVERIFY(m_session->nothingWasSent());
    }

    void pingsEveryMinuteOnceConnected()
    {
        QVERIFY(m_session->open());
        QVERIFY(pingTimer()->isActive());
        QCOMPARE(pingTimer()->interval(), 60000);
        QVERIFY(!pingTimer()->isSingleShot());
        for (int i = 0; i < 3; ++i) {
            TimerClock::advance(60000);
            QCOMPARE(server().nextMessage(), pingMessage);
        }
        QVERIFY(QMetaObject::invokeMethod(collab(), "onPingTimer"));
        QCOMPARE(server().nextMessage(), pingMessage);
    }

    void pingDoesNotLookAtTheConnection()
    {
        collab()->sendPing();
        QVERIFY(QMetaObject::invokeMethod(collab(), "onPingTimer"));
        QVERIFY(log().messages().isEmpty());
        server().setUpgrade(Server::Mute);
        collab()->open({"websocket"});
        QVERIFY(!collab()->isConnected());
        collab()->sendPing();
        QCOMPARE(server().nextMessage(), pingMessage);
    }

    void pingsAreNoActivityAndPublishesAre()
    {
        WallClock::freeze();
        const auto release = qScopeGuard(WallClock::release);
        QVERIFY(m_session->open());
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);
        WallClock::advance(3600);
        collab()->publishMessage("type", "1");
        QCOMPARE(m_session->nextPublish().type, QStringLiteral("type"));
        WallClock::advance(3600);
        CalyxCollabMessage message;
        collab()->publishMessage(QString(), &message);
        WallClock::advance(3600);
        QVERIFY(QMetaObject::invokeMethod(collab()->connector(), "onTimeout"));
        QVERIFY(collab()->isConnected());
        collab()->sendPing();
        WallClock::advance(1);
        QVERIFY(QMetaObject::invokeMethod(collab()->connector(), "onTimeout"));
        QTRY_COMPARE(closed.size(), 1);
        QCOMPARE(closed.first().first().toBool(), true);
        QVERIFY(!pingTimer()->isActive());
    }

    void relaysWhatComesIn()
    {
        QVERIFY(m_session->open());
        QSignalSpy answers(collab(), SIGNAL(learnerPollResponse(QString, QString, int, QString)));
        QSignalSpy joins(collab(), SIGNAL(learnerJoin(Learner)));
        QSignalSpy departures(collab(), SIGNAL(learnerUnregister(QString)));
        QSignalSpy controllers(collab(), SIGNAL(controllerRegister(bool)));
        QSignalSpy commands(collab(), SIGNAL(remoteControl(RemoteControlMessage)));
        QSignalSpy others(collab(), SIGNAL(unhandledMessage(QVariantMap, QVariant)));
        const auto client = [](const char* type) { return QVariantMap{{"token", "t1"}, {"type", type}}; };
        m_session->receive("pollResponse", "d1",
                           {{"pollId", "p1"}, {"responseTime", 2500}, {"blob", QVariantMap{{"input", "x"}}}});
        m_session->receive("join", "d2", {{"userName", "Ann"}, {"deviceType", "tablet"}});
        m_session->receive({{"action", "unregister"}, {"client", client("user")}});
        m_session->receive({{"action", "unregister"}, {"client", client("controller")}});
        m_session->receive("nextCard", "d3", {{"card", 4}});
        m_session->receive("somethingNew", "d4", {{"a", 1}});
        m_session->receive("questionGet", "d5", {{"questionNumber", 3}}); // which is not relayed
        QVERIFY(m_session->syncInbound());
        QCOMPARE(answers, QList<QVariantList>({{"d1", "p1", 2500, "x"}}));
        QCOMPARE(departures, QList<QVariantList>({{"t1"}}));
        QCOMPARE(controllers, QList<QVariantList>({{false}}));
        QCOMPARE(joins.size(), 1);
        const auto learner = joins.first().first().value<Calyx::Learner>();
        QCOMPARE(QStringList({learner.deviceId, learner.userName, learner.deviceType}),
                 QStringList({"d2", "Ann", "tablet"}));
        QCOMPARE(commands.size(), 1);
        const auto command = commands.first().first().value<Calyx::RemoteControlMessage>();
        QCOMPARE(QVariantList({command.from, command.type, command.data}),
                 QVariantList({"d3", "nextCard", QVariantMap{{"card", 4}}}));
        QCOMPARE(others.size(), 1);
        QCOMPARE(others.first().at(0).toMap().value("from").toString(), QStringLiteral("d4"));
        QCOMPARE(others.first().at(1), QVariant(QVariantMap{{"a", 1}}));
    }

    void compressedPublish_data()
    {
        const QString large(300000, QLatin1Char('x'));
        rows<QString, QString, QString>({
            {"below the session", ".learner", "abc.learner", "{\"a\":1}"},
            {"without the point", "x.learner", "x.learner", "{}"},
            {"empty address", "", "", "{}"},
            {"a point alone", ".", "abc.", "{}"},
            {"the session itself", "abc", "abc", "[1]"},
            {"a device", ".user.d1", "abc.user.d1", "\"\""},
            {"empty data", ".learner", "abc.learner", ""},
            {"outside ASCII", ".learner", "abc.learner", "h\xc3\xa9 \xe4\xb8\xad \xf0\x9f\x98\x80"},
            {"brackets and blanks", ".learner", "abc.learner", "[ 1, [ 2 ] ]"},
            {"large", ".learner", "abc.learner", large},
        });
    }
    void compressedPublish()
    {
        const auto [address, resolved, data] = row<QString, QString, QString>();
        QVERIFY(m_session->open());
        m_session->forgetLog();
        collab()->publishMessage(address, "someType", data);
        collab()->publishMessage64(address, "someType", data);
        for (int i = 0; i < 2; ++i)
            QCOMPARE(nextPublish(qPrintable(resolved), "someType").data, data);
        QVERIFY2(log().messages().isEmpty(), "a compressed publish is not logged");
    }

    void placeholdersInValuesGoOutAsTheyAre()
    {
        m_session = std::make_unique<LiveSession>("t%1", "u%2%3");
        QVERIFY(m_session->open()); // reads the registers
        collab()->publishMessage(".%1%3", "%0%3", "%1 %2");
        auto publish = m_session->nextPublish();
        QCOMPARE(publish.text, LiveSession::compressedFrame("t%1.%1%3", "u%2%3", "%0%3", publish.base64));
        QCOMPARE(publish.data, QStringLiteral("%1 %2"));
        CalyxCollabMessage message;
        message.settype("%1");
        collab()->publishMessage("%1", &message);
        publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("%1"));
        QCOMPARE(publish.type, QStringLiteral("%1"));
        QCOMPARE(publish.from, QStringLiteral("u%2%3"));
    }

    // What is dropped before the first connection is in tst_PresenterCollabPolls.
    void publishIsDroppedWhileDisconnected()
    {
        QVERIFY(m_session->open());
        server().closeSession();
        QTRY_VERIFY(!collab()->isConnected());
        collab()->publishMessage("type", "1");
        QCOMPARE(dropped(), 1);
        server().setUpgrade(Server::Mute);
        collab()->open({"websocket"});
        collab()->publishMessage("type", "2");
        QCOMPARE(dropped(), 2);
        QVERIFY(m_session->nothingWasSent());
    }

    void objectPublish_data()
    {
        const auto json = QStringLiteral("{\n    \"a\": 1,\n    \"b\": \"x\"\n}\n");
        rows<QString, QString, QVariantMap, QString>({
            {"below the session", ".learner", "abc.learner", QVariantMap{{"b", "x"}, {"a", 1}}, json},
            {"without the point", "x.y", "x.y", QVariantMap{{"b", "x"}, {"a", 1}}, json},
            {"empty address", "", "", QVariantMap{{"b", "x"}, {"a", 1}}, json},
            {"empty map", "abc", "abc", QVariantMap{}, "{\n}\n"},
        });
    }
    void objectPublish()
    {
        const auto [address, resolved, map, data] = row<QString, QString, QVariantMap, QString>();
        QVERIFY(m_session->open());
        CalyxCollabMessage message;
        message.setfrom("somebody else");
        message.settype("someType");
        message.setdata(map);
        m_session->forgetLog();
        collab()->publishMessage(address, &message);
        const auto publish = m_session->nextPublish();
        const auto json =
            QStringLiteral("{\n    \"data\": [\n        \"%1\"\n    ],\n    \"from\": \"teacher-7\",\n"
                           "    \"sourceSystem\": \"Lumora\",\n    \"type\": \"someType\",\n"
                           "    \"version\": \"3.0.0\"\n}\n")
                .arg(publish.base64);
        const auto frame = QStringLiteral("{\"type\":\"publish\",\"address\":\"") + resolved +
                           QStringLiteral("\",\"body\":") + json + QLatin1Char('}');
        // SockJS framing takes the blank in front of a closing bracket.
        QCOMPARE(publish.text, QString(frame).replace(QLatin1String(" ]"), QLatin1String("]")));
        QCOMPARE(publish.data, data);
        QCOMPARE(message.from(), QStringLiteral("teacher-7"));
        QCOMPARE(message.data(), QVariant(QVariantList{publish.base64}));
        const auto transmitted = log().debug("TRANSMIT: ");
        QCOMPARE(transmitted.size(), 1);
        QVERIFY2(unquoted(transmitted.first()).contains(frame), qPrintable(transmitted.first()));
    }

    void objectPublishWithoutDataIsLoggedAndSent()
    {
        QVERIFY(m_session->open());
        CalyxCollabMessage message;
        for (const QVariant& data : {QVariant(), QVariant("as it stood")}) {
            message.setdata(data);
            m_session->forgetLog();
            collab()->publishMessage(".learner", &message);
            QCOMPARE(log().debug("[CalyxCollabMessage] data object in message is invalid!").size(), 1);
            const auto publish = m_session->nextPublish();
            QVERIFY(publish.body.contains("data"));
            QCOMPARE(publish.body.value("data").toString(), data.toString());
            QCOMPARE(publish.body.value("data").isNull(), data.isNull());
        }
    }

    void removeLearnerTellsTheDevice()
    {
        QSignalSpy gone(collab(), &PresenterCollab::learnerUnregister);
        collab()->removeLearner("d1");
        QCOMPARE(gone.takeFirst().first().toString(), QStringLiteral("d1"));
        QVERIFY(m_session->open());
        collab()->removeLearner("d%1");
        QCOMPARE(gone.size(), 1);
        QCOMPARE(gone.first().first().toString(), QStringLiteral("d%1"));
        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc.user.d%1"));
        QCOMPARE(publish.type, QStringLiteral("disconnect"));
        QCOMPARE(publish.data, emptyText);
    }

    void closeSaysGoodbyeAndDisconnects()
    {
        QVERIFY(m_session->open());
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);
        collab()->close();
        QVERIFY(!collab()->isConnected());
        QVERIFY(!pingTimer()->isActive());
        QCOMPARE(closed.size(), 0);
        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.type, QStringLiteral("disconnect"));
        QCOMPARE(publish.data, QStringLiteral("\"\""));
        QTRY_COMPARE(closed.size(), 1);
        QCOMPARE(closed.first().first().toBool(), false);
        QTRY_COMPARE(server().endedSessions(), 1);
        collab()->close();
        QVERIFY(m_session->open());
        QVERIFY(m_session->syncInbound());
        QCOMPARE(closed.size(), 1);
    }

    void closeBeforeTheChannelIsUpClosesItOnceItIs()
    {
        server().setUpgrade(Server::Mute);
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);
        collab()->open({"websocket"});
        collab()->close();
        QCOMPARE(dropped(), 1);
        server().inject("o");
        QTRY_COMPARE(server().endedSessions(), 1);
        QVERIFY2(server().unreadFrames().isEmpty(),
                 qPrintable(server().unreadFrames().join(QLatin1Char('\n'))));
        QVERIFY(!collab()->isConnected());
        QVERIFY(!pingTimer()->isActive());
        QTRY_COMPARE(closed.size(), 1);
        QCOMPARE(closed.first().first().toBool(), false);
    }

    void aSecondOpenThatFailsEndsThePings_data()
    {
        rows<bool>({
            {"of the channel", false},
            {"of its connector", true},
        });
    }
    void aSecondOpenThatFailsEndsThePings()
    {
        const auto [ofTheConnector] = row<bool>();
        QVERIFY(m_session->open());
        server().setUpgrade(Server::Refuse403);
        if (ofTheConnector) {
            collab()->connector()->open(server().url(), {SockJSConnector::WEBSOCKET});
            QVERIFY(QMetaObject::invokeMethod(collab(), "onPingTimer"));
        } else {
            collab()->open({"websocket"});
        }
        QVERIFY(!pingTimer()->isActive());
    }

    void openAfterACloseRegisters_data()
    {
        rows<bool, bool>({
            {"that came early", true, false},
            {"right after it", false, false},
            {"of the connector", false, true},
        });
    }
    void openAfterACloseRegisters()
    {
        const auto [early, ofTheConnector] = row<bool, bool>();
        server().setUpgrades({early ? Server::Mute : Server::Open, Server::Open});
        if (early)
            collab()->open({"websocket"});
        else
            QVERIFY(m_session->open());
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);
        collab()->close();
        if (ofTheConnector)
            collab()->connector()->open(server().url(), {SockJSConnector::WEBSOCKET});
        else
            collab()->open({"websocket"});
        QVERIFY(early || m_session->nextPublish().type == QLatin1String("disconnect"));
        QVERIFY(m_session->readRegisters());
        QTRY_COMPARE(server().openConnections(), 1);
        QVERIFY(m_session->syncInbound());
        QCOMPARE(closed.size(), early ? 0 : 1);
        QVERIFY(collab()->isConnected());
        QVERIFY(pingTimer()->isActive());
        QVERIFY(m_session->nothingWasSent());
    }

    void theServersEndStopsThePingAndIsReported()
    {
        QVERIFY(m_session->open());
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);
        server().closeSession();
        QTRY_COMPARE(closed.size(), 1);
        QCOMPARE(closed.first().first().toBool(), false);
        QVERIFY(!collab()->isConnected());
        QVERIFY(!pingTimer()->isActive());
    }

private:
    QTimer* pingTimer() const { return collab()->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly); }
};

QTEST_GUILESS_MAIN(TestPresenterCollab)
#include "tst_PresenterCollab.moc"
