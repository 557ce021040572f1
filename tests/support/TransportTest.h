#pragma once

#include "support/ScriptedHttpServer.h"
#include "support/TransportSession.h"
#include "transport/XHRRequest.h"

#include <QObject>

#include <memory>

/// Base of the transport's tests: each function gets a new server and a transport that has not been started.
class TransportTest : public QObject
{
    Q_OBJECT

protected:
    using Server = ScriptedHttpServer;
    using Session = TransportSession;
    using Transport = SockJSXHRPolling;

    bool start(bool streaming = false) { return m_session->start(*m_server, streaming); }
    void send(const QString& text = QStringLiteral("[]")) { m_session->transport->sendTextMessage(text); }

    const QString sessionPath = TransportSession::path();
    /// What the transport logs when a request comes too early or too late.
    const QString closedLine = QStringLiteral("[SockJSXHRPolling] Can't make request when in closed state!");

    std::unique_ptr<Server> m_server;
    std::unique_ptr<Session> m_session;

private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("http_proxy");
        qRegisterMetaType<QStringMap>("QStringMap");
    }

    void init()
    {
        m_server = std::make_unique<Server>();
        m_session = std::make_unique<Session>();
    }

    void cleanup()
    {
        m_session.reset();
        m_server.reset();
    }
};
