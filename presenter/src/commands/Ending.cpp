#include "commands/Ending.h"

#include "commands/CommandContext.h"
#include "lesson/AssessmentReport.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Chart.h"

void Ending::stopPoll(CommandContext& context)
{
    Lesson& lesson = context.lesson;
    if (!lesson.board().isRunning())
        return;
    lesson.stopPoll();
    context.screen.setLiveLines({});
    const ChartData data = lesson.board().last()->chart(lesson.roster());
    context.screen.print(Chart::all(data, context.screen.style()));
}

void Ending::printResults(CommandContext& context)
{
    const AssessmentDesk& desk = context.lesson.desk();
    const Style& style = context.screen.style();
    context.screen.print(Chart::lines(desk.progress(), style, 1));
    if (!desk.sheet()->participants().isEmpty())
        context.screen.print(AssessmentReport::byLearner(*desk.sheet(), style) +
                             AssessmentReport::byQuestion(*desk.sheet(), style));
    context.screen.print(QStringLiteral("  ") + AssessmentReport::total(*desk.sheet()));
}

void Ending::stopAssessment(CommandContext& context)
{
    AssessmentDesk& desk = context.lesson.desk();
    if (!desk.isRunning())
        return;
    desk.stop();
    context.screen.setLiveLines({});
    printResults(context);
}

void Ending::stopActivities(CommandContext& context)
{
    stopPoll(context);
    stopAssessment(context);
}

bool Ending::endLesson(CommandContext& context)
{
    PresenterClient& client = context.lesson.client();
    stopActivities(context);
    context.lesson.expectClose();
    if (!client.sessionToken().isEmpty()) {
        client.doStopSession();
        context.lesson.forgetSession();
        context.screen.note(QStringLiteral("The session is stopped."));
    }
    if (!client.isLoggedIn())
        return true;
    const bool isLoggedOut = client.doLogout();
    if (isLoggedOut)
        context.screen.note(QStringLiteral("Logged out."));
    else
        context.screen.error(QStringLiteral("Logging out failed: the service did not answer."));
    return isLoggedOut;
}
