#pragma once

#include "support/HttpServer.h"

#include <QDateTime>
#include <QNetworkProxy>
#include <QQueue>
#include <QRandomGenerator>
#include <QUrl>

#include <utility>

/// A relay on a free port of loopback in front of a server there, which does to the connections through it
/// what networks do. It lives on the test's thread: its event loop has to run.
class Relay : public QObject
{
public:
    enum Mishap {
        Finish, ///< every connection is closed
        Reset,  ///< every connection is reset
        AtByte, ///< the connection through which a client gets something next is reset in the middle of that
        Refuse, ///< every connection is reset, and nobody takes new ones
        Freeze, ///< nothing passes, and nothing is closed
        Slow,   ///< everything takes its time
        Stall   ///< in the middle of what a client gets next, everything freezes
    };

    explicit Relay(quint16 server, QObject* parent = nullptr) : QObject(parent), m_server(server)
    {
        connect(&m_listener, &QTcpServer::newConnection, this, &Relay::take);
        m_listener.setProxy(QNetworkProxy::NoProxy);
        if (m_listener.listen(QHostAddress::LocalHost))
            m_port = m_listener.serverPort();
    }
    ~Relay() override { qDeleteAll(QList<Connection*>(m_connections)); }

    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_port)); }
    /// What happens from now on. Of Finish, Reset and AtByte nothing remains.
    void have(Mishap mishap)
    {
        m_isFrozen = mishap == Freeze;
        m_halvesNext = mishap == AtByte || mishap == Stall;
        m_cutsHalf = mishap == AtByte;
        if (mishap == Slow)
            setPace(slowDelay, slowRate);
        if (mishap == Refuse)
            m_listener.close();
        if (mishap == Finish || mishap == Reset || mishap == Refuse)
            cut(mishap != Finish);
    }
    /// Nothing happens any more; what was held passes.
    void recover()
    {
        m_isFrozen = m_halvesNext = false;
        m_isIdle = true;
        setPace(0, 0);
        if (!m_listener.isListening() && !m_listener.listen(QHostAddress::LocalHost, m_port))
            qWarning("The relay's port has been taken.");
        const QList<Connection*> connections = m_connections;
        for (Connection* connection : connections)
            connection->passBoth();
    }
    /// The next mishap of \p script, which is over some tenths of a second later: then isIdle() is true
    /// again.
    void haveNext(QRandomGenerator* script)
    {
        constexpr int most = 500; // ms
        have(static_cast<Mishap>(script->bounded(Stall + 1)));
        m_isIdle = false;
        QTimer::singleShot(script->bounded(most), this, &Relay::recover);
    }

    /// Milliseconds that everything takes in either direction, and how many bytes a connection carries in
    /// each second; 0 for no limit.
    void setPace(int delay, int bytesPerSecond)
    {
        m_delay = delay;
        m_rate = bytesPerSecond;
    }

    bool isFrozen() const { return m_isFrozen; }
    bool isIdle() const { return m_isIdle; }

private:
    static constexpr int slowDelay = 100;  // ms
    static constexpr int slowRate = 20000; // bytes in a second
    static constexpr int second = 1000;

    /// One connection: what comes in at either end goes out at the other.
    class Connection : public QObject
    {
    public:
        Connection(Relay* relay, QTcpSocket* client)
            : QObject(relay), m_relay(relay), m_ends{client, &m_server}
        {
            relay->m_connections.append(this);
            client->setParent(this);
            m_server.setProxy(QNetworkProxy::NoProxy);
            m_server.connectToHost(QHostAddress(QHostAddress::LocalHost), relay->m_server);
            for (int end = 0; end < 2; ++end) {
                connect(m_ends[end], &QTcpSocket::readyRead, this, [this, end] { pass(end); });
                connect(m_ends[end], &QTcpSocket::disconnected, this, [this, end] { pass(end); });
                m_due[end].setSingleShot(true);
                m_due[end].setTimerType(Qt::PreciseTimer);
                connect(&m_due[end], &QTimer::timeout, this, [this, end] { deliver(end); });
            }
            connect(&m_server, &QTcpSocket::errorOccurred, this, [this] { pass(1); });
        }

        ~Connection() override
        {
            m_relay->m_connections.removeOne(this);
            for (QTcpSocket* end : m_ends)
                end->disconnect(this); // their destructors tell
        }

        void cut(bool resets)
        {
            for (QTcpSocket* end : m_ends) {
                end->disconnect(this);
                connect(end, &QTcpSocket::disconnected, this, &Connection::goWhenCut);
                if (resets)
                    resetConnection(end);
                else
                    end->disconnectFromHost(); // once all is out
            }
            goWhenCut();
        }

        void passBoth()
        {
            pass(0);
            pass(1);
        }

    private:
        struct Piece
        {
            qint64 due; // ms
            QByteArray bytes;
        };

        void goWhenCut()
        {
            const auto isOver = [](QTcpSocket* end) {
                return end->state() == QAbstractSocket::UnconnectedState;
            };
            if (isOver(m_ends[0]) && isOver(m_ends[1]))
                deleteLater();
        }

        void pass(int from)
        {
            if (m_relay->m_isFrozen)
                return;
            const QByteArray bytes = m_ends[from]->readAll();
            if (!bytes.isEmpty())
                queue(from, bytes);
            deliver(from);
        }

        void queue(int from, const QByteArray& bytes)
        {
            const qint64 now = QDateTime::currentMSecsSinceEpoch();
            const int takes = m_relay->m_rate > 0 ? bytes.size() * second / m_relay->m_rate : 0;
            m_last[from] = qMax(now + m_relay->m_delay, m_last[from]) + takes;
            m_pieces[from].enqueue({m_last[from], bytes});
        }

        void deliver(int from)
        {
            QTcpSocket* const to = m_ends[1 - from];
            while (!m_pieces[from].isEmpty() && !m_relay->m_isFrozen) {
                const qint64 wait = m_pieces[from].head().due - QDateTime::currentMSecsSinceEpoch();
                if (wait > 0) {
                    m_due[from].start(int(wait));
                    return;
                }
                if (from == 1 && std::exchange(m_relay->m_halvesNext, false)) {
                    halve(to);
                    return;
                }
                to->write(m_pieces[from].dequeue().bytes);
            }
            closeAfter(from);
        }

        void halve(QTcpSocket* to)
        {
            QByteArray& bytes = m_pieces[1].head().bytes;
            const int half = bytes.size() / 2;
            to->write(bytes.left(half));
            to->flush();
            bytes.remove(0, half);
            m_relay->m_isFrozen = !m_relay->m_cutsHalf;
            if (m_relay->m_cutsHalf)
                cut(true);
        }

        void closeAfter(int from)
        {
            const bool isConnecting = m_ends[from]->state() == QAbstractSocket::HostLookupState ||
                                      m_ends[from]->state() == QAbstractSocket::ConnectingState;
            if (m_ends[from]->state() != QAbstractSocket::ConnectedState && !isConnecting &&
                !m_relay->m_isFrozen)
                cut(false);
        }

        Relay* m_relay;
        QTcpSocket m_server;
        QTcpSocket* m_ends[2];
        QQueue<Piece> m_pieces[2];
        qint64 m_last[2] = {0, 0};
        QTimer m_due[2];
    };

    void take()
    {
        while (QTcpSocket* const client = m_listener.nextPendingConnection()) {
            new Connection(this, client);
        }
    }
    void cut(bool resets)
    {
        const QList<Connection*> connections = m_connections;
        for (Connection* connection : connections)
            connection->cut(resets);
    }

    QList<Connection*> m_connections;
    QTcpServer m_listener;
    quint16 m_server;
    quint16 m_port = 0;
    int m_delay = 0;
    int m_rate = 0;
    bool m_isIdle = true;
    bool m_isFrozen = false;
    bool m_halvesNext = false;
    bool m_cutsHalf = false; // else it stalls
};
