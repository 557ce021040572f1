#pragma once

#include "support/ScriptedHttpServer.h"
#include "transport/SockJSXHRPolling.h"
#include "transport/XHRRequest.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>

/// A transport with what it has told so far, for tests against a ScriptedHttpServer.
struct TransportSession
{
    static QString path() { return QStringLiteral("/p/eventbus/119/abcdefgh"); }

    TransportSession() : transport(new SockJSXHRPolling(nullptr))
    {
        using Transport = SockJSXHRPolling;
        QObject::connect(transport, &Transport::textMessageReceived, transport, [this](const QString& text) {
            texts.append(text);
            if (onText)
                onText();
        });
        QObject::connect(transport, &Transport::connectionClosed, transport, [this] {
            ++ends;
            if (onEnd)
                onEnd();
        });
    }
    ~TransportSession() { delete transport; }
    Q_DISABLE_COPY(TransportSession)

    bool start(const ScriptedHttpServer& server, bool streaming = false, bool secure = false)
    {
        return transport->start(QStringLiteral("127.0.0.1"), server.port(), secure, path(), streaming);
    }

    /// The poll that the transport writes; \p cookie is a whole line.
    static QByteArray pollText(const QByteArray& cookie = QByteArray())
    {
        return "POST /p/eventbus/119/abcdefgh/xhr HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: keep-alive\r\n"
               "Accept-Encoding: identity\r\nContent-Type: application/json\r\nContent-Length: 0\r\n" +
               cookie + "\r\n\r\n\r\n";
    }

    QObject context; ///< of what a test does meanwhile
    QPointer<SockJSXHRPolling> transport;
    QStringList texts;
    int ends = 0;
    std::function<void()> onText;
    std::function<void()> onEnd;
};

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
