#pragma once

#include "text/Bar.h"
#include "text/Style.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// What a chart shows.
struct ChartData
{
    QString title;
    QVector<Bar> bars;
    int answered = 0;
    int expected = 0;
    /// What those who count as answered have done.
    QString doing = QStringLiteral("answered");
    /// What is 100 %; negative: the number of those who have answered.
    int whole = -1;
    int seconds = 0;
    bool isPaused = false;
};

/// A horizontal bar chart as text.
namespace Chart {

/// At most \p mostLines lines, none wider than the style's columns less one; bars that find no place are
/// counted in the last line. The longest bar fills the width.
QStringList lines(const ChartData& data, const Style& style, int mostLines);

} // namespace Chart
