// JSON from outside that is broken, odd, or of another type than expected, at every level that is read: it
// ends in a message dropped or reduced, or in a plain error, and the next valid one is handled.

#include "support/ClientProbe.h"
#include "support/FakeService.h"
#include "support/HostileJson.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterClient>
#include <CalyxClient/SockJSConnector>

#include <QtTest>

using Answer = FakeService::Answer;
using HostileJson::Case;

namespace {

// A connector that is given frames, and the handler of its messages, as a channel connects them.
class Channel : public SockJSConnector
{
    Q_OBJECT

public:
    Channel()
    {
        connect(this, SIGNAL(sockJSMessage(QString)), &m_handler, SLOT(onHandleMessage(QString)));
        connect(this, &SockJSConnector::sockJSMessage, this, [this] { ++messages; });
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

    int messages = 0;
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
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isTaken");
    const QList<Case> values = HostileJson::values();
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
        QFETCH(QByteArray, text);
        QFETCH(bool, isTaken);
        Channel channel;
        channel.frame(text);
        QCOMPARE(channel.messages, 0); // begins with no "a"
        channel.frame("a[" + text + "]");
        QCOMPARE(channel.messages > 0, isTaken && !text.isEmpty());
        channel.frame("a[\"{}\"," + text + "]");
        QVERIFY(isTaken || channel.messages == 0);
        channel.frame('a' + text);
        channel.frame("a{\"a\":" + text + "}");
        QCOMPARE(channel.signalsHeard, 0);
        QVERIFY(channel.isAlive());
        QVERIFY(channel.isConnected());
    }

    void messages_data() { addCases(); }

    void messages()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, isTaken);
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
        QFETCH(QByteArray, text);
        PresenterClient client(nullptr, "http://127.0.0.1");
        for (const QByteArray& level : replyLevels) {
            const QByteArray body = at(level, text);
            giveToAllHandlers(&client, QString::fromUtf8(body.constData(), body.size()));
            QVERIFY2(understands(&client), level.constData());
        }
        forgetSession(&client);
    }

    void repliesOverTheNetwork_data() { addCases(); }

    void repliesOverTheNetwork()
    {
        QFETCH(QByteArray, text);
        FakeService service;
        ClientProbe client(service.url());
        for (const int status : {200, 500}) {
            service.expect("/tavisto/login/submit", Answer::json(text, status));
            QVERIFY(!client.doLogin("u", "p"));
            QVERIFY(client.lastError().isNull());
        }
        service.expect("/tavisto/login/submit", Answer::json(R"({"infoMsgKeys":["success"]})"));
        QVERIFY(client.doLogin("u", "p"));
    }
};

void tst_HostileJson::payloads()
{
    QFETCH(QByteArray, text);
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
