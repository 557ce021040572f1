#pragma once

#include <QHash>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

class QRandomGenerator;
class RelayConnection;

/// A relay on a free port of loopback in front of a server there, which does to the connections through it
/// what networks do. It lives on the test's thread: its event loop has to run.
class Relay : public QObject
{
    Q_OBJECT

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
    Q_ENUM(Mishap)

    explicit Relay(quint16 server, QObject* parent = nullptr);
    ~Relay() override;

    QUrl url() const;
    /// What happens from now on. Of Finish, Reset and AtByte nothing remains.
    void have(Mishap mishap);
    /// Nothing happens any more; what was held passes.
    void recover();
    /// The next mishap of \p script, which is over some tenths of a second later: then isIdle() is true
    /// again.
    void haveNext(QRandomGenerator* script);

    /// Milliseconds that everything takes in either direction, and how many bytes a connection carries in
    /// each second; 0 for no limit.
    void setPace(int delay, int bytesPerSecond);

    bool isFrozen() const { return m_isFrozen; }
    bool isIdle() const { return m_isIdle; }

private:
    friend class RelayConnection;
    void take();
    void cut(bool resets);

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
