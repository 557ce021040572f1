#pragma once

#include "Tally.h"

#include <QStackedWidget>

class QLabel;

namespace QtCharts {
class QBarCategoryAxis;
class QChartView;
class QValueAxis;
} // namespace QtCharts

/// The answers to a poll as bars, and in words for those who cannot see them.
class AnswerChart : public QStackedWidget
{
    Q_OBJECT

public:
    AnswerChart();

    void showHint(const QString& text);
    void showBars(const QVector<Tally::Bar>& bars);

private:
    QLabel* m_hint;
    QtCharts::QChartView* m_view;
    QtCharts::QBarCategoryAxis* m_labels;
    QtCharts::QValueAxis* m_counts;
};
