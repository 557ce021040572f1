#include "compression/LzmaBlock.h"

#include "compression/LzmaMatchFinder.h"

#include <LzmaDec.h>
#include <LzmaEnc.h>

#include <QtEndian>

#include <algorithm>
#include <bitset>
#include <cstring>
#include <new>
#include <vector>

namespace {

constexpr size_t sizeOffset = LZMA_PROPS_SIZE;
constexpr size_t headerSize = LZMA_PROPS_SIZE + 8;
constexpr size_t smallestBlock = headerSize + 1;
constexpr size_t firstCapacity = 4096;
constexpr size_t step = 1024; // decoded at a time

// Zeroed: an encoder that keeps its hash has to start with an empty one, at position 0.
void* SzAlloc(void*, size_t size)
{
    return std::calloc(size, 1);
}

void SzFree(void*, void* address)
{
    std::free(address);
}

ISzAlloc g_Alloc = {SzAlloc, SzFree};

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
    Encoder() : m_handle(LzmaEnc_Create(&g_Alloc))
    {
        const CLzmaEncProps props = encoderProps();
        SizeT size = LZMA_PROPS_SIZE;
        m_isReady = m_handle && LzmaEnc_SetProps(m_handle, &props) == SZ_OK &&
                    LzmaEnc_WriteProperties(m_handle, m_properties, &size) == SZ_OK;
    }
    ~Encoder()
    {
        if (m_handle)
            LzmaEnc_Destroy(m_handle, &g_Alloc, &g_Alloc);
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
                                              writeEndMark, nullptr, &g_Alloc, &g_Alloc);
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

// The decoder's probability tables, kept for the thread's next block. The SDK would fill all of them for each
// block: with the largest lc and lp that is 6 MiB, for a block of 20 bytes, and a message can hold many. Here
// they are filled once; after each block, those parts are filled again that it can have changed.
class Tables
{
public:
    CLzmaDec* prepare(const unsigned char* properties)
    {
        if (LzmaProps_Decode(&m_state.prop, properties, LZMA_PROPS_SIZE) != SZ_OK)
            return nullptr;
        const size_t size = commonSize + (literalSize << literalBits());
        if (m_tables.size() < size)
            m_tables.resize(size, even);
        m_state.probs = m_tables.data();
        LzmaDec_Init(&m_state);
        std::fill(std::begin(m_state.reps), std::end(m_state.reps), 1);
        m_state.state = 0;
        m_state.needInitState = 0; // the rest of it is done
        return &m_state;
    }

    // Whatever has come of the block: its text, and the literal after that, which may have failed.
    void restore()
    {
        fill(0, commonSize);
        const size_t size = m_state.dicPos;
        const size_t literals = size_t(1) << literalBits();
        if (size > literals * 16) { // so many bytes take as long to look at
            fill(commonSize, literals * literalSize);
            return;
        }
        std::bitset<mostLiterals> restored;
        for (size_t i = 0; i <= size; ++i) {
            const size_t literal = literalAt(i);
            if (!restored[literal])
                fill(commonSize + literal * literalSize, literalSize);
            restored.set(literal);
        }
    }

private:
    // As the SDK lays them out: a common part, then one for each state that a literal can be in.
    static constexpr size_t commonSize = 1846;
    static constexpr size_t literalSize = 768;
    static constexpr size_t mostLiterals = size_t(1) << (8 + 4);
    static constexpr CLzmaProb even = 1024; // of 2048

    unsigned literalBits() const { return m_state.prop.lc + m_state.prop.lp; }

    size_t literalAt(size_t position) const
    {
        const CLzmaProps& properties = m_state.prop;
        const size_t before = position == 0 ? 0 : m_state.dic[position - 1];
        const size_t place = position & ((size_t(1) << properties.lp) - 1);
        return (place << properties.lc) + (before >> (8 - properties.lc));
    }

    void fill(size_t begin, size_t size) { std::fill_n(m_tables.begin() + qptrdiff(begin), size, even); }

    CLzmaDec m_state{};
    std::vector<CLzmaProb> m_tables;
};

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
            const size_t target = qMin(m_state->dicBufSize, m_state->dicPos + step);
            SizeT consumed = size;
            ELzmaStatus status = LZMA_STATUS_NOT_SPECIFIED;
            if (!decodeTo(target, stream, &consumed, target == limit ? LZMA_FINISH_END : LZMA_FINISH_ANY,
                          &status))
                return false;
            if (status == LZMA_STATUS_FINISHED_WITH_MARK)
                return true;
            if (m_state->dicPos == limit)
                return status == LZMA_STATUS_MAYBE_FINISHED_WITHOUT_MARK && limit == claimed;
            if (m_state->dicPos < target) // the input has ended before the text has
                return false;
            stream += consumed;
            size -= consumed;
            if (target == m_state->dicBufSize && !growTo(qMin(limit, target * 4)))
                return false;
        }
    }

    // Where it fails, the SDK does not tell how much it has written: all up to the target then counts as
    // decoded.
    bool decodeTo(size_t target, const unsigned char* stream, SizeT* size, ELzmaFinishMode mode,
                  ELzmaStatus* status)
    {
        std::memset(m_state->dic + m_state->dicPos, 0, target - m_state->dicPos);
        if (LzmaDec_DecodeToDic(m_state, target, stream, size, mode, status) == SZ_OK)
            return true;
        m_state->dicPos = target;
        return false;
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
    const auto* bytes = reinterpret_cast<const char*>(block.bytes.get());
    *base64 = QString::fromLatin1(QByteArray::fromRawData(bytes, int(block.size)).toBase64());
    return true;
} catch (const std::bad_alloc&) { // from Qt
    return false;
}

bool LzmaBlock::decode(const unsigned char* block, size_t size, Buffer* text)
{
    thread_local Tables tables;
    if (size < smallestBlock)
        return false;
    CLzmaDec* state = tables.prepare(block);
    if (!state)
        return false;
    Decoding decoding(state);
    const bool isDecoded = decoding.run(block, size);
    tables.restore();
    if (isDecoded)
        *text = decoding.take();
    return isDecoded;
}

bool LzmaBlock::decode64(const QString& base64, QByteArray* utf8)
try {
    const QByteArray block = QByteArray::fromBase64(base64.toLatin1()); // skips foreign characters
    Buffer text;
    if (!decode(reinterpret_cast<const unsigned char*>(block.constData()), size_t(block.size()), &text))
        return false;
    const auto* bytes = reinterpret_cast<const char*>(text.bytes.get());
    const uint size = uint(qstrnlen(bytes, uint(text.size)));
    *utf8 =
        isAscii(bytes, size) ? QByteArray(bytes, int(size)) : QString::fromUtf8(bytes, int(size)).toUtf8();
    return true;
} catch (const std::bad_alloc&) { // from Qt
    return false;
}
