#pragma once

#include "text/Style.h"
#include "text/Words.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// One bar of a chart.
struct Bar
{
    QString label;
    int count;
    bool isOption = false; ///< of the poll; else an answer in somebody's own words
};

/// What a chart shows.
struct ChartData
{
    QString title;
    QVector<Bar> bars;
    int answered = 0;
    int expected = 0;
    /// How many of how many.
    QString state = Words::tr("%1 of %2 answered");
    /// What is 100 %; negative: the number of those who have answered.
    int whole = -1;
    int seconds = 0;
    bool isPaused = false;
    int secondsLeft = 0; ///< until it stops by itself; 0: it does not
};

/// A horizontal bar chart as text.
namespace Chart {

/// At most \p mostLines lines, none wider than the style's columns less one. The longest bar fills the width.
/// Bars that find no place are counted in the last line, those of options that somebody chose named there:
/// the smallest give way first.
QStringList lines(const ChartData& data, const Style& style, int mostLines);
/// As many lines as the window has, and more where options that somebody chose need them.
QStringList all(const ChartData& data, const Style& style);

} // namespace Chart
