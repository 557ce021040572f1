#include "model/Learner.h"

namespace Calyx {

Learner::Learner(const QString& deviceId_, const QString& userName_, const QString& deviceType_)
    : deviceId(deviceId_), userName(userName_), deviceType(deviceType_)
{}

void registerLearner()
{
    qRegisterMetaType<Learner>();
    qRegisterMetaType<Learner>("Learner");
}

} // namespace Calyx
