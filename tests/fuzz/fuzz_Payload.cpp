// The carriers of a block, as the "data" of a message. The input's first byte says what the rest is:
//   s  a text           n  a list of numbers: the bytes    c  chunks, one a line
//   j  any JSON list    b  a block, which every carrier then carries

#include "base/JsonReader.h"
#include "collab/PayloadDecoder.h"
#include "compression/Lzma.h"
#include "support/Fuzz.h"

#include <QJsonDocument>

namespace {

QVariantList numbers(const QByteArray& bytes)
{
    QVariantList list;
    for (const char byte : bytes)
        list.append(int(static_cast<unsigned char>(byte)));
    return list;
}

QString decimalText(const QByteArray& bytes)
{
    QByteArrayList parts;
    for (const char byte : bytes)
        parts.append(QByteArray::number(static_cast<unsigned char>(byte)));
    return QString::fromLatin1('[' + parts.join(',') + ']');
}

QVariantList chunks(const QByteArray& lines)
{
    QVariantList list;
    const QList<QByteArray> split = lines.split('\n');
    for (const QByteArray& line : split)
        list.append(QString::fromUtf8(line));
    return list;
}

void requireSameFromAllCarriers(const QByteArray& block)
{
    const QString base64 = QString::fromLatin1(block.toBase64());
    QString fromBase64;
    QString fromText;
    QString fromList;
    const bool isBlock = Lzma::decompress64(base64, &fromBase64);
    Fuzz::require(Lzma::decompress(decimalText(block), &fromText) == isBlock, "text and base64 agree");
    Fuzz::require(Lzma::decompress(numbers(block), &fromList) == isBlock, "list and base64 agree");
    Fuzz::require(fromBase64 == fromText && fromText == fromList, "all carriers give the same text");

    const QVariant single = PayloadDecoder::decode(base64);
    Fuzz::require(isBlock || single == QVariant(base64), "a text that is no block is forwarded");
    Fuzz::require(!isBlock || !single.isValid() || single.userType() == QMetaType::QVariantMap,
                  "a block gives a map or nothing");
    Fuzz::require(PayloadDecoder::decode(QVariantList{base64}) == PayloadDecoder::decode(numbers(block)),
                  "a list of one chunk and a list of its bytes are the same");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray rest = Fuzz::bytes(data + 1, size - 1);
    switch (data[0]) {
    case 's':
        PayloadDecoder::decode(QString::fromUtf8(rest));
        break;
    case 'n':
        PayloadDecoder::decode(numbers(rest));
        break;
    case 'c':
        PayloadDecoder::decode(chunks(rest));
        break;
    case 'j':
        PayloadDecoder::decode(JsonReader::read(QString::fromUtf8(rest)).toVariant());
        break;
    case 'b':
        requireSameFromAllCarriers(rest);
        break;
    default:
        break;
    }
    return 0;
}
