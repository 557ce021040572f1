#include "support/ConnectorProbe.h"
#include "support/FakeService.h"
#include "support/FakeSockJSServer.h"
#include "support/Gzip.h"
#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
#include "support/ScriptedHttpServer.h"
#include "support/TestCertificates.h"
#include "support/TimerClock.h"
#include "support/WaitFor.h"

#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterClient>
#include <CalyxClient/SockJSConnector>
#include <CalyxClient/gUncompress>

#include <QtTest>

#include <array>
#include <atomic>
#include <cerrno>

#include <dlfcn.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

/// Makes calls of the system fail. This program replaces the C library's functions, also for
/// Qt and the library.
namespace FailingCalls {

enum Call { Socket, Connect, Send, StartThread };

constexpr size_t much = 4096; // bytes

struct State
{
    std::atomic<int> error{0};
    std::atomic<int> hits{0};
    std::atomic<quint16> port{0};
};

std::array<State, 4> states;
thread_local int refusedAt = 0;
thread_local int requests = 0;

bool fails(Call call)
{
    State& state = states.at(call);
    if (state.error == 0)
        return false;
    ++state.hits;
    errno = state.error;
    return true;
}

bool goesToTheFailingPort(int descriptor)
{
    sockaddr_in peer{};
    socklen_t size = sizeof(peer);
    auto* address = reinterpret_cast<sockaddr*>(&peer);
    return states.at(Send).error != 0 && getpeername(descriptor, address, &size) == 0 &&
           ntohs(peer.sin_port) == states.at(Send).port;
}

bool isRefused(size_t size)
{
    return refusedAt != 0 && size >= much && ++requests == refusedAt;
}

template<typename Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// For as long as it lives, each call fails with \p error. Of Send, those to loopback's \p port.
class Failing
{
public:
    Failing(Call call, int error, quint16 port = 0) : m_call(call)
    {
        states.at(call).hits = 0;
        states.at(call).port = port;
        states.at(call).error = error;
    }
    ~Failing() { states.at(m_call).error = 0; }
    Q_DISABLE_COPY(Failing)

    /// How many calls have failed.
    int hits() const { return states.at(m_call).hits; }

private:
    Call m_call;
};

/// For as long as it lives, the calling thread's \p number th request for much memory is refused, counted
/// from 1.
class NoMemory
{
public:
    explicit NoMemory(int number)
    {
        requests = 0;
        refusedAt = number;
    }
    ~NoMemory() { refusedAt = 0; }
    Q_DISABLE_COPY(NoMemory)

    /// Whether one has been refused.
    bool hit() const { return requests >= refusedAt; }
};

} // namespace FailingCalls

using namespace FailingCalls;

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* address, size_t size);

void* malloc(size_t size) noexcept
{
    return isRefused(size) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) noexcept
{
    return isRefused(count * size) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* address, size_t size) noexcept
{
    return isRefused(size) ? nullptr : __libc_realloc(address, size);
}

int socket(int domain, int type, int protocol) noexcept
{
    if (domain != AF_UNIX && fails(FailingCalls::Socket))
        return -1;
    return real<int(int, int, int)>("socket")(domain, type, protocol);
}

int connect(int descriptor, const sockaddr* address, socklen_t size)
{
    if (fails(FailingCalls::Connect))
        return -1;
    return real<int(int, const sockaddr*, socklen_t)>("connect")(descriptor, address, size);
}

ssize_t send(int descriptor, const void* bytes, size_t size, int flags)
{
    if (goesToTheFailingPort(descriptor) && fails(FailingCalls::Send))
        return -1;
    return real<ssize_t(int, const void*, size_t, int)>("send")(descriptor, bytes, size, flags);
}

ssize_t write(int descriptor, const void* bytes, size_t size)
{
    if (goesToTheFailingPort(descriptor) && fails(FailingCalls::Send))
        return -1;
    return real<ssize_t(int, const void*, size_t)>("write")(descriptor, bytes, size);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*),
                   void* argument) noexcept
{
    if (fails(FailingCalls::StartThread))
        return states.at(FailingCalls::StartThread).error;
    return real<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create")(
        thread, attributes, routine, argument);
}
}

Q_DECLARE_METATYPE(ScriptedHttpServer::Step)

using Answer = FakeService::Answer;
using Protocols = QList<SockJSConnector::PROTOCOL_TYPE>;

namespace {

constexpr int pastTheLimit = 10600; // ms, of a request
constexpr int manyTimes = 1000;

void addTransports(const std::function<void(const char*, Protocols)>& add)
{
    add("websocket", {SockJSConnector::WEBSOCKET});
    add("xhr-streaming", {SockJSConnector::XHR_STREAMING});
    add("xhr-polling", {SockJSConnector::XHR_POLLING});
}

bool logsIn(PresenterClient* client)
{
    return client->doLogin(QStringLiteral("teacher"), QStringLiteral("chalk"));
}

Answer welcome()
{
    return Answer::json(R"({"infoMsgs":["login.success"]})");
}

// A wait of ten seconds takes a moment.
void hurry(QObject* context)
{
    QTimer::singleShot(100, context, [] { TimerClock::advance(pastTheLimit); });
}

} // namespace

// Without those of the row before, whose server has gone.
static int failedPosts(const LogRecorder& log)
{
    const QStringList lines = log.debug(QStringLiteral("[SockJSXHRPolling] xhr_send error: "));
    return lines.size() - lines.filter(QStringLiteral("refused")).size();
}

// What Qt says of a request without an address.
static bool speaksOfAProtocol(const LogRecorder& log)
{
    return !log.debug().filter(QStringLiteral("Protocol \"\"")).isEmpty();
}

using Script = ScriptedHttpServer::Script;

static QVector<QPair<const char*, Script>> brokenHandshakes()
{
    using Server = ScriptedHttpServer;
    const QByteArray unknownRecord("\x63\x03\x03\x00\x02??", 7);
    const QByteArray alert("\x15\x03\x03\x00\x02\x02\x28", 7);
    const QByteArray half("\x16\x03\x03\x00\x7a\x02", 6);
    return {{"ends at once", {Server::close()}},
            {"reset at once", {Server::reset()}},
            {"ends after the hello", {Server::hear(), Server::close()}},
            {"reset after the hello", {Server::hear(), Server::reset()}},
            {"garbage", {Server::hear(), Server::send(unknownRecord), Server::close()}},
            {"refused", {Server::hear(), Server::send(alert), Server::close()}},
            {"half an answer", {Server::hear(), Server::send(half), Server::close()}}};
}

using Step = std::function<bool()>;
Q_DECLARE_METATYPE(Step)

/// Calls that the system refuses: each is reported as such a failure is, and afterwards everything works.
class TestFailingCalls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("http_proxy");
        keepDebugMessagesFromQTest();
    }

    void openFails_data()
    {
        columns<Protocols, int, int>();
        addTransports([](const char* name, const Protocols& protocols) {
            for (const int error :
                 {ECONNREFUSED, ENETUNREACH, EHOSTUNREACH, ETIMEDOUT, EACCES, EADDRNOTAVAIL})
                QTest::addRow("%s, connect: %s", name, strerror(error))
                    << protocols << int(FailingCalls::Connect) << error;
            for (const int error : {EMFILE, ENFILE, ENOBUFS, ENOMEM, EACCES})
                QTest::addRow("%s, socket: %s", name, strerror(error))
                    << protocols << int(FailingCalls::Socket) << error;
            if (!protocols.contains(SockJSConnector::WEBSOCKET))
                QTest::addRow("%s, thread", name) << protocols << int(FailingCalls::StartThread) << EAGAIN;
        });
    }

    void openFails()
    {
        const auto [protocols, call, error] = row<Protocols, int, int>();
        FakeSockJSServer server;
        SockJSConnector connector;
        ConnectorProbe probe(&connector);
        const LogRecorder log;
        {
            const Failing failing(FailingCalls::Call(call), error);
            QVERIFY(probe.open(server.url(), protocols));
            QVERIFY(failing.hits() > 0);
        }
        QCOMPARE(probe.events(), QStringList());
        const bool isXHR = !protocols.contains(SockJSConnector::WEBSOCKET);
        QCOMPARE(log.debug(QStringLiteral("[SockJSXHRPolling] ")).size(), isXHR ? 1 : 0);
        QCOMPARE(log.debug(QStringLiteral("[SockJSConnector] CONNECTED")).size(), 0);
        QVERIFY(probe.openSession(server.url(), protocols));
        connector.sendMessage(QStringLiteral("x"), false);
        QCOMPARE(server.nextMessage(), QStringLiteral("x"));
    }

    void sendFails_data()
    {
        columns<Protocols, int>();
        addTransports([](const char* name, const Protocols& protocols) {
            for (const int error : {EPIPE, ECONNRESET, ENETDOWN})
                QTest::addRow("%s, %s", name, strerror(error)) << protocols << error;
        });
    }

    // A WebSocket ends with it; of an XHR transport the message is lost.
    void sendFails()
    {
        const auto [protocols, error] = row<Protocols, int>();
        FakeSockJSServer server;
        SockJSConnector connector;
        ConnectorProbe probe(&connector);
        const LogRecorder log;
        QVERIFY(probe.openSession(server.url(), protocols));
        const bool isXHR = !protocols.contains(SockJSConnector::WEBSOCKET);
        {
            const Failing failing(FailingCalls::Send, error, server.port());
            connector.sendMessage(QStringLiteral("lost"), false);
            if (isXHR)
                QTRY_COMPARE(failedPosts(log), 1);
            else
                QTRY_VERIFY(probe.hasClosed());
            QVERIFY(failing.hits() > 0);
        }
        if (!isXHR)
            QVERIFY(probe.openSession(server.url(), protocols));
        connector.sendMessage(QStringLiteral("x"), false);
        QCOMPARE(server.nextMessage(), QStringLiteral("x"));
        QCOMPARE(probe.count(QStringLiteral("closed false")), isXHR ? 0 : 1);
    }

    void handshakeFails_data()
    {
        columns<Protocols, Script>();
        addTransports([](const char* name, const Protocols& protocols) {
            for (const auto& broken : brokenHandshakes())
                QTest::addRow("%s, %s", name, broken.first) << protocols << broken.second;
        });
    }

    void handshakeFails()
    {
        const auto [protocols, script] = row<Protocols, Script>();
        ScriptedHttpServer broken;
        // Qt makes a connection again that is reset before it has looked at it, as often as it takes.
        for (int i = 0; i < manyTimes; ++i)
            broken.onConnect(script);
        FakeSockJSServer server;
        SockJSConnector connector;
        ConnectorProbe probe(&connector);
        QVERIFY(probe.open(QUrl(QStringLiteral("https://127.0.0.1:%1").arg(broken.port())), protocols));
        QCOMPARE(probe.events(), QStringList());
        QVERIFY(broken.connections() > 0);
        QVERIFY(probe.openSession(server.url(), protocols));
    }

    void requestFails_data()
    {
        columns<int, int>();
        for (const int error : {ECONNREFUSED, ENETUNREACH, EHOSTUNREACH, ETIMEDOUT, EACCES})
            QTest::addRow("connect: %s", strerror(error)) << int(FailingCalls::Connect) << error;
        for (const int error : {EMFILE, ENFILE, ENOBUFS, ENOMEM})
            QTest::addRow("socket: %s", strerror(error)) << int(FailingCalls::Socket) << error;
        for (const int error : {EPIPE, ECONNRESET, ENETDOWN})
            QTest::addRow("send: %s", strerror(error)) << int(FailingCalls::Send) << error;
        QTest::addRow("thread") << int(FailingCalls::StartThread) << EAGAIN;
    }

    void requestFails()
    {
        const auto [call, error] = row<int, int>();
        FakeService service;
        PresenterClient client(nullptr, service.url());
        const QSignalSpy processed(&client, SIGNAL(requestProcessed()));
        const LogRecorder log;
        {
            const Failing failing(FailingCalls::Call(call), error, service.serverPort());
            if (call == FailingCalls::StartThread)
                hurry(&client);
            QVERIFY(!logsIn(&client));
            QVERIFY(failing.hits() > 0);
        }
        QCOMPARE(processed.size(), 1);
        QCOMPARE(log.debug(QStringLiteral("ERROR: ")).size(), 1);
        QVERIFY(client.lastError().isNull());
        service.expect("/tavisto/login/submit", welcome());
        QVERIFY(logsIn(&client));
    }

    void requestOverTlsFails_data()
    {
        columns<Script>();
        for (const auto& broken : brokenHandshakes())
            QTest::newRow(broken.first) << broken.second;
    }

    void requestOverTlsFails()
    {
        const auto [script] = row<Script>();
        const TestCertificates::TrustedRoot trusted;
        ScriptedHttpServer server;
        // A connection that ends before its request is out is tried again.
        for (int i = 0; i < manyTimes; ++i)
            server.onConnect(script);
        PresenterClient client(nullptr, QStringLiteral("https://127.0.0.1:%1").arg(server.port()));
        const QSignalSpy processed(&client, SIGNAL(requestProcessed()));
        const LogRecorder log;
        QVERIFY(!logsIn(&client));
        QCOMPARE(processed.size(), 1);
        QCOMPARE(log.debug(QStringLiteral("ERROR: ")).size(), 1);

        FakeService service(TestCertificates::server(QStringLiteral("loopback")));
        service.expect("/tavisto/login/submit", welcome());
        PresenterClient other(nullptr, service.url());
        QVERIFY(logsIn(&other));
    }

    void noDescriptorsForTheBus_data()
    {
        columns<Protocols, int>();
        addTransports([](const char* name, const Protocols& protocols) {
            for (int left = 0; left < 10; ++left)
                QTest::addRow("%s, %d left", name, left) << protocols << left;
        });
    }

    void noDescriptorsForTheBus()
    {
        const auto [protocols, left] = row<Protocols, int>();
        SockJSConnector connector;
        ConnectorProbe probe(&connector);
        const LogRecorder log;
        {
            FakeSockJSServer server;
            const ProcessResources::FewDescriptors few(left);
            // The server may have none either.
            connector.setOpenLimit(200);
            QVERIFY(probe.open(server.url(), protocols));
            connector.sendMessage(QStringLiteral("x"), false);
            connector.close();
        }
        QVERIFY(!speaksOfAProtocol(log));
        connector.setOpenLimit(0);
        FakeSockJSServer server; // one that could not accept does not any more
        QVERIFY(probe.openSession(server.url(), protocols));
    }

    void noDescriptorsForTheService_data()
    {
        columns<int>();
        for (int left = 0; left < 10; ++left)
            QTest::addRow("%d left", left) << left;
    }

    void noDescriptorsForTheService()
    {
        const auto [left] = row<int>();
        FakeService service;
        PresenterClient client(nullptr, service.url());
        const QSignalSpy processed(&client, SIGNAL(requestProcessed()));
        const LogRecorder log;
        {
            const ProcessResources::FewDescriptors few(left);
            service.expect("/tavisto/login/submit", welcome());
            QObject context;
            hurry(&context);
            const bool done = logsIn(&client);
            QCOMPARE(processed.size(), 1);
            QVERIFY(done || client.lastError().isNull());
            service.expectNoMore();
        }
        QVERIFY(!speaksOfAProtocol(log));
        service.resumeAccepting(); // it has stopped if it could not
        service.expect("/tavisto/login/submit", welcome());
        QVERIFY(logsIn(&client));
    }

    void noMemory_data()
    {
        columns<Step>();
        const QString text = QStringLiteral("Zoë asks: ").repeated(20000);
        QString base64;
        QString list;
        QVERIFY(Lzma::compress64(text, &base64) && Lzma::compress(text, &list));
        const QByteArray block = QByteArray::fromBase64(base64.toLatin1());
        QVariantList bytes;
        for (const char byte : block)
            bytes.append(int(quint8(byte)));
        const QByteArray utf8 = text.toUtf8();
        const QByteArray gzip = Gzip::gzip(utf8);

        const auto add = [](const char* name, const Step& step) { QTest::newRow(name) << step; };
        using Codec = std::function<bool(QString*)>;
        const auto addCodec = [add](const char* name, const Codec& codec, const QString& result) {
            add(name, [codec, result] {
                QString out = QStringLiteral("before");
                const bool ok = codec(&out);
                return ok ? out == result : out != QLatin1String("before");
            });
        };
        addCodec(
            "compress64", [text](QString* out) { return Lzma::compress64(text, out); }, base64);
        addCodec(
            "compress", [text](QString* out) { return Lzma::compress(text, out); }, list);
        addCodec(
            "decompress64", [base64](QString* out) { return Lzma::decompress64(base64, out); }, text);
        addCodec(
            "decompress, text", [list](QString* out) { return Lzma::decompress(list, out); }, text);
        addCodec(
            "decompress, list", [bytes](QString* out) { return Lzma::decompress(bytes, out); }, text);
        add("gUncompress", [utf8, gzip] { return gUncompress(gzip) == utf8; });
    }

    // Refuses the first request for memory, then the second and so on, until all are granted. A step that
    // fails leaves its result as it was, and the next one, which lacks nothing, succeeds.
    void noMemory()
    {
        const auto [step] = row<Step>();
        int refused = 0;
        for (bool hit = true; hit; ++refused) {
            bool ok = false;
            {
                const NoMemory memory(refused + 1);
                ok = step();
                hit = memory.hit();
            }
            QVERIFY2(ok != hit, qPrintable(QString::number(refused)));
            QVERIFY2(step(), qPrintable(QString::number(refused)));
        }
        QVERIFY(refused > 2);
    }
};

QTEST_GUILESS_MAIN(TestFailingCalls)
#include "tst_FailingCalls.moc"
