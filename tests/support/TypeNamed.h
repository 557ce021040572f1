#pragma once

#include <QMetaType>

/// The id of the type that is registered under \p name; QMetaType::UnknownType where there is none.
inline int typeNamed(const QByteArray& name)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return QMetaType::type(name);
#else
    return QMetaType::fromName(name).id();
#endif
}
