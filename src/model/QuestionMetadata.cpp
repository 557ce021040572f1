#include "model/QuestionMetadata.h"

namespace Calyx {

QuestionMetadata::QuestionMetadata(QObject* parent) : QObject(parent) {}

void QuestionMetadata::setordinalType(QString ordinalType)
{
    m_ordinalType = ordinalType;
}

void QuestionMetadata::setoptions(QVariantList options)
{
    m_options = options;
}

} // namespace Calyx
