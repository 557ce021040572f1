#include "lesson/LessonPrivate.h"

#include "collab/PresenterCollab.h"
#include "lesson/LessonText.h"

#include <utility>

namespace Calyx {

namespace {

const QHash<QString, Lesson::RemoteCommand>& remoteCommands()
{
    static const QHash<QString, Lesson::RemoteCommand> commands = {
        {QStringLiteral("presenterActive"), Lesson::AskPresence},
        {QStringLiteral("requestLessonInfo"), Lesson::AskLesson},
        {QStringLiteral("requestLesson"), Lesson::AskCards},
        {QStringLiteral("pause"), Lesson::Pause},
        {QStringLiteral("resume"), Lesson::Resume},
        {QStringLiteral("lockAll"), Lesson::Lock},
        {QStringLiteral("unlockAll"), Lesson::Unlock},
        {QStringLiteral("nextCard"), Lesson::NextCard},
        {QStringLiteral("previousCard"), Lesson::PreviousCard},
        {QStringLiteral("pushCurrentCard"), Lesson::ShowCard},
        {QStringLiteral("addImageCard"), Lesson::AddCard},
        {QStringLiteral("stopSession"), Lesson::EndLesson}};
    return commands;
}

} // namespace

void LessonPrivate::tellRemote()
{
    send([id = LessonText::escaped(lessonId), name = LessonText::escaped(content.lessonName),
          current = deck->current(), cards = deck->rowCount()](PresenterCollab* collab) {
        collab->sendPresenterIsActiveToRemote();
        collab->sendCurrentLessonToRemote(id, name);
        collab->sendCurrentCardToRemote(current, cards);
    });
}

void LessonPrivate::onRemote(const QString& type, const QVariant& data)
{
    const auto command = remoteCommands().constFind(type);
    if (command == remoteCommands().constEnd() || !isOpen())
        return;
    const QPointer<Lesson> self(q);
    if (!std::exchange(isRemotePresent, true))
        Q_EMIT q->remotePresentChanged();
    if (!self)
        return;
    const bool obeyed = !takenOver.contains(*command) && obey(*command, data);
    if (self)
        Q_EMIT q->remoteCommand(*command, obeyed, data);
}

QString Lesson::nameOf(RemoteCommand command)
{
    return remoteCommands().key(command);
}

// A command that changes nothing is answered with where the lesson stands.
bool LessonPrivate::obey(Lesson::RemoteCommand command, const QVariant& data)
{
    const bool isSomething = content.isAsked() || content.isAssessed();
    switch (command) {
    case Lesson::AskPresence:
    case Lesson::AskLesson:
    case Lesson::AskCards:
        tellRemote();
        return true;
    case Lesson::Pause:
    case Lesson::Resume:
        setPaused(command == Lesson::Pause);
        return isSomething;
    case Lesson::Lock:
    case Lesson::Unlock:
        q->setLocked(command == Lesson::Lock);
        return true;
    case Lesson::NextCard:
    case Lesson::PreviousCard:
        if (deck->setCurrent(deck->current() + (command == Lesson::NextCard ? 1 : -1)))
            return true;
        tellRemote();
        return false;
    case Lesson::ShowCard: {
        const bool hasCard = deck->current() > 0;
        hasCard ? q->showCard() : tellRemote();
        return hasCard;
    }
    case Lesson::AddCard:
        return addRemoteCard(data);
    case Lesson::EndLesson:
        q->end();
        return true;
    }
    return false;
}

// The picture joins the lesson as its last card, which becomes the current one; it is shown when that is
// asked for.
bool LessonPrivate::addRemoteCard(const QVariant& data)
{
    const QVariantMap map = data.toMap();
    const QPointer<Lesson> self(q);
    const QString name = map.value(QStringLiteral("name")).toString();
    if (!deck->add(name.trimmed().isEmpty() ? Lesson::tr("Picture") : name,
                   map.value(QStringLiteral("url"), data).toString())) {
        tellRemote();
        return false;
    }
    if (self)
        deck->setCurrent(deck->rowCount());
    return true;
}

void LessonPrivate::onRemoteGone(const QString& by)
{
    if (content.roster->contains(by))
        return;
    if (std::exchange(isRemotePresent, false))
        Q_EMIT q->remotePresentChanged();
}

} // namespace Calyx
