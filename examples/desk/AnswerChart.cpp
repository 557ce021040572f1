#include "AnswerChart.h"

#include "Theme.h"

#include <QBarCategoryAxis>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QHorizontalBarSeries>
#include <QLabel>
#include <QValueAxis>

#include <algorithm>
#include <cmath>

using namespace QtCharts;

namespace {

constexpr int longestLabel = 22; // characters

// So that there are few lines, at round numbers.
int stepFor(int highest)
{
    for (int step = 1;; step *= 10) {
        for (const int factor : {1, 2, 5}) {
            if (highest <= 6 * step * factor)
                return step * factor;
        }
    }
}

// The axis leaves out a label that it has already: one that becomes equal by being cut gets an invisible
// blank.
QString shortened(QString label, const QStringList& others)
{
    if (label.size() > longestLabel)
        label = label.left(longestLabel - 1) + QChar(0x2026);
    while (others.contains(label))
        label += QChar(0x200b);
    return label;
}

} // namespace

AnswerChart::AnswerChart()
{
    m_hint = Theme::caption(QString());
    m_hint->setAlignment(Qt::AlignCenter);
    addWidget(m_hint);

    auto* chart = new QChart;
    chart->legend()->hide();
    chart->setBackgroundVisible(false);
    chart->setMargins(QMargins(0, 0, 24, 0));
    auto* series = new QHorizontalBarSeries(chart);
    series->setBarWidth(0.56);
    series->setLabelsVisible(true);
    series->setLabelsPosition(QAbstractBarSeries::LabelsOutsideEnd);
    chart->addSeries(series);
    m_labels = new QBarCategoryAxis(chart);
    m_labels->setGridLineVisible(false);
    m_labels->setLineVisible(false);
    m_counts = new QValueAxis(chart);
    m_counts->setLabelFormat(QStringLiteral("%d"));
    m_counts->setTickType(QValueAxis::TicksDynamic);
    m_counts->setLineVisible(false);
    m_counts->setGridLineColor(QColor(0xe3, 0xe8, 0xed));
    chart->addAxis(m_labels, Qt::AlignLeft);
    chart->addAxis(m_counts, Qt::AlignBottom);
    series->attachAxis(m_labels);
    series->attachAxis(m_counts);

    m_view = new QChartView(chart);
    m_view->setRenderHint(QPainter::Antialiasing);
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setBackgroundBrush(Qt::white);
    Theme::describe(m_view, QStringLiteral("Answers"), QString());
    addWidget(m_view);
}

void AnswerChart::showHint(const QString& text)
{
    m_hint->setText(text);
    setCurrentWidget(m_hint);
}

void AnswerChart::showBars(const QVector<Tally::Bar>& bars)
{
    int highest = 1;
    QStringList labels;
    QStringList words;
    auto* set = new QBarSet(QStringLiteral("Answers"));
    for (int i = bars.size() - 1; i >= 0; --i) { // the axis goes upwards
        const Tally::Bar& bar = bars.at(i);
        highest = std::max(highest, bar.count);
        set->append(bar.count);
        labels.append(shortened(bar.label, labels));
        words.prepend(QStringLiteral("%1: %2").arg(bar.label).arg(bar.count));
    }
    set->setColor(QColor(0x2f, 0x74, 0xc0));
    set->setBorderColor(Qt::transparent);
    set->setLabelColor(QColor(0x1f, 0x29, 0x33));
    auto* series = static_cast<QHorizontalBarSeries*>(m_view->chart()->series().first());
    series->clear();
    series->append(set);
    m_labels->setCategories(labels);
    const int step = stepFor(highest);
    m_counts->setTickInterval(step);
    m_counts->setRange(0, std::ceil(highest * 1.08 / step) * step);
    m_view->setAccessibleDescription(words.join(QStringLiteral(", ")));
    setCurrentWidget(m_view);
}
