#include "collab/PayloadDecoder.h"

#include "base/Diagnostics.h"
#include "base/JsonReader.h"
#include "base/JsonVariant.h"
#include "compression/Lzma.h"
#include "compression/LzmaBlock.h"

#include <QJsonArray>

namespace {

using PayloadDecoder::Payload;

// Characters, of all chunks together. A picture takes some 15 million; a frame of 50 kB can hold a text that
// takes all memory once it is JSON.
constexpr int largestPayload = 32 * 1024 * 1024;

// Adds the characters of a text in UTF-8 to \p characters: no text is decoded again for being counted. False
// when they are too many.
bool fits(const QByteArray& utf8, int* characters)
{
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        *characters += int((byte & 0xC0) != 0x80) + int(byte >= 0xF0); // a pair of surrogates
    }
    return *characters <= largestPayload;
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
    int characters = 0;
    if (!decompressText(text, &json) || !fits(json, &characters)) {
        qCDebug(diagnostics) << "[MessageHandler.Decompressed] FAILED to decompress, forwarding raw string!";
        return {QJsonDocument(), text};
    }
    qCDebug(diagnostics) << "[MessageHandler.Decompressed from String] " << QString::fromUtf8(json);
    const QJsonDocument document = JsonReader::read(json);
    return {document.isObject() ? document : QJsonDocument(), QVariant()};
}

bool decompressChunks(const QJsonArray& chunks, QByteArray* json)
{
    bool any = false;
    int characters = 0;
    for (const QJsonValue& chunk : chunks) {
        const QString text = chunk.isString() ? chunk.toString() : chunk.toVariant().toString();
        QByteArray part;
        if (text.isEmpty() || !LzmaBlock::decode64(text, &part))
            continue;
        if (!fits(part, &characters))
            return false;
        json->append(part);
        any = true;
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

Payload decodeList(const QJsonArray& list)
{
    if (list.isEmpty())
        return {};
    QByteArray json;
    const bool any = list.first().isString() ? decompressChunks(list, &json)
                                             : decompressBytes(list.toVariantList(), &json);
    return any ? payloadOf(json) : Payload();
}

} // namespace

PayloadDecoder::Payload PayloadDecoder::read(const QJsonValue& data)
{
    if (data.isArray())
        return decodeList(data.toArray());
    if (data.isString() || data.isDouble() || data.isBool())
        return decodeText(data.toVariant().toString());
    return {};
}

QVariant PayloadDecoder::decode(const QVariant& data)
{
    return read(JsonVariant::toJson(data)).value();
}
