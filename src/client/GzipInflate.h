#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QByteArray>

/// Inflates \p data, gzip or zlib (told apart by its header). Data that ends early gives what came out until
/// then. Corrupt data gives an empty array, and so do data that would give more than 64 MiB, and fewer than 5
/// bytes, with a warning.
CALYXCLIENT_EXPORT QByteArray gUncompress(const QByteArray& data);
