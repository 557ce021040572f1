#pragma once

#include "support/HttpServer.h"

#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QWebSocketServer>

class QWebSocket;

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

    FakeSockJSServer();
    ~FakeSockJSServer() override;

    quint16 port() const { return serverPort(); }
    QUrl url(const QString& path = QString(), const QString& scheme = QStringLiteral("http")) const;

    /// One for each upgrade, in order; the last one stands for all that follow.
    void setUpgrades(const QList<Upgrade>& upgrades) { m_upgrades = upgrades; }
    void setUpgrade(Upgrade upgrade) { setUpgrades({upgrade}); }
    /// What a new session gets at once; "o" unless set.
    void setFirstFrames(const QStringList& frames) { m_firstFrames = frames; }
    /// Upgrades the connection that has been left without an answer longest.
    void answerUpgrade();
    /// No new connections from now on.
    void stopListening() { close(); }

    QList<Request> requests() const { return m_requests; }
    QStringList paths() const;
    /// Number of requests whose path ends with \p suffix.
    int count(const QString& suffix) const;

    /// The next frame that a client sent; waits for it. Null when none comes.
    QString nextFrame();
    /// nextFrame(), taken out of its one-element array.
    QString nextMessage();
    /// Frames that nobody has asked for yet.
    QStringList unreadFrames() const { return m_unread; }

    /// Sends \p frame in the newest session.
    void inject(const QString& frame);
    /// Sends \p messages as one "a" frame.
    void injectMessages(const QStringList& messages);
    /// Sends \p bytes as a binary message.
    void injectBinary(const QByteArray& bytes);
    /// Sends a part of a frame in the newest session, whose WebSocket has come up OpenInSamePacket.
    void injectHalf();
    /// Answers a ping, in the newest session, which answers none by itself: its WebSocket has come up
    /// OpenInSamePacket.
    void injectPong();
    /// Closes the newest session: its WebSocket, or with a close frame.
    void closeSession();
    /// Ends all connections at once.
    void dropConnections();
    /// Leaves "/xhr_send" without an answer from now on.
    void holdPosts() { m_holdsPosts = true; }

    /// Sockets that clients have open.
    int openConnections() const;
    /// WebSockets that have ended.
    int endedSessions() const { return m_ended; }
    /// What the last of them was closed with.
    int closeCode() const { return m_closeCode; }

Q_SIGNALS:
    /// A request has come and has not been answered yet.
    void requested(QString path);

protected:
    void onRequest(HttpConnection* connection, const HttpServer::Request& request) override;

private:
    void handlePost(QTcpSocket* socket, const Request& request);
    void handleUpgrade(HttpConnection* connection, const Request& request);
    Upgrade takeUpgrade();
    void upgrade(HttpConnection* connection, const Request& request);
    void upgradeByHand(HttpConnection* connection, const Request& request, const QStringList& frames);
    void onWebSocket();
    void beginStream();
    void answerPoll();

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
