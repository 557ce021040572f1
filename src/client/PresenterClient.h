#pragma once

#include "calyxclient_export.h"
#include "collab/PresenterCollab.h"
#include "model/Learner.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSslError>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QVariant>

class QAuthenticator;
class QNetworkAccessManager;
class QNetworkReply;

/// A teacher's client of the classroom service.
///
/// Each operation sends one POST (some several) and blocks until the service has answered or 10 seconds have
/// passed, in a nested event loop that leaves user input alone; timers and sockets of the host go on
/// meanwhile. What an operation returns, the accessors keep. After one that failed, lastError() may hold the
/// service's error key.
///
/// Lives on the thread that created it. May be deleted at any time, also while an operation waits: the
/// operation then returns false or an empty text. Values are put into the request as they are, without JSON
/// escaping.
class CALYXCLIENT_EXPORT PresenterClient : public QObject
{
    Q_OBJECT

public:
    /// The spelling by which hosts name the type.
    using Learner = Calyx::Learner;
    /// Gets the body of a reply.
    using SuccessHandler = void (PresenterClient::*)(QString);
    /// Gets a reply that failed and its body.
    using FailureHandler = void (PresenterClient::*)(QNetworkReply*, QString);

    /// The handlers of one pending reply; either may be null.
    struct CALLBACKS
    {
        SuccessHandler success; ///< for a reply without an error
        FailureHandler failure; ///< for all others, a time-out included
    };

    /// What stands between the parts of an upload.
    static const QString MULTIPART_BOUNDARY;

    /// \p server is the service's base address, for example "https://classroom.example"; one "/" at its end
    /// is dropped. Sends nothing. Cookies of the service are kept in memory and sent back.
    PresenterClient(QObject* parent, QString server);
    /// Stops a session that is still open, which sends one request and waits for its answer as every
    /// operation does.
    ~PresenterClient() override;

    /// Whether the last operation that could tell found the user logged in.
    bool isLoggedIn() const { return m_loggedIn; }
    /// Whether the last checkServer() or keep-alive found the service answering.
    bool isServerReachable() const { return m_serverReachable; }
    /// The base address, which a redirect can change.
    QString server() const { return m_server; }
    /// The error key of the last failure, "SSLRootCertificateMissing" included; null when there was none.
    QString lastError() const { return m_lastError; }
    /// The user who logs in; after doGetUserName(), and so after doStartSession(), as the service spells it.
    /// Null before the first login, empty or null when the service said that nobody is logged in.
    QString userId() const { return m_userId; }
    /// The registration data (JSON) that the service asks a new OAuth user to complete; null when it asked
    /// for none.
    QString registration() const { return m_registration; }
    /// The code by which learners join; null without a session.
    QString sessionCode() const { return m_sessionCode; }
    /// The token of the started session; null without one.
    QString sessionToken() const { return m_sessionToken; }
    /// The presenter's own token in the session: the sender of all that goes out. Null before the first
    /// startWebsocket(); kept when the session ends.
    QString userToken() const { return m_userToken; }
    /// The address of the live channel's server, as the service gave it; null before the first
    /// startWebsocket().
    QString collabServerUrl() const { return m_collabServerUrl; }
    /// The transports that the tenant, or setSockJSOverrideProtocols(), prescribes; empty means the default
    /// ones.
    QStringList sockJSProtocols() const { return m_sockJSProtocols; }
    /// The learners as doGetLearners() found them last, in the service's order; empty before that. Kept when
    /// the session ends.
    QList<Learner> learners() const { return m_learners; }
    /// The id of the resource last uploaded; null before the first upload and after one that failed.
    QString resourceId() const { return m_resourceId; }
    /// The path of that resource, as the service gave it; null when it gave none.
    QString resourcePath() const { return m_resourcePath; }
    /// The live channel last opened; null before the first, or when the host has deleted it. Owned by this
    /// client.
    PresenterCollab* collab() const { return m_collab; }

    // The request engine.

    ///@{
    /// Posts \p body as JSON (or, with \p multipart, as multipart form data) to \p url. With \p wait, blocks
    /// until the reply has been processed: the success handler was called with its body, or the failure
    /// handler with the reply and its body. A redirect calls neither. A reply that takes longer than 10
    /// seconds, or is larger than 64 MiB, is aborted and fails. Either handler may be null; handlers set what
    /// the accessors tell. Without \p wait, requestProcessed() tells that the reply has come.
    void doRequest(bool wait, const QUrl& url, const QString& body, SuccessHandler success);
    void doRequest(bool wait, const QUrl& url, const QString& body, SuccessHandler success,
                   FailureHandler failure, bool multipart);
    void doRequest(bool wait, const QUrl& url, const QByteArray& body, SuccessHandler success,
                   FailureHandler failure, bool multipart);
    ///@}
    /// Whether the service answers, with JSON of whatever content. Posts an empty body to "/tavisto". \p user
    /// and \p password, unless empty, are offered to HTTP authentication from now on.
    bool checkServer(const QString& user, const QString& password);
    /// Whether the first of the reply's "errorMsgKeys" contains "error"; \p error receives it, else null.
    bool isErrorInErrorMsgKeys(const QVariant& reply, QString& error);
    /// Lzma::decompress64(), for service data that comes compressed.
    bool LzmaDecompress64(QString in, QString* out);

    // Account.

    ///@{
    /// Logs in, by password or by device access token, with a request to "/tavisto/login/submit". Clears
    /// lastError() first. True when the service accepts; from then on a request every 60 seconds keeps the
    /// login alive until doLogout(). False with the service's key in lastError() when it refuses; when it
    /// cannot be reached, lastError() is null, or "SSLRootCertificateMissing".
    bool doLogin(QString userId, QString password);
    bool doLogin(QString userId, QString deviceId, QString deviceAccessToken);
    ///@}
    /// Logs in with the \p code that the OAuth \p provider has given, as doLogin() does. Pass an empty \p
    /// registration first. When the service wants a new user to register, the result is
    /// false and \p registration holds the data to complete (JSON); call again with that.
    /// Two paths: "/tavisto/login/oauth/PROVIDER/callback" and "/tavisto/register/oauth/submit".
    bool doLoginWithOAuth(QString provider, QString code, QString& registration);
    ///@{
    /// A token with which this device can log in later without a password. With it the client counts as
    /// logged in, but nothing keeps this login alive. Empty when the service gave none, the token before when
    /// the request failed. The OAuth form sets \p registration as doLoginWithOAuth() does.
    QString doGetAccessToken(QString userId, QString password, QString deviceId, QString deviceName);
    QString doGetOAuthAccessToken(QString provider, QString code, QString deviceId, QString deviceName,
                                  QString& registration);
    ///@}
    /// The id of the user who is logged in, as the service sees it; null when nobody is, the id before when
    /// the request failed. Sets isLoggedIn().
    QString doGetUserName();
    /// Stops an open session, then logs out. Whether nobody is logged in any more.
    bool doLogout();
    /// Logs in with the credentials used last: password, else device token, else OAuth code. Does nothing
    /// without any. Whether it worked shows in isLoggedIn().
    void reLogin();
    /// Tells the service that the login is still in use, and sets isServerReachable(). Every 60 seconds by
    /// itself while logged in.
    void sendKeepAlive();

    // Classroom session.

    /// Creates a session, logging in again if the service has forgotten us: two requests or three. The
    /// argument is not used. On true, sessionCode() is what learners join with once startWebsocket() has
    /// started the session. Forgets the codes of a session before, without stopping it.
    bool doStartSession(QString);
    /// Refreshes learners(); they stay as they were when the request fails. False only without a started
    /// session.
    bool doGetLearners();
    /// Closes the live channel and stops the session; whatever the service answers, it is over here. False
    /// when there is none.
    bool doStopSession();

    // Live channel.

    /// Starts the created session and opens its live channel: four requests, then PresenterCollab::open(),
    /// which blocks as described there. On success \p collab receives the channel, owned by this client;
    /// PresenterCollab::isConnected() tells whether it is open yet, SockJSConnector::connected() when it is.
    /// A channel opened before is forgotten, not deleted.
    ///
    /// False leaves \p collab as it was: the service gave no address, or refused the start, its key then in
    /// lastError(). A key that an operation before has left there refuses the start, too.
    bool startWebsocket(PresenterCollab** collab);
    /// Transport names ("websocket", "xhr-streaming", "xhr-polling") to use instead of the tenant's, from the
    /// next startWebsocket(). An empty list sets none: the tenant's count again.
    void setSockJSOverrideProtocols(QStringList protocols);
    /// SockJSConnector::setOpenLimit() for the channels to come: \p msecs milliseconds, 0 for no limit.
    void setOpenLimit(int msecs);

    // Upload.

    /// Stores \p data under \p fileName on the service, in one multipart request. Learners' devices can load
    /// it from server() and \p downloadPath, without a login. On success \p resourceId receives the
    /// resource's id (empty when the service gave none) and \p downloadPath its path below the base address.
    /// False leaves both as they were; the reason is not kept.
    bool doUploadResource(QString fileName, QByteArray data, QString* resourceId, QString* downloadPath);
    /// One value of a multipart body, with the delimiter behind it.
    QString addMultipartValue(QString name, QString value, bool last);

    // Reply handlers.

    ///@{
    /// What the operations above pass to doRequest(): they read a reply's body and set what the accessors
    /// tell. A body that is no JSON changes nothing. Not for hosts to call.
    void serverCheckResponse(QString body);
    void loginSuccessResponse(QString body);
    void loginFailureResponse(QNetworkReply* reply, QString body);
    void getDeviceAccessTokenResponse(QString body);
    void userNameResponse(QString body);
    void logoutResponse(QString body);
    void sessionSuccessResponse(QString body);
    void sessionFailureResponse(QNetworkReply* reply, QString body);
    void getLearnersResponse(QString body);
    void getCollabUrlResponse(QString body);
    void getTenantFeatureDetailsResponse(QString body);
    void sessionStartSuccessResponse(QString body);
    void sessionStartFailureResponse(QNetworkReply* reply, QString body);
    void sessionJoinResponse(QString body);
    void uploadResourceResponse(QString body);
    ///@}

Q_SIGNALS:
    /// A reply has been processed: its handler has run, or a redirect has been followed. Once for each
    /// request, the keep-alive's included, before the operation that waits for it returns.
    void requestProcessed();

protected Q_SLOTS:
    /// Takes a finished reply: follows a redirect or calls the reply's handler, then requestProcessed().
    void slotRequestFinished(QNetworkReply* reply);
    /// sendKeepAlive().
    void onPingTimer();
    /// Logs TLS errors and ignores none; sets lastError() to "SSLRootCertificateMissing" when no known root
    /// has issued the server's chain.
    void slotSslErrors(QNetworkReply* reply, QList<QSslError> errors);
    /// Answers HTTP authentication with what checkServer() was given.
    void authenticationRequired(QNetworkReply* reply, QAuthenticator* authenticator);

private:
    bool post(const char* path, const QString& body, SuccessHandler success,
              FailureHandler failure = nullptr);
    bool post(const QString& path, const QString& body, SuccessHandler success,
              FailureHandler failure = nullptr);
    bool followRedirect(QNetworkReply* reply);
    QString readBody(QNetworkReply* reply);
    void callHandler(QNetworkReply* reply, const QString& body);
    void readErrorKey(const QString& body);
    void startLogin();
    bool finishLogin();
    void readRegistration(const QString& body);
    QString callbackUrl(const QString& provider) const;
    bool openCollab(PresenterCollab** collab);

    QTimer m_pingTimer;
    bool m_loggedIn = false;
    bool m_serverReachable = false;
    QString m_sessionCode;
    QString m_newDeviceAccessToken;
    QString m_collabServerUrl;
    QString m_version;
    QStringList m_sockJSProtocols;
    QStringList m_sockJSOverrideProtocols;
    QString m_sessionToken;
    QString m_userToken;
    QString m_server;
    QList<Learner> m_learners;
    QNetworkAccessManager* m_manager;
    QMap<QNetworkReply*, CALLBACKS> m_callbacks;
    QPointer<PresenterCollab> m_collab;
    QString m_userId;
    QString m_password;
    QString m_deviceId;
    QString m_deviceAccessToken;
    QString m_oauthProvider;
    QString m_oauthCode;
    QString m_registration;
    QString m_resourcePath;
    QString m_resourceId;
    QString m_lastError;
    QString m_authUser;
    QString m_authPassword;
    int m_openLimit = 0;
};
