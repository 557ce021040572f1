#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/collab/PresenterCollab.h>
#include <CalyxClient/model/Learner.h>

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QSslError>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include <memory>

class QAuthenticator;
class QNetworkAccessManager;
class QNetworkReply;

/// A teacher's client of the classroom service.
///
/// Each operation sends one POST (some several) and blocks until the reply has been processed or 10 seconds
/// have passed, in a nested event loop that leaves user input alone. Everything else of the host's goes on
/// meanwhile: timers, sockets, queued calls, painting. An operation that is started there ends first, and
/// the one outside returns after it; a keep-alive is the exception, and is never waited for. Once the
/// application that runs has been told to quit, no loop does, and operations fail at once until its exec()
/// has returned. What an operation returns, the accessors keep.
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
    /// Ends the keep-alive, then stops a session that has been started and not stopped: one request, for
    /// whose reply it waits as every operation does. Meanwhile slots run that may call deleteLater(), and
    /// delete the channel or the client's parent, but not the client itself: a host that deletes it from
    /// more than one place takes its pointer to null first.
    ~PresenterClient() override;

    /// Whether the last operation that could tell found the user logged in.
    bool isLoggedIn() const;
    /// Whether the service was found answering: by the last checkServer(), by a redirect followed since, or
    /// by a keep-alive that got JSON since (other text sets it to false). A keep-alive that is refused, or
    /// meets nobody, leaves it as it was.
    bool isServerReachable() const;
    /// The base address, which a redirect can change.
    QString server() const;
    /// The error key that a failed operation has left: the service's own, when the reply had an HTTP error
    /// and its first key has "error" in it, or "SSLRootCertificateMissing". checkServer(), the log-ins and
    /// doStartSession() set it to null before they send, no other operation does. So it is also null after a
    /// failure without such a key: nobody answered, the reply was no JSON, or it was a refusal with HTTP
    /// status 200.
    QString lastError() const;
    /// The user who logs in; after doGetUserName(), and so after doStartSession(), as the service spells it.
    /// Null before the first login, empty or null when the service said that nobody is logged in.
    QString userId() const;
    /// The registration data (JSON) that the service asks a new OAuth user to complete; null before. A token
    /// request that got no token leaves here what its reply has as "data", whatever that is, or the text of
    /// the reply from its seventh character on; only doLoginWithOAuth() sets it to null again.
    QString registration() const;
    /// The code by which learners join; null without a session.
    QString sessionCode() const;
    /// The token of the started session; null without one.
    QString sessionToken() const;
    /// The presenter's own token in the session: the sender of all that goes out. Null before the first
    /// startWebsocket(); kept when the session ends.
    QString userToken() const;
    /// The address of the live channel's server, as the service gave it; null before the first
    /// startWebsocket().
    QString collabServerUrl() const;
    /// The transports that the tenant, or setSockJSOverrideProtocols(), prescribes; empty means the default
    /// ones.
    QStringList sockJSProtocols() const;
    /// The learners as doGetLearners() found them last, in the service's order; empty before that. Kept when
    /// the session ends.
    QList<Learner> learners() const;
    /// The id of the resource last uploaded; null before the first upload and after one that failed.
    QString resourceId() const;
    /// The path of that resource, as the service gave it; null when it gave none.
    QString resourcePath() const;
    /// The live channel last opened; null before the first, or when the host has deleted it. Owned by this
    /// client.
    PresenterCollab* collab() const;

    // The request engine.

    ///@{
    /// Posts \p body as JSON (or, with \p multipart, as multipart form data) to \p url. With \p wait, blocks
    /// until the reply has been processed: the success handler was called with its body, or the failure
    /// handler with the reply and its body. A redirect calls neither. A reply for which somebody waits and
    /// that takes longer than 10 seconds, sending included, is aborted and fails; so is one larger than 64
    /// MiB. Either handler may be null; handlers set what the accessors tell. Without \p wait,
    /// requestProcessed() tells that the reply has come.
    void doRequest(bool wait, const QUrl& url, const QString& body, SuccessHandler success);
    void doRequest(bool wait, const QUrl& url, const QString& body, SuccessHandler success,
                   FailureHandler failure, bool multipart);
    void doRequest(bool wait, const QUrl& url, const QByteArray& body, SuccessHandler success,
                   FailureHandler failure, bool multipart);
    ///@}
    /// Whether somebody answers, with JSON of whatever content or with a redirect. Posts an empty body to
    /// "/tavisto". \p user and \p password, unless empty, are offered to HTTP authentication from now on.
    ///
    /// True does not prove that it is the service: the sign-in page of a guest network (a captive portal)
    /// redirects, that is followed, and server() names the portal from then on. Compare server() with the
    /// address that was meant before a password is sent; where it names another server, have the user
    /// sign in to the network, and make a new client.
    bool checkServer(const QString& user, const QString& password);
    /// Whether the first of the reply's "errorMsgKeys" contains "error"; \p error receives it, else null.
    bool isErrorInErrorMsgKeys(const QVariant& reply, QString& error);
    /// Lzma::decompress64(), for service data that comes compressed.
    bool LzmaDecompress64(QString in, QString* out);

    // Account.

    ///@{
    /// Logs in, by password or by device access token, with a request to "/tavisto/login/submit". Clears
    /// lastError() first. True when the service accepts; from then on a request every 60 seconds keeps the
    /// login alive until doLogout(). False when it does not, or cannot be reached: lastError() tells.
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
    /// logged in, but nothing keeps this login alive. Empty or null when the service gave none; then the
    /// client counts as logged out. The token before when the request failed. lastError() is left alone. The
    /// OAuth form sets \p registration to registration(), which may stem from an earlier reply.
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
    /// Tells the service that the login is still in use; the reply sets isServerReachable(). Every 60 seconds
    /// by itself while logged in. Inside another operation's wait it returns when that wait ends, with or
    /// without its reply, which is then processed when it comes, within 10 seconds.
    void sendKeepAlive();

    // Classroom session.

    /// Asks who is logged in, logs in again when the service says that nobody is and there are credentials,
    /// and creates a session: up to three requests. The argument is not used. On true, sessionCode() is what
    /// learners join with once startWebsocket() has started the session. Once logged in it forgets the code
    /// and the token of a session before, without stopping it.
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
    /// A channel opened before is forgotten, not deleted. \p collab may be null: collab() has the channel.
    ///
    /// False leaves \p collab as it was: there is no address, the service refused the start, its key then in
    /// lastError(), or the host has deleted the client or the channel meanwhile. A key that an operation
    /// before has left in lastError() refuses the start, too. When the request for the address fails, the
    /// address of an earlier start serves. A start that fails without a key goes on, with the token before.
    bool startWebsocket(PresenterCollab** collab);
    /// Transport names ("websocket", "xhr-streaming", "xhr-polling") to use instead of the tenant's, from the
    /// next startWebsocket(). An empty list sets none: the tenant's count again.
    void setSockJSOverrideProtocols(QStringList protocols);
    /// SockJSConnector::setStallLimit() for the channels to come: \p msecs milliseconds.
    void setStallLimit(int msecs);
    /// SockJSConnector::setAsynchronousConnect() for the channels to come.
    void setAsynchronousConnect(bool asynchronous);
    /// SockJSConnector::setEndsWithLostRequest() for the channels to come.
    void setEndsWithLostRequest(bool ends);
    /// SockJSConnector::setOpenLimit() for the channels to come: \p msecs milliseconds, 0 for no limit.
    void setOpenLimit(int msecs);
    ///@{
    /// The operations of SockJSConnector of these names, for the channels to come: what notices a far end
    /// that has gone without a word (milliseconds, 0 for not at all), and session ids that nobody can guess.
    void setSilenceLimit(int msecs);
    void setPingInterval(int msecs);
    void setPongLimit(int msecs);
    void setRandomSessionIds(bool random);
    ///@}

    // Upload.

    /// Stores \p data under \p fileName on the service, in one multipart request. Learners' devices can load
    /// it from server() and \p downloadPath, without a login. On success \p resourceId receives the
    /// resource's id (empty when the service gave none) and \p downloadPath its path below the base address.
    /// False leaves both as they were; the reason is not kept. Either may be null. Sending counts towards the
    /// 10 seconds: on a line of 1 Mbit/s they suffice for about 1 MB.
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
    /// Logs TLS errors and ignores none; sets lastError() to "SSLRootCertificateMissing" when neither the
    /// reply's configuration nor the system holds the authority that has issued the server's chain.
    void slotSslErrors(QNetworkReply* reply, QList<QSslError> errors);
    /// Answers HTTP authentication with what checkServer() was given.
    void authenticationRequired(QNetworkReply* reply, QAuthenticator* authenticator);

private:
    class Private;
    std::unique_ptr<Private> d;
};
