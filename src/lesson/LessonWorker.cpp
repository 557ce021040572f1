#include "lesson/LessonWorker.h"

#include "collab/PresenterCollab.h"
#include "lesson/LessonText.h"
#include "lesson/ServiceClient.h"
#include "transport/SockJSConnector.h"

#include <QThread>

#include <utility>

namespace Calyx {

namespace {

constexpr int replyLimit = 10000; // ms, the client's
constexpr int stallLimit = 20000;
constexpr int abortPace = 10;
constexpr int silenceLimit = 40000; // longer than a server's heartbeats are apart

} // namespace

LessonWorker::LessonWorker(std::shared_ptr<Inbox::Slot> inbox, LessonListener* listener)
    : m_inbox(std::move(inbox))
    , m_listener(listener)
    , m_abort(this)
    , m_watch(this)
    , m_echoLimit(this)
    , m_joining(this)
{
    connect(&m_watch, &QTimer::timeout, this, &LessonWorker::watch);
    m_echoLimit.setSingleShot(true);
    connect(&m_echoLimit, &QTimer::timeout, this, [this] {
        if (m_isOpen && m_collab && m_echoes)
            m_collab->connector()->close();
    });
    m_joining.setSingleShot(true);
    connect(&m_joining, &QTimer::timeout, this, &LessonWorker::reportMissed);
    // An operation of the client makes several requests, and does not know that it is not wanted any more:
    // each of them is aborted.
    connect(&m_abort, &QTimer::timeout, this, &LessonWorker::abort);
}

LessonWorker::~LessonWorker() = default;

void LessonWorker::tell(const Work& work)
{
    {
        const std::lock_guard<std::mutex> lock(m_toldMutex);
        m_told.push_back(work);
    }
    QMetaObject::invokeMethod(this, "doTold", Qt::QueuedConnection);
}

void LessonWorker::doTold()
{
    Work work;
    {
        const std::lock_guard<std::mutex> lock(m_toldMutex);
        work = std::move(m_told.front());
        m_told.pop_front();
    }
    work(this);
}

void LessonWorker::report(const std::function<void(LessonListener*)>& what)
{
    m_inbox->put([listener = m_listener, what] { what(listener); });
}

LessonError LessonWorker::error(LessonError::Kind kind, const QString& key)
{
    return LessonError::make(m_isCancelled ? LessonError::Cancelled : kind, key);
}

void LessonWorker::enqueue(bool isCancellable, const std::function<void()>& run)
{
    if (m_isLeaving)
        return;
    m_queue.push_back({run, isCancellable});
    if (!m_isRunning)
        runNext();
}

// Operations run event loops, in which others are put into the queue.
void LessonWorker::runNext()
{
    m_isRunning = true;
    while (!m_queue.empty()) {
        const Operation operation = m_queue.front();
        m_queue.pop_front();
        m_isCancelled = false;
        m_runsCancellable = operation.isCancellable;
        m_steps = m_expectedSteps = 0;
        m_clock.start();
        operation.run();
        m_abort.stop();
    }
    m_isRunning = false;
}

void LessonWorker::cancel()
{
    std::deque<Operation> kept;
    for (const Operation& operation : m_queue) {
        if (!operation.isCancellable)
            kept.push_back(operation);
    }
    m_queue.swap(kept);
    if (!m_isRunning || !m_runsCancellable)
        return;
    m_isCancelled = true;
    m_abort.start(abortPace);
    abort();
    Q_EMIT interrupted();
}

// While the client opens a channel, it alone knows it.
void LessonWorker::abort()
{
    PresenterCollab* collab = m_client ? m_client->collab() : nullptr;
    if (collab && !m_isOpen)
        collab->connector()->close();
    if (m_client)
        m_client->abortRequests();
}

void LessonWorker::shutDown(int msecs)
{
    m_queue.clear();
    m_waiting.clear();
    m_runsCancellable = true;
    cancel();
    enqueue(false, [this, msecs] {
        QTimer::singleShot(msecs, this, [this] { m_abort.start(abortPace); });
        m_abort.stop();
        stopSession();
        if (m_client && m_client->isLoggedIn())
            m_client->doLogout();
        m_client.reset();
        thread()->quit();
    });
    m_isLeaving = true;
}

// Login.

void LessonWorker::logIn(int ticket, const Login& login)
{
    enqueue(true, [this, ticket, login] {
        m_ticket = ticket;
        m_expectedSteps = 2;
        stopSession();
        if (m_client && m_client->isLoggedIn())
            m_client->doLogout();
        m_login = login;
        QString registration;
        const LessonError result = doLogIn(&registration);
        if (result.kind != LessonError::NoError)
            m_client.reset();
        report([=](LessonListener* listener) { listener->onLoggedIn(ticket, result, registration); });
    });
}

// A client with which nobody has logged in yet stays: the host may have told it a password for HTTP
// authentication.
void LessonWorker::makeClient(const QString& server)
{
    if (m_client && m_client->userId().isNull() && m_clientServer == server)
        return;
    m_clientServer = server;
    m_client = std::make_unique<ServiceClient>(server);
    connect(m_client.get(), &PresenterClient::requestProcessed, this, [this] {
        ++m_steps;
        const double progress = m_expectedSteps > 0 ? qMin(1.0, double(m_steps) / m_expectedSteps) : -1;
        report([ticket = m_ticket, progress](LessonListener* listener) {
            listener->onProgress(ticket, progress);
        });
    });
}

LessonError LessonWorker::doLogIn(QString* registration)
{
    makeClient(m_login.server);
    const LessonError::Kind kind = m_client->probe(); // also moves the address where the service wants that
    if (kind != LessonError::NoError)
        return error(kind);
    return submitLogin(registration) ? LessonError() : reasonOfFailure();
}

// The client puts texts into its requests as they are.
bool LessonWorker::submitLogin(QString* registration)
{
    const QString user = LessonText::escaped(m_login.user);
    const QString secret = LessonText::escaped(m_login.secret);
    switch (m_login.how) {
    case Login::Password:
        return m_client->doLogin(user, secret);
    case Login::Token:
        return m_client->doLogin(user, LessonText::escaped(m_login.deviceId), secret);
    case Login::OAuth:
        *registration = m_login.registration;
        return m_client->doLoginWithOAuth(m_login.user, secret, *registration);
    }
    return false;
}

LessonError LessonWorker::reasonOfFailure()
{
    if (m_isCancelled)
        return error(LessonError::Cancelled);
    const QString key = m_client->lastError();
    if (!key.isEmpty())
        return error(ServiceClient::kindOf(key), key);
    if (m_clock.hasExpired(replyLimit))
        return error(LessonError::NoAnswer);
    const LessonError::Kind kind = m_client->probe();
    return error(kind == LessonError::NoError ? LessonError::Refused : kind);
}

LessonError LessonWorker::renewLogin()
{
    QString registration;
    if (!m_client->doGetUserName().isEmpty() || submitLogin(&registration))
        return LessonError();
    const LessonError reason = reasonOfFailure();
    const bool isRefused = reason.kind == LessonError::BadCredentials || reason.kind == LessonError::Refused;
    return isRefused ? error(LessonError::LoggedOutByService, reason.key) : reason;
}

void LessonWorker::logOut(int ticket)
{
    enqueue(false, [this, ticket] {
        m_ticket = ticket;
        stopSession();
        const bool isDone = !m_client || m_client->doLogout();
        const LessonError result = isDone ? LessonError() : reasonOfFailure();
        m_client.reset();
        report([=](LessonListener* listener) { listener->onEnded(ticket, result); });
    });
}

// Session.

void LessonWorker::open(int ticket)
{
    enqueue(true, [this, ticket] {
        m_ticket = ticket;
        m_expectedSteps = 7;
        const LessonError result = doOpen();
        if (result.kind == LessonError::NoError)
            return;
        m_abort.stop();
        if (!m_isLeaving) // shutDown() does it, and knows how long it may take
            stopSession();
        report([=](LessonListener* listener) { listener->onNotOpened(ticket, result); });
    });
}

LessonError LessonWorker::doOpen()
{
    if (!m_client)
        return error(LessonError::LoggedOutByService);
    setLimits();
    PresenterCollab* collab = nullptr;
    const LessonError reason = startSession(&collab);
    if (collab)
        adopt(collab);
    if (reason.kind != LessonError::NoError || m_isCancelled)
        return error(reason.kind, reason.key);
    return finishOpening(false);
}

void LessonWorker::setLimits()
{
    m_client->setOpenLimit(m_settings.openLimit);
    m_client->setSilenceLimit(m_settings.noticesLoss ? silenceLimit : 0);
    m_client->setStallLimit(stallLimit);
    m_client->setAsynchronousConnect(true);
    m_client->setEndsWithLostRequest(true);
    m_client->setRandomSessionIds(true);
    m_client->setSockJSOverrideProtocols(m_settings.transports);
}

LessonError LessonWorker::startSession(PresenterCollab** collab)
{
    const bool isCreated = !m_createdCode.isEmpty() && m_createdCode == m_client->sessionCode();
    m_createdCode.clear(); // it is opened once, or not at all
    if (!isCreated && !m_client->doStartSession(QString())) {
        if (m_client->isLoggedIn() || m_isCancelled)
            return reasonOfFailure();
        const LessonError reason = renewLogin(); // the client forgets who it is when it hears that nobody is
        if (reason.kind != LessonError::NoError)
            return reason;
        if (!m_client->doStartSession(QString()))
            return reasonOfFailure();
    }
    if (!m_client->startWebsocket(collab))
        return reasonOfFailure();
    m_sessionToken = m_client->sessionToken();
    return m_sessionToken.isEmpty() ? error(LessonError::Refused) : LessonError();
}

void LessonWorker::reopen(int ticket)
{
    enqueue(true, [this, ticket] {
        m_ticket = ticket;
        const LessonError result = doReopen();
        if (result.kind != LessonError::NoError)
            report([=](LessonListener* listener) { listener->onNotOpened(ticket, result); });
    });
}

LessonError LessonWorker::doReopen()
{
    if (!m_client || !m_collab)
        return error(LessonError::SessionGone);
    const LessonError reason = findSession();
    if (reason.kind != LessonError::NoError)
        return reason;
    m_collab->connector()->setSilenceLimit(m_settings.noticesLoss ? silenceLimit : 0);
    if (!m_isCancelled)
        m_collab->open(transportsForReturn());
    return finishOpening(true);
}

// Asks the service for the users of the session, and so whether it is there, who we are to it, and whether it
// knows the session.
LessonError LessonWorker::findSession()
{
    QList<ServiceClient::User> users;
    ServiceClient::Reply reply = m_client->askUsers(m_sessionToken, &users);
    if (reply.key.startsWith(QLatin1String("login.error"))) {
        const LessonError reason = renewLogin();
        if (reason.kind != LessonError::NoError)
            return reason;
        reply = m_client->askUsers(m_sessionToken, &users);
    }
    if (reply.key.startsWith(QLatin1String("session.error")))
        return error(LessonError::SessionGone, reply.key);
    return reply.isFine() ? LessonError() : error(m_client->kindOf(reply), reply.key);
}

// A session that cannot be taken up is not stopped: it goes on without us.
void LessonWorker::takeUp(int ticket, const OpenSession& session)
{
    enqueue(true, [this, ticket, session] {
        m_ticket = ticket;
        m_expectedSteps = 6;
        const LessonError result = doTakeUp(session);
        if (result.kind == LessonError::NoError)
            return;
        dropChannel();
        m_sessionToken.clear();
        if (!m_isCancelled) // else whoever has cancelled it knows
            forgetSession();
        report([=](LessonListener* listener) { listener->onNotOpened(ticket, result); });
    });
}

void LessonWorker::forgetSession()
{
    if (m_client)
        m_client->forgetSession();
}

// The service starts a session again for its teacher, with the same token.
LessonError LessonWorker::doTakeUp(const OpenSession& session)
{
    if (!m_client)
        return error(LessonError::LoggedOutByService);
    setLimits();
    m_sessionToken = session.token;
    const LessonError reason = findSession();
    if (reason.kind != LessonError::NoError)
        return reason;
    PresenterCollab* collab = nullptr;
    if (!m_client->startAgain(session.code, &collab))
        return reasonOfFailure();
    adopt(collab);
    if (m_client->sessionToken() != session.token)
        return error(LessonError::SessionGone);
    return finishOpening(true);
}

// Whatever the service answers, the session is over here.
void LessonWorker::stopSession()
{
    dropChannel();
    m_sessionToken.clear();
    m_remotes.clear();
    m_others.clear();
    if (m_client && !m_client->sessionToken().isNull())
        m_client->doStopSession();
}

void LessonWorker::endSession(int ticket)
{
    enqueue(false, [this, ticket] {
        m_ticket = ticket;
        stopSession();
        report([=](LessonListener* listener) { listener->onEnded(ticket, LessonError()); });
    });
}

void LessonWorker::upload(int ticket, const QByteArray& picture)
{
    enqueue(true, [this, ticket, picture] {
        m_ticket = ticket;
        const QString url = doUpload(picture);
        report([=](LessonListener* listener) { listener->onUploaded(ticket, url); });
    });
}

// Null when it has failed.
QString LessonWorker::doUpload(const QByteArray& picture)
{
    QString id;
    QString path;
    if (!m_client || m_isCancelled ||
        !m_client->doUploadResource(QStringLiteral("card.png"), picture, &id, &path) || id.isEmpty())
        return QString();
    return m_client->server() + path;
}

void LessonWorker::withClient(const QString& server, const std::function<void(PresenterClient*)>& work)
{
    enqueue(false, [this, server, work] {
        m_ticket = 0;
        if (!m_client || m_clientServer != server)
            makeClient(server);
        const QString before = m_client->sessionCode();
        work(m_client.get());
        if (m_client->sessionCode() != before && m_client->sessionToken().isNull())
            m_createdCode = m_client->sessionCode();
    });
}

} // namespace Calyx
