#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/transport/SockJSTransport.h>
#include <CalyxClient/transport/XHRRequest.h>

#include <QString>

#include <memory>

class QNetworkReply;

/// A SockJS session over plain HTTP: frames come in as responses to lasting "/xhr" or "/xhr_streaming"
/// requests, and go out as "/xhr_send" posts. Both sides share one cookie jar and one proxy.
///
/// Lives on the thread that made it, and runs one thread of its own for the receiving side. Everything in it
/// may be called, and it may be deleted, from any slot connected to its signals.
class CALYXCLIENT_EXPORT SockJSXHRPolling : public SockJSTransport
{
    Q_OBJECT

public:
    /// A transport that is not started.
    explicit SockJSXHRPolling(QObject* parent);
    /// Ends and joins the worker thread, within a moment; emits nothing. Posts that are not out yet are lost.
    ~SockJSXHRPolling() override;

    /// Connects to \p server and \p port (with TLS when \p secure, the certificate verified) through the
    /// system's proxy, and asks for the first frames of the session at \p path, with "/xhr_streaming" or
    /// "/xhr".
    ///
    /// Blocks for up to the connect limit, without events unless setAsynchronousConnect() was called. False
    /// when it is started already, when the connection cannot be made, or when \p server holds a blank, or
    /// either of \p server and \p path a control character; what else a path cannot hold as it is, a blank
    /// too, is sent percent-encoded. Emits nothing before it returns.
    bool start(QString server, int port, bool secure, QString path, bool streaming);

    /// Milliseconds that start() may block: 30 seconds unless told otherwise.
    void setConnectLimit(int msecs);

    /// Milliseconds that a response with a length or with chunks may pause before it is discarded: 2 seconds
    /// unless told otherwise. Counts from the next start().
    void setStallLimit(int msecs);

    /// Whether start() makes the connection in a nested event loop, which processes everything, instead of
    /// blocking: off unless told otherwise. close(), retire() and deletion end such a start() at once, also
    /// while the host's name is looked up; it then returns false.
    void setAsynchronousConnect(bool asynchronous);

    /// Whether what is lost ends the transport as the server's end of the session does: a post that fails or
    /// is not answered, after which nothing goes out; and a response whose connection is lost when a part of
    /// it had come, or could have for a second. Off unless told otherwise.
    void setEndsWithLostRequest(bool ends);

    /// Asks for the next frames. Does nothing while such a request is waiting or in flight.
    void doPoll();

    /// Whether start() has succeeded, and connectionClosed() has not been emitted since.
    bool isUp() const override;

    /// Posts \p frame, once all earlier frames have been answered. A post that fails, or is not answered for
    /// 30 seconds, is lost with a debug line.
    void sendTextMessage(QString frame) override;

    /// Ends the receiving side, as the server's end of the session does, and a server that cannot be reached
    /// any more: connectionClosed() follows from the event loop. Frames sent before still go out.
    void close();

    /// Hands the transport over to itself: it emits nothing any more, has no parent, closes, and deletes
    /// itself once its thread has ended and its frames are out, at the latest when no post has been answered
    /// for 10 seconds or when the application object goes; at once when that is gone. The receiving side
    /// stays until the last frame is out, or no post has been answered for 2 seconds. On a thread that ends,
    /// its end waits for the frames, for up to 2 seconds, and takes the transport along.
    void retire() override;

    /// The number of cookies that a receive request would carry.
    int getCookieCount();
    /// Those cookies, each as name, "=", value and "; ".
    QString getCookieString();

    /// Queues one POST of \p payload to \p path on the receiving side. Refused with a debug line after
    /// close() and when \p path holds a blank or a control character.
    void doRequestXHR(const QString& path, const QString& payload);

private Q_SLOTS:
    void onReceivedHeadersResponse(XHRRequest* request, QStringMap headers);
    void onReceivedMessageResponse(XHRRequest* request, QString message);
    void onNAMRequestFinished(QNetworkReply* reply);
    void onReconnected();

private:
    Q_DISABLE_COPY(SockJSXHRPolling)

    class Private;
    std::unique_ptr<Private> d;
};
