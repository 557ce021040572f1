#pragma once

#include <QDir>
#include <QFile>

/// What the process holds of the system's resources right now.
namespace ProcessResources {

inline int descriptors()
{
    const QDir open(QStringLiteral("/proc/self/fd"));
    return open.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

/// Without those that Qt's network code starts once and keeps as long as the process lives.
inline int threads()
{
    const QDir tasks(QStringLiteral("/proc/self/task"));
    int count = 0;
    const auto ids = tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const auto& id : ids) {
        QFile file(tasks.filePath(id) + QStringLiteral("/comm"));
        const auto name = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        count += name.startsWith("Qt bearer") || name.startsWith("QDBusConnection") ? 0 : 1;
    }
    return count;
}

} // namespace ProcessResources
