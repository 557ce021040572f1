#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QMap>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QVector>

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
    /// Sends \p bytes in single bytes, each in a segment of its own.
    static Script bytewise(const QByteArray& bytes);
};

/// One accepted connection, which runs its scripts one after the other.
class HttpConnection : public QObject, public HttpScript
{
public:
    HttpConnection(QObject* parent, QTcpSocket* socket, int number);

    QTcpSocket* socket() const { return m_socket; }
    int number() const { return m_number; }
    void append(const Script& script);
    /// Lets a script go on that holds.
    void release();
    void reset();

private:
    friend class HttpServer;

    void run();
    bool isReadyFor(const Step& step) const;
    void perform(const Step& step);

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
    explicit HttpServer(const QSslConfiguration& tls = QSslConfiguration());

    bool isSecure() const { return !m_tls.isNull(); }
    const QList<HttpConnection*>& connections() const { return m_connections; }
    /// Ends all connections, with or without a reset.
    void dropConnections(bool reset = false);

protected:
    virtual void onConnected(HttpConnection*) {}
    virtual void onBytes(HttpConnection*, const QByteArray&) {}
    virtual void onRequest(HttpConnection* connection, const Request& request) = 0;
    virtual void onEnded(HttpConnection*) {}
    /// Gives the socket, with \p request in it, to somebody who reads that himself. It stays a child of the
    /// server.
    QTcpSocket* handOver(HttpConnection* connection, const Request& request);

    void incomingConnection(qintptr descriptor) override;

private:
    void read(HttpConnection* connection);
    bool takeRequest(HttpConnection* connection, Request* request) const;
    void forget(HttpConnection* connection);

    QSslConfiguration m_tls;
    QElapsedTimer m_clock;
    QList<HttpConnection*> m_connections;
    int m_accepted = 0;
};

/// Texts of HTTP answers.
namespace HttpText {

/// An answer with Content-Length; \p more is header lines, each with its CR LF.
QByteArray plain(const QByteArray& body, const QByteArray& more = QByteArray(),
                 const QByteArray& status = "200 OK");
/// The header of a chunked answer.
QByteArray chunkedHead(const QByteArray& more = QByteArray());
QByteArray chunk(const QByteArray& bytes);
QByteArray endChunk();
/// A whole chunked answer of one chunk.
QByteArray chunked(const QByteArray& body, const QByteArray& more = QByteArray());
/// What a SockJS server streams before the first frame, with its newline.
QByteArray prelude();

} // namespace HttpText
