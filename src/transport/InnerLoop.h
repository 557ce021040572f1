#pragma once

#include <QEventLoop>

/// The event loop in which a transport waits for its connection. Processes everything.
class InnerLoop
{
public:
    /// Runs until quit(). False when the application quits first.
    bool run();
    /// Ends run(); before it, has it return at once.
    void quit();

private:
    QEventLoop m_loop;
    bool m_hasQuit = false;
};
