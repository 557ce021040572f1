#include "support/ConnectorProbe.h"
#include "support/FakeService.h"
#include "support/FakeSockJSServer.h"
#include "support/Gzip.h"
#include "support/LogRecorder.h"
#include "support/LzmaBlocks.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
#include "support/ScriptedHttpServer.h"
#include "support/TestCertificates.h"
#include "support/TimerClock.h"

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

using Answer = FakeService::Answer;
using Script = ScriptedHttpServer::Script;

namespace {

constexpr int pastTheLimit = 10600; // ms, of a request
constexpr int manyTimes = 1000;

const QStringList transports = {"websocket", "xhr-streaming", "xhr-polling"};
const QStringList digits = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};

struct Failure
{
    Call call = Connect;
    int error = 0;
};

const QMap<QString, Failure>& failures()
{
    static const QMap<QString, Failure> all = [] {
        QMap<QString, Failure> named;
        const auto add = [&named](const char* name, Call call, const QVector<int>& errors) {
            for (const int error : errors)
                named.insert(QStringLiteral("%1: %2").arg(name, strerror(error)), {call, error});
        };
        add("connect", Connect, {ECONNREFUSED, ENETUNREACH, EHOSTUNREACH, ETIMEDOUT, EACCES, EADDRNOTAVAIL});
        add("socket", Socket, {EMFILE, ENFILE, ENOBUFS, ENOMEM, EACCES});
        add("send", Send, {EPIPE, ECONNRESET, ENETDOWN});
        add("thread", StartThread, {EAGAIN});
        return named;
    }();
    return all;
}

QStringList failuresOf(const char* call)
{
    return QStringList(failures().keys()).filter(call);
}

const QMap<QString, Script>& brokenHandshakes()
{
    using Server = ScriptedHttpServer;
    const QByteArray unknownRecord("\x63\x03\x03\x00\x02??", 7);
    const QByteArray alert("\x15\x03\x03\x00\x02\x02\x28", 7);
    const QByteArray half("\x16\x03\x03\x00\x7a\x02", 6);
    static const QMap<QString, Script> all = {
        {"ends at once", {Server::close()}},
        {"reset at once", {Server::reset()}},
        {"ends after the hello", {Server::hear(), Server::close()}},
        {"reset after the hello", {Server::hear(), Server::reset()}},
        {"garbage", {Server::hear(), Server::send(unknownRecord), Server::close()}},
        {"refused", {Server::hear(), Server::send(alert), Server::close()}},
        {"half an answer", {Server::hear(), Server::send(half), Server::close()}}};
    return all;
}

/// A host at \a server, over \a transport.
struct Channel
{
    explicit Channel(const QString& name) : transport(name) {}

    bool isXHR() const { return transport != QLatin1String("websocket"); }
    bool open(const QUrl& url)
    {
        return probe.open(url, SockJSConnector::GetProtocolsFromStrings({transport}));
    }
    bool openSession()
    {
        return probe.openSession(server.url(), SockJSConnector::GetProtocolsFromStrings({transport}));
    }
    void send(const char* text) { connector.sendMessage(QLatin1String(text), false); }
    bool carries()
    {
        send("x");
        return server.nextMessage() == QLatin1String("x");
    }

    QString transport;
    FakeSockJSServer server;
    SockJSConnector connector;
    ConnectorProbe probe{&connector};
    LogRecorder log;
};

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
        combinations({transports, failuresOf("connect") + failuresOf("socket")});
        for (const char* transport : {"xhr-streaming", "xhr-polling"})
            QTest::addRow("%s, thread", transport) << QString(transport) << failuresOf("thread").first();
    }
    void openFails()
    {
        const auto [transport, name] = row<QString, QString>();
        const Failure failure = failures().value(name);
        Channel channel(transport);
        {
            const Failing failing(failure.call, failure.error);
            QVERIFY(channel.open(channel.server.url()));
            QVERIFY(failing.hits() > 0);
        }
        QCOMPARE(channel.probe.events(), QStringList());
        QCOMPARE(channel.log.debug(QStringLiteral("[SockJSXHRPolling] ")).size(), channel.isXHR() ? 1 : 0);
        QCOMPARE(channel.log.debug(QStringLiteral("[SockJSConnector] CONNECTED")).size(), 0);
        QVERIFY(channel.openSession());
        QVERIFY(channel.carries());
    }

    void sendFails_data() { combinations({transports, failuresOf("send")}); }
    // A WebSocket ends with it; of an XHR transport the message is lost.
    void sendFails()
    {
        const auto [transport, name] = row<QString, QString>();
        Channel channel(transport);
        QVERIFY(channel.openSession());
        {
            const Failing failing(Send, failures().value(name).error, channel.server.port());
            channel.send("lost");
            if (channel.isXHR())
                QTRY_COMPARE(failedPosts(channel.log), 1);
            else
                QTRY_VERIFY(channel.probe.hasClosed());
            QVERIFY(failing.hits() > 0);
        }
        QVERIFY(channel.isXHR() || channel.openSession());
        QVERIFY(channel.carries());
        QCOMPARE(channel.probe.count(QStringLiteral("closed false")), channel.isXHR() ? 0 : 1);
    }

    void handshakeFails_data() { combinations({transports, QStringList(brokenHandshakes().keys())}); }
    void handshakeFails()
    {
        const auto [transport, handshake] = row<QString, QString>();
        ScriptedHttpServer broken;
        // Qt makes a connection again that is reset before it has looked at it, as often as it takes.
        for (int i = 0; i < manyTimes; ++i)
            broken.onConnect(brokenHandshakes().value(handshake));
        Channel channel(transport);
        QVERIFY(channel.open(QUrl(QStringLiteral("https://127.0.0.1:%1").arg(broken.port()))));
        QCOMPARE(channel.probe.events(), QStringList());
        QVERIFY(broken.connections() > 0);
        QVERIFY(channel.openSession());
    }

    void requestFails_data() { combinations({QStringList(failures().keys())}); }
    void requestFails()
    {
        const auto [name] = row<QString>();
        const Failure failure = failures().value(name);
        FakeService service;
        PresenterClient client(nullptr, service.url());
        const QSignalSpy processed(&client, SIGNAL(requestProcessed()));
        const LogRecorder log;
        {
            const Failing failing(failure.call, failure.error, service.serverPort());
            if (failure.call == StartThread)
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

    void requestOverTlsFails_data() { combinations({QStringList(brokenHandshakes().keys())}); }
    void requestOverTlsFails()
    {
        const auto [handshake] = row<QString>();
        const TestCertificates::TrustedRoot trusted;
        ScriptedHttpServer server;
        // A connection that ends before its request is out is tried again.
        for (int i = 0; i < manyTimes; ++i)
            server.onConnect(brokenHandshakes().value(handshake));
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

    void noDescriptorsForTheBus_data() { combinations({transports, digits}); }
    void noDescriptorsForTheBus()
    {
        const auto [transport, left] = row<QString, QString>();
        const auto protocols = SockJSConnector::GetProtocolsFromStrings({transport});
        SockJSConnector connector;
        ConnectorProbe probe(&connector);
        const LogRecorder log;
        {
            FakeSockJSServer server;
            const ProcessResources::FewDescriptors few(left.toInt());
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

    void noDescriptorsForTheService_data() { combinations({digits}); }
    void noDescriptorsForTheService()
    {
        const auto [left] = row<QString>();
        FakeService service;
        PresenterClient client(nullptr, service.url());
        const QSignalSpy processed(&client, SIGNAL(requestProcessed()));
        const LogRecorder log;
        {
            const ProcessResources::FewDescriptors few(left.toInt());
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
        const QString text = QStringLiteral("Zoë asks: ").repeated(20000);
        QString base64;
        QString list;
        QVERIFY(Lzma::compress64(text, &base64) && Lzma::compress(text, &list));
        const QVariantList bytes = LzmaBlocks::numbers(QByteArray::fromBase64(base64.toLatin1()));
        const QByteArray utf8 = text.toUtf8();
        const QByteArray gzip = Gzip::gzip(utf8);
        using Codec = std::function<bool(QString*)>;
        const auto codec = [](const Codec& code, const QString& result) {
            return Step([code, result] {
                QString out = QStringLiteral("before");
                const bool ok = code(&out);
                return ok ? out == result : out != QLatin1String("before");
            });
        };
        rows<Step>(
            {{"compress64", codec([=](QString* out) { return Lzma::compress64(text, out); }, base64)},
             {"compress", codec([=](QString* out) { return Lzma::compress(text, out); }, list)},
             {"decompress64", codec([=](QString* out) { return Lzma::decompress64(base64, out); }, text)},
             {"decompress, text", codec([=](QString* out) { return Lzma::decompress(list, out); }, text)},
             {"decompress, list", codec([=](QString* out) { return Lzma::decompress(bytes, out); }, text)},
             {"gUncompress", [=] { return gUncompress(gzip) == utf8; }}});
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
