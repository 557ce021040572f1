#include "client/GzipInflate.h"

#include <QtDebug>

#include <new>
#include <zlib.h>

namespace {

constexpr int smallestInput = 5;
constexpr int detectHeader = 15 + 32; // the largest window, and zlib or gzip by the header
constexpr uInt bufferSize = 1024;
constexpr int largestResult = 64 * 1024 * 1024;

bool isFatal(int result)
{
    return result == Z_NEED_DICT || result == Z_DATA_ERROR || result == Z_MEM_ERROR;
}

bool inflateAll(z_stream* stream, QByteArray* result)
{
    char buffer[bufferSize];
    do {
        stream->next_out = reinterpret_cast<Bytef*>(buffer);
        stream->avail_out = bufferSize;
        if (isFatal(inflate(stream, Z_NO_FLUSH)))
            return false;
        result->append(buffer, static_cast<int>(bufferSize - stream->avail_out));
    } while (stream->avail_out == 0 && result->size() <= largestResult);
    return result->size() <= largestResult;
}

} // namespace

QByteArray gUncompress(const QByteArray& data)
{
    if (data.size() < smallestInput) {
        qWarning("gUncompress: Input data is truncated");
        return QByteArray();
    }

    z_stream stream = {};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData())); // only read
    stream.avail_in = static_cast<uInt>(data.size());
    if (inflateInit2(&stream, detectHeader) != Z_OK)
        return QByteArray();

    QByteArray result;
    try {
        if (!inflateAll(&stream, &result))
            result = QByteArray();
    } catch (const std::bad_alloc&) { // from Qt
        result = QByteArray();
    }
    inflateEnd(&stream);
    return result;
}
