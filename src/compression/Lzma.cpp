#include "compression/Lzma.h"

#include "compression/LzmaBlock.h"

#include <QByteArray>
#include <QStringList>

#include <new>
#include <utility>

namespace {

unsigned char* bytesOf(QByteArray& array)
{
    return reinterpret_cast<unsigned char*>(array.data());
}

bool compressText(const QString& text, LzmaBlock::Buffer* block)
{
    const QByteArray utf8 = text.toUtf8();
    return LzmaBlock::encode(reinterpret_cast<const unsigned char*>(utf8.constData()), size_t(utf8.size()),
                             block);
}

} // namespace

// Qt throws where there is no memory for a text; nothing of that leaves here.
bool Lzma::compress(const unsigned char* src, size_t len, unsigned char** dest, size_t* destLen)
try {
    LzmaBlock::Buffer block;
    if (!LzmaBlock::encode(src, len, &block))
        return false;
    *dest = block.bytes.release();
    *destLen = block.size;
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool Lzma::compress(QString text, QString* out)
try {
    LzmaBlock::Buffer block;
    if (!compressText(text, &block))
        return false;
    QStringList numbers;
    numbers.reserve(int(block.size));
    for (size_t i = 0; i < block.size; ++i)
        numbers.append(QString::number(block.bytes.get()[i]));
    *out = QLatin1Char('[') + numbers.join(QLatin1Char(',')) + QLatin1Char(']');
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool Lzma::compress64(QString text, QString* out)
try {
    return LzmaBlock::encode64(text.toUtf8(), out);
} catch (const std::bad_alloc&) {
    return false;
}

bool Lzma::decompress(const unsigned char* block, size_t len, unsigned char** dest)
try {
    LzmaBlock::Buffer text;
    if (!LzmaBlock::decode(block, len, &text))
        return false;
    text.bytes.get()[text.size] = 0;
    *dest = text.bytes.release();
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool Lzma::decompress(unsigned char* block, size_t len, QString* out)
try {
    LzmaBlock::Buffer text;
    if (!LzmaBlock::decode(block, len, &text))
        return false;
    const auto* bytes = reinterpret_cast<const char*>(text.bytes.get());
    *out = QString::fromUtf8(bytes, int(qstrnlen(bytes, uint(text.size))));
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool Lzma::decompress(QString list, QString* out)
try {
    list.remove(QLatin1Char('[')).remove(QLatin1Char(']'));
    const QStringView text(list);
    QByteArray block;
    // No list of the parts, which would take many times the text's memory.
    for (qsizetype begin = 0, end = 0; end < text.size(); begin = end + 1) {
        const qsizetype comma = text.indexOf(QLatin1Char(','), begin);
        end = comma < 0 ? text.size() : comma;
        block.append(static_cast<char>(text.mid(begin, end - begin).toLongLong()));
    }
    return decompress(bytesOf(block), size_t(block.size()), out);
} catch (const std::bad_alloc&) {
    return false;
}

bool Lzma::decompress(QList<QVariant> bytes, QString* out)
try {
    QByteArray block;
    block.reserve(bytes.size());
    for (const QVariant& byte : std::as_const(bytes))
        block.append(static_cast<char>(byte.toLongLong()));
    return decompress(bytesOf(block), size_t(block.size()), out);
} catch (const std::bad_alloc&) {
    return false;
}

bool Lzma::decompress64(QString text, QString* out)
try {
    QByteArray block = QByteArray::fromBase64(text.toLatin1());
    return decompress(bytesOf(block), size_t(block.size()), out);
} catch (const std::bad_alloc&) {
    return false;
}
