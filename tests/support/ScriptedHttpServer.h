#pragma once

#include "support/HttpServer.h"

#include <functional>
#include <future>
#include <mutex>
#include <thread>

class QEventLoop;

/// A real HTTP server on loopback, on a free port and on a thread of its own, which does to each request what
/// a script says, down to the single byte.
///
/// All operations are called from the test's thread.
class ScriptedHttpServer : public HttpScript
{
public:
    using Request = HttpServer::Request;

    /// Listens; with \p tls (certificate and key set) every connection begins with a handshake.
    explicit ScriptedHttpServer(const QSslConfiguration& tls = QSslConfiguration());
    ~ScriptedHttpServer();

    quint16 port() const { return m_port; }

    /// Runs \p script for the next request whose path ends with \p path; scripts for one path are used in
    /// turn.
    void answer(const QByteArray& path, const Script& script);
    void answer(const QByteArray& path, const QByteArray& bytes) { answer(path, Script{send(bytes)}); }
    /// Runs \p script for those requests that answer() has left nothing for.
    void answerAlways(const QByteArray& path, const Script& script);
    void answerAlways(const QByteArray& path, const QByteArray& bytes)
    {
        answerAlways(path, Script{send(bytes)});
    }
    /// Runs \p script for the next connection when it is made.
    void onConnect(const Script& script);
    /// Whether all scripts of answer() and onConnect() have been run or begun.
    bool isUsedUp() const;

    /// Lets the scripts go on that hold.
    void release();
    /// Sends \p bytes on the newest connection, whatever its script says.
    void sendNow(const QByteArray& bytes);
    /// Ends all connections, with or without a reset.
    void dropConnections(bool reset = false);
    /// Refuses new connections, until listenAgain().
    void stopListening();
    bool listenAgain();

    /// The requests so far whose path ends with \p path.
    QList<Request> requests(const QByteArray& path = QByteArray()) const;
    int count(const QByteArray& path = QByteArray()) const { return requests(path).size(); }
    /// All bytes that have come on one connection.
    QByteArray received(int connection) const;
    /// Connections accepted so far.
    int connections() const;
    /// Those of them that are open.
    int openConnections() const;

private:
    class Listener;

    void run(const QSslConfiguration& tls, std::promise<quint16>* listening);
    void invoke(const std::function<void()>& action) const;
    Script scriptFor(const QByteArray& path);

    // The standard library's thread, because the thread sanitizer does not see how Qt's are joined.
    std::thread m_thread;
    Listener* m_listener = nullptr;
    QEventLoop* m_loop = nullptr;
    quint16 m_port = 0;

    mutable std::mutex m_mutex; // guards all that follows
    QVector<QPair<QByteArray, Script>> m_answers;
    QVector<QPair<QByteArray, Script>> m_standing;
    QVector<Script> m_greetings;
    QList<Request> m_requests;
    QMap<int, QByteArray> m_received;
    int m_connections = 0;
    int m_open = 0;
};
