#include "support/ConnectorTest.h"
#include "support/Rows.h"

#include <QMetaMethod>
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

    void signalsAndSlotsAreDeclaredInOrder()
    {
        const auto& meta = SockJSConnector::staticMetaObject;
        QStringList signatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const auto method = meta.method(i);
            const auto access = method.access() == QMetaMethod::Protected ? "protected " : "public ";
            signatures.append(QLatin1String(access) + QLatin1String(method.methodSignature()));
        }
        QCOMPARE(signatures,
                 QStringList({"public connected()", "public sockJSMessage(QString)", "public error(int)",
                              "public closed(bool)", "protected onConnected()", "protected onClosed()",
                              "protected onTextMessageReceived(QString)", "protected onTimeout()",
                              "protected openstate1()", "protected openstate2()"}));
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

    void sendingWrapsTheMessageInAnIndentedArray_data()
    {
        rows<QString, QString>({
            {"plain", "hello", "[\n    \"hello\"\n]\n"},
            {"empty", "", "[\n    \"\"\n]\n"},
            {"double quote", "say \"hi\"", "[\n    \"say \\\"hi\\\"\"\n]\n"},
            {"backslash", "a\\b", "[\n    \"a\\\\b\"\n]\n"},
            {"slash", "a/b", "[\n    \"a/b\"\n]\n"},
            {"control characters", "a\nb\tc\rd\be\ff\x01g", "[\n    \"a\\nb\\tc\\rd\\be\\ff\\u0001g\"\n]\n"},
            {"outside ASCII", utf8("h\xc3\xa9 \xe4\xb8\xad \xf0\x9f\x98\x80"),
             utf8("[\n    \"h\xc3\xa9 \xe4\xb8\xad \xf0\x9f\x98\x80\"\n]\n")},
            {"NUL is escaped, not the end", QString(QStringLiteral("a") + QChar(0) + QStringLiteral("b")),
             "[\n    \"a\\u0000b\"\n]\n"},
            {"a blank inside brackets goes", "x [ y ] z", "[\n    \"x [y] z\"\n]\n"},
            {"one of two blanks goes", "[  x  ]", "[\n    \"[ x ]\"\n]\n"},
            {"brackets side by side", "[ [ ] ]", "[\n    \"[[]]\"\n]\n"},
            {"braces keep theirs", "{ \"a\": 1 }", "[\n    \"{ \\\"a\\\": 1 }\"\n]\n"},
            {"placeholders", "%0 %1", "[\n    \"%0 %1\"\n]\n"},
        });
    }

    void sendingWrapsTheMessageInAnIndentedArray()
    {
        const auto [message, frame] = row<QString, QString>();
        QVERIFY(openSession());

        m_connector->sendMessage(message, false);
        m_connector->sendMessage(message, true);

        QCOMPARE(m_server->nextFrame(), frame);
        QCOMPARE(m_server->nextFrame(), frame);
    }

    void sendingAMapSendsItsIndentedJson_data();

    void sendingAMapSendsItsIndentedJson()
    {
        QFETCH(QVariantMap, map);
        QFETCH(QString, frame);
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

    void inboundFrames_data();

    void inboundFrames()
    {
        QFETCH(QString, frame);
        QFETCH(QStringList, messages);
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

    void connectedIsEmittedOnceForSeveralOpenFrames()
    {
        m_server->setFirstFrames({"o", "o", "o"});
        QVERIFY(openSession());
        QVERIFY(syncInbound());

        QCOMPARE(m_probe->count(QStringLiteral("connected")), 1);
        QVERIFY(!m_probe->hasClosed());
    }

    void onConnectedOpensTheSessionByItself()
    {
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onConnected"));

        QCOMPARE(m_probe->events(), QStringList({"connected"}));
        QVERIFY(m_connector->isConnected());
        QCOMPARE(m_log->debug(QStringLiteral("[SockJSConnector] Websocket connected")).size(), 1);
    }

    void manyMessagesKeepTheirOrder()
    {
        QVERIFY(openSession());
        QStringList sent;
        for (int i = 0; i < 2000; ++i)
            sent.append(QString::number(i) + QString(i % 700, QChar(0xe9)));

        for (int i = 0; i < sent.size(); i += 4)
            m_server->injectMessages(sent.mid(i, 4));
        for (const auto& message : qAsConst(sent))
            m_connector->sendMessage(message, false);

        for (const auto& message : qAsConst(sent))
            QCOMPARE(m_server->nextMessage(), message);
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->messages().mid(0, sent.size()), sent);
    }
};

void TestSockJSConnector::sendingAMapSendsItsIndentedJson_data()
{
    QTest::addColumn<QVariantMap>("map");
    QTest::addColumn<QString>("frame");

    QTest::newRow("empty") << QVariantMap{} << "[\n    \"{\\n}\\n\"\n]\n";
    QTest::newRow("keys in alphabetical order") << QVariantMap{{"b", "x"}, {"a", 1}, {"c", true}} << R"([
    "{\n    \"a\": 1,\n    \"b\": \"x\",\n    \"c\": true\n}\n"
]
)";
    QTest::newRow("the end of a list loses a blank") << QVariantMap{{"list", QVariantList{1}}} << R"([
    "{\n    \"list\": [\n        1\n   ]\n}\n"
]
)";
}

void TestSockJSConnector::inboundFrames_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("one") << R"(a["x"])" << QStringList{"x"};
    QTest::newRow("two, in order") << R"(a["first","second"])" << QStringList{"first", "second"};
    QTest::newRow("the same twice") << R"(a["x","x"])" << QStringList{"x", "x"};
    QTest::newRow("decoded content") << R"(a["{\"type\":\"a\\\\b\"}\n"])"
                                     << QStringList{"{\"type\":\"a\\\\b\"}\n"};
    QTest::newRow("escaped characters")
        << R"(a["\u00e9\ud83d\ude00\/"])" << QStringList{utf8("\xc3\xa9\xf0\x9f\x98\x80/")};
    QTest::newRow("characters as they are") << utf8("a[\"\xc3\xa9\xe4\xb8\xad\xf0\x9f\x98\x80\"]")
                                            << QStringList{utf8("\xc3\xa9\xe4\xb8\xad\xf0\x9f\x98\x80")};
    QTest::newRow("NUL inside") << R"(a["x\u0000y"])"
                                << QStringList{QString(QStringLiteral("x") + QChar(0) + QStringLiteral("y"))};
    QTest::newRow("empty text") << R"(a[""])" << QStringList{""};
    QTest::newRow("white space") << "a [ \"x\" ,\n\"y\" ]\n" << QStringList{"x", "y"};
    QTest::newRow("no strings") << R"(a[1,2.5,true])" << QStringList{"1", "2.5", "true"};
    QTest::newRow("objects, lists and null as strings")
        << R"(a[{"x":1},[],null,"z"])" << QStringList{"", "", "", "z"};
    QTest::newRow("empty array") << "a[]" << QStringList{};
    QTest::newRow("nothing behind the a") << "a" << QStringList{};
    QTest::newRow("object") << R"(a{"x":"y"})" << QStringList{};
    QTest::newRow("a bare string") << R"(a"x")" << QStringList{};
    QTest::newRow("a bare number") << "a5" << QStringList{};
    QTest::newRow("unclosed array") << R"(a["x")" << QStringList{};
    QTest::newRow("unclosed string") << R"(a["x)" << QStringList{};
    QTest::newRow("something behind the array") << R"(a["x"]y)" << QStringList{};
    QTest::newRow("two arrays") << R"(a["x"]["y"])" << QStringList{};
    QTest::newRow("a missing comma") << R"(a["x" "y"])" << QStringList{};
    QTest::newRow("no JSON") << "abc" << QStringList{};
    QTest::newRow("nested too deeply")
        << QString(QLatin1Char('a') + QString(5000, QLatin1Char('[')) + QString(5000, QLatin1Char(']')))
        << QStringList{};
    QTest::newRow("upper case") << R"(A["x"])" << QStringList{};
    QTest::newRow("blank in front") << R"( a["x"])" << QStringList{};
    QTest::newRow("heartbeat") << "h" << QStringList{};
    QTest::newRow("close frame") << R"(c[3000,"Go away!"])" << QStringList{};
    QTest::newRow("open frame again") << "o" << QStringList{};
    QTest::newRow("single message frame") << R"(m"x")" << QStringList{};
    QTest::newRow("bare array") << R"(["x"])" << QStringList{};
    QTest::newRow("empty frame") << "" << QStringList{};
}

QTEST_GUILESS_MAIN(TestSockJSConnector)
#include "tst_SockJSConnector.moc"
