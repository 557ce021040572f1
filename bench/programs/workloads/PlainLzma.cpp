#include "workloads/PlainLzma.h"

#include "workloads/Workload.h"

#include <LzmaDec.h>
#include <LzmaEnc.h>

#include <QtEndian>

#include <cstdlib>

namespace {

constexpr int headerSize = LZMA_PROPS_SIZE + 8;

void* allocate(void*, size_t size)
{
    return std::malloc(size);
}

void release(void*, void* address)
{
    std::free(address);
}

ISzAlloc heap = {allocate, release};

unsigned char* bytesOf(QByteArray& array)
{
    return reinterpret_cast<unsigned char*>(array.data());
}

} // namespace

QString PlainLzma::compress64(const QString& text, int lc, int lp)
{
    const QByteArray utf8 = text.toUtf8();
    CLzmaEncProps props;
    LzmaEncProps_Init(&props);
    props.level = 0;
    props.lc = lc;
    props.lp = lp;
    props.numThreads = 1;
    QByteArray block(headerSize + utf8.size() + utf8.size() / 3 + 128, Qt::Uninitialized);
    SizeT encoded = SizeT(block.size() - headerSize);
    SizeT propsSize = LZMA_PROPS_SIZE;
    require(LzmaEncode(bytesOf(block) + headerSize, &encoded,
                       reinterpret_cast<const unsigned char*>(utf8.constData()), SizeT(utf8.size()), &props,
                       bytesOf(block), &propsSize, 1, nullptr, &heap, &heap) == SZ_OK,
            "one-call encoder");
    qToLittleEndian<quint64>(quint64(utf8.size()), block.data() + LZMA_PROPS_SIZE);
    block.truncate(headerSize + int(encoded));
    return QString::fromLatin1(block.toBase64());
}

QByteArray PlainLzma::decompress64(const QByteArray& base64)
{
    QByteArray block = QByteArray::fromBase64(base64);
    const auto size = qFromLittleEndian<qint32>(block.constData() + LZMA_PROPS_SIZE);
    QByteArray text(size, Qt::Uninitialized);
    SizeT textLength = SizeT(size);
    SizeT streamLength = SizeT(block.size() - headerSize);
    ELzmaStatus status = LZMA_STATUS_NOT_SPECIFIED;
    require(LzmaDecode(bytesOf(text), &textLength, bytesOf(block) + headerSize, &streamLength, bytesOf(block),
                       LZMA_PROPS_SIZE, LZMA_FINISH_END, &status, &heap) == SZ_OK,
            "one-call decoder");
    return text;
}
