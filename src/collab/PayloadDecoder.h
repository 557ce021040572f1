#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QVariant>

/// Decodes the "data" of an inbound message body: a compressed base64 text, a list of such texts (chunks,
/// each compressed on its own), or compressed bytes as a list of numbers. More than 32 million characters of
/// text, all chunks together, count as data that cannot be decoded.
namespace PayloadDecoder {

/// Decoded data: JSON, or something else, or nothing.
struct Payload
{
    QJsonDocument document;
    QVariant other;

    /// The value; invalid when there is no data or it cannot be decoded. A single text that is not compressed
    /// comes back as it is. A single text gives only maps; a list gives any JSON object or list, or, when its
    /// text is no JSON, that text as Latin-1 bytes.
    QVariant value() const { return document.isNull() ? other : document.toVariant(); }
    /// The value where it is a map; else an empty one.
    QJsonObject object() const { return document.object(); }
};

/// Of data as it was parsed.
Payload read(const QJsonValue& data);

/// The value of read(), of what a host hands over.
QVariant decode(const QVariant& data);

} // namespace PayloadDecoder
