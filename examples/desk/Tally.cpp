#include "Tally.h"

#include <QCoreApplication>
#include <QMap>

#include <algorithm>

namespace P = Calyx::PollType;
namespace O = Calyx::OrdinalType;

const QVector<PollKind>& PollKind::all()
{
    const auto tr = [](const char* text) { return QCoreApplication::translate("PollKind", text); };
    static const QVector<PollKind> kinds = {
        {tr("Multiple choice"), P::MULTIPLE, O::ALPHA_UPPER, 4, 2, 10, {}},
        {tr("True or false"), P::TRUE_FALSE, O::TRUE_FALSE, 2, 2, 2, {tr("True"), tr("False")}},
        {tr("Yes, no or other"),
         P::YES_NO_OTHER,
         O::YES_NO_OTHER,
         3,
         3,
         3,
         {tr("Yes"), tr("No"), tr("Don't know")}},
        {tr("Scale"), P::SCALE, O::NUMBER, 5, 2, 10, {}},
        {tr("Put in order"), P::SORT, O::ALPHA_UPPER, 3, 2, 10, {}},
        {tr("Text"), P::TEXT, O::GENERIC, 0, 0, 0, {}},
        {tr("Words"), P::WORD_SEED, O::GENERIC, 0, 0, 0, {}},
        {tr("Number"), P::NUMBER, O::NUMBER, 0, 0, 0, {}},
        {tr("Creative"), P::CREATIVE, O::GENERIC, 0, 0, 0, {}},
        {tr("Formula"), P::MATH_FORMULA, O::GENERIC, 0, 0, 0, {}}};
    return kinds;
}

// Learners' devices name an option by its id or by its text. An order counts as a whole.
Tally::Tally(const PollKind& kind, int options)
{
    for (int i = 0; kind.type != P::SORT && i < options; ++i) {
        const QString id = O::optionId(kind.ordinal, i);
        m_options.append(kind.labels.value(i, id));
        m_labels.insert(id, m_options.last());
        m_labels.insert(O::optionText(kind.ordinal, i), m_options.last());
    }
    m_labels.remove(QString()); // most options have no text
}

// What an answer counts for: the ids of several options follow each other without anything between them.
QStringList Tally::labels(const QString& answer) const
{
    if (answer.isEmpty())
        return {QStringLiteral("(empty)")};
    if (m_labels.contains(answer))
        return {m_labels.value(answer)};
    QStringList found;
    for (const QChar id : answer) {
        if (!m_labels.contains(id))
            return {answer};
        found.append(m_labels.value(id));
    }
    found.removeDuplicates();
    return found;
}

QVector<Tally::Bar> Tally::bars(int most) const
{
    QMap<QString, int> counts;
    for (const QString& answer : m_answers) {
        const QStringList counted = labels(answer);
        for (const QString& label : counted)
            ++counts[label];
    }
    QVector<Bar> bars;
    for (const QString& option : m_options)
        bars.append({option, counts.take(option)});
    for (auto count = counts.cbegin(); count != counts.cend(); ++count)
        bars.append({count.key(), count.value()});
    std::stable_sort(bars.begin() + m_options.size(), bars.end(),
                     [](const Bar& a, const Bar& b) { return a.count > b.count; });
    while (bars.size() > most) {
        const int rest = bars.takeLast().count;
        bars.last() = {QStringLiteral("(others)"), bars.last().count + rest};
    }
    return bars;
}
