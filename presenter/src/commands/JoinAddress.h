#pragma once

#include "text/Style.h"

#include <QString>
#include <QStringList>
#include <QUrl>

/// How learners come in.
namespace JoinAddress {

/// What learners who are not at this machine need when they are to join at \p address; empty when they need
/// nothing.
QString hint(const QUrl& address);
/// A QR code as text; empty where the program "qrencode" is not installed.
QStringList qrCode(const QString& text, const Style& style);

} // namespace JoinAddress
