// What the account operations send, and what decides a login.

#include "support/ClientTest.h"
#include "support/Logins.h"
#include "support/Rows.h"

#include <CalyxClient/PresenterClient>

#include <QTest>

#include <functional>

using namespace Logins;

namespace {

using Call = std::function<QVariant(PresenterClient&, const QStringList&)>;
using Login = std::function<bool(PresenterClient&)>;

} // namespace

Q_DECLARE_METATYPE(Call)
Q_DECLARE_METATYPE(Login)

class tst_PresenterClientAccount : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void sendsItsRequest_data()
    {
        columns<Call, QStringList, QByteArray, QByteArray>();
        // <n> stands for the nth value

        const auto rows = [](const char* name, const Call& call, const char* path, const char* body) {
            QTest::addRow("%s", name)
                << call << QStringList{"u", "p", "d", "n"} << QByteArray(path) << QByteArray(body);
            // Nothing is escaped, and no value is taken for a placeholder.
            QTest::addRow("%s, odd values", name)
                << call << QStringList{"\"%1%2\"", "%0 \\", "Zoë\xf0\x9f\x8e\x93", "a\nb<>&"}
                << QByteArray(path) << QByteArray(body);
            QTest::addRow("%s, empty values", name)
                << call << QStringList{"", "", "", ""} << QByteArray(path) << QByteArray(body);
        };
        rows(
            "doLogin", [](PresenterClient& c, const QStringList& v) { return c.doLogin(v[0], v[1]); }, SUBMIT,
            R"({"userId":"<0>","password":"<1>","sourceSystem":"Lumora"})");
        rows(
            "doLogin by device",
            [](PresenterClient& c, const QStringList& v) { return c.doLogin(v[0], v[1], v[2]); }, SUBMIT,
            R"({"userId":"<0>","deviceId":"<1>","deviceAccessToken":"<2>","sourceSystem":"Lumora"})");
        rows(
            "doLoginWithOAuth",
            [](PresenterClient& c, const QStringList& v) {
                QString registration;
                return c.doLoginWithOAuth("google", v[0], registration);
            },
            CALLBACK, R"({"code":"<0>","callbackUrl":"<server>","sourceSystem":"Lumora"})");
        rows(
            "doGetAccessToken",
            [](PresenterClient& c, const QStringList& v) {
                return c.doGetAccessToken(v[0], v[1], v[2], v[3]);
            },
            SUBMIT,
            R"({"userId":"<0>","password":"<1>","deviceId":"<2>","deviceName":"<3>","sourceSystem":"Lumora"})");
        rows(
            "doGetOAuthAccessToken",
            [](PresenterClient& c, const QStringList& v) {
                QString registration;
                return c.doGetOAuthAccessToken("google", v[0], v[1], v[2], registration);
            },
            CALLBACK,
            R"({"code":"<0>","callbackUrl":"<server>","deviceId":"<1>","deviceName":"<2>","sourceSystem":"Lumora"})");

        const auto row = [](const char* name, const Call& call, const char* path, const char* body) {
            QTest::addRow("%s", name) << call << QStringList() << QByteArray(path) << QByteArray(body);
        };
        row(
            "doGetUserName", [](PresenterClient& c, const QStringList&) { return c.doGetUserName(); }, USER,
            "{}");
        row(
            "doLogout", [](PresenterClient& c, const QStringList&) { return c.doLogout(); }, LOGOUT, "{}");
        row(
            "sendKeepAlive",
            [](PresenterClient& c, const QStringList&) { return c.sendKeepAlive(), QVariant(); }, KEEP_ALIVE,
            "");
        row(
            "onPingTimer",
            [](PresenterClient& c, const QStringList&) {
                return QVariant(QMetaObject::invokeMethod(&c, "onPingTimer"));
            },
            KEEP_ALIVE, "");
        row(
            "provider with a blank",
            [](PresenterClient& c, const QStringList&) {
                QString registration;
                return c.doLoginWithOAuth("my school", "c", registration);
            },
            "/tavisto/login/oauth/my%20school/callback",
            R"({"code":"c","callbackUrl":"<server>","sourceSystem":"Lumora"})");
    }

    void sendsItsRequest()
    {
        auto [call, values, path, body] = row<Call, QStringList, QByteArray, QByteArray>();
        service().expect(path, Answer::json("{}"));
        call(client(), values);

        body.replace("<server>", service().url().toUtf8());
        for (int i = 0; i < values.size(); ++i)
            body.replace('<' + QByteArray::number(i) + '>', values.at(i).toUtf8());
        QCOMPARE(service().last().method, QByteArray("POST"));
        QCOMPARE(service().last().header("content-type"), QByteArray("application/json; charset=UTF-8"));
        QCOMPARE(service().last().body, body);
    }

    void callbackUrlEndsWithSlashForFacebookOnly_data()
    {
        rows<QString, bool>({
            {"facebook", "facebook", true},
            {"capital", "Facebook", false},
            {"longer", "facebook2", false},
            {"another", "google", false},
        });
    }

    void callbackUrlEndsWithSlashForFacebookOnly()
    {
        const auto [provider, slash] = row<QString, bool>();
        const QByteArray path = "/tavisto/login/oauth/" + provider.toUtf8() + "/callback";
        service().expect(path, Answer::json("{}"));
        service().expect(path, Answer::json("{}"));
        QString registration;
        client().doLoginWithOAuth(provider, "c", registration);
        client().doGetOAuthAccessToken(provider, "c", QString(), QString(), registration);

        const QByteArray url = service().url().toUtf8() + (slash ? "/" : "");
        for (const FakeService::Request& request : service().requests())
            QVERIFY2(request.body.contains("\"callbackUrl\":\"" + url + "\","), request.body.constData());
    }

    void completesTheRegistrationText_data()
    {
        rows<QString, QByteArray>({
            {"last member is a text", R"({"name":"x","mail":"y"})",
             R"({"name":"x","mail":"y","sourceSystem":"Lumora"})"},
            {"blank before the brace", "{\"name\":\"x\"\n}",
             "{\"name\":\"x\",\"sourceSystem\":\"Lumora\"\n}"},
            {"last member is a number", R"({"name":"x","age":5})",
             R"({"name":"x","age","sourceSystem":"Lumora":5})"},
            {"not ASCII", R"({"name":"Zoë %1"})", R"({"name":"Zoë %1","sourceSystem":"Lumora"})"},
        });
    }

    void completesTheRegistrationText()
    {
        auto [registration, body] = row<QString, QByteArray>();
        service().expect(REGISTER, Answer::json("{}"));
        client().doLoginWithOAuth("google", "c", registration);

        QCOMPARE(service().last().body, body);
        QVERIFY(registration.isNull());
    }

    void infoMessagesDecideTheLogin_data()
    {
        columns<QByteArray, bool>();

        const auto row = [](const char* body, bool loggedIn) {
            QTest::newRow(body) << QByteArray(body) << loggedIn;
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
        row(R"({"infoMsgKeys":["login.success.registration"]})", true);
        row("[\"success\"]", false);
        row("success", false);
        row("", false);
    }

    void infoMessagesDecideTheLogin()
    {
        const auto [body, loggedIn] = row<QByteArray, bool>();
        service().expect(SUBMIT, Answer::json(body));
        service().expect(SUBMIT, Answer::json(body));

        QCOMPARE(loginByPassword(client()), loggedIn);
        QCOMPARE(client().isLoggedIn(), loggedIn);
        QCOMPARE(loginByDevice(client()), loggedIn);
        QVERIFY(client().lastError().isNull());
        QVERIFY(client().registration().isNull());
        QCOMPARE(client().userId(), QStringLiteral("u"));
    }

    void refusedLoginKeepsTheErrorKey_data()
    {
        columns<Login, QByteArray, QByteArray, QString>();

        const QByteArray first(R"({"errorMsgKeys":["login.error.password","b.error"]})");
        const QString key = "login.error.password";
        QTest::newRow("password") << Login(loginByPassword) << QByteArray(SUBMIT) << first << key;
        QTest::newRow("device") << Login(loginByDevice) << QByteArray(SUBMIT) << first << key;
        QTest::newRow("OAuth") << Login(loginWithOAuth) << QByteArray(CALLBACK) << first << key;
        QTest::newRow("registration") << Login(registerWithOAuth) << QByteArray(REGISTER) << first << key;
        const auto row = [](const char* name, const char* body) {
            QTest::newRow(name) << Login(loginByPassword) << QByteArray(SUBMIT) << QByteArray(body)
                                << QString();
        };
        row("first key without error", R"({"errorMsgKeys":["login.refused","b.error"]})");
        row("no key", R"({"infoMsgKeys":["login.success"]})");
        row("no JSON", "<html>error</html>");
        row("no body", "");
    }

    void refusedLoginKeepsTheErrorKey()
    {
        const auto [login, path, body, error] = row<Login, QByteArray, QByteArray, QString>();
        service().expect(path, Answer::json(body, 401));

        QVERIFY(!login(client()));
        QVERIFY(!client().isLoggedIn());
        QCOMPARE(client().lastError(), error);
        QCOMPARE(client().lastError().isNull(), error.isNull());
    }

    void loginStartsAnew_data()
    {
        rows<Login, QByteArray>({
            {"password", Login(loginByPassword), QByteArray(SUBMIT)},
            {"device", Login(loginByDevice), QByteArray(SUBMIT)},
            {"OAuth", Login(loginWithOAuth), QByteArray(CALLBACK)},
            {"registration", Login(registerWithOAuth), QByteArray(REGISTER)},
        });
    }

    // Neither the error nor the login of an earlier call outlives the start of the next.
    void loginStartsAnew()
    {
        const auto [login, path] = row<Login, QByteArray>();
        client().loginSuccessResponse(QString::fromLatin1(SUCCESS));
        client().loginFailureResponse(nullptr, QString::fromLatin1(REFUSED));
        QVERIFY(client().isLoggedIn());
        QVERIFY(!client().lastError().isNull());
        bool loggedInMeanwhile = true;
        service().expect(path, Answer::json("{}").then([&] { loggedInMeanwhile = client().isLoggedIn(); }));

        QVERIFY(!login(client()));
        QVERIFY(!loggedInMeanwhile);
        QVERIFY(client().lastError().isNull());
    }

    void oauthLoginCanAskForRegistration_data()
    {
        columns<QByteArray, bool, QString>();

        const auto row = [](const char* name, const char* body, bool loggedIn, const char* registration) {
            QTest::newRow(name) << QByteArray(body) << loggedIn << QString::fromUtf8(registration);
        };
        row("asked", R"({"infoMsgKeys":["success.registration"],"data":{"email":"zoë@x"}})", false,
            R"({"email":"zoë@x"})");
        row("data in the middle", R"({"data":{"a":1},"infoMsgKeys":["success.registration"]})", false,
            R"({"a":1},"infoMsgKeys":["success.registration"])");
        row("line end behind", "{\"infoMsgKeys\":[\"success.registration\"],\"data\":{\"a\":1}}\n", false,
            "{\"a\":1}}");
        row("blank before the data", R"({"infoMsgKeys":["success.registration"],"data": {}})", false, " {}");
        row("without data", R"({"infoMsgKeys":["success.registration"]})", false,
            R"(MsgKeys":["success.registration"])");
        row("blank before the colon", R"({"data" :{},"infoMsgKeys":["success.registration"]})", false,
            R"(" :{},"infoMsgKeys":["success.registration"])");
        row("no registration in the key", R"({"infoMsgKeys":["success"],"data":{"a":1}})", true, nullptr);
        row("no success in the key", R"({"infoMsgKeys":["registration"],"data":{"a":1}})", false, nullptr);
        row("in infoMsgs", R"({"infoMsgs":["success.registration"],"data":{"a":1}})", true, nullptr);
        row("in the second key", R"({"infoMsgKeys":["success","registration"],"data":{"a":1}})", true,
            nullptr);
        row("no JSON", R"(success.registration "data":{"a":1}})", false, nullptr);
    }

    void oauthLoginCanAskForRegistration()
    {
        const auto [body, loggedIn, registration] = row<QByteArray, bool, QString>();
        service().expect(CALLBACK, Answer::json(body));
        QString given;

        QCOMPARE(client().doLoginWithOAuth("google", "c", given), loggedIn);
        QCOMPARE(client().isLoggedIn(), loggedIn);
        QCOMPARE(given, registration);
        QCOMPARE(client().registration(), registration);
        QCOMPARE(client().registration().isNull(), registration.isNull());
    }

    void passwordLoginAsksForNoRegistration()
    {
        service().expect(SUBMIT, Answer::json(R"({"infoMsgKeys":["success.registration"],"data":{}})"));

        QVERIFY(loginByPassword(client()));
        QVERIFY(client().registration().isNull());
    }

    // What counts is whether the client knows a provider and a code, not which login it was.
    void passwordLoginAfterOAuthAsksForRegistration()
    {
        service().expect(CALLBACK, Answer::json("{}"));
        service().expect(SUBMIT, Answer::json(R"({"infoMsgKeys":["success.registration"],"data":{"a":1}})"));
        QVERIFY(!loginWithOAuth(client()));

        QVERIFY(!loginByPassword(client()));
        QCOMPARE(client().registration(), QStringLiteral(R"({"a":1})"));
    }

    void registrationIsCompletedInASecondStep()
    {
        service().expect(CALLBACK,
                         Answer::json(R"({"infoMsgKeys":["success.registration"],"data":{"mail":"m"}})"));
        service().expect(REGISTER, Answer::json(SUCCESS));
        QString registration;

        QVERIFY(!client().doLoginWithOAuth("google", "c", registration));
        QCOMPARE(registration, QStringLiteral(R"({"mail":"m"})"));
        QVERIFY(client().doLoginWithOAuth("google", "c", registration));
        QVERIFY(registration.isNull());
        QVERIFY(client().registration().isNull());
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientAccount)

#include "tst_PresenterClientAccount.moc"
