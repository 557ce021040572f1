#include "Terminal.h"

#include "Presenter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

winsize sizeOf(int columns, int rows)
{
    winsize size{};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(rows);
    return size;
}

} // namespace

Terminal::Terminal(const QStringList& arguments, int columns, int rows)
{
    const winsize size = sizeOf(columns, rows);
    if (openpty(&m_master, &m_slave, nullptr, nullptr, &size) != 0)
        qFatal("No pseudo terminal");
    fcntl(m_master, F_SETFL, O_NONBLOCK);
    // Held by the program itself, the terminal would outlive a test that crashes, and the program with it.
    fcntl(m_master, F_SETFD, FD_CLOEXEC);
    fcntl(m_slave, F_SETFD, FD_CLOEXEC);
    auto* notifier = new QSocketNotifier(m_master, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &Terminal::read);
    connect(&m_screen, &QProcess::readyRead, this, &Terminal::readScreen);
    m_screen.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_screen.start("node", {CALYX_SCREEN, QString::number(columns), QString::number(rows)});
    QProcessEnvironment environment = Presenter::environment();
    environment.insert("TERM", "vt100");
    environment.insert("NO_COLOR", "1");
    environment.insert("HOME", "/nonexistent");         // nobody's settings of the line editor
    environment.insert("XDG_DATA_HOME", m_data.path()); // and nobody's lessons
    setProcessEnvironment(environment);
    start(QStringLiteral(CALYX_PRESENTER), arguments);
    if (!waitForStarted() || !m_screen.waitForStarted())
        qFatal("calyx-presenter or node does not start");
}

Terminal::~Terminal()
{
    m_screen.disconnect(this);
    for (QProcess* process : {static_cast<QProcess*>(this), &m_screen}) {
        process->kill();
        process->waitForFinished();
    }
    ::close(m_master);
    ::close(m_slave);
}

void Terminal::prepareChild()
{
    setsid();
    ioctl(m_slave, TIOCSCTTY, 0);
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(m_slave, file);
}

void Terminal::type(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    if (::write(m_master, bytes.constData(), static_cast<size_t>(bytes.size())) != bytes.size())
        qFatal("The terminal takes no input");
}

void Terminal::resize(int columns, int rows)
{
    const winsize size = sizeOf(columns, rows);
    ioctl(m_master, TIOCSWINSZ, &size);
    show(QStringLiteral("resize %1 %2").arg(columns).arg(rows).toLatin1());
}

bool Terminal::isCooked() const
{
    termios settings{};
    tcgetattr(m_slave, &settings);
    return (settings.c_lflag & ICANON) && (settings.c_lflag & ECHO);
}

void Terminal::read()
{
    char bytes[4096];
    for (ssize_t count = ::read(m_master, bytes, sizeof bytes); count > 0;
         count = ::read(m_master, bytes, sizeof bytes))
        show(QByteArray(bytes, static_cast<int>(count)).toBase64());
}

void Terminal::show(const QByteArray& line)
{
    ++m_unshown;
    m_screen.write(line + '\n');
}

void Terminal::readScreen()
{
    QJsonObject shown;
    for (; m_screen.canReadLine(); --m_unshown)
        shown = QJsonDocument::fromJson(m_screen.readLine()).object();
    if (shown.isEmpty())
        return;
    m_column = shown.value("column").toInt();
    m_lines = shown.value("lines").toVariant().toStringList();
    while (!m_lines.isEmpty() && m_lines.last().isEmpty())
        m_lines.removeLast();
}
