// What the operations send, and which credentials log in again. What they keep is in
// tst_PresenterClientAnswers.

#include "support/ClientTest.h"
#include "support/Logins.h"
#include "support/Rows.h"

#include <CalyxClient/PresenterClient>

#include <QTest>

#include <functional>

using namespace Logins;

namespace {

using Call = std::function<void(PresenterClient&, const QStringList&)>;
using Preparation = std::function<void(PresenterClient&, FakeService&)>;

} // namespace

Q_DECLARE_METATYPE(Call)
Q_DECLARE_METATYPE(Preparation)

class tst_PresenterClientAccount : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void sendsItsRequest_data()
    {
        columns<Call, QStringList, QByteArray, QByteArray>();
        using C = PresenterClient&;
        using V = const QStringList&;
        const auto row = [](const char* name, const QByteArray& path, const QByteArray& body,
                            const Call& call) {
            QTest::newRow(name) << call << QStringList() << path << body;
        };
        // <n> stands for the nth value. Nothing is escaped, and no value is taken for a placeholder.
        const auto withValues = [](const QByteArray& name, const char* path, const char* body,
                                   const Call& call) {
            for (const QStringList& values :
                 {QStringList{"u", "p", "d", "n"}, QStringList{"", "", "", ""},
                  QStringList{"\"%1%2\"", "%0 \\", "Zoë\xf0\x9f\x8e\x93", "a\nb<>&"}})
                QTest::addRow("%s %s", name.constData(), qPrintable(values.first()))
                    << call << values << QByteArray(path) << QByteArray(body);
        };
        withValues("doLogin", SUBMIT, R"({"userId":"<0>","password":"<1>","sourceSystem":"Lumora"})",
                   [](C c, V v) { c.doLogin(v[0], v[1]); });
        withValues("doLogin by device", SUBMIT,
                   R"({"userId":"<0>","deviceId":"<1>","deviceAccessToken":"<2>","sourceSystem":"Lumora"})",
                   [](C c, V v) { c.doLogin(v[0], v[1], v[2]); });
        withValues("doLoginWithOAuth", CALLBACK,
                   R"({"code":"<0>","callbackUrl":"<server>","sourceSystem":"Lumora"})",
                   [](C c, V v, QString out = {}) { c.doLoginWithOAuth("google", v[0], out); });
        withValues(
            "doGetAccessToken", SUBMIT,
            R"({"userId":"<0>","password":"<1>","deviceId":"<2>","deviceName":"<3>","sourceSystem":"Lumora"})",
            [](C c, V v) { c.doGetAccessToken(v[0], v[1], v[2], v[3]); });
        withValues(
            "doGetOAuthAccessToken", CALLBACK,
            R"({"code":"<0>","callbackUrl":"<server>","deviceId":"<1>","deviceName":"<2>","sourceSystem":"Lumora"})",
            [](C c, V v, QString out = {}) { c.doGetOAuthAccessToken("google", v[0], v[1], v[2], out); });
        for (const char* provider : {"facebook", "Facebook", "facebook2", "my school"}) {
            const QByteArray path =
                "/tavisto/login/oauth/" + QByteArray(provider).replace(' ', "%20") + "/callback";
            const QByteArray url = qstrcmp(provider, "facebook") == 0 ? "<server>/" : "<server>";
            const QByteArray begin = "{\"code\":\"c\",\"callbackUrl\":\"" + url;
            row(provider, path, begin + "\",\"sourceSystem\":\"Lumora\"}",
                [=](C c, V, QString out = {}) { c.doLoginWithOAuth(provider, "c", out); });
            row(provider, path,
                begin + "\",\"deviceId\":\"d\",\"deviceName\":\"n\",\"sourceSystem\":\"Lumora\"}",
                [=](C c, V, QString out = {}) { c.doGetOAuthAccessToken(provider, "c", "d", "n", out); });
        }
        row("doGetUserName", USER, "{}", [](C c, V) { c.doGetUserName(); });
        row("doStartSession", "/tavisto/session/create", "{}", [](C c, V) { c.doStartSession("not used"); });
        row("doLogout", LOGOUT, "{}", [](C c, V) { c.doLogout(); });
        row("sendKeepAlive", KEEP_ALIVE, "", [](C c, V) { c.sendKeepAlive(); });
        row("onPingTimer", KEEP_ALIVE, "", [](C c, V) { QMetaObject::invokeMethod(&c, "onPingTimer"); });
        row("checkServer", "/tavisto", "", [](C c, V) { c.checkServer(QString(), QString()); });
        row("doGetLearners", "/tavisto/session/getusers", "{\"sessionToken\":\"é\"%1\"}", [](C c, V) {
            Sessions::openSession(c, "é\\\"%1");
            c.doGetLearners();
        });
        row("doStopSession", Sessions::STOP, R"({"sessionToken":"%1"})", [](C c, V) {
            Sessions::openSession(c, "%1");
            c.doStopSession();
        });
    }
    void sendsItsRequest()
    {
        auto [call, values, path, body] = row<Call, QStringList, QByteArray, QByteArray>();
        if (path.endsWith("/create"))
            service().expect(USER, Answer::json(R"({"data":{"userLoginId":"u"}})"));
        service().expect(path, Answer::json("{}"));
        call(client(), values);
        body.replace("<server>", service().url().toUtf8());
        for (int i = 0; i < values.size(); ++i)
            body.replace('<' + QByteArray::number(i) + '>', values.at(i).toUtf8());
        QCOMPARE(service().last().method, QByteArray("POST"));
        QCOMPARE(service().last().header("content-type"), QByteArray("application/json; charset=UTF-8"));
        QCOMPARE(service().last().body, body);
        if (!client().sessionToken().isNull())
            service().expect(Sessions::STOP, Answer::json("{}"));
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
    void reLoginChoosesTheCredentials_data()
    {
        columns<Preparation, QByteArray, QByteArray>(); // empty: no request
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
        const auto logout = [](PresenterClient& c, FakeService& s) {
            s.expect(LOGOUT, Answer::json("{}"));
            c.doLogout();
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
        row("password, and logged out", {password, logout}, SUBMIT, byPassword);
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

QTEST_GUILESS_MAIN(tst_PresenterClientAccount)
#include "tst_PresenterClientAccount.moc"
