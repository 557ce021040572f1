#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QMap>
#include <QSslConfiguration>
#include <QVector>

#include <functional>
#include <future>
#include <mutex>
#include <thread>

class QEventLoop;
class ScriptedListener;

/// A real HTTP server on loopback, on a free port and on a thread of its own, which does to each request what
/// a script says, down to the single byte.
///
/// All operations are called from the test's thread.
class ScriptedHttpServer
{
public:
    /// One thing that the server does with a connection. The steps of a script follow each other.
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
    /// Goes on when release() is called.
    static Step hold() { return {Step::Hold, QByteArray(), 0}; }
    /// Goes on when the peer has sent something on the connection.
    static Step hear() { return {Step::Hear, QByteArray(), 0}; }
    static Step close() { return {Step::Close, QByteArray(), 0}; }
    /// Ends the connection with a TCP reset.
    static Step reset() { return {Step::Reset, QByteArray(), 0}; }
    /// Sends \p bytes in single bytes, each in a segment of its own.
    static Script bytewise(const QByteArray& bytes);

    struct Request
    {
        QByteArray method;
        QByteArray path;
        QByteArray head;                      ///< request line and header lines, with the empty line
        QMap<QByteArray, QByteArray> headers; ///< names in lower case, values trimmed
        QByteArray body;
        int connection = 0; ///< counted from 0 in the order of their coming
        qint64 msecs = 0;   ///< since the server was made
    };

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
    friend class ScriptedListener;

    void run(const QSslConfiguration& tls, std::promise<quint16>* listening);
    void invoke(const std::function<void()>& action) const;
    bool takeScript(const QByteArray& path, Script* script);

    // The standard library's thread, because the thread sanitizer does not see how Qt's are joined.
    std::thread m_thread;
    ScriptedListener* m_listener = nullptr;
    QEventLoop* m_loop = nullptr;
    quint16 m_port = 0;
    QElapsedTimer m_clock;

    mutable std::mutex m_mutex; // guards all that follows
    QVector<QPair<QByteArray, Script>> m_answers;
    QVector<QPair<QByteArray, Script>> m_standing;
    QVector<Script> m_greetings;
    QList<Request> m_requests;
    QMap<int, QByteArray> m_received;
    int m_connections = 0;
    int m_open = 0;
};

/// Texts of HTTP answers.
namespace HttpText {

/// An answer with Content-Length; \p more is header lines, each with its CR LF.
QByteArray plain(const QByteArray& body, const QByteArray& more = QByteArray());
/// The header of a chunked answer.
QByteArray chunkedHead(const QByteArray& more = QByteArray());
QByteArray chunk(const QByteArray& bytes);
QByteArray endChunk();
/// A whole chunked answer of one chunk.
QByteArray chunked(const QByteArray& body, const QByteArray& more = QByteArray());
/// What a SockJS server streams before the first frame, with its newline.
QByteArray prelude();

} // namespace HttpText
