#include "text/Table.h"

#include "text/Text.h"

namespace {

const QString gap = QStringLiteral("  ");

QString line(const QStringList& cells, const QVector<int>& widths, const Style& style)
{
    QString text;
    for (int column = 0; column < cells.size(); ++column)
        text += gap + Text::padRight(cells.at(column), widths.at(column));
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return Text::elide(text, style.columns - 1, style.unicode);
}

} // namespace

QStringList Table::lines(const QStringList& header, const QVector<QStringList>& rows, const Style& style)
{
    QVector<int> widths(header.size());
    for (const QStringList& cells : QVector<QStringList>{header} + rows) {
        for (int column = 0; column < cells.size(); ++column)
            widths[column] = qMax(widths.at(column), Text::width(cells.at(column)));
    }
    QStringList lines = {style.paint(Ink::Strong, line(header, widths, style))};
    for (const QStringList& cells : rows)
        lines.append(line(cells, widths, style));
    return lines;
}
