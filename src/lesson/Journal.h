#pragma once

#include <QByteArray>
#include <QFile>
#include <QJsonObject>
#include <QString>
#include <QVector>

namespace Calyx {

/// A file of events, a line of JSON each, that only ever grows. What flush() has written survives the end of
/// the process, however it comes; of a line that was being written then, nothing is read.
///
/// Readable by its owner only: names and answers stand in it.
class Journal
{
public:
    /// The events of \p fileName in their order; none where it cannot be read.
    static QVector<QJsonObject> read(const QString& fileName);

    /// Begins \p fileName anew. What it held is kept beside it, under its name and "~"; false where it cannot
    /// be.
    bool begin(const QString& fileName);
    /// Keeps what is added until goOn() writes it.
    void hold();
    /// Goes on behind the last whole line of \p fileName.
    bool goOn(const QString& fileName);
    void close();

    bool isOpen() const { return m_file.isOpen() || m_isHeld; }

    /// Adds \p event at the next flush(). Nothing while no file is open.
    void add(const QJsonObject& event);
    /// False, and the file is closed, where it cannot be written.
    bool flush();

    QString fileName() const { return m_file.fileName(); }

private:
    bool open(const QString& fileName);

    QFile m_file;
    QByteArray m_lines;
    bool m_isHeld = false;
};

} // namespace Calyx
