#pragma once

#include <QEventLoop>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>

namespace Calyx {

/// The local classroom beside a host's own tests: the program `calyx-classroom`, started on a free port, told
/// what to do, and ended. For CMake the target is CalyxClient::classroom-test; without it the program is
/// looked for in PATH.
///
/// What waits here runs an event loop of the calling thread, so that the host under test goes on; tests do
/// that, hosts do not. Lives on the thread that makes it. The program ends with this object, and by itself
/// when the test is gone.
class LocalClassroom
{
public:
    /// Starts the program with \p options beside those that are always given ("--commands", "--quiet"), and
    /// waits until it says where it is: 60 s at the most. isRunning() tells whether it has.
    explicit LocalClassroom(const QStringList& options = {})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(program(),
                        QStringList{QStringLiteral("--commands"), QStringLiteral("--quiet")} + options);
        m_url = QUrl(line().section(QLatin1Char(' '), 1));
    }
    /// Ends the program; waits for that without an event loop, for 5 s at the most, and kills it then.
    ~LocalClassroom()
    {
        m_process.closeWriteChannel();
        if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
    LocalClassroom(const LocalClassroom&) = delete;
    LocalClassroom& operator=(const LocalClassroom&) = delete;

    /// Whether it has started and has not ended.
    bool isRunning() const { return !m_url.isEmpty() && m_process.state() == QProcess::Running; }
    /// Where it is: the server of a Lesson. Empty when it has not started. The user is "teacher", the
    /// password "chalk".
    QUrl url() const { return m_url; }
    /// Gives one \p command, such as "join 30" or "cut" (`calyx-classroom --help` lists them), and waits
    /// until it is done: the answer, "ok" or "error" and more; null when none has come within 60 s.
    QString tell(const QString& command)
    {
        m_process.write(command.toUtf8() + '\n');
        return line();
    }

private:
    static QString program()
    {
#ifdef CALYX_CLASSROOM_PROGRAM
        return QStringLiteral(CALYX_CLASSROOM_PROGRAM);
#else
        return QStringLiteral("calyx-classroom");
#endif
    }
    /// The next line that it prints.
    QString line()
    {
        QEventLoop loop;
        QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &loop, &QEventLoop::quit);
        QObject::connect(&m_process, &QProcess::stateChanged, &loop, &QEventLoop::quit);
        QTimer timer;
        timer.start(60000);
        QObject::connect(&timer, &QTimer::timeout, &timer, &QTimer::stop);
        QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        while (!m_process.canReadLine() && m_process.state() != QProcess::NotRunning && timer.isActive())
            loop.exec();
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }

    QProcess m_process;
    QUrl m_url;
};

} // namespace Calyx
