#include "transport/SockJSConnector.h"

#include "base/Diagnostics.h"
#include "transport/QSystemConfigurationProxyFactory.h"
#include "transport/RANDSTRING.h"
#include "transport/SockJSFrame.h"
#include "transport/SockJSXHRPolling.h"
#include "transport/SockJSXHRPollingWorker.h"
#include "transport/WebSocketTransport.h"

#include <QDateTime>
#include <QHash>
#include <QJsonDocument>
#include <QMutex>
#include <QPointer>
#include <QRandomGenerator>
#include <QTimer>

#include <utility>

namespace {

constexpr int sessionIdLength = 8;
constexpr int inactivityInterval = 1800000; // ms
constexpr int inactivityLimit = 3601;       // s

// The generator repeats itself within a second: for this connector, for others that open a session at the
// same server, and for one whose transport is still saying goodbye. So each takes the next characters of one
// text, which is made longer when it has been used up.
QString freshSessionId(const QString& server, const QString& last)
{
    static QMutex mutex;
    static QString text;
    static QHash<QString, int> used; // characters of the text, for each server
    const QMutexLocker lock(&mutex);
    const QString first = RANDSTRING::Generate(sessionIdLength);
    if (!text.startsWith(first)) {
        text = first;
        used.clear();
    }
    int& begin = used[server];
    QString id;
    do {
        if (begin == text.size())
            text = RANDSTRING::Generate(2 * int(text.size()));
        id = text.mid(begin, sessionIdLength);
        begin += sessionIdLength;
    } while (id == last);
    return id;
}

QString randomSessionId()
{
    static const QString alphabet =
        QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789");
    QString id;
    while (id.size() < sessionIdLength)
        id += alphabet.at(QRandomGenerator::system()->bounded(alphabet.size()));
    return id;
}

// One open(), until close(), deletion or the next open(). Whoever has run an event loop or a slot of the
// host's sees by it that the open() is over.
struct Attempt : QObject
{
    explicit Attempt(const QList<SockJSConnector::PROTOCOL_TYPE>& list) : protocols(list) {}

    const QList<SockJSConnector::PROTOCOL_TYPE> protocols;
    int next = 0;           // of the protocols
    bool hasBegun = false;  // the end of the connection before has been told
    bool isTrying = false;  // a transport is being started
    bool isFalling = false; // that transport is what a WebSocket has fallen back to
};

} // namespace

// A QObject, so that what is queued for the connector and its timers go before it is half destroyed. It and
// its timers have parents, so that they move to another thread with the connector.
class SockJSConnectorPrivate : public QObject
{
public:
    explicit SockJSConnectorPrivate(SockJSConnector* connector);
    ~SockJSConnectorPrivate() override;

    void open(const QUrl& url, const QList<SockJSConnector::PROTOCOL_TYPE>& protocols);
    void startInactivityTimer();
    void readUrl(const QUrl& url);
    void makeSessionId();
    QString basePath() const;
    QUrl webSocketUrl() const;

    void tryRemainingProtocols();
    bool tryNextProtocol();
    bool openWebSocket();
    bool openXHRPolling(bool streaming);
    void use(SockJSTransport* started, SockJSConnector::PROTOCOL_TYPE type);
    void startOpenLimit();
    void onOpenLimit();
    void startSilenceLimit();
    void hear();

    void receive(const QString& frame);
    void deliver();
    void send(QString message, bool skipsActivity);

    void onTimeout();
    void shutDown();
    bool isUp() const;
    void end();
    void onClosed();
    bool fallBack();
    void dropTransport();

    SockJSConnector* const q;
    QPointer<SockJSTransport> transport;
    SockJSConnector::PROTOCOL_TYPE protocol = {};
    std::unique_ptr<Attempt> attempt;
    int openCount = 0;

    bool secure = false;
    int port = 0;
    QString server;
    QString path;
    QString sessionId;
    bool sessionOpen = false;
    QStringList inbox;       // what has come in one frame and has not been told yet
    bool endPending = false; // the connection has ended, which has not been told yet

    QDateTime lastActivity;
    bool closedForInactivity = false;
    QTimer* inactivityTimer = nullptr;
    int stallLimit = SockJSXHRPollingWorker::StallLimit;
    bool asynchronousConnect = false;
    bool endsWithLostRequest = false;
    int openLimit = 0;
    QTimer openLimitTimer{this};
    int silenceLimit = 0;
    QTimer silence{this}; // since something has come in
    int pingInterval = 0;
    int pongLimit = 10000;
    bool randomIds = false;
};

SockJSConnectorPrivate::SockJSConnectorPrivate(SockJSConnector* connector) : QObject(connector), q(connector)
{
    openLimitTimer.setSingleShot(true);
    connect(&openLimitTimer, &QTimer::timeout, this, &SockJSConnectorPrivate::onOpenLimit);
    silence.setSingleShot(true);
    connect(&silence, &QTimer::timeout, this, &SockJSConnectorPrivate::end);
}

SockJSConnectorPrivate::~SockJSConnectorPrivate()
{
    attempt.reset();
    dropTransport();
}

SockJSConnector::SockJSConnector(QObject* parent)
    : QObject(parent), d(std::make_unique<SockJSConnectorPrivate>(this))
{}

SockJSConnector::~SockJSConnector() = default;

QMap<SockJSConnector::PROTOCOL_TYPE, QString> SockJSConnector::PROTOCOL_TYPE_STR()
{
    return {{WEBSOCKET, QStringLiteral("websocket")},
            {XHR_POLLING, QStringLiteral("xhr-polling")},
            {XHR_STREAMING, QStringLiteral("xhr-streaming")}};
}

QList<SockJSConnector::PROTOCOL_TYPE> SockJSConnector::GetDefaultProtocols()
{
    return PROTOCOL_TYPE_STR().keys();
}

QList<SockJSConnector::PROTOCOL_TYPE> SockJSConnector::GetProtocolsFromStrings(QStringList names)
{
    const QMap<PROTOCOL_TYPE, QString> table = PROTOCOL_TYPE_STR();
    QList<PROTOCOL_TYPE> protocols;
    for (const QString& name : std::as_const(names))
        protocols.append(table.keys(name));
    if (protocols.isEmpty()) {
        qCDebug(diagnostics) << "[SockJSConnector] No protocols specified. Using defaults.";
        return GetDefaultProtocols();
    }
    return protocols;
}

bool SockJSConnector::open(QUrl url, QList<PROTOCOL_TYPE> protocols)
{
    d->open(url, protocols);
    return false;
}

void SockJSConnectorPrivate::open(const QUrl& url, const QList<SockJSConnector::PROTOCOL_TYPE>& protocols)
{
    attempt = std::make_unique<Attempt>(protocols);
    const QPointer<Attempt> mine(attempt.get());
    inbox.clear();
    dropTransport();
    // The end of the connection before belongs before anything of the new one.
    if (endPending)
        onClosed();
    if (!mine)
        return;
    mine->hasBegun = true;
    ++openCount;
    sessionOpen = false;
    lastActivity = QDateTime::currentDateTimeUtc();
    closedForInactivity = false;
    startInactivityTimer();
    readUrl(url);
    makeSessionId();
    tryRemainingProtocols();
}

void SockJSConnectorPrivate::startInactivityTimer()
{
    if (inactivityTimer)
        return;
    inactivityTimer = new QTimer(q);
    connect(inactivityTimer, &QTimer::timeout, this, &SockJSConnectorPrivate::onTimeout);
    inactivityTimer->start(inactivityInterval);
}

void SockJSConnectorPrivate::readUrl(const QUrl& url)
{
    constexpr int httpPort = 80;
    constexpr int httpsPort = 443;
    secure = url.scheme() == QLatin1String("wss") || url.scheme() == QLatin1String("https");
    port = url.port(secure ? httpsPort : httpPort);
    server = url.host(QUrl::FullyDecoded);
    path = url.path(QUrl::FullyDecoded);
    if (path.endsWith(QLatin1Char('/')))
        path.chop(1);
}

void SockJSConnectorPrivate::makeSessionId()
{
    sessionId = randomIds
                    ? randomSessionId()
                    : freshSessionId(server + QLatin1Char(':') + QString::number(port) + path, sessionId);
}

QString SockJSConnectorPrivate::basePath() const
{
    return path + QStringLiteral("/eventbus/119/") + sessionId;
}

QUrl SockJSConnectorPrivate::webSocketUrl() const
{
    const QString scheme = secure ? QStringLiteral("wss://") : QStringLiteral("ws://");
    const QString name =
        server.contains(QLatin1Char(':')) ? QLatin1Char('[') + server + QLatin1Char(']') : server;
    return QUrl(scheme + name + QLatin1Char(':') + QString::number(port) + basePath() +
                QStringLiteral("/websocket"));
}

void SockJSConnectorPrivate::tryRemainingProtocols()
{
    const QPointer<Attempt> mine(attempt.get());
    mine->isTrying = true;
    while (mine && mine->next < mine->protocols.size()) {
        if (tryNextProtocol())
            break;
    }
    if (mine)
        mine->isTrying = false;
}

bool SockJSConnectorPrivate::tryNextProtocol()
{
    switch (attempt->protocols.at(attempt->next++)) {
    case SockJSConnector::WEBSOCKET:
        return openWebSocket();
    case SockJSConnector::XHR_STREAMING:
        return openXHRPolling(true);
    case SockJSConnector::XHR_POLLING:
        return openXHRPolling(false);
    default:
        qCDebug(diagnostics) << "[SockJSConnector] No more protocols found!";
        return false;
    }
}

bool SockJSConnectorPrivate::openWebSocket()
{
    const QNetworkProxy proxy = QSystemConfigurationProxyFactory::getPrimaryProxy();
    if (proxy.port() != 0)
        QSystemConfigurationProxyFactory::exportToEnvironment(proxy.hostName() + QLatin1Char(':') +
                                                              QString::number(proxy.port()));
    const QUrl url = webSocketUrl();
    qCDebug(diagnostics) << "[SockJSConnector] Websocket url =" << url.toString();

    const QPointer<Attempt> mine(attempt.get());
    const QPointer<WebSocketTransport> socket(new WebSocketTransport(q));
    socket->setPings(pingInterval, pongLimit);
    connect(socket, &WebSocketTransport::ponged, this, &SockJSConnectorPrivate::hear);
    use(socket, SockJSConnector::WEBSOCKET);
    if (socket->start(url, proxy)) {
        startSilenceLimit();
        qCDebug(diagnostics) << "[SockJSConnector] CONNECTED via Websocket";
        return true;
    }
    if (!mine)
        return false;
    if (socket && socket->wasInterrupted())
        attempt.reset();
    dropTransport();
    return false;
}

bool SockJSConnectorPrivate::openXHRPolling(bool streaming)
{
    const QPointer<Attempt> mine(attempt.get());
    auto* xhr = new SockJSXHRPolling(q);
    if (openLimit > 0 && openLimit < SockJSXHRPollingWorker::ConnectLimit)
        xhr->setConnectLimit(openLimit);
    xhr->setStallLimit(stallLimit);
    xhr->setAsynchronousConnect(asynchronousConnect);
    xhr->setEndsWithLostRequest(endsWithLostRequest);
    use(xhr, streaming ? SockJSConnector::XHR_STREAMING : SockJSConnector::XHR_POLLING);
    if (xhr->start(server, port, secure, basePath(), streaming)) {
        startSilenceLimit();
        qCDebug(diagnostics).noquote() << "[SockJSConnector] CONNECTED via xhr_" +
                                              QString(QLatin1String(streaming ? "streaming" : "polling"));
        return true;
    }
    if (mine)
        dropTransport();
    return false;
}

void SockJSConnectorPrivate::use(SockJSTransport* started, SockJSConnector::PROTOCOL_TYPE type)
{
    transport = started;
    protocol = type;
    connect(started, &SockJSTransport::textMessageReceived, this, &SockJSConnectorPrivate::receive);
    connect(started, &SockJSTransport::connectionClosed, this, &SockJSConnectorPrivate::end);
    startOpenLimit();
}

void SockJSConnectorPrivate::startOpenLimit()
{
    if (openLimit > 0)
        openLimitTimer.start(openLimit);
    else
        openLimitTimer.stop();
}

void SockJSConnectorPrivate::onOpenLimit()
{
    if (sessionOpen)
        return;
    // The server may have opened the session, and its "o" is held back on the way: it would refuse a second
    // receiver of the same session.
    makeSessionId();
    dropTransport();
    if (!attempt->isTrying) // else open() goes on by itself
        tryRemainingProtocols();
}

void SockJSConnectorPrivate::startSilenceLimit()
{
    if (silenceLimit > 0)
        silence.start(silenceLimit);
}

void SockJSConnectorPrivate::hear()
{
    if (silence.isActive())
        silence.start();
}

bool SockJSConnector::isConnected() const
{
    return d->sessionOpen;
}

QString SockJSConnector::sessionId() const
{
    return d->sessionId;
}

SockJSConnector::PROTOCOL_TYPE SockJSConnector::protocol() const
{
    return d->protocol;
}

int SockJSConnector::openCount() const
{
    return d->openCount;
}

void SockJSConnector::setStallLimit(int msecs)
{
    d->stallLimit = msecs;
}

int SockJSConnector::stallLimit() const
{
    return d->stallLimit;
}

void SockJSConnector::setAsynchronousConnect(bool asynchronous)
{
    d->asynchronousConnect = asynchronous;
}

bool SockJSConnector::asynchronousConnect() const
{
    return d->asynchronousConnect;
}

void SockJSConnector::setEndsWithLostRequest(bool ends)
{
    d->endsWithLostRequest = ends;
}

bool SockJSConnector::endsWithLostRequest() const
{
    return d->endsWithLostRequest;
}

void SockJSConnector::setOpenLimit(int msecs)
{
    d->openLimit = msecs;
}

int SockJSConnector::openLimit() const
{
    return d->openLimit;
}

void SockJSConnector::setSilenceLimit(int msecs)
{
    d->silenceLimit = msecs;
}

int SockJSConnector::silenceLimit() const
{
    return d->silenceLimit;
}

void SockJSConnector::setPingInterval(int msecs)
{
    d->pingInterval = msecs;
}

int SockJSConnector::pingInterval() const
{
    return d->pingInterval;
}

void SockJSConnector::setPongLimit(int msecs)
{
    d->pongLimit = msecs;
}

int SockJSConnector::pongLimit() const
{
    return d->pongLimit;
}

void SockJSConnector::setRandomSessionIds(bool random)
{
    d->randomIds = random;
}

bool SockJSConnector::randomSessionIds() const
{
    return d->randomIds;
}

void SockJSConnector::openstate1() {}

void SockJSConnector::openstate2() {}

void SockJSConnector::onConnected()
{
    qCDebug(diagnostics) << "[SockJSConnector] Websocket connected";
    d->sessionOpen = true;
    Q_EMIT connected();
}

void SockJSConnector::onTextMessageReceived(QString message)
{
    d->receive(message);
}

void SockJSConnectorPrivate::receive(const QString& frame)
{
    hear();
    if (frame == QLatin1String("o") && !sessionOpen) {
        openLimitTimer.stop();
        sessionOpen = true;
        Q_EMIT q->connected();
        return;
    }
    if (!frame.startsWith(QLatin1Char('a')))
        return;
    inbox += SockJSFrame::messages(frame);
    deliver();
}

// A slot may let the next frame in: its messages come after those that are still to be told.
void SockJSConnectorPrivate::deliver()
{
    const QPointer<SockJSConnectorPrivate> self(this);
    while (self && !inbox.isEmpty())
        Q_EMIT q->sockJSMessage(inbox.takeFirst());
}

void SockJSConnector::sendMessage(QString message, bool bSkipActivity)
{
    d->send(std::move(message), bSkipActivity);
}

void SockJSConnectorPrivate::send(QString message, bool skipsActivity)
{
    if (!skipsActivity)
        lastActivity = QDateTime::currentDateTimeUtc();
    if (!transport)
        return;
    const QString frame = SockJSFrame::encode(message);
    message.clear(); // it can be as large as a picture, and sending takes room for another two
    transport->sendTextMessage(frame);
}

void SockJSConnector::sendMessage(QMap<QString, QVariant> message)
{
    sendMessage(QString::fromUtf8(QJsonDocument::fromVariant(message).toJson().constData()), false);
}

void SockJSConnector::onTimeout()
{
    d->onTimeout();
}

void SockJSConnectorPrivate::onTimeout()
{
    if (lastActivity.secsTo(QDateTime::currentDateTimeUtc()) < inactivityLimit || !sessionOpen)
        return;
    closedForInactivity = true;
    inactivityTimer->stop();
    shutDown();
}

void SockJSConnector::close()
{
    d->shutDown();
}

// Closes what is open; the end of a connection that was up is told from the event loop.
void SockJSConnectorPrivate::shutDown()
{
    const bool wasUp = isUp();
    // An open() that is only telling the end of the connection before stands.
    if (attempt && attempt->hasBegun)
        attempt.reset();
    sessionOpen = false;
    dropTransport();
    if (!wasUp)
        return;
    endPending = true;
    const auto tell = [this] {
        if (endPending)
            end();
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

bool SockJSConnectorPrivate::isUp() const
{
    return (transport && transport->isUp()) || (attempt && attempt->isFalling);
}

// What has come in before the end is told before it.
void SockJSConnectorPrivate::end()
{
    const QPointer<SockJSConnectorPrivate> self(this);
    endPending = true;
    deliver();
    if (self && endPending)
        onClosed();
}

void SockJSConnector::onClosed()
{
    d->onClosed();
}

void SockJSConnectorPrivate::onClosed()
{
    qCDebug(diagnostics) << "[SockJSConnector] Websocket CLOSED";
    endPending = false;
    const bool falls = !sessionOpen && attempt && transport && protocol == SockJSConnector::WEBSOCKET;
    dropTransport();
    if (falls && fallBack())
        return;
    sessionOpen = false;
    Q_EMIT q->closed(closedForInactivity);
}

// True also when the attempt is over.
bool SockJSConnectorPrivate::fallBack()
{
    const QPointer<Attempt> mine(attempt.get());
    mine->isTrying = mine->isFalling = true;
    const bool up = openXHRPolling(false);
    if (!mine)
        return true;
    mine->isTrying = mine->isFalling = false;
    if (up)
        qCDebug(diagnostics) << "[SockJSConnector] Fallback to XHR_Polling";
    return up;
}

void SockJSConnectorPrivate::dropTransport()
{
    openLimitTimer.stop();
    silence.stop();
    SockJSTransport* dropped = transport;
    transport = nullptr;
    if (!dropped)
        return;
    dropped->disconnect(this);
    dropped->retire();
}
