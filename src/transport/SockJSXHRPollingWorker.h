#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/transport/XHRRequest.h>

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QString>

#include <memory>

class QTcpSocket;

/// The receiving side of an XHR transport: HTTP/1.1 by hand over one lasting TCP or TLS socket, on a thread
/// of its own.
///
/// Writes queued requests one at a time, takes the responses apart, and makes a lost connection anew. It is
/// made and connected on one thread, then moved to another together with its socket, where process() runs.
/// queueRequest(), forceClose(), resume() and isReceiving() may be called from any thread while the worker
/// lives; everything else belongs to the thread that it is on.
class CALYXCLIENT_EXPORT SockJSXHRPollingWorker : public QObject
{
    Q_OBJECT

public:
    /// \p socket (a QSslSocket when \p ssl) stays the caller's and must outlive process(). \p server and \p
    /// port are where it is connected to, at first and again whenever the connection is lost.
    SockJSXHRPollingWorker(QObject* parent, QTcpSocket* socket, QString server, int port, bool ssl,
                           bool keepAlive);
    /// Frees no request.
    ~SockJSXHRPollingWorker() override;

    /// Milliseconds that making a connection may take, unless told otherwise.
    static constexpr int ConnectLimit = 30000;

    /// Connects the socket, with TLS the handshake included. Blocks for up to \p msecs, without events.
    /// False when that failed; the socket's errorString() tells why.
    bool connectToServer(int msecs = ConnectLimit);
    /// The same in an event loop, which forceClose() ends.
    bool connectInEventLoop(int msecs = ConnectLimit);

    /// Milliseconds that a response with a length or with chunks may pause, unless told otherwise.
    static constexpr int StallLimit = 2000;

    /// How long such a response may pause before it is discarded. To be called before process() runs.
    void setStallLimit(int msecs);

    /// Puts \p request at the end of the queue. It is written when no other is in flight, at once if none is.
    ///
    /// False, with a debug line, when the worker is closing, when the queue stays locked for a second, or
    /// when it holds 51 requests. The request stays the caller's in either case. One that was taken must live
    /// until its response or its loss has been reported, or the worker has finished.
    bool queueRequest(XHRRequest* request);

    /// Ends process() within 50 ms. What waits in the queue is never written.
    void forceClose();

    /// Reads on after paused().
    void resume();

    /// Whether a receive request ("/xhr" or "/xhr_streaming") is waiting or in flight.
    bool isReceiving() const;

    /// Writes the first waiting request to the socket, if there is one. A step of process(), which takes it
    /// only when nothing is in flight and nothing is half received.
    void transmitNextRequest();

    /// Reads the header in \p data, after whatever stands before it. Sets \p status to 200 whatever the
    /// response's status is, and adds each line's name and value to \p headers: names as they are, values
    /// with the blank after the colon, a later duplicate in place of an earlier one. Returns the bytes up to
    /// and with the empty line, or all of \p data when there is none. Without an "HTTP/" in \p data: 0, and
    /// \p status is -1.
    int parseHttpHeaderResponse(QByteArray data, int* status, QMap<QString, QString>* headers);

    /// Appends the body in \p data, or its first chunk, to \p out and returns the bytes read; 0 when there
    /// are not enough. -1 is the end of a chunked body: a chunk size below 2, or a line that is no number. A
    /// \p contentLength below 2 sets no bound. \p data is taken to hold whole UTF-8 characters.
    int parseMessageResponse(QByteArray data, bool chunked, QString* out, int contentLength);

public Q_SLOTS:
    /// Runs until forceClose(), until someone else closes the socket, or until the eleventh failure in a row
    /// to reconnect; then emits finished(). Runs an event loop of this thread while it waits.
    void process();

Q_SIGNALS:
    /// process() has ended; nothing follows.
    void finished();
    /// A lost connection has been made anew. What was in flight on the old one has been reported by
    /// requestLost().
    void reconnected();
    /// The header of the response to \p request has come. Names are in their usual spelling ("Set-Cookie");
    /// several Set-Cookie lines are one value with a newline between them.
    void receivedHeadersResponse(XHRRequest* request, QStringMap headers);
    /// The body of the response to \p request, or one frame of a streamed one, without the newline at its
    /// end.
    void receivedMessageResponse(XHRRequest* request, QString message);
    /// So much has come since the last resume(), a thousand texts or a million characters, that nothing more
    /// is read before the next. Without a receiver when process() begins this never happens.
    void paused();
    /// The response to \p request is complete, and no text was in it.
    void receivedEmptyResponse(XHRRequest* request);
    /// \p request will not be answered, or not any further; the worker has let go of it.
    void requestLost(XHRRequest* request);

private:
    Q_DISABLE_COPY(SockJSXHRPollingWorker)
    class Private;
    const std::unique_ptr<Private> d;
};
