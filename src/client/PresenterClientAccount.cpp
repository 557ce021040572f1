#include "client/PresenterClient.h"

#include "client/ServiceEnvelope.h"

namespace {

constexpr int keepAliveInterval = 60000; // ms

const char loginPath[] = "/tavisto/login/submit";

QString callbackPath(const QString& provider)
{
    return QStringLiteral("/tavisto/login/oauth/%1/callback").arg(provider);
}

QString firstText(const QVariant& list)
{
    return list.toList().value(0).toString();
}

// The user's registration data with our field as its last member: behind the last text in it.
QString withSourceSystem(QString registration)
{
    const int lastQuote = registration.lastIndexOf(QLatin1Char('"'));
    return registration.insert(lastQuote + 1, QStringLiteral(R"(,"sourceSystem":"Lumora")"));
}

} // namespace

bool PresenterClient::doLogin(QString userId, QString password)
{
    startLogin();
    m_userId = userId;
    m_password = password;
    const QString body = QStringLiteral(R"({"userId":"%0","password":"%1","sourceSystem":"Lumora"})");
    return post(loginPath, body.arg(userId, password), &PresenterClient::loginSuccessResponse,
                &PresenterClient::loginFailureResponse) &&
           finishLogin();
}

bool PresenterClient::doLogin(QString userId, QString deviceId, QString deviceAccessToken)
{
    startLogin();
    m_userId = userId;
    m_deviceId = deviceId;
    m_deviceAccessToken = deviceAccessToken;
    const QString body =
        QStringLiteral(R"({"userId":"%0","deviceId":"%1","deviceAccessToken":"%2","sourceSystem":"Lumora"})");
    return post(loginPath, body.arg(userId, deviceId, deviceAccessToken),
                &PresenterClient::loginSuccessResponse, &PresenterClient::loginFailureResponse) &&
           finishLogin();
}

bool PresenterClient::doLoginWithOAuth(QString provider, QString code, QString& registration)
{
    startLogin();
    m_registration = QString();
    m_oauthProvider = provider;
    m_oauthCode = code;
    const bool isFirstStep = registration.isEmpty();
    const QString path =
        isFirstStep ? callbackPath(provider) : QStringLiteral("/tavisto/register/oauth/submit");
    const QString firstBody = QStringLiteral(R"({"code":"%0","callbackUrl":"%1","sourceSystem":"Lumora"})");
    const QString body =
        isFirstStep ? firstBody.arg(code, callbackUrl(provider)) : withSourceSystem(registration);
    if (!post(path, body, &PresenterClient::loginSuccessResponse, &PresenterClient::loginFailureResponse))
        return false;
    finishLogin();
    registration = m_registration;
    return m_loggedIn;
}

QString PresenterClient::doGetAccessToken(QString userId, QString password, QString deviceId,
                                          QString deviceName)
{
    m_userId = userId;
    m_password = password;
    const QString body = QStringLiteral(
        R"({"userId":"%0","password":"%1","deviceId":"%2","deviceName":"%3","sourceSystem":"Lumora"})");
    if (!post(loginPath, body.arg(userId, password, deviceId, deviceName),
              &PresenterClient::getDeviceAccessTokenResponse))
        return QString();
    return m_newDeviceAccessToken;
}

QString PresenterClient::doGetOAuthAccessToken(QString provider, QString code, QString deviceId,
                                               QString deviceName, QString& registration)
{
    m_oauthProvider = provider;
    m_oauthCode = code;
    const QString body = QStringLiteral(
        R"({"code":"%0","callbackUrl":"%1","deviceId":"%2","deviceName":"%3","sourceSystem":"Lumora"})");
    if (!post(callbackPath(provider), body.arg(code, callbackUrl(provider), deviceId, deviceName),
              &PresenterClient::getDeviceAccessTokenResponse))
        return QString();
    registration = m_registration;
    return m_newDeviceAccessToken;
}

QString PresenterClient::doGetUserName()
{
    if (!post("/tavisto/login/user", QStringLiteral("{}"), &PresenterClient::userNameResponse))
        return QString();
    return m_userId;
}

bool PresenterClient::doLogout()
{
    const QPointer<PresenterClient> self(this);
    m_pingTimer.stop();
    if (!m_sessionCode.isNull() || !m_sessionToken.isNull())
        doStopSession();
    return self && post("/tavisto/login/logout", QStringLiteral("{}"), &PresenterClient::logoutResponse) &&
           !m_loggedIn;
}

void PresenterClient::reLogin()
{
    if (m_userId.isEmpty())
        return;
    if (!m_password.isEmpty()) {
        doLogin(m_userId, m_password);
    } else if (!m_deviceId.isEmpty() && !m_deviceAccessToken.isEmpty()) {
        doLogin(m_userId, m_deviceId, m_deviceAccessToken);
    } else if (!m_oauthProvider.isEmpty() && !m_oauthCode.isEmpty()) {
        QString registration;
        doLoginWithOAuth(m_oauthProvider, m_oauthCode, registration);
    }
}

void PresenterClient::sendKeepAlive()
{
    post("/tavisto/login/keepSessionAlive", QString(), &PresenterClient::serverCheckResponse);
}

void PresenterClient::startLogin()
{
    m_lastError = QString();
    m_loggedIn = false;
}

bool PresenterClient::finishLogin()
{
    if (m_loggedIn)
        m_pingTimer.start(keepAliveInterval);
    return m_loggedIn;
}

// Only this one provider wants the slash.
QString PresenterClient::callbackUrl(const QString& provider) const
{
    return provider == QLatin1String("facebook") ? m_server + QLatin1Char('/') : m_server;
}

void PresenterClient::loginSuccessResponse(QString body)
{
    const QVariantMap envelope = ServiceEnvelope::parse(body);
    const QVariant messages = envelope.value(QStringLiteral("infoMsgs"));
    if (messages.canConvert<QVariantList>()) {
        if (firstText(messages).contains(QLatin1String("success")))
            m_loggedIn = true;
        return;
    }
    QString key;
    if (!m_loggedIn) {
        key = firstText(envelope.value(QStringLiteral("infoMsgKeys")));
        if (key.contains(QLatin1String("success")))
            m_loggedIn = true;
        if (!m_loggedIn)
            return;
    }
    if (!m_oauthProvider.isEmpty() && !m_oauthCode.isEmpty() && key.contains(QLatin1String("registration"))) {
        m_loggedIn = false;
        readRegistration(body);
    }
}

// The raw text of "data", without the brace that closes the envelope. Its place is compared with 0, not with
// -1: in a body without "data" the text starts at position 6, and hosts have come to see that.
void PresenterClient::readRegistration(const QString& body)
{
    const QString key = QStringLiteral("\"data\":");
    const int index = body.indexOf(key);
    if (index != 0)
        m_registration = body.mid(index + key.size(), body.size() - index - key.size() - 1);
}

void PresenterClient::loginFailureResponse(QNetworkReply*, QString body)
{
    readErrorKey(body);
}

void PresenterClient::getDeviceAccessTokenResponse(QString body)
{
    const QVariantMap data = ServiceEnvelope::data(ServiceEnvelope::parse(body));
    m_newDeviceAccessToken = data.value(QStringLiteral("deviceAccessToken")).toString();
    m_loggedIn = !m_newDeviceAccessToken.isEmpty();
    if (!m_loggedIn)
        readRegistration(body);
}

void PresenterClient::userNameResponse(QString body)
{
    const QVariantMap data = ServiceEnvelope::data(ServiceEnvelope::parse(body));
    m_userId = data.value(QStringLiteral("userLoginId")).toString();
    m_loggedIn = !m_userId.isEmpty();
}

void PresenterClient::logoutResponse(QString body)
{
    bool ok = false;
    ServiceEnvelope::parse(body, &ok);
    if (ok)
        m_loggedIn = false;
}
