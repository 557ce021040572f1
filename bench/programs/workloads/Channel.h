#pragma once

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

/// A collaboration whose connector is fed by hand, as transports feed it.
class Channel
{
public:
    Channel() { feed(QStringLiteral("o")); }

    void feed(const QString& text) { (collab.connector()->*Slots::text())(text); }

    PresenterCollab collab{nullptr, QStringLiteral("http://127.0.0.1"), QStringLiteral("123456"),
                           QStringLiteral("6f1c0a52-session"), QStringLiteral("user")};

private:
    // The slot that transports deliver to is protected.
    struct Slots : SockJSConnector
    {
        static void (SockJSConnector::*text())(QString) { return &Slots::onTextMessageReceived; }
    };
};
