#pragma once

#include "Tally.h"

#include <QChartView>

/// Shows the answers to a poll as bars, and in words for those who cannot see them.
void showAnswers(QtCharts::QChartView* view, const QVector<Tally::Bar>& bars);
