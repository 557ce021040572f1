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
