#include "support/Gzip.h"

#include <random>

#include <zlib.h>

namespace {

QByteArray compressed(const QByteArray& data, int windowBits)
{
    constexpr int memoryLevel = 8;
    z_stream stream{};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, windowBits, memoryLevel, Z_DEFAULT_STRATEGY);
    QByteArray bytes(int(deflateBound(&stream, uLong(data.size()))), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData()));
    stream.avail_in = uInt(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = uInt(bytes.size());
    deflate(&stream, Z_FINISH);
    bytes.truncate(int(stream.total_out));
    deflateEnd(&stream);
    return bytes;
}

} // namespace

QByteArray Gzip::gzip(const QByteArray& data)
{
    return compressed(data, MAX_WBITS + 16); // so zlib knows that this form is meant
}

QByteArray Gzip::zlib(const QByteArray& data)
{
    return compressed(data, MAX_WBITS);
}

QByteArray Gzip::noise(int size)
{
    std::mt19937 generator(1); // NOLINT(cert-msc51-cpp): the same bytes in every run
    QByteArray bytes(size, '\0');
    for (char& byte : bytes)
        byte = char(generator() & 0xff);
    return bytes;
}
