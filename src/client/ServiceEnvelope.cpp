#include "client/ServiceEnvelope.h"

#include <QJsonDocument>

QVariantMap ServiceEnvelope::parse(const QString& body)
{
    bool ok = false;
    return parse(body, &ok);
}

QVariantMap ServiceEnvelope::parse(const QString& body, bool* ok)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body.toUtf8(), &error);
    *ok = error.error == QJsonParseError::NoError;
    return document.toVariant().toMap();
}

QVariantMap ServiceEnvelope::data(const QVariantMap& envelope)
{
    return envelope.value(QStringLiteral("data")).toMap();
}
