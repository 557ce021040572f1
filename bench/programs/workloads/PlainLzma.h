#pragma once

#include <QByteArray>
#include <QString>

/// The codec as one writes it by hand: the LZMA SDK's one-call functions and Qt's base64. Failures end the
/// program.
namespace PlainLzma {

/// With the SDK's own settings for \p lc and \p lp, unless they are named.
QString compress64(const QString& text, int lc = -1, int lp = -1);
QByteArray decompress64(const QByteArray& base64);

} // namespace PlainLzma
