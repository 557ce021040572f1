#pragma once

#include "text/Chart.h"

#include <CalyxClient/Lesson>

/// What is drawn of a poll and of an assessment.
namespace Charts {

/// A bar for each option, "B Carbon dioxide", then for each other answer.
ChartData of(const Calyx::Poll& poll);
/// A bar for each question: how many have answered it.
ChartData of(const Calyx::Assessment& assessment);

/// "1 multiple: Which of these is a leaf?"
QString title(const Calyx::Question& question, int number);

} // namespace Charts
