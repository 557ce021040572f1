#include "collab/PayloadDecoder.h"

#include "Diagnostics.h"
#include "JsonReader.h"
#include "compression/Lzma.h"

namespace {

// Characters, of all chunks together. A picture takes some 15 million; a frame of 50 kB can hold a text that
// takes all memory once it is JSON.
constexpr int largestPayload = 32 * 1024 * 1024;

bool isTooLarge(const QString& text)
{
    return text.size() > largestPayload;
}

QVariant decodeText(const QString& text)
{
    QString json;
    if ((!Lzma::decompress64(text, &json) && !Lzma::decompress(text, &json)) || isTooLarge(json)) {
        qCDebug(diagnostics) << "[MessageHandler.Decompressed] FAILED to decompress, forwarding raw string!";
        return text;
    }
    qCDebug(diagnostics) << "[MessageHandler.Decompressed from String] " << json;
    const QJsonDocument document = JsonReader::read(json);
    return document.isObject() ? document.toVariant() : QVariant();
}

bool decompressChunks(const QVariantList& chunks, QString* out)
{
    bool any = false;
    for (const QVariant& chunk : chunks) {
        const QString text = chunk.toString();
        QString part;
        if (!text.isEmpty() && Lzma::decompress64(text, &part)) {
            out->append(part);
            if (isTooLarge(*out))
                return false;
            any = true;
        }
    }
    return any;
}

QVariant decodeList(const QVariantList& list)
{
    QString json;
    if (list.isEmpty())
        return QVariant();
    if (list.first().userType() == QMetaType::QString) {
        if (!decompressChunks(list, &json))
            return QVariant();
    } else if (!Lzma::decompress(list, &json) || isTooLarge(json)) {
        qCDebug(diagnostics) << "[MessageHandler.Decompressed] FAILED to decompress List!";
        return QVariant();
    }
    qCDebug(diagnostics) << "[MessageHandler.Decompressed from List] " << json;
    QJsonParseError error;
    const QJsonDocument document = JsonReader::read(json, &error);
    if (error.error != QJsonParseError::NoError)
        return json.toLatin1();
    return document.toVariant();
}

} // namespace

QVariant PayloadDecoder::decode(const QVariant& data)
{
    if (data.userType() == QMetaType::Nullptr) // which Qt would convert to a string
        return QVariant();
    if (data.canConvert<QString>())
        return decodeText(data.toString());
    if (data.canConvert<QVariantList>())
        return decodeList(data.toList());
    return QVariant();
}
