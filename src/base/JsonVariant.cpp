#include "base/JsonVariant.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

bool isOfHostsType(const QVariant& value)
{
    return value.userType() >= QMetaType::User && value.userType() != qMetaTypeId<QList<QObject*>>();
}

bool isMap(const QVariant& value)
{
    const int type = value.userType();
    return type == QMetaType::QVariantMap || type == QMetaType::QVariantHash ||
           (isOfHostsType(value) && value.canConvert<QVariantMap>());
}

bool isList(const QVariant& value)
{
    return value.userType() == QMetaType::QVariantList ||
           (isOfHostsType(value) && value.canConvert<QVariantList>());
}

QJsonObject objectOf(const QVariantMap& map)
{
    QJsonObject object;
    for (auto member = map.cbegin(); member != map.cend(); ++member)
        object.insert(member.key(), JsonVariant::toJson(member.value()));
    return object;
}

QJsonArray arrayOf(const QVariantList& list)
{
    QJsonArray array;
    for (const QVariant& element : list)
        array.append(JsonVariant::toJson(element));
    return array;
}

} // namespace

QJsonValue JsonVariant::toJson(const QVariant& value)
{
    if (isMap(value))
        return objectOf(value.value<QVariantMap>());
    if (isList(value))
        return arrayOf(value.value<QVariantList>());
    // As a document's values are converted; Qt converts a value by itself differently, where it is a short
    // integer.
    return QJsonArray::fromVariantList({value}).at(0);
}
