#include "interop/support/Servers.h"

void Servers::addRows(const QStringList& transports)
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("transport");
    for (const char* server : {"sockjs", "sockjs-go"}) {
        for (const QString& transport : transports)
            QTest::addRow("%s, %s", server, qPrintable(transport))
                << QString::fromLatin1(server) << transport;
    }
}

QByteArray Servers::start(Peer* peer, const QStringList& options)
{
    QFETCH(QString, server);
    QString error;
    peer->setProgram(server == QLatin1String("sockjs-go") ? Peers::goBus(&error, options)
                                                          : Peers::nodeBus(options));
    if (!error.isNull())
        return error.toUtf8();
    return peer->start();
}
