#include "commands/ArgumentReader.h"

#include "lesson/PollKinds.h"
#include "text/Suggestions.h"
#include "text/Text.h"
#include "text/Words.h"

#include <cmath>
#include <limits>

using namespace Calyx;

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

// \p sentence has places for the name, for what may be meant instead, and for all that there is.
Outcome unknown(const QString& sentence, const QString& name, const QStringList& known)
{
    return Outcome::failed(
        sentence.arg(name, Suggestions::question(name, known), known.join(QStringLiteral(", "))));
}

// A scheme of words has as many as it has words.
int usualOptions(const Question& question)
{
    const bool hasTwo =
        question.ordinal == OrdinalType::TRUE_FALSE || question.ordinal == OrdinalType::YES_NO;
    if (question.optionCount == 0 || question.ordinal > OrdinalType::YES_NO_OTHER)
        return question.optionCount;
    return hasTwo ? 2 : 3;
}

bool isSetting(const QString& word)
{
    static const QStringList pictures = {QStringLiteral("picture"), QStringLiteral("upload"),
                                         QStringLiteral("ref")};
    return pictures.contains(word) || word.contains(QLatin1Char('='));
}

// "TYPE [ORDINAL] [OPTIONS] [EXTRA]"
Outcome takeKind(Arguments& arguments, Question& question)
{
    if (arguments.isEmpty() || !PollKinds::readType(arguments.first(), question.type))
        return unknown(Words::tr("There is no poll type \"%1\".%2 The poll types are: %3."),
                       arguments.value(0), PollKinds::typeNames());
    question = Question::usual(question.type);
    arguments.removeFirst();
    bool isNumber = false;
    if (!arguments.isEmpty())
        arguments.first().toInt(&isNumber);
    if (!arguments.isEmpty() && !isNumber && !isSetting(arguments.first())) {
        if (!PollKinds::readOrdinal(arguments.first(), question.ordinal))
            return unknown(Words::tr("There is no labelling \"%1\".%2 The labellings are: %3."),
                           arguments.first(), PollKinds::ordinalNames());
        arguments.removeFirst();
        question.optionCount = usualOptions(question);
    }
    takeNumber(arguments, question.type == PollType::NUMBER ? question.decimals : question.optionCount);
    if (question.type == PollType::MULTIPLE)
        question.choices = qMin(question.choices, question.optionCount);
    int extra = 0;
    if (!takeNumber(arguments, extra))
        return Outcome::of(question.fault());
    if (question.type != PollType::MULTIPLE && extra != 0)
        return Outcome::failed(Words::tr("Only a multiple choice has a number of correct options."));
    question.choices = extra;
    return Outcome::of(question.fault());
}

// "choices=A|B|C": as many options.
Outcome takeChoices(Arguments& arguments, Question& question)
{
    QString text;
    if (!ArgumentReader::takeSetting(arguments, QStringLiteral("choices"), text))
        return Outcome::done();
    if (Question::usual(question.type).optionIds().isEmpty())
        return Outcome::failed(
            Words::tr("A question of type %1 has no choices.").arg(PollKinds::typeName(question.type)));
    question.options = text.split(QLatin1Char('|'));
    question.optionCount = question.options.size();
    question.choices = qMin(question.choices, question.optionCount);
    return Outcome::of(question.fault());
}

} // namespace

Outcome ArgumentReader::takeQuestion(Arguments& arguments, Question& question)
{
    QString text;
    takeSetting(arguments, QStringLiteral("text"), text);
    if (const Outcome read = takeKind(arguments, question); !read.isDone())
        return read;
    question.text = text;
    if (const Outcome read = takeChoices(arguments, question); !read.isDone())
        return read;
    if (takeSetting(arguments, QStringLiteral("answer"), text)) {
        question.right = text.split(QLatin1Char('|'));
        if (question.type == PollType::MULTIPLE) // it tells the learners how many options they are to choose
            question.choices = question.picksOf(question.right.first()).size();
    }
    return Outcome::of(question.fault());
}

Outcome ArgumentReader::takeWithin(Arguments& arguments, qint64& msecs)
{
    const int at = arguments.indexOf(QStringLiteral("within"));
    if (at < 0)
        return Outcome::done();
    if (!readSeconds(arguments.value(at + 1), msecs) || at + 2 != arguments.size())
        return Outcome::failed(Words::tr("\"within\" takes a number of seconds, as the last words."));
    arguments = arguments.mid(0, at);
    return Outcome::done();
}

bool ArgumentReader::readSeconds(const QString& text, qint64& msecs)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0) || seconds * Text::msecsPerSecond > std::numeric_limits<int>::max())
        return false;
    msecs = std::llround(seconds * Text::msecsPerSecond);
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
               : Outcome::failed(Words::tr("\"%1\" takes yes or no, not \"%2\".").arg(name, value));
}

Outcome ArgumentReader::takeCount(Arguments& arguments, const QString& name, int& number)
{
    QString value = QString::number(number);
    takeSetting(arguments, name, value);
    bool isNumber = false;
    number = value.toInt(&isNumber);
    return isNumber && number >= 0
               ? Outcome::done()
               : Outcome::failed(Words::tr("\"%1\" takes a whole number, not \"%2\".").arg(name, value));
}

Outcome ArgumentReader::findLearner(const Roster& roster, const QString& text, QString& deviceId)
{
    const QStringList found = roster.find(text);
    const QStringList candidates = names(roster, found.isEmpty() ? roster.present() : found);
    if (found.isEmpty())
        return Outcome::failed(Words::tr("No learner here is called \"%1\".%2 See \"learners\".")
                                   .arg(text, Suggestions::question(text, candidates)));
    if (found.size() > 1)
        return Outcome::failed(
            Words::tr("\"%1\" can be %2. Say more of the name.").arg(text, Text::list(candidates, 5)));
    deviceId = found.first();
    return Outcome::done();
}

QStringList ArgumentReader::names(const Roster& roster, const QStringList& devices)
{
    QStringList names;
    for (const QString& deviceId : devices)
        names.append(roster.name(deviceId));
    return names;
}
