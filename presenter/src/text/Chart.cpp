#include "text/Chart.h"

#include "text/Text.h"
#include "text/Words.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr int eighths = 8;
const QString indent = QStringLiteral("  ");
constexpr int leastTitle = 8;

struct Measures
{
    int label = 0;
    int bar = 0;
    int count = 0;
    int top = 1; // the largest count
};

QString barOf(int count, const Measures& measures, bool unicode)
{
    const qint64 scale = unicode ? eighths : 1;
    const qint64 units = qint64{count} * measures.bar * scale / measures.top;
    QString bar((static_cast<int>(units / scale)), unicode ? QChar(0x2588) : QLatin1Char('#'));
    if (units % scale > 0)
        bar += QChar(0x2590 - static_cast<int>(units % scale)); // U+258F one eighth ... U+2589 seven
    if (bar.isEmpty() && count > 0)
        bar = unicode ? QChar(0x258F) : QLatin1Char('#');
    return bar;
}

Measures measure(const QVector<Bar>& bars, const Style& style)
{
    constexpr int percent = 5; // "100 %"
    const int gaps = 4 * indent.size();
    Measures measures;
    for (const Bar& bar : bars) {
        measures.label = qMax(measures.label, Text::width(bar.label));
        measures.top = qMax(measures.top, bar.count);
    }
    measures.count = QString::number(measures.top).size();
    const int room = style.columns - 1 - gaps - measures.count - percent;
    measures.label = qMin(measures.label, qMax(room / 2, 1));
    measures.bar = qMax(room - measures.label, 1);
    return measures;
}

QString barLine(const Bar& bar, int whole, const Measures& measures, const Style& style)
{
    const QString label =
        Text::padRight(Text::elide(bar.label, measures.label, style.unicode), measures.label);
    const QString drawn = Text::padRight(barOf(bar.count, measures, style.unicode), measures.bar);
    const QString count = Text::padLeft(QString::number(bar.count), measures.count);
    return indent + label + indent + style.paint(Ink::Bar, drawn) + indent + count + indent +
           Text::padLeft(QString::number(Text::percent(bar.count, whole)), 3) + QStringLiteral(" %");
}

QString head(const ChartData& data, const Style& style)
{
    QString state = data.state.arg(data.answered).arg(data.expected) + indent + Text::duration(data.seconds);
    if (data.isPaused)
        state += indent + Words::tr("paused");
    if (data.secondsLeft > 0)
        state += indent + Words::tr("stops in %1 s").arg(data.secondsLeft);
    const Ink ink = data.answered >= data.expected && data.expected > 0 ? Ink::Good : Ink::Plain;
    const int room = style.columns - 1 - Text::width(state) - indent.size();
    if (room < leastTitle)
        return style.paint(ink, Text::elide(state, style.columns - 1, style.unicode));
    return style.paint(Ink::Strong, Text::elide(data.title, room, style.unicode)) + indent +
           style.paint(ink, state);
}

// The bars that are drawn, in their order: the smallest give way first, of equal ones the last.
QVector<int> chosen(const QVector<Bar>& bars, int room)
{
    QVector<int> all(bars.size());
    std::iota(all.begin(), all.end(), 0);
    std::stable_sort(all.begin(), all.end(),
                     [&](int a, int b) { return bars.at(a).count > bars.at(b).count; });
    QVector<int> kept = all.mid(0, room);
    std::sort(kept.begin(), kept.end());
    return kept;
}

// About the bars that are not drawn.
QString restLine(const QVector<Bar>& hidden, const Style& style)
{
    QStringList voted;
    int options = 0;
    int answers = 0;
    for (const Bar& bar : hidden) {
        if (bar.isOption && bar.count > 0)
            voted.append(QStringLiteral("%1 %2").arg(bar.label, QString::number(bar.count)));
        else
            ++(bar.isOption ? options : answers);
    }
    QStringList parts = voted;
    if (options > 0)
        parts.append(options == 1 ? Words::tr("1 more option")
                                  : Words::tr("%n more options", nullptr, options));
    if (answers > 0)
        parts.append(answers == 1 ? Words::tr("1 different answer more")
                                  : Words::tr("%n different answers more", nullptr, answers));
    return Text::elide(indent + Words::tr("and %1").arg(parts.join(QStringLiteral(", "))), style.columns - 1,
                       style.unicode);
}

} // namespace

QStringList Chart::lines(const ChartData& data, const Style& style, int mostLines)
{
    QStringList lines = {head(data, style)};
    if (data.bars.isEmpty() && mostLines > 1)
        lines.append(indent + style.paint(Ink::Faint, Words::tr("No answers yet.")));
    const bool isWhole = data.bars.size() < mostLines;
    const QVector<int> shown = chosen(data.bars, isWhole ? mostLines : qMax(mostLines - 2, 0));
    QVector<Bar> bars;
    QVector<Bar> hidden = data.bars;
    for (int i = shown.size() - 1; i >= 0; --i)
        bars.prepend(hidden.takeAt(shown.at(i)));
    const Measures measures = measure(bars, style);
    const int whole = data.whole < 0 ? data.answered : data.whole;
    for (const Bar& bar : std::as_const(bars))
        lines.append(barLine(bar, whole, measures, style));
    if (!hidden.isEmpty() && mostLines > 1)
        lines.append(style.paint(Ink::Faint, restLine(hidden, style)));
    return lines;
}

QStringList Chart::all(const ChartData& data, const Style& style)
{
    const auto voted = std::count_if(data.bars.begin(), data.bars.end(),
                                     [](const Bar& bar) { return bar.isOption && bar.count > 0; });
    return lines(data, style, qMax(style.rows - 1, static_cast<int>(voted) + 2));
}
