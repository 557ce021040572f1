#include "model/QuestionMetadata.h"

namespace Calyx {

QuestionMetadata::QuestionMetadata(QObject* parent) : QObject(parent) {}

} // namespace Calyx
