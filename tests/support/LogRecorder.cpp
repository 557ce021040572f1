#include "support/LogRecorder.h"

#include <mutex>

namespace {

std::mutex mutex; // not Qt's: the thread sanitizer does not see what that does when threads meet
QList<LogRecorder::Message> recorded;

void record(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    const std::lock_guard<std::mutex> lock(mutex);
    recorded.append({type, QString::fromLatin1(context.category), text});
}

QStringList select(const QList<LogRecorder::Message>& messages, QtMsgType type, const QString& prefix)
{
    QStringList texts;
    for (const LogRecorder::Message& message : messages) {
        if (message.type == type && message.text.startsWith(prefix))
            texts.append(message.text);
    }
    return texts;
}

} // namespace

LogRecorder::LogRecorder() : m_previous(qInstallMessageHandler(record)) {}

LogRecorder::~LogRecorder()
{
    qInstallMessageHandler(m_previous);
    const std::lock_guard<std::mutex> lock(mutex);
    recorded.clear();
}

QList<LogRecorder::Message> LogRecorder::messages() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return recorded;
}

QStringList LogRecorder::debug(const QString& prefix) const
{
    return select(messages(), QtDebugMsg, prefix);
}

QStringList LogRecorder::warnings() const
{
    return select(messages(), QtWarningMsg, QString());
}

void keepDebugMessagesFromQTest()
{
    static QtMessageHandler shown = nullptr;
    shown =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
            if (type != QtDebugMsg)
                shown(type, context, text);
        });
}
