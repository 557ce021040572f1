#include "app/Host.h"
#include "app/Waiter.h"
#include "commands/Handlers.h"
#include "commands/PollArguments.h"
#include "commands/Support.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Chart.h"
#include "text/Table.h"
#include "text/Text.h"

namespace {

const QString noPoll = QStringLiteral("No poll is running. Use \"poll TYPE\" to start one.");

Outcome needPoll(Host& host)
{
    const Outcome live = Support::needLive(host);
    if (!live.isDone())
        return live;
    return host.lesson.board().isRunning() ? Outcome::done() : Outcome::failed(noPoll);
}

// "picture FILE", "upload FILE" or "ref REFERENCE".
Outcome readPicture(Host& host, const Arguments& arguments, Picture& picture)
{
    const QString kind = arguments.value(0);
    if (arguments.isEmpty())
        return Outcome::done();
    if (arguments.size() == 2 && kind == QLatin1String("picture"))
        return Support::readPicture(host, arguments.last(), picture);
    if (arguments.size() == 2 && kind == QLatin1String("upload")) {
        Support::Upload upload;
        const Outcome stored = Support::upload(host, arguments.last(), upload);
        picture = Picture::ofReference(upload.address);
        return stored;
    }
    if (arguments.size() == 2 && kind == QLatin1String("ref")) {
        picture = Picture::ofReference(arguments.last());
        return Outcome::done();
    }
    return Outcome::failed(QStringLiteral("\"%1\" is not understood here. See \"help poll\".").arg(kind));
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

} // namespace

Outcome Handlers::poll(Host& host, const Arguments& given)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    Arguments arguments = given;
    PollPlan plan;
    if (const Outcome read = PollArguments::take(arguments, plan); !read.isDone())
        return read;
    Picture picture;
    plan.hasPicture = !arguments.isEmpty();
    if (const Outcome read = readPicture(host, arguments, picture); !read.isDone())
        return read;

    Support::stopPoll(host);
    while (const int msecs = host.lesson.msecsToNewId()) {
        if (!host.waiter.pause(msecs))
            return Outcome::failed(QStringLiteral("The poll was not started: interrupted."));
    }
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    picture.setOn(host.lesson.collab());
    host.lesson.startPoll(plan);
    if (!host.screen.isLive())
        host.screen.note(
            QStringLiteral("Poll %1 has started: %2.")
                .arg(QString::number(host.lesson.board().last()->number()), PollKinds::description(plan)));
    return Outcome::done();
}

Outcome Handlers::pollStop(Host& host, const Arguments&)
{
    if (!host.lesson.board().isRunning())
        return Outcome::failed(noPoll);
    Support::stopPoll(host);
    // Without a channel the learners have not heard of it.
    return Support::needLive(host);
}

Outcome Handlers::pollPause(Host& host, const Arguments&)
{
    const Outcome ready = needPoll(host);
    if (ready.isDone())
        host.lesson.setPaused(true);
    return ready;
}

Outcome Handlers::pollResume(Host& host, const Arguments&)
{
    const Outcome ready = needPoll(host);
    if (ready.isDone())
        host.lesson.setPaused(false);
    return ready;
}

Outcome Handlers::pollStatus(Host& host, const Arguments&)
{
    constexpr int mostLines = 24;
    constexpr int mostNames = 10;
    const Poll* const poll = host.lesson.board().last();
    if (!poll)
        return Outcome::failed(noPoll);
    const Roster& roster = host.lesson.roster();
    if (!poll->isRunning() || !host.screen.isLive()) // else it stands there anyway
        host.screen.print(Chart::lines(poll->chart(roster), host.screen.style(), mostLines));
    const QStringList missing = poll->missing(roster);
    if (poll->isRunning() && !missing.isEmpty())
        host.screen.print(QStringLiteral("  No answer yet from %1.").arg(Text::list(missing, mostNames)));
    return Outcome::done();
}

Outcome Handlers::summary(Host& host, const Arguments&)
{
    const Lesson& lesson = host.lesson;
    QVector<QStringList> rows;
    for (const Poll& poll : lesson.board().polls()) {
        const ChartData data = poll.chart(lesson.roster());
        rows.append({QString::number(poll.number()), PollKinds::typeName(poll.plan().type),
                     QStringLiteral("%1 of %2").arg(data.answered).arg(data.expected),
                     Text::duration(data.seconds), mostFrequent(data.bars)});
    }
    if (!rows.isEmpty())
        host.screen.print(
            Table::lines({QStringLiteral("#"), QStringLiteral("Poll"), QStringLiteral("Answers"),
                          QStringLiteral("Time"), QStringLiteral("Most frequent")},
                         rows, host.screen.style()));
    host.screen.print(
        QStringLiteral("Total: %1, %2, %3, %4, %5.")
            .arg(Text::count(lesson.mostLearners(), "learner"), Text::count(rows.size(), "poll"),
                 Text::count(lesson.board().answers(), "answer"), Text::count(lesson.cards(), "card"),
                 Text::count(lesson.board().lateAnswers(), "late answer")));
    return Outcome::done();
}
