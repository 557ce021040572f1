#include "lesson/LessonWorker.h"

#include "base/JsonReader.h"
#include "collab/CollaborationMessageHandler.h"
#include "collab/PresenterCollab.h"
#include "lesson/JoinAddress.h"
#include "lesson/LessonText.h"
#include "lesson/ServiceClient.h"
#include "transport/SockJSConnector.h"
#include "transport/SockJSTransport.h"

#include <QDateTime>
#include <QEventLoop>
#include <QJsonObject>
#include <QThread>

#include <utility>

namespace Calyx {

namespace {

constexpr int mostTransports = 3;
constexpr int greetingLimit = 31000; // ms, where a transport has no limit
constexpr int replyLimit = 10000;    // ms, the client's
constexpr int stallLimit = 20000;
constexpr int abortPace = 10;       // ms
constexpr int silenceLimit = 40000; // longer than a server's heartbeats are apart
constexpr int watchPace = 1000;
constexpr int sleepLimit = 5000;
constexpr int pulsePace = 8500;
constexpr int echoLimit =
    5000; // the three together less than 15 s, in which a far end that is gone is noticed
constexpr int hastyEchoLimit = 2000;
constexpr int joiningTime = 5000; // from the service's list to the device's own word on the bus

// What a presenter publishes to its own address comes back to it.
const QString pulseType = QStringLiteral("pulse");

QString senderOf(const QString& message)
{
    const QJsonObject body = JsonReader::read(message).object().value(QLatin1String("body")).toObject();
    return body.value(QLatin1String("from")).toString();
}

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
    m_joining.setInterval(joiningTime);
    connect(&m_joining, &QTimer::timeout, this, &LessonWorker::reportMissed);
    // An operation of the client makes several requests, and does not know that it is not wanted any more.
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

// One that nobody has logged in with stays: it may know a password that stands before the service.
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

// Session and channel.

void LessonWorker::open(int ticket)
{
    enqueue(true, [this, ticket] {
        m_ticket = ticket;
        m_expectedSteps = 7;
        const LessonError result = doOpen();
        if (result.kind == LessonError::NoError) {
            reportOpened(ticket, false);
            return;
        }
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
    return waitForChannel() ? LessonError() : error(LessonError::NoChannel);
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

void LessonWorker::adopt(PresenterCollab* collab)
{
    m_collab = collab;
    connect(collab, &PresenterCollab::connectionClosed, this, [this] {
        m_watch.stop();
        m_echoLimit.stop();
        if (std::exchange(m_isOpen, false))
            report([](LessonListener* listener) { listener->onLost(); });
    });
    connect(collab, &PresenterCollab::learnerJoin, this, [this](const Learner& learner) {
        m_heard.insert(learner.deviceId);
        report([learner](LessonListener* listener) { listener->onJoin(learner); });
    });
    connect(collab, &PresenterCollab::learnerUnregister, this, [this](const QString& deviceId) {
        onGone([this, deviceId](const QString& by) {
            if (by.isEmpty() || by == deviceId) {
                m_heard.remove(deviceId);
                m_left.insert(deviceId);
            }
            report([=](LessonListener* listener) { listener->onLeave(deviceId, by); });
        });
    });
    connect(collab, &PresenterCollab::learnerPollResponse, this,
            [this](const QString& deviceId, const QString& id, int time, const QString& answer) {
                report([=](LessonListener* listener) { listener->onAnswer(deviceId, id, time, answer); });
            });
    connect(collab->messageHandler(), &CollaborationMessageHandler::learnerGetQuestion, this,
            [this](const QString& deviceId, int number) {
                report([=](LessonListener* listener) { listener->onQuestionWanted(deviceId, number); });
            });
    connect(collab, &PresenterCollab::controllerRegister, this, [this](bool isHere) {
        if (!isHere)
            onGone([this](const QString& by) {
                report([by](LessonListener* listener) { listener->onRemoteGone(by); });
            });
    });
    // Called after those that the message has called.
    connect(collab->connector(), &SockJSConnector::sockJSMessage, this, [this](const QString& message) {
        if (!m_gone.empty())
            reportGone(senderOf(message));
    });
    connect(collab, &PresenterCollab::remoteControl, this, [this](const RemoteControlMessage& message) {
        onRemoteControl(message.from, message.type, message.data);
    });
    connect(collab, &PresenterCollab::unhandledMessage, this,
            [this](const QVariantMap& body, const QVariant& data) {
                const QString from = body.value(QStringLiteral("from")).toString();
                const QString type = body.value(QStringLiteral("type")).toString();
                const bool isOurs = m_collab && from == m_collab->userToken(); // the bus brings it back
                if (isOurs && type == pulseType) {
                    m_echoes = true;
                    m_echoLimit.stop();
                    const int serial = body.value(QStringLiteral("serial")).toInt();
                    report([serial](LessonListener* listener) { listener->onConfirmed(serial); });
                }
                if (!isOurs)
                    report([=](LessonListener* listener) { listener->onMessage(type, from, data); });
                else if (type == pulseType && std::exchange(m_isListEarly, false))
                    enqueue(true, [this] { listAgain(); });
            });
}

// That open() has returned does not mean that the channel is open: the server has yet to say so.
bool LessonWorker::waitForChannel()
{
    const bool isComing = m_collab && m_collab->connector()->findChild<SockJSTransport*>();
    if (isComing && !m_collab->isConnected() && !m_isCancelled) {
        QEventLoop loop;
        connect(m_collab->connector(), &SockJSConnector::connected, &loop, &QEventLoop::quit);
        connect(m_collab, &PresenterCollab::connectionClosed, &loop, &QEventLoop::quit);
        connect(m_collab, &QObject::destroyed, &loop, &QEventLoop::quit);
        connect(this, &LessonWorker::interrupted, &loop, &QEventLoop::quit);
        QTimer limit;
        connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
        limit.start(m_settings.openLimit > 0 ? mostTransports * m_settings.openLimit + 1000 : greetingLimit);
        loop.exec();
    }
    return m_collab && m_collab->isConnected() && !m_isCancelled;
}

void LessonWorker::reportOpened(int ticket, bool isReturn)
{
    Opening opening;
    opening.joinCode = m_client->sessionCode();
    opening.joinAddress = JoinAddress::of(m_client->server());
    opening.sessionToken = m_sessionToken;
    opening.isReturn = isReturn;
    m_isOpen = true;
    m_heard.clear();
    opening.hasLearners = askLearners(&opening.learners);
    if (!m_isOpen || m_isCancelled) { // lost again meanwhile
        m_isOpen = false;
        report(
            [=](LessonListener* listener) { listener->onNotOpened(ticket, error(LessonError::NoChannel)); });
        return;
    }
    opening.heard = m_heard;
    for (const Learner& learner : std::as_const(opening.learners))
        m_heard.insert(learner.deviceId);
    m_isListEarly = true;
    m_joining.stop();
    if (m_collab)
        m_lastTransport = SockJSConnector::PROTOCOL_TYPE_STR().value(m_collab->connector()->protocol());
    m_lastLook = QDateTime::currentMSecsSinceEpoch();
    if (m_settings.noticesLoss) {
        m_watch.start(watchPace);
        sendPulse(0, echoLimit);
    }
    report([=](LessonListener* listener) { listener->onOpened(ticket, opening); });
    for (const auto& work : std::exchange(m_waiting, {})) {
        if (m_collab)
            work(m_collab);
    }
}

// All but those who have left since the service was asked.
bool LessonWorker::askLearners(QList<Learner>* learners)
{
    QList<ServiceClient::User> users;
    m_left.clear();
    const bool isFine = m_client->askUsers(m_sessionToken, &users).isFine();
    for (const ServiceClient::User& user : std::as_const(users)) {
        if (user.mode == QLatin1String("learner") && !m_left.contains(user.device.deviceId))
            learners->append(user.device);
    }
    return isFine;
}

// What registers us on the bus can take longer than the service's list: who joins in between is on neither.
void LessonWorker::listAgain()
{
    m_missed.clear();
    if (m_isOpen && askLearners(&m_missed))
        m_joining.start();
}

// But for those who were only about to join.
void LessonWorker::reportMissed()
{
    for (const Learner& learner : std::as_const(m_missed)) {
        const bool isKnown = m_heard.contains(learner.deviceId) || m_left.contains(learner.deviceId);
        m_heard.insert(learner.deviceId);
        if (m_isOpen && !isKnown)
            report([learner](LessonListener* listener) { listener->onJoin(learner); });
    }
}

void LessonWorker::reopen(int ticket)
{
    enqueue(true, [this, ticket] {
        m_ticket = ticket;
        const LessonError result = doReopen();
        if (result.kind == LessonError::NoError)
            reportOpened(ticket, true);
        else
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
    return waitForChannel() ? LessonError() : error(LessonError::NoChannel);
}

// The service is asked first: whether it is there, who we are to it, and whether it knows the session.
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

// Where it cannot be, the session goes on without us.
void LessonWorker::takeUp(int ticket, const OpenSession& session)
{
    enqueue(true, [this, ticket, session] {
        m_ticket = ticket;
        m_expectedSteps = 6;
        const LessonError result = doTakeUp(session);
        if (result.kind == LessonError::NoError) {
            reportOpened(ticket, true);
            return;
        }
        dropChannel();
        m_sessionToken.clear();
        report([=](LessonListener* listener) { listener->onNotOpened(ticket, result); });
    });
}

// A session that was started starts again for its teacher, with the same token.
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
    return waitForChannel() ? LessonError() : error(LessonError::NoChannel);
}

// The one that worked comes first: one that a filter swallows would take its time again.
QStringList LessonWorker::transportsForReturn() const
{
    QStringList transports =
        m_settings.transports.isEmpty() ? m_client->sockJSProtocols() : m_settings.transports;
    if (transports.isEmpty()) {
        for (const SockJSConnector::PROTOCOL_TYPE type : SockJSConnector::GetDefaultProtocols())
            transports.append(SockJSConnector::PROTOCOL_TYPE_STR().value(type));
    }
    if (transports.removeOne(m_lastTransport))
        transports.prepend(m_lastTransport);
    return transports;
}

// A computer that sleeps stops the timers, but not the time of day.
void LessonWorker::watch()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const bool hasSlept = now - std::exchange(m_lastLook, now) > sleepLimit;
    if (hasSlept)
        sendPulse(0, hastyEchoLimit);
    else if (!m_echoLimit.isActive() && m_lastPulse.hasExpired(pulsePace))
        sendPulse(0, echoLimit);
}

void LessonWorker::confirm(int serial)
{
    sendPulse(serial, echoLimit);
}

// A far end that is frozen, or has vanished, closes nothing. That it answers is known once it has.
void LessonWorker::sendPulse(int serial, int limit)
{
    if (!m_isOpen || !m_collab)
        return;
    m_lastPulse.start();
    if (m_settings.noticesLoss)
        m_echoLimit.start(m_echoLimit.isActive() ? qMin(limit, m_echoLimit.remainingTime()) : limit);
    const QString frame = QStringLiteral(
        R"({"type":"publish","address":"%1.presenter.%2","body":{"from":"%2","type":"%3","serial":%4}})");
    m_collab->connector()->sendMessage(
        frame.arg(m_sessionToken, m_collab->userToken(), pulseType, QString::number(serial)), true);
}

void LessonWorker::dropChannel()
{
    m_isOpen = m_echoes = false;
    m_watch.stop();
    m_echoLimit.stop();
    m_waiting.clear();
    if (!m_collab)
        return;
    m_collab->disconnect(this);
    m_collab->close();
    m_collab->deleteLater(); // the client forgets it, but would keep it
    m_collab = nullptr;
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

void LessonWorker::send(const std::function<void(PresenterCollab*)>& work)
{
    if (m_isOpen && m_collab)
        work(m_collab);
}

void LessonWorker::withChannel(const std::function<void(PresenterCollab*)>& work)
{
    if (m_isOpen && m_collab)
        work(m_collab);
    else
        m_waiting.push_back(work);
}

// Every device can say that another is gone. Where no message has said it, the host has.
void LessonWorker::onGone(const Gone& gone)
{
    m_gone.push_back(gone);
    QMetaObject::invokeMethod(
        this, [this] { reportGone(QString()); }, Qt::QueuedConnection);
}

void LessonWorker::reportGone(const QString& by)
{
    for (const Gone& gone : std::exchange(m_gone, {}))
        gone(by);
}

// Every device of the session can send what a remote control sends. The service knows which of them is one.
void LessonWorker::onRemoteControl(const QString& from, const QString& type, const QVariant& data)
{
    if (!m_collab || from == m_collab->userToken()) // our own "pause", for example
        return;
    const auto tellRemote = [=] {
        report([=](LessonListener* listener) { listener->onRemote(type, data); });
    };
    if (m_remotes.contains(from)) {
        tellRemote();
        return;
    }
    const auto tellOther = [=] {
        m_others.insert(from);
        report([=](LessonListener* listener) { listener->onMessage(type, from, data); });
    };
    if (m_others.contains(from))
        tellOther();
    else
        enqueue(true, [=] { isRemote(from) ? tellRemote() : tellOther(); });
}

bool LessonWorker::isRemote(const QString& from)
{
    QList<ServiceClient::User> users;
    if (m_client)
        m_client->askUsers(m_sessionToken, &users);
    for (const ServiceClient::User& user : std::as_const(users)) {
        if (user.mode == QLatin1String("controller"))
            m_remotes.insert(user.device.deviceId);
    }
    return m_remotes.contains(from);
}

} // namespace Calyx
