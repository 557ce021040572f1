#include "support/Rows.h"
#include "support/ScriptedHttpServer.h"
#include "support/TestCertificates.h"
#include "support/WaitFor.h"
#include "transport/RawConnection.h"

#include <QNetworkProxy>
#include <QSslSocket>
#include <QTest>
#include <QThread>

#include <memory>
#include <thread>

namespace {

using Server = ScriptedHttpServer;

constexpr int enough = 20000;     // ms
constexpr int little = 50;        // ms
constexpr int tooLong = 36000000; // ms; what is to end a wait has to come before the watchdog

QSslConfiguration tlsOf(const char* certificate)
{
    return TestCertificates::server(QString::fromLatin1(certificate));
}

// A connection and its socket.
struct Line
{
    Line(quint16 port, bool secure, const QString& host = QStringLiteral("127.0.0.1"))
        : socket(secure ? new QSslSocket : new QTcpSocket)
        , connection(nullptr, socket.get(), host, port, secure)
    {}

    std::unique_ptr<QTcpSocket> socket;
    RawConnection connection;
    std::atomic<bool> stop{false};

    bool connectLine(bool waiting, int msecs = enough)
    {
        return waiting ? connection.connectWaiting(msecs, &stop) : connection.connectBlocking(msecs);
    }

    // Waits until the far end has sent something.
    QByteArray read()
    {
        while (!connection.hasBytes() && connection.isConnected())
            connection.wait(tooLong);
        return connection.readAll();
    }
};

} // namespace

/// One connection, plain and with TLS, made without events and within the event loop. What the worker does
/// with it is in tst_SockJSXHRPollingWorker.
class tst_RawConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); }

    void init()
    {
        m_server = std::make_unique<Server>();
        m_line = std::make_unique<Line>(m_server->port(), false);
    }

    void cleanup()
    {
        m_line.reset();
        m_server.reset();
    }

    void carriesBytesBothWaysAndCanBeMadeAgain_data() { ways(); }
    void carriesBytesBothWaysAndCanBeMadeAgain()
    {
        const auto [secure, waiting] = row<bool, bool>();
        Server server(secure ? tlsOf("loopback") : QSslConfiguration());
        Line line(server.port(), secure);
        QVERIFY(line.connection.isUnconnected());
        QVERIFY(line.connectLine(waiting));
        QVERIFY(line.connection.isConnected());
        QVERIFY(!line.connection.isUnconnected());
        QVERIFY(!line.connection.isClosed());
        QVERIFY(!line.connection.hasBytes());
        QVERIFY(!line.stop);
        line.connection.write("question");
        QTRY_COMPARE(server.received(0), QByteArray("question"));
        server.sendNow("answer");
        QCOMPARE(line.read(), QByteArray("answer"));
        QVERIFY(!line.connection.hasBytes());
        line.connection.write("lost");
        line.connection.drop();
        QVERIFY(line.connection.isUnconnected());
        QVERIFY(!line.connection.isConnected());
        QVERIFY(!line.connection.isClosed());
        QTRY_COMPARE(server.openConnections(), 0);
        QVERIFY(line.connectLine(waiting));
        line.connection.write("again");
        QTRY_COMPARE(server.received(1), QByteArray("again"));
    }

    void writesAtOnce()
    {
        QVERIFY(m_line->connectLine(false));
        m_line->connection.write("question");
        QCOMPARE(m_line->socket->bytesToWrite(), qint64(0));
    }

    void refusedOneCanBeMadeAgain_data() { ways(); }
    void refusedOneCanBeMadeAgain()
    {
        const auto [secure, waiting] = row<bool, bool>();
        Server server(secure ? tlsOf("loopback") : QSslConfiguration());
        server.stopListening();
        Line line(server.port(), secure);
        QVERIFY(!line.connectLine(waiting));
        QVERIFY(line.connection.isUnconnected());
        QVERIFY(!line.connection.isClosed());
        QVERIFY(!line.stop);
        QVERIFY(server.listenAgain());
        QVERIFY(line.connectLine(waiting));
        QVERIFY(line.connection.isConnected());
    }
    void refusesCertificatesOfOthers_data() { waits(); }
    void refusesCertificatesOfOthers()
    {
        const auto [waiting] = row<bool>();
        for (const char* certificate : {"elsewhere", "expired", "unknown"}) {
            const Server server(tlsOf(certificate));
            Line line(server.port(), true);
            QVERIFY2(!line.connectLine(waiting), certificate);
            QVERIFY2(line.connection.isUnconnected() && !line.connection.isClosed(), certificate);
            QCOMPARE(server.received(0), QByteArray());
        }
    }

    void handshakeHasItsTime_data() { waits(); }
    void handshakeHasItsTime()
    {
        const auto [waiting] = row<bool>();
        const Server silent;
        Line line(silent.port(), true);
        QVERIFY(!line.connectLine(waiting, little));
        QVERIFY(!line.stop);
    }

    void goesThroughTheProxyOfItsSocket_data() { waits(); }
    // The far end of its CONNECT is in no network: only the proxy can know it.
    void goesThroughTheProxyOfItsSocket()
    {
        const auto [waiting] = row<bool>();
        Server proxy;
        proxy.answer("bus.invalid:80", "HTTP/1.1 200 Connection established\r\n\r\n");
        Line line(80, false, QStringLiteral("bus.invalid"));
        line.socket->setProxy({QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), proxy.port()});
        QVERIFY(line.connectLine(waiting));
        QVERIFY(proxy.isUsedUp());
        proxy.sendNow("o\n");
        QCOMPARE(line.read(), QByteArray("o\n"));
    }

    void stopEndsTheHandshake()
    {
        const Server silent;
        Line line(silent.port(), true);
        std::thread other([&] {
            line.stop = true;
            QMetaObject::invokeMethod(&line.connection, &RawConnection::wake, Qt::QueuedConnection);
        });
        const bool connected = line.connectLine(true, tooLong);
        other.join();
        QVERIFY(!connected);
        QVERIFY(line.connection.isUnconnected());
        QVERIFY(!line.connection.isClosed());
    }

    void stopBeforehandIsAnEnd()
    {
        const Server server;
        Line line(server.port(), true);
        line.stop = true;
        QVERIFY(!line.connectLine(true, tooLong));
        QVERIFY(line.connection.isUnconnected());
    }

    void quittingThreadEndsHandshakeAndWait()
    {
        const Server silent;
        bool connected = true;
        bool ran = true;
        bool isOver = false;
        std::thread thread([&] {
            Line line(silent.port(), true);
            QThread::currentThread()->quit();
            connected = line.connectLine(true, tooLong);
            isOver = line.stop && line.connection.isUnconnected();
            ran = line.connection.wait(tooLong);
        });
        thread.join();
        QVERIFY(!connected);
        QVERIFY(isOver);
        QVERIFY(!ran);
    }

    void waitEndsWithBytesAndWithTheConnection()
    {
        m_server->answer("/a", Server::Script{Server::send("answer"), Server::hold(), Server::close()});
        QVERIFY(m_line->connectLine(false));
        m_line->connection.write("GET /a HTTP/1.1\r\n\r\n");
        QVERIFY(m_line->connection.wait(tooLong));
        QCOMPARE(m_line->connection.readAll(), QByteArray("answer"));
        m_server->release();
        while (m_line->connection.isConnected())
            QVERIFY(m_line->connection.wait(tooLong));
    }

    void waitEndsWhenWoken()
    {
        Line line(1, false);
        line.connection.wake(); // that nobody waits is no harm
        std::thread other(
            [&] { QMetaObject::invokeMethod(&line.connection, &RawConnection::wake, Qt::QueuedConnection); });
        const bool ran = line.connection.wait(tooLong);
        other.join();
        QVERIFY(ran);
    }

    void waitEndsWithItsTime()
    {
        Line line(1, false);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(line.connection.wait(little));
        QVERIFY(clock.elapsed() >= little - 1);
    }

    void closedByTheFarEndIsNotClosed_data() { rows<bool>({{"farewell", false}, {"reset", true}}); }
    void closedByTheFarEndIsNotClosed()
    {
        const auto [reset] = row<bool>();
        QVERIFY(m_line->connectLine(false));
        QTRY_COMPARE(m_server->connections(), 1);
        m_server->dropConnections(reset);
        QVERIFY(waitFor([&] { return m_line->connection.isUnconnected(); }));
        QVERIFY(!m_line->connection.isClosed());
        QVERIFY(m_line->connectLine(true));
    }

    void closedByAFailedWriteIsNotClosed()
    {
        QVERIFY(m_line->connectLine(false));
        QTRY_COMPARE(m_server->connections(), 1);
        m_server->dropConnections(true);
        while (m_line->socket->isOpen()) // until the reset has come
            m_line->connection.write("lost");
        QVERIFY(!m_line->connection.isClosed());
    }

    void closedBySomebodyElseWhenMadeAgainIsClosed()
    {
        QVERIFY(m_line->connectLine(false));
        m_line->connection.drop();
        QVERIFY(m_line->connectLine(true));
        m_line->socket->close();
        QVERIFY(m_line->connection.isClosed());
    }

private:
    static void waits() { rows<bool>({{"without events", false}, {"within the event loop", true}}); }

    static void ways()
    {
        rows<bool, bool>({
            {"plain, without events", false, false},
            {"plain, within the event loop", false, true},
            {"TLS, without events", true, false},
            {"TLS, within the event loop", true, true},
        });
    }

    const TestCertificates::TrustedRoot m_trusted;
    std::unique_ptr<Server> m_server;
    std::unique_ptr<Line> m_line; // plain, to that server
};

QTEST_GUILESS_MAIN(tst_RawConnection)
#include "tst_RawConnection.moc"
