#include "AnswerChart.h"

#include <QtCharts>

#include <memory>

using namespace QtCharts;

void showAnswers(QChartView* view, const QVector<Tally::Bar>& bars)
{
    constexpr int longestLabel = 160; // pixels
    constexpr double room = 1.1;      // for the count behind the longest bar
    int highest = 1;
    QStringList labels;
    QStringList words;
    auto* set = new QBarSet(QString());
    for (auto bar = bars.crbegin(); bar != bars.crend(); ++bar) { // the axis goes upwards
        highest = qMax(highest, bar->count);
        set->append(bar->count);
        labels.append(view->fontMetrics().elidedText(bar->label, Qt::ElideRight, longestLabel));
        while (labels.count(labels.last()) > 1)
            labels.last() += QChar(0x200b); // an invisible blank: the axis leaves out what it has already
        words.prepend(QStringLiteral("%1: %2").arg(bar->label).arg(bar->count));
    }
    view->setAccessibleDescription(words.join(QStringLiteral(", ")));

    set->setColor(view->palette().color(QPalette::Highlight));
    set->setLabelColor(view->palette().color(QPalette::Text));
    auto* series = new QHorizontalBarSeries;
    series->append(set);
    series->setLabelsVisible(true);
    series->setLabelsPosition(QAbstractBarSeries::LabelsOutsideEnd);

    auto* options = new QBarCategoryAxis;
    options->append(labels);
    options->setGridLineVisible(false);
    options->setLabelsColor(view->palette().color(QPalette::Text));
    auto* counts = new QValueAxis;
    counts->setRange(0, highest * room);
    counts->hide(); // each bar tells its count

    auto* chart = new QChart;
    chart->legend()->hide();
    chart->setBackgroundVisible(false);
    chart->addSeries(series);
    chart->addAxis(options, Qt::AlignLeft);
    chart->addAxis(counts, Qt::AlignBottom);
    series->attachAxis(options);
    series->attachAxis(counts);
    const std::unique_ptr<QChart> last(view->chart()); // setChart() leaves it to us
    view->setChart(chart);
}
