#pragma once

#include <QByteArray>
#include <QString>

/// The codec as one writes it by hand: the LZMA SDK's one-call functions and Qt's base64. Failures end the
/// program.
namespace PlainLzma {

QString compress64(const QString& text);
QByteArray decompress64(const QByteArray& base64);

} // namespace PlainLzma
