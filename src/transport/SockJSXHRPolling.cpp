#include "transport/SockJSXHRPolling.h"

#include "base/Diagnostics.h"
#include "base/FileDescriptors.h"
#include "base/RequestText.h"
#include "base/SafeCookieJar.h"
#include "transport/PostRequest.h"
#include "transport/QSystemConfigurationProxyFactory.h"
#include "transport/SockJSXHRPollingWorker.h"

#include <QCoreApplication>
#include <QNetworkCookie>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslSocket>

#include <cerrno>

namespace {

constexpr int postLimit = 30000; // milliseconds
constexpr int retireLimit = 10000;
constexpr int farewellLimit = 2000;
constexpr qint64 postAnswerSize = qint64{64} * 1024;

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

// Those on the application's thread that have a thread of their own, or no owner. Never freed: a host may end
// the process before it ends its connectors.
QList<SockJSXHRPolling*>& transportsOfApplication()
{
    static auto* transports = new QList<SockJSXHRPolling*>;
    return *transports;
}

// Calls a function when the statics go.
struct AtExit
{
    explicit AtExit(void (*what)()) : m_what(what) {}
    ~AtExit() { m_what(); }
    Q_DISABLE_COPY(AtExit)

private:
    void (*m_what)();
};

} // namespace

SockJSXHRPolling::SockJSXHRPolling(QObject* parent)
    : SockJSTransport(parent)
    , m_nam(new QNetworkAccessManager(this))
    , m_cookieJar(new SafeCookieJar("[SockJSXHRPolling]", this))
{
    m_nam->setCookieJar(m_cookieJar);
    m_cookieJar->setParent(this); // the manager has made itself the parent
    connect(m_nam, &QNetworkAccessManager::finished, this, &SockJSXHRPolling::onNAMRequestFinished);
    m_farewell.setSingleShot(true);
    connect(&m_farewell, &QTimer::timeout, this, &SockJSXHRPolling::close);
    m_retireLimit.setSingleShot(true);
    connect(&m_retireLimit, &QTimer::timeout, this, &QObject::deleteLater);
}

SockJSXHRPolling::~SockJSXHRPolling()
{
    transportsOfApplication().removeOne(this);
    joinThread();
    qDeleteAll(m_requests);
    // A slot of `destroyed` may run an event loop: nothing of the thread's or of the manager's reaches what
    // is left of this object then.
    m_nam->disconnect(this);
    delete m_nam;
    QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
}

bool SockJSXHRPolling::start(QString host, int port, bool secure, QString path, bool streaming)
{
    if (m_worker)
        return false;
    const QString solid = QString(path).remove(QLatin1Char(' '));
    if (!RequestText::isSafeInFirstLine(host) || !RequestText::isSafeInFirstLine(solid)) {
        qCDebug(diagnostics) << "[SockJSXHRPolling] Can't start: blank or control character in host or path";
        return false;
    }
    joinThread();
    m_closed = false;
    m_keepAlive = true;
    m_streaming = streaming;
    m_sessionOpen = false;
    m_sessionOver = false;
    m_currentRequest = nullptr;
    setAddress(host, port, secure, path);

    const QNetworkProxy proxy = QSystemConfigurationProxyFactory::getPrimaryProxy();
    m_nam->setProxy(proxy);
    QTcpSocket* socket = secure ? new QSslSocket : new QTcpSocket;
    socket->setProxy(proxy);
    auto* worker = new SockJSXHRPollingWorker(nullptr, socket, host, port, secure, m_keepAlive);
    if (!worker->connectToServer(m_connectLimit)) {
        qCDebug(diagnostics).noquote() << "[SockJSXHRPolling]" << socket->errorString();
        delete worker;
        delete socket;
        return false;
    }
    if (!startThread(worker, socket)) {
        qCDebug(diagnostics).noquote() << "[SockJSXHRPolling]" << qt_error_string(EAGAIN);
        joinThread();
        return false;
    }
    m_up = true;
    doPoll();
    return true;
}

void SockJSXHRPolling::setAddress(const QString& host, int port, bool secure, const QString& path)
{
    const QString scheme = secure ? QStringLiteral("s") : QString();
    const QString relative = path.startsWith(QLatin1Char('/')) ? path.mid(1) : path;
    // A URL keeps an IPv6 address apart from the port by brackets.
    const QString urlHost = host.contains(QLatin1Char(':')) ? QStringLiteral("[%0]").arg(host) : host;
    m_host = urlHost;
    m_path = encodedPath(QLatin1Char('/') + relative);
    m_baseUrl = QStringLiteral("http%0://%1:%2").arg(scheme, urlHost, QString::number(port));
    m_fullUrl = QStringLiteral("%0/%1").arg(m_baseUrl, relative);
    if (m_fullUrl.endsWith(QLatin1Char('/')))
        m_fullUrl.chop(1);
}

// False when the system has no thread for us.
bool SockJSXHRPolling::startThread(SockJSXHRPollingWorker* worker, QTcpSocket* socket)
{
    using Worker = SockJSXHRPollingWorker;
    auto* thread = new QThread;
    worker->moveToThread(thread);
    socket->moveToThread(thread);
    connect(worker, &Worker::receivedHeadersResponse, this, &SockJSXHRPolling::onReceivedHeadersResponse);
    connect(worker, &Worker::receivedMessageResponse, this, &SockJSXHRPolling::onReceivedMessageResponse);
    connect(worker, &Worker::receivedEmptyResponse, this, &SockJSXHRPolling::onReceivedEmptyResponse);
    connect(worker, &Worker::requestLost, this, &SockJSXHRPolling::releaseRequest);
    connect(worker, &Worker::reconnected, this, &SockJSXHRPolling::onReconnected);
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    connect(thread, &QThread::finished, socket, &QObject::deleteLater);
    // Before quit(): from then on the thread deletes the worker, and nothing may reach it.
    connect(worker, &Worker::finished, this, &SockJSXHRPolling::onWorkerFinished);
    connect(worker, &Worker::finished, thread, &QThread::quit);
    connect(worker, &Worker::finished, this, &SockJSXHRPolling::tellEnd);
    connect(thread, &QThread::started, worker, &Worker::process);
    connect(thread, &QThread::finished, worker, &QObject::deleteLater);
    connect(thread, &QObject::destroyed, this, &SockJSXHRPolling::endRetirement);
    m_worker = worker;
    m_thread = thread;
    m_onThread = {worker, socket};
    if (!FileDescriptors::sufficeForThread())
        return false;
    endWithApplication();
    thread->start();
    return thread->isRunning() || thread->isFinished();
}

void SockJSXHRPolling::joinThread()
{
    if (m_worker)
        m_worker->forceClose();
    m_worker = nullptr;
    if (!m_thread)
        return;
    QThread* thread = m_thread;
    m_thread = nullptr;
    thread->disconnect(this);
    thread->quit();
    thread->wait();
    delete thread;
    // It deletes nothing when the application object is gone.
    for (const QPointer<QObject>& object : qAsConst(m_onThread))
        delete object;
}

void SockJSXHRPolling::onWorkerFinished()
{
    m_worker = nullptr;
    m_closed = true;
    m_currentRequest = nullptr;
    while (!m_requests.isEmpty())
        m_requests.takeLast()->deleteLater();
}

void SockJSXHRPolling::tellEnd()
{
    m_up = false;
    Q_EMIT connectionClosed();
}

void SockJSXHRPolling::doPoll()
{
    // A second request beside a pending one makes a server end the session.
    if (!m_closed && m_worker && m_worker->isReceiving())
        return;
    doRequestXHR(m_path + (m_streaming ? QLatin1String("/xhr_streaming") : QLatin1String("/xhr")), QString());
}

void SockJSXHRPolling::onReconnected()
{
    doPoll();
}

void SockJSXHRPolling::doRequestXHR(const QString& path, const QString& payload)
{
    if (m_closed || !m_worker) {
        qCDebug(diagnostics) << "[SockJSXHRPolling] Can't make request when in closed state!";
        return;
    }
    if (!RequestText::isSafeInFirstLine(path)) {
        qCDebug(diagnostics)
            << "[SockJSXHRPolling] Can't make request: blank or control character in its path";
        return;
    }
    const QString text = QStringLiteral("POST %0 HTTP/1.1\r\n%1\r\n%2\r\n\r\n");
    auto* request = new XHRRequest(path, text.arg(path, headerBlock(payload), payload));
    m_requests.append(request);
    if (!m_worker->queueRequest(request)) {
        m_requests.removeOne(request);
        delete request;
    }
}

QString SockJSXHRPolling::headerBlock(const QString& payload)
{
    QString block = QStringLiteral("Host: %0\r\n").arg(m_host);
    block +=
        m_keepAlive ? QLatin1String("Connection: keep-alive\r\n") : QLatin1String("Connection: close\r\n");
    block += QLatin1String("Accept-Encoding: identity\r\n");
    block += QLatin1String("Content-Type: application/json\r\n");
    block += QStringLiteral("Content-Length: %0\r\n").arg(payload.toUtf8().size());
    if (getCookieCount() > 0)
        block += QLatin1String("Cookie: ") + getCookieString() + QLatin1String("\r\n");
    return block;
}

int SockJSXHRPolling::getCookieCount()
{
    return m_cookieJar->cookiesForUrl(QUrl(m_fullUrl)).size();
}

QString SockJSXHRPolling::getCookieString()
{
    QString text;
    const QList<QNetworkCookie> cookies = m_cookieJar->cookiesForUrl(QUrl(m_fullUrl));
    for (const QNetworkCookie& cookie : cookies)
        text += QStringLiteral("%0=%1; ").arg(QString::fromUtf8(cookie.name()),
                                              QString::fromUtf8(cookie.value()));
    return text;
}

void SockJSXHRPolling::onReceivedHeadersResponse(XHRRequest* request, QStringMap headers)
{
    if (m_currentRequest && m_currentRequest != request)
        releaseRequest(m_currentRequest);
    m_currentRequest = request;
    for (auto header = headers.cbegin(); header != headers.cend(); ++header) {
        if (!header.key().contains(QLatin1String("Set-Cookie")))
            continue;
        m_cookieJar->setCookiesFromUrl(QNetworkCookie::parseCookies(header.value().toUtf8()),
                                       QUrl(m_fullUrl));
        qCDebug(diagnostics) << "[SockJSXHRPolling] parsed cookies";
    }
}

void SockJSXHRPolling::releaseRequest(XHRRequest* request)
{
    if (m_currentRequest == request)
        m_currentRequest = nullptr;
    m_requests.removeOne(request);
    request->deleteLater();
}

void SockJSXHRPolling::onReceivedMessageResponse(XHRRequest* request, QString message)
{
    qCDebug(diagnostics).noquote().nospace() << "[SockJSXHRPolling] RECEIVED: " << message;
    // The last poll may have been answered before the thread has heard of the end.
    if (m_sessionOver)
        return;
    const bool opens = message == QLatin1String("o");
    m_sessionOver = message.startsWith(QLatin1Char('c')) || (opens && m_sessionOpen);
    m_sessionOpen = m_sessionOpen || opens;
    // Whoever hears the message may delete this object, and may let other events in.
    const QPointer<SockJSXHRPolling> self(this);
    const bool polling = isPolling(request);
    Q_EMIT textMessageReceived(message);
    if (!self)
        return;
    if (polling)
        doPoll();
    if (m_sessionOver)
        close();
}

void SockJSXHRPolling::onReceivedEmptyResponse(XHRRequest* request)
{
    if (isPolling(request))
        doPoll();
}

void SockJSXHRPolling::sendTextMessage(QString frame)
{
    m_frames.append(frame.toUtf8());
    if (!m_posting)
        postNextFrame();
}

void SockJSXHRPolling::postNextFrame()
{
    QNetworkRequest request = PostRequest::make(QUrl(m_fullUrl + QLatin1String("/xhr_send")),
                                                QStringLiteral("application/json; charset=UTF-8"));
    request.setRawHeader("Connection", m_keepAlive ? "keep-alive" : "close");
    request.setTransferTimeout(postLimit);
    m_posting = true;
    // Nobody reads the answer. One without end stops here, and postLimit ends it.
    PostRequest::send(m_nam, request, m_frames.takeFirst())->setReadBufferSize(postAnswerSize);
}

void SockJSXHRPolling::onNAMRequestFinished(QNetworkReply* reply)
{
    if (reply->error() != QNetworkReply::NoError)
        qCDebug(diagnostics).noquote().nospace()
            << "[SockJSXHRPolling] xhr_send error: " << PostRequest::errorText(reply);
    reply->deleteLater();
    m_posting = !m_frames.isEmpty();
    if (m_posting)
        postNextFrame();
    if (m_retired)
        sayFarewell();
}

void SockJSXHRPolling::close()
{
    m_closed = true;
    if (m_worker)
        m_worker->forceClose();
}

void SockJSXHRPolling::retire()
{
    // Nobody will run an event loop any more.
    if (!QCoreApplication::instance()) {
        delete this;
        return;
    }
    m_retired = true;
    blockSignals(true);
    setParent(nullptr);
    endWithApplication();
    sayFarewell();
}

// A server ends the session when its receiver goes, and refuses what is posted to it afterwards. So the
// receiver stays while posts are answered.
void SockJSXHRPolling::sayFarewell()
{
    if (!m_posting)
        close();
    else if (!m_closed)
        m_farewell.start(farewellLimit);
    m_retireLimit.start(retireLimit);
    endRetirement();
}

// Its thread must not outlive the application object, and without an owner it must not itself. A host may
// also call exit() and leave the application object where it is.
void SockJSXHRPolling::endWithApplication()
{
    diagnostics(); // goes later than what is made after it, and the threads use it to their end
    static const AtExit joins(joinAll);
    if (!QCoreApplication::instance() || QCoreApplication::instance()->thread() != thread() ||
        transportsOfApplication().contains(this))
        return;
    transportsOfApplication().append(this);
    qRemovePostRoutine(endAll);
    qAddPostRoutine(endAll);
}

void SockJSXHRPolling::joinAll()
{
    for (SockJSXHRPolling* transport : qAsConst(transportsOfApplication()))
        transport->joinThread();
}

void SockJSXHRPolling::endAll()
{
    while (!transportsOfApplication().isEmpty()) {
        SockJSXHRPolling* transport = transportsOfApplication().takeLast();
        transport->joinThread();
        if (transport->m_retired)
            delete transport;
    }
}

void SockJSXHRPolling::endRetirement()
{
    if (m_retired && !m_thread && !m_posting)
        deleteLater();
}
