#include "app/Host.h"
#include "commands/Handlers.h"
#include "commands/PollArguments.h"
#include "commands/Support.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Text.h"

#include <CalyxClient/AssessmentOptions>
#include <CalyxClient/QuestionBase>
#include <CalyxClient/QuestionCreative>
#include <CalyxClient/QuestionWordSeed>

using namespace Calyx;

namespace {

Outcome needAssessment(Host& host)
{
    const Outcome live = Support::needLive(host);
    if (!live.isDone())
        return live;
    if (!host.lesson.assessment())
        return Outcome::failed(QStringLiteral("No assessment is under way. Use \"assessment start\"."));
    return Outcome::done();
}

// "to=LEARNER"; without it the whole class is meant, which has an empty id.
Outcome takeAddressee(Host& host, Arguments& arguments, QString& deviceId)
{
    QString name;
    if (!Support::takeSetting(arguments, QStringLiteral("to"), name))
        return Outcome::done();
    return Support::findLearner(host, name, deviceId);
}

bool takeNumber(Arguments& arguments, const char* name, int least, int& number)
{
    QString value;
    if (!Support::takeSetting(arguments, QLatin1String(name), value))
        return true;
    bool isNumber = false;
    number = value.toInt(&isNumber);
    return isNumber && number >= least;
}

Outcome misunderstood(const Arguments& rest)
{
    return Outcome::failed(
        QStringLiteral("\"%1\" is not understood. See \"help assessment\".").arg(rest.first()));
}

QuestionBase* createQuestion(PresenterCollab* collab, const PollPlan& plan)
{
    if (QuestionBase* question =
            collab->createPollQuestion(plan.type, plan.ordinal, plan.options, plan.extra))
        return question;
    // As polls, these two go out as documents; in an assessment they are questions like all others.
    if (plan.type == PollType::WORD_SEED)
        return new QuestionWordSeed;
    return new QuestionCreative;
}

Outcome sendMessage(Host& host, const Arguments& given, bool isReview)
{
    Arguments arguments = given;
    if (const Outcome ready = needAssessment(host); !ready.isDone())
        return ready;
    QString deviceId;
    if (const Outcome found = takeAddressee(host, arguments, deviceId); !found.isDone())
        return found;
    QString dismissible;
    Support::takeSetting(arguments, QStringLiteral("dismissible"), dismissible);
    host.lesson.assessment()->sendMessage(deviceId, arguments.join(QLatin1Char(' ')),
                                          dismissible != QLatin1String("no"), isReview);
    return Outcome::done();
}

} // namespace

Outcome Handlers::assessmentStart(Host& host, const Arguments& given)
{
    Arguments arguments = given;
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    QString deviceId;
    if (const Outcome found = takeAddressee(host, arguments, deviceId); !found.isDone())
        return found;
    int questions = 1;
    int time = 0;
    if (!takeNumber(arguments, "questions", 1, questions) || !takeNumber(arguments, "time", 0, time))
        return Outcome::failed(QStringLiteral("\"questions\" and \"time\" take whole numbers."));
    QString title;
    Support::takeSetting(arguments, QStringLiteral("title"), title);
    if (!arguments.isEmpty())
        return misunderstood(arguments);

    Support::stopPoll(host);
    AssessmentOptions options;
    options.settitle(title);
    options.setquestionCount(questions);
    options.setallowedTime(time);
    host.lesson.beginAssessment()->start(deviceId, &options);
    host.screen.note(
        QStringLiteral("The assessment has started: %1.").arg(Text::count(questions, "question")));
    return Outcome::done();
}

Outcome Handlers::assessmentQuestion(Host& host, const Arguments& given)
{
    Arguments arguments = given;
    if (const Outcome ready = needAssessment(host); !ready.isDone())
        return ready;
    QString deviceId;
    if (const Outcome found = takeAddressee(host, arguments, deviceId); !found.isDone())
        return found;
    QString instructions;
    Support::takeSetting(arguments, QStringLiteral("text"), instructions);
    PollPlan plan;
    if (const Outcome read = PollArguments::take(arguments, plan); !read.isDone())
        return read;
    if (!arguments.isEmpty())
        return misunderstood(arguments);

    Support::stopPoll(host);
    QuestionBase* const question = createQuestion(host.lesson.collab(), plan);
    question->setinstructions(instructions);
    host.lesson.sendQuestion(deviceId, question, plan);
    return Outcome::done();
}

Outcome Handlers::assessmentDialog(Host& host, const Arguments& arguments)
{
    return sendMessage(host, arguments, false);
}

Outcome Handlers::assessmentReview(Host& host, const Arguments& arguments)
{
    return sendMessage(host, arguments, true);
}

Outcome Handlers::assessmentPause(Host& host, const Arguments&)
{
    const Outcome ready = needAssessment(host);
    if (ready.isDone())
        host.lesson.assessment()->pause();
    return ready;
}

Outcome Handlers::assessmentResume(Host& host, const Arguments&)
{
    const Outcome ready = needAssessment(host);
    if (ready.isDone())
        host.lesson.assessment()->resume();
    return ready;
}

Outcome Handlers::assessmentStop(Host& host, const Arguments&)
{
    if (const Outcome ready = needAssessment(host); !ready.isDone())
        return ready;
    Support::stopPoll(host);
    host.lesson.assessment()->stop();
    host.lesson.endAssessment();
    host.screen.note(QStringLiteral("The assessment is stopped."));
    return Outcome::done();
}
