#pragma once

#include "text/Style.h"

#include <QString>
#include <QStringList>

/// How learners come in.
namespace JoinAddress {

/// Where learners reach a service that we know as \p server: an address that means "here, wherever that is"
/// is replaced by one that this machine has in its network.
QString ofService(const QString& server);
/// The same with the session's code in it, for a QR code.
QString withCode(const QString& server, const QString& code);
/// What learners who are not at this machine need; empty when they need nothing.
QString hint(const QString& server);
/// A QR code as text; empty where the program "qrencode" is not installed.
QStringList qrCode(const QString& text, const Style& style);

} // namespace JoinAddress
