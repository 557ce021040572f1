// JSON from outside that is broken, odd, or of another type than expected, at every level that is read: it
// ends in a message dropped or reduced, or in a plain error, and the next valid one is handled.

#include "base/JsonReader.h"
#include "support/Rows.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterClient>
#include <CalyxClient/SockJSConnector>

#include <QtTest>

namespace {

// JSON as it must not be, may be, or is read differently by every parser: the classes of cases by which JSON
// parsers are usually tried. Values that are not taken break the document around them.
struct Case
{
    const char* name;
    QByteArray text;
    // Whether QJsonDocument takes a list that holds it, as [text].
    bool isTaken;
};

QByteArray nested(const char* open, int depth, const char* close)
{
    return QByteArray(open).repeated(depth) + "1" + QByteArray(close).repeated(depth);
}

QList<Case> otherTypes()
{
    return {{"null", "null", true},
            {"true", "true", true},
            {"false", "false", true},
            {"number", "5", true},
            {"empty text", "\"\"", true},
            {"text", "\"text\"", true},
            {"empty list", "[]", true},
            {"list of everything", "[null,true,1,\"x\",[],{}]", true},
            {"empty object", "{}", true},
            {"object", "{\"type\":{\"type\":[]},\"data\":{},\"users\":{\"0\":1}}", true},
            {"object with numbers as names", "{\"0\":\"a\",\"1\":\"b\",\"length\":2}", true}};
}

QList<Case> numbers()
{
    return {{"minus zero", "-0", true},
            {"fraction", "1.5", true},
            {"capital exponent", "1E+2", true},
            {"beyond int", "2147483648", true},
            {"below int", "-2147483649", true},
            {"beyond 2^53", "9007199254740993", true},
            {"beyond 64 bits", "18446744073709551616", true},
            {"below 64 bits", "-9223372036854775809", true},
            {"largest double", "1.7976931348623157e308", true},
            {"smallest double", "5e-324", true},
            {"underflow", "1e-400", false},
            {"hundred digits", QByteArray(100, '9'), true},
            {"ten thousand digits", "0." + QByteArray(10000, '1'), true},
            {"overflow", "1e400", false},
            {"negative overflow", "-1e400", false},
            {"huge exponent", "1e99999999999999999999", false},
            {"leading zero", "012", false},
            {"minus alone", "-", false},
            {"plus", "+1", false},
            {"no integer part", ".5", true},
            {"no fraction", "1.", true},
            {"no exponent", "1e", false},
            {"hexadecimal", "0x10", false},
            {"NaN", "NaN", false},
            {"Infinity", "Infinity", false},
            {"minus Infinity", "-Infinity", false},
            {"two minus", "--1", false},
            {"blank inside", "1 000", false},
            {"full-width digit", "\xef\xbc\x91", false}};
}

QList<Case> texts()
{
    return {{"escaped NUL", "\"a\\u0000b\"", true},
            {"all escapes", R"("\"\\\/\b\f\n\r\t\u00e9")", true},
            {"surrogate pair", R"("\ud83d\ude00")", true},
            {"lone high surrogate", R"("\ud800")", true},
            {"lone low surrogate", R"("\udc00")", true},
            {"surrogates the wrong way round", R"("\udc00\ud800")", true},
            {"high surrogate and text", R"("\ud800x")", true},
            {"noncharacter", R"("\uffff")", true},
            {"byte order mark inside", "\"\\ufeff\"", true},
            {"text direction", "\"\\u202e\"", true},
            {"line separator", "\"\xe2\x80\xa8\"", true},
            {"delete", "\"\x7f\"", true},
            {"markup", R"("<script>alert(1)</script>")", true},
            {"long", '"' + QByteArray(100000, 'x') + '"', true},
            {"no end", "\"text", false},
            {"end escaped", "\"text\\\"", false},
            {"single quotes", "'text'", false},
            {"no quotes", "text", false},
            {"short code", R"("\u00a")", false},
            {"no code", R"("\u")", false},
            {"code that is no number", R"("\u00zz")", false}};
}

QList<Case> structures()
{
    return {{"repeated name", R"({"type":"join","type":"pause"})", true},
            {"repeated object", R"({"a":{"x":1},"a":{"y":[2]},"a":3})", true},
            {"empty name", R"({"":1,"":{}})", true},
            {"name of a lone surrogate", R"({"\ud800":1})", true},
            {"name with NUL", R"({"type\u0000":"join"})", true},
            {"property of every object", R"({"__proto__":{"type":"join"},"constructor":1})", true},
            {"lists within lists", nested("[", 500, "]"), true},
            {"objects within objects", nested("{\"a\":", 500, "}"), true},
            {"deeper than is read", nested("[", 1100, "]"), false},
            {"objects deeper than is read", nested("{\"a\":", 1100, "}"), false},
            {"opened 100000 times", QByteArray(100000, '['), false},
            {"objects opened 100000 times", QByteArray("{\"a\":").repeated(100000), false},
            {"many elements", '[' + QByteArray("0,").repeated(10000) + "0]", true},
            {"comma at the end", "[1,]", false},
            {"comma in front", "[,1]", false},
            {"two commas", "[1,,2]", false},
            {"comma at an object's end", "{\"a\":1,}", false},
            {"no comma", "[1 2]", false},
            {"no colon", "{\"a\" 1}", false},
            {"two colons", "{\"a\"::1}", false},
            {"no value", "{\"a\":}", false},
            {"no name", "{:1}", false},
            {"number as a name", "{1:1}", false},
            {"name without quotes", "{a:1}", false},
            {"colon in a list", "[\"a\":1]", false},
            {"wrong bracket", "[1}", false},
            {"wrong brace", "{\"a\":1]", false},
            {"closed twice", "[]]", false},
            {"not closed", "[1", false},
            {"object not closed", "{\"a\":1", false},
            {"nothing", "", true},
            {"blanks", " \t\r\n1 \t\r\n", true},
            {"form feed", "\f1", false},
            {"no-break space",
             "\xc2\xa0"
             "1",
             false},
            {"comment", "/* */1", false},
            {"line comment", "1//", false},
            {"capitals", "TRUE", false},
            {"word cut off", "nul", false},
            {"word and more", "nullx", false},
            {"NUL", QByteArray("1\0", 2), false}};
}

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

// A level: the text around a value. "%" stands for the value.
using Levels = QList<QByteArray>;

QByteArray at(const QByteArray& level, const QByteArray& value)
{
    return QByteArray(level).replace('%', value);
}

const Levels messageLevels = {"%",
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
const Levels payloadLevels = {"%",
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

const Levels replyLevels = {
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
    const QList<Case> values = otherTypes() + numbers() + texts() + structures();
    for (const Case& value : values)
        QTest::newRow(value.name) << value.text << value.isTaken;
}

const QList<PresenterClient::SuccessHandler> successHandlers = {
    &PresenterClient::serverCheckResponse,
    &PresenterClient::loginSuccessResponse,
    &PresenterClient::getDeviceAccessTokenResponse,
    &PresenterClient::userNameResponse,
    &PresenterClient::logoutResponse,
    &PresenterClient::sessionSuccessResponse,
    &PresenterClient::getLearnersResponse,
    &PresenterClient::getCollabUrlResponse,
    &PresenterClient::getTenantFeatureDetailsResponse,
    &PresenterClient::sessionStartSuccessResponse,
    &PresenterClient::sessionJoinResponse,
    &PresenterClient::uploadResourceResponse};

void giveToAllHandlers(PresenterClient* client, const QString& body)
{
    for (const PresenterClient::SuccessHandler handler : successHandlers)
        (client->*handler)(body);
    client->loginFailureResponse(nullptr, body);
    client->sessionFailureResponse(nullptr, body);
    client->sessionStartFailureResponse(nullptr, body);
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
            giveToAllHandlers(&client, QString::fromUtf8(body.constData(), body.size()));
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
