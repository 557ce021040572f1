#include "model/ActivityOption.h"

namespace Calyx {

ActivityOption::ActivityOption(QObject* parent) : QObject(parent) {}

} // namespace Calyx
