#include "lesson/Journal.h"

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
    if (QFile::exists(fileName) && (!QFile::exists(before) || QFile::remove(before)))
        QFile::rename(fileName, before);
    m_file.setFileName(fileName);
    return m_file.open(mode) && m_file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
           m_file.resize(0);
}

bool Journal::goOn(const QString& fileName)
{
    close();
    QFile file(fileName);
    if (!file.open(QIODevice::ReadWrite))
        return false;
    file.resize(file.readAll().lastIndexOf('\n') + 1);
    m_file.setFileName(fileName);
    return m_file.open(mode);
}

void Journal::close()
{
    m_file.close();
    m_lines.clear();
}

void Journal::add(const QJsonObject& event)
{
    if (m_file.isOpen())
        m_lines += QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
}

bool Journal::flush()
{
    const QByteArray lines = std::exchange(m_lines, {});
    if (lines.isEmpty() || m_file.write(lines) == lines.size())
        return true;
    m_file.close();
    return false;
}

} // namespace Calyx
