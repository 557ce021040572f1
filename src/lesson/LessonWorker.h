#pragma once

#include "lesson/Inbox.h"
#include "lesson/LessonError.h"
#include "model/Learner.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QVariant>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class PresenterClient;
class PresenterCollab;

namespace Calyx {

class ServiceClient;

/// How somebody logs in.
struct Login
{
    enum How { Password, Token, OAuth };

    How how = Password;
    QString server;
    QString user;     ///< of OAuth, the provider
    QString secret;   ///< password, token or code
    QString deviceId; ///< of Token
    QString registration;
};

/// A session that is open at the service.
struct OpenSession
{
    QString code;
    QString token;
};

/// A channel that is open.
struct Opening
{
    QString sessionToken;
    QString joinCode;
    QString joinAddress;
    QList<Learner> learners; ///< the service's list
    QSet<QString> heard;     ///< who has joined since it was asked for
    bool isReturn = false;   ///< the session was open before
    bool hasLearners = false;
};

/// How a channel is opened and watched.
struct ChannelSettings
{
    QStringList transports; ///< empty for those that the service prescribes
    int openLimit = 10000;  ///< milliseconds for each of them; 0 for no limit
    bool noticesLoss = true;
};

/// What a LessonWorker tells, on the thread of its inbox. Each ticket is that of the operation it is about.
class LessonListener
{
public:
    virtual ~LessonListener() = default;
    virtual void onLoggedIn(int ticket, const LessonError& error, const QString& registration) = 0;
    virtual void onOpened(int ticket, const Opening& opening) = 0;
    virtual void onNotOpened(int ticket, const LessonError& error) = 0;
    /// The bus has got what was sent before LessonWorker::confirm() with this serial number.
    virtual void onConfirmed(int serial) = 0;
    virtual void onLost() = 0;
    virtual void onEnded(int ticket, const LessonError& error) = 0;
    virtual void onUploaded(int ticket, const QString& url) = 0;
    virtual void onProgress(int ticket, double progress) = 0;
    virtual void onJoin(const Learner& learner) = 0;
    /// \p by has sent the message that says so; empty where that does not say it.
    virtual void onLeave(const QString& deviceId, const QString& by) = 0;
    virtual void onAnswer(const QString& deviceId, const QString& id, int time, const QString& answer) = 0;
    virtual void onQuestionWanted(const QString& deviceId, int number) = 0;
    virtual void onRemote(const QString& type, const QVariant& data) = 0;
    virtual void onRemoteGone(const QString& by) = 0;
    virtual void onMessage(const QString& type, const QString& from, const QVariant& data) = 0;
};

/// The lesson's side of the network, on a thread of its own: the client, whose operations block there, and
/// its channel. Operations wait for each other in a queue; messages on the channel do not.
///
/// All functions are for that thread; tell() is for any.
class LessonWorker : public QObject
{
    Q_OBJECT

public:
    using Work = std::function<void(LessonWorker*)>;

    LessonWorker(std::shared_ptr<Inbox::Slot> inbox, LessonListener* listener);
    ~LessonWorker() override;

    /// Has the worker do \p work on its thread.
    void tell(const Work& work);

    void logIn(int ticket, const Login& login);
    /// What the channel is opened with from now on.
    void setChannel(const ChannelSettings& settings) { m_settings = settings; }
    void open(int ticket);
    /// Opens a channel of a session that is open at the service, or SessionGone.
    void takeUp(int ticket, const OpenSession& session);
    /// Opens the channel of the session again, whatever has become of it and of the login.
    void reopen(int ticket);
    /// Has the session go on without us: it is not stopped when we log out.
    void forgetSession();
    void endSession(int ticket);
    void logOut(int ticket);
    void upload(int ticket, const QByteArray& picture);
    void withClient(const QString& server, const std::function<void(PresenterClient*)>& work);
    /// Does \p work with the channel, if it is open.
    void send(const std::function<void(PresenterCollab*)>& work);
    /// Has onConfirmed() follow once the bus has got everything that was sent so far.
    void confirm(int serial);
    /// Does \p work with the channel, when it is open at the latest.
    void withChannel(const std::function<void(PresenterCollab*)>& work);
    /// Ends what is under way and forgets what waits, but for ends.
    void cancel();
    /// Says goodbye where that can be done in \p msecs milliseconds, and ends the thread.
    void shutDown(int msecs);

Q_SIGNALS:
    /// What is waited for is not wanted any more.
    void interrupted();

private:
    struct Operation
    {
        std::function<void()> run;
        bool isCancellable;
    };

    Q_INVOKABLE void doTold();
    void enqueue(bool isCancellable, const std::function<void()>& run);
    void runNext();
    void abort();
    void report(const std::function<void(LessonListener*)>& what);
    LessonError error(LessonError::Kind kind, const QString& key = QString());

    void makeClient(const QString& server);
    LessonError doLogIn(QString* registration);
    bool submitLogin(QString* registration);
    LessonError doOpen();
    LessonError startSession(PresenterCollab** collab);
    LessonError reasonOfFailure();
    LessonError doReopen();
    LessonError doTakeUp(const OpenSession& session);
    LessonError findSession();
    void setLimits();
    LessonError renewLogin();
    LessonError finishOpening(bool isReturn);
    bool askLearners(QList<Learner>* learners);
    void listAgain();
    void reportMissed();
    bool waitForChannel();
    void adopt(PresenterCollab* collab);
    void hearLearners(PresenterCollab* collab);
    void hearOthers(PresenterCollab* collab);
    void onUnhandled(const QVariantMap& body, const QVariant& data);
    void onPulse(int serial);
    QStringList transportsForReturn() const;
    void watch();
    void sendPulse(int serial, int limit);
    void dropChannel();
    void stopSession();
    QString doUpload(const QByteArray& picture);
    using Gone = std::function<void(const QString& by)>;
    void onGone(const Gone& gone);
    void reportGone(const QString& by);
    void onRemoteControl(const QString& from, const QString& type, const QVariant& data);
    bool isRemote(const QString& from);

    std::mutex m_toldMutex;
    std::deque<Work> m_told; // by other threads
    std::shared_ptr<Inbox::Slot> m_inbox;
    LessonListener* m_listener;
    std::unique_ptr<ServiceClient> m_client;
    QString m_clientServer;             // the address that it was made with
    QPointer<PresenterCollab> m_collab; // the client's
    Login m_login;
    ChannelSettings m_settings;
    QString m_createdCode; // of a session that the host has created and nobody has started
    QString m_sessionToken;
    std::deque<Operation> m_queue;
    std::deque<std::function<void(PresenterCollab*)>> m_waiting; // for the channel
    QSet<QString> m_heard;                                       // learners who are known to be here
    QList<Learner> m_missed;                                     // on the second list of learners
    QSet<QString> m_left;                                        // since the service was asked for them
    bool m_isListEarly = false;                                  // the bus may not have known us yet
    std::vector<Gone> m_gone; // who is gone, as the message says that is being read
    QSet<QString> m_remotes;  // devices that the service knows as such
    QSet<QString> m_others;   // devices that have sent a command, and are none
    QTimer m_abort;
    QTimer m_watch;
    QElapsedTimer m_lastPulse; // when the far end was asked for a sign of life
    QTimer m_echoLimit;        // until the pulse has to be back
    QTimer m_joining;          // until those of m_missed have joined by themselves
    qint64 m_lastLook = 0;     // of watch(), by the time of day, in ms
    bool m_echoes = false;     // the bus has brought a pulse back
    QElapsedTimer m_clock;     // since the operation has begun
    int m_ticket = 0;
    int m_steps = 0; // requests of the operation
    int m_expectedSteps = 0;
    bool m_isRunning = false;
    bool m_runsCancellable = false;
    bool m_isCancelled = false;
    bool m_isOpen = false;
    bool m_isLeaving = false;
    QString m_lastTransport; // of the channel when it was open last
};

} // namespace Calyx
