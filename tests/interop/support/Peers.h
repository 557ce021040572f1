#pragma once

#include "interop/support/Peer.h"

/// The programs that the tests talk to.
namespace Peers {

/// A SockJS server that does what is published to it (see peers/bus.js), on Node with npm's `sockjs`.
Peer::Program nodeBus(const QStringList& options = {});
/// The same in Go with `sockjs-go`. Built when it is first asked for.
Peer::Program goBus(const QStringList& options = {});
/// The local classroom.
Peer::Program classroom(const QStringList& options = {});

/// haproxy in front of the \p servers. \p values: lines of configuration, see config/haproxy.
Peer::Program haproxy(const QList<quint16>& servers, const QMap<QString, QString>& values = {});
/// haproxy in front of \p server: it lets only those in who come from the forward proxy.
Peer::Program door(quint16 server);
/// nginx in front of \p server. \p options: lines of its location.
Peer::Program nginx(quint16 server, const QString& options = QString());
/// A forward proxy. \p options: lines of configuration.
Peer::Program tinyproxy(const QString& options = QString());

} // namespace Peers
