#include "commands/Ending.h"

#include "commands/CommandContext.h"
#include "lesson/AssessmentReport.h"
#include "lesson/Charts.h"
#include "lesson/Notebook.h"
#include "lesson/PollKinds.h"
#include "terminal/Screen.h"
#include "text/Table.h"
#include "text/Text.h"
#include "text/Words.h"

#include <algorithm>

using namespace Calyx;

namespace {

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
    return labels.isEmpty()
               ? QString()
               : QStringLiteral("%1 (%2)").arg(Text::list(labels, mostNames), QString::number(top));
}

int lateAnswers(const Poll& poll)
{
    const QVector<PollAnswer> answers = poll.answers();
    return static_cast<int>(std::count_if(answers.begin(), answers.end(),
                                          [](const PollAnswer& answer) { return answer.isLate; }));
}

QStringList rowOf(const Poll& poll)
{
    const ChartData data = Charts::of(poll);
    return {QString::number(poll.number()),
            PollKinds::typeName(poll.question().type),
            Words::tr("%1 of %2").arg(data.answered).arg(data.expected),
            poll.question().isMarked() ? QString::number(poll.rightAnswers()) : QString(),
            Text::duration(data.seconds),
            mostFrequent(data.bars)};
}

QString total(CommandContext& context)
{
    int answers = 0;
    int late = 0;
    const QList<Poll*> polls = context.lesson.polls();
    for (const Poll* poll : polls) {
        answers += poll->answered();
        late += lateAnswers(*poll);
    }
    return Words::tr("Total: %1, %2, %3, %4, %5.")
        .arg(Text::count(context.lesson.roster()->mostPresent(), "learner"),
             Text::count(polls.size(), "poll"), Text::count(answers, "answer"),
             Text::count(context.notes.cards(), "card"), Text::count(late, "late answer"));
}

} // namespace

void Ending::stopPoll(CommandContext& context)
{
    const Poll* const poll = context.lesson.poll();
    if (!poll || !poll->isRunning())
        return;
    context.lesson.stop();
    printPoll(context);
}

void Ending::printPoll(CommandContext& context)
{
    context.screen.setLiveLines({});
    context.screen.print(Chart::all(Charts::of(*context.lesson.poll()), context.screen.style()));
}

void Ending::printResults(CommandContext& context)
{
    const Assessment& assessment = *context.lesson.assessment();
    const Style& style = context.screen.style();
    context.screen.print(Chart::lines(Charts::of(assessment), style, 1));
    if (assessment.rowCount() > 0)
        context.screen.print(AssessmentReport::byLearner(assessment, style) +
                             AssessmentReport::byQuestion(assessment, style));
    context.screen.print(QStringLiteral("  ") + AssessmentReport::total(assessment));
}

void Ending::stopAssessment(CommandContext& context)
{
    if (!context.lesson.assessment() || !context.lesson.assessment()->isRunning())
        return;
    context.lesson.stopAssessment();
    context.screen.setLiveLines({});
    printResults(context);
}

void Ending::printSummary(CommandContext& context)
{
    QVector<QStringList> rows;
    const QList<Poll*> polls = context.lesson.polls();
    for (const Poll* poll : polls)
        rows.append(rowOf(*poll));
    const bool isMarked =
        std::any_of(rows.begin(), rows.end(), [](const QStringList& row) { return !row.at(3).isEmpty(); });
    QStringList header = {QStringLiteral("#"), Words::tr("Poll"), Words::tr("Answers"),
                          Words::tr("Right"),  Words::tr("Time"), Words::tr("Most frequent")};
    for (QStringList& row : rows) {
        if (!isMarked)
            row.removeAt(3);
    }
    if (!isMarked)
        header.removeAt(3);
    if (!rows.isEmpty())
        context.screen.print(Table::lines(header, rows, context.screen.style()));
    const QList<Assessment*> assessments = context.lesson.assessments();
    for (const Assessment* assessment : assessments)
        context.screen.print(QStringLiteral("  %1: %2")
                                 .arg(Charts::of(*assessment).title, AssessmentReport::total(*assessment)));
    context.screen.print(total(context));
    context.notes.isSummaryShown = true;
}

void Ending::stopActivities(CommandContext& context)
{
    stopPoll(context);
    stopAssessment(context);
    const Lesson& lesson = context.lesson;
    const bool isSomething = !lesson.polls().isEmpty() || !lesson.assessments().isEmpty();
    if (isSomething && !context.notes.isSummaryShown)
        printSummary(context);
}

bool Ending::endLesson(CommandContext& context)
{
    Lesson& lesson = context.lesson;
    stopActivities(context);
    if (lesson.state() == Lesson::LoggedOut)
        return true;
    const bool hadSession = context.facts() & Fact::Opened;
    const Outcome outcome = logOut(context);
    if (hadSession)
        context.screen.note(Words::tr("The session is stopped."));
    if (outcome.isDone())
        context.screen.note(Words::tr("Logged out."));
    else
        context.screen.error(outcome.message);
    return outcome.isDone();
}

Outcome Ending::logOut(CommandContext& context)
{
    Lesson& lesson = context.lesson;
    return context.carryOut({Words::tr("Logging out"), Words::tr("Try it again."), [&] { lesson.logOut(); },
                             [&] { return lesson.state() == Lesson::LoggedOut; }});
}
