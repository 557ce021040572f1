#pragma once

#include <CalyxClient/PresenterClient>

#include <QString>

/// The ways to log in, with the requests that they make and answers to them.
namespace Logins {

constexpr char SUBMIT[] = "/tavisto/login/submit";
constexpr char CALLBACK[] = "/tavisto/login/oauth/google/callback";
constexpr char REGISTER[] = "/tavisto/register/oauth/submit";
constexpr char USER[] = "/tavisto/login/user";
constexpr char LOGOUT[] = "/tavisto/login/logout";
constexpr char KEEP_ALIVE[] = "/tavisto/login/keepSessionAlive";

constexpr char SUCCESS[] = R"({"success":true,"infoMsgKeys":["login.success"]})";
constexpr char REFUSED[] = R"({"success":false,"errorMsgKeys":["login.error"]})";

inline bool loginByPassword(PresenterClient& client)
{
    return client.doLogin(QStringLiteral("u"), QStringLiteral("p"));
}

inline bool loginByDevice(PresenterClient& client)
{
    return client.doLogin(QStringLiteral("u"), QStringLiteral("d"), QStringLiteral("t"));
}

inline bool loginWithOAuth(PresenterClient& client)
{
    QString registration;
    return client.doLoginWithOAuth(QStringLiteral("google"), QStringLiteral("c"), registration);
}

inline bool registerWithOAuth(PresenterClient& client)
{
    QString registration = QStringLiteral(R"({"a":"b"})");
    return client.doLoginWithOAuth(QStringLiteral("google"), QStringLiteral("c"), registration);
}

inline QString getOAuthToken(PresenterClient& client, QString* registration = nullptr)
{
    QString ignored;
    return client.doGetOAuthAccessToken(QStringLiteral("google"), QStringLiteral("c"), QStringLiteral("d"),
                                        QStringLiteral("n"), registration ? *registration : ignored);
}

} // namespace Logins

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
