#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/transport/SockJSTransport.h>
#include <CalyxClient/transport/XHRRequest.h>

#include <QByteArray>
#include <QList>
#include <QNetworkAccessManager>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QThread>
#include <QTimer>

class QTcpSocket;
class SockJSXHRPollingWorker;

/// A SockJS session over plain HTTP: frames come in as answers to lasting "/xhr" or "/xhr_streaming"
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

    /// Connects to \p host and \p port (with TLS when \p secure, the certificate verified) through the
    /// system's proxy, and asks for the first frames of the session at \p path, with "/xhr_streaming" or
    /// "/xhr".
    ///
    /// Blocks for up to the connect limit, without events. False when it is started already, when the
    /// connection cannot be made, or when \p host holds a blank, or either of \p host and \p path a
    /// control character; what else a path cannot hold as it is, a blank too, is sent percent-encoded. Emits
    /// nothing before it returns.
    bool start(QString host, int port, bool secure, QString path, bool streaming);

    /// Milliseconds that start() may block: 30 seconds unless told otherwise.
    void setConnectLimit(int msecs) { m_connectLimit = msecs; }

    /// Asks for the next frames. Does nothing while such a request is waiting or in flight.
    void doPoll();

    /// Whether start() has succeeded, and connectionClosed() has not been emitted since.
    bool isUp() const override { return m_up; }

    /// Posts \p frame, once all earlier frames have been answered. A post that fails, or is not answered for
    /// 30 seconds, is lost with a debug line.
    void sendTextMessage(QString frame) override;

    /// Ends the receiving side, as the server's end of the session does, and a server that cannot be reached
    /// any more: connectionClosed() follows from the event loop. Frames sent before still go
    /// out.
    void close();

    /// Hands the transport over to itself: it emits nothing any more, has no parent, closes, and deletes
    /// itself once its thread has ended and its frames are out, at the latest when no post has been answered
    /// for 10 seconds or when the application object goes; at once when that is gone.
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
    void onReceivedEmptyResponse(XHRRequest* request);
    void onWorkerFinished();
    void releaseRequest(XHRRequest* request);

private:
    Q_DISABLE_COPY(SockJSXHRPolling)

    void setAddress(const QString& host, int port, bool secure, const QString& path);
    bool startThread(SockJSXHRPollingWorker* worker, QTcpSocket* socket);
    void joinThread();
    void tellEnd();
    QString headerBlock(const QString& payload);
    void postNextFrame();
    void sayFarewell();
    void endRetirement();
    void endWithApplication();
    static void joinAll();
    static void endAll();

    QNetworkAccessManager* m_nam;
    QNetworkCookieJar* m_cookieJar;
    QString m_host;
    QString m_path;
    QString m_baseUrl;
    QString m_fullUrl;
    bool m_closed = false;
    bool m_up = false;
    bool m_keepAlive = true;
    bool m_streaming = false;
    SockJSXHRPollingWorker* m_worker = nullptr; // null before its thread may delete it
    QPointer<QThread> m_thread;
    QList<QPointer<QObject>> m_onThread; // what it deletes at its end; not to be looked at before
    XHRRequest* m_currentRequest = nullptr;

    QList<XHRRequest*> m_requests; // those that the worker has taken and that are not yet released
    bool m_sessionOpen = false;    // the first open frame has come
    bool m_sessionOver = false;    // the frame that ends the session has come
    QList<QByteArray> m_frames;    // still to be posted
    bool m_posting = false;
    int m_connectLimit = 30000; // milliseconds
    bool m_retired = false;
    QTimer m_farewell{this}; // until the receiver goes, without an answered post
    QTimer m_retireLimit{this};
};
