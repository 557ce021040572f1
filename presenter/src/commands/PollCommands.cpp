#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Ending.h"
#include "commands/Files.h"
#include "commands/Waiter.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Chart.h"
#include "text/Table.h"
#include "text/Text.h"

namespace {

// What follows a poll's plan: "picture FILE", "upload FILE" or "ref REFERENCE".
Outcome checkPicture(const QString& folder, const Arguments& arguments)
{
    const QString kind = arguments.value(0);
    Picture picture;
    QByteArray content;
    if (arguments.isEmpty() || (arguments.size() == 2 && kind == QLatin1String("ref")))
        return Outcome::done();
    if (arguments.size() == 2 && kind == QLatin1String("picture"))
        return Files::readPicture(folder, arguments.last(), picture);
    if (arguments.size() == 2 && kind == QLatin1String("upload"))
        return Files::read(folder, arguments.last(), content);
    return Outcome::failed(QStringLiteral("\"%1\" is not understood here. See \"help poll\".").arg(kind));
}

Outcome checkPoll(const QString& folder, const Arguments& given)
{
    Arguments arguments = given;
    PollPlan plan;
    const Outcome read = ArgumentReader::takePoll(arguments, plan);
    return read.isDone() ? checkPicture(folder, arguments) : read;
}

Outcome readPicture(CommandContext& context, const Arguments& arguments, Picture& picture)
{
    if (arguments.isEmpty())
        return Outcome::done();
    if (arguments.first() == QLatin1String("picture"))
        return Files::readPicture(context.folder, arguments.last(), picture);
    Files::Upload upload = {QString(), arguments.last()};
    if (arguments.first() == QLatin1String("upload")) {
        if (const Outcome stored = Files::upload(context, arguments.last(), upload); !stored.isDone())
            return stored;
    }
    picture = Picture::ofReference(upload.address);
    return Outcome::done();
}

// All bars that are as long as the longest.
QString mostFrequent(const QVector<Bar>& bars)
{
    constexpr int mostNames = 3;
    int top = 1;
    QStringList labels;
    for (const Bar& bar : bars) {
        if (bar.count > top)
            labels.clear();
        top = qMax(top, bar.count);
        if (bar.count == top)
            labels.append(bar.label);
    }
    return labels.isEmpty() ? QString()
                            : QStringLiteral("%1 (%2)").arg(Text::list(labels, mostNames)).arg(top);
}

// Polls within the same second would have the same id.
Outcome waitForId(CommandContext& context)
{
    while (const int msecs = context.lesson.msecsToNewId()) {
        if (!context.waiter.pause(msecs))
            return Outcome::failed(QStringLiteral("The poll was not started: interrupted."));
    }
    return context.require(Fact::Channel);
}

Outcome poll(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    PollPlan plan;
    ArgumentReader::takePoll(arguments, plan);
    Picture picture;
    plan.hasPicture = !arguments.isEmpty();
    if (const Outcome read = readPicture(context, arguments, picture); !read.isDone())
        return read;
    Ending::stopPoll(context);
    if (const Outcome ready = waitForId(context); !ready.isDone())
        return ready;
    picture.setOn(context.lesson.collab());
    context.lesson.startPoll(plan);
    if (!context.screen.isLive())
        context.screen.note(
            QStringLiteral("Poll %1 has started: %2.")
                .arg(QString::number(context.lesson.board().last()->number()), PollKinds::description(plan)));
    return Outcome::done();
}

Outcome pollStop(CommandContext& context, const Arguments&)
{
    Ending::stopPoll(context);
    // Without a channel the learners have not heard of it.
    return context.require(Fact::Channel);
}

Outcome setPaused(CommandContext& context, bool paused)
{
    context.lesson.setPaused(paused);
    context.screen.note(
        QLatin1String(paused ? "The poll is paused; \"poll resume\" goes on." : "The poll goes on."));
    return Outcome::done();
}

Outcome pollPause(CommandContext& context, const Arguments&)
{
    return setPaused(context, true);
}

Outcome pollResume(CommandContext& context, const Arguments&)
{
    return setPaused(context, false);
}

Outcome pollStatus(CommandContext& context, const Arguments&)
{
    constexpr int mostNames = 10;
    const Poll* const poll = context.lesson.board().last();
    const Roster& roster = context.lesson.roster();
    if (!poll->isRunning() || !context.screen.isLive()) // else it stands there anyway
        context.screen.print(Chart::all(poll->chart(roster), context.screen.style()));
    const QStringList missing = poll->missing(roster);
    if (poll->isRunning() && !missing.isEmpty())
        context.screen.print(QStringLiteral("  No answer yet from %1.").arg(Text::list(missing, mostNames)));
    return Outcome::done();
}

Outcome summary(CommandContext& context, const Arguments&)
{
    const Lesson& lesson = context.lesson;
    QVector<QStringList> rows;
    for (const Poll& poll : lesson.board().polls()) {
        const ChartData data = poll.chart(lesson.roster());
        rows.append({QString::number(poll.number()), PollKinds::typeName(poll.plan().type),
                     QStringLiteral("%1 of %2").arg(data.answered).arg(data.expected),
                     Text::duration(data.seconds), mostFrequent(data.bars)});
    }
    if (!rows.isEmpty())
        context.screen.print(
            Table::lines({QStringLiteral("#"), QStringLiteral("Poll"), QStringLiteral("Answers"),
                          QStringLiteral("Time"), QStringLiteral("Most frequent")},
                         rows, context.screen.style()));
    context.screen.print(
        QStringLiteral("Total: %1, %2, %3, %4, %5.")
            .arg(Text::count(lesson.mostLearners(), "learner"), Text::count(rows.size(), "poll"),
                 Text::count(lesson.board().answers(), "answer"), Text::count(lesson.cards(), "card"),
                 Text::count(lesson.board().lateAnswers(), "late answer")));
    return Outcome::done();
}

namespace F = Fact;
using P = Place;

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
const Command rows[] = {
    {"poll", "TYPE [ORDINAL] [OPTIONS] [EXTRA] [picture FILE | upload FILE | ref REFERENCE]", "Put a poll to the learners.",
     "TYPE: true-false, yes-no-other, multiple, scale, sort, text, word-seed, number, creative, "
     "math-formula. ORDINAL labels the options: true-false, yes-no, yes-no-maybe, yes-no-unsure, "
     "yes-no-other, alpha-upper, alpha-lower, number, agreement, confidence, generic. OPTIONS is "
     "their number; of a number poll, its decimals. EXTRA is the number of correct options of a "
     "multiple choice. What is left out is what the type usually has. A picture is a PNG file "
     "that travels in the message, a file that is uploaded, or an address from which devices can "
     "load it. A poll that runs is stopped first.\n"
     "Examples: poll true-false    poll multiple alpha-upper 5 2    poll number 2\n"
     "poll scale agreement 5 picture images/leaf.png",
     F::Channel, F::Poll | F::AnyPoll, F::Nothing, 1, anyNumber, {P::PollType, P::Ordinal}, "picture upload ref", poll, checkPoll},
    {"poll stop", "", "Stop the poll and show its final tally.",
     "",
     F::Poll, F::Nothing, F::Poll, 0, 0, {}, "", pollStop},
    {"poll pause", "", "Let the learners pause.",
     "",
     F::Channel | F::Poll, F::Nothing, F::Nothing, 0, 0, {}, "", pollPause},
    {"poll resume", "", "Let the learners go on.",
     "",
     F::Channel | F::Poll, F::Nothing, F::Nothing, 0, 0, {}, "", pollResume},
    {"poll status", "", "Show the answers so far and whose are missing.",
     "",
     F::AnyPoll, F::Nothing, F::Nothing, 0, 0, {}, "", pollStatus},
    {"summary", "", "Show a table of all polls so far.",
     "",
     F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", summary},
};
// clang-format on

} // namespace

QVector<Command> CommandTable::polls()
{
    return QVector<Command>(std::begin(rows), std::end(rows));
}
