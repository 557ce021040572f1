#pragma once

#include <QByteArray>
#include <QVariant>

/// Writes JSON that goes out.
namespace JsonWriter {

/// What QJsonDocument::fromVariant(map).toJson() gives, byte for byte, without making a document first.
QByteArray write(const QVariantMap& map);

} // namespace JsonWriter
