#pragma once

#include <QEventLoop>

/// The event loop in which a transport waits for its connection, or a client for a reply.
class InnerLoop
{
public:
    explicit InnerLoop(QEventLoop::ProcessEventsFlags flags = QEventLoop::AllEvents) : m_flags(flags) {}

    /// Runs until quit(). False when the application quits first.
    bool run();
    /// Ends run(); before it, has it return at once.
    void quit();
    /// Whether quit() has been called.
    bool hasQuit() const { return m_hasQuit; }

private:
    QEventLoop m_loop;
    const QEventLoop::ProcessEventsFlags m_flags;
    bool m_hasQuit = false;
};
