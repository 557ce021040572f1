#include "compression/LzmaBlock.h"

#include "compression/Base64.h"
#include "compression/LzmaMatchFinder.h"

#include <LzmaDec.h>
#include <LzmaEnc.h>

#include <QtEndian>

#include <algorithm>
#include <new>

namespace {

constexpr size_t sizeOffset = LZMA_PROPS_SIZE;
constexpr size_t headerSize = LZMA_PROPS_SIZE + 8;
constexpr size_t smallestBlock = headerSize + 1;
constexpr size_t firstCapacity = 4096;

void* SzAlloc(void*, size_t size)
{
    return std::malloc(size);
}

// An encoder that keeps its hash has to start with an empty one, at position 0.
void* SzAllocZeroed(void*, size_t size)
{
    return std::calloc(size, 1);
}

void SzFree(void*, void* address)
{
    std::free(address);
}

ISzAlloc g_Alloc = {SzAlloc, SzFree};
ISzAlloc g_ZeroedAlloc = {SzAllocZeroed, SzFree};

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

// The SDK's encoder, which sets itself up anew for each stream but keeps its memory and its tables.
class Encoder
{
public:
    Encoder() : m_handle(LzmaEnc_Create(&g_ZeroedAlloc))
    {
        const CLzmaEncProps props = encoderProps();
        SizeT size = LZMA_PROPS_SIZE;
        m_isReady = m_handle && LzmaEnc_SetProps(m_handle, &props) == SZ_OK &&
                    LzmaEnc_WriteProperties(m_handle, m_properties, &size) == SZ_OK;
    }
    ~Encoder()
    {
        if (m_handle)
            LzmaEnc_Destroy(m_handle, &g_ZeroedAlloc, &g_ZeroedAlloc);
    }
    Q_DISABLE_COPY(Encoder)

    bool encode(const unsigned char* source, size_t size, unsigned char* block, size_t room,
                size_t* blockSize)
    {
        constexpr int writeEndMark = 1;
        if (!m_isReady)
            return false;
        SizeT encoded = room - headerSize;
        LzmaMatchFinder_keepHash(true);
        const SRes result = LzmaEnc_MemEncode(m_handle, block + headerSize, &encoded, source, size,
                                              writeEndMark, nullptr, &g_ZeroedAlloc, &g_ZeroedAlloc);
        LzmaMatchFinder_keepHash(false);
        if (result != SZ_OK)
            return false;
        std::copy_n(m_properties, LZMA_PROPS_SIZE, block);
        qToLittleEndian<quint64>(size, block + sizeOffset);
        *blockSize = headerSize + encoded;
        return true;
    }

private:
    CLzmaEncHandle m_handle;
    Byte m_properties[LZMA_PROPS_SIZE] = {};
    bool m_isReady = false;
};

// The decoder's probability tables, kept for the thread's next block.
class Tables
{
public:
    Tables() { LzmaDec_Construct(&m_state); }
    ~Tables() { LzmaDec_FreeProbs(&m_state, &g_Alloc); }
    Q_DISABLE_COPY(Tables)

    CLzmaDec* prepare(const unsigned char* properties)
    {
        return LzmaDec_AllocateProbs(&m_state, properties, LZMA_PROPS_SIZE, &g_Alloc) == SZ_OK ? &m_state
                                                                                               : nullptr;
    }

private:
    CLzmaDec m_state;
};

// What no encoder is set to, and xz refuses as well: the tables then take 6 MiB, which a block of 20 bytes
// would have us fill, and a message can hold many.
bool hasLargeTables(unsigned char contexts)
{
    const int literalContexts = contexts % 9;
    const int literalPositions = contexts / 9 % 5;
    return literalContexts + literalPositions > 4;
}

// Decodes into a buffer that grows with what is really decoded: the sizes in a block are claims.
class Decoding
{
public:
    explicit Decoding(CLzmaDec* state) : m_state(state)
    {
        m_state->dic = nullptr;
        m_state->dicBufSize = 0;
    }

    bool run(const unsigned char* block, size_t size)
    {
        const qint32 claimed = qFromLittleEndian<qint32>(block + sizeOffset);
        if (claimed < 0)
            return false;
        const size_t limit = qMin(size_t(claimed), LzmaBlock::largestText);
        if (!growTo(qMin(limit, qMax(firstCapacity, size))))
            return false;
        LzmaDec_Init(m_state);
        return decode(block + headerSize, size - headerSize, limit, size_t(claimed));
    }

    LzmaBlock::Buffer take() { return {std::move(m_bytes), m_state->dicPos}; }

private:
    bool growTo(size_t capacity)
    {
        auto* grown = static_cast<unsigned char*>(std::realloc(m_bytes.get(), capacity + 1));
        if (!grown)
            return false;
        (void)m_bytes.release();
        m_bytes.reset(grown);
        m_state->dic = grown;
        m_state->dicBufSize = capacity;
        return true;
    }

    bool decode(const unsigned char* stream, size_t size, size_t limit, size_t claimed)
    {
        for (;;) {
            const size_t capacity = m_state->dicBufSize;
            SizeT consumed = size;
            ELzmaStatus status = LZMA_STATUS_NOT_SPECIFIED;
            if (LzmaDec_DecodeToDic(m_state, capacity, stream, &consumed,
                                    capacity == limit ? LZMA_FINISH_END : LZMA_FINISH_ANY, &status) != SZ_OK)
                return false;
            if (status == LZMA_STATUS_FINISHED_WITH_MARK)
                return true;
            if (m_state->dicPos == limit)
                return status == LZMA_STATUS_MAYBE_FINISHED_WITHOUT_MARK && limit == claimed;
            if (m_state->dicPos < capacity) // the input has ended before the text has
                return false;
            stream += consumed;
            size -= consumed;
            if (!growTo(qMin(limit, capacity * 4)))
                return false;
        }
    }

    CLzmaDec* m_state;
    std::unique_ptr<unsigned char, LzmaBlock::Free> m_bytes;
};

bool isAscii(const char* bytes, size_t size)
{
    unsigned char all = 0;
    for (size_t i = 0; i < size; ++i)
        all = static_cast<unsigned char>(all | static_cast<unsigned char>(bytes[i]));
    return all < 0x80;
}

} // namespace

bool LzmaBlock::encode(const unsigned char* source, size_t size, Buffer* block)
{
    thread_local std::unique_ptr<Encoder> encoder;
    if (!encoder)
        encoder = std::make_unique<Encoder>();
    const size_t room = headerSize + size + size / 3 + 128;
    block->bytes.reset(static_cast<unsigned char*>(std::malloc(room)));
    if (block->bytes && encoder->encode(source, size, block->bytes.get(), room, &block->size))
        return true;
    encoder.reset(); // it may lack memory that there is again next time
    return false;
}

bool LzmaBlock::encode64(const QByteArray& utf8, QString* base64)
try {
    Buffer block;
    if (!encode(reinterpret_cast<const unsigned char*>(utf8.constData()), size_t(utf8.size()), &block))
        return false;
    *base64 = Base64::encode(block.bytes.get(), block.size);
    return true;
} catch (const std::bad_alloc&) { // from Qt
    return false;
}

bool LzmaBlock::decode(const unsigned char* block, size_t size, Buffer* text)
{
    thread_local Tables tables;
    if (size < smallestBlock || hasLargeTables(block[0]))
        return false;
    CLzmaDec* state = tables.prepare(block);
    if (!state)
        return false;
    Decoding decoding(state);
    if (!decoding.run(block, size))
        return false;
    *text = decoding.take();
    return true;
}

bool LzmaBlock::decode64(const QString& base64, QByteArray* utf8)
try {
    const QByteArray block = Base64::decode(base64);
    Buffer text;
    if (!decode(reinterpret_cast<const unsigned char*>(block.constData()), size_t(block.size()), &text))
        return false;
    const auto* bytes = reinterpret_cast<const char*>(text.bytes.get());
    const uint size = qstrnlen(bytes, uint(text.size));
    *utf8 =
        isAscii(bytes, size) ? QByteArray(bytes, int(size)) : QString::fromUtf8(bytes, int(size)).toUtf8();
    return true;
} catch (const std::bad_alloc&) { // from Qt
    return false;
}
