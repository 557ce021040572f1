#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QVariant>

/// Turns variants into JSON, and members of JSON into text.
namespace JsonVariant {

/// \p value as Qt converts it, but for maps and lists of other types than Qt's own: they are converted as
/// well where a QVariantMap or a QVariantList can be made of them; to Qt they are null. A `QList<QObject*>`
/// is null.
QJsonValue toJson(const QVariant& value);

/// The member \p key of \p object as text: numbers and booleans too, as a QVariant writes them.
inline QString text(const QJsonObject& object, const char* key)
{
    const QJsonValue value = object.value(QLatin1String(key));
    return value.isString() ? value.toString() : value.toVariant().toString();
}

} // namespace JsonVariant
