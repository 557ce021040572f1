#include "support/ScriptedHttpServer.h"

#include <QEventLoop>

#include <algorithm>

using Guard = std::lock_guard<std::mutex>;

class ScriptedHttpServer::Listener : public HttpServer
{
public:
    Listener(ScriptedHttpServer* owner, const QSslConfiguration& tls) : HttpServer(tls), m_owner(owner) {}

protected:
    void onConnected(HttpConnection* connection) override
    {
        Script greeting;
        {
            const Guard lock(m_owner->m_mutex);
            ++m_owner->m_connections;
            ++m_owner->m_open;
            if (!m_owner->m_greetings.isEmpty())
                greeting = m_owner->m_greetings.takeFirst();
        }
        connection->append(greeting);
    }

    void onBytes(HttpConnection* connection, const QByteArray& bytes) override
    {
        const Guard lock(m_owner->m_mutex);
        m_owner->m_received[connection->number()] += bytes;
    }

    void onRequest(HttpConnection* connection, const Request& request) override
    {
        Script script;
        {
            const Guard lock(m_owner->m_mutex);
            m_owner->m_requests.append(request);
            script = m_owner->scriptFor(request.path);
        }
        connection->append(script);
    }

    void onEnded(HttpConnection*) override
    {
        const Guard lock(m_owner->m_mutex);
        --m_owner->m_open;
    }

private:
    ScriptedHttpServer* m_owner;
};

ScriptedHttpServer::ScriptedHttpServer(const QSslConfiguration& tls)
{
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
    Listener listener(this, tls);
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

// With the mutex held.
ScriptedHttpServer::Script ScriptedHttpServer::scriptFor(const QByteArray& path)
{
    const auto fits = [&path](const QPair<QByteArray, Script>& each) { return path.endsWith(each.first); };
    const auto once = std::find_if(m_answers.begin(), m_answers.end(), fits);
    if (once != m_answers.end())
        return m_answers.takeAt(once - m_answers.begin()).second;
    const auto standing = std::find_if(m_standing.cbegin(), m_standing.cend(), fits);
    return standing == m_standing.cend() ? Script() : standing->second;
}

void ScriptedHttpServer::answer(const QByteArray& path, const Script& script)
{
    const Guard lock(m_mutex);
    m_answers.append({path, script});
}

void ScriptedHttpServer::answerAlways(const QByteArray& path, const Script& script)
{
    const Guard lock(m_mutex);
    m_standing.append({path, script});
}

void ScriptedHttpServer::onConnect(const Script& script)
{
    const Guard lock(m_mutex);
    m_greetings.append(script);
}

bool ScriptedHttpServer::isUsedUp() const
{
    const Guard lock(m_mutex);
    return m_answers.isEmpty() && m_greetings.isEmpty();
}

void ScriptedHttpServer::release()
{
    invoke([this] {
        const QList<HttpConnection*> connections = m_listener->connections();
        for (HttpConnection* connection : connections)
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
    invoke([this, reset] { m_listener->dropConnections(reset); });
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
    const Guard lock(m_mutex);
    QList<Request> found;
    std::copy_if(m_requests.begin(), m_requests.end(), std::back_inserter(found),
                 [&path](const Request& request) { return request.path.endsWith(path); });
    return found;
}

QByteArray ScriptedHttpServer::received(int connection) const
{
    const Guard lock(m_mutex);
    return m_received.value(connection);
}

int ScriptedHttpServer::connections() const
{
    const Guard lock(m_mutex);
    return m_connections;
}

int ScriptedHttpServer::openConnections() const
{
    const Guard lock(m_mutex);
    return m_open;
}
