#include "Classroom.h"

#include <CalyxClient/PresenterAssessment>

#include <QTime>
#include <QTimer>

// What comes and goes on the live channel.

using namespace Calyx;

namespace {

// Polls that are made within the same second have the same id, and a late answer to one would count for the
// next. Milliseconds until a new one is to be had.
int msecsToNewId(std::time_t lastPoll)
{
    constexpr int second = 1000;
    constexpr int tick = 10; // by which the clock of the ids may lag
    return std::time(nullptr) == lastPoll ? second - QTime::currentTime().msec() + tick : 0;
}

} // namespace

void Classroom::listen()
{
    connect(m_collab, &PresenterCollab::learnerJoin, this, [this](const Learner& learner) {
        Q_EMIT learnerJoined(learner.deviceId, learner.userName, learner.deviceType);
        if (m_isLocked)
            showLock(learner.deviceId);
    });
    connect(m_collab, &PresenterCollab::learnerUnregister, this, &Classroom::learnerLeft);
    connect(m_collab, &PresenterCollab::learnerPollResponse, this,
            [this](const QString& deviceId, const QString& answerId, int, const QString& answer) {
                Q_EMIT answered(deviceId, answerId, answer);
            });
    connect(m_collab, &PresenterCollab::controllerRegister, this, [this](bool isHere) {
        if (!isHere)
            Q_EMIT remoteLeft();
    });
    connect(m_collab, &PresenterCollab::remoteControl, this, [this](const RemoteControlMessage& message) {
        if (message.from != m_collab->userToken()) // the bus brings our own "pause" back to us
            Q_EMIT remoteCommand(message.type, message.data);
    });
    connect(m_collab, &PresenterCollab::connectionClosed, this, [this] {
        if (m_stage == Live)
            setStage(Lost);
    });
}

void Classroom::startPoll(const PollKind& kind, int options)
{
    if (!live())
        return;
    if (const int msecs = msecsToNewId(m_lastPoll)) {
        QTimer::singleShot(msecs, this, [this, kind, options] { startPoll(kind, options); });
        return;
    }
    m_collab->startPoll(kind.type, kind.ordinal, options, kind.type == PollType::MULTIPLE ? 1 : 0);
    m_lastPoll = std::time(nullptr);
    m_isLocked = false; // the question takes the place of the text
    const QString question = m_collab->currentQuestionId();
    Q_EMIT pollStarted(question.isEmpty() ? m_collab->currentPollId() : question);
}

void Classroom::stopPoll()
{
    if (!live())
        return;
    m_collab->stopPoll();
    Q_EMIT pollStopped();
}

void Classroom::setPaused(bool paused)
{
    if (!live())
        return;
    if (paused)
        m_collab->pausePoll();
    else
        m_collab->resumePoll();
    Q_EMIT pollPaused(paused);
}

void Classroom::showCard(const QByteArray& png)
{
    if (!live())
        return;
    m_collab->setCardImage(png);
    m_collab->showImageCard(true);
    Q_EMIT cardShown();
}

void Classroom::setLocked(bool locked)
{
    if (!live() || locked == m_isLocked)
        return;
    m_isLocked = locked;
    showLock(QString());
}

// To one device, or to all. There is no message that takes a text away: another takes its place.
void Classroom::showLock(const QString& deviceId)
{
    const char* const text = m_isLocked ? "Please look at your teacher." : "You can go on.";
    PresenterAssessment(nullptr, m_collab).sendMessage(deviceId, QLatin1String(text), !m_isLocked, false);
}
