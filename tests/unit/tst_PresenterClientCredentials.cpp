// Tokens, the user name, logging out, and logging in again.

#include "support/ClientTest.h"
#include "support/LogRecorder.h"
#include "support/Logins.h"
#include "support/Rows.h"

#include <CalyxClient/PresenterClient>

#include <QTest>

#include <functional>

using namespace Logins;

namespace {

using Preparation = std::function<void(PresenterClient&, FakeService&)>;

} // namespace

Q_DECLARE_METATYPE(Preparation)

class tst_PresenterClientCredentials : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void accessToken_data()
    {
        rows<QByteArray, QString, QString>({
            {"token", R"({"data":{"deviceAccessToken":"T1"}})", "T1", QString()},
            {"number", R"({"data":{"deviceAccessToken":7}})", "7", QString()},
            {"empty token", R"({"data":{"deviceAccessToken":""}})", "", R"({"deviceAccessToken":""})"},
            {"data of a registration", R"({"success":false,"data":{"mail":"zoë"}})", "", R"({"mail":"zoë"})"},
            {"no data", R"({"success":false})", "", "ess\":false"},
            {"no JSON", "<html></html>", "", "</html"},
            {"no members", "{}", "", ""},
            {"no body", "", "", ""},
            {"data at the very beginning, which is not taken", R"("data":{"a":1})", "", QString()},
        });
    }

    void accessToken()
    {
        const auto [body, token, registration] = row<QByteArray, QString, QString>();
        for (const bool oauth : {false, true}) {
            FakeService service;
            service.expect(oauth ? CALLBACK : SUBMIT, Answer::json(body));
            PresenterClient client(nullptr, service.url());
            QString given = "given";
            const QString u = "u";

            QCOMPARE(oauth ? getOAuthToken(client, &given) : client.doGetAccessToken(u, u, u, u), token);
            QCOMPARE(client.isLoggedIn(), !token.isEmpty());
            QCOMPARE(client.registration(), registration);
            QCOMPARE(given, oauth ? registration : QStringLiteral("given"));
            QCOMPARE(client.userId(), oauth ? QString() : u);
            QVERIFY(client.lastError().isNull());
        }
    }

    void accessTokenStaysAsItWasWhenTheRequestFails()
    {
        service().expect(SUBMIT, Answer::json(R"({"data":{"deviceAccessToken":"T1"}})"));
        service().expect(SUBMIT, Answer::json(R"({"data":{"deviceAccessToken":"T2"}})", 500));
        service().expect(CALLBACK, Answer::gone());
        const QString u = "u";
        QCOMPARE(client().doGetAccessToken(u, u, u, u), QStringLiteral("T1"));

        QCOMPARE(client().doGetAccessToken(u, u, u, u), QStringLiteral("T1"));
        QCOMPARE(getOAuthToken(client()), QStringLiteral("T1"));
        QVERIFY(client().isLoggedIn());
    }

    void accessTokenResetsNothingFirst()
    {
        service().expect(SUBMIT, Answer::json(REFUSED, 401));
        service().expect(CALLBACK, Answer::json(REFUSED, 401));
        client().loginSuccessResponse(QString::fromLatin1(SUCCESS));
        client().loginFailureResponse(nullptr, R"({"errorMsgKeys":["earlier.error"]})");

        client().doGetAccessToken("u", "p", QString(), QString());
        QVERIFY(client().isLoggedIn());
        getOAuthToken(client());
        QVERIFY(client().isLoggedIn());
        QCOMPARE(client().lastError(), QStringLiteral("earlier.error"));
    }

    void oauthAccessTokenGivesTheEarlierRegistrationBack()
    {
        service().expect(CALLBACK, Answer::json(R"({"data":{"mail":"m"}})"));
        service().expect(CALLBACK, Answer::json("{}", 500));
        getOAuthToken(client());
        QString registration;

        QCOMPARE(getOAuthToken(client(), &registration), QString());
        QCOMPARE(registration, QStringLiteral(R"({"mail":"m"})"));
    }

    void userName_data()
    {
        rows<QByteArray, QString>({
            {"known", R"({"data":{"userLoginId":"zoë"}})", "zoë"},
            {"empty", R"({"data":{"userLoginId":""}})", ""},
            {"absent", R"({"data":{}})", QString()},
            {"no data", "{}", QString()},
            {"data is no object", R"({"data":"userLoginId"})", QString()},
            {"no JSON", "userLoginId", QString()},
        });
    }

    void userName()
    {
        const auto [body, name] = row<QByteArray, QString>();
        service().expect(SUBMIT, Answer::json(name.isEmpty() ? SUCCESS : "{}"));
        service().expect(USER, Answer::json(body));
        loginByPassword(client());

        QCOMPARE(client().doGetUserName(), name);
        QCOMPARE(client().userId(), name);
        QCOMPARE(client().userId().isNull(), name.isNull());
        QCOMPARE(client().isLoggedIn(), !name.isEmpty());
    }

    void userNameStaysAsItWasWhenTheRequestFails()
    {
        service().expect(SUBMIT, Answer::json(SUCCESS));
        service().expect(USER, Answer::json(R"({"data":{}})", 500));
        QVERIFY(loginByPassword(client()));

        QCOMPARE(client().doGetUserName(), QStringLiteral("u"));
        QVERIFY(client().isLoggedIn());
    }

    void logout_data()
    {
        rows<bool, QByteArray, int, bool>({
            {"answered", true, "{}", 200, true},
            {"error envelope", true, QByteArray(REFUSED), 200, true},
            {"no JSON", true, "bye", 200, false},
            {"empty", true, QByteArray(), 200, false},
            {"http error", true, "{}", 500, false},
            {"http error, but nobody was logged in", false, "{}", 500, true},
        });
    }

    void logout()
    {
        const auto [wasLoggedIn, body, status, loggedOut] = row<bool, QByteArray, int, bool>();
        service().expect(LOGOUT, Answer::json(body, status));
        if (wasLoggedIn)
            client().loginSuccessResponse(QString::fromLatin1(SUCCESS));

        QCOMPARE(client().doLogout(), loggedOut);
        QCOMPARE(client().isLoggedIn(), !loggedOut);
    }

    void logoutStopsTheSessionFirst()
    {
        service().expect("/tavisto/session/stop", Answer::json("{}"));
        service().expect(LOGOUT, Answer::json("{}"));
        client().sessionStartSuccessResponse(R"({"data":{"sessionToken":"T"}})");

        QVERIFY(client().doLogout());
        QVERIFY(client().sessionToken().isNull());
    }

    void logoutWithACodeAloneStopsNothing()
    {
        service().expect(LOGOUT, Answer::json("{}"));
        client().sessionSuccessResponse(R"({"data":{"sessionCode":"1"}})");
        const LogRecorder log;

        QVERIFY(client().doLogout());
        QCOMPARE(log.debug("[PresenterClient] No session to stop!").size(), 1);
    }

    void logoutKeepsTheCredentials()
    {
        service().expect(SUBMIT, Answer::json(SUCCESS));
        service().expect(LOGOUT, Answer::json("{}"));
        service().expect(SUBMIT, Answer::json(SUCCESS));
        QVERIFY(loginByPassword(client()));
        QVERIFY(client().doLogout());
        QCOMPARE(client().userId(), QStringLiteral("u"));
        client().reLogin();

        QVERIFY(client().isLoggedIn());
        QCOMPARE(service().requests().last().body, service().requests().first().body);
    }

    void reLoginChoosesTheCredentials_data()
    {
        columns<Preparation, QByteArray, QByteArray>();
        // empty: no request

        const auto password = [](PresenterClient& c, FakeService& s) {
            s.expect(SUBMIT, Answer::json("{}"));
            loginByPassword(c);
        };
        const auto device = [](PresenterClient& c, FakeService& s) {
            s.expect(SUBMIT, Answer::json("{}"));
            loginByDevice(c);
        };
        const auto halfDevice = [](const QString& id, const QString& token) {
            return [=](PresenterClient& c, FakeService& s) {
                s.expect(SUBMIT, Answer::json("{}"));
                c.doLogin("u", id, token);
            };
        };
        const auto token = [](PresenterClient& c, FakeService& s) {
            s.expect(SUBMIT, Answer::json("{}"));
            c.doGetAccessToken("u", "p", "other device", "n");
        };
        const auto oauth = [](PresenterClient& c, FakeService& s) {
            s.expect(CALLBACK, Answer::json(R"({"infoMsgKeys":["success.registration"],"data":{}})"));
            loginWithOAuth(c);
        };
        const auto halfOAuth = [](PresenterClient& c, FakeService& s) {
            s.expect(CALLBACK, Answer::json("{}"));
            QString registration;
            c.doLoginWithOAuth("google", "", registration);
        };
        const auto name = [](PresenterClient& c, FakeService&) {
            c.userNameResponse(R"({"data":{"userLoginId":"u"}})");
        };
        const auto row = [](const char* title, const QList<Preparation>& steps, const char* path,
                            const char* body) {
            const Preparation prepare = [=](PresenterClient& c, FakeService& s) {
                for (const Preparation& step : steps)
                    step(c, s);
            };
            QTest::newRow(title) << prepare << QByteArray(path) << QByteArray(body);
        };
        const char byPassword[] = R"({"userId":"u","password":"p","sourceSystem":"Lumora"})";
        const char byDevice[] =
            R"({"userId":"u","deviceId":"d","deviceAccessToken":"t","sourceSystem":"Lumora"})";
        const char byOAuth[] = R"({"code":"c","callbackUrl":"<server>","sourceSystem":"Lumora"})";
        row("nothing known", {}, "", "");
        row("user id alone", {name}, "", "");
        row("password", {password}, SUBMIT, byPassword);
        row("password of a token request", {token}, SUBMIT, byPassword);
        row("device", {device}, SUBMIT, byDevice);
        row("password, then device", {password, device}, SUBMIT, byPassword);
        row("device, then password", {device, password}, SUBMIT, byPassword);
        row("OAuth without a user id", {oauth}, "", "");
        row("OAuth and the user id", {oauth, name}, CALLBACK, byOAuth);
        row("OAuth without a code", {halfOAuth, name}, "", "");
        row("device, then OAuth", {device, oauth}, SUBMIT, byDevice);
        row("device without token, then OAuth", {halfDevice("d", ""), oauth}, CALLBACK, byOAuth);
        row("device without id, then OAuth", {halfDevice("", "t"), oauth}, CALLBACK, byOAuth);
        row("password, but the user id is gone",
            {password, [](PresenterClient& c, FakeService&) { c.userNameResponse("{}"); }}, "", "");
    }

    void reLoginChoosesTheCredentials()
    {
        auto [prepare, path, body] = row<Preparation, QByteArray, QByteArray>();
        prepare(client(), service());
        const int before = service().requests().size();
        const bool wasLoggedIn = client().isLoggedIn();
        if (!path.isEmpty())
            service().expect(path, Answer::json(SUCCESS));
        client().reLogin();

        QCOMPARE(service().requests().size() - before, path.isEmpty() ? 0 : 1);
        QCOMPARE(client().isLoggedIn(), wasLoggedIn || !path.isEmpty());
        if (!path.isEmpty())
            QCOMPARE(service().last().body, body.replace("<server>", service().url().toUtf8()));
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientCredentials)

#include "tst_PresenterClientCredentials.moc"
