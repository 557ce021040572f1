#include "lesson/Tally.h"

#include "text/Text.h"

#include <algorithm>

namespace {

constexpr int longestAnswer = 500; // characters; more would only be memory

bool isBefore(const QString& a, const QString& b)
{
    bool aIsNumber = false;
    bool bIsNumber = false;
    const double numberA = a.toDouble(&aIsNumber);
    const double numberB = b.toDouble(&bIsNumber);
    if (aIsNumber && bIsNumber && numberA != numberB)
        return numberA < numberB;
    return a < b;
}

// Case, blanks and the punctuation at the end do not make another answer.
QString commonForm(const QString& answer)
{
    QString text = answer.normalized(QString::NormalizationForm_C).simplified().toCaseFolded();
    while (text.size() > 1 && QStringLiteral(".,;:!?").contains(text.at(text.size() - 1)))
        text.chop(1);
    return text.trimmed();
}

QVector<Bar> mostFrequentFirst(const QHash<QString, int>& counts)
{
    QVector<Bar> bars;
    for (auto count = counts.begin(); count != counts.end(); ++count)
        bars.append({count.key(), count.value()});
    std::sort(bars.begin(), bars.end(), [](const Bar& a, const Bar& b) {
        return a.count == b.count ? isBefore(a.label, b.label) : a.count > b.count;
    });
    return bars;
}

} // namespace

Tally::Tally(Counting counting, const QVector<AnswerOption>& options) : m_counting(counting)
{
    QStringList ids;
    for (const AnswerOption& option : options) {
        if (!ids.contains(option.id)) // all options after the second of a yes/no scheme share one id
            m_options.append(option);
        ids.append(option.id);
    }
}

bool Tally::add(const QString& deviceId, const QString& answer)
{
    const bool isFirst = !m_answers.contains(deviceId);
    if (isFirst)
        m_order.append(deviceId);
    m_answers.insert(deviceId, Text::clean(answer).left(longestAnswer));
    return isFirst;
}

QVector<Bar> Tally::bars() const
{
    QHash<QString, int> counts;
    QHash<QString, QString> spellings; // the first of those that are equal, by what they have in common
    for (const QString& deviceId : m_order) {
        const QStringList keys = keysOf(m_answers.value(deviceId));
        for (const QString& key : keys) {
            const QString common = m_counting == ExactAnswer || isOption(key) ? key : commonForm(key);
            if (!spellings.contains(common))
                spellings.insert(common, key);
            ++counts[spellings.value(common)];
        }
    }
    QVector<Bar> bars;
    for (const AnswerOption& option : m_options)
        bars.append({option.title(), counts.take(option.title()), true});
    return bars + mostFrequentFirst(counts);
}

bool Tally::isOption(const QString& key) const
{
    return std::any_of(m_options.begin(), m_options.end(),
                       [&](const AnswerOption& option) { return option.title() == key; });
}

// The labels of the bars that an answer counts for.
QStringList Tally::keysOf(const QString& answer) const
{
    if (answer.isEmpty())
        return {QStringLiteral("(empty)")};
    QStringList keys;
    if (m_counting != EachOption || !readOptions(answer, keys))
        keys = QStringList(answer);
    keys.removeDuplicates();
    return keys;
}

// Picks are divided by commas, option ids follow each other without anything; some devices send an option's
// text.
bool Tally::readOptions(const QString& answer, QStringList& titles) const
{
    QStringList ids;
    const QStringList parts = answer.split(QLatin1Char(','));
    for (const QString& part : parts) {
        if (optionNamed(part) >= 0)
            ids.append(part);
        else if (!takeApart(part, ids))
            return false;
    }
    titles.clear();
    for (const QString& id : qAsConst(ids))
        titles.append(m_options.at(optionNamed(id)).title());
    return !ids.isEmpty(); // else nothing but commas
}

int Tally::optionNamed(const QString& part) const
{
    for (int i = 0; i < m_options.size(); ++i) {
        const AnswerOption& option = m_options.at(i);
        if (option.id == part || (!option.text.isEmpty() && option.text == part))
            return i;
    }
    return -1;
}

// The longest id that fits, again and again: "112" is "11" and "2" where both are options.
bool Tally::takeApart(const QString& answer, QStringList& ids) const
{
    QStringList found;
    for (int at = 0; at < answer.size(); at += found.last().size()) {
        QString best;
        for (const AnswerOption& option : m_options) {
            if (option.id.size() > best.size() && answer.midRef(at).startsWith(option.id))
                best = option.id;
        }
        if (best.isEmpty())
            return false;
        found.append(best);
    }
    ids += found;
    return true;
}
