#pragma once

#include "calyxclient_export.h"
#include "transport/XHRRequest.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QList>
#include <QMutex>
#include <QObject>

#include <atomic>
#include <memory>

class HttpAnswerParser;
class QEventLoop;
class QTcpSocket;

/// The receiving side of an XHR transport: HTTP/1.1 by hand over one lasting TCP or TLS socket, on a thread
/// of its own.
///
/// Writes queued requests one at a time, takes the answers apart, and makes a lost connection anew. It is
/// made and connected on one thread, then moved to another together with its socket, where process() runs.
/// queueRequest(), forceClose() and isReceiving() may be called from any thread while the worker lives;
/// everything else belongs to the thread that it is on.
class CALYXCLIENT_EXPORT SockJSXHRPollingWorker : public QObject
{
    Q_OBJECT

public:
    /// \p socket (a QSslSocket when \p ssl) stays the caller's and must outlive process(). \p host and \p
    /// port are where it is connected to, at first and again whenever the connection is lost.
    SockJSXHRPollingWorker(QObject* parent, QTcpSocket* socket, QString host, int port, bool ssl,
                           bool keepAlive);
    ~SockJSXHRPollingWorker() override;

    /// Connects the socket, with TLS the handshake included. Blocks for up to 30 seconds, without events.
    /// False when that failed; the socket's errorString() tells why.
    bool connectToServer();

    /// Puts \p request at the end of the queue; it is written when no other is in flight, at once if none is.
    /// False when the worker is closing, when the queue is locked for over a second, or when it holds 51
    /// requests. The request stays the caller's in either case and must live until its answer, or its loss,
    /// is reported.
    bool queueRequest(XHRRequest* request);

    /// Ends process() within 50 ms. Requests that are waiting are never written.
    void forceClose();

    /// Whether a receive request ("/xhr" or "/xhr_streaming") is waiting or in flight.
    bool isReceiving() const;

    /// Writes the first waiting request to the socket, if there is one. A step of process(), which calls it
    /// only when nothing is in flight and nothing half received.
    void transmitNextRequest();

    /// Reads the header of the answer in \p data. Sets \p status to 200 (-1 when there is no "HTTP/"
    /// anywhere) and adds each line's name and value to \p headers, a later duplicate in place of an earlier
    /// one; names as they are, values with the blank after the colon. Returns the number of bytes up to and
    /// with the empty line or the end of the data, 0 when there is no "HTTP/".
    int parseHttpHeaderResponse(QByteArray data, int* status, QMap<QString, QString>* headers);

    /// Appends the body in \p data, or its next chunk, to \p out and returns the number of bytes read. 0:
    /// there is not enough data. -1: the end chunk of a chunked body, which is any size below 2 and any line
    /// that is no number. A \p contentLength below 2 sets no bound.
    int parseMessageResponse(QByteArray data, bool chunked, QString* out, int contentLength);

public Q_SLOTS:
    /// Runs until forceClose(), until the socket is closed by someone else, or until the eleventh failure in
    /// a row to reconnect; then emits finished(). Runs an event loop of this thread while it waits.
    void process();

Q_SIGNALS:
    /// process() has ended; nothing follows.
    void finished();
    /// A lost connection has been made anew. What was in flight on the old one is gone (requestLost).
    void reconnected();
    /// The header of the answer to \p request has come. Names in their usual spelling ("Set-Cookie"); several
    /// Set-Cookie lines are one value with a newline between them. The transport releases the request
    /// that came with the signal before this one.
    void receivedHeadersResponse(XHRRequest* request, QStringMap headers);
    /// The body of the answer to \p request, or one frame of a streamed body, without its trailing newline.
    void receivedMessageResponse(XHRRequest* request, QString message);
    /// The answer to \p request is complete and has had no text in it.
    void receivedEmptyResponse(XHRRequest* request);
    /// \p request will not be answered (any further); the worker has let go of it.
    void requestLost(XHRRequest* request);

private:
    Q_DISABLE_COPY(SockJSXHRPollingWorker)

    std::atomic<bool> m_stop{false};
};
