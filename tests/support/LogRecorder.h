#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Keeps the messages of qDebug(), qWarning() and so on for as long as it lives, on all threads. One at a
/// time.
class LogRecorder
{
public:
    struct Message
    {
        QtMsgType type;
        QString category;
        QString text;
    };

    LogRecorder();
    ~LogRecorder();
    Q_DISABLE_COPY(LogRecorder)

    QList<Message> messages() const;
    /// The debug messages that begin with \p prefix, in order.
    QStringList debug(const QString& prefix = QString()) const;
    QStringList warnings() const;

private:
    QtMessageHandler m_previous;
};

/// Keeps debug messages from QTest from now on: it names the row that runs beside each, and changes it while
/// a thread of the row before may still speak.
void keepDebugMessagesFromQTest();
