// Creating a classroom session, and who is in it.

#include "support/ClientTest.h"
#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/Sessions.h"

#include <CalyxClient/Learner>
#include <CalyxClient/PresenterClient>

#include <QTest>

using namespace Sessions;

namespace {

const char USER[] = "/tavisto/login/user";
const char SUBMIT[] = "/tavisto/login/submit";
const char CREATE[] = "/tavisto/session/create";
const char USERS[] = "/tavisto/session/getusers";

const char LOGGED_IN[] = R"({"data":{"userLoginId":"u"}})";

/// The learners as "deviceId userName deviceType".
QStringList texts(const QList<Calyx::Learner>& learners)
{
    QStringList texts;
    for (const Calyx::Learner& learner : learners)
        texts.append(learner.deviceId + ' ' + learner.userName + ' ' + learner.deviceType);
    return texts;
}

} // namespace

class tst_PresenterClientSession : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void asksWhoIsLoggedInAndCreates()
    {
        service().expect(USER, Answer::json(LOGGED_IN));
        service().expect(CREATE, Answer::json(CREATED));

        QVERIFY(client().doStartSession("not used"));
        QCOMPARE(client().sessionCode(), QStringLiteral("123456"));
        QVERIFY(client().sessionToken().isNull());
        QVERIFY(client().isLoggedIn());
        for (const FakeService::Request& request : service().requests()) {
            QCOMPARE(request.method, QByteArray("POST"));
            QCOMPARE(request.header("content-type"), QByteArray("application/json; charset=UTF-8"));
            QCOMPARE(request.body, QByteArray("{}"));
        }
    }

    void code_data()
    {
        rows<QByteArray, bool, QString>({
            {"text", R"({"data":{"sessionCode":"012345"}})", true, "012345"},
            {"number", R"({"data":{"sessionCode":123456}})", true, "123456"},
            {"empty", R"({"data":{"sessionCode":""}})", true, ""},
            {"absent", R"({"data":{}})", false, QString()},
            {"no data", R"({"success":true})", false, QString()},
            {"data is a text", R"({"data":"sessionCode"})", false, QString()},
            {"no JSON", "<html>", false, QString()},
            {"error key, but no HTTP error", R"({"errorMsgKeys":["a.error"],"data":{"sessionCode":"1"}})",
             true, "1"},
        });
    }

    void code()
    {
        const auto [body, created, code] = row<QByteArray, bool, QString>();
        service().expect(USER, Answer::json(LOGGED_IN));
        service().expect(CREATE, Answer::json(body));

        QCOMPARE(client().doStartSession(QString()), created);
        QCOMPARE(client().sessionCode(), code);
        QCOMPARE(client().sessionCode().isNull(), code.isNull());
    }

    void refusedCreationKeepsTheErrorKey_data()
    {
        rows<QByteArray, QString>({
            {"first key", R"({"errorMsgKeys":["session.error","b.error"]})", "session.error"},
            {"first key without error", R"({"errorMsgKeys":["session.refused","b.error"]})", QString()},
            {"a code all the same", QByteArray(CREATED), QString()},
            {"no JSON", "error", QString()},
        });
    }

    void refusedCreationKeepsTheErrorKey()
    {
        const auto [body, error] = row<QByteArray, QString>();
        service().expect(USER, Answer::json(LOGGED_IN));
        service().expect(CREATE, Answer::json(body, 500));

        QVERIFY(!client().doStartSession(QString()));
        QCOMPARE(client().lastError(), error);
        QCOMPARE(client().lastError().isNull(), error.isNull());
        QVERIFY(client().sessionCode().isNull());
    }

    void creationForgetsWhatWasBeforeFirst()
    {
        openSession(client());
        client().sessionFailureResponse(nullptr, R"({"errorMsgKeys":["earlier.error"]})");
        QCOMPARE(client().lastError(), QStringLiteral("earlier.error"));
        bool forgottenMeanwhile = false;
        service().expect(USER, Answer::json(LOGGED_IN));
        service().expect(CREATE, Answer::json("{}", 500).then([&] {
            forgottenMeanwhile = client().sessionCode().isNull() && client().sessionToken().isNull() &&
                                 client().lastError().isNull();
        }));

        QVERIFY(!client().doStartSession(QString()));
        QVERIFY(forgottenMeanwhile);
        QVERIFY(client().sessionCode().isNull());
        QVERIFY(client().sessionToken().isNull());
    }

    // A service that does not know us any more answers the question for the user with an error.
    void logsInAgainWhenNeeded()
    {
        service().expect(SUBMIT, Answer::json("{}"));
        service().expect(USER, Answer::json("{}", 401));
        service().expect(SUBMIT, Answer::json(R"({"infoMsgs":["success"]})"));
        service().expect(CREATE, Answer::json(CREATED));
        QVERIFY(!client().doLogin("u", "p"));

        QVERIFY(client().doStartSession(QString()));
        QCOMPARE(client().sessionCode(), QStringLiteral("123456"));
    }

    void failedReLoginCreatesNothing()
    {
        service().expect(SUBMIT, Answer::json("{}"));
        service().expect(USER, Answer::json("{}", 401));
        service().expect(SUBMIT, Answer::json(R"({"errorMsgKeys":["login.error"]})", 401));
        QVERIFY(!client().doLogin("u", "p"));
        createSession(client());

        QVERIFY(!client().doStartSession(QString()));
        QCOMPARE(client().lastError(), QStringLiteral("login.error"));
        QCOMPARE(client().sessionCode(), QStringLiteral("123456"));
    }

    // Without a user id there is nobody to log in again.
    void unknownUserCreatesNothing()
    {
        service().expect(SUBMIT, Answer::json(R"({"infoMsgs":["success"]})"));
        service().expect(USER, Answer::json(R"({"data":{}})"));
        QVERIFY(client().doLogin("u", "p"));

        QVERIFY(!client().doStartSession(QString()));
    }

    void handlersLeaveThingsAloneWithoutJson()
    {
        createSession(client());
        client().sessionFailureResponse(nullptr, R"({"errorMsgKeys":["a.error"]})");
        client().sessionSuccessResponse("{\"data\":");
        client().sessionFailureResponse(nullptr, "error");

        QCOMPARE(client().sessionCode(), QStringLiteral("123456"));
        QCOMPARE(client().lastError(), QStringLiteral("a.error"));
        client().sessionFailureResponse(nullptr, "{}");
        QVERIFY(client().lastError().isNull());
    }

    void asksForTheLearnersOfTheSession()
    {
        service().expect(USERS, Answer::json(R"({"data":{"users":[]}})"));
        openSession(client(), "é\\\"%1");
        QCOMPARE(client().sessionToken(), QString::fromUtf8("é\"%1"));

        QVERIFY(client().doGetLearners());
        QCOMPARE(service().last().method, QByteArray("POST"));
        QCOMPARE(service().last().header("content-type"), QByteArray("application/json; charset=UTF-8"));
        QCOMPARE(service().last().body, QByteArray("{\"sessionToken\":\"é\"%1\"}"));
        service().expect(STOP, Answer::json("{}"));
    }

    void noLearnersWithoutASession()
    {
        createSession(client());
        const LogRecorder log;

        QVERIFY(!client().doGetLearners());
        QCOMPARE(log.debug(), QStringList{"[PresenterClient] No session to get users for!"});
    }

    void learners_data()
    {
        columns<QByteArray, QStringList>();

        const auto row = [](const char* name, const char* users, const QStringList& learners) {
            QTest::newRow(name) << QByteArray(users) << learners;
        };
        row("none", "[]", {});
        row("one", R"([{"userToken":"d1","userName":"Zoë","deviceType":"tablet","mode":"learner"}])",
            {"d1 Zoë tablet"});
        row("in order, twice the same",
            R"([{"userToken":"d2","mode":"learner"},{"userToken":"d1","mode":"learner"},)"
            R"({"userToken":"d2","mode":"learner"}])",
            {"d2  ", "d1  ", "d2  "});
        row("learners only",
            R"([{"userToken":"p","mode":"presenter"},{"userToken":"c","mode":"Learner"},{"userToken":"n"},)"
            R"({"userToken":"b","mode":"learner "},{"userToken":"z","mode":null},{"userToken":"d","mode":"learner"}])",
            {"d  "});
        row("nothing but the mode", R"([{"mode":"learner"}])", {"  "});
        row("no objects", R"(["learner",1,null,[],{"mode":"learner","userToken":"d"}])", {"d  "});
        row("numbers", R"([{"mode":"learner","userToken":1,"userName":2,"deviceType":3}])", {"1 2 3"});
    }

    void learners()
    {
        const auto [users, learners] = row<QByteArray, QStringList>();
        service().expect(USERS, Answer::json("{\"data\":{\"users\":" + users + "}}"));
        openSession(client());
        client().getLearnersResponse(R"({"data":{"users":[{"mode":"learner","userToken":"old"}]}})");
        QCOMPARE(client().learners().size(), 1);

        QVERIFY(client().doGetLearners());
        QCOMPARE(texts(client().learners()), learners);
        service().expect(STOP, Answer::json("{}"));
    }

    void badListLeavesTheLearners_data()
    {
        const QByteArray error(R"({"errorMsgKeys":["a.error"],"data":{"users":[]}})");
        rows<Answer>({
            {"text", Answer::json(R"({"data":{"users":"none"}})")},
            {"object", Answer::json(R"({"data":{"users":{"mode":"learner"}}})")},
            {"null", Answer::json(R"({"data":{"users":null}})")},
            {"absent", Answer::json(R"({"data":{}})")},
            {"no data", Answer::json("{}")},
            {"no JSON", Answer::json(R"({"data":{"users":[)")},
            {"empty", Answer::json("")},
            {"http error", Answer::json(error, 500)},
            {"answer cut short", Answer::cut(error)},
        });
    }

    void badListLeavesTheLearners()
    {
        const auto [answer] = row<Answer>();
        service().expect(USERS, answer);
        openSession(client());
        client().getLearnersResponse(R"({"data":{"users":[{"mode":"learner","userToken":"old"}]}})");

        QVERIFY(client().doGetLearners());
        QCOMPARE(texts(client().learners()), QStringList{"old  "});
        QVERIFY(client().lastError().isNull());
        service().expect(STOP, Answer::json("{}"));
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientSession)

#include "tst_PresenterClientSession.moc"
