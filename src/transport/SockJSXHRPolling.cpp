#include "transport/SockJSXHRPolling.h"

#include "base/Diagnostics.h"
#include "base/FileDescriptors.h"
#include "base/RequestText.h"
#include "base/SafeCookieJar.h"
#include "transport/PostRequest.h"
#include "transport/QSystemConfigurationProxyFactory.h"
#include "transport/SockJSXHRPollingWorker.h"
#include "transport/TransportThread.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QNetworkCookie>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QSslSocket>
#include <QTimer>

#include <cerrno>
#include <utility>

namespace {

constexpr int postLimit = 30000; // milliseconds
constexpr int retireLimit = 10000;
constexpr int closeLimit = 2000;
constexpr qint64 postResponseSize = qint64{64} * 1024;

bool isPolling(const XHRRequest* request)
{
    return request && request->path().endsWith(QLatin1String("xhr"));
}

// A path as it stands in the first line of a request, the same for the polls and the posts.
QString encodedPath(const QString& path)
{
    const QUrl url(QStringLiteral("http://h") + path);
    return QString::fromLatin1(url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority));
}

} // namespace

class SockJSXHRPolling::Private
{
public:
    explicit Private(SockJSXHRPolling* transport);

    void setAddress(const QString& name, int port, bool secure, const QString& sessionPath);
    void begin(bool isStreaming);
    bool connectWorker(SockJSXHRPollingWorker* candidate, QTcpSocket* socket);
    bool startThread(SockJSXHRPollingWorker* candidate, QTcpSocket* socket);
    void joinThread();
    void onWorkerFinished();
    void emitClosed();
    void pollAgain(const XHRRequest* request);
    void releaseRequest(XHRRequest* request);
    void loseRequest(XHRRequest* request);
    QString headerBlock(const QString& payload) const;
    QList<QNetworkCookie> cookies() const { return cookieJar->cookiesForUrl(QUrl(fullUrl)); }
    void postNextFrame();
    void closeAfterPosts();
    void endRetirement();
    void endWithThread();
    void awaitPosts();
    bool hasThreadEnded() const;

    SockJSXHRPolling* q;
    QNetworkAccessManager* manager;
    QNetworkCookieJar* cookieJar;
    QString server; // an IPv6 address in brackets, which keep it apart from the port
    QString path;
    QString fullUrl;
    bool closed = false;
    bool up = false;
    bool streaming = false;
    QPointer<SockJSXHRPollingWorker> worker; // set to null before the thread deletes it
    QPointer<TransportThread> thread;
    QList<QPointer<QObject>> onThread; // the thread deletes them at its end; nobody reads them before
    XHRRequest* currentRequest = nullptr;

    QList<XHRRequest*> requests; // those that the worker has taken and that are not yet released
    bool sessionOpen = false;    // the first open frame has come
    bool sessionEnded = false;   // the frame that ends the session has come
    QList<QByteArray> frames;    // still to be posted
    bool posting = false;
    int connectLimit = SockJSXHRPollingWorker::ConnectLimit;
    int stallLimit = SockJSXHRPollingWorker::StallLimit;
    bool asynchronous = false;
    bool endsWithLostRequest = false;
    QElapsedTimer asked; // since frames were asked for
    bool retired = false;
    QTimer resuming;   // has the worker read on, after what else the host's loop has to do
    QTimer closing;    // closes the receiver when no post is answered
    QTimer retirement; // deletes the transport when no post is answered
};

SockJSXHRPolling::Private::Private(SockJSXHRPolling* transport)
    : q(transport)
    , manager(new QNetworkAccessManager(transport))
    , cookieJar(new SafeCookieJar("[SockJSXHRPolling]", transport))
{
    manager->setCookieJar(cookieJar);
    cookieJar->setParent(transport); // the manager has made itself the parent
    resuming.setSingleShot(true);
    connect(&resuming, &QTimer::timeout, q, [this] {
        if (worker)
            worker->resume();
    });
    closing.setSingleShot(true);
    connect(&closing, &QTimer::timeout, q, &SockJSXHRPolling::close);
    retirement.setSingleShot(true);
    connect(&retirement, &QTimer::timeout, q, &QObject::deleteLater);
}

SockJSXHRPolling::SockJSXHRPolling(QObject* parent)
    : SockJSTransport(parent), d(std::make_unique<Private>(this))
{
    connect(d->manager, &QNetworkAccessManager::finished, this, &SockJSXHRPolling::onNAMRequestFinished);
    // Emitted on the thread that ends, whose event loop has returned by then.
    connect(
        QThread::currentThread(), &QThread::finished, this, [this] { d->endWithThread(); },
        Qt::DirectConnection);
}

SockJSXHRPolling::~SockJSXHRPolling()
{
    d->joinThread();
    qDeleteAll(d->requests);
    // A slot of `destroyed` may run an event loop, and nothing may call this half-destroyed object from
    // there: neither the manager nor a queued signal of the worker's.
    if (d->manager)
        d->manager->disconnect(this);
    delete d->manager;
    QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
}

bool SockJSXHRPolling::isUp() const
{
    return d->up;
}

void SockJSXHRPolling::setConnectLimit(int msecs)
{
    d->connectLimit = msecs;
}

void SockJSXHRPolling::setStallLimit(int msecs)
{
    d->stallLimit = msecs;
}

void SockJSXHRPolling::setAsynchronousConnect(bool asynchronous)
{
    d->asynchronous = asynchronous;
}

void SockJSXHRPolling::setEndsWithLostRequest(bool ends)
{
    d->endsWithLostRequest = ends;
}

bool SockJSXHRPolling::start(QString server, int port, bool secure, QString path, bool streaming)
{
    if (d->worker || !d->manager)
        return false;
    const QString solid = QString(path).remove(QLatin1Char(' '));
    if (!RequestText::isSafeInFirstLine(server) || !RequestText::isSafeInFirstLine(solid)) {
        qCDebug(diagnostics) << "[SockJSXHRPolling] Can't start: blank or control character in host or path";
        return false;
    }
    d->begin(streaming);
    d->setAddress(server, port, secure, path);

    const QNetworkProxy proxy = QSystemConfigurationProxyFactory::getPrimaryProxy();
    d->manager->setProxy(proxy);
    QTcpSocket* socket = secure ? new QSslSocket : new QTcpSocket;
    socket->setProxy(proxy);
    constexpr bool keepAlive = true;
    auto* worker = new SockJSXHRPollingWorker(nullptr, socket, server, port, secure, keepAlive);
    worker->setStallLimit(d->stallLimit);
    if (!d->connectWorker(worker, socket)) {
        delete worker;
        delete socket;
        return false;
    }
    if (!d->startThread(worker, socket)) {
        qCDebug(diagnostics).noquote() << "[SockJSXHRPolling]" << qt_error_string(EAGAIN);
        d->joinThread();
        return false;
    }
    d->up = true;
    doPoll();
    return true;
}

void SockJSXHRPolling::Private::begin(bool isStreaming)
{
    joinThread();
    closed = false;
    streaming = isStreaming;
    sessionOpen = false;
    sessionEnded = false;
    currentRequest = nullptr;
}

// False when that fails, and when the transport is closed or deleted meanwhile: it may be gone then.
bool SockJSXHRPolling::Private::connectWorker(SockJSXHRPollingWorker* candidate, QTcpSocket* socket)
{
    const QPointer<SockJSXHRPolling> self(q);
    worker = candidate; // for close()
    const bool connected =
        asynchronous ? candidate->connectInEventLoop(connectLimit) : candidate->connectToServer(connectLimit);
    if (!self)
        return false;
    if (connected && !closed)
        return true;
    qCDebug(diagnostics).noquote() << "[SockJSXHRPolling]" << socket->errorString();
    worker = nullptr;
    return false;
}

void SockJSXHRPolling::Private::setAddress(const QString& name, int port, bool secure,
                                           const QString& sessionPath)
{
    const QString scheme = secure ? QStringLiteral("s") : QString();
    const QString relative = sessionPath.startsWith(QLatin1Char('/')) ? sessionPath.mid(1) : sessionPath;
    server = name.contains(QLatin1Char(':')) ? QStringLiteral("[%0]").arg(name) : name;
    path = encodedPath(QLatin1Char('/') + relative);
    const QString baseUrl = QStringLiteral("http%0://%1:%2").arg(scheme, server, QString::number(port));
    fullUrl = QStringLiteral("%0/%1").arg(baseUrl, relative);
    if (fullUrl.endsWith(QLatin1Char('/')))
        fullUrl.chop(1);
}

// False when the system has no thread for us.
bool SockJSXHRPolling::Private::startThread(SockJSXHRPollingWorker* candidate, QTcpSocket* socket)
{
    using Worker = SockJSXHRPollingWorker;
    worker = candidate;
    thread = new TransportThread;
    onThread = {candidate, socket};
    worker->moveToThread(thread);
    socket->moveToThread(thread);
    connect(worker, &Worker::receivedHeadersResponse, q, &SockJSXHRPolling::onReceivedHeadersResponse);
    connect(worker, &Worker::receivedMessageResponse, q, &SockJSXHRPolling::onReceivedMessageResponse);
    connect(worker, &Worker::receivedEmptyResponse, q, [this](XHRRequest* request) { pollAgain(request); });
    connect(worker, &Worker::requestLost, q, [this](XHRRequest* request) { loseRequest(request); });
    connect(worker, &Worker::reconnected, q, &SockJSXHRPolling::onReconnected);
    connect(worker, &Worker::paused, q, [this] { resuming.start(); });
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    connect(thread, &QThread::finished, socket, &QObject::deleteLater);
    // Before quit(): from then on the thread deletes the worker, and nothing may reach it.
    connect(worker, &Worker::finished, q, [this] { onWorkerFinished(); });
    connect(worker, &Worker::finished, thread, &QThread::quit);
    connect(worker, &Worker::finished, q, [this] { emitClosed(); });
    connect(thread, &QThread::started, worker, &Worker::process);
    connect(thread, &QThread::finished, worker, &QObject::deleteLater);
    connect(thread, &QObject::destroyed, q, [this] { endRetirement(); });
    if (!FileDescriptors::sufficeForThread())
        return false;
    thread->start();
    return thread->isRunning() || thread->isFinished();
}

void SockJSXHRPolling::Private::joinThread()
{
    if (worker)
        worker->forceClose();
    worker = nullptr;
    if (!thread)
        return;
    TransportThread* ending = thread;
    thread = nullptr;
    ending->disconnect(q);
    delete ending;
    // Without an application object the thread has deleted nothing.
    for (const QPointer<QObject>& object : std::as_const(onThread))
        delete object;
}

void SockJSXHRPolling::Private::emitClosed()
{
    up = false;
    Q_EMIT q->connectionClosed();
}

void SockJSXHRPolling::Private::onWorkerFinished()
{
    worker = nullptr;
    closed = true;
    currentRequest = nullptr;
    while (!requests.isEmpty())
        requests.takeLast()->deleteLater();
}

void SockJSXHRPolling::doPoll()
{
    // A second request beside a pending one makes a server end the session.
    if (!d->closed && d->worker && d->worker->isReceiving())
        return;
    d->asked.start();
    doRequestXHR(d->path + (d->streaming ? QLatin1String("/xhr_streaming") : QLatin1String("/xhr")),
                 QString());
}

void SockJSXHRPolling::onReconnected()
{
    doPoll();
}

void SockJSXHRPolling::doRequestXHR(const QString& path, const QString& payload)
{
    if (d->closed || !d->worker) {
        qCDebug(diagnostics) << "[SockJSXHRPolling] Can't make request when in closed state!";
        return;
    }
    if (!RequestText::isSafeInFirstLine(path)) {
        qCDebug(diagnostics)
            << "[SockJSXHRPolling] Can't make request: blank or control character in its path";
        return;
    }
    const QString text = QStringLiteral("POST %0 HTTP/1.1\r\n%1\r\n%2\r\n\r\n");
    auto* request = new XHRRequest(path, text.arg(path, d->headerBlock(payload), payload));
    d->requests.append(request);
    if (!d->worker->queueRequest(request)) {
        d->requests.removeOne(request);
        delete request;
    }
}

QString SockJSXHRPolling::Private::headerBlock(const QString& payload) const
{
    QString block = QStringLiteral("Host: %0\r\n").arg(server);
    block += QLatin1String("Connection: keep-alive\r\n");
    block += QLatin1String("Accept-Encoding: identity\r\n");
    block += QLatin1String("Content-Type: application/json\r\n");
    block += QStringLiteral("Content-Length: %0\r\n").arg(payload.toUtf8().size());
    const QString cookieText = q->getCookieString();
    if (!cookieText.isEmpty())
        block += QLatin1String("Cookie: ") + cookieText + QLatin1String("\r\n");
    return block;
}

int SockJSXHRPolling::getCookieCount()
{
    return int(d->cookies().size());
}

QString SockJSXHRPolling::getCookieString()
{
    QString text;
    const QList<QNetworkCookie> cookies = d->cookies();
    for (const QNetworkCookie& cookie : cookies)
        text += QStringLiteral("%0=%1; ").arg(QString::fromUtf8(cookie.name()),
                                              QString::fromUtf8(cookie.value()));
    return text;
}

void SockJSXHRPolling::onReceivedHeadersResponse(XHRRequest* request, QStringMap headers)
{
    if (d->currentRequest && d->currentRequest != request)
        d->releaseRequest(d->currentRequest);
    d->currentRequest = request;
    for (auto header = headers.cbegin(); header != headers.cend(); ++header) {
        if (!header.key().contains(QLatin1String("Set-Cookie")))
            continue;
        d->cookieJar->setCookiesFromUrl(QNetworkCookie::parseCookies(header.value().toUtf8()),
                                        QUrl(d->fullUrl));
        qCDebug(diagnostics) << "[SockJSXHRPolling] parsed cookies";
    }
}

void SockJSXHRPolling::Private::releaseRequest(XHRRequest* request)
{
    if (currentRequest == request)
        currentRequest = nullptr;
    requests.removeOne(request);
    request->deleteLater();
}

// The server may have told something in the response that is lost, and tells it once. A server that closes
// its connections without announcing it has told nothing: the next request meets that at once.
void SockJSXHRPolling::Private::loseRequest(XHRRequest* request)
{
    constexpr int atOnce = 1000; // ms
    const bool mayBeLoss = request == currentRequest || asked.hasExpired(atOnce);
    releaseRequest(request);
    if (endsWithLostRequest && mayBeLoss)
        q->close();
}

void SockJSXHRPolling::onReceivedMessageResponse(XHRRequest* request, QString message)
{
    qCDebug(diagnostics).noquote().nospace() << "[SockJSXHRPolling] RECEIVED: " << message;
    // The server may have answered the last poll before the worker has seen close().
    if (d->sessionEnded)
        return;
    const bool opens = message == QLatin1String("o");
    d->sessionEnded = message.startsWith(QLatin1Char('c')) || (opens && d->sessionOpen);
    d->sessionOpen = d->sessionOpen || opens;
    // Whoever hears the message may delete this object, and may let other events in.
    const QPointer<SockJSXHRPolling> self(this);
    const bool polling = isPolling(request);
    Q_EMIT textMessageReceived(message);
    if (!self)
        return;
    if (polling)
        doPoll();
    if (d->sessionEnded)
        close();
}

void SockJSXHRPolling::Private::pollAgain(const XHRRequest* request)
{
    if (isPolling(request))
        q->doPoll();
}

void SockJSXHRPolling::sendTextMessage(QString frame)
{
    if (!d->manager) // its thread has ended
        return;
    d->frames.append(frame.toUtf8());
    if (!d->posting)
        d->postNextFrame();
}

void SockJSXHRPolling::Private::postNextFrame()
{
    QNetworkRequest request = PostRequest::make(QUrl(fullUrl + QLatin1String("/xhr_send")),
                                                QStringLiteral("application/json; charset=UTF-8"));
    request.setRawHeader("Connection", "keep-alive");
    request.setTransferTimeout(postLimit);
    posting = true;
    // Nobody reads the response. One without end stops here, and postLimit ends it.
    PostRequest::send(manager, request, frames.takeFirst())->setReadBufferSize(postResponseSize);
}

void SockJSXHRPolling::onNAMRequestFinished(QNetworkReply* reply)
{
    const bool isLost = reply->error() != QNetworkReply::NoError;
    if (isLost)
        qCDebug(diagnostics).noquote().nospace()
            << "[SockJSXHRPolling] xhr_send error: " << PostRequest::errorText(reply);
    reply->deleteLater();
    if (isLost && d->endsWithLostRequest) {
        d->frames.clear();
        close();
    }
    d->posting = !d->frames.isEmpty();
    if (d->posting)
        d->postNextFrame();
    if (d->retired)
        d->closeAfterPosts();
}

void SockJSXHRPolling::close()
{
    d->closed = true;
    if (d->worker)
        d->worker->forceClose();
}

void SockJSXHRPolling::retire()
{
    QCoreApplication* application = QCoreApplication::instance();
    d->retired = true;
    blockSignals(true);
    setParent(nullptr);
    if (!application || d->hasThreadEnded()) { // nobody will run an event loop any more
        d->endWithThread();
        return;
    }
    if (thread() == application->thread())
        TransportThread::deleteWithApplication(this);
    d->closeAfterPosts();
}

// A server ends the session when its receiver goes, and refuses what is posted to it afterwards. So the
// receiver stays while posts are answered.
void SockJSXHRPolling::Private::closeAfterPosts()
{
    if (!posting)
        q->close();
    else if (!closed)
        closing.start(closeLimit);
    retirement.start(retireLimit);
    endRetirement();
}

void SockJSXHRPolling::Private::endRetirement()
{
    if (retired && !thread && !posting)
        q->deleteLater();
}

bool SockJSXHRPolling::Private::hasThreadEnded() const
{
    return !q->thread() || q->thread()->isFinished();
}

// The thread that the transport lives on is ending or has ended: nobody else would free what it holds.
void SockJSXHRPolling::Private::endWithThread()
{
    const QPointer<SockJSXHRPolling> self(q);
    q->blockSignals(true);
    if (QCoreApplication::instance() && QThread::currentThread() == q->thread())
        awaitPosts();
    if (!self)
        return;
    if (retired) {
        delete q;
        return;
    }
    q->close();
    joinThread();
    up = false;
    frames.clear();
    delete std::exchange(manager, nullptr);
}

// The thread's own event loop has returned by then, so that events are processed here.
void SockJSXHRPolling::Private::awaitPosts()
{
    const QPointer<SockJSXHRPolling> self(q);
    const QDeadlineTimer limit(closeLimit);
    if (!posting || !QAbstractEventDispatcher::instance())
        return;
    QTimer wake;
    wake.start(closeLimit);
    while (self && posting && !limit.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}
