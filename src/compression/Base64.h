#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>

/// Base64 between bytes and UTF-16, in one pass: the results are those of QByteArray::toBase64() and
/// fromBase64(), without the copy in Latin-1.
namespace Base64 {

QString encode(const unsigned char* bytes, size_t size);

/// Characters that are not of the alphabet, "=" included, are skipped.
QByteArray decode(const QString& text);

} // namespace Base64
