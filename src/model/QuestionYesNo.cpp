#include "model/QuestionYesNo.h"

namespace Calyx {

QuestionYesNo::QuestionYesNo(QObject* parent) : QuestionBaseWithOptions(parent) {}

QString QuestionYesNo::getType() const
{
    return isTrueFalse() ? QStringLiteral("true-false") : QStringLiteral("yes-no-other");
}

} // namespace Calyx
