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
        {P::MATH_FORMULA, {{P::MATH_FORMULA, O::GENERIC, 0, 0, false}, M::None, Tally::WholeAnswer}}};
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

bool isLetters(OrdinalType::ORDINAL_TYPE ordinal)
{
    return ordinal == OrdinalType::ALPHA_UPPER || ordinal == OrdinalType::ALPHA_LOWER;
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

QString PollKinds::fault(const PollPlan& plan)
{
    constexpr int letters = 26;
    constexpr int mostOptions = 100;
    constexpr int mostDecimals = 10;
    const OptionMeaning meaning = kindOf(plan.type).meaning;
    int most = isLetters(plan.ordinal) ? letters : mostOptions;
    if (meaning == OptionMeaning::Decimals)
        most = mostDecimals;
    if (meaning == OptionMeaning::None && plan.options != 0)
        return QStringLiteral("A poll of type %1 has no options.").arg(typeName(plan.type));
    if (plan.options < 0 || plan.options > most)
        return QStringLiteral("%1 takes from 0 to %2, not %3.")
            .arg(QLatin1String(meaning == OptionMeaning::Decimals ? "The number of decimals"
                                                                  : "The number of options"))
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
        options.append({id, label, OrdinalType::optionText(plan.ordinal, i)});
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
