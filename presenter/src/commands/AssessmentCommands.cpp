#include "app/Host.h"
#include "commands/Handlers.h"
#include "commands/PollArguments.h"
#include "commands/Support.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Text.h"

using namespace Calyx;

namespace {

Outcome needAssessment(Host& host)
{
    const Outcome live = Support::needLive(host);
    if (!live.isDone())
        return live;
    if (!host.lesson.desk().isRunning())
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

Outcome misunderstood(const Arguments& rest)
{
    return Outcome::failed(
        QStringLiteral("\"%1\" is not understood. See \"help assessment\".").arg(rest.first()));
}

// "choices=A|B|C": as many options.
Outcome takeChoices(Arguments& arguments, AssessmentItem& item)
{
    QString text;
    if (!Support::takeSetting(arguments, QStringLiteral("choices"), text))
        return Outcome::done();
    if (PollKinds::options(PollKinds::usual(item.plan.type)).isEmpty())
        return Outcome::failed(
            QStringLiteral("A question of type %1 has no choices.").arg(PollKinds::typeName(item.plan.type)));
    item.choices = text.split(QLatin1Char('|'));
    item.plan.options = item.choices.size();
    item.plan.extra = qMin(item.plan.extra, item.plan.options);
    const QString fault = PollKinds::fault(item.plan);
    return fault.isEmpty() ? Outcome::done() : Outcome::failed(fault);
}

// "answer=ANSWER". A multiple choice tells the learners how many options they are to choose.
Outcome takeAnswer(Arguments& arguments, AssessmentItem& item)
{
    QString text;
    if (!Support::takeSetting(arguments, QStringLiteral("answer"), text))
        return Outcome::done();
    item.key = AnswerKey(item.plan, text);
    if (!item.key.fault().isEmpty())
        return Outcome::failed(item.key.fault());
    if (item.plan.type == PollType::MULTIPLE)
        item.plan.extra = item.key.optionCount();
    return Outcome::done();
}

Outcome readItem(Arguments arguments, AssessmentItem& item)
{
    Support::takeSetting(arguments, QStringLiteral("text"), item.text);
    if (const Outcome read = PollArguments::take(arguments, item.plan); !read.isDone())
        return read;
    // As polls these two can have options; as questions they have none.
    if (item.plan.type == PollType::WORD_SEED || item.plan.type == PollType::CREATIVE)
        item.plan.options = 0;
    if (const Outcome read = takeChoices(arguments, item); !read.isDone())
        return read;
    if (const Outcome read = takeAnswer(arguments, item); !read.isDone())
        return read;
    return arguments.isEmpty() ? Outcome::done() : misunderstood(arguments);
}

Outcome readPlan(Arguments arguments, AssessmentPlan& plan)
{
    Support::takeSetting(arguments, QStringLiteral("title"), plan.title);
    if (const Outcome read = Support::takeCount(arguments, QStringLiteral("time"), plan.seconds);
        !read.isDone())
        return read;
    const struct
    {
        const char* name;
        bool& flag;
    } flags[] = {{"skip", plan.maySkip},
                 {"navigate", plan.mayNavigate},
                 {"resubmit", plan.mayResubmit},
                 {"summary", plan.showsSummary}};
    for (const auto& [name, flag] : flags) {
        if (const Outcome read = Support::takeFlag(arguments, QLatin1String(name), flag); !read.isDone())
            return read;
    }
    return arguments.isEmpty() ? Outcome::done() : misunderstood(arguments);
}

Outcome admit(Host& host, const Arguments& arguments, const QString& deviceId)
{
    AssessmentDesk& desk = host.lesson.desk();
    if (desk.isForAll() || deviceId.isEmpty())
        return Outcome::failed(
            QStringLiteral("An assessment is under way. Use \"assessment stop\" before the next."));
    if (!arguments.isEmpty())
        return Outcome::failed(QStringLiteral(
            "An assessment is under way: its settings stay. Use \"assessment start to=LEARNER\" alone."));
    desk.admit(deviceId);
    return Outcome::done();
}

Outcome showText(Host& host, Arguments arguments, bool isReview)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    QString deviceId;
    if (const Outcome found = takeAddressee(host, arguments, deviceId); !found.isDone())
        return found;
    bool isDismissible = true;
    if (const Outcome read = Support::takeFlag(arguments, QStringLiteral("dismissible"), isDismissible);
        !read.isDone())
        return read;
    host.lesson.showText(deviceId, arguments.join(QLatin1Char(' ')), isDismissible, isReview);
    return Outcome::done();
}

Outcome setPaused(Host& host, bool paused)
{
    const Outcome ready = needAssessment(host);
    if (ready.isDone())
        host.lesson.desk().setPaused(paused);
    return ready;
}

} // namespace

Outcome Handlers::assessmentQuestion(Host& host, const Arguments& arguments)
{
    if (host.lesson.desk().isRunning())
        return Outcome::failed(
            QStringLiteral("An assessment is under way: its questions stay. Use \"assessment stop\" first."));
    AssessmentItem item;
    if (const Outcome read = readItem(arguments, item); !read.isDone())
        return read;
    host.lesson.desk().write(item);
    return Outcome::done();
}

Outcome Handlers::assessmentStart(Host& host, const Arguments& given)
{
    Arguments arguments = given;
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    AssessmentDesk& desk = host.lesson.desk();
    QString deviceId;
    if (const Outcome found = takeAddressee(host, arguments, deviceId); !found.isDone())
        return found;
    if (desk.isRunning())
        return admit(host, arguments, deviceId);
    AssessmentPlan plan;
    if (const Outcome read = readPlan(arguments, plan); !read.isDone())
        return read;
    plan.items = desk.written();
    if (plan.items.isEmpty())
        return Outcome::failed(QStringLiteral("There are no questions. Use \"assessment question\" first."));

    Support::stopPoll(host);
    desk.start(host.lesson.collab(), plan, deviceId);
    if (!host.screen.isLive())
        host.screen.note(QStringLiteral("The assessment has started: %1.")
                             .arg(Text::count(plan.items.size(), "question")));
    return Outcome::done();
}

Outcome Handlers::assessmentResults(Host& host, const Arguments&)
{
    if (!host.lesson.desk().sheet())
        return Outcome::failed(QStringLiteral("There has been no assessment. Use \"assessment start\"."));
    Support::printResults(host);
    return Outcome::done();
}

Outcome Handlers::assessmentDialog(Host& host, const Arguments& arguments)
{
    return showText(host, arguments, false);
}

Outcome Handlers::assessmentReview(Host& host, const Arguments& arguments)
{
    return showText(host, arguments, true);
}

Outcome Handlers::assessmentPause(Host& host, const Arguments&)
{
    return setPaused(host, true);
}

Outcome Handlers::assessmentResume(Host& host, const Arguments&)
{
    return setPaused(host, false);
}

Outcome Handlers::assessmentStop(Host& host, const Arguments&)
{
    if (!host.lesson.desk().isRunning())
        return Outcome::failed(QStringLiteral("No assessment is under way. Use \"assessment start\"."));
    Support::stopAssessment(host);
    // Without a channel the learners have not heard of it.
    return Support::needLive(host);
}
