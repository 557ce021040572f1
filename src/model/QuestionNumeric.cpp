#include "model/QuestionNumeric.h"

namespace Calyx {

QuestionNumeric::QuestionNumeric(QObject* parent) : QuestionBase(parent) {}

QString QuestionNumeric::getType() const
{
    return QStringLiteral("number");
}

} // namespace Calyx
