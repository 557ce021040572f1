#pragma once

#include "interop/support/Host.h"
#include "interop/support/Peers.h"

#include <optional>

/// Base of the tests of a host with a bus, and perhaps with something in front of the bus: all that a
/// function has made goes after it.
class BusTest : public QObject
{
    Q_OBJECT

protected:
    /// Starts \p bus, and opens a host there.
    bool open(const Peer::Program& bus, const QString& transport)
    {
        m_bus.emplace(bus);
        m_host.emplace(m_bus->url());
        return m_host->open(transport);
    }
    /// The program that a row names: of \a servers.
    static Peer::Program server(const QString& name, const QStringList& options = {})
    {
        return name == servers.first() ? Peers::nodeBus(options) : Peers::goBus(options);
    }

    static inline const QStringList servers = {"sockjs", "sockjs-go"};

    std::optional<Peer> m_bus;
    std::optional<Peer> m_front;
    std::optional<Host> m_host;

protected Q_SLOTS:
    void cleanup()
    {
        m_host.reset();
        m_front.reset();
        m_bus.reset();
    }
};
