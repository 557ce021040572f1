#include "commands/ArgumentReader.h"

#include "lesson/Roster.h"
#include "text/Suggestions.h"
#include "text/Text.h"

#include <cmath>
#include <limits>

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

Outcome ArgumentReader::takePoll(Arguments& arguments, PollPlan& plan)
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
        plan.options = PollKinds::usualOptions(plan);
    }
    if (takeNumber(arguments, plan.options))
        plan.extra = qMin(plan.extra, plan.options);
    takeNumber(arguments, plan.extra);

    return Outcome::of(PollKinds::fault(plan));
}

Outcome ArgumentReader::takeWithin(Arguments& arguments, qint64& msecs)
{
    const int at = arguments.indexOf(QStringLiteral("within"));
    if (at < 0)
        return Outcome::done();
    if (!readSeconds(arguments.value(at + 1), msecs) || at + 2 != arguments.size())
        return Outcome::failed(QStringLiteral("\"within\" takes a number of seconds, as the last words."));
    arguments = arguments.mid(0, at);
    return Outcome::done();
}

bool ArgumentReader::readSeconds(const QString& text, qint64& msecs)
{
    constexpr double second = 1000;
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0) || seconds * second > std::numeric_limits<int>::max())
        return false;
    msecs = std::llround(seconds * second);
    return true;
}

bool ArgumentReader::takeSetting(Arguments& arguments, const QString& name, QString& value)
{
    const QString start = name + QLatin1Char('=');
    for (int i = 0; i < arguments.size(); ++i) {
        if (!arguments.at(i).startsWith(start))
            continue;
        value = arguments.takeAt(i).mid(start.size());
        return true;
    }
    return false;
}

Outcome ArgumentReader::takeFlag(Arguments& arguments, const QString& name, bool& flag)
{
    QString value = flag ? QStringLiteral("yes") : QStringLiteral("no");
    takeSetting(arguments, name, value);
    flag = value == QLatin1String("yes");
    return flag || value == QLatin1String("no")
               ? Outcome::done()
               : Outcome::failed(QStringLiteral("\"%1\" takes yes or no, not \"%2\".").arg(name, value));
}

Outcome ArgumentReader::takeCount(Arguments& arguments, const QString& name, int& number)
{
    QString value = QString::number(number);
    takeSetting(arguments, name, value);
    bool isNumber = false;
    number = value.toInt(&isNumber);
    return isNumber && number >= 0
               ? Outcome::done()
               : Outcome::failed(QStringLiteral("\"%1\" takes a whole number, not \"%2\".").arg(name, value));
}

Outcome ArgumentReader::findLearner(const Roster& roster, const QString& text, QString& deviceId)
{
    const QStringList found = roster.find(text);
    QStringList names;
    for (const QString& id : found.isEmpty() ? roster.presentIds() : found)
        names.append(roster.name(id));
    if (found.isEmpty())
        return Outcome::failed(QStringLiteral("No learner here is called \"%1\".%2 See \"learners\".")
                                   .arg(text, Suggestions::question(text, names)));
    if (found.size() > 1)
        return Outcome::failed(
            QStringLiteral("\"%1\" can be %2. Say more of the name.").arg(text, Text::list(names, 5)));
    deviceId = found.first();
    return Outcome::done();
}
