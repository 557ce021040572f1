#include "client/PresenterClientPrivate.h"

#include "base/Diagnostics.h"
#include "client/ServiceEnvelope.h"
#include "collab/CalyxCollabMessage.h"
#include "collab/PresenterCollab.h"
#include "transport/SockJSConnector.h"

namespace {

// Sets member from "data" -> key of a reply that parses; an absent key gives an empty value.
void readText(const QString& body, const char* key, QString& member)
{
    bool ok = false;
    const QVariantMap envelope = ServiceEnvelope::parse(body, &ok);
    if (ok)
        member = ServiceEnvelope::text(ServiceEnvelope::data(envelope), key);
}

} // namespace

QString PresenterClient::userToken() const
{
    return d->userToken;
}

QString PresenterClient::collabServerUrl() const
{
    return d->collabServerUrl;
}

QStringList PresenterClient::sockJSProtocols() const
{
    return d->sockJSProtocols;
}

PresenterCollab* PresenterClient::collab() const
{
    return d->collab;
}

void PresenterClient::setSockJSOverrideProtocols(QStringList protocols)
{
    d->sockJSOverrideProtocols = protocols;
}

void PresenterClient::setStallLimit(int msecs)
{
    d->stallLimit = msecs;
}

void PresenterClient::setAsynchronousConnect(bool asynchronous)
{
    d->asynchronousConnect = asynchronous;
}

void PresenterClient::setEndsWithLostRequest(bool ends)
{
    d->endsWithLostRequest = ends;
}

void PresenterClient::setOpenLimit(int msecs)
{
    d->openLimit = msecs;
}

void PresenterClient::setSilenceLimit(int msecs)
{
    d->silenceLimit = msecs;
}

void PresenterClient::setPingInterval(int msecs)
{
    d->pingInterval = msecs;
}

void PresenterClient::setPongLimit(int msecs)
{
    d->pongLimit = msecs;
}

void PresenterClient::setRandomSessionIds(bool random)
{
    d->randomSessionIds = random;
}

bool PresenterClient::startWebsocket(PresenterCollab** collab)
{
    const QString nothing = QStringLiteral("{}");
    if (!d->post("/tavisto/session/getcollabserverurl", nothing, &PresenterClient::getCollabUrlResponse))
        return false;
    if (d->collabServerUrl.isEmpty()) {
        qCDebug(diagnostics) << "ERROR: Failed to get collab server URL!";
        return false;
    }
    if (!d->post("/tavisto/config/findTenantFeatureDetails", nothing,
                 &PresenterClient::getTenantFeatureDetailsResponse))
        return false;
    if (!d->sockJSOverrideProtocols.isEmpty())
        d->sockJSProtocols = d->sockJSOverrideProtocols;

    const QString startBody =
        QStringLiteral(R"({"sessionCode": "%0","serverUrl":"%1","sourceSystem":"Lumora","version":"%2"})");
    if (!d->post(
            "/tavisto/session/start",
            startBody.arg(d->sessionCode, d->collabServerUrl, Calyx::CalyxCollabMessage::PROTOCOL_VERSION),
            &PresenterClient::sessionStartSuccessResponse, &PresenterClient::sessionStartFailureResponse) ||
        !d->lastError.isNull())
        return false;

    const QString joinBody = QStringLiteral(
        R"({"userName":"SessionStarter","sessionCode":"%0","mode":"presenter","deviceName":"%1_SessionStarter","deviceType":"presenter"})");
    if (!d->post("/tavisto/classroom/session/join", joinBody.arg(d->sessionCode, d->userId),
                 &PresenterClient::sessionJoinResponse))
        return false;
    qCDebug(diagnostics) << d->sessionToken;
    qCDebug(diagnostics) << d->collabServerUrl;
    return d->openCollab(collab);
}

bool PresenterClient::Private::openCollab(PresenterCollab** opened)
{
    const QPointer<PresenterCollab> created =
        new PresenterCollab(q, collabServerUrl, sessionCode, sessionToken, userToken);
    collab = created;
    SockJSConnector* connector = created->connector();
    connector->setStallLimit(stallLimit);
    connector->setAsynchronousConnect(asynchronousConnect);
    connector->setEndsWithLostRequest(endsWithLostRequest);
    connector->setOpenLimit(openLimit);
    connector->setSilenceLimit(silenceLimit);
    connector->setPingInterval(pingInterval);
    if (pongLimit > 0)
        connector->setPongLimit(pongLimit);
    connector->setRandomSessionIds(randomSessionIds);
    created->open(sockJSProtocols);
    if (!created) // deleted, or we were and it with us, while it was opening
        return false;
    if (opened)
        *opened = created;
    return true;
}

void PresenterClient::getCollabUrlResponse(QString body)
{
    readText(body, "url", d->collabServerUrl);
}

void PresenterClient::getTenantFeatureDetailsResponse(QString body)
{
    bool ok = false;
    const QVariantMap envelope = ServiceEnvelope::parse(body, &ok);
    if (ok)
        d->sockJSProtocols =
            ServiceEnvelope::data(envelope).value(QStringLiteral("sockJSProtocols")).toStringList();
}

void PresenterClient::sessionStartSuccessResponse(QString body)
{
    readText(body, "sessionToken", d->sessionToken);
}

void PresenterClient::sessionStartFailureResponse(QNetworkReply*, QString body)
{
    d->readErrorKey(body);
}

void PresenterClient::sessionJoinResponse(QString body)
{
    readText(body, "userToken", d->userToken);
}
