#include "model/QuestionFeedback.h"

namespace Calyx {

QuestionFeedback::QuestionFeedback(QObject* parent) : QObject(parent) {}

} // namespace Calyx
