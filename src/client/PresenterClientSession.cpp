#include "client/PresenterClientPrivate.h"

#include "base/Diagnostics.h"
#include "base/JsonVariant.h"
#include "client/ServiceEnvelope.h"
#include "collab/PresenterCollab.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

namespace {

using JsonVariant::text;
using ServiceEnvelope::text;

QString sessionBody(const QString& sessionToken)
{
    return QStringLiteral(R"({"sessionToken":"%0"})").arg(sessionToken);
}

} // namespace

QString PresenterClient::sessionCode() const
{
    return d->sessionCode;
}

QString PresenterClient::sessionToken() const
{
    return d->sessionToken;
}

QList<Calyx::Learner> PresenterClient::learners() const
{
    return d->learners;
}

bool PresenterClient::doStartSession(QString)
{
    const QPointer<PresenterClient> self(this);
    doGetUserName();
    if (self && !d->loggedIn)
        reLogin();
    if (!self || !d->loggedIn)
        return false;
    d->sessionToken = QString();
    d->sessionCode = QString();
    d->lastError = QString();
    return d->post("/tavisto/session/create", QStringLiteral("{}"), &PresenterClient::sessionSuccessResponse,
                   &PresenterClient::sessionFailureResponse) &&
           d->lastError.isNull() && !d->sessionCode.isNull();
}

void PresenterClient::sessionSuccessResponse(QString body)
{
    bool ok = false;
    const QVariantMap envelope = ServiceEnvelope::parse(body, &ok);
    if (ok)
        d->sessionCode = text(ServiceEnvelope::data(envelope), "sessionCode");
}

void PresenterClient::sessionFailureResponse(QNetworkReply*, QString body)
{
    d->readErrorKey(body);
}

bool PresenterClient::doGetLearners()
{
    if (d->sessionToken.isNull()) {
        qCDebug(diagnostics) << "[PresenterClient] No session to get users for!";
        return false;
    }
    return d->post("/tavisto/session/getusers", sessionBody(d->sessionToken),
                   &PresenterClient::getLearnersResponse);
}

void PresenterClient::getLearnersResponse(QString body)
{
    const QJsonValue users =
        ServiceEnvelope::object(body).value(QLatin1String("data")).toObject().value(QLatin1String("users"));
    if (!users.isArray())
        return;
    d->learners.clear();
    const QJsonArray entries = users.toArray();
    d->learners.reserve(entries.size());
    for (const QJsonValue& entry : entries) {
        const QJsonObject user = entry.toObject();
        if (text(user, "mode") == QLatin1String("learner"))
            d->learners.append(
                Learner(text(user, "userToken"), text(user, "userName"), text(user, "deviceType")));
    }
}

bool PresenterClient::doStopSession()
{
    if (d->sessionToken.isNull()) {
        qCDebug(diagnostics) << "[PresenterClient] No session to stop!";
        return false;
    }
    const QPointer<PresenterClient> self(this);
    if (d->collab)
        d->collab->close();
    if (!self || !d->post("/tavisto/session/stop", sessionBody(d->sessionToken), nullptr))
        return false;
    qCDebug(diagnostics) << "[PresenterClient] Stopping session, closing websocket...";
    d->sessionToken = QString();
    d->sessionCode = QString();
    return true;
}
