// JSON from outside that is broken, odd, or of another type than expected, at every level that is read: it
// ends in a message dropped or reduced, or in a plain error, and the next valid one is handled.

#include "base/JsonReader.h"
#include "support/ClientProbe.h"
#include "support/Rows.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterClient>
#include <CalyxClient/SockJSConnector>

#include <QtTest>

namespace {

// JSON as it must not be, may be, or is read differently by every parser: the classes of cases by which JSON
// parsers are usually tried.
using Texts = QList<QByteArray>;

QByteArray nested(const char* open, int depth, const char* close)
{
    return QByteArray(open).repeated(depth) + "1" + QByteArray(close).repeated(depth);
}

// QJsonDocument takes a list that holds one of these, as [text]. They are divided by blanks: values of all
// types, where another is expected; numbers beyond int, 2^53 and 64 bits, the largest double, the smallest;
// surrogates in pairs, alone and the wrong way round, a noncharacter, a byte order mark, a text direction, a
// line separator, a delete; names that are repeated, empty, or those of every object.
const char taken[] = R"(
    null true false 5 "" "text" [] [null,true,1,"x",[],{}] {} {"type":{"type":[]},"data":{},"users":{"0":1}}
    {"0":"a","1":"b","length":2} -0 1.5 1E+2 .5 1. 2147483648 -2147483649 9007199254740993
    18446744073709551616 -9223372036854775809 1.7976931348623157e308 5e-324
    "a\u0000b" "\ud83d\ude00" "\ud800" "\udc00" "\udc00\ud800" "\ud800x" "\uffff" "\ufeff" "\u202e"
    "<script>alert(1)</script>" {"type":"join","type":"pause"} {"a":{"x":1},"a":{"y":[2]},"a":3} {"":1,"":{}}
    {"\ud800":1} {"type\u0000":"join"} {"__proto__":{"type":"join"},"constructor":1}
)";

// These break the document around them: numbers under- and overflow, or are none; a text has no end, no
// quotes, or not all of a code; commas, colons, names and brackets stand where they must not.
const char broken[] = R"(
    1e-400 1e400 -1e400 1e99999999999999999999 012 - +1 1e 0x10 NaN Infinity -Infinity --1
    "text 'text' text "\u00a" "\u" "\u00zz" [1,] [,1] [1,,2] {"a":1,} {"a"::1} {"a":} {:1} {1:1} {a:1} ["a":1]
    [1} {"a":1] []] [1 {"a":1 TRUE nul nullx
)";

const Texts takenAsWell = {"\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u00e9\"",
                           "\"\xe2\x80\xa8\"",
                           "\"\x7f\"",
                           '"' + QByteArray(100000, 'x') + '"',
                           QByteArray(100, '9'),
                           "0." + QByteArray(10000, '1'),
                           nested("[", 500, "]"),
                           nested("{\"a\":", 500, "}"),
                           '[' + QByteArray("0,").repeated(10000) + "0]",
                           "",
                           " \t\r\n1 \t\r\n"};

// Deeper than is read; with blanks, and such as are none; with comments.
const Texts brokenAsWell = {nested("[", 1100, "]"),
                            nested("{\"a\":", 1100, "}"),
                            QByteArray(100000, '['),
                            QByteArray("{\"a\":").repeated(100000),
                            "1 000",
                            "\xef\xbc\x91",
                            "\"text\\\"",
                            "[1 2]",
                            "{\"a\" 1}",
                            "\f1",
                            "\xc2\xa0" + QByteArray("1"),
                            "/* */1",
                            "1//",
                            QByteArray("1\0", 2)};

// A connector that is given frames, and the handler of its messages, as a channel connects them.
class Channel : public SockJSConnector
{
    Q_OBJECT

public:
    Channel()
    {
        connect(this, SIGNAL(sockJSMessage(QString)), &m_handler, SLOT(onHandleMessage(QString)));
        connect(this, &SockJSConnector::sockJSMessage, this,
                [this](const QString& text) { messages.append(text); });
        using Handler = CollaborationMessageHandler;
        connect(&m_handler, &Handler::learnerPollResponse, this, [this] { ++signalsHeard; });
        connect(&m_handler, &Handler::learnerUnregister, this, [this] { ++signalsHeard; });
        connect(&m_handler, &Handler::controllerRegister, this, [this] { ++signalsHeard; });
        connect(&m_handler, &Handler::remoteControl, this, [this] { ++signalsHeard; });
        connect(&m_handler, &Handler::unhandledMessage, this, [this] { ++signalsHeard; });
        connect(&m_handler, &Handler::learnerGetQuestion, this, [this] { ++signalsHeard; });
        connect(&m_handler, &Handler::learnerJoin, this, [this](const Handler::Learner& learner) {
            ++signalsHeard;
            lastJoin = learner.deviceId;
        });
        onTextMessageReceived("o");
    }

    void frame(const QByteArray& bytes)
    {
        onTextMessageReceived(QString::fromUtf8(bytes.constData(), bytes.size()));
    }
    // As servers put a message into a frame: a text in a list.
    void message(const QByteArray& bytes)
    {
        const QString text = QString::fromUtf8(bytes.constData(), bytes.size());
        frame('a' + QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact));
    }
    // Whether a valid message still gives its signal.
    bool isAlive()
    {
        lastJoin.clear();
        const int before = signalsHeard;
        message(R"({"body":{"type":"join","from":"next"}})");
        return lastJoin == QLatin1String("next") && signalsHeard == before + 1;
    }

    QStringList messages;
    int signalsHeard = 0;
    QString lastJoin;

private:
    CollaborationMessageHandler m_handler;
};

// Levels: the text around a value. "%" stands for the value.

QByteArray at(const QByteArray& level, const QByteArray& value)
{
    return QByteArray(level).replace('%', value);
}

const Texts messageLevels = {"%",
                             "[%]",
                             R"({"body":%})",
                             R"({"body":[%]})",
                             R"({"type":%,"address":%,"body":{"type":"pause"}})",
                             R"({"body":{"action":%}})",
                             R"({"body":{"action":"unregister","client":%}})",
                             R"({"body":{"action":"unregister","client":{"type":%,"token":%}}})",
                             R"({"body":{"action":"unregister","client":{"type":"user","token":%}}})",
                             R"({"body":{"type":%}})",
                             R"({"body":{"type":"join","from":%}})",
                             R"({"body":{"type":"other","data":%}})",
                             R"({"body":{"type":"join","data":[%]}})",
                             R"({"body":{"type":"other","data":["x",%]}})",
                             R"({"body":{"type":"pause","data":[93,%,0,0,0,0,0,0,0,0,0,0,0,0,0,0]}})"};

// What is compressed in "data".
const Texts payloadLevels = {"%",
                             "[%]",
                             R"({"pollId":%,"responseTime":%,"blob":{"pick":["A"]}})",
                             R"({"blob":%})",
                             R"({"blob":{"pick":%}})",
                             R"({"blob":{"pick":[%,%]}})",
                             R"({"blob":{"input":%}})",
                             R"({"questionId":%,"answer":%,"optionAnswers":%})",
                             R"({"optionAnswers":[%,{"activityOptionId":%}]})",
                             R"({"questionNumber":%})",
                             R"({"userName":%,"deviceType":%})"};

const Texts replyLevels = {
    "%",
    "[%]",
    R"({"data":%})",
    R"({"data":[%]})",
    R"({"success":%,"data":{}})",
    R"({"data":{"users":%}})",
    R"({"data":{"users":[%]}})",
    R"({"data":{"users":[{"mode":%}]}})",
    R"({"data":{"users":[{"mode":"learner","userToken":%,"userName":%,"deviceType":%}]}})",
    R"({"data":{"sockJSProtocols":%}})",
    R"({"data":{"sockJSProtocols":[%]}})",
    R"({"data":{"url":%,"sessionCode":%,"sessionToken":%,"userToken":%,"id":%,"path":%}})",
    R"({"data":{"userLoginId":%,"deviceAccessToken":%}})",
    R"({"errorMsgKeys":%})",
    R"({"errorMsgKeys":[%,"error"]})",
    R"({"infoMsgs":%})",
    R"({"infoMsgs":[%]})",
    R"({"infoMsgKeys":%})",
    R"({"infoMsgKeys":[%]})"};

QString base64(const QByteArray& text)
{
    QString carrier;
    return Lzma::compress64(QString::fromUtf8(text.constData(), text.size()), &carrier) ? carrier : QString();
}

void addCases()
{
    columns<QByteArray, bool>();
    for (const bool isTaken : {true, false}) {
        const QByteArray words = isTaken ? taken : broken;
        for (const QByteArray& text : words.simplified().split(' ') + (isTaken ? takenAsWell : brokenAsWell))
            QTest::addRow("%s, %d bytes", text.left(60).simplified().constData(), int(text.size()))
                << text << isTaken;
    }
}

// Whether valid replies are still understood.
bool understands(PresenterClient* client)
{
    client->getLearnersResponse(R"({"data":{"users":[{"mode":"learner","userToken":"next"}]}})");
    client->userNameResponse(R"({"data":{"userLoginId":"teacher"}})");
    client->loginFailureResponse(nullptr, R"({"errorMsgKeys":["error.next"]})");
    return client->learners().size() == 1 && client->learners().first().deviceId == QLatin1String("next") &&
           client->isLoggedIn() && client->lastError() == QLatin1String("error.next");
}

// Nothing is open at the end that the client would have to stop at a service.
void forgetSession(PresenterClient* client)
{
    client->sessionStartSuccessResponse("{}");
    client->sessionSuccessResponse("{}");
}

} // namespace

class tst_HostileJson : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules("default.debug=false"); }

    void frames_data() { addCases(); }
    void frames()
    {
        const auto [text, isTaken] = row<QByteArray, bool>();
        Channel channel;
        channel.frame(text);
        QCOMPARE(channel.messages, QStringList()); // begins with no "a"
        for (const QByteArray& array :
             {"[" + text + "]", "[\"{}\"," + text + "]", text + "", "{\"a\":" + text + "}",
              " [ \"x\" , " + text + " ] ", "[" + text + ",\"\",\"x\""}) {
            QStringList expected;
            // Not Qt's own reader, which leaks what a repeated member replaces.
            const QVariantList list = JsonReader::read(QString::fromUtf8(array)).toVariant().toList();
            for (const QVariant& element : list)
                expected.append(element.toString());
            QVERIFY(isTaken || expected.isEmpty());
            channel.messages.clear();
            channel.frame('a' + array);
            QVERIFY2(channel.messages == expected, array.left(100).constData());
        }
        QCOMPARE(channel.signalsHeard, 0);
        QVERIFY(channel.isAlive());
        QVERIFY(channel.isConnected());
    }

    void messages_data() { addCases(); }
    void messages()
    {
        const auto [text, isTaken] = row<QByteArray, bool>();
        Channel channel;
        for (const QByteArray& level : messageLevels) {
            const int before = channel.signalsHeard;
            channel.message(at(level, text));
            const int heard = channel.signalsHeard - before;
            QVERIFY2(heard <= (isTaken ? 1 : 0), level.constData());
            QVERIFY2(channel.isAlive(), level.constData());
        }
    }

    void payloads_data() { addCases(); }
    void payloads();

    void replies_data() { addCases(); }
    void replies()
    {
        const auto [text, isTaken] = row<QByteArray, bool>();
        PresenterClient client(nullptr, "http://127.0.0.1");
        for (const QByteArray& level : replyLevels) {
            const QByteArray body = at(level, text);
            ClientProbe::giveToAllHandlers(client, QString::fromUtf8(body.constData(), body.size()));
            QVERIFY2(understands(&client), level.constData());
        }
        forgetSession(&client);
    }
};

void tst_HostileJson::payloads()
{
    const QByteArray text = std::get<0>(row<QByteArray, bool>());
    Channel channel;
    for (const QByteArray& level : payloadLevels) {
        const QByteArray data = base64(at(level, text)).toLatin1();
        QVERIFY(!data.isEmpty());
        for (const char* type :
             {"join", "pollResponse", "questionResponse", "questionGet", "addImageCard", "other"}) {
            // Its "data" reads as empty, but the message itself is good.
            const int before = channel.signalsHeard;
            const QByteArray start = QByteArray(R"({"body":{"type":")") + type + R"(","from":"d","data":)";
            channel.message(start + '"' + data + "\"}}");
            channel.message(start + "[\"" + data + "\"]}}");
            QVERIFY2(channel.signalsHeard == before + 2, level.constData());
        }
        QVERIFY2(channel.isAlive(), level.constData());
    }
}

QTEST_GUILESS_MAIN(tst_HostileJson)
#include "tst_HostileJson.moc"
