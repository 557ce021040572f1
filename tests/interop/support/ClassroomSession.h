#pragma once

#include <CalyxClient/PresenterClient>

#include <QUrl>

/// A teacher who has logged in to a classroom and started a session there; it is stopped when this object
/// goes.
class ClassroomSession
{
public:
    explicit ClassroomSession(const QUrl& classroom);

    PresenterClient& client() { return m_client; }
    /// Logs in and creates a session. False when the classroom refuses.
    bool create();
    /// create(), then starts the session; its live channel goes over a WebSocket and is not used further.
    bool start();
    QString token() const { return m_client.sessionToken(); }

private:
    PresenterClient m_client;
};
