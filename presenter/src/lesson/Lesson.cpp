#include "lesson/Lesson.h"

#include "text/Text.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/PresenterAssessment>
#include <CalyxClient/SockJSConnector>

#include <QJsonDocument>
#include <QTime>
#include <QUuid>

#include <algorithm>
#include <utility>

using namespace Calyx;

namespace {

constexpr int longestText = 200;

// A payload on one line.
QString shown(const QVariant& data)
{
    QString text = data.toString();
    if (data.type() == QVariant::Map || data.type() == QVariant::List)
        text = QString::fromUtf8(QJsonDocument::fromVariant(data).toJson(QJsonDocument::Compact));
    return Text::clean(text.left(2 * longestText)).left(longestText); // a picture is long
}

} // namespace

Lesson::Lesson(const QString& server)
    : lessonId(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_client(nullptr, server)
    , m_desk(m_roster)
    , m_remoteControl(*this)
{
    connect(&m_desk, &AssessmentDesk::changed, this, &Lesson::changed);
    connect(&m_desk, &AssessmentDesk::happened, this, &Lesson::happened);
    connect(&m_remoteControl, &RemoteControl::happened, this, &Lesson::happened);
    constexpr int patience = 2000; // ms
    m_earlyTimer.setSingleShot(true);
    m_earlyTimer.setInterval(patience);
    connect(&m_earlyTimer, &QTimer::timeout, this, [this] {
        const QList<Learner> early = std::exchange(m_early, {});
        for (const Learner& learner : early)
            join(learner);
    });
}

void Lesson::adopt(PresenterCollab* collab)
{
    if (m_collab && m_collab != collab)
        m_collab->deleteLater(); // the client has forgotten it, but would keep it
    m_collab = collab;
    m_expectsClose = false;
    m_early.clear();
    m_others.clear();
    m_roster.clear();
    connect(collab, &PresenterCollab::learnerJoin, this, &Lesson::join);
    connect(collab, &PresenterCollab::learnerUnregister, this, &Lesson::onLeave);
    connect(collab, &PresenterCollab::learnerPollResponse, this,
            [this](const QString& deviceId, const QString& answerId, int, const QString& answer) {
                onAnswer(deviceId, answerId, answer);
            });
    connect(collab, &PresenterCollab::controllerRegister, this, &Lesson::onController);
    connect(collab, &PresenterCollab::remoteControl, this, &Lesson::onRemoteControl);
    connect(collab, &PresenterCollab::unhandledMessage, this, &Lesson::onUnhandled);
    connect(collab, &PresenterCollab::connectionClosed, this, &Lesson::onClosed);
    connect(collab->connector(), &SockJSConnector::connected, this, &Lesson::changed);
}

// False when the list is the one before: then the request may have failed, and the list may even be that of
// another session.
bool Lesson::fetchLearners()
{
    const auto ids = [this] {
        QStringList list;
        const QList<Learner> learners = m_client.learners();
        for (const Learner& learner : learners)
            list.append(learner.deviceId);
        return list;
    };
    const QStringList before = ids();
    return m_client.doGetLearners() && ids() != before;
}

void Lesson::refreshLearners()
{
    if (!fetchLearners())
        return;
    m_early.clear();
    const QList<Learner> listed = m_client.learners();
    const QStringList missing = m_roster.presentExcept(listed);
    for (const Learner& learner : listed)
        join(learner);
    for (const QString& deviceId : missing)
        onLeave(deviceId);
}

void Lesson::findEarlyLearners()
{
    if (!fetchLearners())
        return;
    m_early = m_client.learners();
    m_earlyTimer.start();
}

void Lesson::forgetSession()
{
    m_early.clear();
    m_others.clear();
    m_roster.clear();
    m_isLocked = false;
    Q_EMIT changed();
}

int Lesson::msecsToNewId() const
{
    constexpr int second = 1000;
    constexpr int tick = 10; // the clock from which the ids are made lags by this much at most
    if (std::time(nullptr) != m_lastIdSecond)
        return 0;
    return second - QTime::currentTime().msec() + tick;
}

void Lesson::startPoll(const PollPlan& plan)
{
    m_collab->startPoll(plan.type, plan.ordinal, plan.options, plan.extra);
    m_lastIdSecond = std::time(nullptr);
    m_isLocked = false; // the question takes the place of the text
    const QString question = m_collab->currentQuestionId();
    m_board.start(plan, question.isEmpty() ? m_collab->currentPollId() : question);
    Q_EMIT changed();
}

void Lesson::stopPoll()
{
    if (m_collab)
        m_collab->stopPoll();
    m_board.stop(m_roster);
    Q_EMIT changed();
}

void Lesson::setPaused(bool paused)
{
    if (paused)
        m_collab->pausePoll();
    else
        m_collab->resumePoll();
    m_board.setPaused(paused);
    Q_EMIT changed();
}

void Lesson::showText(const QString& id, const QString& text, bool isDismissible, bool isReview)
{
    PresenterAssessment(nullptr, m_collab).sendMessage(id, text, isDismissible, isReview);
}

bool Lesson::goToCard(int number)
{
    if (!m_deck.go(number))
        return false;
    Q_EMIT happened(
        QStringLiteral("  Card %1 of %2: %3")
            .arg(QString::number(number), QString::number(m_deck.count()), m_deck.card(number).name),
        Ink::Plain);
    return true;
}

bool Lesson::showCurrentCard()
{
    if (m_deck.current() == 0)
        return false;
    const Deck::Card& card = m_deck.card(m_deck.current());
    showPicture(card.picture, card.name);
    return true;
}

void Lesson::showPicture(const Picture& picture, const QString& name)
{
    picture.setOn(m_collab);
    m_collab->showImageCard(true);
    ++m_cards;
    Q_EMIT happened(QStringLiteral("Card shown: %1").arg(name), Ink::Plain);
}

void Lesson::setLocked(bool locked)
{
    if (locked || m_isLocked) {
        m_isLocked = locked;
        showLock(QString());
    }
}

// There is no message that takes a text away: another takes its place.
void Lesson::showLock(const QString& id)
{
    const char* const text = m_isLocked ? "Please look at your teacher." : "You can go on.";
    showText(id, QLatin1String(text), !m_isLocked, false);
}

void Lesson::tellJoin(const QString& deviceId)
{
    m_mostLearners = qMax(m_mostLearners, m_roster.presentCount());
    Q_EMIT manyHappened(Joined, m_roster.name(deviceId));
}

void Lesson::tellLeave(const QString& deviceId)
{
    Q_EMIT manyHappened(Left, m_roster.name(deviceId));
}

void Lesson::join(const Learner& learner)
{
    if (!m_roster.join(learner))
        return;
    tellJoin(learner.deviceId);
    m_desk.onJoin(learner.deviceId);
    if (m_isLocked)
        showLock(learner.deviceId);
    Q_EMIT changed();
}

void Lesson::onLeave(const QString& deviceId)
{
    m_early.erase(std::remove_if(m_early.begin(), m_early.end(),
                                 [&](const Learner& learner) { return learner.deviceId == deviceId; }),
                  m_early.end());
    if (!m_roster.leave(deviceId))
        return;
    tellLeave(deviceId);
    Q_EMIT changed();
}

void Lesson::onAnswer(const QString& deviceId, const QString& answerId, const QString& answer)
{
    if (m_desk.takeAnswer(deviceId, answerId, answer))
        return;
    const PollBoard::Verdict verdict = m_board.addAnswer(deviceId, answerId, answer);
    if (verdict == PollBoard::TooLate)
        Q_EMIT manyHappened(AnsweredLate, m_roster.name(deviceId));
    else if (verdict == PollBoard::UnknownPoll)
        Q_EMIT happened(
            QStringLiteral("  An answer of %1 belongs to no poll of ours").arg(m_roster.name(deviceId)),
            Ink::Faint);
    Q_EMIT changed();
}

void Lesson::onController(bool isHere)
{
    Q_EMIT happened(
        QLatin1String(isHere ? "  The remote control has joined" : "  The remote control has left"),
        Ink::Plain);
}

void Lesson::onRemoteControl(const RemoteControlMessage& message)
{
    if (message.from == m_collab->userToken()) // our own "pause", for example
        return;
    QString text = QStringLiteral("  Remote control: ") + Text::clean(message.type);
    if (const QString data = shown(message.data); !data.isEmpty())
        text += QLatin1Char(' ') + data;
    Q_EMIT happened(text, Ink::Strong);
    m_asked.enqueue(message);
    if (m_asked.size() > 1) // the service is being asked who sent the first of them
        return;
    while (!m_asked.isEmpty()) {
        obey(m_asked.head());
        m_asked.dequeue();
    }
}

// Every device of the session can send such a message.
void Lesson::obey(const RemoteControlMessage& message)
{
    const QString learner = learnerBehind(message.from);
    if (learner.isEmpty())
        m_remoteControl.obey(message);
    else
        Q_EMIT happened(QStringLiteral("  Not done: it came from %1.").arg(learner), Ink::Bad);
}

// The learner's name; empty when the device is nobody's. Who has not been heard yet is known to the service.
QString Lesson::learnerBehind(const QString& deviceId)
{
    if (m_roster.isPresent(deviceId))
        return m_roster.name(deviceId);
    if (m_others.contains(deviceId))
        return QString();
    m_client.doGetLearners();
    const QList<Learner> learners = m_client.learners();
    for (const Learner& learner : learners) {
        if (learner.deviceId == deviceId)
            return learner.userName.isEmpty() ? QStringLiteral("a learner") : Text::clean(learner.userName);
    }
    m_others.insert(deviceId);
    return QString();
}

void Lesson::onUnhandled(const QVariantMap& body, const QVariant& data)
{
    // The bus brings what we publish to the whole session back to us.
    if (body.value(QStringLiteral("from")).toString() == m_collab->userToken())
        return;
    const auto text = [&](const char* key) { return shown(body.value(QLatin1String(key))); };
    Q_EMIT happened(QStringLiteral("  A message of the unknown type \"%1\" from %2: %3")
                        .arg(text("type"), text("from"), shown(data)),
                    Ink::Plain);
}

void Lesson::onClosed(bool forInactivity)
{
    if (!m_expectsClose)
        Q_EMIT happened(QLatin1String(forInactivity
                                          ? "The live channel was closed: it was not used for an hour."
                                          : "The live channel was closed by the other end or the network."),
                        Ink::Bad);
    Q_EMIT changed();
}
