// A compressed REST reply: the input is one, gzip or zlib.

#include "client/GzipInflate.h"
#include "support/Fuzz.h"

#include <zlib.h>

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray inflated = gUncompress(Fuzz::bytes(data, size));
    Fuzz::require(size >= 5 || inflated.isEmpty(), "too short to be inflated");

    uLongf length = compressBound(uLong(inflated.size()));
    QByteArray again(int(length), Qt::Uninitialized);
    const int result = compress(reinterpret_cast<Bytef*>(again.data()), &length,
                                reinterpret_cast<const Bytef*>(inflated.constData()), uLong(inflated.size()));
    Fuzz::require(result == Z_OK, "what was inflated can be deflated");
    again.truncate(int(length));
    Fuzz::require(gUncompress(again) == inflated, "what zlib deflates is inflated");
    return 0;
}
