#include "model/AssessmentOptions.h"

namespace Calyx {

AssessmentOptions::AssessmentOptions(QObject* parent) : QObject(parent)
{
    m_assessmentSectionConfigurations = {{QStringLiteral("leveled"), false}};
}

} // namespace Calyx
