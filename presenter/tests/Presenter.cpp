#include "Presenter.h"

#include <csignal>
#include <unistd.h>

QProcessEnvironment Presenter::environment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"CALYX_PASSWORD", "NO_COLOR", "COLUMNS", "http_proxy", "HTTP_PROXY", "all_proxy",
                             "ALL_PROXY", "QT_LOGGING_RULES"})
        environment.remove(QLatin1String(name));
    environment.insert("LC_ALL", "C.UTF-8");
    environment.remove("LANGUAGE");
    return environment;
}

Presenter::Presenter(const QStringList& arguments)
{
    m_process.setProcessEnvironment(environment());
    m_process.start(QStringLiteral(CALYX_PRESENTER), arguments);
    if (!m_process.waitForStarted())
        qFatal("calyx-presenter does not start");
}

Presenter::~Presenter()
{
    if (!isRunning())
        return;
    m_process.kill();
    m_process.waitForFinished();
}

void Presenter::write(const QString& lines)
{
    m_process.write(lines.toUtf8());
}

void Presenter::signal(int number)
{
    ::kill(static_cast<pid_t>(m_process.processId()), number);
}

QString Presenter::output()
{
    m_output += m_process.readAllStandardOutput();
    return QString::fromUtf8(m_output);
}

QString Presenter::errors()
{
    m_errors += m_process.readAllStandardError();
    return QString::fromUtf8(m_errors);
}
