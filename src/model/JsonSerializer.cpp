#include "model/JsonSerializer.h"

#include "base/Diagnostics.h"
#include "base/JsonWriter.h"

#include <QMetaProperty>
#include <QObject>

namespace Calyx {

namespace {

constexpr int listDepth = 2;

QVariantMap readProperties(QObject const* object, const QStringList& ignore)
{
    // Else properties of this type cannot be read.
    static const int listOfMaps = qRegisterMetaType<QList<QVariantMap>>("QList<QVariantMap>");
    Q_UNUSED(listOfMaps)
    QVariantMap map;
    const QMetaObject* meta = object->metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        const QString name = QLatin1String(property.name());
        if (!ignore.contains(name) && property.isReadable())
            map.insert(name, property.read(object));
    }
    return map;
}

QVariantList buildList(const QList<QObject*>& objects, int depth)
{
    const QStringList ignore = JsonSerializer::getIgnorePropertiesList();
    QVariantList list;
    list.reserve(objects.size());
    for (QObject* object : objects)
        list.append(object ? JsonSerializer::buildObjectMap(object, ignore, depth) : QVariantMap());
    return list;
}

} // namespace

QStringList JsonSerializer::getIgnorePropertiesList()
{
    return {QStringLiteral("objectName")};
}

QString JsonSerializer::serializeToJson(QObject const* object)
{
    return serializeToJson(buildObjectMap(object, getIgnorePropertiesList(), MAX_RECURSE_DEPTH));
}

QString JsonSerializer::serializeToJson(QVariantMap const& map)
{
    QString text = QString::fromUtf8(JsonWriter::write(map));
    if (text.isEmpty())
        qCDebug(diagnostics) << "[JsonSerializer] ERROR: ";
    return text;
}

QVariantMap JsonSerializer::buildObjectMap(QObject const* object, QStringList ignore, int depth)
{
    if (depth <= 0) {
        qCDebug(diagnostics) << "[JsonSerializer] ERROR: Reached max depth! Increase MAX_RECURSE_DEPTH or "
                                "check object references!";
        return QVariantMap();
    }
    if (!object)
        return QVariantMap();

    QVariantMap map = readProperties(object, ignore);
    // The objects of a list are one level below their owner, whatever its own sub-objects have used up.
    const int depthInLists = qMin(listDepth, depth - 1);
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        const int type = entry->userType();
        if (type == QMetaType::QObjectStar) {
            QObject* subObject = entry->value<QObject*>();
            if (!subObject) {
                qCDebug(diagnostics) << "[JsonSerializer] ERROR: Failed to map property: " << entry.key();
                continue;
            }
            qCDebug(diagnostics) << "[JsonSerializer] Mapping sub-property: " << entry.key();
            *entry = buildObjectMap(subObject, ignore, --depth);
        } else if (type == qMetaTypeId<QList<QObject*>>()) {
            *entry = buildList(entry->value<QList<QObject*>>(), depthInLists);
        }
    }
    return map;
}

QVariantList JsonSerializer::buildArrayObjectMap(QList<QObject*> objects)
{
    return buildList(objects, listDepth);
}

} // namespace Calyx
