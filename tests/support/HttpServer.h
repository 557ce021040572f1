#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QMap>
#include <QPointer>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QVector>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <utility>

/// What a server does with a connection, step by step.
struct HttpScript
{
    struct Step
    {
        enum Kind { Send, Flood, Pause, Hold, Hear, Close, Reset } kind;
        QByteArray bytes;
        int msecs;
        int times = 1;
    };
    using Script = QVector<Step>;

    static Step send(const QByteArray& bytes) { return {Step::Send, bytes, 0}; }
    /// Sends \p bytes \p times times, no faster than the peer takes them and without keeping them.
    static Step flood(const QByteArray& bytes, int times) { return {Step::Flood, bytes, 0, times}; }
    /// Lets \p msecs pass: part of what the server does to its peer, not a wait of the test.
    static Step pause(int msecs) { return {Step::Pause, QByteArray(), msecs}; }
    /// Goes on when the connection is released.
    static Step hold() { return {Step::Hold, QByteArray(), 0}; }
    /// Goes on when the peer has sent something on the connection.
    static Step hear() { return {Step::Hear, QByteArray(), 0}; }
    static Step close() { return {Step::Close, QByteArray(), 0}; }
    /// Ends the connection with a TCP reset.
    static Step reset() { return {Step::Reset, QByteArray(), 0}; }
};

template<typename Value>
void setSocketOption(const QTcpSocket* socket, int level, int option, const Value& value)
{
    setsockopt(int(socket->socketDescriptor()), level, option, &value, sizeof(value));
}

/// Ends the connection with a TCP reset.
inline void resetConnection(QTcpSocket* socket)
{
    setSocketOption(socket, SOL_SOCKET, SO_LINGER, linger{1, 0}); // no farewell
    socket->abort();
}

/// One accepted connection, which runs its scripts one after the other.
class HttpConnection : public QObject, public HttpScript
{
public:
    HttpConnection(QObject* parent, QTcpSocket* socket, int number)
        : QObject(parent), m_socket(socket), m_number(number)
    {
        m_socket->setParent(this);
        m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // or small pieces wait for one another
        m_timer.setSingleShot(true);
        connect(&m_timer, &QTimer::timeout, this, &HttpConnection::run);
        connect(m_socket, &QTcpSocket::bytesWritten, this, &HttpConnection::run);
    }

    QTcpSocket* socket() const { return m_socket; }
    int number() const { return m_number; }
    void append(const Script& script)
    {
        m_steps += script;
        run();
    }
    /// Lets a script go on that holds.
    void release()
    {
        m_holding = false;
        run();
    }

private:
    friend class HttpServer;

    void run()
    {
        while (!m_steps.isEmpty() && isReadyFor(m_steps.first()))
            perform(m_steps.takeFirst());
    }
    bool isReadyFor(const Step& step) const
    {
        // In the middle of a flood that the peer does not take.
        const bool isFull = step.kind == Step::Flood && m_socket->bytesToWrite() > 0;
        const bool isListening = step.kind == Step::Hear && !m_heard;
        return m_socket->state() == QAbstractSocket::ConnectedState && !m_holding && !m_timer.isActive() &&
               !isFull && !isListening;
    }
    void perform(const Step& step)
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
            resetConnection(m_socket);
            break;
        }
    }

    QTcpSocket* m_socket;
    int m_number;
    QByteArray m_buffer;
    Script m_steps;
    QTimer m_timer{this};
    bool m_holding = false;
    bool m_heard = false;
};

/// The part of an HTTP/1.1 server that all servers of the tests have in common: it listens on a free port of
/// loopback, and takes the requests apart. It lives on the thread that makes it, whose event loop has to run
/// for anything to happen.
class HttpServer : public QTcpServer
{
public:
    struct Request
    {
        QByteArray method;
        QByteArray path;
        QByteArray head;                      ///< request line and header lines, with the empty line
        QMap<QByteArray, QByteArray> headers; ///< names in lower case, values trimmed
        QByteArray body;
        int connection = 0; ///< counted from 0 in the order of their coming
        qint64 msecs = 0;   ///< since the server was made

        /// By its name in lower case; null when it was not sent.
        QByteArray header(const char* name) const { return headers.value(name); }
    };

    /// Listens; with \p tls (certificate and key set) every connection begins with a handshake.
    explicit HttpServer(const QSslConfiguration& tls = QSslConfiguration()) : m_tls(tls)
    {
        m_clock.start();
        if (!listen(QHostAddress::LocalHost))
            qFatal("Cannot listen on loopback: %s", qPrintable(errorString()));
    }

    bool isSecure() const { return !m_tls.isNull(); }
    const QList<HttpConnection*>& connections() const { return m_connections; }
    /// Ends all connections, with or without a reset.
    void dropConnections(bool reset = false)
    {
        const auto sockets = findChildren<QTcpSocket*>();
        for (QTcpSocket* socket : sockets) {
            if (reset)
                resetConnection(socket);
            else
                socket->abort();
        }
    }

protected:
    virtual void onConnected(HttpConnection*) {}
    virtual void onBytes(HttpConnection*, const QByteArray&) {}
    virtual void onRequest(HttpConnection* connection, const Request& request) = 0;
    virtual void onEnded(HttpConnection*) {}
    /// Gives the socket, with \p request in it, to somebody who reads that himself. It stays a child of the
    /// server.
    QTcpSocket* handOver(HttpConnection* connection, const Request& request)
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

    void incomingConnection(qintptr descriptor) override
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

private:
    static void readHead(const QByteArray& head, Request* request)
    {
        request->head = head;
        QList<QByteArray> lines = head.split('\n');
        const QList<QByteArray> words = lines.takeFirst().split(' ');
        request->method = words.value(0);
        request->path = words.value(1);
        for (const QByteArray& line : std::as_const(lines)) {
            const int colon = line.indexOf(':');
            if (colon > 0)
                request->headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
        }
    }

    void read(HttpConnection* connection)
    {
        const QByteArray bytes = connection->m_socket->readAll();
        // Qt sends a body only when its head has been acknowledged, which the kernel delays by 40 ms.
        setSocketOption(connection->m_socket, IPPROTO_TCP, TCP_QUICKACK, 1);
        onBytes(connection, bytes);
        connection->m_buffer += bytes;
        connection->m_heard = true;
        connection->run();
        const QPointer<HttpConnection> guard(connection);
        Request request;
        while (guard && takeRequest(connection, &request))
            onRequest(connection, request);
    }
    bool takeRequest(HttpConnection* connection, Request* request) const
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
    void forget(HttpConnection* connection)
    {
        m_connections.removeOne(connection);
        onEnded(connection);
        connection->deleteLater();
    }

    QSslConfiguration m_tls;
    QElapsedTimer m_clock;
    QList<HttpConnection*> m_connections;
    int m_accepted = 0;
};

/// Texts of HTTP answers.
namespace HttpText {

/// An answer with Content-Length; \p more is header lines, each with its CR LF.
inline QByteArray plain(const QByteArray& body, const QByteArray& more = QByteArray(),
                        const QByteArray& status = "200 OK")
{
    return "HTTP/1.1 " + status + "\r\n" + more + "Content-Length: " + QByteArray::number(body.size()) +
           "\r\n\r\n" + body;
}
/// The header of a chunked answer.
inline QByteArray chunkedHead(const QByteArray& more = QByteArray())
{
    return "HTTP/1.1 200 OK\r\n" + more + "Transfer-Encoding: chunked\r\n\r\n";
}
inline QByteArray chunk(const QByteArray& bytes)
{
    return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
}
inline QByteArray endChunk()
{
    return QByteArrayLiteral("0\r\n\r\n");
}
/// A whole chunked answer of one chunk.
inline QByteArray chunked(const QByteArray& body, const QByteArray& more = QByteArray())
{
    return chunkedHead(more) + chunk(body) + endChunk();
}
/// What a SockJS server streams before the first frame, with its newline.
inline QByteArray prelude()
{
    return QByteArray(2048, 'h') + '\n';
}

} // namespace HttpText
