// How operations wait: for how long, for what, and what may happen meanwhile; the keep-alive of a login; and
// the host that destroys the client while an operation waits. The ways to do that inside one another are in
// tst_RandomWalk.

#include "support/ClientOperations.h"
#include "support/ClientTest.h"
#include "support/FakeService.h"
#include "support/LogRecorder.h"
#include "support/Logins.h"
#include "support/Rows.h"
#include "support/TimerClock.h"
#include "support/WaitFor.h"

#include <CalyxClient/PresenterClient>

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QPointer>
#include <QSignalBlocker>
#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <functional>

using namespace ClientOperations;
using namespace Logins;

namespace {

// The limit of a wait is 10 seconds, and Qt's timers may be off by a twentieth.
const int BEFORE_THE_LIMIT = 9000;
const int PAST_THE_LIMIT = 10600;

// The period of the keep-alive is 60 seconds, and Qt's timers may be off by a twentieth.
const int NOT_YET = 56000;
const int REST_OF_THE_PERIOD = 7500;
const int PERIOD = NOT_YET + REST_OF_THE_PERIOD;

using Login = std::function<bool(PresenterClient&)>;
using Preparation = std::function<void(PresenterClient&, FakeService&)>;
using Hosts = std::function<void(PresenterClient*)>;
using Answer = FakeService::Answer;

// A client that has a started session says so to the service before it goes.
void destroy(PresenterClient* client, FakeService& service)
{
    if (!client->sessionToken().isNull())
        service.expect("/tavisto/session/stop", Answer::json("{}"));
    delete client;
}

// No answer comes; \p action runs from the event loop, as a host's would, while the client waits for one.
Answer unansweredWhile(FakeService& service, const std::function<void()>& action)
{
    return Answer::never().then([&service, action] { QTimer::singleShot(0, &service, action); });
}

bool isNoResult(const QVariant& result)
{
    return result.toString().isEmpty() || result == QVariant(false);
}

} // namespace

Q_DECLARE_METATYPE(Login)
Q_DECLARE_METATYPE(Preparation)
Q_DECLARE_METATYPE(Hosts)

// The timer's slot waits for its answer: what it would send has been sent when this returns.
static void advance(int msecs)
{
    TimerClock::advance(msecs);
    QCoreApplication::processEvents();
}

class tst_PresenterClientWait : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void noAnswerIn10SecondsIsAborted()
    {
        service().expect("/a", Answer::never());
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));
        const LogRecorder log;
        QElapsedTimer elapsed;
        elapsed.start();
        client().request("/a");
        QVERIFY2(elapsed.elapsed() >= 9500 && elapsed.elapsed() < 12000,
                 qPrintable(QString::number(elapsed.elapsed())));
        QVERIFY(client().successes.isEmpty());
        QCOMPARE(client().failures, QStringList{QString()});
        QCOMPARE(client().errors, QList<QNetworkReply::NetworkError>{QNetworkReply::OperationCanceledError});
        QCOMPARE(processed.size(), 1);
        QCOMPARE(log.debug("[REST Response] ").size(), 1);
        QTRY_COMPARE(service().abandoned(), 1);
    }

    void quitBeforeTheApplicationRunsDoesNotEndTheWait()
    {
        service().expect("/a", Answer::json("1"));
        QCoreApplication::quit();
        client().request("/a");
        QCOMPARE(client().successes, QStringList{"1"});
        forgetQuit();
    }

    void answerAfter9SecondsIsInTime()
    {
        service().expect("/a", Answer::json("1").held().then([&] {
            TimerClock::advance(BEFORE_THE_LIMIT);
            // A round of the event loop, in which a limit that had passed would show.
            QTimer::singleShot(0, &service(), [&] { service().release(); });
        }));
        client().request("/a");
        QCOMPARE(client().successes, QStringList{"1"});
        QCOMPARE(service().abandoned(), 0);
    }

    void stalledBodyIsAbortedToo()
    {
        service().expect("/a",
                         Answer::stalled(R"({"data":{}})").then([] { TimerClock::advance(PAST_THE_LIMIT); }));
        client().request("/a");
        QVERIFY(client().successes.isEmpty());
        QCOMPARE(client().errors, QList<QNetworkReply::NetworkError>{QNetworkReply::OperationCanceledError});
        QTRY_COMPARE(service().abandoned(), 1);
    }

    void timeOutEndsTheOperation_data()
    {
        Operation noAddress = chainedOperations().at(1).second;
        noAddress.paths = noAddress.paths.mid(0, 1);
        rows<Operation>({
            {"startWebsocket, first request", noAddress},
        });
        for (const auto& operation : operations())
            QTest::newRow(operation.first) << operation.second;
    }
    void timeOutEndsTheOperation()
    {
        const auto [operation] = row<Operation>();
        for (const QByteArray& path : operation.paths.mid(0, operation.paths.size() - 1))
            service().expect(path, Answer::json(ALL_IS_WELL));
        service().expect(operation.paths.last(),
                         Answer::never().then([] { TimerClock::advance(PAST_THE_LIMIT); }));
        operation.prepare(&client());
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));
        QCOMPARE(operation.call(&client()), operation.timedOut);
        QCOMPARE(processed.size(), operation.paths.size());
        QVERIFY(client().lastError().isNull());
        QTRY_COMPARE(service().abandoned(), 1);
        if (!client().sessionToken().isNull())
            service().expect("/tavisto/session/stop", Answer::json("{}"));
    }

    // The wait is not told that the reply has been processed, and the reply is gone when the time is over.
    void hostThatBlocksSignalsGetsItsAnswerAtTheLimit()
    {
        service().expect("/own", Answer::json("own"));
        client().processed = [] { TimerClock::advance(PAST_THE_LIMIT); };
        {
            const QSignalBlocker blocker(&client());
            client().request("/own");
        }
        QCOMPARE(client().successes, QStringList{"own"});
        QVERIFY(client().failures.isEmpty());
    }

    void requestWithoutWaitHasNoTimeLimit()
    {
        service().expect("/a", Answer::json("1").held());
        client().request("/a", false);
        QTRY_COMPARE(service().requests().size(), 1);
        TimerClock::advance(2 * PAST_THE_LIMIT);
        service().release();
        QTRY_COMPARE(client().successes, QStringList{"1"});
    }

    void anotherReplyDoesNotEndTheWait()
    {
        service().expect("/early", Answer::json("early").held());
        service().expect("/own", Answer::json("own").held().then([&] { service().release(); }));
        client().request("/early", false);
        QTRY_COMPARE(service().requests().size(), 1);
        connect(&client(), &PresenterClient::requestProcessed, this, [&] {
            if (client().successes.size() == 1)
                QTimer::singleShot(0, &service(), [&] { service().release(); });
        });
        client().request("/own");
        QCOMPARE(client().successes, (QStringList{"early", "own"}));
    }

    void earlierRequestOutlivesTheWait_data()
    {
        rows<Answer, QStringList>({
            {"answered", Answer::json("own"), QStringList("own")},
            {"timed out", Answer::never().then([] { TimerClock::advance(PAST_THE_LIMIT); }), QStringList()},
        });
    }
    void earlierRequestOutlivesTheWait()
    {
        const auto [answer, own] = row<Answer, QStringList>();
        service().expect("/slow", Answer::json("slow").held());
        service().expect("/own", answer);
        client().request("/slow", false);
        QTRY_COMPARE(service().requests().size(), 1);
        client().request("/own");
        QCOMPARE(client().successes, own);
        service().release();
        QTRY_COMPARE(client().successes, own + QStringList("slow"));
    }

    void operationsNest()
    {
        bool innerReachable = false;
        bool outerReturned = false;
        service().expect("/tavisto/login/submit", Answer::json(ALL_IS_WELL).held().then([&] {
            QTimer::singleShot(0, &client(),
                               [&] { innerReachable = client().checkServer(QString(), QString()); });
        }));
        // The outer operation has its answer first, and has to wait for the inner one.
        service().expect("/tavisto", Answer::json("{}").held().then([&] { service().release(); }));
        connect(&client(), &PresenterClient::requestProcessed, this, [&] {
            if (client().isLoggedIn() && !innerReachable && service().requests().size() == 2)
                QTimer::singleShot(0, &service(), [&] {
                    if (service().isHolding())
                        service().release();
                });
        });
        outerReturned = client().doLogin("u", "p");
        QVERIFY(outerReturned);
        QVERIFY(innerReachable);
    }

    void keepAliveInsideAWaitNeitherEndsNorAbortsIt()
    {
        bool keptAlive = false;
        service().expect("/tavisto/login/submit", Answer::json(ALL_IS_WELL).held().then([&] {
            QTimer::singleShot(0, &client(), [&] {
                QMetaObject::invokeMethod(&client(), "onPingTimer");
                keptAlive = client().isServerReachable();
                QTimer::singleShot(0, &service(), [&] { service().release(); });
            });
        }));
        service().expect("/tavisto/login/keepSessionAlive", Answer::json("{}"));
        QVERIFY(client().doLogin("u", "p"));
        QVERIFY(keptAlive);
        QCOMPARE(service().abandoned(), 0);
    }

    void keepAliveOutlivesTheReplyOfTheOuterOperation()
    {
        service().expect("/tavisto/login/submit", Answer::json(ALL_IS_WELL).held().then([&] {
            QTimer::singleShot(0, &client(), [&] { QMetaObject::invokeMethod(&client(), "onPingTimer"); });
        }));
        service().expect("/tavisto/login/keepSessionAlive",
                         Answer::json("{}").held().then([&] { service().release(); }));
        connect(&client(), &PresenterClient::requestProcessed, &service(), [&] {
            if (client().isLoggedIn() && service().isHolding())
                QTimer::singleShot(0, &service(), [&] { service().release(); });
        });
        QVERIFY(client().doLogin("u", "p"));
        QTRY_VERIFY(client().isServerReachable());
        QCOMPARE(service().abandoned(), 0);
    }

    void keepAliveDoesNotProlongTheOuterOperation_data()
    {
        rows<bool>({{"own reply processed", true}, {"own limit reached", false}});
    }
    // The keep-alive gets no answer. It is not aborted before its own 10 seconds are over.
    void keepAliveDoesNotProlongTheOuterOperation()
    {
        const bool isAnswered = std::get<0>(row<bool>()); // not a binding: lambdas take it
        service().expect("/tavisto/login/submit", Answer::json(ALL_IS_WELL).held().then([&] {
            TimerClock::advance(PAST_THE_LIMIT / 2);
            QTimer::singleShot(0, &client(), [&] { QMetaObject::invokeMethod(&client(), "onPingTimer"); });
        }));
        service().expect("/tavisto/login/keepSessionAlive", Answer::never().then([&] {
            if (isAnswered)
                service().release();
            else
                TimerClock::advance(PAST_THE_LIMIT / 2);
        }));
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));
        QCOMPARE(client().doLogin("u", "p"), isAnswered);
        QCOMPARE(processed.size(), 1);
        TimerClock::advance(PAST_THE_LIMIT);
        QTRY_VERIFY(service().abandoned() > 0);
    }

    // The outer operation has its reply, but cannot return before the slot does.
    void keepAliveInASlotOfTheOuterOperationsReplyIsNotWaitedFor()
    {
        service().expect("/tavisto/login/submit", Answer::json(ALL_IS_WELL));
        service().expect("/tavisto/login/keepSessionAlive", Answer::json("{}").held());
        connect(&client(), &PresenterClient::requestProcessed, &service(), [&] {
            if (!client().isServerReachable())
                client().sendKeepAlive();
        });
        QVERIFY(client().doLogin("u", "p"));
        QVERIFY(!client().isServerReachable());
        QTRY_VERIFY(service().isHolding());
        service().release();
        QTRY_VERIFY(client().isServerReachable());
    }

    // Thousands of short operations within the limit would otherwise have thousands of timers run.
    void aWaitThatHasEndedLeavesNoTimer()
    {
        service().expect("/a", Answer::json("1"));
        const int before = client().findChildren<QTimer*>().size();
        client().request("/a");
        QTRY_COMPARE(client().findChildren<QTimer*>().size(), before);
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

    void logoutEndsTheKeepAlive_data() { rows<int>({{"logged out", 200}, {"logout failed", 500}}); }
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

    void clientDestroyed_data()
    {
        columns<Operation, int, bool>();
        for (const auto& operation : operations() + chainedOperations()) {
            for (int i = 0; i < operation.second.paths.size(); ++i) {
                QTest::addRow("%s, request %d, timer", operation.first, i + 1)
                    << operation.second << i << true;
                QTest::addRow("%s, request %d, slot", operation.first, i + 1)
                    << operation.second << i << false;
            }
        }
    }
    // By a timer while the request waits for its answer, or by a slot of requestProcessed() when it has come.
    void clientDestroyed()
    {
        const auto [operation, request, byTimer] = row<Operation, int, bool>();
        QPointer<PresenterClient> client = new PresenterClient(nullptr, service().url());
        operation.prepare(client);
        for (int i = 0; i < request; ++i)
            service().expect(operation.paths.at(i), Answer::json(ALL_IS_WELL));
        service().expect(operation.paths.at(request),
                         byTimer ? unansweredWhile(service(), [&] { destroy(client, service()); })
                                 : Answer::json(ALL_IS_WELL));
        QMetaObject::Connection connection;
        connection = connect(client, &PresenterClient::requestProcessed, &service(), [&, byTimer = byTimer] {
            if (byTimer || !service().isUsedUp())
                return;
            disconnect(connection); // the destructor makes requests as well
            destroy(client, service());
        });
        const QPointer<QNetworkAccessManager> manager = client->findChild<QNetworkAccessManager*>();
        const QVariant result = operation.call(client);
        QVERIFY(!client);
        QVERIFY2(isNoResult(result), qPrintable(result.toString()));
        QTRY_VERIFY(!manager);
        QTRY_COMPARE(service().abandoned(), byTimer ? 1 : 0);
    }

    void destructionIsNotRepeated_data()
    {
        columns<Hosts, Hosts>();
        const Hosts nothing = [](PresenterClient*) {};
        const Hosts later = [](PresenterClient* client) { client->deleteLater(); };
        QTest::newRow("deleteLater() before") << later << nothing;
        QTest::newRow("deleteLater() meanwhile") << nothing << later;
        QTest::newRow("the parent meanwhile")
            << nothing
            << Hosts([](PresenterClient* client) { delete client->property("owner").value<QObject*>(); });
    }
    // While the destructor waits for the end of the session, the host's slots run.
    void destructionIsNotRepeated()
    {
        const std::tuple<Hosts, Hosts> hosts = row<Hosts, Hosts>();
        const auto& before = std::get<0>(hosts);
        const auto& meanwhile = std::get<1>(hosts);
        const QPointer<QObject> owner = new QObject;
        auto* client = new PresenterClient(owner, service().url());
        client->setProperty("owner", QVariant::fromValue(owner.data()));
        client->sessionStartSuccessResponse(QString::fromLatin1(ALL_IS_WELL));
        int ends = 0;
        connect(client, &QObject::destroyed, &service(), [&] { ++ends; });
        service().expect("/tavisto/session/stop", Answer::json("{}").held().then([&] {
            QTimer::singleShot(0, &service(), [&] {
                meanwhile(client);
                QTimer::singleShot(0, &service(), [&] { service().release(); });
            });
        }));
        QTimer::singleShot(0, &service(), [&] {
            before(client);
            delete client;
        });
        QTRY_VERIFY(service().isUsedUp() && ends > 0);
        delete owner;
        QCOMPARE(ends, 1);
    }

    void clientDestroyedOnceProcessed_data()
    {
        rows<Answer>({
            {"redirect", Answer::redirect("https://moved.example/")},
            {"time-out", Answer::never().then([] { TimerClock::advance(PAST_THE_LIMIT); })},
        });
    }
    void clientDestroyedOnceProcessed()
    {
        const auto [answer] = row<Answer>();
        service().expect("/tavisto/login/submit", answer);
        const QPointer<PresenterClient> client = new PresenterClient(nullptr, service().url());
        connect(client, &PresenterClient::requestProcessed, this, [&] { delete client; });
        QVERIFY(!client->doLogin("u", "p"));
        QVERIFY(!client);
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientWait)
#include "tst_PresenterClientWait.moc"
