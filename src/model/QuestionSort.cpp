#include "model/QuestionSort.h"

namespace Calyx {

QuestionSort::QuestionSort(QObject* parent) : QuestionBaseWithOptions(parent) {}

QString QuestionSort::getType() const
{
    return QStringLiteral("sort");
}

void QuestionSort::setPriorAnswer(QString answer)
{
    setPriorOptions(answer.split(QString(), Qt::SkipEmptyParts));
}

} // namespace Calyx
