#include "model/RemoteControlMessage.h"

namespace Calyx {

RemoteControlMessage::RemoteControlMessage(const QString& from_, const QString& type_, const QVariant& data_)
    : from(from_), type(type_), data(data_)
{}

void registerRemoteControlMessage()
{
    qRegisterMetaType<RemoteControlMessage>();
    qRegisterMetaType<RemoteControlMessage>("RemoteControlMessage");
}

} // namespace Calyx
