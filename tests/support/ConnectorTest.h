#pragma once

#include "support/ConnectorProbe.h"
#include "support/FakeSockJSServer.h"
#include "support/LogRecorder.h"
#include "transport/SockJSConnector.h"

#include <QObject>
#include <QPointer>

#include <memory>

/// Base of the connector's tests: each function gets a new connector, a new server, and an empty log.
class ConnectorTest : public QObject
{
    Q_OBJECT

protected:
    using Server = FakeSockJSServer;
    using Protocol = SockJSConnector::PROTOCOL_TYPE;
    using Protocols = QList<Protocol>;

    void setUp();
    void tearDown();
    void forgetLog();

    /// Opens the session at the server's \p path over a WebSocket.
    bool openSession(const QString& path = QString());
    /// A message from the server: what came before it has been handled when it arrives.
    bool syncInbound();
    /// A message to the server: what the server got before it is what was sent before it.
    bool syncOutbound();
    /// A whole session of another connector: what was on its way before has happened by its end.
    bool anotherConnectorOpens();

    const Protocols webSocket{SockJSConnector::WEBSOCKET};
    const Protocols webSocketThenPolling{SockJSConnector::WEBSOCKET, SockJSConnector::XHR_POLLING};

    std::unique_ptr<Server> m_server;
    std::unique_ptr<LogRecorder> m_log;
    QPointer<SockJSConnector> m_connector;
    std::unique_ptr<ConnectorProbe> m_probe;

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

private:
    int m_syncs = 0;
};
