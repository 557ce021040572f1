#pragma once

#include <QByteArray>

/// Writes compressed data for tests, in the two forms that a service may send.
namespace Gzip {

/// \p data with a gzip header and trailer.
QByteArray gzip(const QByteArray& data);
/// \p data with a zlib header and trailer.
QByteArray zlib(const QByteArray& data);
/// \p size bytes that do not compress, always the same.
QByteArray noise(int size);

} // namespace Gzip
