// JsonSerializer on maps: the input is JSON, whose objects become maps.

#include "base/JsonReader.h"
#include "model/JsonSerializer.h"
#include "support/Fuzz.h"

#include <QJsonDocument>

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray json = Fuzz::bytes(data, size);
    const QJsonDocument document = JsonReader::read(QString::fromUtf8(json));
    const QVariantMap map = document.toVariant().toMap();
    const QString text = Calyx::JsonSerializer::serializeToJson(map);
    QJsonParseError error;
    const QJsonDocument again = QJsonDocument::fromJson(text.toUtf8(), &error);
    Fuzz::require(error.error == QJsonParseError::NoError && again.isObject(), "what is written can be read");
    Fuzz::require(Calyx::JsonSerializer::serializeToJson(again.toVariant().toMap()) == text,
                  "what was read is written as before");

    // Values that no JSON holds.
    const QVariantMap odd{{QStringLiteral("bytes"), json},
                          {QStringLiteral("text"), QString::fromLatin1(json)},
                          {QStringLiteral("units"), QString(reinterpret_cast<const QChar*>(json.constData()),
                                                            json.size() / int(sizeof(QChar)))},
                          {QString::fromUtf8(json), map},
                          {QStringLiteral("none"), QVariant()}};
    Fuzz::require(!Calyx::JsonSerializer::serializeToJson(odd).isEmpty(), "odd values are written somehow");
    return 0;
}
