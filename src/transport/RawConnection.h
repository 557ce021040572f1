#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <atomic>

class InnerLoop;
class QSslSocket;
class QTcpSocket;

/// One TCP or TLS connection to one server, which can be made again and again, and waited for in an event
/// loop that other threads can end.
class RawConnection : public QObject
{
    Q_OBJECT

public:
    /// \p socket, a QSslSocket when \p secure, stays the caller's and lives on the thread of this object.
    RawConnection(QObject* parent, QTcpSocket* socket, const QString& server, int port, bool secure);

    /// Connects without events, within \p msecs, with TLS the handshake included.
    bool connectBlocking(int msecs);
    /// The same within the event loop. Given up when \p stop is set and wake() is called; sets it when the
    /// thread is to quit.
    bool connectWaiting(int msecs, std::atomic<bool>* stop);
    /// Ends the connection at once; it may be made again.
    void drop();

    bool isConnected() const;
    bool isUnconnected() const;
    /// Whether someone else has closed the socket, for good.
    bool isClosed() const;

    bool hasBytes() const;
    QByteArray readAll();
    void write(const QByteArray& bytes);

    /// Runs the event loop until the socket has news, wake() is called, or \p msecs have passed. False when
    /// the thread is to quit.
    bool wait(int msecs);

public Q_SLOTS:
    /// Ends wait(). From other threads by a queued call only.
    void wake();

private:
    void begin();
    bool isReady() const;

    QTcpSocket* m_socket;
    QSslSocket* m_tls; // the same one, or null
    QString m_server;
    quint16 m_port;
    bool m_dropped = false; // the socket is closed because this class closed it, or because it failed
    InnerLoop* m_wait = nullptr;
};
