// Records what real servers answer to our receive requests, byte for byte, into the folder that is named.
//
// Not a test: to be run by hand when a server's new version should be tried, from the build folder:
//   tests/faults/recordAnswers SOURCE/tests/support/recorded

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

const QStringList busOptions = {QStringLiteral("--response-limit"), QStringLiteral("600")};

[[noreturn]] void giveUp(const QString& why)
{
    qFatal("%s", qPrintable(why));
}

std::unique_ptr<Peer> started(const Peer::Program& program)
{
    auto peer = std::make_unique<Peer>();
    if (!peer->start(program))
        giveUp(program.name + QStringLiteral(" does not start: ") + program.missing);
    return peer;
}

/// One server, asked as the library asks.
class Recorder
{
public:
    Recorder(const QString& folder, const QString& server, quint16 port)
        : m_stem(folder + QLatin1Char('/') + server + QLatin1Char('-')), m_port(port)
    {}

    void messages() const
    {
        const QByteArray session = newSession();
        read(connection(session + "/xhr").get());
        QJsonArray texts = QJsonArray::fromStringList(Recordings::texts());
        send(session, texts);
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
        if (!socket->waitForConnected(patience))
            giveUp(socket->errorString());
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
            giveUp(QStringLiteral("no answer"));
        return bytes;
    }

    void send(const QByteArray& session, const QJsonArray& texts) const
    {
        const auto sender =
            connection(session + "/xhr_send", QJsonDocument(texts).toJson(QJsonDocument::Compact));
        read(sender.get(), "HTTP/1.1 204");
    }

    void save(const char* name, const QByteArray& bytes) const
    {
        QFile file(m_stem + QLatin1String(name) + QStringLiteral(".http"));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            giveUp(file.errorString());
        qInfo("%s: %d bytes", qPrintable(file.fileName()), int(bytes.size()));
    }

    QString m_stem;
    quint16 m_port;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc != 2)
        giveUp(QStringLiteral("usage: recordAnswers FOLDER"));
    const QString folder = application.arguments().at(1);
    const auto record = [folder](const char* name, const Peer::Program& program) {
        const auto server = started(program);
        const Recorder recorder(folder, QLatin1String(name), server->port());
        recorder.messages();
        recorder.stream();
    };
    const auto bus = started(Peers::nodeBus(busOptions));
    const auto haproxy = [&bus](const char* defaults) {
        return Peers::haproxy({bus->port()}, {{QStringLiteral("DEFAULTS"), QLatin1String(defaults)}});
    };
    record("sockjs", Peers::nodeBus(busOptions));
    record("sockjs-go", Peers::goBus(busOptions));
    record("haproxy", haproxy(""));
    record("haproxy-closing", haproxy("option httpclose"));

    const auto impatient = started(haproxy("timeout http-request 300ms\nno option dontlognull"));
    const Recorder balancer(folder, QStringLiteral("haproxy"), impatient->port());
    balancer.unasked("time-out");
    const auto buffering = started(Peers::nginx(bus->port()));
    const auto streaming =
        started(Peers::nginx(bus->port(), QStringLiteral("proxy_http_version 1.1;\nproxy_buffering off;")));
    const Recorder proxy(folder, QStringLiteral("nginx"), buffering->port());
    proxy.messages();
    Recorder(folder, QStringLiteral("nginx-streaming"), streaming->port()).stream();
    bus->kill();
    balancer.answer("no-server");
    proxy.answer("no-server");
    return 0;
}
