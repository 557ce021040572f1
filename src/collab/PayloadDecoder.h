#pragma once

#include <QVariant>

/// Decodes the "data" of an inbound message body: a compressed base64 text, a list of such texts (chunks,
/// each compressed on its own), or compressed bytes as a list of numbers. More than 32 million characters of
/// text, all chunks together, count as data that cannot be decoded.
namespace PayloadDecoder {

/// The decoded value; invalid when there is no data or it cannot be decoded. A single text that is not
/// compressed comes back as it is. A single text gives only maps; a list gives any JSON object or list, or,
/// when its text is no JSON, that text as Latin-1 bytes.
QVariant decode(const QVariant& data);

} // namespace PayloadDecoder
