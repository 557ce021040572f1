#include "compression/Lzma.h"

#include <LzmaDec.h>
#include <LzmaEnc.h>

#include <QByteArray>
#include <QStringList>
#include <QtEndian>

#include <cstdlib>
#include <memory>

namespace {

constexpr size_t sizeOffset = LZMA_PROPS_SIZE;
constexpr size_t headerSize = LZMA_PROPS_SIZE + 8;
constexpr size_t smallestBlock = headerSize + 1;
constexpr size_t largestText = size_t(256) * 1024 * 1024;
constexpr size_t firstCapacity = 4096;

void* SzAlloc(void*, size_t size)
{
    return std::malloc(size);
}

void SzFree(void*, void* address)
{
    std::free(address);
}

ISzAlloc g_Alloc = {SzAlloc, SzFree};

struct Free
{
    void operator()(unsigned char* bytes) const { std::free(bytes); }
};
using Bytes = std::unique_ptr<unsigned char, Free>;

unsigned char* bytesOf(QByteArray& array)
{
    return reinterpret_cast<unsigned char*>(array.data());
}

CLzmaEncProps encoderProps()
{
    CLzmaEncProps props;
    LzmaEncProps_Init(&props);
    props.level = 0;
    props.dictSize = 0;
    props.lc = props.lp = props.pb = props.fb = -1;
    props.numThreads = 1;
    return props;
}

// Compresses into an array with room for the header and the worst case of the stream.
bool compressBlock(const unsigned char* src, size_t len, Bytes& block, size_t& blockLen)
{
    const size_t room = len + len / 3 + 128;
    block.reset(static_cast<unsigned char*>(std::malloc(headerSize + room)));
    if (!block)
        return false;
    const CLzmaEncProps props = encoderProps();
    SizeT encoded = room;
    SizeT propsSize = LZMA_PROPS_SIZE;
    constexpr int writeEndMark = 1;
    if (LzmaEncode(block.get() + headerSize, &encoded, src, len, &props, block.get(), &propsSize,
                   writeEndMark, nullptr, &g_Alloc, &g_Alloc) != SZ_OK)
        return false;
    qToLittleEndian<quint64>(len, block.get() + sizeOffset);
    blockLen = encoded + headerSize;
    return true;
}

bool compressText(const QString& text, Bytes& block, size_t& blockLen)
{
    const QByteArray utf8 = text.toUtf8();
    return compressBlock(reinterpret_cast<const unsigned char*>(utf8.constData()), size_t(utf8.size()), block,
                         blockLen);
}

// What no encoder is set to, and xz refuses as well: the tables then take 6 MiB, which a block of 20 bytes
// would have us fill, and a message can hold many.
bool hasLargeTables(unsigned char contexts)
{
    const int literalContexts = contexts % 9;
    const int literalPositions = contexts / 9 % 5;
    return literalContexts + literalPositions > 4;
}

// The decoder with an output buffer that grows with what is really decoded: the sizes in a block are claims.
class BlockDecoder
{
public:
    BlockDecoder() { LzmaDec_Construct(&m_state); }
    ~BlockDecoder() { LzmaDec_FreeProbs(&m_state, &g_Alloc); }
    Q_DISABLE_COPY(BlockDecoder)

    bool decode(const unsigned char* block, size_t len)
    {
        if (len < smallestBlock || hasLargeTables(block[0]))
            return false;
        const qint32 claimed = qFromLittleEndian<qint32>(block + sizeOffset);
        if (claimed < 0 || LzmaDec_AllocateProbs(&m_state, block, LZMA_PROPS_SIZE, &g_Alloc) != SZ_OK)
            return false;
        const size_t limit = qMin(size_t(claimed), largestText);
        if (!growTo(qMin(limit, firstCapacity)))
            return false;
        LzmaDec_Init(&m_state);
        return decodeStream(block + headerSize, len - headerSize, limit, size_t(claimed));
    }

    size_t size() const { return m_state.dicPos; }
    const unsigned char* bytes() const { return m_bytes.get(); }
    unsigned char* release()
    {
        m_bytes.get()[size()] = 0;
        return m_bytes.release();
    }

private:
    bool growTo(size_t capacity)
    {
        auto* grown = static_cast<unsigned char*>(std::realloc(m_bytes.get(), capacity + 1));
        if (!grown)
            return false;
        (void)m_bytes.release();
        m_bytes.reset(grown);
        m_state.dic = grown;
        m_state.dicBufSize = capacity;
        return true;
    }

    bool decodeStream(const unsigned char* stream, size_t len, size_t limit, size_t claimed)
    {
        for (;;) {
            const size_t capacity = m_state.dicBufSize;
            SizeT consumed = len;
            ELzmaStatus status = LZMA_STATUS_NOT_SPECIFIED;
            if (LzmaDec_DecodeToDic(&m_state, capacity, stream, &consumed,
                                    capacity == limit ? LZMA_FINISH_END : LZMA_FINISH_ANY, &status) != SZ_OK)
                return false;
            if (status == LZMA_STATUS_FINISHED_WITH_MARK)
                return true;
            if (m_state.dicPos == limit)
                return status == LZMA_STATUS_MAYBE_FINISHED_WITHOUT_MARK && limit == claimed;
            if (m_state.dicPos < capacity) // the input has ended before the text has
                return false;
            stream += consumed;
            len -= consumed;
            if (!growTo(qMin(limit, capacity * 4)))
                return false;
        }
    }

    CLzmaDec m_state;
    Bytes m_bytes;
};

} // namespace

bool Lzma::compress(const unsigned char* src, size_t len, unsigned char** dest, size_t* destLen)
{
    Bytes block;
    size_t blockLen = 0;
    if (!compressBlock(src, len, block, blockLen))
        return false;
    *dest = block.release();
    *destLen = blockLen;
    return true;
}

bool Lzma::compress(QString text, QString* out)
{
    Bytes block;
    size_t blockLen = 0;
    if (!compressText(text, block, blockLen))
        return false;
    QStringList numbers;
    numbers.reserve(int(blockLen));
    for (size_t i = 0; i < blockLen; ++i)
        numbers.append(QString::number(block.get()[i]));
    *out = QLatin1Char('[') + numbers.join(QLatin1Char(',')) + QLatin1Char(']');
    return true;
}

bool Lzma::compress64(QString text, QString* out)
{
    Bytes block;
    size_t blockLen = 0;
    if (!compressText(text, block, blockLen))
        return false;
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(block.get()), int(blockLen));
    *out = QString::fromLatin1(bytes.toBase64());
    return true;
}

bool Lzma::decompress(const unsigned char* block, size_t len, unsigned char** dest)
{
    BlockDecoder decoder;
    if (!decoder.decode(block, len))
        return false;
    *dest = decoder.release();
    return true;
}

bool Lzma::decompress(unsigned char* block, size_t len, QString* out)
{
    BlockDecoder decoder;
    if (!decoder.decode(block, len))
        return false;
    const auto* text = reinterpret_cast<const char*>(decoder.bytes());
    *out = QString::fromUtf8(text, int(qstrnlen(text, uint(decoder.size()))));
    return true;
}

bool Lzma::decompress(QString list, QString* out)
{
    list.remove(QLatin1Char('[')).remove(QLatin1Char(']'));
    const QVector<QStringRef> parts = list.splitRef(QLatin1Char(','));
    QByteArray block;
    block.reserve(parts.size());
    for (const QStringRef& part : parts)
        block.append(static_cast<char>(part.toInt()));
    return decompress(bytesOf(block), size_t(block.size()), out);
}

bool Lzma::decompress(QList<QVariant> bytes, QString* out)
{
    QByteArray block;
    block.reserve(bytes.size());
    for (const QVariant& byte : bytes)
        block.append(static_cast<char>(byte.toInt()));
    return decompress(bytesOf(block), size_t(block.size()), out);
}

bool Lzma::decompress64(QString text, QString* out)
{
    QByteArray block = QByteArray::fromBase64(text.toUtf8());
    return decompress(bytesOf(block), size_t(block.size()), out);
}
