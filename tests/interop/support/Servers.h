#pragma once

#include "interop/support/Peers.h"

#include <QTest>

/// The rows of a conformance suite: every server with every transport, or with those given.
namespace Servers {

inline void addRows(const QStringList& transports)
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("transport");
    for (const char* server : {"sockjs", "sockjs-go"}) {
        for (const QString& transport : transports)
            QTest::addRow("%s, %s", server, qPrintable(transport))
                << QString::fromLatin1(server) << transport;
    }
}

/// Makes \p peer the server of the present row and starts it. What went wrong, for the test's message; empty
/// when nothing did.
inline QByteArray start(Peer* peer, const QStringList& options = {})
{
    QFETCH(QString, server);
    QString error;
    peer->setProgram(server == QLatin1String("sockjs") ? Peers::nodeBus(options)
                                                       : Peers::goBus(&error, options));
    return error.isEmpty() ? peer->start() : error.toUtf8();
}

} // namespace Servers
