#include "faults/support/FaultTest.h"
#include "support/Rows.h"

#include <QFile>

using HttpText::chunk;
using HttpText::chunked;
using HttpText::chunkedHead;
using HttpText::endChunk;
using HttpText::plain;
using Fault = FaultSession::Fault;
using Server = ScriptedHttpServer;

namespace {

const QStringList transports = {"polling", "streaming"};

bool isStreaming(const QString& transport)
{
    return transport == QLatin1String("streaming");
}

const QByteArray one = "a[\"one\"]\n";
const QStringList gotOne = {QStringLiteral("one")};

QByteArray head(const QByteArray& lines)
{
    return "HTTP/1.1 200 OK\r\n" + lines + "\r\n";
}

Server::Script sent(const QByteArray& bytes)
{
    return {Server::send(bytes)};
}

Server::Step hundredMegabytes(const QByteArray& kilobyte)
{
    constexpr int atOnce = 64;
    return Server::flood(kilobyte.repeated(atOnce), 100 * 1024 / atOnce);
}

QVector<Fault> tooManyAnswers()
{
    const QByteArray two = plain("a[\"two\"]\n");
    return {
        {"two answers to one request", sent(plain(one) + two), gotOne},
        {"two chunked ones", sent(chunked(one) + chunked("a[\"two\"]\n")), gotOne},
        {"three of them", sent(chunked(one) + two + chunked("a[\"three\"]\n")), gotOne},
        {"a second one in pieces",
         sent(plain(one) + two.left(20)) + Server::Script{Server::pause(300), Server::send(two.mid(20))},
         gotOne},
        {"half a second one", sent(plain(one) + two.left(20)), gotOne},
        {"a time-out of a balancer behind it",
         sent(plain(one) + "HTTP/1.1 408 Request Time-out\r\ncontent-length: 2\r\n\r\nno"), gotOne},
        {"an end chunk too many", sent(chunked(one) + endChunk()), gotOne},
        {"line breaks between answers", sent("\r\n\r\n\n" + plain(one) + "\r\n\r\n"), gotOne},
    };
}

QVector<Fault> garbage()
{
    const QByteArray binary = QByteArray::fromHex("00ff16030100c3280a0d0d0a");
    return {
        {"garbage before an answer", sent("garbage\r\nHTTQ/1.1\r\n\r\n" + plain(one)), gotOne},
        {"binary garbage before it", sent(binary + chunked(one)), gotOne},
        {"garbage behind it", sent(plain(one) + "garbage"), gotOne},
        {"nothing but garbage", sent("garbage\r\n" + binary)},
        {"64 kB of garbage", sent(QByteArray(64 * 1024 + 1, 'x'))},
        {"HTTP/1.1 inside a body", sent(plain("a[\"HTTP/1.1 200 OK\"]\n")), {"HTTP/1.1 200 OK"}},
        {"a whole answer inside a body",
         sent(plain("a[\"x\",\"" + plain("y").simplified() + "\"]\n")),
         {"x", "HTTP/1.1 200 OK Content-Length: 1 y"}},
        {"HTTP/1.1 inside a chunk", sent(chunked("a[\"HTTP/1.1 200 OK\\r\\n\"]\n")), {"HTTP/1.1 200 OK\r\n"}},
        {"HTTP/1.1 in two chunks",
         sent(chunkedHead() + chunk("a[\"HT") + chunk("TP/1.1 200 OK\"]\n") + endChunk()),
         {"HTTP/1.1 200 OK"}},
        {"HTTP/1.1 as a chunk's size", sent(chunkedHead() + "HTTP/1.1 200 OK\r\n\r\n")},
        {"NULs in the header", sent(head(QByteArray("A\0B: \0\r\nContent-Length: 9\r\n", 27)) + one), gotOne},
        {"a header of odd lines", sent(head(": x\r\nnothing\r\n:\r\nA:\r\nContent-Length: 9\r\n") + one),
         gotOne},
    };
}

QVector<Fault> wrongChunks()
{
    return {
        {"a chunk of 2^64-1", sent(chunkedHead() + "ffffffffffffffff\r\n" + one)},
        {"a chunk of 0x and 2^64-1", sent(chunkedHead() + "0xffffffffffffffff\r\n" + one)},
        {"a chunk beyond 64 bits", sent(chunkedHead() + "fffffffffffffffff\r\n" + one)},
        {"a chunk of 2^63", sent(chunkedHead() + "8000000000000000\r\n" + one)},
        {"a chunk of 2^31", sent(chunkedHead() + "80000000\r\n" + one)},
        {"a chunk of -1", sent(chunkedHead() + "-1\r\n" + one)},
        {"a chunk size of text", sent(chunkedHead() + "chunk\r\n" + one)},
        {"64 kB of chunk size", sent(chunkedHead() + QByteArray(64 * 1024 + 1, '0'))},
    };
}

// Without a usable length a polled body ends with its newline, and a streamed one with the connection.
QVector<Fault> wrongLengths(bool streaming, bool ended)
{
    const bool asksAgain = !streaming || ended;
    return {
        {"a length of -1", sent(head("Content-Length: -1\r\n") + one), gotOne, asksAgain},
        {"a length of text", sent(head("Content-Length: nine\r\n") + one), gotOne, asksAgain},
        {"an empty length", sent(head("Content-Length:\r\n") + one), gotOne, asksAgain},
        {"no length at all", sent(head("") + one), gotOne, asksAgain},
        {"no length and no body", sent(head("")), {}, ended},
        {"a length of 2^31", sent(head("Content-Length: 2147483648\r\n") + one)},
        {"a length of 2^63", sent(head("Content-Length: 9223372036854775808\r\n") + one)},
        {"a length of 2^64", sent(head("Content-Length: 18446744073709551616\r\n") + one)},
        {"a length too small", sent(head("Content-Length: 5\r\n") + one)},
        {"a length of 0 with a body", sent(head("Content-Length: 0\r\n") + one)},
    };
}

QVector<Fault> otherAnswers()
{
    return {
        {"an empty body", sent(plain(""))},
        {"an empty chunked body", sent(chunkedHead() + endChunk())},
        {"not found", sent("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nwhat")},
        {"a failing server", sent("HTTP/1.1 500 Oops\r\nContent-Length: 9\r\n\r\n<html/>\r\n")},
        {"no content", sent("HTTP/1.1 204 No Content\r\n\r\n")},
        {"an announcement before it", sent("HTTP/1.1 100 Continue\r\n\r\n" + plain(one)), gotOne},
        {"a frame that is no JSON", sent(plain("a[\"one\n"))},
        {"a frame of an object", sent(plain("a{\"one\":1}\n"))},
        {"an unknown frame", sent(plain("x[\"one\"]\n"))},
        {"a close frame", sent(plain("c[3000,\"Go away!\"]\n")), {}, false, true},
        {"a second open frame", sent(plain("o\n")), {}, false, true},
    };
}

QVector<Fault> allFaults(const QString& transport, const QString& ending)
{
    const bool stays = ending == QLatin1String("stays");
    QVector<Fault> faults = tooManyAnswers() + garbage() + wrongChunks() +
                            wrongLengths(isStreaming(transport), !stays) + otherAnswers();
    for (Fault& fault : faults) {
        if (!stays)
            fault.script += ending == QLatin1String("closes") ? Server::close() : Server::reset();
    }
    return faults;
}

QMap<QString, Fault> floods()
{
    const QByteArray status = "HTTP/1.1 200 OK\r\n";
    const QByteArray kilobyte(1024, 'x');
    const QByteArray line = "A: " + QByteArray(1019, 'x') + "\r\n";
    const QByteArray breaks = QByteArray("\r\n").repeated(512); // no header's: the answer behind them counts
    return {{"one line", {"one line", {Server::send(status + "A: "), hundredMegabytes(kilobyte)}}},
            {"many lines", {"many lines", {Server::send(status), hundredMegabytes(line)}}},
            {"no header", {"no header", {hundredMegabytes(kilobyte)}}},
            {"line breaks", {"line breaks", {hundredMegabytes(breaks), Server::send(plain(one))}, gotOne}}};
}

// A line of the kernel's account of this process, in bytes.
qint64 memory(const QByteArray& name)
{
    QFile file(QStringLiteral("/proc/self/status"));
    file.open(QIODevice::ReadOnly);
    const QByteArray status = file.readAll();
    return status.mid(status.indexOf(name + ':')).simplified().split(' ').value(1).toLongLong() * 1024;
}

/// How many bytes the process has grown by at its largest since this was made.
class PeakMemory
{
public:
    PeakMemory()
    {
        // Has the kernel forget the largest size so far.
        QFile file(QStringLiteral("/proc/self/clear_refs"));
        if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            file.write("5");
        m_before = memory("VmRSS");
    }
    qint64 growth() const { return memory("VmHWM") - m_before; }

private:
    qint64 m_before;
};

} // namespace

/// Servers that lie and flood, over whole sessions.
class TestHostileAnswers : public FaultTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { begin(); }
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void sessionGoesOn_data() { combinations({transports, {"stays", "closes", "resets"}}); }
    // Whatever becomes of the connection.
    void sessionGoesOn()
    {
        const auto [transport, ending] = row<QString, QString>();
        run(allFaults(transport, ending), transport);
    }

    void unfinishedAnswerIsGivenUp_data() { combinations({transports}); }
    // The server says how much is to come, and falls silent before that.
    void unfinishedAnswerIsGivenUp()
    {
        const auto [transport] = row<QString>();
        const bool streaming = isStreaming(transport);
        const QStringList got = streaming ? gotOne : QStringList();
        run({{"less than the length", sent(head("Content-Length: 100\r\n") + one + "a["), got},
             {"less than a length of 60 MiB", sent(head("Content-Length: 62914560\r\n") + one + "a["), got},
             {"less than the chunk", sent(chunkedHead() + "64\r\n" + one + "a["), got},
             {"less than a chunk of 60 MiB", sent(chunkedHead() + "3c00000\r\n" + one + "a["), got},
             {"half a header", sent("HTTP/1.1 200 OK\r\nContent-Le")}},
            transport);
        const QString stall =
            QStringLiteral("[SockJSXHRPollingWorker] Incoming data timeout, clearing buffer");
        const QString buffer = QStringLiteral("[SockJSXHRPollingWorker.BufferData] = ");
        const QString pending = streaming ? QStringLiteral("a[") : QString::fromUtf8(one + "a[");
        QCOMPARE(m_log->debug(stall).size(), 5);
        QCOMPARE(m_log->debug(buffer).count(buffer + pending), 4);
        QCOMPARE(m_log->debug(buffer).count(buffer + QStringLiteral("HTTP/1.1 200 OK\r\nContent-Le")), 1);
    }

    void hundredMegabytesAreNotKept_data() { combinations({transports, QStringList(floods().keys())}); }
    void hundredMegabytesAreNotKept()
    {
        const auto [transport, flood] = row<QString, QString>();
        const PeakMemory memory;
        run({floods().value(flood)}, transport);
        QVERIFY2(memory.growth() <= Bounds::header, qPrintable(QString::number(memory.growth())));
    }

private:
    void run(const QVector<Fault>& faults, const QString& transport)
    {
        for (const Fault& fault : faults)
            open(fault, isStreaming(transport));
        verifyThrough();
    }
};

QTEST_GUILESS_MAIN(TestHostileAnswers)
#include "tst_HostileAnswers.moc"
