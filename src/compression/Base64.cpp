#include "compression/Base64.h"

#include <array>

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr int bitsPerDigit = 6;
constexpr int bitsPerByte = 8;
constexpr unsigned digitMask = 0x3f;
constexpr signed char noDigit = -1;

constexpr std::array<signed char, 128> digitTable()
{
    std::array<signed char, 128> table{};
    for (signed char& digit : table)
        digit = noDigit;
    for (int digit = 0; alphabet[digit] != '\0'; ++digit)
        table[static_cast<unsigned char>(alphabet[digit])] = static_cast<signed char>(digit);
    return table;
}

constexpr std::array<signed char, 128> digits = digitTable();

int digitOf(ushort character)
{
    return character < digits.size() ? digits[character] : noDigit;
}

ushort characterOf(unsigned bits)
{
    return static_cast<ushort>(alphabet[bits & digitMask]);
}

} // namespace

QString Base64::encode(const unsigned char* bytes, size_t size)
{
    QString text(int((size + 2) / 3 * 4), Qt::Uninitialized);
    auto* out = reinterpret_cast<ushort*>(text.data());
    size_t i = 0;
    for (; i + 2 < size; i += 3, out += 4) {
        const unsigned bits = unsigned(bytes[i]) << 16 | unsigned(bytes[i + 1]) << 8 | bytes[i + 2];
        out[0] = characterOf(bits >> 18);
        out[1] = characterOf(bits >> 12);
        out[2] = characterOf(bits >> 6);
        out[3] = characterOf(bits);
    }
    if (i < size) {
        const bool two = i + 1 < size;
        const unsigned bits = unsigned(bytes[i]) << 16 | (two ? unsigned(bytes[i + 1]) << 8 : 0);
        out[0] = characterOf(bits >> 18);
        out[1] = characterOf(bits >> 12);
        out[2] = two ? characterOf(bits >> 6) : ushort('=');
        out[3] = ushort('=');
    }
    return text;
}

QByteArray Base64::decode(const QString& text)
{
    QByteArray bytes(int(qint64(text.size()) * bitsPerDigit / bitsPerByte), Qt::Uninitialized);
    char* out = bytes.data();
    const ushort* in = text.utf16();
    const ushort* const end = in + text.size();
    unsigned bits = 0;
    int count = 0;
    while (in < end) {
        if (count == 0 && end - in >= 4) { // four digits are three bytes
            const int a = digitOf(in[0]), b = digitOf(in[1]), c = digitOf(in[2]), d = digitOf(in[3]);
            if ((a | b | c | d) >= 0) {
                const auto three = unsigned(a) << 18 | unsigned(b) << 12 | unsigned(c) << 6 | unsigned(d);
                *out++ = char(three >> 16);
                *out++ = char(three >> 8);
                *out++ = char(three);
                in += 4;
                continue;
            }
        }
        const int digit = digitOf(*in++);
        if (digit == noDigit)
            continue;
        bits = bits << bitsPerDigit | unsigned(digit);
        count += bitsPerDigit;
        if (count >= bitsPerByte) {
            count -= bitsPerByte;
            *out++ = char(bits >> count);
        }
    }
    bytes.truncate(int(out - bytes.constData()));
    return bytes;
}
