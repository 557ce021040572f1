#include "support/FakeSockJSServer.h"

#include "support/ScriptedHttpServer.h"
#include "support/WaitFor.h"

#include <QCryptographicHash>
#include <QHostAddress>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTcpSocket>
#include <QWebSocket>

#include <sys/socket.h>

namespace {

void reset(QTcpSocket* socket)
{
    const linger atOnce = {1, 0};
    setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
    socket->abort();
}

QByteArray answer(const char* status, const QByteArray& body)
{
    return QByteArray("HTTP/1.1 ") + status +
           "\r\nContent-Type: text/plain\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
           body;
}

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

bool parseHead(const QByteArray& head, FakeSockJSServer::Request* request)
{
    auto lines = head.split('\n');
    const auto first = lines.takeFirst().trimmed().split(' ');
    if (first.size() != 3)
        return false;
    request->method = first.at(0);
    request->path = QString::fromUtf8(first.at(1));
    for (const auto& line : qAsConst(lines)) {
        const auto colon = line.indexOf(':');
        if (colon > 0)
            request->headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    return true;
}

} // namespace

QString FakeSockJSServer::Request::sessionId() const
{
    return path.section(QLatin1Char('/'), -2, -2);
}

QString FakeSockJSServer::Request::base() const
{
    return path.section(QLatin1Char('/'), 0, -3);
}

FakeSockJSServer::FakeSockJSServer(QObject* parent)
    : QObject(parent), m_webSockets(QStringLiteral("fake"), QWebSocketServer::NonSecureMode)
{
    connect(&m_listener, &QTcpServer::newConnection, this, &FakeSockJSServer::onNewConnection);
    connect(&m_webSockets, &QWebSocketServer::newConnection, this, &FakeSockJSServer::onWebSocket);
    if (!m_listener.listen(QHostAddress::LocalHost))
        qFatal("The fake server cannot listen on loopback.");
}

FakeSockJSServer::~FakeSockJSServer()
{
    // The ends of these sockets are no news to a server that is going.
    const auto sockets = findChildren<QAbstractSocket*>() + m_listener.findChildren<QAbstractSocket*>();
    for (auto* socket : sockets)
        socket->disconnect(this);
    const auto webSockets = findChildren<QWebSocket*>();
    for (auto* socket : webSockets)
        socket->disconnect(this);
}

quint16 FakeSockJSServer::port() const
{
    return m_listener.serverPort();
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

void FakeSockJSServer::setUpgrades(const QList<Upgrade>& upgrades)
{
    m_upgrades = upgrades;
}

void FakeSockJSServer::setFirstFrames(const QStringList& frames)
{
    m_firstFrames = frames;
}

void FakeSockJSServer::answerUpgrade()
{
    m_waiting.removeAll(nullptr);
    if (!m_waiting.isEmpty()) {
        m_current = Open;
        upgrade(m_waiting.takeFirst());
    }
}

void FakeSockJSServer::stopListening()
{
    m_listener.close();
}

QStringList FakeSockJSServer::paths() const
{
    QStringList paths;
    for (const auto& request : m_requests)
        paths.append(request.path);
    return paths;
}

int FakeSockJSServer::count(const QString& suffix) const
{
    int found = 0;
    for (const auto& request : m_requests)
        found += request.path.endsWith(suffix) ? 1 : 0;
    return found;
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
        m_poll->write(answer("200 OK", "a[\"half\"]\n").chopped(5));
}

void FakeSockJSServer::dropConnections()
{
    const auto sockets = m_listener.findChildren<QTcpSocket*>();
    for (auto* socket : sockets)
        socket->abort();
}

int FakeSockJSServer::openConnections() const
{
    int open = 0;
    const auto sockets = m_listener.findChildren<QTcpSocket*>();
    for (const auto* socket : sockets)
        open += socket->state() == QAbstractSocket::UnconnectedState ? 0 : 1;
    return open;
}

void FakeSockJSServer::onNewConnection()
{
    while (auto* socket = m_listener.nextPendingConnection()) {
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // or small frames wait for one another
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        onReadyRead(socket);
    }
}

void FakeSockJSServer::onReadyRead(QTcpSocket* socket)
{
    QPointer<QTcpSocket> guard(socket);
    Request request;
    while (guard && socket != m_raw && readRequest(socket, &request)) {
        m_requests.append(request);
        emit requested(request.path);
        if (guard)
            handle(socket, request);
        if (request.headers.contains("upgrade"))
            return;
        request = Request();
    }
}

// An upgrade stays in the socket, for the WebSocket server to read.
bool FakeSockJSServer::readRequest(QTcpSocket* socket, Request* request)
{
    while (socket->peek(2) == "\r\n")
        socket->read(2);
    const auto data = socket->peek(socket->bytesAvailable());
    const auto end = data.indexOf("\r\n\r\n");
    if (end < 0 || !parseHead(data.left(end), request))
        return false;
    if (request->headers.contains("upgrade")) {
        socket->disconnect(this);
        return true;
    }
    const auto length = request->headers.value("content-length").toInt();
    if (data.size() < end + 4 + length)
        return false;
    request->body = data.mid(end + 4, length);
    socket->read(end + 4 + length);
    return true;
}

void FakeSockJSServer::handle(QTcpSocket* socket, const Request& request)
{
    if (request.headers.contains("upgrade"))
        handleUpgrade(socket, request);
    else
        handlePost(socket, request);
}

void FakeSockJSServer::handlePost(QTcpSocket* socket, const Request& request)
{
    if (request.path.endsWith(QLatin1String("/xhr_send"))) {
        m_unread.append(QString::fromUtf8(request.body));
        if (!m_holdsPosts)
            socket->write("HTTP/1.1 204 No Content\r\n\r\n");
        return;
    }
    const bool streaming = request.path.endsWith(QLatin1String("/xhr_streaming"));
    if (!streaming && !request.path.endsWith(QLatin1String("/xhr")))
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
    m_stream = nullptr;
    if (streaming)
        beginStream(socket);
    else
        answerPoll();
}

void FakeSockJSServer::beginStream(QTcpSocket* socket)
{
    m_stream = socket;
    socket->write(HttpText::chunkedHead() + HttpText::chunk(HttpText::prelude()));
    while (!m_pollFrames.isEmpty())
        socket->write(HttpText::chunk(m_pollFrames.takeFirst().toUtf8() + '\n'));
}

void FakeSockJSServer::answerPoll()
{
    if (m_poll && !m_pollFrames.isEmpty()) {
        m_poll->write(answer("200 OK", m_pollFrames.takeFirst().toUtf8() + '\n'));
        m_poll = nullptr;
    }
}

FakeSockJSServer::Upgrade FakeSockJSServer::takeUpgrade()
{
    return m_upgrades.size() > 1 ? m_upgrades.takeFirst() : m_upgrades.first();
}

void FakeSockJSServer::handleUpgrade(QTcpSocket* socket, const Request& request)
{
    m_current = takeUpgrade();
    switch (m_current) {
    case Open:
    case Mute:
    case CloseAfterUpgrade:
        return upgrade(socket);
    case OpenInSamePacket:
        return upgradeByHand(socket, request, m_firstFrames);
    case EndAfterUpgrade:
        upgradeByHand(socket, request, {});
        return socket->disconnectFromHost();
    case ResetAfterUpgrade:
        upgradeByHand(socket, request, {});
        socket->flush();
        return reset(socket);
    case Refuse403:
        socket->write(answer("403 Forbidden", "no"));
        return;
    case Refuse404:
        socket->write(answer("404 Not Found", "none"));
        return;
    case Answer200:
        socket->write(answer("200 OK", "Welcome to SockJS!\n"));
        return;
    case AnswerGarbage:
        socket->write("\x16\x03\x01 not HTTP\r\n\r\n");
        return;
    case EndInstead:
        return socket->disconnectFromHost();
    case ResetInstead:
        return reset(socket);
    case Silent:
        m_waiting.append(socket);
        return;
    }
}

void FakeSockJSServer::upgrade(QTcpSocket* socket)
{
    socket->disconnect(socket); // from here on it belongs to its WebSocket
    m_webSockets.handleConnection(socket);
}

void FakeSockJSServer::upgradeByHand(QTcpSocket* socket, const Request& request, const QStringList& frames)
{
    socket->readAll();
    m_webSocket = nullptr;
    m_raw = socket;
    auto bytes = upgradeAnswer(request.headers.value("sec-websocket-key"));
    for (const auto& frame : frames)
        bytes += rawFrame(frame);
    socket->write(bytes);
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
