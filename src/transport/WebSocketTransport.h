#pragma once

#include "transport/SockJSTransport.h"

#include <QTimer>

class InnerLoop;
class QNetworkProxy;
class QUrl;
class QWebSocket;

/// A SockJS session over a WebSocket.
///
/// What the socket tells comes through the event loop, so that no slot of a host's ever runs on the socket's
/// own stack: an event loop in such a slot would delete a socket that was released meanwhile, below whose
/// functions it runs.
class WebSocketTransport : public SockJSTransport
{
    Q_OBJECT

public:
    /// A transport that is not started.
    explicit WebSocketTransport(QObject* parent);
    /// Closes the socket once what was sent is out; emits nothing.
    ~WebSocketTransport() override;

    /// Sends a ping every \p interval milliseconds once the socket is up. Where the far end has answered one,
    /// it counts as gone when nothing comes in for \p limit milliseconds after another. Before start().
    void setPings(int interval, int limit);

    /// Opens \p url, and waits in an event loop until the server has taken the upgrade or refused it, for as
    /// long as it takes. False when it was not taken, when the application quits, and when the transport has
    /// been retired or deleted meanwhile. Frames may be told before it returns, the end is not.
    bool start(const QUrl& url, const QNetworkProxy& proxy);
    /// Whether start() ended because the application quits.
    bool wasInterrupted() const { return m_interrupted; }

    bool isUp() const override { return m_up; }
    void sendTextMessage(QString frame) override;
    void retire() override;

Q_SIGNALS:
    /// The far end has answered a ping.
    void ponged();

private:
    void listen();
    bool waitForUpgrade();
    void onUpgraded();
    void onFailed();
    void onEnded();
    void onPong();
    void sendPing();
    void releaseSocket();

    QWebSocket* m_socket = nullptr;
    InnerLoop* m_wait = nullptr; // while start() waits
    bool m_interrupted = false;
    bool m_up = false;
    bool m_endHeld = false; // the end has come, and is told once start() has returned
    bool m_answersPings = false;
    QTimer m_pings{this};
    QTimer m_silence{this}; // since a ping
};
