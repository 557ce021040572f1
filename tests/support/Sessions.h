#pragma once

#include <CalyxClient/PresenterClient>

#include <QString>

/// Brings a client to where it has a session, by the replies that it would get.
namespace Sessions {

constexpr char STOP[] = "/tavisto/session/stop";
constexpr char CREATED[] = R"({"data":{"sessionCode":"123456"}})";

inline void createSession(PresenterClient& client)
{
    client.sessionSuccessResponse(QString::fromLatin1(CREATED));
}

inline void openSession(PresenterClient& client, const QString& token = QStringLiteral("T"))
{
    createSession(client);
    client.sessionStartSuccessResponse(QStringLiteral(R"({"data":{"sessionToken":"%1"}})").arg(token));
}

} // namespace Sessions
