#include "commands/PollArguments.h"

#include "text/Suggestions.h"

namespace {

bool takeNumber(Arguments& arguments, int& number)
{
    bool isNumber = false;
    const int value = arguments.value(0).toInt(&isNumber);
    if (!isNumber)
        return false;
    arguments.removeFirst();
    number = value;
    return true;
}

Outcome unknown(const char* what, const QString& name, const QStringList& known)
{
    return Outcome::failed(QStringLiteral("There is no %1 \"%2\".%3 The %1s are: %4.")
                               .arg(QLatin1String(what), name, Suggestions::question(name, known),
                                    known.join(QStringLiteral(", "))));
}

} // namespace

Outcome PollArguments::take(Arguments& arguments, PollPlan& plan)
{
    if (arguments.isEmpty() || !PollKinds::readType(arguments.first(), plan.type))
        return unknown("poll type", arguments.value(0), PollKinds::typeNames());
    plan = PollKinds::usual(plan.type);
    arguments.removeFirst();

    const auto isOption = [](const QString& word) {
        static const QStringList pictures = {QStringLiteral("picture"), QStringLiteral("upload"),
                                             QStringLiteral("ref")};
        return pictures.contains(word) || word.contains(QLatin1Char('='));
    };
    bool isNumber = false;
    if (!arguments.isEmpty())
        arguments.first().toInt(&isNumber);
    if (!arguments.isEmpty() && !isNumber && !isOption(arguments.first())) {
        if (!PollKinds::readOrdinal(arguments.first(), plan.ordinal))
            return unknown("labelling", arguments.first(), PollKinds::ordinalNames());
        arguments.removeFirst();
    }
    if (takeNumber(arguments, plan.options))
        plan.extra = qMin(plan.extra, plan.options);
    takeNumber(arguments, plan.extra);

    const QString fault = PollKinds::fault(plan);
    return fault.isEmpty() ? Outcome::done() : Outcome::failed(fault);
}
