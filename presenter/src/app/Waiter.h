#pragma once

#include <QObject>

#include <functional>

class QEventLoop;

/// The one place where a command waits: in an event loop, so that everything else goes on.
class Waiter : public QObject
{
    Q_OBJECT

public:
    enum Result { Met, TimedOut, Interrupted };

    /// Waits until \p condition, asked now and after each poke(), is true, for \p msecs at most.
    Result until(const std::function<bool()>& condition, qint64 msecs);
    /// Waits for \p msecs. False when it was interrupted.
    bool pause(int msecs);

    bool isWaiting() const { return m_loop; }
    /// Something has changed that a condition may depend on.
    void poke();
    /// Ends the wait under way, if any.
    void interrupt();
    /// Ends the wait under way and lets all later ones end at once.
    void shutDown();

private:
    QEventLoop* m_loop = nullptr;
    std::function<bool()> m_condition;
    bool m_down = false;
};
