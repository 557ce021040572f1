#include "support/FakeService.h"

#include <QSslSocket>
#include <QTest>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

QByteArray reason(int status)
{
    switch (status) {
    case 200:
        return QByteArrayLiteral("OK");
    case 401:
        return QByteArrayLiteral("Unauthorized");
    case 500:
        return QByteArrayLiteral("Internal Server Error");
    default:
        return QByteArrayLiteral("Status");
    }
}

} // namespace

/// One connection: gathers the bytes of a request until it is complete.
class FakeServiceConnection : public QObject
{
    Q_OBJECT

public:
    FakeServiceConnection(FakeService* service, QTcpSocket* socket)
        : QObject(service), m_service(service), m_socket(socket)
    {
        socket->setParent(this);
        connect(socket, &QTcpSocket::readyRead, this, &FakeServiceConnection::read);
        connect(socket, &QTcpSocket::disconnected, this, &FakeServiceConnection::onDisconnected);
    }

    void send(const QByteArray& bytes) { m_socket->write(bytes); }

    void finish() { m_awaitsAnswer = false; }

    void close()
    {
        finish();
        m_socket->disconnectFromHost();
    }

    void drop()
    {
        finish();
        m_socket->abort();
    }

private:
    void read()
    {
        m_buffer += m_socket->readAll();
        acknowledge();
        FakeService::Request request;
        while (takeRequest(request)) {
            m_awaitsAnswer = true;
            m_service->handle(this, request);
        }
    }

    // The client sends a body only when its head has been acknowledged, which the kernel delays by 40 ms.
    void acknowledge() const
    {
        const int yes = 1;
        setsockopt(int(m_socket->socketDescriptor()), IPPROTO_TCP, TCP_QUICKACK, &yes, sizeof(yes));
    }

    bool takeRequest(FakeService::Request& request)
    {
        const int headEnd = m_buffer.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return false;
        request = parseHead(m_buffer.left(headEnd));
        const int length = request.header("content-length").toInt();
        if (m_buffer.size() < headEnd + 4 + length)
            return false;
        request.body = m_buffer.mid(headEnd + 4, length);
        m_buffer.remove(0, headEnd + 4 + length);
        return true;
    }

    static FakeService::Request parseHead(const QByteArray& head)
    {
        FakeService::Request request;
        const QList<QByteArray> lines = head.split('\n');
        const QList<QByteArray> words = lines.first().trimmed().split(' ');
        request.method = words.value(0);
        request.path = words.value(1);
        for (const QByteArray& line : lines.mid(1)) {
            const int colon = line.indexOf(':');
            request.headers.append({line.left(colon), line.mid(colon + 1).trimmed()});
        }
        return request;
    }

    void onDisconnected()
    {
        if (m_awaitsAnswer)
            ++m_service->m_abandoned;
        deleteLater();
    }

    FakeService* m_service;
    QTcpSocket* m_socket;
    QByteArray m_buffer;
    bool m_awaitsAnswer = false;
};

QByteArray FakeService::Request::header(const char* name) const
{
    for (const auto& header : headers) {
        if (qstricmp(header.first.constData(), name) == 0)
            return header.second;
    }
    return {};
}

FakeService::Answer FakeService::Answer::json(const QByteArray& text, int status)
{
    Answer answer;
    answer.m_status = status;
    answer.m_body = text;
    return answer.with("Content-Type", "application/json;charset=UTF-8");
}

FakeService::Answer FakeService::Answer::redirect(const QByteArray& location, int status)
{
    Answer answer;
    answer.m_status = status;
    return answer.with("Location", location);
}

FakeService::Answer FakeService::Answer::never()
{
    Answer answer;
    answer.m_kind = Never;
    return answer;
}

FakeService::Answer FakeService::Answer::gone()
{
    Answer answer;
    answer.m_kind = Gone;
    return answer;
}

FakeService::Answer FakeService::Answer::cut(const QByteArray& text)
{
    Answer answer = json(text);
    answer.m_kind = Cut;
    return answer;
}

FakeService::Answer FakeService::Answer::stalled(const QByteArray& text)
{
    Answer answer = json(text);
    answer.m_kind = Stalled;
    return answer;
}

FakeService::Answer& FakeService::Answer::with(const QByteArray& name, const QByteArray& value)
{
    m_headers.append({name, value});
    return *this;
}

FakeService::Answer& FakeService::Answer::held()
{
    m_held = true;
    return *this;
}

FakeService::Answer& FakeService::Answer::then(std::function<void()> action)
{
    m_action = std::move(action);
    return *this;
}

QByteArray FakeService::Answer::bytes() const
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(m_status) + ' ' + reason(m_status) + "\r\n";
    for (const auto& header : m_headers)
        bytes += header.first + ": " + header.second + "\r\n";
    bytes += "Content-Length: " + QByteArray::number(m_body.size()) + "\r\n\r\n";
    return bytes + (m_kind == Whole ? m_body : m_body.left(m_body.size() / 2));
}

FakeService::FakeService()
{
    start();
}

FakeService::FakeService(const QSslConfiguration& tls) : m_secure(true), m_tls(tls)
{
    start();
}

FakeService::~FakeService()
{
    for (const Step& step : qAsConst(m_script))
        m_failures.append(QStringLiteral("no request came for %1").arg(QString::fromUtf8(step.path)));
    if (!m_failures.isEmpty() && !QTest::currentTestFailed())
        QTest::qFail(qPrintable(m_failures.join(QStringLiteral("; "))), __FILE__, __LINE__);
}

void FakeService::start()
{
    if (!listen(QHostAddress::LocalHost))
        fail(QStringLiteral("cannot listen: ") + errorString());
}

QString FakeService::url() const
{
    return QStringLiteral("%1://127.0.0.1:%2")
        .arg(m_secure ? QStringLiteral("https") : QStringLiteral("http"))
        .arg(serverPort());
}

void FakeService::expect(const QByteArray& path, const Answer& answer)
{
    m_script.append({path, answer});
}

void FakeService::expectNoMore()
{
    m_script.clear();
}

void FakeService::release()
{
    if (m_heldAnswers.isEmpty()) {
        fail(QStringLiteral("no answer is held"));
        return;
    }
    const auto held = m_heldAnswers.takeFirst();
    if (held.first)
        send(held.first, held.second);
}

QList<QByteArray> FakeService::paths() const
{
    QList<QByteArray> paths;
    for (const Request& request : m_requests)
        paths.append(request.path);
    return paths;
}

void FakeService::incomingConnection(qintptr handle)
{
    auto* socket = m_secure ? new QSslSocket : new QTcpSocket;
    socket->setSocketDescriptor(handle);
    new FakeServiceConnection(this, socket);
    if (auto* tlsSocket = qobject_cast<QSslSocket*>(socket)) {
        tlsSocket->setSslConfiguration(m_tls);
        tlsSocket->startServerEncryption();
    }
}

void FakeService::handle(FakeServiceConnection* connection, const Request& request)
{
    m_requests.append(request);
    if (m_script.isEmpty() || m_script.first().path != request.path) {
        fail(QStringLiteral("unexpected request for %1").arg(QString::fromUtf8(request.path)));
        send(connection, Answer::json("unexpected", 501));
        return;
    }
    const Answer answer = m_script.takeFirst().answer;
    const QPointer<FakeServiceConnection> guard(connection);
    if (answer.m_held)
        m_heldAnswers.append({guard, answer});
    if (answer.m_action)
        answer.m_action();
    if (guard && !answer.m_held)
        send(guard, answer);
}

void FakeService::send(FakeServiceConnection* connection, const Answer& answer)
{
    switch (answer.m_kind) {
    case Answer::Whole:
        connection->send(answer.bytes());
        connection->finish();
        break;
    case Answer::Cut:
        connection->send(answer.bytes());
        connection->close();
        break;
    case Answer::Stalled:
        connection->send(answer.bytes());
        break;
    case Answer::Never:
        break;
    case Answer::Gone:
        close();
        connection->drop();
        break;
    }
}

void FakeService::fail(const QString& reason)
{
    m_failures.append(reason);
}

#include "FakeService.moc"
