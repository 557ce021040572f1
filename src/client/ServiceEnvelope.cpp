#include "client/ServiceEnvelope.h"

#include "base/JsonReader.h"

QVariantMap ServiceEnvelope::parse(const QString& body)
{
    bool ok = false;
    return parse(body, &ok);
}

QVariantMap ServiceEnvelope::parse(const QString& body, bool* ok)
{
    QJsonParseError error;
    const QJsonDocument document = JsonReader::read(body, &error);
    *ok = error.error == QJsonParseError::NoError;
    return document.toVariant().toMap();
}

QJsonObject ServiceEnvelope::object(const QString& body)
{
    return JsonReader::read(body).object();
}

QVariantMap ServiceEnvelope::data(const QVariantMap& envelope)
{
    return envelope.value(QStringLiteral("data")).toMap();
}
