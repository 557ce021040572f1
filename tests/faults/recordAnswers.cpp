// Records what real servers answer to our receive requests, byte for byte, into the folder that is named.
//
// Not a test: to be run by hand when a server's new version should be tried, from the build folder:
//   tests/faults/recordAnswers SOURCE/tests/faults/recorded

#include "faults/support/Recordings.h"
#include "interop/support/Peers.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int silence = 300; // milliseconds after which an answer is taken to be over
constexpr int patience = 10000;

const QStringList busOptions = {QStringLiteral("--response-limit"), QStringLiteral("600"),
                                QStringLiteral("--heartbeat"), QStringLiteral("3000")};

[[noreturn]] void giveUp(const QString& why)
{
    std::fprintf(stderr, "%s\n", qPrintable(why));
    std::exit(1);
}

void start(Peer* peer)
{
    const QByteArray failure = peer->start();
    if (!failure.isEmpty())
        giveUp(QString::fromUtf8(failure));
}

QByteArray post(const QByteArray& path, const QByteArray& body = QByteArray())
{
    // As the library writes it, with the line breaks behind the body.
    return "POST " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: keep-alive\r\n" +
           "Accept-Encoding: identity\r\nContent-Type: application/json\r\nContent-Length: " +
           QByteArray::number(body.size()) + "\r\n\r\n" + body + "\r\n\r\n";
}

// One lasting connection to a server.
class Connection
{
public:
    explicit Connection(quint16 port) : m_port(port)
    {
        m_socket.setProxy(QNetworkProxy::NoProxy);
        connectAgain();
    }

    void write(const QByteArray& request)
    {
        if (m_socket.state() != QAbstractSocket::ConnectedState)
            connectAgain();
        m_socket.write(request);
        m_socket.flush();
    }

    /// The bytes up to the first silence.
    QByteArray read()
    {
        QByteArray bytes;
        while (m_socket.waitForReadyRead(bytes.isEmpty() ? patience : silence))
            bytes += m_socket.readAll();
        if (bytes.isEmpty())
            giveUp(QStringLiteral("no answer"));
        return bytes;
    }

    /// The bytes until \p end is among them.
    QByteArray readTo(const QByteArray& end)
    {
        const QDeadlineTimer limit(patience);
        QByteArray bytes;
        while (!bytes.contains(end)) {
            if (!m_socket.waitForReadyRead(static_cast<int>(limit.remainingTime())))
                giveUp(QStringLiteral("no ") + QString::fromUtf8(end));
            bytes += m_socket.readAll();
        }
        return bytes;
    }

private:
    void connectAgain()
    {
        m_socket.abort();
        m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), m_port);
        if (!m_socket.waitForConnected(patience))
            giveUp(m_socket.errorString());
    }

    quint16 m_port;
    QTcpSocket m_socket;
};

class Recorder
{
public:
    Recorder(const QString& folder, const QString& server, quint16 port)
        : m_folder(folder), m_server(server), m_port(port)
    {}

    void open() { save("open", ask("/eventbus/119/" + newSession() + "/xhr")); }

    void messages()
    {
        const QByteArray session = openSession();
        send(session, Recordings::texts());
        save("messages", ask("/eventbus/119/" + session + "/xhr"));
    }

    void heartbeat() { save("heartbeat", ask("/eventbus/119/" + openSession() + "/xhr")); }

    void closed()
    {
        const QByteArray session = openSession();
        send(session, {QStringLiteral("{\"body\":{\"type\":\"leave\"}}")});
        save("closed", ask("/eventbus/119/" + session + "/xhr"));
    }

    void stream()
    {
        const QByteArray session = newSession();
        Connection receiver(m_port);
        receiver.write(post("/eventbus/119/" + session + "/xhr_streaming"));
        QByteArray bytes = receiver.readTo("o\n");
        for (int i = 0; i < Recordings::streamedTexts; ++i) {
            send(session, {Recordings::streamedText(i)});
            bytes += receiver.readTo("]\n");
        }
        if (!bytes.endsWith("0\r\n\r\n"))
            bytes += receiver.readTo("0\r\n\r\n");
        save("stream", bytes);
    }

    /// A request that the server does not carry out.
    void refusal(const char* name) { save(name, ask("/eventbus/119/" + newSession() + "/xhr")); }

    /// What comes although nothing has been asked.
    void unasked(const char* name) { save(name, Connection(m_port).read()); }

private:
    QByteArray newSession() { return "recorded" + QByteArray::number(++m_sessions); }

    QByteArray openSession()
    {
        const QByteArray session = newSession();
        ask("/eventbus/119/" + session + "/xhr");
        return session;
    }

    QByteArray ask(const QByteArray& path)
    {
        Connection connection(m_port);
        connection.write(post(path));
        return connection.read();
    }

    void send(const QByteArray& session, const QStringList& texts)
    {
        Connection connection(m_port);
        connection.write(post("/eventbus/119/" + session + "/xhr_send", Recordings::jsonList(texts)));
        connection.readTo("HTTP/1.1 204");
    }

    void save(const char* name, const QByteArray& bytes)
    {
        QFile file(m_folder + QLatin1Char('/') + m_server + QLatin1Char('-') + QLatin1String(name) +
                   QStringLiteral(".http"));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            giveUp(file.errorString());
        std::printf("%s: %d bytes\n", qPrintable(file.fileName()), bytes.size());
    }

    QString m_folder;
    QString m_server;
    quint16 m_port;
    int m_sessions = 0;
};

void recordSession(Recorder recorder)
{
    recorder.open();
    recorder.messages();
    recorder.closed();
    recorder.stream();
}

void recordBus(const QString& folder, const QString& name, Peer* bus)
{
    start(bus);
    Recorder recorder(folder, name, bus->port());
    recorder.heartbeat();
    recordSession(recorder);
}

void recordBalancer(const QString& folder, const QString& name, const QString& options)
{
    Peer bus(Peers::nodeBus(busOptions));
    start(&bus);
    Peer balancer(Peers::haproxy({bus.port()}, {{QStringLiteral("DEFAULTS"), options}}));
    start(&balancer);
    recordSession(Recorder(folder, name, balancer.port()));
}

void recordReverseProxy(const QString& folder, const QString& name, const QString& options)
{
    Peer bus(Peers::nodeBus(busOptions));
    start(&bus);
    Peer proxy(Peers::nginx(bus.port(), options));
    start(&proxy);
    Recorder recorder(folder, name, proxy.port());
    recorder.open();
    recorder.messages();
    recorder.closed();
    if (!options.isEmpty())
        recorder.stream();
    bus.kill();
    if (options.isEmpty())
        recorder.refusal("no-server");
}

void recordBalancerErrors(const QString& folder)
{
    Peer bus(Peers::nodeBus(busOptions));
    start(&bus);
    Peer balancer(Peers::haproxy(
        {bus.port()},
        {{QStringLiteral("DEFAULTS"), QStringLiteral("timeout http-request 300ms\nno option dontlognull")}}));
    start(&balancer);
    Recorder recorder(folder, QStringLiteral("haproxy"), balancer.port());
    recorder.unasked("time-out");
    bus.kill();
    recorder.refusal("no-server");
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (application.arguments().size() != 2)
        giveUp(QStringLiteral("usage: recordAnswers FOLDER"));
    const QString folder = application.arguments().at(1);
    QDir().mkpath(folder);

    Peer node(Peers::nodeBus(busOptions));
    recordBus(folder, QStringLiteral("sockjs"), &node);
    QString error;
    Peer go(Peers::goBus(&error, busOptions));
    if (!error.isEmpty())
        giveUp(error);
    recordBus(folder, QStringLiteral("sockjs-go"), &go);
    recordBalancer(folder, QStringLiteral("haproxy"), QString());
    recordBalancer(folder, QStringLiteral("haproxy-closing"), QStringLiteral("option httpclose"));
    recordBalancerErrors(folder);
    recordReverseProxy(folder, QStringLiteral("nginx"), QString());
    recordReverseProxy(folder, QStringLiteral("nginx-streaming"),
                       QStringLiteral("proxy_http_version 1.1;\nproxy_buffering off;"));
    return 0;
}
