#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "lesson/Notebook.h"
#include "terminal/Screen.h"
#include "text/JsonText.h"
#include "text/Text.h"
#include "text/Words.h"

#include <CalyxClient/PresenterCollab>

namespace {

constexpr int mostCards = 1000;

Outcome told(CommandContext& context, const std::function<void(PresenterCollab*)>& work,
             const QString& text = Words::tr("The remote control has been told."))
{
    context.lesson.onChannel(work);
    context.screen.note(text);
    return Outcome::done();
}

Outcome remoteLesson(CommandContext& context, const Arguments& arguments)
{
    return told(context, [id = JsonText::escaped(arguments.at(0)), name = JsonText::escaped(arguments.at(1))](
                             PresenterCollab* collab) { collab->sendCurrentLessonToRemote(id, name); });
}

Outcome checkRemoteCard(const QString&, const Arguments& arguments)
{
    const int current = arguments.at(0).toInt();
    const int total = arguments.at(1).toInt();
    if (current >= 1 && current <= total && total <= mostCards)
        return Outcome::done();
    return Outcome::failed(
        Words::tr("The card's number goes from 1 to the number of cards, which is at most %1.")
            .arg(mostCards));
}

Outcome remoteCard(CommandContext& context, const Arguments& arguments)
{
    return told(context, [current = arguments.at(0).toInt(), total = arguments.at(1).toInt()](
                             PresenterCollab* collab) { collab->sendCurrentCardToRemote(current, total); });
}

Outcome remoteActive(CommandContext& context, const Arguments&)
{
    return told(context, [](PresenterCollab* collab) { collab->sendPresenterIsActiveToRemote(); });
}

Outcome publish(CommandContext& context, const Arguments& arguments)
{
    return told(
        context,
        [=](PresenterCollab* collab) {
            collab->publishMessage(arguments.at(0), arguments.at(1), arguments.at(2));
        },
        Words::tr("A message of type %1 is published to %2.")
            .arg(Text::clean(arguments.at(1)), Text::clean(arguments.at(0))));
}

Outcome ping(CommandContext& context, const Arguments&)
{
    return told(
        context, [](PresenterCollab* collab) { collab->sendPing(); },
        Words::tr("A ping was sent on the live channel."));
}

Outcome lesson(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    QString id = context.notes.lessonId();
    ArgumentReader::takeSetting(arguments, QStringLiteral("id"), id);
    const QString name = arguments.isEmpty() ? context.notes.lessonName() : arguments.join(QLatin1Char(' '));
    context.notes.setName(id, name);
    context.screen.note(Words::tr("The lesson is called \"%1\".").arg(Text::clean(name)));
    return Outcome::done();
}

Outcome lock(CommandContext& context, const Arguments&)
{
    context.lesson.setLocked(true);
    context.screen.note(Words::tr("The learners' devices are locked; \"unlock\" frees them."));
    return Outcome::done();
}

Outcome unlock(CommandContext& context, const Arguments&)
{
    context.lesson.setLocked(false);
    context.screen.note(Words::tr("The learners' devices are not locked."));
    return Outcome::done();
}

Outcome heavy(CommandContext& context, const Arguments&)
{
    return told(
        context, [](PresenterCollab* collab) { collab->sendHeavy(); },
        Words::tr("The learners' devices expect something large."));
}

namespace F = Fact;
using P = Place;

} // namespace

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
QVector<Command> CommandTable::devices()
{
    return {
        {"remote lesson", "ID NAME", QT_TRANSLATE_NOOP("Words", "Tell the remote control of some lesson."),
         QT_TRANSLATE_NOOP("Words", "By itself it is told of this one."),
         F::Channel | F::Now, F::Nothing, F::Nothing, 2, 2, {}, "", remoteLesson},
        {"remote card", "NUMBER TOTAL", QT_TRANSLATE_NOOP("Words", "Tell the remote control which card is shown."),
         "",
         F::Channel | F::Now, F::Nothing, F::Nothing, 2, 2, {P::Number, P::Number}, "", remoteCard, checkRemoteCard},
        {"remote active", "", QT_TRANSLATE_NOOP("Words", "Tell the remote control that the presenter is here."),
         "",
         F::Channel | F::Now, F::Nothing, F::Nothing, 0, 0, {}, "", remoteActive},
        {"publish", "ADDRESS TYPE JSON", QT_TRANSLATE_NOOP("Words", "Publish a message of your own."),
         QT_TRANSLATE_NOOP("Words", "An ADDRESS that begins with \".\" is below the session: .learner, .controller, "
         ".user.DEVICE. Example: publish .learner heavy '\"\"'"),
         F::Channel | F::Now, F::Nothing, F::Nothing, 3, 3, {}, "", publish},
        {"ping", "", QT_TRANSLATE_NOOP("Words", "Send a ping on the live channel."),
         QT_TRANSLATE_NOOP("Words", "Every minute this happens by itself."),
         F::Channel | F::Now, F::Nothing, F::Nothing, 0, 0, {}, "", ping},
        {"lesson", "[NAME] [id=ID]", QT_TRANSLATE_NOOP("Words", "Name the lesson, for the remote control."),
         QT_TRANSLATE_NOOP("Words", "Without a name of its own it is called as its script."),
         F::Nothing, F::Nothing, F::Nothing, 1, anyNumber, {}, "id=", lesson},
        {"lock", "", QT_TRANSLATE_NOOP("Words", "Cover the learners' devices with a text."),
         QT_TRANSLATE_NOOP("Words", "Until \"unlock\", or until the next poll starts."),
         F::Channel, F::Nothing, F::Nothing, 0, 0, {}, "", lock},
        {"unlock", "", QT_TRANSLATE_NOOP("Words", "Let the learners go on."),
         "",
         F::Channel, F::Nothing, F::Nothing, 0, 0, {}, "", unlock},
        {"heavy", "", QT_TRANSLATE_NOOP("Words", "Tell the learners' devices that something large is coming."),
         "",
         F::Channel | F::Now, F::Nothing, F::Nothing, 0, 0, {}, "", heavy},
    };
}
// clang-format on
