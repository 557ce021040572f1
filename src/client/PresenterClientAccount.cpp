#include "client/PresenterClientPrivate.h"

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
    const auto lastQuote = registration.lastIndexOf(QLatin1Char('"'));
    return registration.insert(lastQuote + 1, QStringLiteral(R"(,"sourceSystem":"Lumora")"));
}

} // namespace

QString PresenterClient::userId() const
{
    return d->userId;
}

QString PresenterClient::registration() const
{
    return d->registration;
}

bool PresenterClient::doLogin(QString userId, QString password)
{
    d->startLogin();
    d->userId = userId;
    d->password = password;
    const QString body = QStringLiteral(R"({"userId":"%0","password":"%1","sourceSystem":"Lumora"})");
    return d->post(loginPath, body.arg(userId, password), &PresenterClient::loginSuccessResponse,
                   &PresenterClient::loginFailureResponse) &&
           d->finishLogin();
}

bool PresenterClient::doLogin(QString userId, QString deviceId, QString deviceAccessToken)
{
    d->startLogin();
    d->userId = userId;
    d->deviceId = deviceId;
    d->deviceAccessToken = deviceAccessToken;
    const QString body =
        QStringLiteral(R"({"userId":"%0","deviceId":"%1","deviceAccessToken":"%2","sourceSystem":"Lumora"})");
    return d->post(loginPath, body.arg(userId, deviceId, deviceAccessToken),
                   &PresenterClient::loginSuccessResponse, &PresenterClient::loginFailureResponse) &&
           d->finishLogin();
}

bool PresenterClient::doLoginWithOAuth(QString provider, QString code, QString& registration)
{
    d->startLogin();
    d->registration = QString();
    d->oauthProvider = provider;
    d->oauthCode = code;
    const bool isFirstStep = registration.isEmpty();
    const QString path =
        isFirstStep ? callbackPath(provider) : QStringLiteral("/tavisto/register/oauth/submit");
    const QString firstBody = QStringLiteral(R"({"code":"%0","callbackUrl":"%1","sourceSystem":"Lumora"})");
    const QString body =
        isFirstStep ? firstBody.arg(code, d->callbackUrl(provider)) : withSourceSystem(registration);
    if (!d->post(path, body, &PresenterClient::loginSuccessResponse, &PresenterClient::loginFailureResponse))
        return false;
    d->finishLogin();
    registration = d->registration;
    return d->loggedIn;
}

QString PresenterClient::doGetAccessToken(QString userId, QString password, QString deviceId,
                                          QString deviceName)
{
    d->userId = userId;
    d->password = password;
    const QString body = QStringLiteral(
        R"({"userId":"%0","password":"%1","deviceId":"%2","deviceName":"%3","sourceSystem":"Lumora"})");
    if (!d->post(loginPath, body.arg(userId, password, deviceId, deviceName),
                 &PresenterClient::getDeviceAccessTokenResponse))
        return QString();
    return d->newDeviceAccessToken;
}

QString PresenterClient::doGetOAuthAccessToken(QString provider, QString code, QString deviceId,
                                               QString deviceName, QString& registration)
{
    d->oauthProvider = provider;
    d->oauthCode = code;
    const QString body = QStringLiteral(
        R"({"code":"%0","callbackUrl":"%1","deviceId":"%2","deviceName":"%3","sourceSystem":"Lumora"})");
    if (!d->post(callbackPath(provider), body.arg(code, d->callbackUrl(provider), deviceId, deviceName),
                 &PresenterClient::getDeviceAccessTokenResponse))
        return QString();
    registration = d->registration;
    return d->newDeviceAccessToken;
}

QString PresenterClient::doGetUserName()
{
    if (!d->post("/tavisto/login/user", QStringLiteral("{}"), &PresenterClient::userNameResponse))
        return QString();
    return d->userId;
}

bool PresenterClient::doLogout()
{
    const QPointer<PresenterClient> self(this);
    d->pingTimer.stop();
    if (!d->sessionCode.isNull() || !d->sessionToken.isNull())
        doStopSession();
    return self && d->post("/tavisto/login/logout", QStringLiteral("{}"), &PresenterClient::logoutResponse) &&
           !d->loggedIn;
}

void PresenterClient::reLogin()
{
    if (d->userId.isEmpty())
        return;
    if (!d->password.isEmpty()) {
        doLogin(d->userId, d->password);
    } else if (!d->deviceId.isEmpty() && !d->deviceAccessToken.isEmpty()) {
        doLogin(d->userId, d->deviceId, d->deviceAccessToken);
    } else if (!d->oauthProvider.isEmpty() && !d->oauthCode.isEmpty()) {
        QString registration;
        doLoginWithOAuth(d->oauthProvider, d->oauthCode, registration);
    }
}

void PresenterClient::sendKeepAlive()
{
    const QUrl url(d->server + QStringLiteral("/tavisto/login/keepSessionAlive"));
    QNetworkReply* reply =
        d->send(url, QByteArray(), {&PresenterClient::serverCheckResponse, nullptr}, false);
    d->wait(reply, ReplyWaits::Yielding);
}

void PresenterClient::Private::startLogin()
{
    lastError = QString();
    loggedIn = false;
}

bool PresenterClient::Private::finishLogin()
{
    if (loggedIn)
        pingTimer.start(keepAliveInterval);
    return loggedIn;
}

// Only this one provider wants the slash.
QString PresenterClient::Private::callbackUrl(const QString& provider) const
{
    return provider == QLatin1String("facebook") ? server + QLatin1Char('/') : server;
}

void PresenterClient::loginSuccessResponse(QString body)
{
    const QVariantMap envelope = ServiceEnvelope::parse(body);
    const QVariant messages = envelope.value(QStringLiteral("infoMsgs"));
    if (messages.userType() == QMetaType::QVariantList) {
        if (firstText(messages).contains(QLatin1String("success")))
            d->loggedIn = true;
        return;
    }
    QString key;
    if (!d->loggedIn) {
        key = firstText(envelope.value(QStringLiteral("infoMsgKeys")));
        if (key.contains(QLatin1String("success")))
            d->loggedIn = true;
        if (!d->loggedIn)
            return;
    }
    if (!d->oauthProvider.isEmpty() && !d->oauthCode.isEmpty() &&
        key.contains(QLatin1String("registration"))) {
        d->loggedIn = false;
        d->readRegistration(body);
    }
}

// The raw text of "data", without the brace that closes the envelope. Its place is compared with 0, not with
// -1: in a body without "data" the text starts at position 6, and hosts have come to see that.
void PresenterClient::Private::readRegistration(const QString& body)
{
    const QString key = QStringLiteral("\"data\":");
    const auto index = body.indexOf(key);
    if (index != 0)
        registration = body.mid(index + key.size(), body.size() - index - key.size() - 1);
}

void PresenterClient::loginFailureResponse(QNetworkReply*, QString body)
{
    d->readErrorKey(body);
}

void PresenterClient::getDeviceAccessTokenResponse(QString body)
{
    const QVariantMap data = ServiceEnvelope::data(ServiceEnvelope::parse(body));
    d->newDeviceAccessToken = data.value(QStringLiteral("deviceAccessToken")).toString();
    d->loggedIn = !d->newDeviceAccessToken.isEmpty();
    if (!d->loggedIn)
        d->readRegistration(body);
}

void PresenterClient::userNameResponse(QString body)
{
    const QVariantMap data = ServiceEnvelope::data(ServiceEnvelope::parse(body));
    d->userId = data.value(QStringLiteral("userLoginId")).toString();
    d->loggedIn = !d->userId.isEmpty();
}

void PresenterClient::logoutResponse(QString body)
{
    bool ok = false;
    ServiceEnvelope::parse(body, &ok);
    if (ok)
        d->loggedIn = false;
}
