#include "support/FakeSockJSServer.h"

#include "support/WaitFor.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QWebSocket>

#include <algorithm>

namespace {

QByteArray upgradeAnswer(const QByteArray& key)
{
    const auto accept =
        QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11", QCryptographicHash::Sha1);
    return "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
           "Sec-WebSocket-Accept: " +
           accept.toBase64() + "\r\n\r\n";
}

// One unmasked text frame; long enough for what tests send by hand.
QByteArray rawFrame(const QString& text)
{
    const auto payload = text.toUtf8();
    Q_ASSERT(payload.size() < 126);
    return QByteArray("\x81", 1) + char(payload.size()) + payload;
}

} // namespace

FakeSockJSServer::FakeSockJSServer() : m_webSockets(QStringLiteral("fake"), QWebSocketServer::NonSecureMode)
{
    connect(&m_webSockets, &QWebSocketServer::newConnection, this, &FakeSockJSServer::onWebSocket);
}

FakeSockJSServer::~FakeSockJSServer()
{
    // The ends of these sockets are no news to a server that is going.
    const auto webSockets = findChildren<QWebSocket*>();
    for (auto* socket : webSockets)
        socket->disconnect(this);
}

QUrl FakeSockJSServer::url(const QString& path, const QString& scheme) const
{
    QUrl url;
    url.setScheme(scheme);
    url.setHost(QStringLiteral("127.0.0.1"));
    url.setPort(port());
    url.setPath(path);
    return url;
}

void FakeSockJSServer::answerUpgrade()
{
    while (!m_waiting.isEmpty()) {
        const auto waiting = m_waiting.takeFirst();
        m_current = Open;
        if (waiting.first)
            return upgrade(waiting.first, waiting.second);
    }
}

QStringList FakeSockJSServer::paths() const
{
    QStringList paths;
    for (const auto& request : m_requests)
        paths.append(QString::fromUtf8(request.path));
    return paths;
}

int FakeSockJSServer::count(const QString& suffix) const
{
    const auto all = paths();
    return int(
        std::count_if(all.begin(), all.end(), [&](const auto& path) { return path.endsWith(suffix); }));
}

QString FakeSockJSServer::nextFrame()
{
    if (!waitFor([this] { return !m_unread.isEmpty(); }))
        return QString();
    return m_unread.takeFirst();
}

QString FakeSockJSServer::nextMessage()
{
    const auto messages = QJsonDocument::fromJson(nextFrame().toUtf8()).array();
    return messages.size() == 1 ? messages.first().toString() : QString();
}

void FakeSockJSServer::inject(const QString& frame)
{
    if (m_webSocket) {
        m_webSocket->sendTextMessage(frame);
    } else if (m_raw) {
        m_raw->write(rawFrame(frame));
    } else if (m_stream) {
        m_stream->write(HttpText::chunk(frame.toUtf8() + '\n'));
    } else {
        m_pollFrames.append(frame);
        answerPoll();
    }
}

void FakeSockJSServer::injectMessages(const QStringList& messages)
{
    const QJsonDocument list(QJsonArray::fromStringList(messages));
    inject(QLatin1Char('a') + QString::fromUtf8(list.toJson(QJsonDocument::Compact)));
}

void FakeSockJSServer::injectBinary(const QByteArray& bytes)
{
    if (m_webSocket)
        m_webSocket->sendBinaryMessage(bytes);
}

void FakeSockJSServer::closeSession()
{
    if (m_webSocket)
        m_webSocket->close();
    else if (m_raw)
        m_raw->disconnectFromHost();
    else
        inject(QStringLiteral("c[3000,\"Go away!\"]"));
}

void FakeSockJSServer::injectPong()
{
    if (m_raw)
        m_raw->write(QByteArray("\x8a\0", 2));
}

void FakeSockJSServer::injectHalf()
{
    if (m_raw)
        m_raw->write(rawFrame(QStringLiteral("a[\"half\"]")).left(5));
    else if (m_stream)
        m_stream->write("ff\r\na[\"ha");
    else if (m_poll)
        m_poll->write(HttpText::plain("a[\"half\"]\n").chopped(5));
}

void FakeSockJSServer::dropConnections()
{
    const auto sockets = findChildren<QTcpSocket*>();
    for (auto* socket : sockets)
        socket->abort();
}

int FakeSockJSServer::openConnections() const
{
    const auto sockets = findChildren<QTcpSocket*>();
    return int(std::count_if(sockets.begin(), sockets.end(), [](const auto* socket) {
        return socket->state() != QAbstractSocket::UnconnectedState;
    }));
}

void FakeSockJSServer::onRequest(HttpConnection* connection, const HttpServer::Request& received)
{
    Request request;
    static_cast<HttpServer::Request&>(request) = received;
    m_requests.append(request);
    const QPointer<HttpConnection> guard(connection);
    emit requested(QString::fromUtf8(request.path));
    if (guard && request.headers.contains("upgrade"))
        handleUpgrade(connection, request);
    else if (guard)
        handlePost(connection->socket(), request);
}

void FakeSockJSServer::handlePost(QTcpSocket* socket, const Request& request)
{
    if (request.path.endsWith("/xhr_send")) {
        m_unread.append(QString::fromUtf8(request.body));
        if (!m_holdsPosts)
            socket->write("HTTP/1.1 204 No Content\r\n\r\n");
        return;
    }
    const bool streaming = request.path.endsWith("/xhr_streaming");
    if (!streaming && !request.path.endsWith("/xhr"))
        return;
    if (m_polledSession != request.sessionId()) {
        // One that is being ended, while another has begun: there is nothing for it any more.
        if (m_pastSessions.contains(request.sessionId()))
            return;
        m_pastSessions.insert(m_polledSession);
        m_polledSession = request.sessionId();
        m_pollFrames = m_firstFrames;
    }
    m_webSocket = nullptr;
    m_raw = nullptr;
    m_poll = streaming ? nullptr : socket;
    m_stream = streaming ? socket : nullptr;
    if (streaming)
        beginStream();
    else
        answerPoll();
}

void FakeSockJSServer::beginStream()
{
    m_stream->write(HttpText::chunkedHead() + HttpText::chunk(HttpText::prelude()));
    while (!m_pollFrames.isEmpty())
        m_stream->write(HttpText::chunk(m_pollFrames.takeFirst().toUtf8() + '\n'));
}

void FakeSockJSServer::answerPoll()
{
    if (m_poll && !m_pollFrames.isEmpty()) {
        m_poll->write(HttpText::plain(m_pollFrames.takeFirst().toUtf8() + '\n'));
        m_poll = nullptr;
    }
}

FakeSockJSServer::Upgrade FakeSockJSServer::takeUpgrade()
{
    return m_upgrades.size() > 1 ? m_upgrades.takeFirst() : m_upgrades.first();
}

void FakeSockJSServer::handleUpgrade(HttpConnection* connection, const Request& request)
{
    using HttpText::plain;
    m_current = takeUpgrade();
    QTcpSocket* socket = connection->socket();
    switch (m_current) {
    case Open:
    case Mute:
    case CloseAfterUpgrade:
        return upgrade(connection, request);
    case OpenInSamePacket:
        return upgradeByHand(connection, request, m_firstFrames);
    case Deaf:
        upgradeByHand(connection, request, {});
        return socket->setReadBufferSize(1);
    case EndAfterUpgrade:
        upgradeByHand(connection, request, {});
        return socket->disconnectFromHost();
    case ResetAfterUpgrade:
        upgradeByHand(connection, request, {});
        socket->flush();
        return connection->reset();
    case Refuse403:
        return connection->append({HttpScript::send(plain("no", {}, "403 Forbidden"))});
    case Refuse404:
        return connection->append({HttpScript::send(plain("none", {}, "404 Not Found"))});
    case Answer200:
        return connection->append({HttpScript::send(plain("Welcome to SockJS!\n"))});
    case AnswerGarbage:
        return connection->append({HttpScript::send("\x16\x03\x01 not HTTP\r\n\r\n")});
    case EndInstead:
        return socket->disconnectFromHost();
    case ResetInstead:
        return connection->reset();
    case Silent:
        m_waiting.append({connection, request});
        return;
    }
}

void FakeSockJSServer::upgrade(HttpConnection* connection, const Request& request)
{
    m_webSockets.handleConnection(handOver(connection, request));
}

void FakeSockJSServer::upgradeByHand(HttpConnection* connection, const Request& request,
                                     const QStringList& frames)
{
    m_webSocket = nullptr;
    m_raw = connection->socket();
    disconnect(m_raw, &QTcpSocket::readyRead, connection, nullptr); // nobody reads frames
    auto bytes = upgradeAnswer(request.header("sec-websocket-key"));
    for (const auto& frame : frames)
        bytes += rawFrame(frame);
    m_raw->write(bytes);
}

void FakeSockJSServer::onWebSocket()
{
    while (auto* socket = m_webSockets.nextPendingConnection()) {
        socket->setParent(this);
        connect(socket, &QWebSocket::textMessageReceived, this,
                [this](const QString& frame) { m_unread.append(frame); });
        connect(socket, &QWebSocket::disconnected, this, [this, socket] {
            ++m_ended;
            m_closeCode = socket->closeCode();
            socket->deleteLater();
        });
        m_webSocket = socket;
        if (m_current == CloseAfterUpgrade)
            socket->close();
        if (m_current != Open)
            continue;
        for (const auto& frame : qAsConst(m_firstFrames))
            socket->sendTextMessage(frame);
    }
}
