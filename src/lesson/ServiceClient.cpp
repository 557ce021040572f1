#include "lesson/ServiceClient.h"

#include "client/ServiceEnvelope.h"

#include <QNetworkAccessManager>
#include <QPointer>

#include <utility>

namespace Calyx {

namespace {

using ServiceEnvelope::text;

// Networks that want a login of their own answer every request, with a page or JSON of their own.
bool isEnvelope(const QVariantMap& map)
{
    return map.contains(QStringLiteral("success")) || map.contains(QStringLiteral("errorMsgKeys")) ||
           map.contains(QStringLiteral("infoMsgKeys"));
}

} // namespace

ServiceClient::Reply ServiceClient::ask(const QString& path, const QString& body)
{
    m_reply = Reply();
    for (int attempt = 0; attempt < 2 && m_reply.isRedirect; ++attempt) {
        doRequest(true, QUrl(server() + path), body, static_cast<SuccessHandler>(&ServiceClient::readSuccess),
                  static_cast<FailureHandler>(&ServiceClient::readFailure), false);
    }
    return m_reply;
}

void ServiceClient::readSuccess(QString body)
{
    m_reply.error = QNetworkReply::NoError;
    readBody(body);
}

void ServiceClient::readFailure(QNetworkReply* reply, QString body)
{
    m_reply.error = reply->error();
    readBody(body);
}

void ServiceClient::readBody(const QString& body)
{
    const QVariantMap envelope = ServiceEnvelope::parse(body);
    m_reply.isRedirect = false; // which moves the address, and calls nobody
    m_reply.isEnvelope = isEnvelope(envelope);
    m_reply.data = ServiceEnvelope::data(envelope);
    m_reply.key = envelope.value(QStringLiteral("errorMsgKeys")).toList().value(0).toString();
}

LessonError::Kind ServiceClient::probe()
{
    const Reply reply = ask(QStringLiteral("/tavisto"), QString());
    return reply.isEnvelope ? LessonError::NoError : kindOf(reply);
}

ServiceClient::Reply ServiceClient::askUsers(const QString& sessionToken, QList<User>* users)
{
    const Reply reply = ask(QStringLiteral("/tavisto/session/getusers"),
                            QStringLiteral(R"({"sessionToken":"%0"})").arg(sessionToken));
    const QVariantList entries = reply.data.value(QStringLiteral("users")).toList();
    for (const QVariant& entry : entries) {
        const QVariantMap user = entry.toMap();
        users->append({Learner(text(user, "userToken"), text(user, "userName"), text(user, "deviceType")),
                       text(user, "mode")});
    }
    return reply;
}

bool ServiceClient::startAgain(const QString& code, PresenterCollab** collab)
{
    if (!lastError().isNull())
        checkServer(QString(), QString()); // or that key refuses the start
    sessionSuccessResponse(QStringLiteral(R"({"data":{"sessionCode":"%0"}})").arg(code));
    return startWebsocket(collab);
}

// What an answer does not name, the client takes for null.
void ServiceClient::forgetSession()
{
    sessionSuccessResponse(QStringLiteral("{}"));
    sessionStartSuccessResponse(QStringLiteral("{}"));
}

void ServiceClient::abortRequests()
{
    const auto* manager = findChild<QNetworkAccessManager*>();
    if (!manager)
        return;
    QList<QPointer<QNetworkReply>> replies;
    const QList<QNetworkReply*> children = manager->findChildren<QNetworkReply*>();
    for (QNetworkReply* reply : children)
        replies.append(reply);
    for (const QPointer<QNetworkReply>& reply : std::as_const(replies)) {
        if (reply && reply->isRunning())
            reply->abort();
    }
}

LessonError::Kind ServiceClient::kindOf(const Reply& reply) const
{
    if (!reply.key.isEmpty())
        return kindOf(reply.key);
    switch (reply.error) {
    case QNetworkReply::SslHandshakeFailedError: // also of somebody who speaks no TLS
        return lastError().isEmpty() ? LessonError::NotTheService : kindOf(lastError());
    case QNetworkReply::OperationCanceledError: // it took too long
    case QNetworkReply::TimeoutError:
    case QNetworkReply::InternalServerError:
    case QNetworkReply::ServiceUnavailableError:
    case QNetworkReply::UnknownServerError: // 502 and 504 of a balancer's
        return LessonError::NoAnswer;
    case QNetworkReply::NoError:
        return LessonError::NotTheService;
    default:
        return reply.error < QNetworkReply::ContentAccessDenied ? LessonError::Unreachable
                                                                : LessonError::NotTheService;
    }
}

LessonError::Kind ServiceClient::kindOf(const QString& key)
{
    static const QPair<const char*, LessonError::Kind> kinds[] = {
        {"SSLRootCertificateMissing", LessonError::UnknownAuthority},
        {"login.error.bad", LessonError::BadCredentials},
        {"login.oauth.error.bad", LessonError::BadCredentials},
        {"login.error.required", LessonError::LoggedOutByService},
        {"session.error.unknown", LessonError::SessionGone}};
    for (const auto& [begin, kind] : kinds) {
        if (key.startsWith(QLatin1String(begin)))
            return kind;
    }
    return LessonError::Refused;
}

} // namespace Calyx
