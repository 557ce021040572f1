#include "model/QuestionMultiChoice.h"

namespace Calyx {

QuestionMultiChoice::QuestionMultiChoice(QObject* parent) : QuestionBaseWithOptions(parent) {}

QString QuestionMultiChoice::getType() const
{
    return QStringLiteral("multiple");
}

void QuestionMultiChoice::setPriorAnswer(QString answer)
{
    setPriorOptions(answer.split(QString(), Qt::SkipEmptyParts));
}

} // namespace Calyx
