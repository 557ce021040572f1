#pragma once

#include "support/HttpServer.h"

#include <QEventLoop>

#include <algorithm>
#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

/// A real HTTP server on loopback, on a free port and on a thread of its own, which does to each request what
/// a script says, down to the single byte.
///
/// All operations are called from the test's thread.
class ScriptedHttpServer : public HttpScript
{
    using Guard = std::lock_guard<std::mutex>;

public:
    using Request = HttpServer::Request;

    /// Listens; with \p tls (certificate and key set) every connection begins with a handshake.
    explicit ScriptedHttpServer(const QSslConfiguration& tls = QSslConfiguration())
    {
        std::promise<quint16> listening;
        m_thread = std::thread([&] {
            QEventLoop loop;
            Listener listener(this, tls);
            m_loop = &loop;
            m_listener = &listener;
            listening.set_value(listener.serverPort());
            loop.exec();
        });
        m_port = listening.get_future().get();
    }
    ~ScriptedHttpServer()
    {
        QMetaObject::invokeMethod(m_loop, "quit", Qt::QueuedConnection);
        m_thread.join();
    }
    Q_DISABLE_COPY(ScriptedHttpServer)

    quint16 port() const { return m_port; }

    /// Runs \p script for the next request whose path ends with \p path; scripts for one path are used in
    /// turn.
    void answer(const QByteArray& path, const Script& script)
    {
        const Guard lock(m_mutex);
        m_answers.append({path, script});
    }
    void answer(const QByteArray& path, const QByteArray& bytes) { answer(path, Script{send(bytes)}); }
    /// Runs \p script for those requests that answer() has left nothing for.
    void answerAlways(const QByteArray& path, const Script& script)
    {
        const Guard lock(m_mutex);
        m_standing.append({path, script});
    }
    void answerAlways(const QByteArray& path, const QByteArray& bytes)
    {
        answerAlways(path, Script{send(bytes)});
    }
    /// Runs \p script for the next connection when it is made.
    void onConnect(const Script& script)
    {
        const Guard lock(m_mutex);
        m_greetings.append(script);
    }
    /// Whether all scripts of answer() and onConnect() have been run or begun.
    bool isUsedUp() const
    {
        const Guard lock(m_mutex);
        return m_answers.isEmpty() && m_greetings.isEmpty();
    }

    /// Lets the scripts go on that hold.
    void release()
    {
        invoke([this] {
            const QList<HttpConnection*> connections = m_listener->connections();
            for (HttpConnection* connection : connections)
                connection->release();
        });
    }
    /// Sends \p bytes on the newest connection, whatever its script says.
    void sendNow(const QByteArray& bytes)
    {
        invoke([this, bytes] {
            if (m_listener->connections().isEmpty())
                return;
            QTcpSocket* socket = m_listener->connections().last()->socket();
            socket->write(bytes);
            socket->flush();
        });
    }
    /// Ends all connections, with or without a reset.
    void dropConnections(bool reset = false)
    {
        invoke([this, reset] { m_listener->dropConnections(reset); });
    }
    /// Refuses new connections, until listenAgain().
    void stopListening()
    {
        invoke([this] { m_listener->close(); });
    }
    bool listenAgain()
    {
        bool listening = false;
        invoke([this, &listening] { listening = m_listener->listen(QHostAddress::LocalHost, m_port); });
        return listening;
    }

    /// The requests so far whose path ends with \p path.
    QList<Request> requests(const QByteArray& path = QByteArray()) const
    {
        const Guard lock(m_mutex);
        QList<Request> found;
        std::copy_if(m_requests.begin(), m_requests.end(), std::back_inserter(found),
                     [&path](const Request& request) { return request.path.endsWith(path); });
        return found;
    }
    int count(const QByteArray& path = QByteArray()) const { return requests(path).size(); }
    /// All bytes that have come on one connection.
    QByteArray received(int connection) const
    {
        const Guard lock(m_mutex);
        return m_received.value(connection);
    }
    /// Connections accepted so far.
    int connections() const { return m_connections; }
    /// Those of them that are open.
    int openConnections() const { return m_open; }

private:
    class Listener : public HttpServer
    {
    public:
        Listener(ScriptedHttpServer* owner, const QSslConfiguration& tls) : HttpServer(tls), m_owner(owner) {}

    protected:
        void onConnected(HttpConnection* connection) override
        {
            ++m_owner->m_connections;
            ++m_owner->m_open;
            connection->append(m_owner->greeting());
        }

        void onBytes(HttpConnection* connection, const QByteArray& bytes) override
        {
            const Guard lock(m_owner->m_mutex);
            m_owner->m_received[connection->number()] += bytes;
        }

        void onRequest(HttpConnection* connection, const Request& request) override
        {
            connection->append(m_owner->scriptFor(request));
        }

        void onEnded(HttpConnection*) override { --m_owner->m_open; }

    private:
        ScriptedHttpServer* m_owner;
    };

    // Has \p action done on the server's thread.
    void invoke(const std::function<void()>& action) const
    {
        std::promise<void> done;
        const auto act = [&] {
            action();
            done.set_value();
        };
        QMetaObject::invokeMethod(m_listener, act, Qt::QueuedConnection);
        done.get_future().wait();
    }

    Script greeting()
    {
        const Guard lock(m_mutex);
        return m_greetings.isEmpty() ? Script() : m_greetings.takeFirst();
    }
    Script scriptFor(const Request& request)
    {
        const Guard lock(m_mutex);
        m_requests.append(request);
        const auto fits = [&request](const auto& each) { return request.path.endsWith(each.first); };
        const auto once = std::find_if(m_answers.begin(), m_answers.end(), fits);
        if (once != m_answers.end())
            return m_answers.takeAt(once - m_answers.begin()).second;
        const auto standing = std::find_if(m_standing.cbegin(), m_standing.cend(), fits);
        return standing == m_standing.cend() ? Script() : standing->second;
    }

    // The standard library's thread, because the thread sanitizer does not see how Qt's are joined.
    std::thread m_thread;
    Listener* m_listener = nullptr;
    QEventLoop* m_loop = nullptr;
    quint16 m_port = 0;
    std::atomic<int> m_connections{0};
    std::atomic<int> m_open{0};

    mutable std::mutex m_mutex; // guards all that follows
    QVector<QPair<QByteArray, Script>> m_answers;
    QVector<QPair<QByteArray, Script>> m_standing;
    QVector<Script> m_greetings;
    QList<Request> m_requests;
    QMap<int, QByteArray> m_received;
};
