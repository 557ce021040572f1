#include "lesson/Journal.h"

#include <QFileInfo>
#include <QJsonDocument>

#include <utility>

namespace Calyx {

namespace {

constexpr auto mode = QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered;

} // namespace

QVector<QJsonObject> Journal::read(const QString& fileName)
{
    QVector<QJsonObject> events;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return events;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        const QJsonObject event = QJsonDocument::fromJson(line).object();
        if (line.endsWith('\n') && !event.isEmpty())
            events.append(event);
    }
    return events;
}

bool Journal::begin(const QString& fileName)
{
    close();
    const QString before = fileName + QLatin1Char('~');
    const QFileInfo file(fileName);
    if (file.exists() && !(file.isFile() && (!QFile::exists(before) || QFile::remove(before)) &&
                           QFile::rename(fileName, before)))
        return false;
    return open(fileName);
}

bool Journal::open(const QString& fileName)
{
    m_file.setFileName(fileName);
    if (m_file.open(mode) && m_file.setPermissions(QFile::ReadOwner | QFile::WriteOwner))
        return true;
    m_file.close();
    return false;
}

void Journal::hold()
{
    close();
    m_isHeld = true;
}

bool Journal::goOn(const QString& fileName)
{
    const QByteArray held = std::exchange(m_lines, {});
    close();
    QFile file(fileName);
    if (!file.open(QIODevice::ReadWrite))
        return false;
    file.resize(file.readAll().lastIndexOf('\n') + 1);
    if (!open(fileName))
        return false;
    m_lines = held;
    return true;
}

void Journal::close()
{
    m_file.close();
    m_lines.clear();
    m_isHeld = false;
}

void Journal::add(const QJsonObject& event)
{
    if (isOpen())
        m_lines += QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
}

bool Journal::flush()
{
    if (m_isHeld)
        return true;
    const QByteArray lines = std::exchange(m_lines, {});
    if (lines.isEmpty() || m_file.write(lines) == lines.size())
        return true;
    m_file.close();
    return false;
}

} // namespace Calyx
