#include "model/QuestionMathFormula.h"

namespace Calyx {

QuestionMathFormula::QuestionMathFormula(QObject* parent) : QuestionBase(parent) {}

QString QuestionMathFormula::getType() const
{
    return QStringLiteral("math formula");
}

} // namespace Calyx
