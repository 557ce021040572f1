#pragma once

#include <QSet>

/// The TCP connections of this process at one moment.
///
/// For those of Qt's HTTP stack, which gives no access to its sockets. Where the system does not list a
/// process's descriptors (Windows) there are none.
class OpenConnections
{
public:
    /// Those that there are now.
    OpenConnections();

    /// Switches Nagle's algorithm off on each connection that has been made since \p before and ends at one
    /// of \p ports.
    static void sendAtOnce(const OpenConnections& before, const QSet<int>& ports);

private:
    QSet<quint64> m_sockets; // by the numbers that the system gives them, which it does not use again soon
};
