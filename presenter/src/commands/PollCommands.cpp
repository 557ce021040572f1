#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Ending.h"
#include "commands/Files.h"
#include "commands/Waiter.h"
#include "lesson/Charts.h"
#include "lesson/PollKinds.h"
#include "terminal/Screen.h"
#include "text/Text.h"
#include "text/Words.h"

#include <QDir>
#include <QPointer>

using Calyx::Question;

namespace {

// What follows a poll's question: "picture FILE", "upload FILE" or "ref REFERENCE".
Outcome checkPicture(const QString& folder, const Arguments& arguments)
{
    const QString kind = arguments.value(0);
    QByteArray content;
    if (arguments.isEmpty() || (arguments.size() == 2 && kind == QLatin1String("ref")))
        return Outcome::done();
    if (arguments.size() == 2 && kind == QLatin1String("picture"))
        return Files::readPicture(folder, arguments.last(), content);
    if (arguments.size() == 2 && kind == QLatin1String("upload"))
        return Files::read(folder, arguments.last(), content);
    return Outcome::failed(Words::tr("\"%1\" is not understood here. See \"help poll\".").arg(kind));
}

Outcome checkPoll(const QString& folder, const Arguments& given)
{
    Arguments arguments = given;
    Question question;
    const Outcome read = ArgumentReader::takeQuestion(arguments, question);
    return read.isDone() ? checkPicture(folder, arguments) : read;
}

Outcome readPicture(CommandContext& context, const Arguments& arguments, Question& question)
{
    if (arguments.isEmpty())
        return Outcome::done();
    if (arguments.first() == QLatin1String("picture"))
        return Files::readPicture(context.folder, arguments.last(), question.picture);
    Files::Upload upload = {QString(), arguments.last()};
    if (arguments.first() == QLatin1String("upload")) {
        if (const Outcome stored = Files::upload(context, arguments.last(), upload); !stored.isDone())
            return stored;
    }
    question.pictureUrl = upload.address;
    return Outcome::done();
}

Outcome poll(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    Question question;
    ArgumentReader::takeQuestion(arguments, question);
    if (const Outcome read = readPicture(context, arguments, question); !read.isDone())
        return read;
    Ending::stopPoll(context);
    const Outcome asked = context.carryOut(
        {Words::tr("The poll"), QString(), [&] { context.lesson.ask(question); }, [] { return true; }});
    if (asked.isDone() && !context.screen.isLive())
        context.screen.note(
            Words::tr("Poll %1 has started: %2.")
                .arg(QString::number(context.lesson.poll()->number()), PollKinds::description(question)));
    return asked;
}

// "within SECONDS": the devices count them down.
Outcome pollStop(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    qint64 msecs = 0;
    if (const Outcome read = ArgumentReader::takeWithin(arguments, msecs); !read.isDone())
        return read;
    const QPointer<const Calyx::Poll> poll = context.lesson.poll();
    context.lesson.stop(static_cast<int>((msecs + Text::msecsPerSecond - 1) / Text::msecsPerSecond));
    const auto isOver = [poll] { return !poll || !poll->isRunning(); };
    if (context.waiter.until(isOver, CommandContext::unlimited,
                             [] { return Words::tr("the end of the poll"); }) != Waiter::Met)
        return Outcome::failed(Words::tr("The wait was given up: the poll stops all the same."));
    Ending::printPoll(context);
    // Without a channel the learners have not heard of it.
    return context.require(Fact::Channel);
}

Outcome pausePoll(CommandContext& context, bool paused)
{
    paused ? context.lesson.pause() : context.lesson.resume();
    context.screen.note(paused ? Words::tr("The poll is paused; \"poll resume\" goes on.")
                               : Words::tr("The poll goes on."));
    return Outcome::done();
}

Outcome pollPause(CommandContext& context, const Arguments&)
{
    return pausePoll(context, true);
}

Outcome pollResume(CommandContext& context, const Arguments&)
{
    return pausePoll(context, false);
}

Outcome pollStatus(CommandContext& context, const Arguments&)
{
    constexpr int mostMissing = 10;
    const Calyx::Poll* const poll = context.lesson.poll();
    if (!poll->isRunning() || !context.screen.isLive()) // else it stands there anyway
        context.screen.print(Chart::all(Charts::of(*poll), context.screen.style()));
    const QStringList missing = ArgumentReader::names(*context.lesson.roster(), poll->missing());
    if (!missing.isEmpty())
        context.screen.print(Words::tr("  No answer yet from %1.").arg(Text::list(missing, mostMissing)));
    return Outcome::done();
}

Outcome pollResults(CommandContext& context, const Arguments&)
{
    context.lesson.showResults();
    context.screen.note(
        Words::tr("The learners are shown how poll %1 came out.").arg(context.lesson.poll()->number()));
    return Outcome::done();
}

Outcome summary(CommandContext& context, const Arguments&)
{
    Ending::printSummary(context);
    return Outcome::done();
}

Outcome save(CommandContext& context, const Arguments& arguments)
{
    const QString name = QDir(context.folder).filePath(arguments.first());
    const Outcome saved = context.carryOut(
        {Words::tr("Saving"), QString(), [&] { context.lesson.save(name); }, [] { return true; }});
    if (saved.isDone())
        context.screen.note(Words::tr("The results are saved in %1.").arg(arguments.first()));
    return saved;
}

namespace F = Fact;
using P = Place;

} // namespace

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
QVector<Command> CommandTable::polls()
{
    return {
        {"poll", "TYPE [ORDINAL] [OPTIONS] [EXTRA] [text=TEXT] [choices=A|B] [answer=ANSWER] [picture FILE | upload FILE | ref REFERENCE]", QT_TRANSLATE_NOOP("Words", "Put a poll to the learners."),
         QT_TRANSLATE_NOOP("Words", "TYPE: true-false, yes-no-other, multiple, scale, sort, text, word-seed, number, creative, "
         "math-formula. ORDINAL labels the options: true-false, yes-no, yes-no-maybe, yes-no-unsure, "
         "yes-no-other, alpha-upper, alpha-lower, number, agreement, confidence, generic. OPTIONS is "
         "their number; of a number poll, its decimals. EXTRA is the number of correct options of a "
         "multiple choice. TEXT is the question, and the choices are what its options say: devices show "
         "them. ANSWER is what is right, for the marks; \"help assessment question\" tells more. What is left out is what the type usually has. A picture is a PNG file "
         "that travels in the message, a file that is uploaded, or an address from which devices can "
         "load it. A poll that runs is stopped first.\n"
         "Examples: poll true-false    poll multiple alpha-upper 5 2    poll number 2\n"
         "poll scale agreement 5 picture images/leaf.png"),
         F::Channel, F::Poll | F::AnyPoll, F::Nothing, 1, anyNumber, {P::PollType, P::Ordinal}, "text= choices= answer= picture upload ref", poll, checkPoll},
        {"poll stop", "[within SECONDS]", QT_TRANSLATE_NOOP("Words", "Stop the poll and show its final tally."),
         QT_TRANSLATE_NOOP("Words", "With SECONDS, when they are over: the learners' devices count them down."),
         F::Poll, F::Nothing, F::Poll, 0, 2, {P::Keyword, P::Seconds}, "within", pollStop},
        {"poll pause", "", QT_TRANSLATE_NOOP("Words", "Let the learners pause."),
         "",
         F::Channel | F::Poll, F::Nothing, F::Nothing, 0, 0, {}, "", pollPause},
        {"poll resume", "", QT_TRANSLATE_NOOP("Words", "Let the learners go on."),
         "",
         F::Channel | F::Poll, F::Nothing, F::Nothing, 0, 0, {}, "", pollResume},
        {"poll status", "", QT_TRANSLATE_NOOP("Words", "Show the answers so far and whose are missing."),
         "",
         F::AnyPoll, F::Nothing, F::Nothing, 0, 0, {}, "", pollStatus},
        {"poll results", "", QT_TRANSLATE_NOOP("Words", "Show the learners how the poll came out."),
         QT_TRANSLATE_NOOP("Words", "Each gets the counts on his device and, where an answer is right, whether his is."),
         F::AnyPoll | F::Channel | F::Now, F::Nothing, F::Nothing, 0, 0, {}, "", pollResults},
        {"summary", "", QT_TRANSLATE_NOOP("Words", "Show a table of all polls so far, and what assessments came to."),
         QT_TRANSLATE_NOOP("Words", "When the session ends, it is shown once more if something has changed."),
         F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", summary},
        {"save", "FILE", QT_TRANSLATE_NOOP("Words", "Save who was here, every question, every answer and the marks."),
         QT_TRANSLATE_NOOP("Words", "As JSON, or as a table where FILE ends in \".csv\"."),
         F::Nothing, F::Nothing, F::Nothing, 1, 1, {P::NewFile}, "", save},
    };
}
// clang-format on
