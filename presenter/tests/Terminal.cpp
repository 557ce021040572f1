#include "Terminal.h"

#include "Presenter.h"

#include <QSocketNotifier>
#include <QTextCodec>

#include <csignal>
#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

const QChar escape = QLatin1Char('\033');

winsize sizeOf(int columns, int rows)
{
    winsize size{};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(rows);
    return size;
}

} // namespace

Terminal::Terminal(const QStringList& arguments, int columns, int rows)
    : m_columns(columns), m_rows(rows), m_lines(rows)
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
    QProcessEnvironment environment = Presenter::environment();
    environment.insert("TERM", "vt100");
    environment.insert("NO_COLOR", "1");
    environment.insert("HOME", "/nonexistent"); // nobody's settings of the line editor
    setProcessEnvironment(environment);
    start(QStringLiteral(CALYX_PRESENTER), arguments);
    if (!waitForStarted())
        qFatal("calyx-presenter does not start");
}

Terminal::~Terminal()
{
    if (!hasEnded()) {
        kill();
        waitForFinished();
    }
    ::close(m_master);
    ::close(m_slave);
}

void Terminal::setupChildProcess()
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
    m_columns = columns;
    const winsize size = sizeOf(columns, rows);
    ioctl(m_master, TIOCSWINSZ, &size);
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
        m_bytes.append(bytes, static_cast<int>(count));
    QTextCodec::ConverterState state;
    const QString characters =
        QTextCodec::codecForName("UTF-8")->toUnicode(m_bytes.constData(), m_bytes.size(), &state);
    m_bytes = m_bytes.right(state.remainingChars);
    take(characters);
}

void Terminal::take(const QString& characters)
{
    for (const QChar character : characters) {
        if (m_sequence.isEmpty() && character != escape) {
            put(character);
            continue;
        }
        m_sequence += character;
        const bool isCsi = m_sequence.size() > 1 && m_sequence.at(1) == QLatin1Char('[');
        if (m_sequence.size() == 1 || (isCsi && (m_sequence.size() == 2 || character < QLatin1Char('@'))))
            continue;
        if (isCsi)
            control(character, m_sequence.mid(2, m_sequence.size() - 3).section('$', 0, 0).toInt());
        m_sequence.clear();
    }
}

void Terminal::put(QChar character)
{
    if (character == QLatin1Char('\n')) {
        newLine();
    } else if (character == QLatin1Char('\r')) {
        m_column = 0;
    } else if (character == QLatin1Char('\b')) {
        m_column = qMax(m_column - 1, 0);
    } else if (character >= QLatin1Char(' ')) {
        if (m_column >= m_columns) { // the last column is left only when there is something to put
            m_column = 0;
            newLine();
        }
        QString& line = m_lines[m_row];
        line = line.leftJustified(m_column + 1);
        line[m_column++] = character;
    }
}

void Terminal::newLine()
{
    if (++m_row < m_rows)
        return;
    m_row = m_rows - 1;
    m_lines.removeFirst();
    m_lines.append(QString());
}

void Terminal::clearLine(int from)
{
    m_lines[m_row].truncate(from);
}

void Terminal::control(QChar final, int count)
{
    const int steps = qMax(count, 1);
    switch (final.toLatin1()) {
    case 'A':
        m_row = qMax(m_row - steps, 0);
        break;
    case 'B':
        m_row = qMin(m_row + steps, m_rows - 1);
        break;
    case 'C':
        m_column = qMin(m_column + steps, m_columns - 1);
        break;
    case 'D':
        m_column = qMax(m_column - steps, 0);
        break;
    case 'K':
        clearLine(m_column);
        break;
    case 'J':
        clearLine(m_column);
        for (int row = m_row + 1; row < m_rows; ++row)
            m_lines[row].clear();
        break;
    default: // the look of what follows
        break;
    }
}

QStringList Terminal::screen() const
{
    QStringList lines;
    for (QString line : m_lines) {
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        lines.append(line);
    }
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}
