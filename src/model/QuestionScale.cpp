#include "model/QuestionScale.h"

namespace Calyx {

QuestionScale::QuestionScale(QObject* parent) : QuestionBaseWithOptions(parent) {}

QString QuestionScale::getType() const
{
    return QStringLiteral("scale");
}

} // namespace Calyx
