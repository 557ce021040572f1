#pragma once

#include "support/HttpServer.h"
#include "support/WaitFor.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QWebSocket>
#include <QWebSocketServer>

#include <algorithm>
#include <utility>

/// The server's end of SockJS on loopback and a free port, for tests that script what a server does.
///
/// WebSockets are those of a real QWebSocketServer; polling and streaming get just enough HTTP. Every request
/// and every frame is recorded.
class FakeSockJSServer : public HttpServer
{
    Q_OBJECT

public:
    /// What happens to a WebSocket upgrade.
    enum Upgrade {
        Open,              ///< upgraded, then the first frames
        OpenInSamePacket,  ///< upgraded, with the first frames in the same packet
        Mute,              ///< upgraded, and not a frame
        Deaf,              ///< upgraded, and not a byte is read from then on
        CloseAfterUpgrade, ///< upgraded, then closed as WebSockets are
        EndAfterUpgrade,   ///< upgraded, then the connection ends
        ResetAfterUpgrade, ///< upgraded, then the connection is reset
        Refuse403,
        Refuse404,
        Answer200,
        AnswerGarbage,
        EndInstead,   ///< the connection ends without an answer
        ResetInstead, ///< the connection is reset
        Silent        ///< no answer, until answerUpgrade()
    };
    Q_ENUM(Upgrade)

    struct Request : HttpServer::Request
    {
        /// The SockJS session id in the path.
        QString sessionId() const { return part(-2, -2); }
        /// The path up to the session id.
        QString base() const { return part(0, -3); }

    private:
        QString part(int first, int last) const
        {
            return QString::fromUtf8(path).section(QLatin1Char('/'), first, last);
        }
    };

    FakeSockJSServer() : m_webSockets(QStringLiteral("fake"), QWebSocketServer::NonSecureMode)
    {
        connect(&m_webSockets, &QWebSocketServer::newConnection, this, &FakeSockJSServer::onWebSocket);
    }
    ~FakeSockJSServer() override
    {
        // The ends of these sockets are no news to a server that is going.
        const auto webSockets = findChildren<QWebSocket*>();
        for (auto* socket : webSockets)
            socket->disconnect(this);
    }

    quint16 port() const { return serverPort(); }
    QUrl url(const QString& path = QString(), const QString& scheme = QStringLiteral("http")) const
    {
        QUrl url(QStringLiteral("%1://127.0.0.1:%2").arg(scheme).arg(port()));
        url.setPath(path);
        return url;
    }

    /// One for each upgrade, in order; the last one stands for all that follow.
    void setUpgrades(const QList<Upgrade>& upgrades) { m_upgrades = upgrades; }
    void setUpgrade(Upgrade upgrade) { setUpgrades({upgrade}); }
    /// What a new session gets at once; "o" unless set.
    void setFirstFrames(const QStringList& frames) { m_firstFrames = frames; }
    /// Upgrades the connection that has been left without an answer longest.
    void answerUpgrade()
    {
        while (!m_waiting.isEmpty()) {
            const auto waiting = m_waiting.takeFirst();
            m_current = Open;
            if (waiting.first)
                return upgrade(waiting.first, waiting.second);
        }
    }
    /// No new connections from now on.
    void stopListening() { close(); }

    QList<Request> requests() const { return m_requests; }
    QStringList paths() const
    {
        QStringList paths;
        for (const auto& request : m_requests)
            paths.append(QString::fromUtf8(request.path));
        return paths;
    }
    /// Number of requests whose path ends with \p suffix.
    int count(const QString& suffix) const
    {
        const auto all = paths();
        return int(
            std::count_if(all.begin(), all.end(), [&](const auto& path) { return path.endsWith(suffix); }));
    }

    /// The next frame that a client sent; waits for it. Null when none comes.
    QString nextFrame()
    {
        if (!waitFor([this] { return !m_unread.isEmpty(); }))
            return QString();
        return m_unread.takeFirst();
    }
    /// nextFrame(), taken out of its one-element array.
    QString nextMessage()
    {
        const auto messages = QJsonDocument::fromJson(nextFrame().toUtf8()).array();
        return messages.size() == 1 ? messages.first().toString() : QString();
    }
    /// Frames that nobody has asked for yet.
    QStringList unreadFrames() const { return m_unread; }

    /// Sends \p frame in the newest session.
    void inject(const QString& frame)
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
    /// Sends \p messages as one "a" frame.
    void injectMessages(const QStringList& messages)
    {
        const QJsonDocument list(QJsonArray::fromStringList(messages));
        inject(QLatin1Char('a') + QString::fromUtf8(list.toJson(QJsonDocument::Compact)));
    }
    /// Sends \p bytes as a binary message.
    void injectBinary(const QByteArray& bytes)
    {
        if (m_webSocket)
            m_webSocket->sendBinaryMessage(bytes);
    }
    /// Sends a part of a frame in the newest session, whose WebSocket has come up OpenInSamePacket.
    void injectHalf()
    {
        if (m_raw)
            m_raw->write(rawFrame(QStringLiteral("a[\"half\"]")).left(5));
        else if (m_stream)
            m_stream->write("ff\r\na[\"ha");
        else if (m_poll)
            m_poll->write(HttpText::plain("a[\"half\"]\n").chopped(5));
    }
    /// Answers a ping, in the newest session, which answers none by itself: its WebSocket has come up
    /// OpenInSamePacket.
    void injectPong()
    {
        if (m_raw)
            m_raw->write(QByteArray("\x8a\0", 2));
    }
    /// Closes the newest session: its WebSocket, or with a close frame.
    void closeSession()
    {
        if (m_webSocket)
            m_webSocket->close();
        else if (m_raw)
            m_raw->disconnectFromHost();
        else
            inject(QStringLiteral("c[3000,\"Go away!\"]"));
    }
    /// Leaves "/xhr_send" without an answer from now on.
    void holdPosts() { m_holdsPosts = true; }

    /// Sockets that clients have open.
    int openConnections() const
    {
        const auto sockets = findChildren<QTcpSocket*>();
        return int(std::count_if(sockets.begin(), sockets.end(), [](const auto* socket) {
            return socket->state() != QAbstractSocket::UnconnectedState;
        }));
    }
    /// WebSockets that have ended.
    int endedSessions() const { return m_ended; }
    /// What the last of them was closed with.
    int closeCode() const { return m_closeCode; }

Q_SIGNALS:
    /// A request has come and has not been answered yet.
    void requested(QString path);

protected:
    void onRequest(HttpConnection* connection, const HttpServer::Request& received) override
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

private:
    static QByteArray upgradeAnswer(const QByteArray& key)
    {
        const auto accept =
            QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11", QCryptographicHash::Sha1);
        return "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
               "Sec-WebSocket-Accept: " +
               accept.toBase64() + "\r\n\r\n";
    }

    // One unmasked text frame; long enough for what tests send by hand.
    static QByteArray rawFrame(const QString& text)
    {
        const auto payload = text.toUtf8();
        Q_ASSERT(payload.size() < 126);
        return QByteArray("\x81", 1) + char(payload.size()) + payload;
    }

    void handlePost(QTcpSocket* socket, const Request& request)
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
    void handleUpgrade(HttpConnection* connection, const Request& request)
    {
        using Script = HttpScript;
        using HttpText::plain;
        static const QMap<Upgrade, HttpScript::Script> scripts = {
            {EndAfterUpgrade, {Script::close()}},
            {ResetAfterUpgrade, {Script::reset()}},
            {Refuse403, {Script::send(plain("no", {}, "403 Forbidden"))}},
            {Refuse404, {Script::send(plain("none", {}, "404 Not Found"))}},
            {Answer200, {Script::send(plain("Welcome to SockJS!\n"))}},
            {AnswerGarbage, {Script::send("\x16\x03\x01 not HTTP\r\n\r\n")}},
            {EndInstead, {Script::close()}},
            {ResetInstead, {Script::reset()}}};
        m_current = takeUpgrade();
        if (m_current == Silent)
            m_waiting.append({connection, request});
        else if (m_current == Open || m_current == Mute || m_current == CloseAfterUpgrade)
            return upgrade(connection, request);
        else if (m_current <= ResetAfterUpgrade) // which come first
            upgradeByHand(connection, request);
        connection->append(scripts.value(m_current));
    }
    Upgrade takeUpgrade() { return m_upgrades.size() > 1 ? m_upgrades.takeFirst() : m_upgrades.first(); }
    void upgrade(HttpConnection* connection, const Request& request)
    {
        m_webSockets.handleConnection(handOver(connection, request));
    }
    void upgradeByHand(HttpConnection* connection, const Request& request)
    {
        m_webSocket = nullptr;
        m_raw = connection->socket();
        disconnect(m_raw, &QTcpSocket::readyRead, connection, nullptr); // nobody reads frames
        auto bytes = upgradeAnswer(request.header("sec-websocket-key"));
        if (m_current == OpenInSamePacket) {
            for (const auto& frame : std::as_const(m_firstFrames))
                bytes += rawFrame(frame);
        } else if (m_current == Deaf) {
            m_raw->setReadBufferSize(1);
        }
        m_raw->write(bytes);
        m_raw->flush();
    }
    void onWebSocket()
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
            for (const auto& frame : std::as_const(m_firstFrames))
                socket->sendTextMessage(frame);
        }
    }
    void beginStream()
    {
        m_stream->write(HttpText::chunkedHead() + HttpText::chunk(HttpText::prelude()));
        while (!m_pollFrames.isEmpty())
            m_stream->write(HttpText::chunk(m_pollFrames.takeFirst().toUtf8() + '\n'));
    }
    void answerPoll()
    {
        if (m_poll && !m_pollFrames.isEmpty()) {
            m_poll->write(HttpText::plain(m_pollFrames.takeFirst().toUtf8() + '\n'));
            m_poll = nullptr;
        }
    }

    QWebSocketServer m_webSockets;
    QList<Upgrade> m_upgrades{Open};
    Upgrade m_current = Open;
    QStringList m_firstFrames{QStringLiteral("o")};
    QList<Request> m_requests;
    QStringList m_unread;
    QPointer<QWebSocket> m_webSocket;
    QPointer<QTcpSocket> m_raw;                                // a WebSocket that was upgraded by hand
    QPointer<QTcpSocket> m_poll;                               // a poll without an answer
    QPointer<QTcpSocket> m_stream;                             // a streamed answer
    QList<QPair<QPointer<HttpConnection>, Request>> m_waiting; // upgrades without an answer
    QStringList m_pollFrames;
    QString m_polledSession;
    QSet<QString> m_pastSessions;
    bool m_holdsPosts = false;
    int m_ended = 0;
    int m_closeCode = 0;
};
