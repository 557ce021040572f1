#include "support/ConnectorTest.h"
#include "support/Rows.h"
#include "support/TypeNamed.h"
#include "support/WallClock.h"

#include <QTest>
#include <QTimer>

#include <algorithm>

namespace {

const auto noProtocols = QStringLiteral("[SockJSConnector] No protocols specified. Using defaults.");

QString utf8(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

/// The tables of transports, the frames in both directions, and the end of a connection: from either side,
/// and after an hour in which nothing but pings was sent. Hosts that bring it about from inside a slot,
/// twice, or while there is no connection, are in tst_HostActions.
class TestSockJSConnector : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setUp();
        WallClock::freeze();
    }

    void protocolTableNamesTheThreeTransports()
    {
        const auto table = SockJSConnector::PROTOCOL_TYPE_STR();
        QCOMPARE(table.size(), 3);
        QCOMPARE(table.value(Protocol(1)), QStringLiteral("websocket"));
        QCOMPARE(table.value(Protocol(2)), QStringLiteral("xhr-streaming"));
        QCOMPARE(table.value(Protocol(4)), QStringLiteral("xhr-polling"));
        QCOMPARE(int(SockJSConnector::WEBSOCKET), 1);
        QCOMPARE(int(SockJSConnector::XHR_STREAMING), 2);
        QCOMPARE(int(SockJSConnector::XHR_POLLING), 4);
        QCOMPARE(SockJSConnector::GetDefaultProtocols(), table.keys());
    }

    void protocolsAreFoundByTheirNames_data()
    {
        constexpr auto ws = SockJSConnector::WEBSOCKET;
        constexpr auto streaming = SockJSConnector::XHR_STREAMING;
        constexpr auto polling = SockJSConnector::XHR_POLLING;
        using Names = QStringList;
        const Protocols all{ws, streaming, polling};
        rows<QStringList, Protocols, bool>({
            {"unknown", Names{"xhr-polling", "carrier-pigeon", "websocket"}, Protocols{polling, ws}, false},
            {"all", Names{"xhr-polling", "xhr-streaming"}, Protocols{polling, streaming}, false},
            {"duplicates", Names{"websocket", "xhr-streaming", "websocket"}, Protocols{ws, streaming, ws},
             false},
            {"empty list", QStringList(), all, true},
            {"wrong case", QStringList{"WebSocket"}, all, true},
            {"blanks around", QStringList{" websocket", "xhr-polling "}, all, true},
            {"empty name", QStringList{""}, all, true},
            {"part of a name", QStringList{"xhr", "socket"}, all, true},
        });
    }
    void protocolsAreFoundByTheirNames()
    {
        const auto [names, expected, defaults] = row<QStringList, Protocols, bool>();
        QCOMPARE(SockJSConnector::GetProtocolsFromStrings(names), expected);
        QCOMPARE(m_log->debug(noProtocols).size(), defaults ? 1 : 0);
    }

    void declaresItsSignalsAndSlotsInOrder()
    {
        QCOMPARE(
            signaturesOf(SockJSConnector::staticMetaObject),
            QStringList({"signal connected()", "signal sockJSMessage(QString)", "signal error(int)",
                         "signal closed(bool)", "protected slot onConnected()", "protected slot onClosed()",
                         "protected slot onTextMessageReceived(QString)", "protected slot onTimeout()",
                         "protected slot openstate1()", "protected slot openstate2()"}));
    }

    void aNewConnectorIsIdle()
    {
        QVERIFY(!m_connector->isConnected());
        QVERIFY(m_connector->sessionId().isEmpty());
        QCOMPARE(m_connector->openLimit(), 0);
        QCOMPARE(m_connector->silenceLimit(), 0);
        QCOMPARE(m_connector->pingInterval(), 0);
        QVERIFY(!m_connector->randomSessionIds());
    }

    // What becomes of characters is in tst_Json.
    void sendingWrapsTheMessageInAnIndentedArray()
    {
        QVERIFY(openSession());
        const auto frame = utf8("[\n    \"h\xc3\xa9 \\\"%1\\\" [y]\"\n]\n");
        m_connector->sendMessage(utf8("h\xc3\xa9 \"%1\" [ y ]"), false);
        m_connector->sendMessage(utf8("h\xc3\xa9 \"%1\" [ y ]"), true);
        QCOMPARE(m_server->nextFrame(), frame);
        QCOMPARE(m_server->nextFrame(), frame);
    }
    // The end of a list loses a blank.
    void sendingAMapSendsItsIndentedJson()
    {
        QVERIFY(openSession());
        m_connector->sendMessage(QVariantMap{{"b", "x"}, {"a", QVariantList{1}}});
        QCOMPARE(m_server->nextFrame(), QStringLiteral("[\n    \"{\\n    \\\"a\\\": [\\n        1\\n   ],"
                                                       "\\n    \\\"b\\\": \\\"x\\\"\\n}\\n\"\n]\n"));
    }

    void sendingWithoutATransportIsDropped()
    {
        m_connector->sendMessage(QStringLiteral("before"), false);
        m_connector->sendMessage(QVariantMap{{"before", 1}});
        QVERIFY(m_log->messages().isEmpty());
        QVERIFY(openSession());
        m_connector->close();
        forgetLog();
        m_connector->sendMessage(QStringLiteral("between"), false);
        QVERIFY(m_log->messages().isEmpty());
        QVERIFY(openSession());
        m_connector->sendMessage(QStringLiteral("after"), false);
        QCOMPARE(m_server->nextMessage(), QStringLiteral("after"));
        QVERIFY(m_server->unreadFrames().isEmpty());
    }

    void sendingBeforeTheOpenFrameReachesTheServer()
    {
        m_server->setUpgrade(Server::Mute);
        QVERIFY(m_probe->open(m_server->url(), webSocket));
        QVERIFY(!m_connector->isConnected());
        m_connector->sendMessage(QStringLiteral("early"), false);
        QCOMPARE(m_server->nextMessage(), QStringLiteral("early"));
    }

    // What the array of a message frame may look like is in tst_Json.
    void inboundFrames_data()
    {
        rows<QString, QStringList>({
            {"two, in order", "a[\"first\",\"second\"]", {"first", "second"}},
            {"escaped characters", "a[\"\\u00e9\\ud83d\\ude00\\/\"]", {utf8("\xc3\xa9\xf0\x9f\x98\x80/")}},
            {"white space", "a [ \"x\" ,\n\"y\" ]\n", {"x", "y"}},
            {"nothing behind the a", "a", {}},
            {"no JSON", "abc", {}},
            {"nested too deeply",
             QLatin1Char('a') + QString(5000, QLatin1Char('[')) + QString(5000, QLatin1Char(']')),
             {}},
            {"upper case", "A[\"x\"]", {}},
            {"blank in front", " a[\"x\"]", {}},
            {"no quote in front", "a[x\"]", {}},
            {"heartbeat", "h", {}},
            {"close frame", "c[3000,\"Go away!\"]", {}},
            {"open frame again", "o", {}},
            {"single message frame", "m\"x\"", {}},
            {"bare array", "[\"x\"]", {}},
            {"empty frame", "", {}},
        });
    }
    void inboundFrames()
    {
        const auto [frame, messages] = row<QString, QStringList>();
        QVERIFY(openSession());
        forgetLog();
        m_server->inject(frame);
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->messages().mid(0, m_probe->messages().size() - 1), messages);
        QCOMPARE(m_probe->events().size(), messages.size() + 2); // "connected" and the synchronizing one
        QVERIFY(m_connector->isConnected());
        QVERIFY2(m_log->debug(QStringLiteral("[SockJSConnector]")).isEmpty(), "something was logged");
        QVERIFY(syncOutbound());
    }

    void binaryMessagesAreNotFrames()
    {
        QVERIFY(openSession());
        m_server->injectBinary("a[\"x\"]");
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->messages().size(), 1);
    }

    void frameThatIsTooLargeEndsTheConnection()
    {
        constexpr int largest = 64 * 1024 * 1024;
        QVERIFY(openSession());
        m_server->inject(QString(largest, QLatin1Char('x')));
        QVERIFY(syncInbound());
        m_server->inject(QString(largest + 1, QLatin1Char('x')));
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed false")), 1);
        QTRY_COMPARE(m_server->closeCode(), 1009); // too much data
    }

    void framesBeforeTheOpenFrameAreHandledAlike()
    {
        m_server->setFirstFrames({"h", "a[\"early\"]", "o", "a[\"late\"]"});
        QVERIFY(openSession());
        QTRY_COMPARE(m_probe->events(), QStringList({"message early", "connected", "message late"}));
    }

    void onlyAnExactOOpensTheSession()
    {
        m_server->setFirstFrames({"O", "o ", "oo", " o", "open", "o\n", "", "a[\"still closed\"]"});
        QVERIFY(m_probe->open(m_server->url(), webSocket));
        QTRY_COMPARE(m_probe->events(), QStringList({"message still closed"}));
        QVERIFY(!m_connector->isConnected());
        m_server->inject(QStringLiteral("o"));
        QTRY_VERIFY(m_connector->isConnected());
        QCOMPARE(m_probe->events(), QStringList({"message still closed", "connected"}));
    }

    void onConnectedOpensTheSessionByItself()
    {
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onConnected"));
        QCOMPARE(m_probe->events(), QStringList({"connected"}));
        QVERIFY(m_connector->isConnected());
        QCOMPARE(m_log->debug(QStringLiteral("[SockJSConnector] Websocket connected")).size(), 1);
    }

    void closeIsFollowedByClosedFalseOnce()
    {
        QVERIFY(openSession());
        forgetLog();
        m_connector->close();
        QVERIFY(!m_connector->isConnected());
        QCOMPARE(m_probe->events(), QStringList({"connected"})); // close() itself emits nothing
        QTRY_COMPARE(m_probe->events(), QStringList({"connected", "closed false"}));
        QCOMPARE(m_log->debug(QStringLiteral("[SockJSConnector] Websocket CLOSED")).size(), 1);
        QTRY_COMPARE(m_server->openConnections(), 0);
        QTRY_COMPARE(m_server->closeCode(), 1001); // going away
        // A whole session later there is still no second one.
        QVERIFY(openSession());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->count(QStringLiteral("closed false")), 1);
    }

    void nothingIsHeardAfterClose()
    {
        QVERIFY(openSession());
        m_server->injectMessages({"too late"});
        m_connector->close();
        QTRY_VERIFY(m_probe->hasClosed());
        QTRY_COMPARE(m_server->openConnections(), 0);
        QVERIFY(m_probe->messages().isEmpty());
    }

    void framesSentBeforeTheEndReachTheServer_data() { rows<bool>({{"close", false}, {"deletion", true}}); }
    void framesSentBeforeTheEndReachTheServer()
    {
        const auto [deletes] = row<bool>();
        QVERIFY(openSession());
        const QString large(8 * 1024 * 1024, QLatin1Char('x'));
        m_connector->sendMessage(large, false);
        m_connector->sendMessage(QStringLiteral("disconnect"), false);
        if (deletes)
            delete m_connector;
        else
            m_connector->close();
        const auto first = m_server->nextMessage();
        QCOMPARE(first.size(), large.size());
        QVERIFY(first == large);
        QCOMPARE(m_server->nextMessage(), QStringLiteral("disconnect"));
        QTRY_COMPARE(m_server->endedSessions(), 1);
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed false")), deletes ? 0 : 1);
    }

    // The end of the first session is told when the second is opened; nothing of it comes behind.
    void restOfAFrameDoesNotOutliveItsSession()
    {
        connect(m_connector, &SockJSConnector::sockJSMessage, this, [&](const QString& message) {
            if (message == QLatin1String("one")) {
                m_connector->close();
                m_server->setFirstFrames({"o", "a[\"four\"]"});
                m_probe->open(m_server->url(), webSocket);
            }
        });
        m_server->setFirstFrames({"o", "a[\"one\",\"two\",\"three\"]"});
        QVERIFY(m_probe->open(m_server->url(), webSocket));
        QTRY_COMPARE(m_probe->messages(), QStringList({"one", "four"}));
    }

    void restOfAFrameIsNotToldAfterOpenAndClose()
    {
        connect(m_connector, &SockJSConnector::sockJSMessage, this, [&] {
            m_server->setFirstFrames({"o"});
            m_probe->open(m_server->url(), webSocket);
            m_connector->close();
        });
        m_server->setFirstFrames({"o", "a[\"one\",\"two\"]"});
        QVERIFY(m_probe->open(m_server->url(), webSocket));
        QTRY_VERIFY(!m_probe->messages().isEmpty());
        QVERIFY(anotherConnectorOpens());
        QCOMPARE(m_probe->messages(), QStringList{"one"});
    }

    // The end of the first session is told inside the second open(): there is nothing to close then.
    void closeWhenTheEndIsToldLetsTheNextOpenStand()
    {
        QVERIFY(openSession());
        connect(m_connector, &SockJSConnector::closed, m_connector, &SockJSConnector::close);
        m_connector->close();
        QVERIFY(openSession());
        QVERIFY(syncInbound());
        QVERIFY(m_connector->isConnected());
        QCOMPARE(m_probe->count(QStringLiteral("closed false")), 1);
    }

    void restOfAFrameComesBeforeTheEnd()
    {
        connect(m_connector, &SockJSConnector::sockJSMessage, m_connector, &SockJSConnector::close);
        m_server->setFirstFrames({"o", "a[\"one\",\"two\"]"});
        QVERIFY(m_probe->open(m_server->url(), webSocket));
        QTRY_VERIFY(m_probe->hasClosed());
        QCOMPARE(m_probe->messages(), QStringList({"one", "two"}));
        QCOMPARE(m_probe->events().last(), QStringLiteral("closed false"));
    }

    void inactivityTimerRunsEveryHalfHour()
    {
        QVERIFY(halfHourTimers().isEmpty()); // it comes with the first open()
        QVERIFY(openSession());
        const auto timers = halfHourTimers();
        QCOMPARE(timers.size(), 1);
        QVERIFY(timers.first()->isActive());
        QVERIFY(!timers.first()->isSingleShot());
        QCOMPARE(timers.first()->parent(), m_connector.data());
        m_connector->close();
        QTRY_VERIFY(m_probe->hasClosed());
        QVERIFY(openSession());
        QCOMPARE(halfHourTimers(), timers);
        // The next open() does not restart it.
        idle(3601);
        QVERIFY(!timers.first()->isActive());
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);
        QVERIFY(openSession());
        QCOMPARE(halfHourTimers(), timers);
        QVERIFY(!timers.first()->isActive());
    }

    void inactivityBound_data()
    {
        constexpr auto ws = SockJSConnector::WEBSOCKET;
        rows<Protocol, int, bool>({
            {"at once", ws, 0, false},
            {"half an hour", ws, 1800, false},
            {"3599", ws, 3599, false},
            {"3600", ws, 3600, false},
            {"3601", ws, 3601, true},
            {"a day", ws, 86400, true},
            {"the clock was put back", ws, -86400, false},
            {"3600, polling", SockJSConnector::XHR_POLLING, 3600, false},
            {"3601, polling", SockJSConnector::XHR_POLLING, 3601, true},
        });
    }
    void inactivityBound()
    {
        const auto [protocol, seconds, closes] = row<Protocol, int, bool>();
        QVERIFY(m_probe->openSession(m_server->url(), {protocol}));
        idle(seconds);
        QCOMPARE(m_connector->isConnected(), !closes);
        if (closes) {
            QTRY_COMPARE(m_probe->events(), QStringList({"connected", "closed true"}));
            QTRY_COMPARE(m_server->openConnections(), 0);
        } else {
            QVERIFY(syncOutbound());
            QVERIFY(syncInbound());
            QCOMPARE(m_probe->events().size(), 2);
        }
    }

    void inactivityDoesNotCloseBeforeTheSessionIsOpen()
    {
        m_server->setUpgrade(Server::Mute);
        QVERIFY(m_probe->open(m_server->url(), webSocket));
        idle(10000);
        m_server->inject(QStringLiteral("o"));
        QTRY_VERIFY(m_connector->isConnected());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->events().first(), QStringLiteral("connected"));
    }

    void pingsAreNoActivity()
    {
        QVERIFY(openSession());
        WallClock::advance(3000);
        m_connector->sendMessage(QStringLiteral("ping"), true);
        m_server->injectMessages({"inbound is none either"});
        QVERIFY(syncInbound());
        idle(601);
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);
    }

    void sendsAndOpenAreActivity()
    {
        QVERIFY(openSession());
        WallClock::advance(3000);
        m_connector->sendMessage(QStringLiteral("text"), false);
        idle(3600);
        QVERIFY(m_connector->isConnected());
        m_connector->sendMessage(QVariantMap{{"a", "map"}});
        idle(3600);
        QVERIFY(m_connector->isConnected());
        idle(1);
        QVERIFY(!m_connector->isConnected());
        QVERIFY(openSession());
        idle(0);
        QVERIFY(m_connector->isConnected());
    }

    void inactivityIsToldOnceAndForThatConnection()
    {
        QVERIFY(openSession());
        idle(3601);
        m_connector->close();
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);
        m_connector->close();
        QVERIFY(openSession());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->count(QStringLiteral("closed true")), 1);
        QVERIFY(!m_probe->hasClosed());
        m_connector->close(); // of another connection
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed false")), 1);
        QCOMPARE(m_probe->count(QStringLiteral("closed true")), 1);
    }

private:
    QList<QTimer*> halfHourTimers() const
    {
        QList<QTimer*> timers;
        const auto all = m_connector->findChildren<QTimer*>();
        std::copy_if(all.begin(), all.end(), std::back_inserter(timers),
                     [](const auto* timer) { return timer->interval() == 1800000; });
        return timers;
    }

    // Lets the time pass, and the connector look at the clock.
    void idle(int seconds)
    {
        WallClock::advance(seconds);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));
    }
};

QTEST_GUILESS_MAIN(TestSockJSConnector)
#include "tst_SockJSConnector.moc"
