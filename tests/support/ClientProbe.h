#pragma once

#include <CalyxClient/PresenterClient>

#include <QNetworkReply>
#include <QStringList>

#include <functional>

/// A client whose requests can be made directly, with handlers that keep what they get.
class ClientProbe : public PresenterClient
{
public:
    explicit ClientProbe(const QString& server) : PresenterClient(nullptr, server) {}

    void request(const QString& path, bool wait = true)
    {
        doRequest(wait, QUrl(server() + path), QStringLiteral("{}"), successHandler(), failureHandler(),
                  false);
    }

    static SuccessHandler successHandler() { return static_cast<SuccessHandler>(&ClientProbe::onSuccess); }
    static FailureHandler failureHandler() { return static_cast<FailureHandler>(&ClientProbe::onFailure); }

    /// Gives \p body to every handler of the client's own, as if it were an answer.
    static void giveToAllHandlers(PresenterClient& client, const QString& body)
    {
        using C = PresenterClient;
        for (const SuccessHandler handler :
             {&C::serverCheckResponse, &C::loginSuccessResponse, &C::getDeviceAccessTokenResponse,
              &C::userNameResponse, &C::logoutResponse, &C::sessionSuccessResponse, &C::getLearnersResponse,
              &C::getCollabUrlResponse, &C::getTenantFeatureDetailsResponse, &C::sessionStartSuccessResponse,
              &C::sessionJoinResponse, &C::uploadResourceResponse})
            (client.*handler)(body);
        for (const auto handler :
             {&C::loginFailureResponse, &C::sessionFailureResponse, &C::sessionStartFailureResponse})
            (client.*handler)(nullptr, body);
    }

    QStringList successes;
    QStringList failures;
    QList<QNetworkReply::NetworkError> errors;
    /// Called once the success handler has its body.
    std::function<void()> processed;

private:
    void onSuccess(QString body)
    {
        successes.append(body);
        if (processed)
            processed();
    }
    void onFailure(QNetworkReply* reply, QString body)
    {
        failures.append(body);
        errors.append(reply->error());
    }
};
