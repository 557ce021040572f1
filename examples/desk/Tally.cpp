#include "Tally.h"

#include <algorithm>

QString Tally::optionLabel(const QString& name) const
{
    for (const Option& option : m_options) {
        if (option.names.contains(name))
            return option.label;
    }
    return QString();
}

// What an answer counts for: the ids of several options follow each other without anything between them.
QStringList Tally::labels(const QString& answer) const
{
    if (const QString label = optionLabel(answer); !label.isEmpty())
        return {label};
    QStringList found;
    for (const QChar id : answer) {
        const QString label = optionLabel(id);
        if (label.isEmpty())
            return {answer};
        if (!found.contains(label))
            found.append(label);
    }
    return found.isEmpty() ? QStringList(QStringLiteral("(empty)")) : found;
}

QVector<Tally::Bar> Tally::bars(int most) const
{
    QHash<QString, int> counts;
    for (const QString& answer : m_answers) {
        const QStringList counted = labels(answer);
        for (const QString& label : counted)
            ++counts[label];
    }
    QVector<Bar> bars;
    for (const Option& option : m_options)
        bars.append({option.label, counts.take(option.label)});
    const int fixed = bars.size();
    for (auto count = counts.cbegin(); count != counts.cend(); ++count)
        bars.append({count.key(), count.value()});
    std::sort(bars.begin() + fixed, bars.end(), [](const Bar& a, const Bar& b) {
        return a.count == b.count ? a.label < b.label : a.count > b.count;
    });
    if (bars.size() <= most)
        return bars;
    Bar rest = {QStringLiteral("(others)"), 0};
    while (bars.size() >= most)
        rest.count += bars.takeLast().count;
    bars.append(rest);
    return bars;
}
