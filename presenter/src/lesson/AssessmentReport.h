#pragma once

#include "text/Style.h"

#include <CalyxClient/Lesson>

#include <QStringList>

/// The results of an assessment as tables.
namespace AssessmentReport {

/// A row for each learner of an assessment's model: his score, and each answer with its mark; the marks alone
/// where the answers find no room.
QStringList byLearner(const QAbstractItemModel& assessment, const Style& style);

/// A row for each question: how many have answered, and how many of them are right.
QStringList byQuestion(const Calyx::Assessment& assessment, const Style& style);

/// "2 learners, 9 answers, 5 of 10 right."
QString total(const Calyx::Assessment& assessment);

} // namespace AssessmentReport
