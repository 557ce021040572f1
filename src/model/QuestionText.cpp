#include "model/QuestionText.h"

namespace Calyx {

QuestionText::QuestionText(QObject* parent) : QuestionBase(parent) {}

QString QuestionText::getType() const
{
    return QStringLiteral("text");
}

} // namespace Calyx
