#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QMetaType>
#include <QString>
#include <QVariant>

namespace Calyx {

/// A command from the remote-control device.
///
/// Registered with Qt as "RemoteControlMessage" and as "Calyx::RemoteControlMessage".
struct CALYXCLIENT_EXPORT RemoteControlMessage
{
    /// The sender's device id.
    QString from;
    /// The command, for example "nextCard".
    QString type;
    /// The decoded payload: a map, or what else the decoding gave; invalid when there is none.
    QVariant data;

    /// No sender, no command, no payload.
    RemoteControlMessage() = default;
    /// The three values as they are.
    RemoteControlMessage(const QString& from, const QString& type, const QVariant& data);
};

/// Registers the type under both of its spellings; may be called any number of times.
CALYXCLIENT_EXPORT void registerRemoteControlMessage();

} // namespace Calyx

Q_DECLARE_METATYPE(Calyx::RemoteControlMessage)
