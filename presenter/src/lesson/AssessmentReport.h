#pragma once

#include "text/Style.h"

#include <QStringList>

class AssessmentSheet;

/// The results of an assessment as tables.
namespace AssessmentReport {

/// A row for each learner: his score, and each answer with its mark; the marks alone where the answers find
/// no room.
QStringList byLearner(const AssessmentSheet& sheet, const Style& style);

/// A row for each question: how many have answered, and how many of them are right.
QStringList byQuestion(const AssessmentSheet& sheet, const Style& style);

/// "2 learners, 9 answers, 5 of 10 right."
QString total(const AssessmentSheet& sheet);

} // namespace AssessmentReport
