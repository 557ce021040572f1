#include "text/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

QString compact(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

QString JsonText::escaped(const QString& text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(2, array.size() - 4)); // without [" and "]
}

QJsonObject JsonText::leadingObject(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::GarbageAtEnd)
        return document.object();
    return QJsonDocument::fromJson(bytes.left(error.offset)).object();
}

QString JsonText::endingInString(const QJsonObject& object)
{
    for (auto member = object.begin(); member != object.end(); ++member) {
        if (!member.value().isString())
            continue;
        QJsonObject others = object;
        others.remove(member.key());
        const QString last = compact({{member.key(), member.value()}}).mid(1);
        if (others.isEmpty())
            return QLatin1Char('{') + last;
        QString text = compact(others);
        text.chop(1);
        return text + QLatin1Char(',') + last;
    }
    return QString();
}
