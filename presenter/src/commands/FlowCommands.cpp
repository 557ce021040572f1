#include "app/Host.h"
#include "app/Waiter.h"
#include "commands/CommandTable.h"
#include "commands/Handlers.h"
#include "commands/Support.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Suggestions.h"
#include "text/Text.h"

#include <CalyxClient/SockJSConnector>

#include <functional>

namespace {

constexpr int second = 1000;
constexpr int mostNames = 5;

Outcome wait(Host& host, Arguments arguments, const std::function<bool()>& isReached,
             const std::function<QString()>& state)
{
    qint64 limit = static_cast<qint64>(host.waitLimit) * second;
    if (const Outcome taken = Support::takeWithin(arguments, limit); !taken.isDone())
        return taken;
    const auto isOver = [&] { return isReached() || !host.lesson.isLive(); };
    const Waiter::Result result = host.waiter.until(isOver, limit);
    if (isReached())
        return Outcome::done();
    if (result == Waiter::Interrupted)
        return Outcome::failed(QStringLiteral("The wait was given up: %1.").arg(state()));
    if (!host.lesson.isLive())
        return Outcome::failed(QStringLiteral("The live channel was lost while waiting: %1.").arg(state()));
    return Outcome::failed(QStringLiteral("After %1, %2.")
                               .arg(Text::count(static_cast<int>(limit / second), "second"), state()));
}

QString learnerState(const Lesson& lesson, int wanted)
{
    return QStringLiteral("%1 of %2 learners are here").arg(lesson.roster().presentCount()).arg(wanted);
}

// How many answers are wanted of the poll put last.
int wantedAnswers(const Lesson& lesson, const QString& amount)
{
    const Poll& poll = *lesson.board().last();
    return amount == QLatin1String("all") ? qMax(poll.expected(lesson.roster()), 1) : amount.toInt();
}

QString answerState(const Lesson& lesson, const QString& amount)
{
    const Poll& poll = *lesson.board().last();
    QString state = QStringLiteral("%1 of %2 answers have come")
                        .arg(poll.tally().answered())
                        .arg(wantedAnswers(lesson, amount));
    const QStringList missing = poll.missing(lesson.roster());
    if (poll.isRunning() && !missing.isEmpty())
        state += QStringLiteral("; none yet from %1").arg(Text::list(missing, mostNames));
    return state;
}

Outcome needAnyPoll(const Lesson& lesson)
{
    if (lesson.board().last())
        return Outcome::done();
    return Outcome::failed(QStringLiteral("No poll has been put. Use \"poll TYPE\"."));
}

// How many learners are wanted to finish.
int wantedFinishers(const Lesson& lesson, const QString& amount)
{
    return amount == QLatin1String("all") ? qMax(lesson.desk().expected(), 1) : amount.toInt();
}

QString finisherState(const Lesson& lesson, const QString& amount)
{
    QString state = QStringLiteral("%1 of %2 learners have finished")
                        .arg(lesson.desk().finished())
                        .arg(wantedFinishers(lesson, amount));
    const QStringList others = lesson.desk().unfinished();
    if (lesson.desk().isRunning() && !others.isEmpty())
        state += QStringLiteral("; not yet %1").arg(Text::list(others, mostNames));
    return state;
}

Outcome needAnyAssessment(const Lesson& lesson)
{
    if (lesson.desk().sheet())
        return Outcome::done();
    return Outcome::failed(QStringLiteral("There has been no assessment. Use \"assessment start\"."));
}

Outcome setTransports(Host& host, const QStringList& names)
{
    const QStringList known = SockJSConnector::PROTOCOL_TYPE_STR().values();
    for (const QString& name : names) {
        if (!known.contains(name))
            return Outcome::failed(
                QStringLiteral("There is no transport \"%1\".%2 There are %3.")
                    .arg(name, Suggestions::question(name, known), known.join(QStringLiteral(", "))));
    }
    host.lesson.client().setSockJSOverrideProtocols(names);
    return Outcome::done();
}

Outcome setNumber(const QStringList& values, const std::function<void(int)>& store)
{
    bool isNumber = false;
    const int value = values.first().toInt(&isNumber);
    if (!isNumber || value < 0 || values.size() > 1)
        return Outcome::failed(
            QStringLiteral("\"%1\" is not a whole number.").arg(values.join(QLatin1Char(' '))));
    store(value);
    return Outcome::done();
}

} // namespace

Outcome Handlers::say(Host& host, const Arguments& arguments)
{
    host.screen.note(arguments.value(0));
    return Outcome::done();
}

Outcome Handlers::heading(Host& host, const Arguments& arguments)
{
    const Style& style = host.screen.style();
    const QString text = arguments.value(0);
    const QChar line = style.unicode ? QChar(0x2500) : QLatin1Char('-');
    host.screen.note(QString());
    host.screen.note(text, Ink::Heading);
    host.screen.note(QString(qMin(Text::width(text), style.columns - 1), line), Ink::Heading);
    return Outcome::done();
}

Outcome Handlers::pause(Host& host, const Arguments& arguments)
{
    return host.waiter.pause(arguments.first().toInt())
               ? Outcome::done()
               : Outcome::failed(QStringLiteral("The pause was cut short."));
}

Outcome Handlers::waitLearners(Host& host, const Arguments& arguments)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    const Lesson& lesson = host.lesson;
    const int wanted = arguments.first().toInt();
    return wait(
        host, arguments, [&] { return lesson.roster().presentCount() >= wanted; },
        [&] { return learnerState(lesson, wanted); });
}

Outcome Handlers::waitAnswers(Host& host, const Arguments& arguments)
{
    const Lesson& lesson = host.lesson;
    if (const Outcome poll = needAnyPoll(lesson); !poll.isDone())
        return poll;
    const QString amount = arguments.first();
    return wait(
        host, arguments,
        [&] { return lesson.board().last()->tally().answered() >= wantedAnswers(lesson, amount); },
        [&] { return answerState(lesson, amount); });
}

Outcome Handlers::waitAssessment(Host& host, const Arguments& arguments)
{
    const Lesson& lesson = host.lesson;
    if (const Outcome any = needAnyAssessment(lesson); !any.isDone())
        return any;
    const QString amount = arguments.first();
    return wait(
        host, arguments, [&] { return lesson.desk().finished() >= wantedFinishers(lesson, amount); },
        [&] { return finisherState(lesson, amount); });
}

Outcome Handlers::expectLearners(Host& host, const Arguments& arguments)
{
    const int wanted = arguments.first().toInt();
    if (host.lesson.roster().presentCount() == wanted)
        return Outcome::done();
    return Outcome::failed(QStringLiteral("Expected otherwise: %1.").arg(learnerState(host.lesson, wanted)));
}

Outcome Handlers::expectAnswers(Host& host, const Arguments& arguments)
{
    if (const Outcome poll = needAnyPoll(host.lesson); !poll.isDone())
        return poll;
    const QString amount = arguments.first();
    if (host.lesson.board().last()->tally().answered() == wantedAnswers(host.lesson, amount))
        return Outcome::done();
    return Outcome::failed(QStringLiteral("Expected otherwise: %1.").arg(answerState(host.lesson, amount)));
}

Outcome Handlers::expectAssessment(Host& host, const Arguments& arguments)
{
    if (const Outcome any = needAnyAssessment(host.lesson); !any.isDone())
        return any;
    const QString amount = arguments.first();
    if (host.lesson.desk().finished() == wantedFinishers(host.lesson, amount))
        return Outcome::done();
    return Outcome::failed(QStringLiteral("Expected otherwise: %1.").arg(finisherState(host.lesson, amount)));
}

Outcome Handlers::set(Host& host, const Arguments& arguments)
{
    const QStringList values = arguments.mid(1);
    if (arguments.first() == QLatin1String("transports"))
        return setTransports(host, values);
    if (arguments.first() == QLatin1String("open-limit"))
        return setNumber(values, [&](int msecs) {
            host.openLimit = msecs;
            host.lesson.client().setOpenLimit(msecs);
        });
    return setNumber(values, [&](int seconds) { host.waitLimit = seconds; });
}

Outcome Handlers::help(Host& host, const Arguments& arguments)
{
    const QString name = arguments.join(QLatin1Char(' '));
    const QStringList lines = name.isEmpty() ? CommandTable::overview() : CommandTable::help(name);
    if (lines.isEmpty())
        return Outcome::failed(QStringLiteral("There is no command \"%1\". \"help\" lists all.").arg(name));
    host.screen.print(lines);
    return Outcome::done();
}

Outcome Handlers::quit(Host& host, const Arguments&)
{
    host.isQuitting = true;
    return Outcome::done();
}
