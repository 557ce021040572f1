// Records what real servers answer to our receive requests, byte for byte, into tests/support/recorded.
//
// Not a test: to be run by hand when a server's new version should be tried.

#include "interop/support/Peers.h"
#include "support/Recordings.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <memory>

namespace {

constexpr int silence = 300; // milliseconds after which an answer is taken to be over
constexpr int patience = 10000;

std::unique_ptr<Peer> started(const Peer::Program& program)
{
    auto peer = std::make_unique<Peer>();
    if (!peer->start(program))
        qFatal("%s does not start: %s", qPrintable(program.name), qPrintable(program.missing));
    return peer;
}

/// One server, asked as the library asks.
class Recorder
{
public:
    Recorder(const QString& server, quint16 port) : m_server(server), m_port(port) {}

    void messages() const
    {
        const QByteArray session = newSession();
        read(connection(session + "/xhr").get());
        send(session, QJsonArray::fromStringList(Recordings::texts()));
        answer("messages", session);
    }

    void stream() const
    {
        const QByteArray session = newSession();
        const auto receiver = connection(session + "/xhr_streaming");
        QByteArray bytes = read(receiver.get(), "o\n");
        for (int i = 0; i < Recordings::streamedTexts; ++i) {
            send(session, {Recordings::streamedText(i)});
            bytes += read(receiver.get(), "]\n");
        }
        save("stream", bytes.endsWith("0\r\n\r\n") ? bytes : bytes + read(receiver.get(), "0\r\n\r\n"));
    }

    /// What comes of a poll.
    void answer(const char* name, const QByteArray& session = newSession()) const
    {
        save(name, read(connection(session + "/xhr").get()));
    }

    /// What comes although nothing has been asked.
    void unasked(const char* name) const { save(name, read(connection(QByteArray()).get())); }

private:
    using Socket = std::unique_ptr<QTcpSocket>;

    static QByteArray newSession()
    {
        static int sessions = 0;
        return "/eventbus/119/recorded" + QByteArray::number(++sessions);
    }

    // With the line breaks behind the body, as the library writes it; without a path, nothing.
    Socket connection(const QByteArray& path, const QByteArray& body = QByteArray()) const
    {
        auto socket = std::make_unique<QTcpSocket>();
        socket->setProxy(QNetworkProxy::NoProxy);
        socket->connectToHost(QHostAddress(QHostAddress::LocalHost), m_port);
        if (!path.isEmpty())
            socket->write("POST " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: keep-alive\r\n" +
                          "Accept-Encoding: identity\r\nContent-Type: application/json\r\nContent-Length: " +
                          QByteArray::number(body.size()) + "\r\n\r\n" + body + "\r\n\r\n");
        return socket;
    }

    // Until \p end is among the bytes; without one, until the first silence.
    static QByteArray read(QTcpSocket* socket, const QByteArray& end = QByteArray())
    {
        QByteArray bytes;
        while ((end.isNull() || !bytes.contains(end)) &&
               socket->waitForReadyRead(end.isNull() && !bytes.isEmpty() ? silence : patience))
            bytes += socket->readAll();
        if (bytes.isEmpty() || !bytes.contains(end))
            qFatal("no answer");
        return bytes;
    }

    void send(const QByteArray& session, const QJsonArray& texts) const
    {
        const auto body = QJsonDocument(texts).toJson(QJsonDocument::Compact);
        read(connection(session + "/xhr_send", body).get(), "HTTP/1.1 204");
    }

    void save(const char* name, const QByteArray& bytes) const
    {
        const QString path = QStringLiteral(INTEROP_SOURCE_DIR "/../support/recorded/%1-%2.http");
        QFile file(path.arg(m_server, QLatin1String(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("%s", qPrintable(file.errorString()));
    }

    QString m_server;
    quint16 m_port;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList busOptions = {QStringLiteral("--response-limit"), QStringLiteral("300")};
    const auto bus = started(Peers::nodeBus(busOptions));
    const auto haproxy = [&bus](const char* defaults) {
        return started(
            Peers::haproxy({bus->port()}, {{QStringLiteral("DEFAULTS"), QLatin1String(defaults)}}));
    };
    const auto goBus = started(Peers::goBus(busOptions));
    const auto balancer = haproxy("");
    const auto impatient = haproxy("timeout http-request 300ms\nno option dontlognull");
    const auto nginx = started(Peers::nginx(bus->port()));
    for (const Recorder& recorder : {Recorder("sockjs", bus->port()), Recorder("sockjs-go", goBus->port()),
                                     Recorder("haproxy", balancer->port())}) {
        recorder.messages();
        recorder.stream();
    }
    Recorder("haproxy", impatient->port()).unasked("time-out");
    Recorder("nginx", nginx->port()).messages();
    bus->kill();
    Recorder("haproxy", balancer->port()).answer("no-server");
    Recorder("nginx", nginx->port()).answer("no-server");
    return 0;
}
