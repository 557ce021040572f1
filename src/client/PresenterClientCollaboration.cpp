#include "client/PresenterClient.h"

#include "base/Diagnostics.h"
#include "client/ServiceEnvelope.h"
#include "collab/PresenterCollab.h"
#include "transport/SockJSConnector.h"

namespace {

// Sets member from "data" -> key of a reply that parses; an absent key gives an empty value.
void readText(const QString& body, const char* key, QString& member)
{
    bool ok = false;
    const QVariantMap envelope = ServiceEnvelope::parse(body, &ok);
    if (ok)
        member = ServiceEnvelope::data(envelope).value(QLatin1String(key)).toString();
}

} // namespace

void PresenterClient::setSockJSOverrideProtocols(QStringList protocols)
{
    m_sockJSOverrideProtocols = protocols;
}

void PresenterClient::setOpenLimit(int msecs)
{
    m_openLimit = msecs;
}

bool PresenterClient::startWebsocket(PresenterCollab** collab)
{
    const QString nothing = QStringLiteral("{}");
    if (!post("/tavisto/session/getcollabserverurl", nothing, &PresenterClient::getCollabUrlResponse))
        return false;
    if (m_collabServerUrl.isEmpty()) {
        qCDebug(diagnostics) << "ERROR: Failed to get collab server URL!";
        return false;
    }
    if (!post("/tavisto/config/findTenantFeatureDetails", nothing,
              &PresenterClient::getTenantFeatureDetailsResponse))
        return false;
    if (!m_sockJSOverrideProtocols.isEmpty())
        m_sockJSProtocols = m_sockJSOverrideProtocols;

    const QString startBody =
        QStringLiteral(R"({"sessionCode": "%0","serverUrl":"%1","sourceSystem":"Lumora","version":"%2"})");
    if (!post("/tavisto/session/start", startBody.arg(m_sessionCode, m_collabServerUrl, m_version),
              &PresenterClient::sessionStartSuccessResponse, &PresenterClient::sessionStartFailureResponse) ||
        !m_lastError.isNull())
        return false;

    const QString joinBody = QStringLiteral(
        R"({"userName":"SessionStarter","sessionCode":"%0","mode":"presenter","deviceName":"%1_SessionStarter","deviceType":"presenter"})");
    if (!post("/tavisto/classroom/session/join", joinBody.arg(m_sessionCode, m_userId),
              &PresenterClient::sessionJoinResponse))
        return false;
    qCDebug(diagnostics) << m_sessionToken;
    qCDebug(diagnostics) << m_collabServerUrl;
    return openCollab(collab);
}

bool PresenterClient::openCollab(PresenterCollab** collab)
{
    const QPointer<PresenterCollab> created =
        new PresenterCollab(this, m_collabServerUrl, m_sessionCode, m_sessionToken, m_userToken);
    m_collab = created;
    created->connector()->setOpenLimit(m_openLimit);
    created->open(m_sockJSProtocols);
    if (!created) // deleted, or we were and it with us, while it was opening
        return false;
    *collab = created;
    return true;
}

void PresenterClient::getCollabUrlResponse(QString body)
{
    readText(body, "url", m_collabServerUrl);
}

void PresenterClient::getTenantFeatureDetailsResponse(QString body)
{
    bool ok = false;
    const QVariantMap envelope = ServiceEnvelope::parse(body, &ok);
    if (ok)
        m_sockJSProtocols =
            ServiceEnvelope::data(envelope).value(QStringLiteral("sockJSProtocols")).toStringList();
}

void PresenterClient::sessionStartSuccessResponse(QString body)
{
    readText(body, "sessionToken", m_sessionToken);
}

void PresenterClient::sessionStartFailureResponse(QNetworkReply*, QString body)
{
    readErrorKey(body);
}

void PresenterClient::sessionJoinResponse(QString body)
{
    readText(body, "userToken", m_userToken);
}
