#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <mutex>

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

    LogRecorder() : m_previous(qInstallMessageHandler(record)) {}
    ~LogRecorder()
    {
        qInstallMessageHandler(m_previous);
        forget();
    }
    Q_DISABLE_COPY(LogRecorder)

    void forget()
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_recorded.clear();
    }

    QList<Message> messages() const
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        return s_recorded;
    }
    /// The debug messages that begin with \p prefix, in order.
    QStringList debug(const QString& prefix = QString()) const { return select(QtDebugMsg, prefix); }
    QStringList warnings() const { return select(QtWarningMsg, QString()); }

private:
    static void record(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_recorded.append({type, QString::fromLatin1(context.category), text});
    }

    QStringList select(QtMsgType type, const QString& prefix) const
    {
        QStringList texts;
        const QList<Message> all = messages();
        for (const Message& message : all) {
            if (message.type == type && message.text.startsWith(prefix))
                texts.append(message.text);
        }
        return texts;
    }

    static inline std::mutex
        s_mutex; // not Qt's: the thread sanitizer does not see what that does when threads meet
    static inline QList<Message> s_recorded;
    QtMessageHandler m_previous;
};

/// Keeps debug messages from QTest from now on: it names the row that runs beside each, and changes it while
/// a thread of the row before may still speak.
inline void keepDebugMessagesFromQTest()
{
    static QtMessageHandler shown = nullptr;
    shown =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
            if (type != QtDebugMsg)
                shown(type, context, text);
        });
}
