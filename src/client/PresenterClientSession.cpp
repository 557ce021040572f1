#include "client/PresenterClient.h"

#include "base/Diagnostics.h"
#include "client/ServiceEnvelope.h"
#include "collab/PresenterCollab.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

namespace {

QString sessionBody(const QString& sessionToken)
{
    return QStringLiteral(R"({"sessionToken":"%0"})").arg(sessionToken);
}

QString text(const QVariantMap& map, const char* key)
{
    return map.value(QLatin1String(key)).toString();
}

QString text(const QJsonObject& object, const char* key)
{
    const QJsonValue value = object.value(QLatin1String(key));
    return value.isString() ? value.toString() : value.toVariant().toString();
}

} // namespace

bool PresenterClient::doStartSession(QString)
{
    const QPointer<PresenterClient> self(this);
    doGetUserName();
    if (self && !m_loggedIn)
        reLogin();
    if (!self || !m_loggedIn)
        return false;
    m_sessionToken = QString();
    m_sessionCode = QString();
    m_lastError = QString();
    return post("/tavisto/session/create", QStringLiteral("{}"), &PresenterClient::sessionSuccessResponse,
                &PresenterClient::sessionFailureResponse) &&
           m_lastError.isNull() && !m_sessionCode.isNull();
}

void PresenterClient::sessionSuccessResponse(QString body)
{
    bool ok = false;
    const QVariantMap envelope = ServiceEnvelope::parse(body, &ok);
    if (ok)
        m_sessionCode = text(ServiceEnvelope::data(envelope), "sessionCode");
}

void PresenterClient::sessionFailureResponse(QNetworkReply*, QString body)
{
    readErrorKey(body);
}

bool PresenterClient::doGetLearners()
{
    if (m_sessionToken.isNull()) {
        qCDebug(diagnostics) << "[PresenterClient] No session to get users for!";
        return false;
    }
    return post("/tavisto/session/getusers", sessionBody(m_sessionToken),
                &PresenterClient::getLearnersResponse);
}

void PresenterClient::getLearnersResponse(QString body)
{
    const QJsonValue users =
        ServiceEnvelope::object(body).value(QLatin1String("data")).toObject().value(QLatin1String("users"));
    if (!users.isArray())
        return;
    m_learners.clear();
    const QJsonArray entries = users.toArray();
    m_learners.reserve(entries.size());
    for (const QJsonValue& entry : entries) {
        const QJsonObject user = entry.toObject();
        if (text(user, "mode") == QLatin1String("learner"))
            m_learners.append(
                Learner(text(user, "userToken"), text(user, "userName"), text(user, "deviceType")));
    }
}

bool PresenterClient::doStopSession()
{
    if (m_sessionToken.isNull()) {
        qCDebug(diagnostics) << "[PresenterClient] No session to stop!";
        return false;
    }
    const QPointer<PresenterClient> self(this);
    if (m_collab)
        m_collab->close();
    if (!self || !post("/tavisto/session/stop", sessionBody(m_sessionToken), nullptr))
        return false;
    qCDebug(diagnostics) << "[PresenterClient] Stopping session, closing websocket...";
    m_sessionToken = QString();
    m_sessionCode = QString();
    return true;
}
