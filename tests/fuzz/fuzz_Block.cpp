// The raw block: the input is one.

#include "compression/Lzma.h"
#include "support/Fuzz.h"

#include <QtEndian>

#include <cstring>

namespace {

constexpr size_t sizeOffset = 5;

// What came out of a block goes in again and comes out the same.
void requireRoundTrip(const unsigned char* bytes, size_t size)
{
    unsigned char* block = nullptr;
    size_t blockSize = 0;
    Fuzz::require(Lzma::compress(bytes, size, &block, &blockSize), "what was decoded can be encoded");
    unsigned char* again = nullptr;
    Fuzz::require(Lzma::decompress(block, blockSize, &again), "our own block is accepted");
    Fuzz::require(std::memcmp(bytes, again, size + 1) == 0, "our own block gives the same bytes");
    std::free(block);
    std::free(again);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray block = Fuzz::bytes(data, size);
    auto* bytes = reinterpret_cast<unsigned char*>(block.data());
    QString text = QStringLiteral("untouched");
    const bool asText = Lzma::decompress(bytes, size, &text);
    Fuzz::require(asText || text == QLatin1String("untouched"), "a failure leaves the text alone");

    unsigned char* decoded = nullptr;
    const bool asBytes = Lzma::decompress(bytes, size, &decoded);
    Fuzz::require(asText == asBytes, "bytes and text are accepted alike");
    if (!asBytes)
        return 0;
    const size_t length = std::strlen(reinterpret_cast<const char*>(decoded));
    Fuzz::require(length <= size_t(qFromLittleEndian<quint32>(bytes + sizeOffset)),
                  "the text is no longer than the block says");
    Fuzz::require(text == QString::fromUtf8(reinterpret_cast<const char*>(decoded)), "the text is the bytes");
    requireRoundTrip(decoded, length);
    std::free(decoded);
    return 0;
}
