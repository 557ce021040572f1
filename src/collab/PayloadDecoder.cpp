#include "collab/PayloadDecoder.h"

#include "base/Diagnostics.h"
#include "base/JsonReader.h"
#include "compression/Lzma.h"
#include "compression/LzmaBlock.h"

#include <QJsonArray>

namespace {

using PayloadDecoder::Payload;

// Characters, of all chunks together. A picture takes some 15 million; a frame of 50 kB can hold a text that
// takes all memory once it is JSON.
constexpr int largestPayload = 32 * 1024 * 1024;

bool isTooLarge(const QByteArray& utf8)
{
    return utf8.size() > largestPayload && QString::fromUtf8(utf8).size() > largestPayload;
}

bool decompressText(const QString& text, QByteArray* json)
{
    if (LzmaBlock::decode64(text, json))
        return true;
    QString decoded;
    if (!Lzma::decompress(text, &decoded))
        return false;
    *json = decoded.toUtf8();
    return true;
}

Payload decodeText(const QString& text)
{
    QByteArray json;
    if (!decompressText(text, &json) || isTooLarge(json)) {
        qCDebug(diagnostics) << "[MessageHandler.Decompressed] FAILED to decompress, forwarding raw string!";
        return {QJsonDocument(), text};
    }
    qCDebug(diagnostics) << "[MessageHandler.Decompressed from String] " << QString::fromUtf8(json);
    const QJsonDocument document = JsonReader::read(json);
    return {document.isObject() ? document : QJsonDocument(), QVariant()};
}

QString textOf(const QVariant& chunk)
{
    return chunk.toString();
}

QString textOf(const QJsonValue& chunk)
{
    return chunk.isString() ? chunk.toString() : chunk.toVariant().toString();
}

template<typename List>
bool decompressChunks(const List& chunks, QByteArray* json)
{
    bool any = false;
    for (const auto& chunk : chunks) {
        const QString text = textOf(chunk);
        QByteArray part;
        if (!text.isEmpty() && LzmaBlock::decode64(text, &part)) {
            if (any)
                json->append(part);
            else
                *json = part;
            if (isTooLarge(*json))
                return false;
            any = true;
        }
    }
    return any;
}

bool decompressBytes(const QVariantList& bytes, QByteArray* json)
{
    QString text;
    if (!Lzma::decompress(bytes, &text) || text.size() > largestPayload) {
        qCDebug(diagnostics) << "[MessageHandler.Decompressed] FAILED to decompress List!";
        return false;
    }
    *json = text.toUtf8();
    return true;
}

Payload payloadOf(const QByteArray& json)
{
    qCDebug(diagnostics) << "[MessageHandler.Decompressed from List] " << QString::fromUtf8(json);
    QJsonParseError error;
    const QJsonDocument document = JsonReader::read(json, &error);
    if (error.error != QJsonParseError::NoError)
        return {QJsonDocument(), QString::fromUtf8(json).toLatin1()};
    return {document, QVariant()};
}

Payload decodeList(const QVariantList& list)
{
    if (list.isEmpty())
        return {};
    QByteArray json;
    const bool isText = list.first().userType() == QMetaType::QString;
    return (isText ? decompressChunks(list, &json) : decompressBytes(list, &json)) ? payloadOf(json)
                                                                                   : Payload();
}

} // namespace

PayloadDecoder::Payload PayloadDecoder::read(const QVariant& data)
{
    if (data.userType() == QMetaType::Nullptr) // which Qt would convert to a string
        return {};
    if (data.canConvert<QString>())
        return decodeText(data.toString());
    if (data.canConvert<QVariantList>())
        return decodeList(data.toList());
    return {};
}

PayloadDecoder::Payload PayloadDecoder::read(const QJsonValue& data)
{
    const QJsonArray list = data.toArray();
    if (!list.first().isString())
        return read(data.toVariant());
    QByteArray json;
    return decompressChunks(list, &json) ? payloadOf(json) : Payload();
}

QVariant PayloadDecoder::decode(const QVariant& data)
{
    return read(data).value();
}
