// What stands between two marks of one name is shown in docs/host-guide.md.
#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QString>

// [escaped]
// As it has to stand between the quotes of a JSON text.
inline QString escaped(const QString& text)
{
    const QByteArray json = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(json.mid(2, json.size() - 4)); // without [" and "]
}
// [escaped]
