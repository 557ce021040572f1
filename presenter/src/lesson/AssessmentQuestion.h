#pragma once

#include <QString>

#include <memory>

class AssessmentSheet;
class PresenterCollab;

namespace Calyx {
class QuestionBase;
}

/// The questions of an assessment as learners' devices get them.
namespace AssessmentQuestion {

/// Question \p number for \p deviceId: with the answer that it gave before, if it did.
std::unique_ptr<Calyx::QuestionBase> create(PresenterCollab* collab, const AssessmentSheet& sheet, int number,
                                            const QString& deviceId);

/// "1 multiple: Which of these is a leaf?"
QString title(const AssessmentSheet& sheet, int number);

} // namespace AssessmentQuestion
