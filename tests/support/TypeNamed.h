#pragma once

#include <QMetaMethod>
#include <QMetaType>
#include <QStringList>

/// The id of the type that is registered under \p name; QMetaType::UnknownType where there is none.
inline int typeNamed(const QByteArray& name)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return QMetaType::type(name);
#else
    return QMetaType::fromName(name).id();
#endif
}

/// What a class declares itself, in order: "protected slot onClosed()", "signal closed(bool)".
inline QStringList signaturesOf(const QMetaObject& meta)
{
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const bool isSignal = method.methodType() == QMetaMethod::Signal;
        const char* access = method.access() == QMetaMethod::Public      ? "slot "
                             : method.access() == QMetaMethod::Protected ? "protected slot "
                                                                         : "private slot ";
        signatures.append(QLatin1String(isSignal ? "signal " : access) +
                          QLatin1String(method.methodSignature()));
    }
    return signatures;
}
