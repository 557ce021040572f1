#include "transport/SockJSConnector.h"

#include "base/Diagnostics.h"
#include "transport/QSystemConfigurationProxyFactory.h"
#include "transport/RANDSTRING.h"
#include "transport/SockJSFrame.h"
#include "transport/SockJSXHRPolling.h"
#include "transport/SockJSXHRPollingWorker.h"
#include "transport/WebSocketRelease.h"

#include <QEventLoop>
#include <QHash>
#include <QJsonDocument>
#include <QMutex>
#include <QWebSocket>

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
            text = RANDSTRING::Generate(2 * text.size());
        id = text.mid(begin, sessionIdLength);
        begin += sessionIdLength;
    } while (id == last);
    return id;
}

} // namespace

SockJSConnector::SockJSConnector(QObject* parent) : QObject(parent)
{
    m_openLimitTimer.setSingleShot(true);
    connect(&m_openLimitTimer, &QTimer::timeout, this, &SockJSConnector::onOpenLimit);
}

SockJSConnector::~SockJSConnector()
{
    endAttempt();
    dropTransports();
}

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
    for (const QString& name : qAsConst(names))
        protocols.append(table.keys(name));
    if (protocols.isEmpty()) {
        qCDebug(diagnostics) << "[SockJSConnector] No protocols specified. Using defaults.";
        return GetDefaultProtocols();
    }
    return protocols;
}

bool SockJSConnector::open(QUrl url, QList<PROTOCOL_TYPE> protocols)
{
    const QPointer<SockJSConnector> self(this);
    endAttempt();
    const int attempt = m_attempt;
    // The end of the connection before belongs before anything of the new one. It must not open a fallback
    // any more.
    m_closing = true;
    if (m_endPending)
        onClosed();
    if (!self || m_attempt != attempt)
        return false;
    dropTransports();
    m_sessionOpen = false;

    m_lastActivity = QDateTime::currentDateTimeUtc();
    m_closedForInactivity = false;
    startInactivityTimer();
    m_closing = false;
    readUrl(url);
    m_protocolIndex = 0;
    m_protocols = protocols;
    makeSessionId();
    tryRemainingProtocols();
    return false;
}

void SockJSConnector::startInactivityTimer()
{
    if (m_inactivityTimer)
        return;
    m_inactivityTimer = new QTimer(this);
    connect(m_inactivityTimer, SIGNAL(timeout()), this, SLOT(onTimeout()));
    m_inactivityTimer->start(inactivityInterval);
}

void SockJSConnector::readUrl(const QUrl& url)
{
    constexpr int httpPort = 80;
    constexpr int httpsPort = 443;
    m_secure = url.scheme() == QLatin1String("wss") || url.scheme() == QLatin1String("https");
    m_port = url.port(m_secure ? httpsPort : httpPort);
    m_host = url.host(QUrl::FullyDecoded);
    m_path = url.path(QUrl::FullyDecoded);
    if (m_path.endsWith(QLatin1Char('/')))
        m_path.chop(1);
}

void SockJSConnector::makeSessionId()
{
    m_sessionId = freshSessionId(m_host + QLatin1Char(':') + QString::number(m_port) + m_path, m_sessionId);
}

QString SockJSConnector::basePath() const
{
    return m_path + QStringLiteral("/eventbus/119/") + m_sessionId;
}

QUrl SockJSConnector::webSocketUrl() const
{
    const QString scheme = m_secure ? QStringLiteral("wss://") : QStringLiteral("ws://");
    const QString host =
        m_host.contains(QLatin1Char(':')) ? QLatin1Char('[') + m_host + QLatin1Char(']') : m_host;
    return QUrl(scheme + host + QLatin1Char(':') + QString::number(m_port) + basePath() +
                QStringLiteral("/websocket"));
}

void SockJSConnector::tryRemainingProtocols()
{
    const QPointer<SockJSConnector> self(this);
    const int attempt = m_attempt;
    while (self && m_attempt == attempt && m_protocolIndex < m_protocols.size()) {
        if (tryNextProtocol())
            return;
    }
}

bool SockJSConnector::tryNextProtocol()
{
    const int index = m_protocolIndex++;
    const int protocol = index < m_protocols.size() ? m_protocols.at(index) : 0;
    switch (protocol) {
    case WEBSOCKET:
        return openWebsocket();
    case XHR_STREAMING:
        return openXHRPolling(true);
    case XHR_POLLING:
        return openXHRPolling(false);
    default:
        qCDebug(diagnostics) << "[SockJSConnector] No more protocols found!";
        return false;
    }
}

bool SockJSConnector::openWebsocket()
{
    const QNetworkProxy proxy = QSystemConfigurationProxyFactory::getPrimaryProxy();
    if (proxy.port() != 0)
        QSystemConfigurationProxyFactory::exportToEnvironment(proxy.hostName() + QLatin1Char(':') +
                                                              QString::number(proxy.port()));
    const QUrl url = webSocketUrl();
    qCDebug(diagnostics) << "[SockJSConnector] Websocket url =" << url.toString();

    m_openState = Pending;
    m_upgraded = false;
    m_webSocket = new QWebSocket(QString(), QWebSocketProtocol::Version13);
    m_webSocket->setProxy(proxy);
    connect(m_webSocket, SIGNAL(connected()), this, SLOT(openstate1()));
    connect(m_webSocket, SIGNAL(disconnected()), this, SLOT(openstate2()));
    // A refused upgrade is reported as an error only, never as `disconnected`.
    connect(m_webSocket, SIGNAL(error(QAbstractSocket::SocketError)), this, SLOT(openstate2()));
    // Heard from now on: the first frame can come in one packet with the upgrade.
    connect(m_webSocket, SIGNAL(textMessageReceived(QString)), this, SLOT(onTextMessageReceived(QString)));
    startOpenLimit();
    m_webSocket->open(url);
    if (!waitForWebSocket())
        return false;

    disconnect(m_webSocket); // our own signals; the state is watched on
    qCDebug(diagnostics) << "[SockJSConnector] CONNECTED via Websocket";
    if (m_openState == Connected)
        connect(m_webSocket, SIGNAL(disconnected()), this, SLOT(onClosed()));
    else // ended again while we were waking up
        queueEnd();
    return true;
}

// True once the socket is upgraded. False otherwise, the socket released; also when the attempt is over or we
// are gone.
bool SockJSConnector::waitForWebSocket()
{
    const QPointer<SockJSConnector> self(this);
    const int attempt = m_attempt;
    bool interrupted = false;
    if (m_openState == Pending) {
        QEventLoop loop;
        m_openWait = &loop;
        loop.exec();
        // Not by us: the application is quitting, and nothing will be waited for any more.
        interrupted = self && m_attempt == attempt && m_openState == Pending;
    }
    if (!self || m_attempt != attempt)
        return false;
    if (m_upgraded)
        return true;
    if (interrupted)
        endAttempt();
    dropWebSocket();
    return false;
}

bool SockJSConnector::openXHRPolling(bool streaming)
{
    m_xhr = new SockJSXHRPolling(this);
    if (m_openLimit > 0)
        m_xhr->setConnectLimit(qMin(m_openLimit, SockJSXHRPollingWorker::ConnectLimit));
    startOpenLimit();
    if (!m_xhr->start(m_host, m_port, m_secure, basePath(), streaming)) {
        m_xhr->retire();
        m_xhr = nullptr;
        return false;
    }
    qCDebug(diagnostics).noquote() << "[SockJSConnector] CONNECTED via xhr_" +
                                          QString(QLatin1String(streaming ? "streaming" : "polling"));
    connect(m_xhr, SIGNAL(textMessageReceived(QString)), this, SLOT(onTextMessageReceived(QString)));
    connect(m_xhr, SIGNAL(connectionClosed()), this, SLOT(onClosed()));
    return true;
}

void SockJSConnector::setOpenLimit(int msecs)
{
    m_openLimit = msecs;
}

void SockJSConnector::startOpenLimit()
{
    if (m_openLimit > 0)
        m_openLimitTimer.start(m_openLimit);
    else
        m_openLimitTimer.stop();
}

void SockJSConnector::onOpenLimit()
{
    if (m_sessionOpen)
        return;
    // The server may have opened the session, its "o" held back on the way, and refuses a second receiver of
    // it.
    makeSessionId();
    if (m_openWait) { // open() goes on with the next transport
        m_openState = Disconnected;
        m_upgraded = false;
        m_openWait->quit();
        return;
    }
    dropTransports();
    tryRemainingProtocols();
}

void SockJSConnector::openstate1()
{
    m_openState = Connected;
    m_upgraded = true;
    if (m_openWait)
        m_openWait->quit();
}

void SockJSConnector::openstate2()
{
    m_openState = Disconnected;
    if (m_openWait)
        m_openWait->quit();
}

void SockJSConnector::onConnected()
{
    qCDebug(diagnostics) << "[SockJSConnector] Websocket connected";
    m_sessionOpen = true;
    Q_EMIT connected();
}

void SockJSConnector::onTextMessageReceived(QString message)
{
    if (message == QLatin1String("o") && !m_sessionOpen) {
        m_openLimitTimer.stop();
        m_sessionOpen = true;
        Q_EMIT connected();
        return;
    }
    if (!message.startsWith(QLatin1Char('a')))
        return;
    const QPointer<SockJSConnector> self(this);
    const int attempt = m_attempt;
    const QStringList messages = SockJSFrame::messages(message);
    for (const QString& text : messages) {
        Q_EMIT sockJSMessage(text);
        if (!self)
            return;
        // Opened anew by a slot: the rest belongs to a connection whose end has been told.
        if (m_attempt != attempt && !m_endPending)
            return;
    }
}

void SockJSConnector::sendMessage(QString message, bool bSkipActivity)
{
    if (!bSkipActivity)
        m_lastActivity = QDateTime::currentDateTimeUtc();
    if (!m_webSocket && !m_xhr)
        return;
    const QString frame = SockJSFrame::encode(message);
    message.clear(); // it can be as large as a picture, and sending takes room for another two
    if (m_webSocket)
        m_webSocket->sendTextMessage(frame);
    else
        m_xhr->sendTextMessage(frame);
}

void SockJSConnector::sendMessage(QMap<QString, QVariant> message)
{
    sendMessage(QString::fromUtf8(QJsonDocument::fromVariant(message).toJson().constData()), false);
}

void SockJSConnector::onTimeout()
{
    if (m_lastActivity.secsTo(QDateTime::currentDateTimeUtc()) < inactivityLimit || !m_sessionOpen)
        return;
    m_closedForInactivity = true;
    m_inactivityTimer->stop();
    shutDown();
}

void SockJSConnector::close()
{
    shutDown();
}

// Closes what is open; the end of a connection that was up is told from the event loop.
void SockJSConnector::shutDown()
{
    const bool wasUp = isTransportUp();
    endAttempt();
    m_closing = true;
    m_sessionOpen = false;
    dropTransports();
    if (!wasUp)
        return;
    queueEnd();
}

// The end of the connection will be handled from the event loop, or at the start of the next open().
void SockJSConnector::queueEnd()
{
    m_endPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_endPending)
                onClosed();
        },
        Qt::QueuedConnection);
}

void SockJSConnector::onClosed()
{
    qCDebug(diagnostics) << "[SockJSConnector] Websocket CLOSED";
    m_endPending = false;
    if (!m_sessionOpen && !m_closing && m_webSocket) {
        dropWebSocket();
        if (openXHRPolling(false)) {
            qCDebug(diagnostics) << "[SockJSConnector] Fallback to XHR_Polling";
            return;
        }
    }
    m_sessionOpen = false;
    dropTransports();
    Q_EMIT closed(m_closedForInactivity);
}

bool SockJSConnector::isTransportUp() const
{
    return m_xhr || (m_webSocket && m_upgraded);
}

// Whatever open() is still waiting for is over.
void SockJSConnector::endAttempt()
{
    ++m_attempt;
    if (m_openWait)
        m_openWait->quit();
    m_openWait = nullptr;
}

void SockJSConnector::dropTransports()
{
    m_openLimitTimer.stop();
    dropWebSocket();
    if (SockJSXHRPolling* xhr = m_xhr) {
        m_xhr = nullptr;
        xhr->disconnect(this);
        xhr->retire();
    }
}

void SockJSConnector::dropWebSocket()
{
    if (QWebSocket* socket = m_webSocket) {
        m_webSocket = nullptr;
        releaseWebSocket(socket);
    }
}
