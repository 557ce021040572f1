#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Ending.h"
#include "lesson/Notebook.h"
#include "lesson/PollKinds.h"
#include "terminal/Screen.h"
#include "text/Text.h"
#include "text/Words.h"

using namespace Calyx;

namespace {

// "to=LEARNER"; without it the whole class is meant, which has an empty id.
Outcome takeAddressee(CommandContext& context, Arguments& arguments, QString& deviceId)
{
    QString name;
    if (!ArgumentReader::takeSetting(arguments, QStringLiteral("to"), name))
        return Outcome::done();
    return ArgumentReader::findLearner(*context.lesson.roster(), name, deviceId);
}

Outcome misunderstood(const Arguments& rest)
{
    return Outcome::failed(Words::tr("\"%1\" is not understood. See \"help assessment\".").arg(rest.first()));
}

Outcome readQuestion(Arguments arguments, Question& question)
{
    if (const Outcome read = ArgumentReader::takeQuestion(arguments, question); !read.isDone())
        return read;
    // As polls these two can have options; as questions they have none.
    if (question.type == PollType::WORD_SEED || question.type == PollType::CREATIVE)
        question.optionCount = 0;
    return arguments.isEmpty() ? Outcome::done() : misunderstood(arguments);
}

Outcome readPlan(Arguments arguments, AssessmentPlan& plan)
{
    ArgumentReader::takeSetting(arguments, QStringLiteral("title"), plan.title);
    if (const Outcome read = ArgumentReader::takeCount(arguments, QStringLiteral("time"), plan.seconds);
        !read.isDone())
        return read;
    const struct
    {
        const char* name;
        bool& flag;
    } flags[] = {{"skip", plan.maySkip},
                 {"navigate", plan.mayGoBack},
                 {"resubmit", plan.mayResubmit},
                 {"summary", plan.showsSummary}};
    for (const auto& [name, flag] : flags) {
        if (const Outcome read = ArgumentReader::takeFlag(arguments, QLatin1String(name), flag);
            !read.isDone())
            return read;
    }
    return arguments.isEmpty() ? Outcome::done() : misunderstood(arguments);
}

Outcome admit(CommandContext& context, const Arguments& arguments, const QString& deviceId)
{
    if (context.lesson.assessment()->isForAll() || deviceId.isEmpty())
        return Outcome::failed(
            Words::tr("An assessment is under way. Use \"assessment stop\" before the next."));
    if (!arguments.isEmpty())
        return Outcome::failed(Words::tr(
            "An assessment is under way: its settings stay. Use \"assessment start to=LEARNER\" alone."));
    context.lesson.admit(deviceId);
    context.screen.note(
        Words::tr("%1 begins the assessment, too.").arg(context.lesson.roster()->name(deviceId)));
    return Outcome::done();
}

Outcome showText(CommandContext& context, Arguments arguments, bool isReview)
{
    QString deviceId;
    if (const Outcome found = takeAddressee(context, arguments, deviceId); !found.isDone())
        return found;
    bool isDismissible = true;
    if (const Outcome read =
            ArgumentReader::takeFlag(arguments, QStringLiteral("dismissible"), isDismissible);
        !read.isDone())
        return read;
    const QString text = arguments.join(QLatin1Char(' '));
    if (isReview)
        context.lesson.showReview(text, deviceId);
    else
        context.lesson.showText(text, deviceId, isDismissible);
    context.screen.note(
        deviceId.isEmpty()
            ? Words::tr("The text is shown to the class.")
            : Words::tr("The text is shown to %1.").arg(context.lesson.roster()->name(deviceId)));
    return Outcome::done();
}

Outcome pauseAssessment(CommandContext& context, bool paused)
{
    paused ? context.lesson.pause() : context.lesson.resume();
    context.screen.note(paused ? Words::tr("The assessment is paused; \"assessment resume\" goes on.")
                               : Words::tr("The assessment goes on."));
    return Outcome::done();
}

Outcome checkQuestion(const QString&, const Arguments& arguments)
{
    Question question;
    return readQuestion(arguments, question);
}

Outcome checkStart(const QString&, const Arguments& given)
{
    Arguments arguments = given;
    QString addressee;
    ArgumentReader::takeSetting(arguments, QStringLiteral("to"), addressee);
    AssessmentPlan plan;
    return readPlan(arguments, plan);
}

Outcome assessmentQuestion(CommandContext& context, const Arguments& arguments)
{
    if (context.facts() & Fact::Assessment)
        return Outcome::failed(
            Words::tr("An assessment is under way: its questions stay. Use \"assessment stop\" first."));
    Question question;
    if (const Outcome read = readQuestion(arguments, question); !read.isDone())
        return read;
    context.notes.write(question);
    context.screen.note(
        Words::tr("Question %1 is written: %2.")
            .arg(QString::number(context.notes.written().size()), PollKinds::description(question)));
    return Outcome::done();
}

Outcome assessmentStart(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    QString deviceId;
    if (const Outcome found = takeAddressee(context, arguments, deviceId); !found.isDone())
        return found;
    if (context.facts() & Fact::Assessment)
        return admit(context, arguments, deviceId);
    AssessmentPlan plan;
    if (const Outcome read = readPlan(arguments, plan); !read.isDone())
        return read;
    plan.questions = context.notes.written();

    Ending::stopPoll(context);
    const QStringList devices = deviceId.isEmpty() ? QStringList() : QStringList(deviceId);
    const Outcome started =
        context.carryOut({Words::tr("The assessment"), QString(),
                          [&] { context.lesson.startAssessment(plan, devices); }, [] { return true; }});
    if (!started.isDone())
        return started;
    context.notes.useWritten();
    if (!context.screen.isLive())
        context.screen.note(
            Words::tr("The assessment has started: %1.").arg(Text::count(plan.questions.size(), "question")));
    return started;
}

Outcome assessmentResults(CommandContext& context, const Arguments&)
{
    Ending::printResults(context);
    return Outcome::done();
}

Outcome assessmentDialog(CommandContext& context, const Arguments& arguments)
{
    return showText(context, arguments, false);
}

Outcome assessmentReview(CommandContext& context, const Arguments& arguments)
{
    return showText(context, arguments, true);
}

Outcome assessmentPause(CommandContext& context, const Arguments&)
{
    return pauseAssessment(context, true);
}

Outcome assessmentResume(CommandContext& context, const Arguments&)
{
    return pauseAssessment(context, false);
}

Outcome assessmentStop(CommandContext& context, const Arguments&)
{
    Ending::stopAssessment(context);
    // Without a channel the learners have not heard of it.
    return context.require(Fact::Channel);
}

namespace F = Fact;
using P = Place;

} // namespace

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
QVector<Command> CommandTable::assessments()
{
    return {
        {"assessment question", "TYPE [ORDINAL] [OPTIONS] [EXTRA] [text=TEXT] [choices=A|B] [answer=ANSWER]", QT_TRANSLATE_NOOP("Words", "Write a question of the next assessment."),
         QT_TRANSLATE_NOOP("Words", "The types are those of \"poll\". Choices are what the options say; their number is that of "
         "the options. ANSWER is the right one, for the marks: options by their ids, a number, or "
         "words. Where several are right, \"|\" divides them. Nothing goes out before \"assessment "
         "start\".\n"
         "Examples: assessment question number text=\"How many legs has a spider?\" answer=8\n"
         "assessment question multiple choices=oxygen|water|light answer=BC"),
         F::Nothing, F::Questions, F::Nothing, 1, anyNumber, {P::PollType, P::Ordinal}, "text= choices= answer=", assessmentQuestion, checkQuestion},
        {"assessment start", "[to=LEARNER] [title=TEXT] [time=SECONDS] [SETTING=yes|no ...]", QT_TRANSLATE_NOOP("Words", "Begin an assessment of the questions written."),
         QT_TRANSLATE_NOOP("Words", "For one learner or, without \"to\", for the class and whoever joins it. Each learner gets "
         "the questions as he asks for them, at his own pace. While one is under way for single "
         "learners, \"to\" adds another. Without \"time\" it takes as long as it takes. The questions "
         "stay for another start, until the first of a new set is written. The settings, and what "
         "they are unless told otherwise: skip=no, questions may be skipped; navigate=no, one may go "
         "back to questions; resubmit=yes, answers may be changed; summary=no, the device shows a "
         "summary at the end."),
         F::Channel | F::Questions, F::Assessment | F::AnyAssessment, F::Poll, 0, anyNumber, {}, "to= title= time= skip= navigate= resubmit= summary=", assessmentStart, checkStart},
        {"assessment results", "", QT_TRANSLATE_NOOP("Words", "Show the results so far, by learner and by question."),
         QT_TRANSLATE_NOOP("Words", "A mark stands before each answer that has a right one."),
         F::AnyAssessment, F::Nothing, F::Nothing, 0, 0, {}, "", assessmentResults},
        {"assessment dialog", "[to=LEARNER] [dismissible=no] TEXT", QT_TRANSLATE_NOOP("Words", "Show a text on the learners' devices."),
         QT_TRANSLATE_NOOP("Words", "Also without an assessment."),
         F::Channel | F::Now, F::Nothing, F::Nothing, 1, anyNumber, {}, "to= dismissible=", assessmentDialog},
        {"assessment review", "[to=LEARNER] TEXT", QT_TRANSLATE_NOOP("Words", "Let the learners review their questions."),
         "",
         F::Channel | F::Now, F::Nothing, F::Nothing, 1, anyNumber, {}, "to=", assessmentReview},
        {"assessment pause", "", QT_TRANSLATE_NOOP("Words", "Let the learners pause."),
         "",
         F::Channel | F::Assessment, F::Nothing, F::Nothing, 0, 0, {}, "", assessmentPause},
        {"assessment resume", "", QT_TRANSLATE_NOOP("Words", "Let the learners go on."),
         "",
         F::Channel | F::Assessment, F::Nothing, F::Nothing, 0, 0, {}, "", assessmentResume},
        {"assessment stop", "", QT_TRANSLATE_NOOP("Words", "End the assessment and show its results."),
         "",
         F::Assessment, F::Nothing, F::Assessment, 0, 0, {}, "", assessmentStop},
    };
}
// clang-format on
