// How operations wait: for how long, for what, and what may happen meanwhile.

#include "support/ClientProbe.h"
#include "support/FakeService.h"
#include "support/LogRecorder.h"
#include "support/TimerClock.h"

#include <CalyxClient/PresenterClient>

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QSignalBlocker>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>

using Answer = FakeService::Answer;

namespace {

// The limit of a wait is 10 seconds, and Qt's timers may be off by a twentieth.
const int BEFORE_THE_LIMIT = 9000;
const int PAST_THE_LIMIT = 10600;

// An answer with which every operation goes on to its next request.
const char ALL_IS_WELL[] =
    R"({"success":true,"infoMsgs":["success"],"data":{"deviceAccessToken":"A","userLoginId":"u",)"
    R"("sessionCode":"123456","users":[],"url":"http://127.0.0.1:1/","sockJSProtocols":["websocket"],)"
    R"("sessionToken":"T","userToken":"U","id":"i","path":"p"}})";

/// An operation of the client with the requests that it makes.
struct Operation
{
    /// Gives what the operation returned; nothing for one that returns nothing.
    std::function<QVariant(PresenterClient*)> call;
    QList<QByteArray> paths;
    std::function<void(PresenterClient*)> prepare;
    /// What it returns when its last request is not answered in time.
    QVariant timedOut;
};

void ready(PresenterClient*) {}

void logIn(PresenterClient* client)
{
    client->loginSuccessResponse(QString::fromLatin1(ALL_IS_WELL));
}

void createSession(PresenterClient* client)
{
    client->sessionSuccessResponse(QString::fromLatin1(ALL_IS_WELL));
}

void openSession(PresenterClient* client)
{
    logIn(client);
    createSession(client);
    client->sessionStartSuccessResponse(QString::fromLatin1(ALL_IS_WELL));
}

QVariant loginWithOAuth(PresenterClient* client, QString registration)
{
    return client->doLoginWithOAuth(QStringLiteral("google"), QStringLiteral("code"), registration);
}

QVariant getOAuthAccessToken(PresenterClient* client)
{
    QString registration;
    return client->doGetOAuthAccessToken(QStringLiteral("google"), QStringLiteral("code"),
                                         QStringLiteral("d"), QStringLiteral("n"), registration);
}

QVariant startWebsocket(PresenterClient* client)
{
    PresenterCollab* collab = nullptr;
    return client->startWebsocket(&collab) || collab;
}

QVariant upload(PresenterClient* client)
{
    QString id;
    QString path;
    return client->doUploadResource(QStringLiteral("f"), QByteArray("d"), &id, &path) || !id.isNull() ||
           !path.isNull();
}

} // namespace

Q_DECLARE_METATYPE(Operation)

static QList<QPair<const char*, Operation>> operations()
{
    using Client = PresenterClient*;
    const QString u = QStringLiteral("u");
    return {
        {"checkServer", {[=](Client c) { return c->checkServer(u, u); }, {"/tavisto"}, ready, false}},
        {"doLogin", {[=](Client c) { return c->doLogin(u, u); }, {"/tavisto/login/submit"}, ready, false}},
        {"doLogin by device",
         {[=](Client c) { return c->doLogin(u, u, u); }, {"/tavisto/login/submit"}, ready, false}},
        {"doLoginWithOAuth",
         {[](Client c) { return loginWithOAuth(c, QString()); },
          {"/tavisto/login/oauth/google/callback"},
          ready,
          false}},
        {"doLoginWithOAuth, registration",
         {[](Client c) { return loginWithOAuth(c, QStringLiteral(R"({"a":"b"})")); },
          {"/tavisto/register/oauth/submit"},
          ready,
          false}},
        {"doGetAccessToken",
         {[=](Client c) { return c->doGetAccessToken(u, u, u, u); }, {"/tavisto/login/submit"}, ready, ""}},
        {"doGetOAuthAccessToken", {getOAuthAccessToken, {"/tavisto/login/oauth/google/callback"}, ready, ""}},
        {"doGetUserName", {[](Client c) { return c->doGetUserName(); }, {"/tavisto/login/user"}, ready, ""}},
        {"sendKeepAlive",
         {[](Client c) { return c->sendKeepAlive(), QVariant(); },
          {"/tavisto/login/keepSessionAlive"},
          ready,
          QVariant()}},
        {"doLogout", {[](Client c) { return c->doLogout(); }, {"/tavisto/login/logout"}, logIn, false}},
        {"doLogout in a session",
         {[](Client c) { return c->doLogout(); },
          {"/tavisto/session/stop", "/tavisto/login/logout"},
          openSession,
          false}},
        {"doStartSession",
         {[](Client c) { return c->doStartSession(QString()); },
          {"/tavisto/login/user", "/tavisto/session/create"},
          logIn,
          false}},
        {"doGetLearners",
         {[](Client c) { return c->doGetLearners(); }, {"/tavisto/session/getusers"}, openSession, true}},
        {"doStopSession",
         {[](Client c) { return c->doStopSession(); }, {"/tavisto/session/stop"}, openSession, true}},
        {"doUploadResource", {upload, {"/tavisto/resource/uploadResourceFile"}, ready, false}},
    };
}

// Operations whose later requests follow from a first one that fails: only their destruction is of interest.
static QList<QPair<const char*, Operation>> chainedOperations()
{
    using Client = PresenterClient*;
    return {
        {"reLogin",
         {[](Client c) {
              const QPointer<PresenterClient> client(c);
              client->doGetAccessToken(QStringLiteral("u"), QStringLiteral("p"), QString(), QString());
              if (client)
                  client->reLogin();
              return QVariant();
          },
          {"/tavisto/login/submit", "/tavisto/login/submit"},
          ready,
          QVariant()}},
        {"startWebsocket",
         {startWebsocket,
          {"/tavisto/session/getcollabserverurl", "/tavisto/config/findTenantFeatureDetails",
           "/tavisto/session/start", "/tavisto/classroom/session/join"},
          createSession,
          false}},
        {"onPingTimer",
         {[](Client c) { return QMetaObject::invokeMethod(c, "onPingTimer"), QVariant(); },
          {"/tavisto/login/keepSessionAlive"},
          logIn,
          QVariant()}},
    };
}

class tst_PresenterClientWait : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noAnswerIn10SecondsIsAborted();
    void answerAfter9SecondsIsInTime();
    void stalledBodyIsAbortedToo();
    void timeOutEndsTheOperation_data();
    void timeOutEndsTheOperation();
    void nextOperationAfterATimeOutSucceeds();
    void hostThatBlocksSignalsGetsItsAnswerAtTheLimit();
    void requestWithoutWaitHasNoTimeLimit();

    void anotherReplyDoesNotEndTheWait();
    void earlierRequestOutlivesTheWait();
    void earlierRequestOutlivesTheTimeOut();
    void operationsNest();
    void keepAliveInsideAWaitNeitherEndsNorAbortsIt();
    void keepAliveOutlivesTheReplyOfTheOuterOperation();
    void timersOfTheHostRunDuringAWait();
    void operationInsideRequestProcessed();

    void clientDestroyedByATimer_data();
    void clientDestroyedByATimer();
    void clientDestroyedWithItsParent();
    void clientDestroyedByASlotOfRequestProcessed_data();
    void clientDestroyedByASlotOfRequestProcessed();
    void clientDestroyedOnARedirect();
    void clientDestroyedOnATimeOut();
    void clientDestroyedInsideTheKeepAliveOfAnotherWait();
    void clientDestroyedInsideTheReLoginOfDoStartSession();
    void clientDestroyedWithARequestUnderWay();
};

void tst_PresenterClientWait::noAnswerIn10SecondsIsAborted()
{
    FakeService service;
    service.expect("/a", Answer::never());
    ClientProbe client(service.url());
    const QSignalSpy processed(&client, SIGNAL(requestProcessed()));
    const LogRecorder log;
    QElapsedTimer elapsed;
    elapsed.start();
    client.request(QStringLiteral("/a"));

    QVERIFY2(elapsed.elapsed() >= 9500 && elapsed.elapsed() < 12000,
             qPrintable(QString::number(elapsed.elapsed())));
    QVERIFY(client.successes.isEmpty());
    QCOMPARE(client.failures, QStringList{QString()});
    QCOMPARE(client.errors, QList<QNetworkReply::NetworkError>{QNetworkReply::OperationCanceledError});
    QCOMPARE(processed.size(), 1);
    QCOMPARE(log.debug(QStringLiteral("[REST Response] ")).size(), 1);
    QTRY_COMPARE(service.abandoned(), 1);
}

void tst_PresenterClientWait::answerAfter9SecondsIsInTime()
{
    FakeService service;
    service.expect("/a", Answer::json("1").held().then([&] {
        TimerClock::advance(BEFORE_THE_LIMIT);
        // A round of the event loop, in which a limit that had passed would show.
        QTimer::singleShot(0, &service, [&] { service.release(); });
    }));
    ClientProbe client(service.url());
    client.request(QStringLiteral("/a"));

    QCOMPARE(client.successes, QStringList{"1"});
    QCOMPARE(service.abandoned(), 0);
}

void tst_PresenterClientWait::stalledBodyIsAbortedToo()
{
    FakeService service;
    service.expect("/a", Answer::stalled(R"({"data":{}})").then([] { TimerClock::advance(PAST_THE_LIMIT); }));
    ClientProbe client(service.url());
    client.request(QStringLiteral("/a"));

    QVERIFY(client.successes.isEmpty());
    QCOMPARE(client.errors, QList<QNetworkReply::NetworkError>{QNetworkReply::OperationCanceledError});
    QTRY_COMPARE(service.abandoned(), 1);
}

void tst_PresenterClientWait::timeOutEndsTheOperation_data()
{
    QTest::addColumn<Operation>("operation");

    for (const auto& operation : operations())
        QTest::newRow(operation.first) << operation.second;
    Operation noAddress = chainedOperations().at(1).second;
    noAddress.paths = noAddress.paths.mid(0, 1);
    QTest::newRow("startWebsocket, first request") << noAddress;
}

void tst_PresenterClientWait::timeOutEndsTheOperation()
{
    QFETCH(Operation, operation);

    FakeService service;
    for (const QByteArray& path : operation.paths.mid(0, operation.paths.size() - 1))
        service.expect(path, Answer::json(ALL_IS_WELL));
    service.expect(operation.paths.last(), Answer::never().then([] { TimerClock::advance(PAST_THE_LIMIT); }));
    auto client = std::make_unique<PresenterClient>(nullptr, service.url());
    operation.prepare(client.get());
    const QSignalSpy processed(client.get(), SIGNAL(requestProcessed()));

    QCOMPARE(operation.call(client.get()), operation.timedOut);
    QCOMPARE(processed.size(), operation.paths.size());
    QVERIFY(client->lastError().isNull());
    QTRY_COMPARE(service.abandoned(), 1);
    if (!client->sessionToken().isNull())
        service.expect("/tavisto/session/stop", Answer::json("{}"));
}

void tst_PresenterClientWait::nextOperationAfterATimeOutSucceeds()
{
    FakeService service;
    service.expect("/tavisto", Answer::never().then([] { TimerClock::advance(PAST_THE_LIMIT); }));
    service.expect("/tavisto", Answer::json("{}"));
    PresenterClient client(nullptr, service.url());

    QVERIFY(!client.checkServer(QString(), QString()));
    QVERIFY(client.checkServer(QString(), QString()));
}

// The wait is not told that the reply has been processed, and the reply is gone when the time is over.
void tst_PresenterClientWait::hostThatBlocksSignalsGetsItsAnswerAtTheLimit()
{
    FakeService service;
    service.expect("/own", Answer::json("own"));
    ClientProbe client(service.url());
    client.processed = [] { TimerClock::advance(PAST_THE_LIMIT); };
    {
        const QSignalBlocker blocker(&client);
        client.request(QStringLiteral("/own"));
    }

    QCOMPARE(client.successes, QStringList{"own"});
    QVERIFY(client.failures.isEmpty());
}

void tst_PresenterClientWait::requestWithoutWaitHasNoTimeLimit()
{
    FakeService service;
    service.expect("/a", Answer::json("1").held());
    ClientProbe client(service.url());
    client.request(QStringLiteral("/a"), false);
    QTRY_COMPARE(service.requests().size(), 1);
    TimerClock::advance(2 * PAST_THE_LIMIT);
    service.release();

    QTRY_COMPARE(client.successes, QStringList{"1"});
}

void tst_PresenterClientWait::anotherReplyDoesNotEndTheWait()
{
    FakeService service;
    service.expect("/early", Answer::json("early").held());
    service.expect("/own", Answer::json("own").held().then([&] { service.release(); }));
    ClientProbe client(service.url());
    client.request(QStringLiteral("/early"), false);
    QTRY_COMPARE(service.requests().size(), 1);
    connect(&client, &PresenterClient::requestProcessed, this, [&] {
        if (client.successes.size() == 1)
            QTimer::singleShot(0, &service, [&] { service.release(); });
    });
    client.request(QStringLiteral("/own"));

    QCOMPARE(client.successes, (QStringList{"early", "own"}));
}

void tst_PresenterClientWait::earlierRequestOutlivesTheWait()
{
    FakeService service;
    service.expect("/slow", Answer::json("slow").held());
    service.expect("/own", Answer::json("own"));
    ClientProbe client(service.url());
    client.request(QStringLiteral("/slow"), false);
    QTRY_COMPARE(service.requests().size(), 1);
    client.request(QStringLiteral("/own"));
    QCOMPARE(client.successes, QStringList{"own"});
    service.release();

    QTRY_COMPARE(client.successes, (QStringList{"own", "slow"}));
}

void tst_PresenterClientWait::earlierRequestOutlivesTheTimeOut()
{
    FakeService service;
    service.expect("/slow", Answer::json("slow").held());
    service.expect("/own", Answer::never().then([] { TimerClock::advance(PAST_THE_LIMIT); }));
    ClientProbe client(service.url());
    client.request(QStringLiteral("/slow"), false);
    QTRY_COMPARE(service.requests().size(), 1);
    client.request(QStringLiteral("/own"));
    QCOMPARE(client.errors, QList<QNetworkReply::NetworkError>{QNetworkReply::OperationCanceledError});
    service.release();

    QTRY_COMPARE(client.successes, QStringList{"slow"});
}

void tst_PresenterClientWait::operationsNest()
{
    FakeService service;
    PresenterClient client(nullptr, service.url());
    bool innerReachable = false;
    bool outerReturned = false;
    service.expect("/tavisto/login/submit", Answer::json(ALL_IS_WELL).held().then([&] {
        QTimer::singleShot(0, &client, [&] { innerReachable = client.checkServer(QString(), QString()); });
    }));
    // The outer operation has its answer first, and has to wait for the inner one.
    service.expect("/tavisto", Answer::json("{}").held().then([&] { service.release(); }));
    connect(&client, &PresenterClient::requestProcessed, this, [&] {
        if (client.isLoggedIn() && !innerReachable && service.requests().size() == 2)
            QTimer::singleShot(0, &service, [&] {
                if (service.isHolding())
                    service.release();
            });
    });
    outerReturned = client.doLogin(QStringLiteral("u"), QStringLiteral("p"));

    QVERIFY(outerReturned);
    QVERIFY(innerReachable);
}

void tst_PresenterClientWait::keepAliveInsideAWaitNeitherEndsNorAbortsIt()
{
    FakeService service;
    PresenterClient client(nullptr, service.url());
    bool keptAlive = false;
    service.expect("/tavisto/login/submit", Answer::json(ALL_IS_WELL).held().then([&] {
        QTimer::singleShot(0, &client, [&] {
            QMetaObject::invokeMethod(&client, "onPingTimer");
            keptAlive = client.isServerReachable();
            QTimer::singleShot(0, &service, [&] { service.release(); });
        });
    }));
    service.expect("/tavisto/login/keepSessionAlive", Answer::json("{}"));

    QVERIFY(client.doLogin(QStringLiteral("u"), QStringLiteral("p")));
    QVERIFY(keptAlive);
    QCOMPARE(service.abandoned(), 0);
}

void tst_PresenterClientWait::keepAliveOutlivesTheReplyOfTheOuterOperation()
{
    FakeService service;
    PresenterClient client(nullptr, service.url());
    service.expect("/tavisto/login/submit", Answer::json(ALL_IS_WELL).held().then([&] {
        QTimer::singleShot(0, &client, [&] { QMetaObject::invokeMethod(&client, "onPingTimer"); });
    }));
    service.expect("/tavisto/login/keepSessionAlive",
                   Answer::json("{}").held().then([&] { service.release(); }));
    connect(&client, &PresenterClient::requestProcessed, &service, [&] {
        if (client.isLoggedIn() && service.isHolding())
            QTimer::singleShot(0, &service, [&] { service.release(); });
    });

    QVERIFY(client.doLogin(QStringLiteral("u"), QStringLiteral("p")));
    QTRY_VERIFY(client.isServerReachable());
    QCOMPARE(service.abandoned(), 0);
}

void tst_PresenterClientWait::timersOfTheHostRunDuringAWait()
{
    FakeService service;
    service.expect("/a", Answer::json("1").held());
    ClientProbe client(service.url());
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (service.isHolding() && ++ticks == 3)
            service.release();
    });
    timer.start(1);
    client.request(QStringLiteral("/a"));

    QCOMPARE(client.successes, QStringList{"1"});
    QCOMPARE(ticks, 3);
}

void tst_PresenterClientWait::operationInsideRequestProcessed()
{
    FakeService service;
    service.expect("/tavisto/login/submit", Answer::json(ALL_IS_WELL));
    service.expect("/tavisto", Answer::json("{}"));
    PresenterClient client(nullptr, service.url());
    bool reachable = false;
    QMetaObject::Connection connection;
    connection = connect(&client, &PresenterClient::requestProcessed, this, [&] {
        disconnect(connection);
        reachable = client.checkServer(QString(), QString());
    });

    QVERIFY(client.doLogin(QStringLiteral("u"), QStringLiteral("p")));
    QVERIFY(reachable);
}

static void destructionRows()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("request");

    for (const auto& operation : operations() + chainedOperations()) {
        for (int i = 0; i < operation.second.paths.size(); ++i)
            QTest::addRow("%s, request %d", operation.first, i + 1) << operation.second << i;
    }
}

// A client that has a started session says so to the service before it goes.
static void destroy(PresenterClient* client, FakeService& service)
{
    if (!client->sessionToken().isNull())
        service.expect("/tavisto/session/stop", Answer::json("{}"));
    delete client;
}

static bool isNoResult(const QVariant& result)
{
    return result.toString().isEmpty() || result == QVariant(false);
}

void tst_PresenterClientWait::clientDestroyedByATimer_data()
{
    destructionRows();
}

void tst_PresenterClientWait::clientDestroyedByATimer()
{
    QFETCH(Operation, operation);
    QFETCH(int, request);

    FakeService service;
    QPointer<PresenterClient> client = new PresenterClient(nullptr, service.url());
    const QPointer<QNetworkAccessManager> manager = client->findChild<QNetworkAccessManager*>();
    operation.prepare(client);
    for (int i = 0; i < request; ++i)
        service.expect(operation.paths.at(i), Answer::json(ALL_IS_WELL));
    service.expect(operation.paths.at(request), Answer::never().then([&] {
        QTimer::singleShot(0, &service, [&] { destroy(client, service); });
    }));

    const QVariant result = operation.call(client);
    QVERIFY(!client);
    QVERIFY2(isNoResult(result), qPrintable(result.toString()));
    QTRY_VERIFY(!manager);
    QTRY_COMPARE(service.abandoned(), 1);
}

void tst_PresenterClientWait::clientDestroyedWithItsParent()
{
    FakeService service;
    auto* parent = new QObject;
    const QPointer<PresenterClient> client = new PresenterClient(parent, service.url());
    service.expect("/tavisto/login/submit",
                   Answer::never().then([&] { QTimer::singleShot(0, &service, [&] { delete parent; }); }));

    QVERIFY(!client->doLogin(QStringLiteral("u"), QStringLiteral("p")));
    QVERIFY(!client);
}

void tst_PresenterClientWait::clientDestroyedByASlotOfRequestProcessed_data()
{
    destructionRows();
}

void tst_PresenterClientWait::clientDestroyedByASlotOfRequestProcessed()
{
    QFETCH(Operation, operation);
    QFETCH(int, request);

    FakeService service;
    QPointer<PresenterClient> client = new PresenterClient(nullptr, service.url());
    const QPointer<QNetworkAccessManager> manager = client->findChild<QNetworkAccessManager*>();
    operation.prepare(client);
    for (int i = 0; i <= request; ++i)
        service.expect(operation.paths.at(i), Answer::json(ALL_IS_WELL));
    QMetaObject::Connection connection;
    connection = connect(client, &PresenterClient::requestProcessed, &service, [&] {
        if (!service.isUsedUp())
            return;
        disconnect(connection); // the destructor makes requests as well
        destroy(client, service);
    });

    const QVariant result = operation.call(client);
    QVERIFY(!client);
    QVERIFY2(isNoResult(result), qPrintable(result.toString()));
    QTRY_VERIFY(!manager);
}

void tst_PresenterClientWait::clientDestroyedOnARedirect()
{
    FakeService service;
    service.expect("/tavisto/login/submit", Answer::redirect("https://moved.example/"));
    const QPointer<PresenterClient> client = new PresenterClient(nullptr, service.url());
    connect(client, &PresenterClient::requestProcessed, &service, [&] { delete client; });

    QVERIFY(!client->doLogin(QStringLiteral("u"), QStringLiteral("p")));
    QVERIFY(!client);
}

void tst_PresenterClientWait::clientDestroyedOnATimeOut()
{
    FakeService service;
    service.expect("/tavisto/login/submit",
                   Answer::never().then([] { TimerClock::advance(PAST_THE_LIMIT); }));
    const QPointer<PresenterClient> client = new PresenterClient(nullptr, service.url());
    connect(client, &PresenterClient::requestProcessed, &service, [&] { delete client; });

    QVERIFY(!client->doLogin(QStringLiteral("u"), QStringLiteral("p")));
    QVERIFY(!client);
}

void tst_PresenterClientWait::clientDestroyedInsideTheKeepAliveOfAnotherWait()
{
    FakeService service;
    const QPointer<PresenterClient> client = new PresenterClient(nullptr, service.url());
    service.expect("/tavisto/login/submit", Answer::never().then([&] {
        QTimer::singleShot(0, &service, [&] { QMetaObject::invokeMethod(client, "onPingTimer"); });
    }));
    service.expect("/tavisto/login/keepSessionAlive",
                   Answer::never().then([&] { QTimer::singleShot(0, &service, [&] { delete client; }); }));

    QVERIFY(!client->doLogin(QStringLiteral("u"), QStringLiteral("p")));
    QVERIFY(!client);
}

void tst_PresenterClientWait::clientDestroyedInsideTheReLoginOfDoStartSession()
{
    FakeService service;
    service.expect("/tavisto/login/submit", Answer::json("{}"));
    const QPointer<PresenterClient> client = new PresenterClient(nullptr, service.url());
    client->doGetAccessToken(QStringLiteral("u"), QStringLiteral("p"), QString(), QString());
    service.expect("/tavisto/login/user", Answer::json("{}", 500));
    service.expect("/tavisto/login/submit",
                   Answer::never().then([&] { QTimer::singleShot(0, &service, [&] { delete client; }); }));

    QVERIFY(!client->doStartSession(QString()));
    QVERIFY(!client);
}

void tst_PresenterClientWait::clientDestroyedWithARequestUnderWay()
{
    FakeService service;
    service.expect("/a", Answer::never());
    auto client = std::make_unique<ClientProbe>(service.url());
    client->request(QStringLiteral("/a"), false);
    QTRY_COMPARE(service.requests().size(), 1);
    client.reset();

    QTRY_COMPARE(service.abandoned(), 1);
}

QTEST_GUILESS_MAIN(tst_PresenterClientWait)

#include "tst_PresenterClientWait.moc"
