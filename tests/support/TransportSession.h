#pragma once

#include "support/ScriptedHttpServer.h"
#include "transport/SockJSXHRPolling.h"

#include <QPointer>
#include <QStringList>

#include <functional>

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
