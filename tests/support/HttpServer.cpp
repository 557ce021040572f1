#include "support/HttpServer.h"

#include <QPointer>
#include <QSslSocket>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

template<typename Value>
void setOption(const QTcpSocket* socket, int level, int option, const Value& value)
{
    setsockopt(int(socket->socketDescriptor()), level, option, &value, sizeof(value));
}

void readHead(const QByteArray& head, HttpServer::Request* request)
{
    request->head = head;
    QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> words = lines.takeFirst().split(' ');
    request->method = words.value(0);
    request->path = words.value(1);
    for (const QByteArray& line : qAsConst(lines)) {
        const int colon = line.indexOf(':');
        if (colon > 0)
            request->headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
}

} // namespace

HttpScript::Script HttpScript::bytewise(const QByteArray& bytes)
{
    Script script;
    for (const char byte : bytes)
        script << send(QByteArray(1, byte)) << pause(0);
    return script;
}

HttpConnection::HttpConnection(QObject* parent, QTcpSocket* socket, int number)
    : QObject(parent), m_socket(socket), m_number(number)
{
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // or small pieces wait for one another
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &HttpConnection::run);
    connect(m_socket, &QTcpSocket::bytesWritten, this, &HttpConnection::run);
}

void HttpConnection::append(const Script& script)
{
    m_steps += script;
    run();
}

void HttpConnection::release()
{
    m_holding = false;
    run();
}

void HttpConnection::reset()
{
    setOption(m_socket, SOL_SOCKET, SO_LINGER, linger{1, 0}); // no farewell
    m_socket->abort();
}

void HttpConnection::run()
{
    while (!m_steps.isEmpty() && isReadyFor(m_steps.first()))
        perform(m_steps.takeFirst());
}

bool HttpConnection::isReadyFor(const Step& step) const
{
    // In the middle of a flood that the peer does not take.
    const bool isFull = step.kind == Step::Flood && m_socket->bytesToWrite() > 0;
    const bool isListening = step.kind == Step::Hear && !m_heard;
    return m_socket->state() == QAbstractSocket::ConnectedState && !m_holding && !m_timer.isActive() &&
           !isFull && !isListening;
}

void HttpConnection::perform(const Step& step)
{
    switch (step.kind) {
    case Step::Flood:
        if (step.times > 1)
            m_steps.prepend(flood(step.bytes, step.times - 1));
        m_socket->write(step.bytes);
        break;
    case Step::Send:
        m_socket->write(step.bytes);
        m_socket->flush();
        break;
    case Step::Pause:
        m_timer.start(step.msecs);
        break;
    case Step::Hold:
        m_holding = true;
        break;
    case Step::Hear:
        break; // it has been heard
    case Step::Close:
        m_socket->disconnectFromHost();
        break;
    case Step::Reset:
        reset();
        break;
    }
}

HttpServer::HttpServer(const QSslConfiguration& tls) : m_tls(tls)
{
    m_clock.start();
    if (!listen(QHostAddress::LocalHost))
        qFatal("Cannot listen on loopback: %s", qPrintable(errorString()));
}

void HttpServer::incomingConnection(qintptr descriptor)
{
    auto* socket = m_tls.isNull() ? new QTcpSocket : new QSslSocket;
    socket->setSocketDescriptor(descriptor);
    auto* connection = new HttpConnection(this, socket, m_accepted++);
    m_connections.append(connection);
    onConnected(connection);
    connect(socket, &QTcpSocket::readyRead, connection, [this, connection] { read(connection); });
    connect(socket, &QTcpSocket::disconnected, connection, [this, connection] { forget(connection); });
    if (auto* secure = qobject_cast<QSslSocket*>(socket)) {
        secure->setSslConfiguration(m_tls);
        secure->startServerEncryption();
    }
}

void HttpServer::read(HttpConnection* connection)
{
    const QByteArray bytes = connection->m_socket->readAll();
    // Qt sends a body only when its head has been acknowledged, which the kernel delays by 40 ms.
    setOption(connection->m_socket, IPPROTO_TCP, TCP_QUICKACK, 1);
    onBytes(connection, bytes);
    connection->m_buffer += bytes;
    connection->m_heard = true;
    connection->run();
    const QPointer<HttpConnection> guard(connection);
    Request request;
    while (guard && takeRequest(connection, &request))
        onRequest(connection, request);
}

bool HttpServer::takeRequest(HttpConnection* connection, Request* request) const
{
    QByteArray& buffer = connection->m_buffer;
    while (buffer.startsWith('\r') || buffer.startsWith('\n'))
        buffer.remove(0, 1);
    const int end = buffer.indexOf("\r\n\r\n") + 4;
    if (end < 4)
        return false;
    *request = Request();
    readHead(buffer.left(end), request);
    const int length = request->header("content-length").toInt();
    if (buffer.size() < end + length)
        return false;
    request->body = buffer.mid(end, length);
    buffer.remove(0, end + length);
    request->connection = connection->m_number;
    request->msecs = m_clock.elapsed();
    return true;
}

void HttpServer::forget(HttpConnection* connection)
{
    m_connections.removeOne(connection);
    onEnded(connection);
    connection->deleteLater();
}

QTcpSocket* HttpServer::handOver(HttpConnection* connection, const Request& request)
{
    QTcpSocket* socket = connection->m_socket;
    m_connections.removeOne(connection);
    socket->disconnect(connection);
    socket->setParent(this);
    connection->deleteLater();
    for (int i = request.head.size() - 1; i >= 0; --i)
        socket->ungetChar(request.head.at(i));
    return socket;
}

void HttpServer::dropConnections(bool reset)
{
    const QList<HttpConnection*> connections = m_connections;
    for (HttpConnection* connection : connections) {
        if (reset)
            connection->reset();
        else
            connection->m_socket->abort();
    }
}

QByteArray HttpText::plain(const QByteArray& body, const QByteArray& more, const QByteArray& status)
{
    return "HTTP/1.1 " + status + "\r\n" + more + "Content-Length: " + QByteArray::number(body.size()) +
           "\r\n\r\n" + body;
}

QByteArray HttpText::chunkedHead(const QByteArray& more)
{
    return "HTTP/1.1 200 OK\r\n" + more + "Transfer-Encoding: chunked\r\n\r\n";
}

QByteArray HttpText::chunk(const QByteArray& bytes)
{
    return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
}

QByteArray HttpText::endChunk()
{
    return QByteArrayLiteral("0\r\n\r\n");
}

QByteArray HttpText::chunked(const QByteArray& body, const QByteArray& more)
{
    return chunkedHead(more) + chunk(body) + endChunk();
}

QByteArray HttpText::prelude()
{
    return QByteArray(2048, 'h') + '\n';
}
