#include "support/ClientOperations.h"

#include "support/Logins.h"

#include <QPointer>

using namespace ClientOperations;

const char ClientOperations::ALL_IS_WELL[] =
    R"({"success":true,"infoMsgs":["success"],"data":{"deviceAccessToken":"A","userLoginId":"u",)"
    R"("sessionCode":"123456","users":[],"url":"http://127.0.0.1:1/","sockJSProtocols":["websocket"],)"
    R"("sessionToken":"T","userToken":"U","id":"i","path":"p"}})";

namespace {

void logIn(PresenterClient* client)
{
    client->loginSuccessResponse(QString::fromLatin1(ALL_IS_WELL));
}

void openSession(PresenterClient* client)
{
    logIn(client);
    Sessions::openSession(*client);
}

QVariant startWebsocket(PresenterClient* client)
{
    PresenterCollab* collab = nullptr;
    return client->startWebsocket(&collab) || collab;
}

QVariant upload(PresenterClient* client)
{
    QString id;
    QString path;
    return client->doUploadResource(QStringLiteral("f"), QByteArray("d"), &id, &path) || !id.isNull() ||
           !path.isNull();
}

} // namespace

QList<QPair<const char*, Operation>> ClientOperations::operations()
{
    using Client = PresenterClient*;
    const QString u = QStringLiteral("u");
    return {
        {"checkServer", {[=](Client c) { return c->checkServer(u, u); }, {"/tavisto"}}},
        {"doLogin", {[=](Client c) { return c->doLogin(u, u); }, {"/tavisto/login/submit"}}},
        {"doLogin by device", {[=](Client c) { return c->doLogin(u, u, u); }, {"/tavisto/login/submit"}}},
        {"doLoginWithOAuth", {[](Client c) { return Logins::loginWithOAuth(*c); }, {Logins::CALLBACK}}},
        {"doLoginWithOAuth, registration",
         {[](Client c) { return Logins::registerWithOAuth(*c); }, {Logins::REGISTER}}},
        {"doGetAccessToken",
         {[=](Client c) { return c->doGetAccessToken(u, u, u, u); }, {"/tavisto/login/submit"}, ""}},
        {"doGetOAuthAccessToken",
         {[](Client c) { return Logins::getOAuthToken(*c); }, {Logins::CALLBACK}, ""}},
        {"doGetUserName", {[](Client c) { return c->doGetUserName(); }, {"/tavisto/login/user"}, ""}},
        {"sendKeepAlive",
         {[](Client c) { return c->sendKeepAlive(), QVariant(); },
          {"/tavisto/login/keepSessionAlive"},
          QVariant()}},
        {"doLogout", {[](Client c) { return c->doLogout(); }, {"/tavisto/login/logout"}, false, logIn}},
        {"doLogout in a session",
         {[](Client c) { return c->doLogout(); },
          {"/tavisto/session/stop", "/tavisto/login/logout"},
          false,
          openSession}},
        {"doStartSession",
         {[](Client c) { return c->doStartSession(QString()); },
          {"/tavisto/login/user", "/tavisto/session/create"},
          false,
          logIn}},
        {"doGetLearners",
         {[](Client c) { return c->doGetLearners(); }, {"/tavisto/session/getusers"}, true, openSession}},
        {"doStopSession",
         {[](Client c) { return c->doStopSession(); }, {"/tavisto/session/stop"}, true, openSession}},
        {"doUploadResource", {upload, {"/tavisto/resource/uploadResourceFile"}}},
    };
}

QList<QPair<const char*, Operation>> ClientOperations::chainedOperations()
{
    using Client = PresenterClient*;
    return {
        {"reLogin",
         {[](Client c) {
              const QPointer<PresenterClient> client(c);
              client->doGetAccessToken(QStringLiteral("u"), QStringLiteral("p"), QString(), QString());
              if (client)
                  client->reLogin();
              return QVariant();
          },
          {"/tavisto/login/submit", "/tavisto/login/submit"},
          QVariant()}},
        {"startWebsocket",
         {startWebsocket,
          {"/tavisto/session/getcollabserverurl", "/tavisto/config/findTenantFeatureDetails",
           "/tavisto/session/start", "/tavisto/classroom/session/join"},
          false,
          [](Client c) { Sessions::createSession(*c); }}},
        {"onPingTimer",
         {[](Client c) { return QMetaObject::invokeMethod(c, "onPingTimer"), QVariant(); },
          {"/tavisto/login/keepSessionAlive"},
          QVariant(),
          logIn}},
    };
}
