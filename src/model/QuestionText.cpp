#include "model/QuestionText.h"

namespace Calyx {

QuestionText::QuestionText(QObject* parent) : QuestionBase(parent) {}

QString QuestionText::getType() const
{
    return QStringLiteral("text");
}

void QuestionText::setmaxChars(int maxChars)
{
    m_maxChars = maxChars;
}

} // namespace Calyx
