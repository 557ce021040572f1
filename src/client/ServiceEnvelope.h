#pragma once

#include <QJsonObject>
#include <QString>
#include <QVariant>

/// Reads the JSON envelope of the service's replies.
namespace ServiceEnvelope {

/// The body as a map; empty when it is no JSON or no object.
QVariantMap parse(const QString& body);
/// The same; \p ok tells whether the body is JSON at all.
QVariantMap parse(const QString& body, bool* ok);
/// The same as JSON, for long replies.
QJsonObject object(const QString& body);
/// The map under "data"; empty when there is none.
QVariantMap data(const QVariantMap& envelope);

/// The member \p key of \p map as text; a null one when it is absent.
inline QString text(const QVariantMap& map, const char* key)
{
    return map.value(QLatin1String(key)).toString();
}

} // namespace ServiceEnvelope
