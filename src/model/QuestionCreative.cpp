#include "model/QuestionCreative.h"

namespace Calyx {

QuestionCreative::QuestionCreative(QObject* parent) : QuestionBaseWithOptions(parent) {}

QString QuestionCreative::getType() const
{
    return QStringLiteral("creative");
}

} // namespace Calyx
