#include "support/ScriptedHttpServer.h"

#include <QEventLoop>
#include <QSslSocket>
#include <QTcpServer>
#include <QTimer>

#include <sys/socket.h>

namespace {

// A close with this set sends a reset instead of the usual farewell.
void resetOnClose(QTcpSocket* socket)
{
    const linger atOnce{1, 0};
    setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
}

} // namespace

// One accepted connection, which runs its scripts one after the other.
class ScriptedConnection : public QObject
{
public:
    ScriptedConnection(QObject* parent, QTcpSocket* socket, int number)
        : QObject(parent), m_socket(socket), m_number(number)
    {
        m_socket->setParent(this);
        m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        m_timer.setSingleShot(true);
        connect(&m_timer, &QTimer::timeout, this, [this] { run(); });
        connect(m_socket, &QTcpSocket::bytesWritten, this, [this] { run(); });
    }

    QTcpSocket* socket() const { return m_socket; }
    int number() const { return m_number; }
    QByteArray* buffer() { return &m_buffer; }

    void hear(const QByteArray& bytes)
    {
        m_buffer += bytes;
        m_heard = true;
        run();
    }

    void append(const ScriptedHttpServer::Script& script)
    {
        m_steps += script;
        run();
    }

    void release()
    {
        m_holding = false;
        run();
    }

private:
    void run()
    {
        while (!m_steps.isEmpty() && isConnected() && !m_holding && !m_timer.isActive() && !isFull() &&
               !isListening())
            perform(m_steps.takeFirst());
    }

    bool isConnected() const { return m_socket->state() == QAbstractSocket::ConnectedState; }

    // In the middle of a flood that the peer does not take.
    bool isFull() const
    {
        return m_steps.first().kind == ScriptedHttpServer::Step::Flood && m_socket->bytesToWrite() > 0;
    }

    bool isListening() const { return m_steps.first().kind == ScriptedHttpServer::Step::Hear && !m_heard; }

    void perform(const ScriptedHttpServer::Step& step)
    {
        using Step = ScriptedHttpServer::Step;
        switch (step.kind) {
        case Step::Send:
            m_socket->write(step.bytes);
            m_socket->flush();
            break;
        case Step::Flood:
            m_socket->write(step.bytes);
            if (step.times > 1)
                m_steps.prepend(ScriptedHttpServer::flood(step.bytes, step.times - 1));
            break;
        case Step::Pause:
            m_timer.start(step.msecs);
            break;
        case Step::Hold:
            m_holding = true;
            break;
        case Step::Hear:
            break; // it has been heard
        case Step::Reset:
            resetOnClose(m_socket);
            m_socket->abort();
            break;
        case Step::Close:
            m_socket->disconnectFromHost();
            break;
        }
    }

    QTcpSocket* m_socket;
    int m_number;
    QByteArray m_buffer;
    ScriptedHttpServer::Script m_steps;
    QTimer m_timer{this};
    bool m_holding = false;
    bool m_heard = false;
};

class ScriptedListener : public QTcpServer
{
public:
    ScriptedListener(ScriptedHttpServer* owner, const QSslConfiguration& tls) : m_owner(owner), m_tls(tls) {}

    QList<ScriptedConnection*> connections() const { return m_open; }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto* socket = m_tls.isNull() ? new QTcpSocket(this) : new QSslSocket(this);
        socket->setSocketDescriptor(descriptor);
        ScriptedHttpServer::Script greeting;
        int number = 0;
        {
            const std::lock_guard<std::mutex> lock(m_owner->m_mutex);
            number = m_owner->m_connections++;
            ++m_owner->m_open;
            if (!m_owner->m_greetings.isEmpty())
                greeting = m_owner->m_greetings.takeFirst();
        }
        auto* connection = new ScriptedConnection(this, socket, number);
        m_open.append(connection);
        connect(socket, &QTcpSocket::readyRead, connection, [this, connection] { read(connection); });
        connect(socket, &QTcpSocket::disconnected, connection, [this, connection] { forget(connection); });
        if (auto* secure = qobject_cast<QSslSocket*>(socket)) {
            secure->setSslConfiguration(m_tls);
            secure->startServerEncryption();
        }
        connection->append(greeting);
    }

private:
    void read(ScriptedConnection* connection)
    {
        const QByteArray bytes = connection->socket()->readAll();
        {
            const std::lock_guard<std::mutex> lock(m_owner->m_mutex);
            m_owner->m_received[connection->number()] += bytes;
        }
        connection->hear(bytes);
        ScriptedHttpServer::Request request;
        while (takeRequest(connection, &request)) {
            ScriptedHttpServer::Script script;
            if (m_owner->takeScript(request.path, &script))
                connection->append(script);
        }
    }

    bool takeRequest(ScriptedConnection* connection, ScriptedHttpServer::Request* request)
    {
        QByteArray& buffer = *connection->buffer();
        while (buffer.startsWith('\r') || buffer.startsWith('\n'))
            buffer.remove(0, 1);
        const int end = buffer.indexOf("\r\n\r\n") + 4;
        if (end < 4)
            return false;
        readHead(buffer.left(end), request);
        const int length = request->headers.value("content-length").toInt();
        if (buffer.size() < end + length)
            return false;
        request->body = buffer.mid(end, length);
        buffer.remove(0, end + length);
        request->connection = connection->number();
        const std::lock_guard<std::mutex> lock(m_owner->m_mutex);
        request->msecs = m_owner->m_clock.elapsed();
        m_owner->m_requests.append(*request);
        return true;
    }

    static void readHead(const QByteArray& head, ScriptedHttpServer::Request* request)
    {
        *request = ScriptedHttpServer::Request();
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

    void forget(ScriptedConnection* connection)
    {
        m_open.removeOne(connection);
        connection->deleteLater();
        const std::lock_guard<std::mutex> lock(m_owner->m_mutex);
        --m_owner->m_open;
    }

    ScriptedHttpServer* m_owner;
    QSslConfiguration m_tls;
    QList<ScriptedConnection*> m_open;
};

ScriptedHttpServer::Script ScriptedHttpServer::bytewise(const QByteArray& bytes)
{
    Script script;
    for (const char byte : bytes)
        script << send(QByteArray(1, byte)) << pause(0);
    return script;
}

ScriptedHttpServer::ScriptedHttpServer(const QSslConfiguration& tls)
{
    m_clock.start();
    std::promise<quint16> listening;
    m_thread = std::thread([&] { run(tls, &listening); });
    m_port = listening.get_future().get();
}

ScriptedHttpServer::~ScriptedHttpServer()
{
    QMetaObject::invokeMethod(m_loop, "quit", Qt::QueuedConnection);
    m_thread.join();
}

void ScriptedHttpServer::run(const QSslConfiguration& tls, std::promise<quint16>* listening)
{
    QEventLoop loop;
    ScriptedListener listener(this, tls);
    listener.listen(QHostAddress::LocalHost);
    m_loop = &loop;
    m_listener = &listener;
    listening->set_value(listener.serverPort());
    loop.exec();
}

// Has \p action done on the server's thread.
void ScriptedHttpServer::invoke(const std::function<void()>& action) const
{
    std::promise<void> done;
    const auto act = [&] {
        action();
        done.set_value();
    };
    QMetaObject::invokeMethod(m_listener, act, Qt::QueuedConnection);
    done.get_future().wait();
}

bool ScriptedHttpServer::takeScript(const QByteArray& path, Script* script)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (int i = 0; i < m_answers.size(); ++i) {
        if (path.endsWith(m_answers.at(i).first)) {
            *script = m_answers.takeAt(i).second;
            return true;
        }
    }
    for (const auto& standing : qAsConst(m_standing)) {
        if (path.endsWith(standing.first)) {
            *script = standing.second;
            return true;
        }
    }
    return false;
}

void ScriptedHttpServer::answer(const QByteArray& path, const Script& script)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_answers.append({path, script});
}

void ScriptedHttpServer::answerAlways(const QByteArray& path, const Script& script)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_standing.append({path, script});
}

void ScriptedHttpServer::onConnect(const Script& script)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_greetings.append(script);
}

bool ScriptedHttpServer::isUsedUp() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_answers.isEmpty() && m_greetings.isEmpty();
}

void ScriptedHttpServer::release()
{
    invoke([this] {
        const QList<ScriptedConnection*> connections = m_listener->connections();
        for (ScriptedConnection* connection : connections)
            connection->release();
    });
}

void ScriptedHttpServer::sendNow(const QByteArray& bytes)
{
    invoke([this, bytes] {
        if (m_listener->connections().isEmpty())
            return;
        QTcpSocket* socket = m_listener->connections().last()->socket();
        socket->write(bytes);
        socket->flush();
    });
}

void ScriptedHttpServer::dropConnections(bool reset)
{
    invoke([this, reset] {
        const QList<ScriptedConnection*> connections = m_listener->connections();
        for (ScriptedConnection* connection : connections) {
            if (reset)
                resetOnClose(connection->socket());
            connection->socket()->abort();
        }
    });
}

void ScriptedHttpServer::stopListening()
{
    invoke([this] { m_listener->close(); });
}

bool ScriptedHttpServer::listenAgain()
{
    bool listening = false;
    invoke([this, &listening] { listening = m_listener->listen(QHostAddress::LocalHost, m_port); });
    return listening;
}

QList<ScriptedHttpServer::Request> ScriptedHttpServer::requests(const QByteArray& path) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QList<Request> found;
    for (const Request& request : m_requests) {
        if (request.path.endsWith(path))
            found.append(request);
    }
    return found;
}

QByteArray ScriptedHttpServer::received(int connection) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_received.value(connection);
}

int ScriptedHttpServer::connections() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_connections;
}

int ScriptedHttpServer::openConnections() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_open;
}

QByteArray HttpText::plain(const QByteArray& body, const QByteArray& more)
{
    return "HTTP/1.1 200 OK\r\n" + more + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
           body;
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
