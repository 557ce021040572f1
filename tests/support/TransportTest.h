#pragma once

#include "support/ScriptedHttpServer.h"
#include "support/TransportSession.h"
#include "transport/XHRRequest.h"

#include <QObject>

/// Base of the transport's tests, each of which starts servers and transports of its own.
class TransportTest : public QObject
{
    Q_OBJECT

protected:
    using Server = ScriptedHttpServer;
    using Session = TransportSession;
    using Transport = SockJSXHRPolling;

    const QString sessionPath = TransportSession::path();
    /// What the transport logs when a request comes too early or too late.
    const QString closedLine = QStringLiteral("[SockJSXHRPolling] Can't make request when in closed state!");

private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("http_proxy");
        qRegisterMetaType<QStringMap>("QStringMap");
    }
};
