#pragma once

#include "client/PresenterClient.h"
#include "client/ReplyWaits.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QNetworkAccessManager>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>

#include <memory>

/// What a PresenterClient holds, and the steps that its operations share.
class PresenterClient::Private
{
public:
    Private(PresenterClient* client, const QString& address);

    /// Posts and keeps the reply's handlers; does not wait.
    QNetworkReply* send(const QUrl& url, const QByteArray& body, CALLBACKS handlers, bool multipart);
    /// Waits for the reply, which is aborted after 10 seconds. The client may be gone afterwards.
    void wait(QNetworkReply* reply, ReplyWaits::Kind kind);
    ///@{
    /// One operation's request. False when the client has been destroyed during the wait.
    bool post(const char* path, const QString& body, SuccessHandler success,
              FailureHandler failure = nullptr);
    bool post(const QString& path, const QString& body, SuccessHandler success,
              FailureHandler failure = nullptr);
    ///@}
    bool followRedirect(QNetworkReply* reply);
    void callHandler(QNetworkReply* reply, const QString& body);
    void readErrorKey(const QString& body);
    void startLogin();
    bool finishLogin();
    void readRegistration(const QString& body);
    QString callbackUrl(const QString& provider) const;
    bool openCollab(PresenterCollab** opened);

    PresenterClient* q;
    QTimer pingTimer;
    bool loggedIn = false;
    bool serverReachable = false;
    QString sessionCode;
    QString newDeviceAccessToken;
    QString collabServerUrl;
    QStringList sockJSProtocols;
    QStringList sockJSOverrideProtocols;
    QString sessionToken;
    QString userToken;
    QString server;
    QList<Learner> learners;
    /// Shared with the frames that it has called: a host may destroy the client inside them.
    std::shared_ptr<QNetworkAccessManager> manager;
    QMap<QNetworkReply*, CALLBACKS> callbacks;
    ReplyWaits waits;
    QPointer<PresenterCollab> collab;
    QString userId;
    QString password;
    QString deviceId;
    QString deviceAccessToken;
    QString oauthProvider;
    QString oauthCode;
    QString registration;
    QString resourcePath;
    QString resourceId;
    QString lastError;
    QString authUser;
    QString authPassword;
    int stallLimit = 2000; // milliseconds
    bool asynchronousConnect = false;
    bool endsWithLostRequest = false;
    int openLimit = 0;
    int silenceLimit = 0;
    int pingInterval = 0;
    int pongLimit = 0; // the connector's own
    bool randomSessionIds = false;

private:
    static void abortAtTheLimit(const QPointer<PresenterClient>& client, QNetworkReply* reply);
};
