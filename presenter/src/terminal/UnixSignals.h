#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

/// Unix signals as a Qt signal, from the event loop.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    /// Watches SIGINT, SIGTERM, SIGHUP, SIGWINCH and SIGCONT, and ignores SIGPIPE. The third of the first
    /// three ends the program at once, with the terminal as it is now: for when the clean end takes too long.
    UnixSignals();
    ~UnixSignals() override;

    /// The signals so far do not count for that.
    static void forgetRequests();

Q_SIGNALS:
    void received(int signal);

private:
    void read();

    std::unique_ptr<QSocketNotifier> m_notifier;
};
