#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include <memory>

class SockJSConnectorPrivate;

/// The client end of a SockJS connection: picks a transport from an ordered list, takes inbound frames apart
/// and wraps outbound messages.
///
/// Lives on the thread that created it. Any operation, close() and deletion included, may be called from any
/// slot connected to its signals.
class CALYXCLIENT_EXPORT SockJSConnector : public QObject
{
    Q_OBJECT

public:
    /// The transports. The values can be combined as bits; 0 is none of them.
    enum PROTOCOL_TYPE {
        WEBSOCKET = 1,     ///< "websocket"
        XHR_STREAMING = 2, ///< "xhr-streaming"
        XHR_POLLING = 4    ///< "xhr-polling"
    };
    Q_ENUM(PROTOCOL_TYPE)

    /// A connector without a connection. Sends nothing.
    explicit SockJSConnector(QObject* parent = nullptr);
    /// Gives every socket and thread back and emits nothing. Messages that were sent still go out.
    ~SockJSConnector() override;

    /// Each transport with the name that services and hosts use for it.
    static QMap<PROTOCOL_TYPE, QString> PROTOCOL_TYPE_STR();
    /// WebSocket, XHR streaming, XHR polling, in this order.
    static QList<PROTOCOL_TYPE> GetDefaultProtocols();
    /// The transports named in \p names, in that order, duplicates kept, unknown names (case counts) left
    /// out; the default list when nothing is left.
    static QList<PROTOCOL_TYPE> GetProtocolsFromStrings(QStringList names);

    /// Opens a new session at \p url (ws, wss, http or https; the port defaults to 80 or 443), trying \p
    /// protocols in order until the first that opens.
    ///
    /// Blocks until a transport is up or all have failed: a WebSocket for as long as its server takes, in a
    /// nested event loop that processes everything; an XHR transport for up to 30 seconds, without events.
    /// Always returns false: success is told by connected(), and that all transports failed by nothing. A
    /// connection that is open is closed first.
    bool open(QUrl url, QList<PROTOCOL_TYPE> protocols);

    /// Closes the connection, and ends an open() that is still waiting. On an open one closed(false) follows,
    /// once, from the event loop.
    void close();

    /// Sends \p message as one SockJS frame; dropped without a word when no transport is up. Unless
    /// \p bSkipActivity is set, the connection counts as used at this time.
    void sendMessage(QString message, bool bSkipActivity);
    /// Sends \p message as JSON text, as sendMessage(text, false).
    void sendMessage(QMap<QString, QVariant> message);

    /// Whether the SockJS session is open: its open frame has come and its end has not.
    bool isConnected() const;
    /// The id of the session last opened, 8 characters; null before the first open(). A transport that is
    /// tried after one that was given up at the open limit opens a session of its own.
    QString sessionId() const;
    /// The transport that open() has started last, or that was fallen back to; 0, none of them, before the
    /// first.
    PROTOCOL_TYPE protocol() const;
    /// How many times open() has begun a connection: tells one from another.
    int openCount() const;

    /// Milliseconds that a response with a length or with chunks may pause over XHR before it is discarded:
    /// 2,000 unless set. Counts from the next open(); has no effect on a WebSocket.
    void setStallLimit(int msecs);
    /// What setStallLimit() has set, in milliseconds.
    int stallLimit() const;

    /// Makes the connection of an XHR transport in a nested event loop, as a WebSocket's, so that close(),
    /// another open() and deletion end an open() at once. Off by default: it blocks then. Counts from the
    /// next open().
    void setAsynchronousConnect(bool asynchronous);
    /// What setAsynchronousConnect() has set.
    bool asynchronousConnect() const;

    /// Has an XHR transport end, as by the server, where a message is lost: one that was sent, when its post
    /// has failed or was not answered for 30 seconds (nothing else goes out then); or one that may have come,
    /// when the connection was lost while the server could respond. Off by default: nothing tells of the loss
    /// then. Counts from the next open().
    void setEndsWithLostRequest(bool ends);
    /// What setEndsWithLostRequest() has set.
    bool endsWithLostRequest() const;

    /// Milliseconds that a transport may take from its start to its open frame. One that takes longer is
    /// given up without closed(), and the next of the list is tried. 0, the default, sets no limit. Counts
    /// from the next open().
    void setOpenLimit(int msecs);
    /// What setOpenLimit() has set, in milliseconds.
    int openLimit() const;

    /// Milliseconds without anything from the far end, heartbeats included, after which a transport that is
    /// up counts as ended by the far end. A frame counts when it is complete. Has to be longer than the time
    /// between two heartbeats of the server (25 seconds are usual). 0, the default, sets no limit. Counts
    /// from the next open().
    void setSilenceLimit(int msecs);
    /// What setSilenceLimit() has set, in milliseconds.
    int silenceLimit() const;

    ///@{
    /// Milliseconds from one ping to the next on a WebSocket; 0, the default, sends none. Once the far end
    /// has answered one, it counts as gone when nothing has come from it for the pong limit (10 seconds
    /// unless set) after a ping. Counts from the next open(); has no effect on the XHR transports.
    void setPingInterval(int msecs);
    void setPongLimit(int msecs);
    ///@}
    ///@{
    /// What setPingInterval() and setPongLimit() have set, in milliseconds.
    int pingInterval() const;
    int pongLimit() const;
    ///@}

    /// Takes session ids from the system's random generator. The usual ones follow from the second in which
    /// they are made: another may guess them, and two processes can meet. Off by default.
    void setRandomSessionIds(bool random);
    /// What setRandomSessionIds() has set.
    bool randomSessionIds() const;

Q_SIGNALS:
    /// The session is open.
    void connected();
    /// One message of the session, decoded from its frame.
    void sockJSMessage(QString message);
    /// Declared for hosts that connect to it; never emitted.
    void error(int errorCode);
    /// The connection has ended. \p bClosedForInactivity: because nothing but pings was sent for over an
    /// hour.
    void closed(bool bClosedForInactivity);

protected Q_SLOTS:
    /// Takes the session for open, whatever the server says: connected().
    void onConnected();
    /// A transport has ended: falls back from a WebSocket to XHR polling before the open frame, else
    /// closed().
    void onClosed();
    /// Takes one SockJS frame apart: connected() at the open frame, sockJSMessage() for each message.
    void onTextMessageReceived(QString message);
    /// Closes a connection that has not been used for over an hour.
    void onTimeout();
    ///@{
    /// Declared for hosts that connect to them; without effect.
    void openstate1();
    void openstate2();
    ///@}

private:
    const std::unique_ptr<SockJSConnectorPrivate> d;
};
