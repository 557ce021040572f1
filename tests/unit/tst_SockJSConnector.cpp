#include "support/ConnectorTest.h"
#include "support/Rows.h"
#include "support/TypeNamed.h"

#include <QTest>

using Protocol = SockJSConnector::PROTOCOL_TYPE;
using Protocols = QList<Protocol>;

Q_DECLARE_METATYPE(Protocols)

namespace {

const auto noProtocols = QStringLiteral("[SockJSConnector] No protocols specified. Using defaults.");

QString utf8(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

/// The tables of transports, and the frames in both directions.
class TestSockJSConnector : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
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
    }

    void defaultProtocolsAreInTheOrderOfTheTable()
    {
        const Protocols expected{Protocol(1), Protocol(2), Protocol(4)};
        QCOMPARE(SockJSConnector::GetDefaultProtocols(), expected);
        QCOMPARE(SockJSConnector::PROTOCOL_TYPE_STR().keys(), expected);
    }

    void protocolsAreFoundByTheirNames_data()
    {
        columns<QStringList, Protocols, bool>();

        const Protocols all{Protocol(1), Protocol(2), Protocol(4)};
        QTest::newRow("an unknown one between two")
            << QStringList{"xhr-polling", "carrier-pigeon", "websocket"}
            << Protocols{Protocol(4), Protocol(1)} << false;
        QTest::newRow("all, backwards") << QStringList{"xhr-polling", "xhr-streaming", "websocket"}
                                        << Protocols{Protocol(4), Protocol(2), Protocol(1)} << false;
        QTest::newRow("duplicates") << QStringList{"websocket", "xhr-streaming", "websocket"}
                                    << Protocols{Protocol(1), Protocol(2), Protocol(1)} << false;
        QTest::newRow("empty list") << QStringList{} << all << true;
        QTest::newRow("wrong case") << QStringList{"WebSocket"} << all << true;
        QTest::newRow("blanks around") << QStringList{" websocket", "xhr-polling "} << all << true;
        QTest::newRow("empty name") << QStringList{""} << all << true;
        QTest::newRow("part of a name") << QStringList{"xhr", "socket"} << all << true;
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

    // What becomes of characters is in tst_SockJSFrame.
    void sendingWrapsTheMessageInAnIndentedArray()
    {
        QVERIFY(openSession());
        const auto frame = utf8("[\n    \"h\xc3\xa9 \\\"%1\\\" [y]\"\n]\n");

        m_connector->sendMessage(utf8("h\xc3\xa9 \"%1\" [ y ]"), false);
        m_connector->sendMessage(utf8("h\xc3\xa9 \"%1\" [ y ]"), true);

        QCOMPARE(m_server->nextFrame(), frame);
        QCOMPARE(m_server->nextFrame(), frame);
    }

    void sendingAMapSendsItsIndentedJson_data()
    {
        rows<QVariantMap, QString>({
            {"empty", {}, "[\n    \"{\\n}\\n\"\n]\n"},
            {"keys in alphabetical order",
             {{"b", "x"}, {"a", 1}, {"c", true}},
             "[\n    \"{\\n    \\\"a\\\": 1,\\n    \\\"b\\\": \\\"x\\\",\\n    \\\"c\\\": "
             "true\\n}\\n\"\n]\n"},
            {"the end of a list loses a blank",
             {{"list", QVariantList{1}}},
             "[\n    \"{\\n    \\\"list\\\": [\\n        1\\n   ]\\n}\\n\"\n]\n"},
        });
    }

    void sendingAMapSendsItsIndentedJson()
    {
        const auto [map, frame] = row<QVariantMap, QString>();
        QVERIFY(openSession());

        m_connector->sendMessage(map);

        QCOMPARE(m_server->nextFrame(), frame);
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

    // What the array of a message frame may look like is in tst_SockJSFrame.
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
    }

    void binaryMessagesAreNotFrames()
    {
        QVERIFY(openSession());

        m_server->injectBinary("a[\"x\"]");
        QVERIFY(syncInbound());

        QCOMPARE(m_probe->messages().size(), 1);
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
};

QTEST_GUILESS_MAIN(TestSockJSConnector)
#include "tst_SockJSConnector.moc"
