#pragma once

#include <CalyxClient/Lzma>

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QtEndian>

/// Blocks for the codec, and what is broken in them.
namespace LzmaBlocks {

constexpr int HEADER = 13; // bytes: properties, the dictionary's size, the text's size
constexpr char HELLO[] = "Hello, hello, hello, hello!";

/// HELLO with an end marker.
inline QByteArray marked()
{
    return QByteArray::fromHex("5d004000001b000000000000000024194986e7d63b918b7800b3ca99bbfffff9004000");
}

/// HELLO without one.
inline QByteArray unmarked()
{
    return QByteArray::fromHex("5d004000001b000000000000000024194986e7d63b918b7800b3bbb68000");
}

inline QByteArray withSize(QByteArray block, quint64 size)
{
    qToLittleEndian(size, block.data() + 5);
    return block;
}

/// Our own; empty when the codec fails.
inline QByteArray blockOf(const QString& text)
{
    QString base64;
    return Lzma::compress64(text, &base64) ? QByteArray::fromBase64(base64.toLatin1()) : QByteArray();
}

/// As a list of numbers carries it.
inline QVariantList numbers(const QByteArray& block)
{
    QVariantList list;
    for (const char byte : block)
        list.append(int(static_cast<unsigned char>(byte)));
    return list;
}

} // namespace LzmaBlocks
