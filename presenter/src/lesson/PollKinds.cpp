#include "lesson/PollKinds.h"

#include "text/Text.h"

#include <QMap>

using namespace Calyx;

namespace {

enum class OptionMeaning { None, Options, Picks, Decimals };

// What goes with a kind. Picks are options that answers name by number, whatever they are labelled.
struct Kind
{
    PollPlan usual;
    OptionMeaning meaning;
    Tally::Counting counting;
};

const Kind& kindOf(PollType::POLL_TYPE type)
{
    namespace P = PollType;
    namespace O = OrdinalType;
    using M = OptionMeaning;
    static const QMap<P::POLL_TYPE, Kind> kinds = {
        {P::TRUE_FALSE, {{P::TRUE_FALSE, O::TRUE_FALSE, 2, 0, false}, M::Options, Tally::EachOption}},
        {P::YES_NO_OTHER, {{P::YES_NO_OTHER, O::YES_NO_OTHER, 3, 0, false}, M::Options, Tally::EachOption}},
        {P::MULTIPLE, {{P::MULTIPLE, O::ALPHA_UPPER, 4, 1, false}, M::Options, Tally::EachOption}},
        {P::SCALE, {{P::SCALE, O::NUMBER, 5, 0, false}, M::Options, Tally::EachOption}},
        {P::SORT, {{P::SORT, O::ALPHA_UPPER, 4, 0, false}, M::Options, Tally::WholeAnswer}},
        {P::TEXT, {{P::TEXT, O::GENERIC, 0, 0, false}, M::None, Tally::WholeAnswer}},
        {P::WORD_SEED, {{P::WORD_SEED, O::GENERIC, 0, 0, false}, M::Picks, Tally::WholeAnswer}},
        {P::NUMBER, {{P::NUMBER, O::NUMBER, 0, 0, false}, M::Decimals, Tally::WholeAnswer}},
        {P::CREATIVE, {{P::CREATIVE, O::GENERIC, 0, 0, false}, M::Picks, Tally::WholeAnswer}},
        {P::MATH_FORMULA, {{P::MATH_FORMULA, O::GENERIC, 0, 0, false}, M::None, Tally::ExactAnswer}}};
    return *kinds.constFind(type);
}

QString friendly(QString name)
{
    return name.replace(QLatin1Char(' '), QLatin1Char('-'));
}

QString plain(QString name)
{
    name = name.toLower();
    for (const char separator : {' ', '-', '_'})
        name.remove(QLatin1Char(separator));
    return name;
}

template<typename Type>
QStringList names(const QMap<Type, QString>& table)
{
    QStringList all;
    for (const QString& name : table)
        all.append(friendly(name));
    return all;
}

template<typename Type>
bool read(const QMap<Type, QString>& table, const QString& name, Type& type)
{
    for (auto entry = table.begin(); entry != table.end(); ++entry) {
        if (plain(entry.value()) != plain(name))
            continue;
        type = entry.key();
        return true;
    }
    return false;
}

// These label two answers, and all further ones alike.
bool isYesNo(OrdinalType::ORDINAL_TYPE ordinal)
{
    return ordinal <= OrdinalType::YES_NO_OTHER;
}

// How many options can be told from each other.
int labels(OrdinalType::ORDINAL_TYPE ordinal)
{
    constexpr int letters = 26;
    constexpr int most = 100;
    if (isYesNo(ordinal))
        return 3;
    return ordinal == OrdinalType::ALPHA_UPPER || ordinal == OrdinalType::ALPHA_LOWER ? letters : most;
}

// The library's texts are the wire's: "DONTKNOW" for the third of each such labelling.
QString shownText(OrdinalType::ORDINAL_TYPE ordinal, int index)
{
    static const QMap<OrdinalType::ORDINAL_TYPE, const char*> thirds = {
        {OrdinalType::YES_NO_MAYBE, "Maybe"},
        {OrdinalType::YES_NO_UNSURE, "Unsure"},
        {OrdinalType::YES_NO_OTHER, "Other"}};
    const QString text = OrdinalType::optionText(ordinal, index);
    if (index == 2 && !text.isEmpty())
        return QLatin1String(thirds.value(ordinal, "Don't know"));
    return text.left(1) + text.mid(1).toLower();
}

} // namespace

QStringList PollKinds::typeNames()
{
    return names(PollType::POLL_TYPE_STR());
}

QStringList PollKinds::ordinalNames()
{
    return names(OrdinalType::ORDINAL_TYPE_STR());
}

QString PollKinds::typeName(PollType::POLL_TYPE type)
{
    return friendly(PollType::POLL_TYPE_STR().value(type));
}

QString PollKinds::ordinalName(OrdinalType::ORDINAL_TYPE ordinal)
{
    return friendly(OrdinalType::ORDINAL_TYPE_STR().value(ordinal));
}

bool PollKinds::readType(const QString& name, PollType::POLL_TYPE& type)
{
    return read(PollType::POLL_TYPE_STR(), name, type);
}

bool PollKinds::readOrdinal(const QString& name, OrdinalType::ORDINAL_TYPE& ordinal)
{
    return read(OrdinalType::ORDINAL_TYPE_STR(), name, ordinal);
}

PollPlan PollKinds::usual(PollType::POLL_TYPE type)
{
    return kindOf(type).usual;
}

int PollKinds::usualOptions(const PollPlan& plan)
{
    const bool hasTwo = plan.ordinal == OrdinalType::TRUE_FALSE || plan.ordinal == OrdinalType::YES_NO;
    if (kindOf(plan.type).meaning != OptionMeaning::Options || !isYesNo(plan.ordinal))
        return plan.options;
    return hasTwo ? 2 : 3;
}

QString PollKinds::fault(const PollPlan& plan)
{
    constexpr int mostDecimals = 10;
    const OptionMeaning meaning = kindOf(plan.type).meaning;
    const int least = meaning == OptionMeaning::Options ? 1 : 0;
    int most = labels(plan.ordinal);
    if (meaning == OptionMeaning::Decimals)
        most = mostDecimals;
    if (meaning == OptionMeaning::None && plan.options != 0)
        return QStringLiteral("A poll of type %1 has no options.").arg(typeName(plan.type));
    if (plan.options < least || plan.options > most)
        return QStringLiteral("%1 takes from %2 to %3, not %4.")
            .arg(QLatin1String(meaning == OptionMeaning::Decimals ? "The number of decimals"
                                                                  : "The number of options"))
            .arg(least)
            .arg(most)
            .arg(plan.options);
    if (plan.type != PollType::MULTIPLE)
        return plan.extra == 0 ? QString()
                               : QStringLiteral("Only a multiple choice has a number of correct options.");
    if (plan.extra < 0 || plan.extra > plan.options)
        return QStringLiteral("The number of correct options takes from 0 to %1, not %2.")
            .arg(plan.options)
            .arg(plan.extra);
    return QString();
}

QVector<AnswerOption> PollKinds::options(const PollPlan& plan)
{
    const bool isPicked = kindOf(plan.type).meaning == OptionMeaning::Picks;
    QVector<AnswerOption> options;
    if (!isPicked && kindOf(plan.type).meaning != OptionMeaning::Options)
        return options;
    for (int i = 0; i < plan.options; ++i) {
        const QString label = OrdinalType::optionId(plan.ordinal, i);
        const QString id = isPicked ? QString::number(i) : label;
        options.append({id, label, OrdinalType::optionText(plan.ordinal, i), shownText(plan.ordinal, i)});
    }
    return options;
}

Tally PollKinds::tally(const PollPlan& plan)
{
    const Kind& kind = kindOf(plan.type);
    if (kind.meaning == OptionMeaning::Picks && plan.options > 0)
        return Tally(Tally::EachOption, options(plan));
    return kind.counting == Tally::EachOption ? Tally(kind.counting, options(plan)) : Tally(kind.counting);
}

QString PollKinds::description(const PollPlan& plan)
{
    QStringList parts = {typeName(plan.type)};
    if (kindOf(plan.type).meaning == OptionMeaning::Decimals)
        parts.append(Text::count(plan.options, "decimal"));
    else if (plan.options > 0)
        parts += {ordinalName(plan.ordinal), Text::count(plan.options, "option")};
    parts.removeDuplicates(); // two kinds are called as their labelling is
    if (plan.type == PollType::MULTIPLE && plan.extra > 1)
        parts.append(QStringLiteral("%1 correct").arg(plan.extra));
    if (plan.hasPicture)
        parts.append(QStringLiteral("with a picture"));
    return parts.join(QStringLiteral(", "));
}
