#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QMetaType>
#include <QString>

namespace Calyx {

/// A learner's device, as the service lists it or as it joined.
///
/// Registered with Qt as "Learner" and as "Calyx::Learner", so that queued connections and signal spies work
/// with both.
struct CALYXCLIENT_EXPORT Learner
{
    /// The device's token: its identity on the service and on the event bus.
    QString deviceId;
    /// The name that the learner shows.
    QString userName;
    /// The kind of device, as the service names it.
    QString deviceType;

    /// All three texts null.
    Learner() = default;
    /// The three texts as they are.
    Learner(const QString& deviceId, const QString& userName, const QString& deviceType);
};

/// Registers the type under both of its spellings; may be called any number of times.
CALYXCLIENT_EXPORT void registerLearner();

} // namespace Calyx

Q_DECLARE_METATYPE(Calyx::Learner)
