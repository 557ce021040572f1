// The keep-alive of a login.

#include "support/ClientTest.h"
#include "support/LogRecorder.h"
#include "support/Logins.h"
#include "support/Rows.h"
#include "support/TimerClock.h"
#include "support/WaitFor.h"

#include <CalyxClient/PresenterClient>

#include <QTest>
#include <QThread>
#include <QTimer>

#include <functional>

using namespace Logins;

namespace {

// The period of the keep-alive is 60 seconds, and Qt's timers may be off by a twentieth.
const int NOT_YET = 56000;
const int REST_OF_THE_PERIOD = 7500;
const int PERIOD = NOT_YET + REST_OF_THE_PERIOD;

using Login = std::function<bool(PresenterClient&)>;
using Preparation = std::function<void(PresenterClient&, FakeService&)>;

} // namespace

Q_DECLARE_METATYPE(Login)
Q_DECLARE_METATYPE(Preparation)

// The timer's slot waits for its answer: what it would send has been sent when this returns.
static void advance(int msecs)
{
    TimerClock::advance(msecs);
    QCoreApplication::processEvents();
}

class tst_PresenterClientKeepAlive : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void keepAliveRefreshesOnlyTheReachability_data()
    {
        rows<QByteArray, int, bool, bool>({
            {"JSON", "{}", 200, false, true},
            {"error envelope", QByteArray(REFUSED), 200, false, true},
            {"html", "<html>", 200, true, false},
            {"http error, reachable before", "{}", 500, true, true},
            {"http error, unreachable before", "{}", 500, false, false},
        });
    }

    void keepAliveRefreshesOnlyTheReachability()
    {
        const auto [body, status, before, after] = row<QByteArray, int, bool, bool>();
        service().expect(KEEP_ALIVE, Answer::json(body, status));
        client().loginSuccessResponse(QString::fromLatin1(SUCCESS));
        client().serverCheckResponse(before ? QStringLiteral("{}") : QString());
        client().sendKeepAlive();

        QCOMPARE(client().isServerReachable(), after);
        QVERIFY(client().isLoggedIn());
        QVERIFY(client().lastError().isNull());
    }

    void keepsAliveEveryMinuteAfterALogin_data()
    {
        rows<Login, QByteArray>({
            {"password", Login(loginByPassword), QByteArray(SUBMIT)},
            {"device", Login(loginByDevice), QByteArray(SUBMIT)},
            {"OAuth", Login(loginWithOAuth), QByteArray(CALLBACK)},
            {"registration", Login(registerWithOAuth), QByteArray(REGISTER)},
        });
    }

    void keepsAliveEveryMinuteAfterALogin()
    {
        const auto [login, path] = row<Login, QByteArray>();
        service().expect(path, Answer::json(SUCCESS));
        QVERIFY(login(client()));
        advance(NOT_YET);
        QCOMPARE(service().requests().size(), 1);
        for (int i = 0; i < 3; ++i) {
            service().expect(KEEP_ALIVE, Answer::json("{}"));
            advance(i == 0 ? REST_OF_THE_PERIOD : PERIOD);
            QVERIFY(service().isUsedUp());
        }
    }

    void keepsAliveOnTheThreadThatItWasMovedTo()
    {
        const LogRecorder log;
        service().expect(SUBMIT, Answer::json(SUCCESS));
        bool ended = false;
        QThread thread;
        connect(&thread, &QThread::finished, this, [&] { ended = true; });
        client().moveToThread(&thread);
        connect(&thread, &QThread::started, &client(), [&] {
            loginByPassword(client());
            deleteClient();
            thread.quit();
        });
        thread.start();

        QVERIFY(waitFor([&] { return ended; }));
        QVERIFY(thread.wait());
        QVERIFY(service().isUsedUp());
        QCOMPARE(log.warnings(), QStringList());
    }

    void keepsNothingAliveWithoutALogin_data()
    {
        rows<Preparation>({
            {"new client", Preparation([](PresenterClient&, FakeService&) {})},
            {"refused", Preparation([](PresenterClient& c, FakeService& s) {
                 s.expect(SUBMIT, Answer::json(REFUSED, 401));
                 loginByPassword(c);
             })},
            {"access token", Preparation([](PresenterClient& c, FakeService& s) {
                 s.expect(SUBMIT, Answer::json(R"({"data":{"deviceAccessToken":"T"}})"));
                 c.doGetAccessToken("u", "p", "d", "n");
                 QVERIFY(c.isLoggedIn());
             })},
            {"OAuth access token", Preparation([](PresenterClient& c, FakeService& s) {
                 s.expect(CALLBACK, Answer::json(R"({"data":{"deviceAccessToken":"T"}})"));
                 getOAuthToken(c);
                 QVERIFY(c.isLoggedIn());
             })},
            {"user name", Preparation([](PresenterClient& c, FakeService& s) {
                 s.expect(USER, Answer::json(R"({"data":{"userLoginId":"u"}})"));
                 c.doGetUserName();
                 QVERIFY(c.isLoggedIn());
             })},
        });
    }

    void keepsNothingAliveWithoutALogin()
    {
        const auto [prepare] = row<Preparation>();
        prepare(client(), service());
        const int before = service().requests().size();
        advance(2 * PERIOD);

        QCOMPARE(service().requests().size(), before);
    }

    void loginRestartsThePeriod()
    {
        service().expect(SUBMIT, Answer::json(SUCCESS));
        service().expect(SUBMIT, Answer::json(SUCCESS));
        QVERIFY(loginByPassword(client()));
        advance(40000);
        QVERIFY(loginByPassword(client()));
        advance(40000);
        QCOMPARE(service().requests().size(), 2);
        service().expect(KEEP_ALIVE, Answer::json("{}"));
        advance(PERIOD - 40000);

        QVERIFY(service().isUsedUp());
    }

    void logoutEndsTheKeepAlive_data()
    {
        rows<int>({
            {"logged out", 200},
            {"logout failed", 500},
        });
    }

    void logoutEndsTheKeepAlive()
    {
        const auto [status] = row<int>();
        service().expect(SUBMIT, Answer::json(SUCCESS));
        service().expect(LOGOUT, Answer::json("{}", status));
        QVERIFY(loginByPassword(client()));
        client().doLogout();
        advance(2 * PERIOD);

        QCOMPARE(service().requests().size(), 2);
    }

    void keepAliveFallsDueDuringAnotherWait()
    {
        service().expect(SUBMIT, Answer::json(SUCCESS));
        QVERIFY(loginByPassword(client()));
        advance(PERIOD - 8500);
        QCOMPARE(service().requests().size(), 1);
        service().expect(USER, Answer::json(R"({"data":{"userLoginId":"u"}})").held().then([] {
            TimerClock::advance(8500); // due, while the wait still has time
        }));
        service().expect(KEEP_ALIVE, Answer::json("{}"));
        connect(&client(), &PresenterClient::requestProcessed, &service(), [&] {
            if (service().isHolding())
                QTimer::singleShot(0, &service(), [&] { service().release(); });
        });

        QCOMPARE(client().doGetUserName(), QStringLiteral("u"));
        QVERIFY(client().isServerReachable());
        QCOMPARE(service().abandoned(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientKeepAlive)

#include "tst_PresenterClientKeepAlive.moc"
