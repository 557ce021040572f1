#include "lesson/Question.h"

#include <QCoreApplication>
#include <QMap>

#include <algorithm>

namespace Calyx {

namespace {

namespace P = PollType;
namespace O = OrdinalType;

constexpr int letters = 26;
constexpr int mostOptions = 100;
constexpr int mostDecimals = 10;
constexpr int longestText = 10000; // characters

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(Calyx::Question)
};

// Picks are options that answers name by number, whatever they are labelled.
enum class Meaning { Free, Options, Picks, Order };

struct Kind
{
    const char* name;
    O::ORDINAL_TYPE ordinal;
    int options;
    int fewest;
    Meaning meaning;
};

const Kind& kindOf(P::POLL_TYPE type)
{
    static const QMap<P::POLL_TYPE, Kind> kinds = {
        {P::TRUE_FALSE,
         {QT_TRANSLATE_NOOP("Calyx::Question", "True or false"), O::TRUE_FALSE, 2, 2, Meaning::Options}},
        {P::YES_NO_OTHER,
         {QT_TRANSLATE_NOOP("Calyx::Question", "Yes, no or other"), O::YES_NO_OTHER, 3, 2, Meaning::Options}},
        {P::MULTIPLE,
         {QT_TRANSLATE_NOOP("Calyx::Question", "Multiple choice"), O::ALPHA_UPPER, 4, 2, Meaning::Options}},
        {P::SCALE, {QT_TRANSLATE_NOOP("Calyx::Question", "Scale"), O::NUMBER, 5, 2, Meaning::Options}},
        {P::SORT,
         {QT_TRANSLATE_NOOP("Calyx::Question", "Put in order"), O::ALPHA_UPPER, 4, 2, Meaning::Order}},
        {P::TEXT, {QT_TRANSLATE_NOOP("Calyx::Question", "Text"), O::GENERIC, 0, 0, Meaning::Free}},
        {P::WORD_SEED, {QT_TRANSLATE_NOOP("Calyx::Question", "Words"), O::GENERIC, 0, 0, Meaning::Picks}},
        {P::NUMBER, {QT_TRANSLATE_NOOP("Calyx::Question", "Number"), O::NUMBER, 0, 0, Meaning::Free}},
        {P::CREATIVE, {QT_TRANSLATE_NOOP("Calyx::Question", "Creative"), O::GENERIC, 0, 0, Meaning::Picks}},
        {P::MATH_FORMULA,
         {QT_TRANSLATE_NOOP("Calyx::Question", "Formula"), O::GENERIC, 0, 0, Meaning::Free}}};
    const auto kind = kinds.constFind(type);
    return kind != kinds.constEnd() ? *kind : *kinds.constFind(P::TEXT);
}

// What people read for the options of the schemes that have words.
QStringList wordsOf(O::ORDINAL_TYPE ordinal)
{
    switch (ordinal) {
    case O::TRUE_FALSE:
        return {Words::tr("True"), Words::tr("False"), Words::tr("Don\u2019t know")};
    case O::YES_NO:
        return {Words::tr("Yes"), Words::tr("No"), Words::tr("Don\u2019t know")};
    case O::YES_NO_MAYBE:
        return {Words::tr("Yes"), Words::tr("No"), Words::tr("Maybe")};
    case O::YES_NO_UNSURE:
        return {Words::tr("Yes"), Words::tr("No"), Words::tr("Unsure")};
    case O::YES_NO_OTHER:
        return {Words::tr("Yes"), Words::tr("No"), Words::tr("Other")};
    default:
        return {};
    }
}

int mostOptionsOf(const Question& question)
{
    if (kindOf(question.type).meaning == Meaning::Free)
        return 0;
    if (!wordsOf(question.ordinal).isEmpty())
        return 3; // "A", "B", and "?" for all others
    const bool isLettered = question.ordinal == O::ALPHA_UPPER || question.ordinal == O::ALPHA_LOWER;
    return isLettered ? letters : mostOptions;
}

// By its name on the wire, or as the enumerator, which is a number to QML.
template<typename Type>
Type readName(const QMap<Type, QString>& table, const QVariant& name, Type otherwise)
{
    bool isNumber = false;
    const auto type = static_cast<Type>(name.toInt(&isNumber));
    if (isNumber && table.contains(type))
        return type;
    return name.isValid() ? table.key(name.toString().toLower(), otherwise) : otherwise;
}

bool readNumber(QString text, double& number)
{
    bool isNumber = false;
    number = text.replace(QLatin1Char(','), QLatin1Char('.')).trimmed().toDouble(&isNumber);
    return isNumber;
}

QString wordsForm(const QString& answer)
{
    QString form = answer.normalized(QString::NormalizationForm_C).simplified().toCaseFolded();
    const QString whole = form;
    while (!form.isEmpty() && QStringLiteral(".!?,;:\u2026").contains(form.at(form.size() - 1)))
        form.chop(1);
    return form.isEmpty() ? whole : form.trimmed();
}

// The longest id that fits, again and again: "112" is "11" and "2" where both are options.
bool takeApart(const QString& answer, const QStringList& ids, QStringList& found)
{
    for (int at = 0; at < answer.size(); at += int(found.last().size())) {
        QString best;
        for (const QString& id : ids) {
            if (id.size() > best.size() && QStringView(answer).mid(at).startsWith(id))
                best = id;
        }
        if (best.isEmpty())
            return false;
        found.append(best);
    }
    return true;
}

// Each option is named once, of an order all of them.
bool canBeAnswer(const Question& question, const QString& answer)
{
    double number = 0;
    const Kind& kind = kindOf(question.type);
    if (question.type == P::NUMBER)
        return readNumber(answer, number);
    if (kind.fewest == 0)
        return !answer.trimmed().isEmpty();
    QStringList picks = question.picksOf(answer);
    const bool isWhole = kind.meaning != Meaning::Order || picks.size() == question.optionIds().size();
    return picks.removeDuplicates() == 0 && !picks.isEmpty() && isWhole;
}

} // namespace

Question Question::usual(P::POLL_TYPE type)
{
    const Kind& kind = kindOf(type);
    return of(type, kind.ordinal, kind.options);
}

Question Question::of(P::POLL_TYPE type, O::ORDINAL_TYPE ordinal, int optionCount)
{
    Question question;
    question.type = type;
    question.ordinal = ordinal;
    (type == P::NUMBER ? question.decimals : question.optionCount) = optionCount;
    return question;
}

Question Question::fromMap(const QVariantMap& map)
{
    const auto value = [&](const char* key) { return map.value(QLatin1String(key)); };
    const auto number = [&](const char* key, int otherwise) {
        return value(key).isValid() ? value(key).toInt() : otherwise;
    };
    Question question = usual(readName(P::POLL_TYPE_STR(), value("kind"), P::TEXT));
    question.ordinal = readName(O::ORDINAL_TYPE_STR(), value("labels"), question.ordinal);
    question.optionCount = number("optionCount", question.optionCount);
    question.decimals = number("decimals", question.decimals);
    question.choices = number("choices", question.choices);
    question.text = value("text").toString();
    question.options = value("options").toStringList();
    question.right = value("right").toStringList();
    question.pictureUrl = value("pictureUrl").toString();
    if (!question.options.isEmpty())
        question.optionCount = int(question.options.size());
    return question;
}

QVariantMap Question::toMap() const
{
    return {{QStringLiteral("kind"), kind()},
            {QStringLiteral("labels"), O::ORDINAL_TYPE_STR().value(ordinal)},
            {QStringLiteral("optionCount"), optionIds().size()},
            {QStringLiteral("decimals"), decimals},
            {QStringLiteral("choices"), choices},
            {QStringLiteral("text"), text},
            {QStringLiteral("options"), options},
            {QStringLiteral("right"), right},
            {QStringLiteral("pictureUrl"), pictureUrl}};
}

QVector<P::POLL_TYPE> Question::kinds()
{
    return {P::MULTIPLE, P::TRUE_FALSE, P::YES_NO_OTHER, P::SCALE,    P::SORT,
            P::TEXT,     P::WORD_SEED,  P::NUMBER,       P::CREATIVE, P::MATH_FORMULA};
}

QString Question::kind() const
{
    return P::POLL_TYPE_STR().value(type);
}

QString Question::kindName() const
{
    return kindName(type);
}

QString Question::kindName(P::POLL_TYPE type)
{
    return Words::tr(kindOf(type).name);
}

QStringList Question::optionIds() const
{
    QStringList ids;
    const Meaning meaning = kindOf(type).meaning;
    if (meaning == Meaning::Free)
        return ids;
    const int count = qMin(options.isEmpty() ? optionCount : int(options.size()), mostOptions);
    for (int i = 0; i < count; ++i)
        ids.append(meaning == Meaning::Picks ? QString::number(i) : O::optionId(ordinal, i));
    ids.removeDuplicates(); // all options after the second of a yes/no scheme share one id
    return ids;
}

QStringList Question::optionLabels() const
{
    const QStringList words = wordsOf(ordinal);
    const QStringList ids = optionIds();
    QStringList labels;
    for (int i = 0; i < ids.size(); ++i)
        labels.append(
            words.value(i, kindOf(type).meaning == Meaning::Picks ? O::optionId(ordinal, i) : ids.at(i)));
    return labels;
}

QStringList Question::optionTexts() const
{
    QStringList texts;
    for (int i = 0; i < optionIds().size(); ++i)
        texts.append(options.value(i));
    return texts;
}

QString Question::fault() const
{
    const Kind& kind = kindOf(type);
    const int most = mostOptionsOf(*this);
    const int count = options.isEmpty() ? optionCount : int(options.size());
    if (count != 0 && most == 0)
        return Words::tr("A question of this kind has no options.");
    if (count < kind.fewest || count > most)
        return Words::tr("A question of this kind has from %1 to %2 options, not %3.")
            .arg(kind.fewest)
            .arg(most)
            .arg(count);
    if (decimals < 0 || decimals > mostDecimals)
        return Words::tr("A number has from 0 to %1 decimals, not %2.").arg(mostDecimals).arg(decimals);
    if (type == P::MULTIPLE && (choices < 0 || choices > count))
        return Words::tr("A learner chooses from 0 to %1 options, not %2.").arg(count).arg(choices);
    if (text.size() > longestText)
        return Words::tr("The text of the question is too long.");
    for (const QString& answer : right) {
        if (!canBeAnswer(*this, answer))
            return Words::tr("\u201c%1\u201d cannot be the right answer to this question.").arg(answer);
    }
    return QString();
}

// Picks are divided by commas, option ids follow each other without anything; some devices send an option's
// text.
QStringList Question::picksOf(const QString& answer) const
{
    const QStringList ids = optionIds();
    if (ids.isEmpty() || answer.isEmpty())
        return {};
    const auto indexOf = [&](const QString& name) {
        int index = int(ids.indexOf(name));
        for (int i = 0; index < 0 && i < ids.size(); ++i) {
            if (name == options.value(i) || name == O::optionText(ordinal, i))
                index = i;
        }
        return index;
    };
    QStringList picks;
    const QStringList parts =
        indexOf(answer) >= 0 ? QStringList(answer) : answer.split(QLatin1Char(',')); // texts have commas
    for (const QString& part : parts) {
        const QString name = part.trimmed();
        const int index = name.isEmpty() ? -1 : indexOf(name);
        if (index >= 0)
            picks.append(ids.at(index));
        else if (name.isEmpty() || !takeApart(name, ids, picks))
            return {};
    }
    return picks;
}

QString Question::formOf(const QString& answer) const
{
    constexpr int digits = 12;
    QStringList picks = picksOf(answer);
    if (!picks.isEmpty()) {
        if (type != P::SORT)
            std::sort(picks.begin(), picks.end());
        return picks.join(QLatin1Char(','));
    }
    double number = 0;
    if (type == P::NUMBER && readNumber(answer, number))
        return QString::number(number, 'g', digits);
    if (type == P::MATH_FORMULA)
        return QString(answer).remove(QLatin1Char(' ')); // in a formula, case tells one name from another
    return wordsForm(answer);
}

bool Question::isRight(const QString& answer) const
{
    const QString form = formOf(answer);
    return std::any_of(right.cbegin(), right.cend(), [&](const QString& one) { return formOf(one) == form; });
}

} // namespace Calyx
