#include "interop/support/ClassroomSession.h"

#include <CalyxClient/PresenterCollab>

ClassroomSession::ClassroomSession(const QUrl& classroom) : m_client(nullptr, classroom.toString()) {}

bool ClassroomSession::create()
{
    return m_client.doLogin(QStringLiteral("teacher"), QStringLiteral("chalk")) &&
           m_client.doStartSession(QString());
}

bool ClassroomSession::start()
{
    m_client.setSockJSOverrideProtocols({QStringLiteral("websocket")});
    PresenterCollab* collab = nullptr;
    if (!create() || !m_client.startWebsocket(&collab))
        return false;
    delete collab;
    return !token().isEmpty();
}
