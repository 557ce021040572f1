#pragma once

#include "client/PresenterClient.h"
#include "lesson/LessonError.h"

#include <QNetworkReply>
#include <QVariantMap>

namespace Calyx {

/// The lesson's client: it can say what kind of reply has come, and be interrupted.
class ServiceClient : public PresenterClient
{
public:
    /// What came back for one request.
    struct Reply
    {
        bool isRedirect = true; ///< until something else has come
        QNetworkReply::NetworkError error = QNetworkReply::NoError;
        bool isEnvelope = false; ///< the service's own JSON, be it a refusal
        QVariantMap data;
        QString key; ///< of the refusal

        bool isFine() const { return isEnvelope && error == QNetworkReply::NoError; }
    };

    /// A user of a session.
    struct User
    {
        Learner device;
        QString mode; ///< "learner", "controller" or "presenter"
    };

    explicit ServiceClient(const QString& server) : PresenterClient(nullptr, server) {}

    /// Asks for \p path, once more where the reply is a redirect.
    Reply ask(const QString& path, const QString& body);
    /// Whether it is the service that answers: LessonError::NoError, or why not.
    LessonError::Kind probe();
    /// Everybody in the session.
    Reply askUsers(const QString& sessionToken, QList<User>* users);
    /// startWebsocket() for the session with this code, which is open already.
    bool startAgain(const QString& code, PresenterCollab** collab);
    /// The session is none of ours any more: doLogout() does not stop it.
    void forgetSession();
    /// Ends the request that is under way, and so the operation's wait for it.
    void abortRequests();

    /// What kind of error \p reply, which is not fine, is.
    LessonError::Kind kindOf(const Reply& reply) const;
    /// The kind that a key of the service's stands for.
    static LessonError::Kind kindOf(const QString& key);

private:
    void readSuccess(QString body);
    void readFailure(QNetworkReply* reply, QString body);
    void readBody(const QString& body);

    Reply m_reply;
};

} // namespace Calyx
