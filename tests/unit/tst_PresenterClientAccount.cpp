// Logging in and out, tokens, the keep-alive.

#include "support/FakeService.h"
#include "support/LogRecorder.h"
#include "support/TimerClock.h"

#include <CalyxClient/PresenterClient>

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>

using Answer = FakeService::Answer;

namespace {

const char SUBMIT[] = "/tavisto/login/submit";
const char CALLBACK[] = "/tavisto/login/oauth/google/callback";
const char REGISTER[] = "/tavisto/register/oauth/submit";
const char USER[] = "/tavisto/login/user";
const char LOGOUT[] = "/tavisto/login/logout";
const char KEEP_ALIVE[] = "/tavisto/login/keepSessionAlive";

const char SUCCESS[] = R"({"success":true,"infoMsgKeys":["login.success"]})";
const char REFUSED[] = R"({"success":false,"errorMsgKeys":["login.error"]})";

// The period of the keep-alive is 60 seconds, and Qt's timers may be off by a twentieth.
const int NOT_YET = 56000;
const int REST_OF_THE_PERIOD = 7500;
const int PERIOD = NOT_YET + REST_OF_THE_PERIOD;

using Call = std::function<QVariant(PresenterClient&, const QStringList&)>;
using Login = std::function<bool(PresenterClient&)>;
using Preparation = std::function<void(PresenterClient&, FakeService&)>;

bool loginByPassword(PresenterClient& client)
{
    return client.doLogin(QStringLiteral("u"), QStringLiteral("p"));
}

bool loginByDevice(PresenterClient& client)
{
    return client.doLogin(QStringLiteral("u"), QStringLiteral("d"), QStringLiteral("t"));
}

bool loginWithOAuth(PresenterClient& client)
{
    QString registration;
    return client.doLoginWithOAuth(QStringLiteral("google"), QStringLiteral("c"), registration);
}

bool registerWithOAuth(PresenterClient& client)
{
    QString registration = QStringLiteral(R"({"a":"b"})");
    return client.doLoginWithOAuth(QStringLiteral("google"), QStringLiteral("c"), registration);
}

QString getOAuthToken(PresenterClient& client, QString* registration = nullptr)
{
    QString ignored;
    return client.doGetOAuthAccessToken(QStringLiteral("google"), QStringLiteral("c"), QStringLiteral("d"),
                                        QStringLiteral("n"), registration ? *registration : ignored);
}

} // namespace

Q_DECLARE_METATYPE(Call)
Q_DECLARE_METATYPE(Login)
Q_DECLARE_METATYPE(Preparation)

class tst_PresenterClientAccount : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsItsRequest_data();
    void sendsItsRequest();
    void callbackUrlEndsWithSlashForFacebookOnly_data();
    void callbackUrlEndsWithSlashForFacebookOnly();
    void completesTheRegistrationText_data();
    void completesTheRegistrationText();

    void infoMessagesDecideTheLogin_data();
    void infoMessagesDecideTheLogin();
    void refusedLoginKeepsTheErrorKey_data();
    void refusedLoginKeepsTheErrorKey();
    void unansweredLoginFailsWithoutAKey_data();
    void unansweredLoginFailsWithoutAKey();
    void loginStartsAnew_data();
    void loginStartsAnew();

    void oauthLoginCanAskForRegistration_data();
    void oauthLoginCanAskForRegistration();
    void passwordLoginAsksForNoRegistration();
    void passwordLoginAfterOAuthAsksForRegistration();
    void registrationIsCompletedInASecondStep();

    void accessToken_data();
    void accessToken();
    void accessTokenStaysAsItWasWhenTheRequestFails();
    void accessTokenResetsNothingFirst();
    void oauthAccessTokenGivesTheEarlierRegistrationBack();

    void userName_data();
    void userName();
    void userNameStaysAsItWasWhenTheRequestFails();

    void logout_data();
    void logout();
    void logoutStopsTheSessionFirst();
    void logoutWithACodeAloneStopsNothing();
    void logoutKeepsTheCredentials();

    void reLoginChoosesTheCredentials_data();
    void reLoginChoosesTheCredentials();

    void keepAliveRefreshesOnlyTheReachability_data();
    void keepAliveRefreshesOnlyTheReachability();
    void keepsAliveEveryMinuteAfterALogin_data();
    void keepsAliveEveryMinuteAfterALogin();
    void keepsNothingAliveWithoutALogin_data();
    void keepsNothingAliveWithoutALogin();
    void loginRestartsThePeriod();
    void logoutEndsTheKeepAlive_data();
    void logoutEndsTheKeepAlive();
    void keepAliveFallsDueDuringAnotherWait();
};

void tst_PresenterClientAccount::sendsItsRequest_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QStringList>("values");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body"); // <n> stands for the nth value

    const auto rows = [](const char* name, const Call& call, const char* path, const char* body) {
        QTest::addRow("%s", name) << call << QStringList{"u", "p", "d", "n"} << QByteArray(path)
                                  << QByteArray(body);
        // Nothing is escaped, and no value is taken for a placeholder.
        QTest::addRow("%s, odd values", name)
            << call << QStringList{"\"%1%2\"", "%0 \\", QString::fromUtf8("Zoë\xf0\x9f\x8e\x93"), "a\nb<>&"}
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
        [](PresenterClient& c, const QStringList& v) { return c.doGetAccessToken(v[0], v[1], v[2], v[3]); },
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
        "sendKeepAlive", [](PresenterClient& c, const QStringList&) { return c.sendKeepAlive(), QVariant(); },
        KEEP_ALIVE, "");
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

void tst_PresenterClientAccount::sendsItsRequest()
{
    QFETCH(Call, call);
    QFETCH(QStringList, values);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);

    FakeService service;
    service.expect(path, Answer::json("{}"));
    PresenterClient client(nullptr, service.url());
    call(client, values);

    body.replace("<server>", service.url().toUtf8());
    for (int i = 0; i < values.size(); ++i)
        body.replace('<' + QByteArray::number(i) + '>', values.at(i).toUtf8());
    QCOMPARE(service.last().method, QByteArray("POST"));
    QCOMPARE(service.last().header("content-type"), QByteArray("application/json; charset=UTF-8"));
    QCOMPARE(service.last().body, body);
}

void tst_PresenterClientAccount::callbackUrlEndsWithSlashForFacebookOnly_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<bool>("slash");

    QTest::newRow("facebook") << "facebook" << true;
    QTest::newRow("capital") << "Facebook" << false;
    QTest::newRow("longer") << "facebook2" << false;
    QTest::newRow("another") << "google" << false;
}

void tst_PresenterClientAccount::callbackUrlEndsWithSlashForFacebookOnly()
{
    QFETCH(QString, provider);
    QFETCH(bool, slash);

    const QByteArray path = "/tavisto/login/oauth/" + provider.toUtf8() + "/callback";
    FakeService service;
    service.expect(path, Answer::json("{}"));
    service.expect(path, Answer::json("{}"));
    PresenterClient client(nullptr, service.url());
    QString registration;
    client.doLoginWithOAuth(provider, QStringLiteral("c"), registration);
    client.doGetOAuthAccessToken(provider, QStringLiteral("c"), QString(), QString(), registration);

    const QByteArray url = service.url().toUtf8() + (slash ? "/" : "");
    for (const FakeService::Request& request : service.requests())
        QVERIFY2(request.body.contains("\"callbackUrl\":\"" + url + "\","), request.body.constData());
}

void tst_PresenterClientAccount::completesTheRegistrationText_data()
{
    QTest::addColumn<QString>("registration");
    QTest::addColumn<QByteArray>("body");

    QTest::newRow("last member is a text")
        << R"({"name":"x","mail":"y"})" << QByteArray(R"({"name":"x","mail":"y","sourceSystem":"Lumora"})");
    QTest::newRow("blank before the brace")
        << "{\"name\":\"x\"\n}" << QByteArray("{\"name\":\"x\",\"sourceSystem\":\"Lumora\"\n}");
    QTest::newRow("last member is a number")
        << R"({"name":"x","age":5})" << QByteArray(R"({"name":"x","age","sourceSystem":"Lumora":5})");
    QTest::newRow("not ASCII") << QString::fromUtf8(R"({"name":"Zoë %1"})")
                               << QByteArray(R"({"name":"Zoë %1","sourceSystem":"Lumora"})");
}

void tst_PresenterClientAccount::completesTheRegistrationText()
{
    QFETCH(QString, registration);
    QFETCH(QByteArray, body);

    FakeService service;
    service.expect(REGISTER, Answer::json("{}"));
    PresenterClient client(nullptr, service.url());
    client.doLoginWithOAuth(QStringLiteral("google"), QStringLiteral("c"), registration);

    QCOMPARE(service.last().body, body);
    QVERIFY(registration.isNull());
}

void tst_PresenterClientAccount::infoMessagesDecideTheLogin_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("loggedIn");

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

void tst_PresenterClientAccount::infoMessagesDecideTheLogin()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, loggedIn);

    FakeService service;
    service.expect(SUBMIT, Answer::json(body));
    service.expect(SUBMIT, Answer::json(body));
    PresenterClient client(nullptr, service.url());

    QCOMPARE(loginByPassword(client), loggedIn);
    QCOMPARE(client.isLoggedIn(), loggedIn);
    QCOMPARE(loginByDevice(client), loggedIn);
    QVERIFY(client.lastError().isNull());
    QVERIFY(client.registration().isNull());
    QCOMPARE(client.userId(), QStringLiteral("u"));
}

void tst_PresenterClientAccount::refusedLoginKeepsTheErrorKey_data()
{
    QTest::addColumn<Login>("login");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("error");

    const QByteArray first(R"({"errorMsgKeys":["login.error.password","b.error"]})");
    const QString key = QStringLiteral("login.error.password");
    QTest::newRow("password") << Login(loginByPassword) << QByteArray(SUBMIT) << first << key;
    QTest::newRow("device") << Login(loginByDevice) << QByteArray(SUBMIT) << first << key;
    QTest::newRow("OAuth") << Login(loginWithOAuth) << QByteArray(CALLBACK) << first << key;
    QTest::newRow("registration") << Login(registerWithOAuth) << QByteArray(REGISTER) << first << key;
    const auto row = [](const char* name, const char* body) {
        QTest::newRow(name) << Login(loginByPassword) << QByteArray(SUBMIT) << QByteArray(body) << QString();
    };
    row("first key without error", R"({"errorMsgKeys":["login.refused","b.error"]})");
    row("no key", R"({"infoMsgKeys":["login.success"]})");
    row("no JSON", "<html>error</html>");
    row("no body", "");
}

void tst_PresenterClientAccount::refusedLoginKeepsTheErrorKey()
{
    QFETCH(Login, login);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);
    QFETCH(QString, error);

    FakeService service;
    service.expect(path, Answer::json(body, 401));
    PresenterClient client(nullptr, service.url());

    QVERIFY(!login(client));
    QVERIFY(!client.isLoggedIn());
    QCOMPARE(client.lastError(), error);
    QCOMPARE(client.lastError().isNull(), error.isNull());
}

void tst_PresenterClientAccount::unansweredLoginFailsWithoutAKey_data()
{
    QTest::addColumn<bool>("cut");

    QTest::newRow("service gone") << false;
    QTest::newRow("answer cut short") << true;
}

void tst_PresenterClientAccount::unansweredLoginFailsWithoutAKey()
{
    QFETCH(bool, cut);

    FakeService service;
    service.expect(SUBMIT, cut ? Answer::cut(REFUSED) : Answer::gone());
    PresenterClient client(nullptr, service.url());

    QVERIFY(!loginByPassword(client));
    QVERIFY(client.lastError().isNull());
}

void tst_PresenterClientAccount::loginStartsAnew_data()
{
    QTest::addColumn<Login>("login");
    QTest::addColumn<QByteArray>("path");

    QTest::newRow("password") << Login(loginByPassword) << QByteArray(SUBMIT);
    QTest::newRow("device") << Login(loginByDevice) << QByteArray(SUBMIT);
    QTest::newRow("OAuth") << Login(loginWithOAuth) << QByteArray(CALLBACK);
    QTest::newRow("registration") << Login(registerWithOAuth) << QByteArray(REGISTER);
}

// Neither the error nor the login of an earlier call outlives the start of the next.
void tst_PresenterClientAccount::loginStartsAnew()
{
    QFETCH(Login, login);
    QFETCH(QByteArray, path);

    FakeService service;
    PresenterClient client(nullptr, service.url());
    client.loginSuccessResponse(QString::fromLatin1(SUCCESS));
    client.loginFailureResponse(nullptr, QString::fromLatin1(REFUSED));
    QVERIFY(client.isLoggedIn());
    QVERIFY(!client.lastError().isNull());
    bool loggedInMeanwhile = true;
    service.expect(path, Answer::json("{}").then([&] { loggedInMeanwhile = client.isLoggedIn(); }));

    QVERIFY(!login(client));
    QVERIFY(!loggedInMeanwhile);
    QVERIFY(client.lastError().isNull());
}

void tst_PresenterClientAccount::oauthLoginCanAskForRegistration_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("loggedIn");
    QTest::addColumn<QString>("registration");

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
    row("in the second key", R"({"infoMsgKeys":["success","registration"],"data":{"a":1}})", true, nullptr);
    row("no JSON", R"(success.registration "data":{"a":1}})", false, nullptr);
}

void tst_PresenterClientAccount::oauthLoginCanAskForRegistration()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, loggedIn);
    QFETCH(QString, registration);

    FakeService service;
    service.expect(CALLBACK, Answer::json(body));
    PresenterClient client(nullptr, service.url());
    QString given;

    QCOMPARE(client.doLoginWithOAuth(QStringLiteral("google"), QStringLiteral("c"), given), loggedIn);
    QCOMPARE(client.isLoggedIn(), loggedIn);
    QCOMPARE(given, registration);
    QCOMPARE(client.registration(), registration);
    QCOMPARE(client.registration().isNull(), registration.isNull());
}

void tst_PresenterClientAccount::passwordLoginAsksForNoRegistration()
{
    FakeService service;
    service.expect(SUBMIT, Answer::json(R"({"infoMsgKeys":["success.registration"],"data":{}})"));
    PresenterClient client(nullptr, service.url());

    QVERIFY(loginByPassword(client));
    QVERIFY(client.registration().isNull());
}

// What counts is whether the client knows a provider and a code, not which login it was.
void tst_PresenterClientAccount::passwordLoginAfterOAuthAsksForRegistration()
{
    FakeService service;
    service.expect(CALLBACK, Answer::json("{}"));
    service.expect(SUBMIT, Answer::json(R"({"infoMsgKeys":["success.registration"],"data":{"a":1}})"));
    PresenterClient client(nullptr, service.url());
    QVERIFY(!loginWithOAuth(client));

    QVERIFY(!loginByPassword(client));
    QCOMPARE(client.registration(), QStringLiteral(R"({"a":1})"));
}

void tst_PresenterClientAccount::registrationIsCompletedInASecondStep()
{
    FakeService service;
    service.expect(CALLBACK, Answer::json(R"({"infoMsgKeys":["success.registration"],"data":{"mail":"m"}})"));
    service.expect(REGISTER, Answer::json(SUCCESS));
    PresenterClient client(nullptr, service.url());
    QString registration;

    QVERIFY(!client.doLoginWithOAuth(QStringLiteral("google"), QStringLiteral("c"), registration));
    QCOMPARE(registration, QStringLiteral(R"({"mail":"m"})"));
    QVERIFY(client.doLoginWithOAuth(QStringLiteral("google"), QStringLiteral("c"), registration));
    QVERIFY(registration.isNull());
    QVERIFY(client.registration().isNull());
}

void tst_PresenterClientAccount::accessToken_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("token");
    QTest::addColumn<QString>("registration");

    const auto row = [](const char* body, const char* token, const char* registration) {
        QTest::newRow(body) << QByteArray(body) << QString::fromUtf8(token)
                            << QString::fromUtf8(registration);
    };
    row(R"({"data":{"deviceAccessToken":"T1"}})", "T1", nullptr);
    row(R"({"data":{"deviceAccessToken":7}})", "7", nullptr);
    row(R"({"data":{"deviceAccessToken":""}})", "", R"({"deviceAccessToken":""})");
    row(R"({"success":false,"data":{"mail":"zoë"}})", "", R"({"mail":"zoë"})");
    row(R"({"success":false})", "", R"(ess":false)");
    row("<html></html>", "", "</html");
    row("{}", "", "");
    row("", "", "");
    row(R"("data":{"a":1})", "", nullptr); // at the very beginning it is not taken
}

void tst_PresenterClientAccount::accessToken()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, token);
    QFETCH(QString, registration);

    for (const bool oauth : {false, true}) {
        FakeService service;
        service.expect(oauth ? CALLBACK : SUBMIT, Answer::json(body));
        PresenterClient client(nullptr, service.url());
        QString given = QStringLiteral("given");
        const QString u = QStringLiteral("u");

        QCOMPARE(oauth ? getOAuthToken(client, &given) : client.doGetAccessToken(u, u, u, u), token);
        QCOMPARE(client.isLoggedIn(), !token.isEmpty());
        QCOMPARE(client.registration(), registration);
        QCOMPARE(given, oauth ? registration : QStringLiteral("given"));
        QCOMPARE(client.userId(), oauth ? QString() : u);
        QVERIFY(client.lastError().isNull());
    }
}

void tst_PresenterClientAccount::accessTokenStaysAsItWasWhenTheRequestFails()
{
    FakeService service;
    service.expect(SUBMIT, Answer::json(R"({"data":{"deviceAccessToken":"T1"}})"));
    service.expect(SUBMIT, Answer::json(R"({"data":{"deviceAccessToken":"T2"}})", 500));
    service.expect(CALLBACK, Answer::gone());
    PresenterClient client(nullptr, service.url());
    const QString u = QStringLiteral("u");
    QCOMPARE(client.doGetAccessToken(u, u, u, u), QStringLiteral("T1"));

    QCOMPARE(client.doGetAccessToken(u, u, u, u), QStringLiteral("T1"));
    QCOMPARE(getOAuthToken(client), QStringLiteral("T1"));
    QVERIFY(client.isLoggedIn());
}

void tst_PresenterClientAccount::accessTokenResetsNothingFirst()
{
    FakeService service;
    service.expect(SUBMIT, Answer::json(REFUSED, 401));
    service.expect(CALLBACK, Answer::json(REFUSED, 401));
    PresenterClient client(nullptr, service.url());
    client.loginSuccessResponse(QString::fromLatin1(SUCCESS));
    client.loginFailureResponse(nullptr, QStringLiteral(R"({"errorMsgKeys":["earlier.error"]})"));

    client.doGetAccessToken(QStringLiteral("u"), QStringLiteral("p"), QString(), QString());
    QVERIFY(client.isLoggedIn());
    getOAuthToken(client);
    QVERIFY(client.isLoggedIn());
    QCOMPARE(client.lastError(), QStringLiteral("earlier.error"));
}

void tst_PresenterClientAccount::oauthAccessTokenGivesTheEarlierRegistrationBack()
{
    FakeService service;
    service.expect(CALLBACK, Answer::json(R"({"data":{"mail":"m"}})"));
    service.expect(CALLBACK, Answer::json("{}", 500));
    PresenterClient client(nullptr, service.url());
    getOAuthToken(client);
    QString registration;

    QCOMPARE(getOAuthToken(client, &registration), QString());
    QCOMPARE(registration, QStringLiteral(R"({"mail":"m"})"));
}

void tst_PresenterClientAccount::userName_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("name");

    QTest::newRow("known") << QByteArray(R"({"data":{"userLoginId":"zoë"}})") << QString::fromUtf8("zoë");
    QTest::newRow("empty") << QByteArray(R"({"data":{"userLoginId":""}})") << "";
    QTest::newRow("absent") << QByteArray(R"({"data":{}})") << QString();
    QTest::newRow("no data") << QByteArray("{}") << QString();
    QTest::newRow("data is no object") << QByteArray(R"({"data":"userLoginId"})") << QString();
    QTest::newRow("no JSON") << QByteArray("userLoginId") << QString();
}

void tst_PresenterClientAccount::userName()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, name);

    FakeService service;
    service.expect(SUBMIT, Answer::json(name.isEmpty() ? SUCCESS : "{}"));
    service.expect(USER, Answer::json(body));
    PresenterClient client(nullptr, service.url());
    loginByPassword(client);

    QCOMPARE(client.doGetUserName(), name);
    QCOMPARE(client.userId(), name);
    QCOMPARE(client.userId().isNull(), name.isNull());
    QCOMPARE(client.isLoggedIn(), !name.isEmpty());
}

void tst_PresenterClientAccount::userNameStaysAsItWasWhenTheRequestFails()
{
    FakeService service;
    service.expect(SUBMIT, Answer::json(SUCCESS));
    service.expect(USER, Answer::json(R"({"data":{}})", 500));
    PresenterClient client(nullptr, service.url());
    QVERIFY(loginByPassword(client));

    QCOMPARE(client.doGetUserName(), QStringLiteral("u"));
    QVERIFY(client.isLoggedIn());
}

void tst_PresenterClientAccount::logout_data()
{
    QTest::addColumn<bool>("wasLoggedIn");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("loggedOut");

    QTest::newRow("answered") << true << QByteArray("{}") << 200 << true;
    QTest::newRow("error envelope") << true << QByteArray(REFUSED) << 200 << true;
    QTest::newRow("no JSON") << true << QByteArray("bye") << 200 << false;
    QTest::newRow("empty") << true << QByteArray() << 200 << false;
    QTest::newRow("http error") << true << QByteArray("{}") << 500 << false;
    QTest::newRow("http error, but nobody was logged in") << false << QByteArray("{}") << 500 << true;
}

void tst_PresenterClientAccount::logout()
{
    QFETCH(bool, wasLoggedIn);
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QFETCH(bool, loggedOut);

    FakeService service;
    service.expect(LOGOUT, Answer::json(body, status));
    PresenterClient client(nullptr, service.url());
    if (wasLoggedIn)
        client.loginSuccessResponse(QString::fromLatin1(SUCCESS));

    QCOMPARE(client.doLogout(), loggedOut);
    QCOMPARE(client.isLoggedIn(), !loggedOut);
}

void tst_PresenterClientAccount::logoutStopsTheSessionFirst()
{
    FakeService service;
    service.expect("/tavisto/session/stop", Answer::json("{}"));
    service.expect(LOGOUT, Answer::json("{}"));
    PresenterClient client(nullptr, service.url());
    client.sessionStartSuccessResponse(QStringLiteral(R"({"data":{"sessionToken":"T"}})"));

    QVERIFY(client.doLogout());
    QVERIFY(client.sessionToken().isNull());
}

void tst_PresenterClientAccount::logoutWithACodeAloneStopsNothing()
{
    FakeService service;
    service.expect(LOGOUT, Answer::json("{}"));
    PresenterClient client(nullptr, service.url());
    client.sessionSuccessResponse(QStringLiteral(R"({"data":{"sessionCode":"1"}})"));
    const LogRecorder log;

    QVERIFY(client.doLogout());
    QCOMPARE(log.debug(QStringLiteral("[PresenterClient] No session to stop!")).size(), 1);
}

void tst_PresenterClientAccount::logoutKeepsTheCredentials()
{
    FakeService service;
    service.expect(SUBMIT, Answer::json(SUCCESS));
    service.expect(LOGOUT, Answer::json("{}"));
    service.expect(SUBMIT, Answer::json(SUCCESS));
    PresenterClient client(nullptr, service.url());
    QVERIFY(loginByPassword(client));
    QVERIFY(client.doLogout());
    QCOMPARE(client.userId(), QStringLiteral("u"));
    client.reLogin();

    QVERIFY(client.isLoggedIn());
    QCOMPARE(service.requests().last().body, service.requests().first().body);
}

void tst_PresenterClientAccount::reLoginChoosesTheCredentials_data()
{
    QTest::addColumn<Preparation>("prepare");
    QTest::addColumn<QByteArray>("path"); // empty: no request
    QTest::addColumn<QByteArray>("body");

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

void tst_PresenterClientAccount::reLoginChoosesTheCredentials()
{
    QFETCH(Preparation, prepare);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);

    FakeService service;
    PresenterClient client(nullptr, service.url());
    prepare(client, service);
    const int before = service.requests().size();
    const bool wasLoggedIn = client.isLoggedIn();
    if (!path.isEmpty())
        service.expect(path, Answer::json(SUCCESS));
    client.reLogin();

    QCOMPARE(service.requests().size() - before, path.isEmpty() ? 0 : 1);
    QCOMPARE(client.isLoggedIn(), wasLoggedIn || !path.isEmpty());
    if (!path.isEmpty())
        QCOMPARE(service.last().body, body.replace("<server>", service.url().toUtf8()));
}

void tst_PresenterClientAccount::keepAliveRefreshesOnlyTheReachability_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("after");

    QTest::newRow("JSON") << QByteArray("{}") << 200 << false << true;
    QTest::newRow("error envelope") << QByteArray(REFUSED) << 200 << false << true;
    QTest::newRow("html") << QByteArray("<html>") << 200 << true << false;
    QTest::newRow("http error, reachable before") << QByteArray("{}") << 500 << true << true;
    QTest::newRow("http error, unreachable before") << QByteArray("{}") << 500 << false << false;
}

void tst_PresenterClientAccount::keepAliveRefreshesOnlyTheReachability()
{
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QFETCH(bool, before);
    QFETCH(bool, after);

    FakeService service;
    service.expect(KEEP_ALIVE, Answer::json(body, status));
    PresenterClient client(nullptr, service.url());
    client.loginSuccessResponse(QString::fromLatin1(SUCCESS));
    client.serverCheckResponse(before ? QStringLiteral("{}") : QString());
    client.sendKeepAlive();

    QCOMPARE(client.isServerReachable(), after);
    QVERIFY(client.isLoggedIn());
    QVERIFY(client.lastError().isNull());
}

// The timer's slot waits for its answer: what it would send has been sent when this returns.
static void advance(int msecs)
{
    TimerClock::advance(msecs);
    QCoreApplication::processEvents();
}

void tst_PresenterClientAccount::keepsAliveEveryMinuteAfterALogin_data()
{
    loginStartsAnew_data();
}

void tst_PresenterClientAccount::keepsAliveEveryMinuteAfterALogin()
{
    QFETCH(Login, login);
    QFETCH(QByteArray, path);

    FakeService service;
    service.expect(path, Answer::json(SUCCESS));
    PresenterClient client(nullptr, service.url());
    QVERIFY(login(client));
    advance(NOT_YET);
    QCOMPARE(service.requests().size(), 1);
    for (int i = 0; i < 3; ++i) {
        service.expect(KEEP_ALIVE, Answer::json("{}"));
        advance(i == 0 ? REST_OF_THE_PERIOD : PERIOD);
        QVERIFY(service.isUsedUp());
    }
}

void tst_PresenterClientAccount::keepsNothingAliveWithoutALogin_data()
{
    QTest::addColumn<Preparation>("prepare");

    QTest::newRow("new client") << Preparation([](PresenterClient&, FakeService&) {});
    QTest::newRow("refused") << Preparation([](PresenterClient& c, FakeService& s) {
        s.expect(SUBMIT, Answer::json(REFUSED, 401));
        loginByPassword(c);
    });
    QTest::newRow("access token") << Preparation([](PresenterClient& c, FakeService& s) {
        s.expect(SUBMIT, Answer::json(R"({"data":{"deviceAccessToken":"T"}})"));
        c.doGetAccessToken("u", "p", "d", "n");
        QVERIFY(c.isLoggedIn());
    });
    QTest::newRow("OAuth access token") << Preparation([](PresenterClient& c, FakeService& s) {
        s.expect(CALLBACK, Answer::json(R"({"data":{"deviceAccessToken":"T"}})"));
        getOAuthToken(c);
        QVERIFY(c.isLoggedIn());
    });
    QTest::newRow("user name") << Preparation([](PresenterClient& c, FakeService& s) {
        s.expect(USER, Answer::json(R"({"data":{"userLoginId":"u"}})"));
        c.doGetUserName();
        QVERIFY(c.isLoggedIn());
    });
}

void tst_PresenterClientAccount::keepsNothingAliveWithoutALogin()
{
    QFETCH(Preparation, prepare);

    FakeService service;
    PresenterClient client(nullptr, service.url());
    prepare(client, service);
    const int before = service.requests().size();
    advance(2 * PERIOD);

    QCOMPARE(service.requests().size(), before);
}

void tst_PresenterClientAccount::loginRestartsThePeriod()
{
    FakeService service;
    service.expect(SUBMIT, Answer::json(SUCCESS));
    service.expect(SUBMIT, Answer::json(SUCCESS));
    PresenterClient client(nullptr, service.url());
    QVERIFY(loginByPassword(client));
    advance(40000);
    QVERIFY(loginByPassword(client));
    advance(40000);
    QCOMPARE(service.requests().size(), 2);
    service.expect(KEEP_ALIVE, Answer::json("{}"));
    advance(PERIOD - 40000);

    QVERIFY(service.isUsedUp());
}

void tst_PresenterClientAccount::logoutEndsTheKeepAlive_data()
{
    QTest::addColumn<int>("status");

    QTest::newRow("logged out") << 200;
    QTest::newRow("logout failed") << 500;
}

void tst_PresenterClientAccount::logoutEndsTheKeepAlive()
{
    QFETCH(int, status);

    FakeService service;
    service.expect(SUBMIT, Answer::json(SUCCESS));
    service.expect(LOGOUT, Answer::json("{}", status));
    PresenterClient client(nullptr, service.url());
    QVERIFY(loginByPassword(client));
    client.doLogout();
    advance(2 * PERIOD);

    QCOMPARE(service.requests().size(), 2);
}

void tst_PresenterClientAccount::keepAliveFallsDueDuringAnotherWait()
{
    FakeService service;
    service.expect(SUBMIT, Answer::json(SUCCESS));
    PresenterClient client(nullptr, service.url());
    QVERIFY(loginByPassword(client));
    advance(PERIOD - 8500);
    QCOMPARE(service.requests().size(), 1);
    service.expect(USER, Answer::json(R"({"data":{"userLoginId":"u"}})").held().then([] {
        TimerClock::advance(8500); // due, while the wait still has time
    }));
    service.expect(KEEP_ALIVE, Answer::json("{}"));
    connect(&client, &PresenterClient::requestProcessed, &service, [&] {
        if (service.isHolding())
            QTimer::singleShot(0, &service, [&] { service.release(); });
    });

    QCOMPARE(client.doGetUserName(), QStringLiteral("u"));
    QVERIFY(client.isServerReachable());
    QCOMPARE(service.abandoned(), 0);
}

QTEST_GUILESS_MAIN(tst_PresenterClientAccount)

#include "tst_PresenterClientAccount.moc"
