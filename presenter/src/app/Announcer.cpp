#include "app/Announcer.h"

#include "lesson/Notebook.h"
#include "terminal/Screen.h"
#include "text/Text.h"
#include "text/Words.h"

#include <QJsonDocument>
#include <QMetaEnum>

#include <utility>

using namespace Calyx;

namespace {

// A payload on one line.
QString shown(const QVariant& data)
{
    constexpr int longest = 200;
    QString text = data.toString();
    if (data.userType() == QMetaType::QVariantMap || data.userType() == QMetaType::QVariantList)
        text = QString::fromUtf8(QJsonDocument::fromVariant(data).toJson(QJsonDocument::Compact));
    return Text::clean(text.left(2 * longest)).left(longest); // a picture is long
}

QString whyNot(Lesson::RemoteCommand command)
{
    switch (command) {
    case Lesson::NextCard:
        return Words::tr("there is no further card");
    case Lesson::PreviousCard:
        return Words::tr("there is no earlier card");
    case Lesson::ShowCard:
        return Words::tr("there is no card");
    case Lesson::AddCard:
        return Words::tr("this is no picture");
    default:
        return Words::tr("neither a poll nor an assessment is under way");
    }
}

bool isCommand(const QString& type)
{
    const auto commands = QMetaEnum::fromType<Lesson::RemoteCommand>();
    for (int i = 0; i < commands.keyCount(); ++i) {
        if (Lesson::nameOf(Lesson::RemoteCommand(commands.value(i))) == type)
            return true;
    }
    return false;
}

bool changesCard(Lesson::RemoteCommand command)
{
    return command == Lesson::NextCard || command == Lesson::PreviousCard || command == Lesson::AddCard;
}

} // namespace

Announcer::Announcer(Lesson& lesson, const Notebook& notes, Screen& screen)
    : m_lesson(lesson), m_notes(notes), m_screen(screen)
{
    constexpr int together = 200; // ms
    m_soon.setSingleShot(true);
    m_soon.setInterval(together);
    connect(&m_soon, &QTimer::timeout, this, &Announcer::flush);
    connect(lesson.roster(), &Roster::joined, this, [this](const QString& id) { collect(Joined, id); });
    connect(lesson.roster(), &Roster::left, this, [this](const QString& id) { collect(Left, id); });
    connect(&lesson, &Lesson::stateChanged, this, &Announcer::tellState);
    connect(&lesson, &Lesson::nextAttemptChanged, this, &Announcer::tellAttempt);
    connect(&lesson, &Lesson::answersChanged, this, &Announcer::tellAnswers);
    connect(&lesson, &Lesson::assessmentChanged, this, &Announcer::tellAssessment);
    connect(&lesson, &Lesson::messageReceived, this, &Announcer::tellMessage);
    connect(&lesson, &Lesson::remoteCommand, this, &Announcer::tellCommand);
    // After the command that has shown it.
    const auto tellCard = [this](int number) {
        if (number > 0)
            tell(Words::tr("Card shown: %1").arg(m_lesson.deck()->name(number)));
    };
    connect(&lesson, &Lesson::cardShown, this, tellCard, Qt::QueuedConnection);
    connect(&lesson, &Lesson::remotePresentChanged, this, [this] {
        if (m_lesson.isRemotePresent())
            tell(Words::tr("  The remote control has joined"));
        else if (!m_lesson.joinCode().isEmpty())
            tell(Words::tr("  The remote control has left"));
    });
    lesson.setObeys(Lesson::EndLesson, false); // by the console, which drops the commands that wait
}

Announcer::~Announcer()
{
    flush();
}

void Announcer::tell(const QString& text, Ink ink)
{
    flush();
    m_screen.note(text, ink);
}

void Announcer::collect(Happening happening, const QString& deviceId)
{
    constexpr int longest = 1000; // ms
    if (happening == Left && m_lesson.joinCode().isEmpty())
        return; // with the session
    if (happening != m_happening)
        flush();
    m_happening = happening;
    m_names.append(m_lesson.roster()->name(deviceId));
    m_here = m_lesson.roster()->presentCount();
    if (!m_soon.isActive())
        m_first.start();
    if (!m_soon.isActive() || m_first.elapsed() < longest)
        m_soon.start();
}

// "  + Ann, Bea and 28 more have joined, 30 here"
void Announcer::flush()
{
    constexpr int mostNames = 5;
    const QStringList names = std::exchange(m_names, {});
    m_soon.stop();
    if (names.isEmpty())
        return;
    const QString who = Text::list(names, mostNames);
    const bool isOne = names.size() == 1;
    const QString text = m_happening == Joined ? isOne ? Words::tr("  + %1 has joined, %2 here")
                                                       : Words::tr("  + %1 have joined, %2 here")
                         : m_happening == Left ? isOne ? Words::tr("  - %1 has left, %2 here")
                                                       : Words::tr("  - %1 have left, %2 here")
                         : isOne ? Words::tr("  Late: the answer of %1")
                                               : Words::tr("  Late: the answers of %1");
    m_screen.note(m_happening == AnsweredLate ? text.arg(who) : text.arg(who, QString::number(m_here)),
                  Ink::Faint);
}

void Announcer::tellState()
{
    const bool isLost = m_lesson.state() == Lesson::Reconnecting && !m_notes.isDisconnected;
    if (isLost && !std::exchange(m_isLost, true) && !m_screen.isLive())
        tell(Words::tr("The connection is lost. Trying again."), Ink::Bad);
    else if (m_lesson.state() == Lesson::Live && m_isLost)
        tell(Words::tr("The connection is back."), Ink::Good);
    m_isLost = isLost;
}

// Where the screen has no live block, which tells it otherwise, a line of its own.
void Announcer::tellAttempt()
{
    const int seconds = m_lesson.secondsToAttempt();
    if (seconds > 0 && !m_screen.isLive())
        tell(Words::tr("  Trying again in %1 s.").arg(seconds), Ink::Faint);
}

void Announcer::tellAnswers(const Poll* poll)
{
    if (poll->isRunning())
        return;
    const QVector<PollAnswer> answers = poll->answers();
    for (const PollAnswer& answer : answers) {
        const QString once = poll->id() + answer.deviceId;
        if (!answer.isLate || m_told.contains(once))
            continue;
        m_told.insert(once);
        collect(AnsweredLate, answer.deviceId);
    }
}

void Announcer::tellAssessment()
{
    if (m_lesson.assessment())
        connect(m_lesson.assessment(), &Assessment::changed, this, &Announcer::tellFinished,
                Qt::UniqueConnection);
}

void Announcer::tellFinished()
{
    const Assessment& assessment = *m_lesson.assessment();
    const QStringList devices = assessment.participants();
    for (const QString& deviceId : devices) {
        const QString once = assessment.token() + deviceId;
        if (!assessment.isFinished(deviceId) || m_told.contains(once))
            continue;
        m_told.insert(once);
        tell(Words::tr("  %1 has answered all questions, %2 of %3 have")
                 .arg(m_lesson.roster()->name(deviceId), QString::number(assessment.finished()),
                      QString::number(assessment.expected())),
             Ink::Faint);
    }
}

void Announcer::tellCommand(Lesson::RemoteCommand command, bool isObeyed, const QVariant& data)
{
    const Deck& deck = *m_lesson.deck();
    const QString what = QStringLiteral("%1 %2").arg(Lesson::nameOf(command), shown(data)).trimmed();
    tell(Words::tr("  Remote control: %1").arg(what), Ink::Strong);
    if (command == Lesson::EndLesson)
        Q_EMIT stopRequested();
    else if (!isObeyed)
        tell(Words::tr("  Not done: %1.").arg(whyNot(command)));
    else if (changesCard(command))
        tell(Words::tr("  Card %1 of %2: %3")
                 .arg(QString::number(deck.current()), QString::number(deck.rowCount()),
                      deck.name(deck.current())));
}

void Announcer::tellMessage(const QString& type, const QString& from, const QVariant& data)
{
    const QString name = m_lesson.roster()->name(from);
    if (type == QLatin1String("questionResponse"))
        tell(Words::tr("  An answer of %1 does not count").arg(name), Ink::Faint);
    else if (type == QLatin1String("questionGet"))
        tell(Words::tr("  %1 asks for question %2, and gets none").arg(name, shown(data)), Ink::Faint);
    else if (isCommand(type))
        tellRefusal(type, name);
    else
        tell(Words::tr("  A message of the unknown type \"%1\" from %2: %3")
                 .arg(shown(type), shown(from), shown(data)));
}

void Announcer::tellRefusal(const QString& command, const QString& learner)
{
    tell(Words::tr("  Remote control: %1").arg(command), Ink::Strong);
    tell(Words::tr("  Not done: it came from %1.").arg(learner), Ink::Bad);
}
