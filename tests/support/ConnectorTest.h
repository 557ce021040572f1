#pragma once

#include "support/ConnectorProbe.h"
#include "support/FakeSockJSServer.h"
#include "support/LogRecorder.h"
#include "support/WallClock.h"
#include "transport/SockJSConnector.h"

#include <QObject>
#include <QPointer>

#include <memory>

Q_DECLARE_METATYPE(QList<SockJSConnector::PROTOCOL_TYPE>)

/// Base of the connector's tests: each function gets a new connector, a new server, and an empty log.
class ConnectorTest : public QObject
{
    Q_OBJECT

protected:
    using Server = FakeSockJSServer;
    using Protocol = SockJSConnector::PROTOCOL_TYPE;
    using Protocols = QList<Protocol>;

    void setUp()
    {
        m_server = std::make_unique<Server>();
        m_log = std::make_unique<LogRecorder>();
        m_connector = new SockJSConnector;
        m_probe = std::make_unique<ConnectorProbe>(m_connector);
    }
    void tearDown()
    {
        delete m_connector;
        m_probe.reset();
        m_log.reset();
        m_server.reset();
        WallClock::release();
    }
    void forgetLog() { m_log->forget(); }

    /// Opens the session at the server's \p path over a WebSocket.
    bool openSession(const QString& path = QString())
    {
        return m_probe->openSession(m_server->url(path), webSocket);
    }
    /// A message from the server: what came before it has been handled when it arrives.
    bool syncInbound()
    {
        const auto text = QStringLiteral("sync %1").arg(++m_syncs);
        m_server->injectMessages({text});
        return waitFor([&] { return m_probe->messages().contains(text); });
    }
    /// A message to the server: what the server got before it is what was sent before it.
    bool syncOutbound()
    {
        const auto text = QStringLiteral("sync %1").arg(++m_syncs);
        m_connector->sendMessage(text, true);
        return m_server->nextMessage() == text;
    }
    /// A whole session of another connector: what was on its way before has happened by its end.
    bool anotherConnectorOpens()
    {
        m_server->setUpgrade(Server::Open);
        SockJSConnector other;
        if (!ConnectorProbe(&other).openSession(m_server->url("/other"), webSocket))
            return false;
        other.sendMessage("other", true);
        return m_server->nextMessage() == QLatin1String("other");
    }

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
