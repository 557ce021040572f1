// What each operation makes of the answers that it may get: what it returns, and what the client knows
// afterwards; and what it makes of those before it.

#include "support/ClientTest.h"
#include "support/Logins.h"
#include "support/Rows.h"

#include <CalyxClient/Learner>
#include <CalyxClient/PresenterClient>

#include <QRegularExpression>
#include <QTest>

#include <functional>

using namespace Logins;

namespace {

/// Everything that a client knows and a new one does not. What is empty is there, what is null is not.
QStringList stateOf(const PresenterClient& client)
{
    const QList<QPair<const char*, QString>> texts = {
        {"error", client.lastError()},           {"user", client.userId()},
        {"registration", client.registration()}, {"code", client.sessionCode()},
        {"token", client.sessionToken()},        {"member", client.userToken()},
        {"bus", client.collabServerUrl()},       {"resource", client.resourceId()},
        {"path", client.resourcePath()}};
    QStringList state;
    if (client.isLoggedIn())
        state.append("logged in");
    if (client.isServerReachable())
        state.append("reachable");
    for (const auto& each : texts) {
        if (!each.second.isNull())
            state.append(QString(each.first) + '=' + each.second);
    }
    for (const Calyx::Learner& learner : client.learners())
        state.append(QStringList{learner.deviceId, learner.userName, learner.deviceType}.join('/'));
    for (const QString& protocol : client.sockJSProtocols())
        state.append(protocol);
    return state;
}

/// What has come, then "no more " and what has gone.
QString change(const QStringList& before, const QStringList& after)
{
    QStringList changes;
    for (const QString& each : after) {
        if (!before.contains(each))
            changes.append(each);
    }
    for (const QString& each : before) {
        if (!after.contains(each))
            changes.append("no more " + each);
    }
    return changes.join("; ");
}

struct Operation
{
    const char* path;
    /// Gives what the operation returned.
    std::function<QVariant(PresenterClient&)> call;
};

QString oauth(PresenterClient& c)
{
    QString registration;
    const bool loggedIn = c.doLoginWithOAuth("google", "c", registration);
    return QVariant(loggedIn).toString() +
           (registration.isNull() ? QString() : " to be completed: " + registration);
}

QString oauthToken(PresenterClient& c)
{
    QString registration = "given";
    const QString token = getOAuthToken(c, &registration);
    return token + " to be completed: " + registration;
}

QString upload(PresenterClient& c)
{
    QString id = "untouched";
    QString path = "untouched";
    const bool done = c.doUploadResource("f.png", QByteArray("ABC"), &id, &path);
    return QVariant(done).toString() + ' ' + id + ' ' + path;
}

using Request = std::tuple<QByteArray, int, QByteArray>;

/// An operation of those below, the answer to its last request (null where it makes none), and what comes of
/// it.
struct Step
{
    QByteArray operation;
    QByteArray body;
    QString outcome;
    int status = 200;
    /// What has changed when the last request comes, where that counts.
    QString meanwhile = QString();
    /// Those before it, with the status and the body of their answers.
    QList<Request> first = {};
};
using Steps = QList<Step>;

const QMap<QByteArray, Operation> operations = {
    {"password", {SUBMIT, [](PresenterClient& c) { return loginByPassword(c); }}},
    {"device", {SUBMIT, [](PresenterClient& c) { return loginByDevice(c); }}},
    {"OAuth", {CALLBACK, oauth}},
    {"registration", {REGISTER, [](PresenterClient& c) { return registerWithOAuth(c); }}},
    {"token", {SUBMIT, [](PresenterClient& c) { return c.doGetAccessToken("u", "p", "d", "n"); }}},
    {"OAuth token", {CALLBACK, oauthToken}},
    {"name", {USER, [](PresenterClient& c) { return c.doGetUserName(); }}},
    {"logout", {LOGOUT, [](PresenterClient& c) { return c.doLogout(); }}},
    {"create", {"/tavisto/session/create", [](PresenterClient& c) { return c.doStartSession(QString()); }}},
    {"learners", {"/tavisto/session/getusers", [](PresenterClient& c) { return c.doGetLearners(); }}},
    {"stop", {Sessions::STOP, [](PresenterClient& c) { return c.doStopSession(); }}},
    {"upload", {"/tavisto/resource/uploadResourceFile", upload}},
    {"check", {"/tavisto", [](PresenterClient& c) { return c.checkServer(QString(), QString()); }}},
    {"keep-alive", {KEEP_ALIVE, [](PresenterClient& c) { return c.sendKeepAlive(), QVariant(); }}},
    // And what the client may have heard before.
    {"a session", {nullptr, [](PresenterClient& c) { return Sessions::openSession(c), QVariant(); }}},
    {"an error",
     {nullptr, [](PresenterClient& c) { return c.sessionFailureResponse(nullptr, REFUSED), QVariant(); }}},
};

void addRow(const QByteArray& operation, const QByteArray& body, const QString& outcome, int status = 200)
{
    QTest::addRow("%s, %d: %s", operation.constData(), status, body.constData())
        << operation << body << status << outcome;
}

} // namespace

Q_DECLARE_METATYPE(Steps)

class tst_PresenterClientAnswers : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void newClientKnowsNothing()
    {
        QCOMPARE(stateOf(client()), QStringList());
        QVERIFY(!client().collab());
    }

    void answer_data()
    {
        columns<QByteArray, QByteArray, int, QString>();
        infoMessages();
        refusals();
        registrations();
        tokens();
        names();
        goodbyes();
        sessions();
        listsOfLearners();
        uploads();
        checks();
    }
    void answer()
    {
        const auto [operation, body, status, outcome] = row<QByteArray, QByteArray, int, QString>();
        verify(operation, Answer::json(body, status), outcome);
    }

    // Whatever stands in an answer that is an error, cut short or missing, it is not taken.
    void failure_data()
    {
        rows<QByteArray, QByteArray, QString>({
            {"password", "password", SUCCESS, "false: user=u"},
            {"device", "device", SUCCESS, "false: user=u"},
            {"OAuth", "OAuth", SUCCESS, "false: "},
            {"registration", "registration", SUCCESS, "false: "},
            {"token", "token", R"({"data":{"deviceAccessToken":"T"}})", ": user=u"},
            {"OAuth token", "OAuth token", R"({"data":{"deviceAccessToken":"T"}})", " to be completed: : "},
            {"name", "name", R"({"data":{"userLoginId":"other"}})", ": "},
            {"create", "create", Sessions::CREATED, "false: logged in; user=u"},
            {"learners", "learners", R"({"data":{"users":[]}})", "true: "},
            {"stop", "stop", "{}", "true: no more code=123456; no more token=T"},
            {"upload", "upload", R"({"data":{"id":"r1","path":"/f"}})", "false untouched untouched: "},
            {"check", "check", "{}", "false: no more reachable"},
        });
    }
    void failure()
    {
        const auto [operation, body, outcome] = row<QByteArray, QByteArray, QString>();
        for (const Answer& answer : {Answer::json(body, 500), Answer::cut(body), Answer::gone()}) {
            begin();
            verify(operation, answer, outcome);
            if (QTest::currentTestFailed())
                return;
        }
    }

    void conversation_data()
    {
        const char user[] = R"({"data":{"userLoginId":"u"}})";
        const QByteArray nothing;
        const Step known{"password", SUCCESS, "true: logged in; user=u"};
        const Step unknown{"password", "{}", "false: user=u"};
        const Step session{"a session", nothing, ": code=123456; token=T"};
        const Step error{"an error", nothing, ": error=login.error"};
        const auto creation = [](const QList<Request>& first, const QByteArray& body,
                                 const QString& outcome) {
            return Step{"create", body, outcome, 200, {}, first};
        };
        const QString over = "no more code=123456; no more token=T";
        const QString forgotten = "logged in; user=u; no more error=login.error; " + over;
        rows<Steps>({
            // What counts is whether the client knows a provider and a code, not which login it was.
            {"registration is asked of a password after OAuth",
             {{"OAuth", "{}", "false: "},
              {"password", R"({"infoMsgKeys":["success.registration"],"data":{"a":1}})",
               R"(false: user=u; registration={"a":1})"}}},
            {"registration is completed in a second step",
             {{"OAuth", R"({"infoMsgKeys":["success.registration"],"data":{"mail":"m"}})",
               R"(false to be completed: {"mail":"m"}: registration={"mail":"m"})"},
              {"registration", SUCCESS, R"(true: logged in; no more registration={"mail":"m"})"}}},
            {"registration outlives a token request that fails",
             {{"OAuth token", R"({"data":{"mail":"m"}})",
               R"( to be completed: {"mail":"m"}: registration={"mail":"m"})"},
              {"OAuth token", "{}", R"( to be completed: {"mail":"m"}: )", 500}}},
            {"token outlives requests that fail",
             {{"token", R"({"data":{"deviceAccessToken":"T1"}})", "T1: logged in; user=u"},
              {"token", R"({"data":{"deviceAccessToken":"T2"}})", "T1: ", 500},
              {"OAuth token", "", "T1 to be completed: : ", 500}}},
            {"login and error outlive token requests",
             {known,
              error,
              {"token", REFUSED, ": ", 401},
              {"OAuth token", REFUSED, " to be completed: : ", 401}}},
            {"name outlives a request that fails", {known, {"name", R"({"data":{}})", "u: ", 500}}},
            {"logout of nobody", {{"logout", "{}", "true: ", 500}}},
            {"logout stops the session first",
             {session, {"logout", "{}", "true: " + over, 200, over, {{Sessions::STOP, 200, "{}"}}}}},
            {"logout with a code alone",
             {creation({{USER, 200, user}}, Sessions::CREATED, "true: logged in; user=u; code=123456"),
              {"logout", "{}", "true: no more logged in"}}},
            {"stop of what has been stopped",
             {session, {"stop", "{}", "true: " + over}, {"stop", nothing, "false: "}}},
            {"creation forgets what was before",
             {session, error, {"create", "{}", "false: " + forgotten, 500, forgotten, {{USER, 200, user}}}}},
            // A service that does not know us any more answers the question for the user with an error.
            {"creation logs in again",
             {unknown, creation({{USER, 401, "{}"}, {SUBMIT, 200, SUCCESS}}, Sessions::CREATED,
                                "true: logged in; code=123456")}},
            {"creation cannot log in again",
             {unknown, session,
              creation({{USER, 401, "{}"}, {SUBMIT, 401, REFUSED}}, nothing, "false: error=login.error")}},
            // Without a user id there is nobody to log in again.
            {"creation for nobody",
             {known, creation({{USER, 200, R"({"data":{}})"}}, nothing,
                              "false: no more logged in; no more user=u")}},
            {"upload forgets the one before",
             {{"upload", R"({"data":{"id":"r","path":"/r"}})",
               "true r /tavisto/resource/downloadResourceFile?resourceId=r: resource=r; path=/r"},
              {"upload", "", "false untouched untouched: no more resource=r; no more path=/r", 500,
               "no more resource=r; no more path=/r"}}},
            {"check forgets the error",
             {error,
              {"check", "{}", "true: reachable; no more error=login.error"},
              {"check", REFUSED, "false: no more reachable", 500}}},
        });
        // Neither the error nor the login of an earlier call outlives the start of the next.
        const QString anew = "no more logged in; no more error=login.error";
        for (const char* login : {"password", "device", "OAuth", "registration"})
            QTest::addRow("%s starts anew", login)
                << Steps{known, error, {login, "{}", "false: " + anew, 200, anew}};
    }
    void conversation()
    {
        const auto [steps] = row<Steps>();
        for (const Step& step : steps) {
            const QStringList before = stateOf(client());
            QString meanwhile;
            for (const auto& [path, status, body] : step.first)
                service().expect(path, Answer::json(body, status));
            const Operation operation = operations.value(step.operation);
            if (!step.body.isNull())
                service().expect(operation.path, Answer::json(step.body, step.status).then([&] {
                    meanwhile = change(before, stateOf(client()));
                }));
            const QString returned = operation.call(client()).toString();
            QCOMPARE(returned + ": " + change(before, stateOf(client())), step.outcome);
            QVERIFY2(service().isUsedUp(), step.operation.constData());
            QVERIFY2(step.meanwhile.isNull() || meanwhile == step.meanwhile, qPrintable(meanwhile));
        }
        if (!client().sessionToken().isNull())
            service().expect(Sessions::STOP, Answer::json("{}"));
    }

    void mostHandlersLeaveThingsAloneWithoutJson()
    {
        const QString known =
            R"({"data":{"deviceAccessToken":"A","userLoginId":"u","sessionCode":"1","users":[
            {"mode":"learner","userToken":"d"}],"url":"b","sockJSProtocols":["p"],"sessionToken":"T","userToken":"U",
            "id":"i","path":"p"},"errorMsgKeys":["a.error"]})";
        ClientProbe::giveToAllHandlers(client(), known);
        const QStringList before = stateOf(client());
        QCOMPARE(before.size(), 11);
        ClientProbe::giveToAllHandlers(client(), "{\"data\":");
        // A name and a registration are taken from whatever comes.
        QCOMPARE(change(before, stateOf(client())),
                 QStringLiteral("registration=; no more reachable; no more user=u"));
        ClientProbe::giveToAllHandlers(client(), "{}");
        const QStringList after = stateOf(client());
        QCOMPARE(after.filter(QRegularExpression("=.")), QStringList());
    }

private:
    static void infoMessages()
    {
        const auto row = [](const char* body, bool loggedIn) {
            addRow("password", body, loggedIn ? "true: logged in; user=u" : "false: user=u");
        };
        row(R"({"infoMsgKeys":["login.success"]})", true);
        row(R"({"infoMsgKeys":["unsuccessful"]})", true);
        row(R"({"infoMsgKeys":["login.Success"]})", false);
        row(R"({"infoMsgKeys":["login.refused","login.success"]})", false);
        row(R"({"infoMsgKeys":[]})", false);
        row(R"({"infoMsgKeys":"success"})", false);
        row(R"({"infoMsgs":["a success"]})", true);
        row(R"({"infoMsgs":["a success"],"infoMsgKeys":["login.refused"]})", true);
        row(R"({"infoMsgs":["refused"],"infoMsgKeys":["login.success"]})", false);
        row(R"({"infoMsgs":["refused","success"]})", false);
        row(R"({"infoMsgs":[],"infoMsgKeys":["login.success"]})", false);
        row(R"({"infoMsgs":"refused","infoMsgKeys":["login.success"]})", true);
        row(R"({"infoMsgs":{"a":"b"},"infoMsgKeys":["login.success"]})", true);
        row(R"({"infoMsgs":null,"infoMsgKeys":["login.success"]})", true);
        row(R"({"success":true})", false);
        // A login by password asks for no registration.
        row(R"({"infoMsgKeys":["success.registration"],"data":{}})", true);
        row("[\"success\"]", false);
        row("success", false);
        row("", false);
        addRow("device", SUCCESS, "true: logged in; user=u");
        addRow("registration", SUCCESS, "true: logged in");
    }

    static void refusals()
    {
        const char first[] = R"({"errorMsgKeys":["login.error.password","b.error"]})";
        const QString error = "false: error=login.error.password";
        addRow("password", first, error + "; user=u", 401);
        addRow("device", first, error + "; user=u", 401);
        addRow("OAuth", first, error, 401);
        addRow("registration", first, error, 401);
        for (const char* body : {R"({"errorMsgKeys":["login.refused","b.error"]})",
                                 R"({"infoMsgKeys":["login.success"]})", "<html>error</html>", ""})
            addRow("password", body, "false: user=u", 401);
    }

    // Cut out of the text of the reply, whatever stands there.
    static void registrations()
    {
        const auto asked = [](const char* body, const QString& registration) {
            addRow("OAuth", body,
                   "false to be completed: " + registration + ": registration=" + registration);
        };
        asked(R"({"infoMsgKeys":["success.registration"],"data":{"email":"zoë@x"}})",
              QString::fromUtf8(R"({"email":"zoë@x"})"));
        asked(R"({"data":{"a":1},"infoMsgKeys":["success.registration"]})",
              R"({"a":1},"infoMsgKeys":["success.registration"])");
        asked("{\"infoMsgKeys\":[\"success.registration\"],\"data\":{\"a\":1}}\n", "{\"a\":1}}");
        asked(R"({"infoMsgKeys":["success.registration"],"data": {}})", " {}");
        asked(R"({"infoMsgKeys":["success.registration"]})", R"(MsgKeys":["success.registration"])");
        asked(R"({"data" :{},"infoMsgKeys":["success.registration"]})",
              R"(" :{},"infoMsgKeys":["success.registration"])");
        for (const char* body : {R"({"infoMsgKeys":["success"],"data":{"a":1}})",
                                 R"({"infoMsgs":["success.registration"],"data":{"a":1}})",
                                 R"({"infoMsgKeys":["success","registration"],"data":{"a":1}})"})
            addRow("OAuth", body, "true: logged in");
        for (const char* body : {R"({"infoMsgKeys":["registration"],"data":{"a":1}})",
                                 R"(success.registration "data":{"a":1}})"})
            addRow("OAuth", body, "false: ");
    }

    static void tokens()
    {
        const auto row = [](const char* body, const QString& got, const char* registration) {
            const QString loggedIn = got.isEmpty() ? QString() : QStringLiteral("logged in");
            const QString completed = QString::fromUtf8(registration);
            const auto known = [&](const char* user) {
                QStringList state{loggedIn, user, registration ? "registration=" + completed : QString()};
                state.removeAll(QString());
                return ": " + state.join("; ");
            };
            addRow("token", body, got + known("user=u"));
            addRow("OAuth token", body, got + " to be completed: " + completed + known(""));
        };
        row(R"({"data":{"deviceAccessToken":"T1"}})", "T1", nullptr);
        row(R"({"data":{"deviceAccessToken":7}})", "7", nullptr);
        row(R"({"data":{"deviceAccessToken":""}})", "", R"({"deviceAccessToken":""})");
        row(R"({"success":false,"data":{"mail":"zoë"}})", "", R"({"mail":"zoë"})");
        row(R"({"success":false})", "", "ess\":false");
        row("<html></html>", "", "</html");
        row("{}", "", nullptr);
        row("", "", nullptr);
        row(R"("data":{"a":1})", "", nullptr); // data at the very beginning, which is not taken
    }

    static void names()
    {
        addRow("name", R"({"data":{"userLoginId":"zoë"}})", QString::fromUtf8("zoë: logged in; user=zoë"));
        addRow("name", R"({"data":{"userLoginId":""}})", ": user=");
        for (const char* body : {R"({"data":{}})", "{}", R"({"data":"userLoginId"})", "userLoginId"})
            addRow("name", body, ": ");
    }

    static void goodbyes()
    {
        addRow("logout", "{}", "true: no more logged in");
        addRow("logout", REFUSED, "true: no more logged in");
        addRow("logout", "bye", "false: ");
        addRow("logout", "", "false: ");
        addRow("logout", "{}", "false: ", 500);
        addRow("stop", "bye", "true: no more code=123456; no more token=T");
        addRow("stop", R"({"errorMsgKeys":["a.error"]})", "true: no more code=123456; no more token=T", 500);
    }

    static void sessions()
    {
        const auto row = [](const char* body, const QString& outcome, int status = 200) {
            addRow("create", body, outcome, status);
        };
        row(R"({"data":{"sessionCode":"012345"}})", "true: logged in; user=u; code=012345");
        row(R"({"data":{"sessionCode":123456}})", "true: logged in; user=u; code=123456");
        row(R"({"data":{"sessionCode":""}})", "true: logged in; user=u; code=");
        row(R"({"errorMsgKeys":["a.error"],"data":{"sessionCode":"1"}})", "true: logged in; user=u; code=1");
        for (const char* body :
             {R"({"data":{}})", R"({"success":true})", R"({"data":"sessionCode"})", "<html>"})
            row(body, "false: logged in; user=u");
        row(R"({"errorMsgKeys":["session.error","b.error"]})",
            "false: logged in; error=session.error; user=u", 500);
        for (const char* body :
             {R"({"errorMsgKeys":["session.refused","b.error"]})", Sessions::CREATED, "error"})
            row(body, "false: logged in; user=u", 500);
    }

    static void listsOfLearners()
    {
        const auto row = [](const char* users, const char* outcome) {
            const QByteArray body = QByteArray(R"({"data":{"users":)") + users + "}}";
            addRow("learners", body, QString::fromUtf8(outcome));
        };
        row("[]", "true: no more old//");
        row(R"([{"userToken":"d1","userName":"Zoë","deviceType":"tablet","mode":"learner"}])",
            "true: d1/Zoë/tablet; no more old//");
        row(R"([{"userToken":"d2","mode":"learner"},{"userToken":"d1","mode":"learner"},)"
            R"({"userToken":"d2","mode":"learner"}])",
            "true: d2//; d1//; d2//; no more old//");
        row(R"([{"userToken":"p","mode":"presenter"},{"userToken":"c","mode":"Learner"},{"userToken":"n"},)"
            R"({"userToken":"b","mode":"learner "},{"userToken":"z","mode":null},{"userToken":"d","mode":"learner"}])",
            "true: d//; no more old//");
        row(R"([{"mode":"learner"}])", "true: //; no more old//");
        row(R"(["learner",1,null,[],{"mode":"learner","userToken":"d"}])", "true: d//; no more old//");
        row(R"([{"mode":"learner","userToken":1,"userName":2,"deviceType":3}])",
            "true: 1/2/3; no more old//");
        for (const char* noList : {R"("none")", R"({"mode":"learner"})", "null"})
            row(noList, "true: ");
        for (const char* body : {R"({"data":{}})", "{}", R"({"data":{"users":[)", ""})
            addRow("learners", body, "true: ");
        addRow("learners", R"({"errorMsgKeys":["a.error"],"data":{"users":[]}})", "true: ", 500);
    }

    static void uploads()
    {
        const QString path = "/tavisto/resource/downloadResourceFile?resourceId=";
        const auto row = [&path](const char* body, const char* id, const char* resourcePath) {
            const QString text = QString::fromUtf8(id);
            QString outcome = "true " + text + ' ' + path + text + ": resource=" + text;
            if (resourcePath)
                outcome += QStringLiteral("; path=") + resourcePath;
            addRow("upload", body, outcome);
        };
        row(R"({"data":{"id":"r1","path":"/files/r1"}})", "r1", "/files/r1");
        row(R"({"data":{"id":"r1"}})", "r1", nullptr);
        row(R"({"data":{"id":17}})", "17", nullptr);
        row(R"({"data":{"id":"a b/é%1"}})", "a b/é%1", nullptr);
        row(R"({"data":{"id":""}})", "", nullptr);
        row(R"({"data":{"path":"/p"}})", "", "/p");
        for (const char* body : {R"({"success":true})", "[]", R"({"errorMsgKeys":["a.error"]})"})
            row(body, "", nullptr);
        for (const char* body : {"<html></html>", ""})
            addRow("upload", body, "false untouched untouched: ");
        addRow("upload", R"({"errorMsgKeys":["upload.error"]})", "false untouched untouched: ", 500);
    }

    static void checks()
    {
        const auto row = [](const char* body, bool isThere) {
            addRow("check", body, isThere ? "true: " : "false: no more reachable");
            addRow("keep-alive", body, isThere ? ": " : ": no more reachable");
        };
        for (const char* body :
             {"{}", "[]", " [ ] ", R"({"success":false,"errorMsgKeys":["a.error"]})", R"({"success":false})"})
            row(body, true);
        for (const char* body : {"<html></html>", "", " ", "{\"a\":", "{} x", "1"})
            row(body, false);
        addRow("check", "{}", "false: no more reachable", 404);
        addRow("check", R"({"errorMsgKeys":["b.error"]})", "false: no more reachable", 500);
        addRow("keep-alive", "{}", ": ", 500); // as it was
    }

    void verify(const QByteArray& name, const Answer& answer, const QString& outcome)
    {
        const Operation operation = operations.value(name);
        prepare(operation.path);
        service().expect(operation.path, answer);
        const QStringList before = stateOf(client());
        const QString returned = operation.call(client()).toString();
        QCOMPARE(returned + ": " + change(before, stateOf(client())), outcome);
        if (!client().sessionToken().isNull() && service().isListening())
            service().expect(Sessions::STOP, Answer::json("{}"));
    }

    // Brings the client to where the operation of this path makes sense.
    void prepare(const QByteArray& path)
    {
        if (path == LOGOUT || path == KEEP_ALIVE)
            client().loginSuccessResponse(QString::fromLatin1(SUCCESS));
        if (path == KEEP_ALIVE || path == "/tavisto")
            client().serverCheckResponse("{}");
        if (path == "/tavisto/session/create")
            service().expect(USER, Answer::json(R"({"data":{"userLoginId":"u"}})"));
        if (path.endsWith("/getusers") || path == Sessions::STOP)
            Sessions::openSession(client());
        if (path.endsWith("/getusers"))
            client().getLearnersResponse(R"({"data":{"users":[{"mode":"learner","userToken":"old"}]}})");
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientAnswers)
#include "tst_PresenterClientAnswers.moc"
