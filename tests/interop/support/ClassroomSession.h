#pragma once

#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>

#include <QUrl>

/// A teacher who has logged in to a classroom and started a session there; it is stopped when this object
/// goes.
class ClassroomSession
{
public:
    explicit ClassroomSession(const QUrl& classroom) : m_client(nullptr, classroom.toString()) {}

    PresenterClient& client() { return m_client; }
    /// Logs in and creates a session. False when the classroom refuses.
    bool create() { return m_client.doLogin("teacher", "chalk") && m_client.doStartSession(QString()); }
    /// create(), then starts the session; its live channel goes over a WebSocket and is not used further.
    bool start()
    {
        m_client.setSockJSOverrideProtocols({"websocket"});
        PresenterCollab* collab = nullptr;
        if (!create() || !m_client.startWebsocket(&collab))
            return false;
        delete collab;
        return !token().isEmpty();
    }
    QString token() const { return m_client.sessionToken(); }

private:
    PresenterClient m_client;
};
