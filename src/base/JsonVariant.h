#pragma once

#include <QJsonValue>
#include <QVariant>

/// Turns variants into JSON.
namespace JsonVariant {

/// \p value as Qt converts it, but for maps and lists of other types than Qt's own: they are converted as
/// well where a QVariantMap or a QVariantList can be made of them; to Qt they are null. A `QList<QObject*>`
/// is null.
QJsonValue toJson(const QVariant& value);

} // namespace JsonVariant
