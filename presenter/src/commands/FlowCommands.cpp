#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Waiter.h"
#include "terminal/Screen.h"
#include "text/Text.h"
#include "text/Words.h"

#include <CalyxClient/Lesson>

#include <cmath>
#include <functional>

using Calyx::Lesson;

namespace {

constexpr int mostNames = 5;

// What "wait" waits for, and "expect" expects.
struct Goal
{
    std::function<int()> have;
    std::function<int()> want;
    std::function<QString()> state; ///< both, for people
};

Goal learnersGoal(const Lesson& lesson, const QString& amount)
{
    const auto have = [roster = lesson.roster()] { return roster->presentCount(); };
    const auto want = [wanted = amount.toInt()] { return wanted; };
    return {have, want, [=] { return Words::tr("%1 of %2 learners are here").arg(have()).arg(want()); }};
}

// \p sentence has places for how far it is, and for who is missing.
QString withMissing(const QString& state, const QString& sentence, const QStringList& missing)
{
    return missing.isEmpty() ? state : sentence.arg(state, Text::list(missing, mostNames));
}

// "all" are those who are here, and one at least.
int wantedOf(const QString& amount, int all)
{
    return amount == QLatin1String("all") ? qMax(all, 1) : amount.toInt();
}

// The answers to the poll that was put last.
Goal answersGoal(const Lesson& lesson, const QString& amount)
{
    const auto have = [&lesson] { return lesson.poll()->answered(); };
    const auto want = [&lesson, amount] { return wantedOf(amount, lesson.poll()->expected()); };
    const auto state = [&lesson, have, want] {
        return withMissing(Words::tr("%1 of %2 answers have come").arg(have()).arg(want()),
                           Words::tr("%1; none yet from %2"),
                           ArgumentReader::names(*lesson.roster(), lesson.poll()->missing()));
    };
    return {have, want, state};
}

Goal assessmentGoal(const Lesson& lesson, const QString& amount)
{
    const auto have = [&lesson] { return lesson.assessment()->finished(); };
    const auto want = [&lesson, amount] { return wantedOf(amount, lesson.assessment()->expected()); };
    const auto state = [&lesson, have, want] {
        const Calyx::Assessment& assessment = *lesson.assessment();
        return withMissing(
            Words::tr("%1 of %2 learners have finished").arg(have()).arg(want()), Words::tr("%1; not yet %2"),
            ArgumentReader::names(*lesson.roster(),
                                  assessment.isRunning() ? assessment.unfinished() : QStringList()));
    };
    return {have, want, state};
}

Outcome noted(CommandContext& context, const QString& text)
{
    context.screen.note(text);
    return Outcome::done();
}

Outcome checkWait(const QString&, const Arguments& given)
{
    Arguments arguments = given;
    qint64 limit = 0;
    return ArgumentReader::takeWithin(arguments, limit);
}

Outcome wait(CommandContext& context, Arguments arguments, const Goal& goal)
{
    qint64 limit = std::llround(context.waitLimit * Text::msecsPerSecond);
    ArgumentReader::takeWithin(arguments, limit);
    const auto isReached = [&] { return goal.have() >= goal.want(); };
    const auto isLost = [&] { return !(context.facts() & Fact::Channel); };
    const Waiter::Result result =
        context.waiter.until([&] { return isReached() || isLost(); }, limit, goal.state);
    if (isReached())
        return noted(context, goal.state() + QLatin1Char('.'));
    if (result == Waiter::Interrupted)
        return Outcome::failed(Words::tr("The wait was given up: %1.").arg(goal.state()));
    if (isLost())
        return Outcome::failed(Words::tr("The session was lost while waiting: %1.").arg(goal.state()));
    return Outcome::failed(Words::tr("After %1, %2.").arg(Text::seconds(limit), goal.state()));
}

Outcome expect(CommandContext& context, const Goal& goal)
{
    if (goal.have() != goal.want())
        return Outcome::failed(Words::tr("Expected otherwise: %1.").arg(goal.state()));
    return noted(context, Words::tr("As expected: %1.").arg(goal.state()));
}

Outcome say(CommandContext& context, const Arguments& arguments)
{
    return noted(context, arguments.value(0));
}

Outcome heading(CommandContext& context, const Arguments& arguments)
{
    const Style& style = context.screen.style();
    const QString text = arguments.value(0);
    const QChar line = style.unicode ? QChar(0x2500) : QLatin1Char('-');
    context.screen.note(QString());
    context.screen.note(text, Ink::Heading);
    context.screen.note(QString(qMin(Text::width(text), style.columns - 1), line), Ink::Heading);
    return Outcome::done();
}

Outcome pause(CommandContext& context, const Arguments& arguments)
{
    qint64 msecs = 0;
    ArgumentReader::readSeconds(arguments.first(), msecs);
    const QString length = Text::seconds(msecs);
    return context.waiter.pause(static_cast<int>(msecs),
                                [length] { return Words::tr("A pause of %1").arg(length); })
               ? noted(context, Words::tr("Paused for %1.").arg(length))
               : Outcome::failed(Words::tr("The pause was cut short."));
}

Outcome waitLearners(CommandContext& context, const Arguments& arguments)
{
    return wait(context, arguments, learnersGoal(context.lesson, arguments.first()));
}

Outcome waitAnswers(CommandContext& context, const Arguments& arguments)
{
    return wait(context, arguments, answersGoal(context.lesson, arguments.first()));
}

Outcome waitAssessment(CommandContext& context, const Arguments& arguments)
{
    return wait(context, arguments, assessmentGoal(context.lesson, arguments.first()));
}

Outcome expectLearners(CommandContext& context, const Arguments& arguments)
{
    return expect(context, learnersGoal(context.lesson, arguments.first()));
}

Outcome expectAnswers(CommandContext& context, const Arguments& arguments)
{
    return expect(context, answersGoal(context.lesson, arguments.first()));
}

Outcome expectAssessment(CommandContext& context, const Arguments& arguments)
{
    return expect(context, assessmentGoal(context.lesson, arguments.first()));
}

namespace F = Fact;
using P = Place;

} // namespace

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
QVector<Command> CommandTable::flow()
{
    return {
        {"wait learners", "N [within SECONDS]", QT_TRANSLATE_NOOP("Words", "Wait until N learners are here."),
         QT_TRANSLATE_NOOP("Words", "For a minute, unless told otherwise here or by \"set wait-limit\"."),
         F::Channel, F::Nothing, F::Nothing, 1, 3, {P::Number, P::Keyword, P::Seconds}, "within", waitLearners, checkWait},
        {"wait answers", "N|all [within SECONDS]", QT_TRANSLATE_NOOP("Words", "Wait until N answers have come, or those of all learners."),
         QT_TRANSLATE_NOOP("Words", "For a minute, unless told otherwise here or by \"set wait-limit\"."),
         F::AnyPoll, F::Nothing, F::Nothing, 1, 3, {P::Amount, P::Keyword, P::Seconds}, "within", waitAnswers, checkWait},
        {"wait assessment", "N|all [within SECONDS]", QT_TRANSLATE_NOOP("Words", "Wait until N learners, or all, have finished the assessment."),
         QT_TRANSLATE_NOOP("Words", "For a minute, unless told otherwise here or by \"set wait-limit\"."),
         F::AnyAssessment, F::Nothing, F::Nothing, 1, 3, {P::Amount, P::Keyword, P::Seconds}, "within", waitAssessment, checkWait},
        {"expect learners", "N", QT_TRANSLATE_NOOP("Words", "Fail unless N learners are here."),
         "",
         F::Nothing, F::Nothing, F::Nothing, 1, 1, {P::Number}, "", expectLearners},
        {"expect answers", "N|all", QT_TRANSLATE_NOOP("Words", "Fail unless the last poll has N answers, or those of all learners."),
         "",
         F::AnyPoll, F::Nothing, F::Nothing, 1, 1, {P::Amount}, "", expectAnswers},
        {"expect assessment", "N|all", QT_TRANSLATE_NOOP("Words", "Fail unless N learners, or all, have finished the assessment."),
         "",
         F::AnyAssessment, F::Nothing, F::Nothing, 1, 1, {P::Amount}, "", expectAssessment},
        {"say", "[TEXT]", QT_TRANSLATE_NOOP("Words", "Print a line."),
         "",
         F::Nothing, F::Nothing, F::Nothing, 0, asText, {}, "", say},
        {"heading", "TEXT", QT_TRANSLATE_NOOP("Words", "Print a heading."),
         "",
         F::Nothing, F::Nothing, F::Nothing, 1, asText, {}, "", heading},
        {"pause", "SECONDS", QT_TRANSLATE_NOOP("Words", "Do nothing for a while."),
         "",
         F::Nothing, F::Nothing, F::Nothing, 1, 1, {P::Seconds}, "", pause},
    };
}
// clang-format on
