#pragma once

#include <QString>
#include <QStringList>

/// SockJS message frames as text.
namespace SockJSFrame {

/// \p message as the servers get it: an indented JSON array of one string, each "[ " and " ]" in it without
/// the blank.
QString encode(const QString& message);

/// The messages in \p frame, "a" and a JSON array; none when that is no JSON.
QStringList messages(const QString& frame);

} // namespace SockJSFrame
