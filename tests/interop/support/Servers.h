#pragma once

#include "interop/support/Peers.h"

#include <QTest>

/// The rows of a conformance suite: every server with every transport, or with those given.
namespace Servers {

void addRows(const QStringList& transports);
/// Makes \p peer the server of the present row and starts it. What went wrong, for the test's message; empty
/// when nothing did.
QByteArray start(Peer* peer, const QStringList& options = {});

} // namespace Servers
