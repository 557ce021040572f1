#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

class QObject;

namespace Calyx {

/// Writes objects as JSON by reflection: the keys are the names of their readable properties, "objectName"
/// left out.
///
/// Properties typed exactly `QObject*` and lists typed `QList<QObject*>` are followed. Stateless; call it on
/// the thread that owns the objects.
class CALYXCLIENT_EXPORT JsonSerializer
{
public:
    /// The depth that a top-level object is mapped with.
    static constexpr int MAX_RECURSE_DEPTH = 4;

    /// The property names that are never written: "objectName".
    static QStringList getIgnorePropertiesList();

    /// The JSON text of \p object: keys in alphabetical order, four blanks for each level, a newline at the
    /// end.
    static QString serializeToJson(QObject const* object);
    /// The JSON text of \p map, in the same layout.
    static QString serializeToJson(QVariantMap const& map);

    /// The readable properties of \p object, those named in \p ignore left out. Empty at a \p depth of 0 or
    /// less.
    ///
    /// Each `QObject*` property that is followed lowers the depth for itself and for all that come after it
    /// in alphabetical order. A null one stays as it is.
    static QVariantMap buildObjectMap(QObject const* object, QStringList ignore, int depth);

    /// One property map for each of \p objects, each mapped with depth 2; empty for a null pointer.
    static QVariantList buildArrayObjectMap(QList<QObject*> objects);
};

} // namespace Calyx
