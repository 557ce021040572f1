// The rows with sockets whose servers are our own threads.

#include "sockets/Generator.h"
#include "sockets/Service.h"
#include "workloads/Answers.h"
#include "workloads/Drain.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>
#include <CalyxClient/SockJSXHRPolling>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTcpServer>
#include <QTimer>
#include <QWebSocket>

#include <benchmark/benchmark.h>

#include <ctime>
#include <memory>
#include <utility>

namespace {

// Of the calling thread, which is the client's. In seconds.
double cpuTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

template<typename Condition>
void waitUntil(Condition condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

std::unique_ptr<PresenterCollab> collabAt(const QUrl& url)
{
    return std::make_unique<PresenterCollab>(nullptr, url.toString(), QStringLiteral("123456"),
                                             QStringLiteral("6f1c0a52-session"), QStringLiteral("user"));
}

// How long it takes until the session is open, in seconds.
double openSession(const QUrl& url)
{
    SockJSConnector connector;
    bool open = false;
    QObject::connect(&connector, &SockJSConnector::connected, &connector, [&] { open = true; });
    QElapsedTimer clock;
    clock.start();
    connector.open(url, {SockJSConnector::WEBSOCKET});
    waitUntil([&] { return open; });
    const double seconds = double(clock.nsecsElapsed()) * 1e-9;
    connector.close(); // its goodbye is not to fall into the next one's time
    waitUntil([] {
        // Without an event loop around us what was deleted later stays until it is asked for.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return !QCoreApplication::instance()->findChild<QWebSocket*>();
    });
    return seconds;
}

double openBare(const QUrl& url)
{
    QWebSocket socket;
    bool open = false;
    QObject::connect(&socket, &QWebSocket::textMessageReceived, &socket, [&] { open = true; });
    QElapsedTimer clock;
    clock.start();
    socket.open(url);
    waitUntil([&] { return open; });
    return double(clock.nsecsElapsed()) * 1e-9;
}

void open(benchmark::State& state, double (*work)(const QUrl&))
{
    const Drain server;
    for (auto _ : state)
        state.SetIterationTime(work(server.url()));
}

// CPU time while a server that never answers is waited for.
void waitInSilence(benchmark::State& state)
{
    constexpr int wait = 2000; // ms
    QTcpServer silent;
    silent.listen(QHostAddress::LocalHost);
    for (auto _ : state) {
        const auto collab = collabAt(QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(silent.serverPort())));
        QTimer::singleShot(wait, collab->connector(), [&] { collab->connector()->close(); });
        const double begun = cpuTime();
        collab->open({QStringLiteral("websocket")});
        state.SetIterationTime(cpuTime() - begun);
    }
}

void restOurs(benchmark::State& state)
{
    const Service service;
    PresenterClient client(nullptr, service.url());
    for (auto _ : state) {
        if (!client.checkServer(QString(), QString()))
            qFatal("the service has not answered");
    }
}

void restBare(benchmark::State& state)
{
    const Service service;
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(service.url() + QStringLiteral("/tavisto")));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json; charset=UTF-8"));
    request.setRawHeader("accept-encoding", "identity");
    for (auto _ : state) {
        QEventLoop loop;
        QNetworkReply* reply = manager.post(request, QByteArray());
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        if (reply->readAll() != "{}")
            qFatal("the service has not answered");
        reply->deleteLater();
    }
}

// Posts of some size, one after the other on a connection that is kept. The server holds the clock.
constexpr int posts = 500;
const QByteArray post(200, 'x');

void postOurs(benchmark::State& state)
{
    Service service;
    SockJSXHRPolling transport(nullptr);
    if (!transport.start(QStringLiteral("127.0.0.1"), service.port(), false, QStringLiteral("/s"), false))
        qFatal("no connection");
    for (auto _ : state) {
        service.restartClock();
        for (int i = 0; i < posts; ++i)
            transport.sendTextMessage(QString::fromLatin1(post));
        waitUntil([&] { return service.count() == posts; });
        state.SetIterationTime(double(service.duration()) * 1e-9);
    }
}

void postCurl(benchmark::State& state)
{
    Service service;
    for (auto _ : state) {
        service.restartClock();
        const QString urls = QStringLiteral("%1/[1-%2]").arg(service.url()).arg(posts);
        QProcess curl;
        curl.start(QStringLiteral("curl"),
                   {QStringLiteral("--silent"), QStringLiteral("--noproxy"), QStringLiteral("*"),
                    QStringLiteral("--output"), QStringLiteral("/dev/null"), QStringLiteral("--data"),
                    QString::fromLatin1(post), urls});
        if (!curl.waitForFinished() || service.count() != posts)
            qFatal("curl has not posted");
        state.SetIterationTime(double(service.duration()) * 1e-9);
    }
}

// CPU time of the client's thread for a batch of answers.
void generatorOurs(benchmark::State& state)
{
    Generator generator;
    const auto collab = collabAt(generator.url());
    int count = 0;
    QObject::connect(collab.get(), &PresenterCollab::learnerPollResponse, collab.get(), [&] { ++count; });
    collab->open({QStringLiteral("websocket")});
    waitUntil([&] { return collab->isConnected(); });
    for (auto _ : state) {
        count = 0;
        const double begun = cpuTime();
        generator.send();
        waitUntil([&] { return count == Generator::batch; });
        state.SetIterationTime(cpuTime() - begun);
    }
}

// The same batch, handed over in memory.
void generatorInMemory(benchmark::State& state)
{
    struct Slots : SockJSConnector
    {
        static void (SockJSConnector::*text())(QString) { return &Slots::onTextMessageReceived; }
    };
    QStringList frames;
    for (int i = 0; i < Generator::batch; ++i)
        frames.append(Answers::frame(Answers::message(i)));
    const auto collab = collabAt(QUrl(QStringLiteral("ws://127.0.0.1")));
    int count = 0;
    QObject::connect(collab.get(), &PresenterCollab::learnerPollResponse, collab.get(), [&] { ++count; });
    for (auto _ : state) {
        count = 0;
        const double begun = cpuTime();
        for (const QString& frame : std::as_const(frames))
            (collab->connector()->*Slots::text())(frame);
        state.SetIterationTime(cpuTime() - begun);
        if (count != Generator::batch)
            qFatal("answers are missing");
    }
}

// The same batch to a bare QWebSocket that does nothing with it: what the socket alone takes.
void generatorBare(benchmark::State& state)
{
    Generator generator;
    QWebSocket socket;
    int count = 0;
    QObject::connect(&socket, &QWebSocket::textMessageReceived, &socket, [&] { ++count; });
    socket.open(generator.url());
    waitUntil([&] { return count == 1; });
    for (auto _ : state) {
        count = 0;
        const double begun = cpuTime();
        generator.send();
        waitUntil([&] { return count == Generator::batch; });
        state.SetIterationTime(cpuTime() - begun);
    }
}

void registerAll()
{
    benchmark::RegisterBenchmark("open/1/ours", open, openSession)->UseManualTime();
    benchmark::RegisterBenchmark("open/1/peer", open, openBare)->UseManualTime();
    benchmark::RegisterBenchmark("silent-server/1/ours", waitInSilence)->UseManualTime()->Iterations(1);
    benchmark::RegisterBenchmark("rest/1/ours", restOurs)->UseRealTime();
    benchmark::RegisterBenchmark("rest/1/peer", restBare)->UseRealTime();
    benchmark::RegisterBenchmark("post/500/ours", postOurs)->UseManualTime();
    benchmark::RegisterBenchmark("post/500/peer", postCurl)->UseManualTime();
    benchmark::RegisterBenchmark("generator/10000/ours", generatorOurs)->UseManualTime();
    benchmark::RegisterBenchmark("generator/10000/peer", generatorInMemory)->UseManualTime();
    benchmark::RegisterBenchmark("generator/10000/bare", generatorBare)->UseManualTime();
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    registerAll();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::ClearRegisteredBenchmarks();
    benchmark::Shutdown();
    return 0;
}
