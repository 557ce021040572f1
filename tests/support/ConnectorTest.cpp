#include "support/ConnectorTest.h"

#include "support/WaitFor.h"
#include "support/WallClock.h"

void ConnectorTest::setUp()
{
    m_server = std::make_unique<Server>();
    m_log = std::make_unique<LogRecorder>();
    m_connector = new SockJSConnector;
    m_probe = std::make_unique<ConnectorProbe>(m_connector);
}

void ConnectorTest::tearDown()
{
    delete m_connector;
    m_probe.reset();
    m_log.reset();
    m_server.reset();
    WallClock::release();
}

void ConnectorTest::forgetLog()
{
    m_log.reset(); // the old one has to go before the new one takes its place
    m_log = std::make_unique<LogRecorder>();
}

bool ConnectorTest::openSession(const QString& path)
{
    return m_probe->openSession(m_server->url(path), webSocket);
}

bool ConnectorTest::syncInbound()
{
    const auto text = QStringLiteral("sync %1").arg(++m_syncs);
    m_server->injectMessages({text});
    return waitFor([&] { return m_probe->messages().contains(text); });
}

bool ConnectorTest::syncOutbound()
{
    const auto text = QStringLiteral("sync %1").arg(++m_syncs);
    m_connector->sendMessage(text, true);
    return m_server->nextMessage() == text;
}

bool ConnectorTest::anotherConnectorOpens()
{
    m_server->setUpgrade(Server::Open);
    SockJSConnector other;
    ConnectorProbe probe(&other);
    if (!probe.openSession(m_server->url(QStringLiteral("/other")), webSocket))
        return false;
    other.sendMessage(QStringLiteral("other"), true);
    return m_server->nextMessage() == QLatin1String("other");
}
