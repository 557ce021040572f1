#include "transport/WebSocketTransport.h"

#include "base/QtVersion.h"
#include "transport/HttpResponseParser.h"
#include "transport/InnerLoop.h"
#include "transport/WebSocketRelease.h"

#include <QCoreApplication>
#include <QNetworkProxy>
#include <QPointer>
#include <QWebSocket>

WebSocketTransport::WebSocketTransport(QObject* parent) : SockJSTransport(parent)
{
    m_silence.setSingleShot(true);
    connect(&m_pings, &QTimer::timeout, this, &WebSocketTransport::sendPing);
    connect(&m_silence, &QTimer::timeout, this, &WebSocketTransport::onEnded);
}

WebSocketTransport::~WebSocketTransport()
{
    releaseSocket();
}

void WebSocketTransport::setPings(int interval, int limit)
{
    m_pings.setInterval(interval);
    m_silence.setInterval(limit);
}

bool WebSocketTransport::start(const QUrl& url, const QNetworkProxy& proxy)
{
    m_socket = new QWebSocket(QString(), QWebSocketProtocol::Version13);
    m_socket->setProxy(proxy);
    // As over XHR: Qt's own limit is 2 GiB.
    m_socket->setMaxAllowedIncomingFrameSize(HttpResponseParser::MaxBodySize);
    m_socket->setMaxAllowedIncomingMessageSize(HttpResponseParser::MaxBodySize);
    listen();
    m_socket->open(url);
    return waitForUpgrade();
}

// Called before the socket is opened: the first frame can come in one packet with the upgrade.
void WebSocketTransport::listen()
{
    constexpr auto queued = Qt::QueuedConnection;
    connect(m_socket, &QWebSocket::connected, this, &WebSocketTransport::onUpgraded, queued);
    connect(m_socket, &QWebSocket::disconnected, this, &WebSocketTransport::onEnded, queued);
    // A refused upgrade is reported as an error only, never as `disconnected`.
    connect(m_socket, errorSignal<QWebSocket>(0), this, &WebSocketTransport::onFailed, queued);
    connect(m_socket, &QWebSocket::textMessageReceived, this, &SockJSTransport::textMessageReceived, queued);
    if (m_pings.interval() <= 0)
        return;
    connect(m_socket, &QWebSocket::pong, this, &WebSocketTransport::onPong, queued);
    connect(m_socket, &QWebSocket::textFrameReceived, &m_silence, &QTimer::stop, queued);
}

bool WebSocketTransport::waitForUpgrade()
{
    const QPointer<WebSocketTransport> self(this);
    InnerLoop wait;
    m_wait = &wait;
    const bool finished = wait.run();
    if (!self)
        return false;
    m_wait = nullptr;
    m_interrupted = !finished;
    if (m_endHeld)
        QMetaObject::invokeMethod(this, &WebSocketTransport::onEnded, Qt::QueuedConnection);
    return m_up;
}

void WebSocketTransport::onUpgraded()
{
    m_up = true;
    if (m_pings.interval() > 0)
        m_pings.start();
    if (m_wait)
        m_wait->quit();
}

void WebSocketTransport::onFailed()
{
    if (!m_up && m_wait)
        m_wait->quit();
}

void WebSocketTransport::onEnded()
{
    onFailed();
    m_endHeld = m_wait;
    if (!m_up || m_endHeld)
        return;
    m_up = false;
    m_pings.stop();
    Q_EMIT connectionClosed();
}

void WebSocketTransport::sendTextMessage(QString frame)
{
    if (m_up)
        m_socket->sendTextMessage(frame);
}

void WebSocketTransport::sendPing()
{
    m_socket->ping();
    if (m_answersPings && !m_silence.isActive())
        m_silence.start();
}

void WebSocketTransport::onPong()
{
    m_answersPings = true;
    m_silence.stop();
    Q_EMIT ponged();
}

void WebSocketTransport::retire()
{
    setParent(nullptr);
    releaseSocket();
    if (willRunEvents(this))
        deleteLater();
    else
        delete this;
}

void WebSocketTransport::releaseSocket()
{
    m_up = false;
    m_pings.stop();
    m_silence.stop();
    if (m_wait)
        m_wait->quit();
    if (m_socket)
        releaseWebSocket(m_socket);
    m_socket = nullptr;
    // Drops what the socket has told and nobody has heard yet.
    QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
}
