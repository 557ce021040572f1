#include "support/Gzip.h"

#include <QtEndian>

#include <random>

namespace {

quint32 crc32(const QByteArray& data)
{
    quint32 crc = 0xffffffff;
    for (const char byte : data) {
        crc ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) ? 0xedb88320 : 0);
    }
    return ~crc;
}

QByteArray littleEndian(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

} // namespace

QByteArray Gzip::gzip(const QByteArray& data)
{
    static const char header[] = "\x1f\x8b\x08\0\0\0\0\0\0\x03";
    const QByteArray stream = zlib(data);
    // Without zlib's own 2 bytes in front and the 4 of its checksum behind.
    return QByteArray(header, 10) + stream.mid(2, stream.size() - 6) + littleEndian(crc32(data)) +
           littleEndian(quint32(data.size()));
}

QByteArray Gzip::zlib(const QByteArray& data)
{
    if (data.isEmpty())
        return QByteArray::fromHex("789c030000000001"); // qCompress() gives no stream at all for no data
    return qCompress(data).mid(4);                      // a length that is Qt's own stands in front
}

QByteArray Gzip::noise(int size)
{
    std::mt19937 generator(1); // NOLINT(cert-msc51-cpp): the same bytes in every run
    QByteArray bytes(size, '\0');
    for (char& byte : bytes)
        byte = char(generator() & 0xff);
    return bytes;
}
