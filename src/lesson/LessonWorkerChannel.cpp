// The channel of a lesson: who is there, what comes in, and whether the far end is still there.

#include "base/JsonReader.h"
#include "collab/CollaborationMessageHandler.h"
#include "collab/PresenterCollab.h"
#include "lesson/JoinAddress.h"
#include "lesson/LessonWorker.h"
#include "lesson/ServiceClient.h"
#include "transport/SockJSConnector.h"
#include "transport/SockJSTransport.h"

#include <QDateTime>
#include <QEventLoop>
#include <QJsonObject>

#include <utility>

namespace Calyx {

namespace {

constexpr int mostTransports = 3;
constexpr int greetingLimit = 31000; // ms, where a transport has no limit
constexpr int watchPace = 1000;
constexpr int sleepLimit = 5000;
constexpr int pulsePace = 8500;
// With watchPace and pulsePace less than 15 s, in which a far end that is gone is noticed.
constexpr int echoLimit = 5000;
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

void LessonWorker::adopt(PresenterCollab* collab)
{
    m_collab = collab;
    connect(collab, &PresenterCollab::connectionClosed, this, [this] {
        m_watch.stop();
        m_echoLimit.stop();
        if (std::exchange(m_isOpen, false))
            report([](LessonListener* listener) { listener->onLost(); });
    });
    hearLearners(collab);
    hearOthers(collab);
}

void LessonWorker::hearLearners(PresenterCollab* collab)
{
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
}

void LessonWorker::hearOthers(PresenterCollab* collab)
{
    connect(collab, &PresenterCollab::controllerRegister, this, [this](bool isHere) {
        if (!isHere)
            onGone([this](const QString& by) {
                report([by](LessonListener* listener) { listener->onRemoteGone(by); });
            });
    });
    // This slot runs after those that hear what the message says: it alone knows who has sent it.
    connect(collab->connector(), &SockJSConnector::sockJSMessage, this, [this](const QString& message) {
        if (!m_gone.empty())
            reportGone(senderOf(message));
    });
    connect(collab, &PresenterCollab::remoteControl, this, [this](const RemoteControlMessage& message) {
        onRemoteControl(message.from, message.type, message.data);
    });
    connect(collab, &PresenterCollab::unhandledMessage, this, &LessonWorker::onUnhandled);
}

void LessonWorker::onUnhandled(const QVariantMap& body, const QVariant& data)
{
    const QString from = body.value(QStringLiteral("from")).toString();
    const QString type = body.value(QStringLiteral("type")).toString();
    if (!m_collab || from != m_collab->userToken())
        report([=](LessonListener* listener) { listener->onMessage(type, from, data); });
    else if (type == pulseType)
        onPulse(body.value(QStringLiteral("serial")).toInt());
}

// The bus has brought our pulse back, and so has got everything that was sent before it.
void LessonWorker::onPulse(int serial)
{
    m_echoes = true;
    m_echoLimit.stop();
    report([serial](LessonListener* listener) { listener->onConfirmed(serial); });
    if (std::exchange(m_isListEarly, false))
        enqueue(true, [this] { listAgain(); });
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

LessonError LessonWorker::finishOpening(bool isReturn)
{
    if (!waitForChannel())
        return error(LessonError::NoChannel);
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
        return error(LessonError::NoChannel);
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
    report([=, ticket = m_ticket](LessonListener* listener) { listener->onOpened(ticket, opening); });
    for (const auto& work : std::exchange(m_waiting, {})) {
        if (m_collab)
            work(m_collab);
    }
    return LessonError();
}

// The service's list, without those who have left since it was asked for.
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

// The service may have made its list before the bus knew us: a device that joined in between is not on it,
// and was not heard either. So the list is asked for again once the bus knows us.
void LessonWorker::listAgain()
{
    m_missed.clear();
    if (m_isOpen && askLearners(&m_missed))
        m_joining.start(joiningTime);
}

// Those of the second list who have not joined by themselves meanwhile.
void LessonWorker::reportMissed()
{
    for (const Learner& learner : std::as_const(m_missed)) {
        const bool isKnown = m_heard.contains(learner.deviceId) || m_left.contains(learner.deviceId);
        m_heard.insert(learner.deviceId);
        if (m_isOpen && !isKnown)
            report([learner](LessonListener* listener) { listener->onJoin(learner); });
    }
}

// The transport that worked comes first: one that a filter swallows would take its time again.
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

// A far end that is frozen or has vanished closes nothing: a message to ourselves has to come back in time.
// That is asked only of a bus that has brought one back before.
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

// Every device can say that another is gone, so that its message is looked at first. Where no message has
// said it, the host has.
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
    const bool isToldNow = !m_remotes.contains(from) && !m_others.contains(from) && m_client &&
                           m_client->askUsers(m_sessionToken, &users).isFine();
    for (const ServiceClient::User& user : std::as_const(users)) {
        if (user.mode == QLatin1String("controller"))
            m_remotes.insert(user.device.deviceId);
    }
    if (isToldNow && !m_remotes.contains(from))
        m_others.insert(from);
    return m_remotes.contains(from);
}

} // namespace Calyx
