#include "terminal/Screen.h"

#include "text/Text.h"

#include <QThread>

#include <cstring>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

Screen* current = nullptr;

bool isCapable(int file)
{
    const QByteArray terminal = qgetenv("TERM");
    return isatty(file) == 1 && !terminal.isEmpty() && terminal != "dumb";
}

bool isUtf8()
{
    return std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}

QString lineOf(const QString& text)
{
    return text + QLatin1Char('\n');
}

// The library's and Qt's own messages, from whatever thread.
void handleMessage(QtMsgType, const QMessageLogContext&, const QString& text)
{
    Screen* const screen = current;
    if (!screen) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
        return;
    }
    if (QThread::currentThread() == screen->thread())
        screen->diagnostic(text);
    else
        QMetaObject::invokeMethod(
            screen, [screen, text] { screen->diagnostic(text); }, Qt::QueuedConnection);
}

} // namespace

Screen::Screen(bool quiet) : m_quiet(quiet), m_live(isCapable(STDOUT_FILENO) && !quiet)
{
    m_style.colour = isCapable(STDOUT_FILENO) && qEnvironmentVariableIsEmpty("NO_COLOR");
    m_style.unicode = isUtf8();
    readSize();
    current = this;
    qInstallMessageHandler(handleMessage);
}

Screen::~Screen()
{
    qInstallMessageHandler(nullptr);
    current = nullptr;
}

void Screen::readSize()
{
    constexpr int leastColumns = 20;
    constexpr int leastRows = 4;
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        m_style.columns = qMax<int>(size.ws_col, leastColumns);
        m_style.rows = qMax<int>(size.ws_row, leastRows);
    } else if (const int columns = qEnvironmentVariableIntValue("COLUMNS")) {
        m_style.columns = qMax(columns, leastColumns);
    }
}

void Screen::note(const QString& text, Ink ink)
{
    if (!m_quiet)
        update(lineOf(m_style.paint(ink, wrapped(text))));
}

// Between words, at a terminal; below where it begins.
QString Screen::wrapped(const QString& text) const
{
    if (isatty(STDOUT_FILENO) != 1 || Text::width(text) < m_style.columns)
        return text;
    int indent = 0;
    while (indent < text.size() && text.at(indent) == QLatin1Char(' '))
        ++indent;
    return Text::wrap(text.mid(indent), m_style.columns - 1, indent, indent).join(QLatin1Char('\n'));
}

void Screen::print(const QString& text, Ink ink)
{
    update(lineOf(m_style.paint(ink, wrapped(text))));
}

void Screen::print(const QStringList& lines)
{
    update(lineOf(lines.join(QLatin1Char('\n'))));
}

void Screen::error(const QString& text)
{
    const bool isSeen = isatty(STDERR_FILENO) == 1;
    writeError(isSeen ? m_style.paint(Ink::Bad, wrapped(text)) : text);
}

void Screen::diagnostic(const QString& text)
{
    QStringList lines;
    const QStringList raw = text.split(QLatin1Char('\n'));
    for (const QString& line : raw)
        lines.append(Text::clean(line));
    writeError(lines.join(QLatin1Char('\n')));
}

void Screen::setLiveLines(const QStringList& lines)
{
    if (!m_live || (lines.isEmpty() && m_drawn == 0))
        return;
    m_lines = lines;
    update(QString());
}

void Screen::enterLine(const QString& echo, int rows)
{
    write(stdout, eraser(rows) + lineOf(echo) + block());
    m_drawn = m_lines.size();
}

void Screen::refresh()
{
    readSize();
    m_drawn = 0; // where its rows have gone is not known: they stay as they are
    if (m_prompt)
        m_prompt->resize();
    update(QString());
}

// Takes the cursor to the first row of the block and clears the terminal from there.
QString Screen::eraser(int rowsOfPrompt) const
{
    const int rows = m_drawn + rowsOfPrompt;
    if (rows == 0 && !m_prompt)
        return QString();
    const QString up = rows > 0 ? QStringLiteral("\033[%1A").arg(rows) : QString();
    return QLatin1Char('\r') + up + QStringLiteral("\033[J");
}

QString Screen::block() const
{
    return m_lines.isEmpty() ? QString() : lineOf(m_lines.join(QLatin1Char('\n')));
}

void Screen::hideBlock()
{
    write(stdout, eraser(m_prompt ? m_prompt->rowsAboveCursor(m_style.columns) : 0));
    m_drawn = 0;
}

void Screen::showBlock()
{
    write(stdout, block());
    m_drawn = m_lines.size();
    if (m_prompt)
        m_prompt->redraw();
}

// Puts text above the block. In one piece, so that nothing flickers.
void Screen::update(const QString& text)
{
    write(stdout, eraser(m_prompt ? m_prompt->rowsAboveCursor(m_style.columns) : 0) + text + block());
    m_drawn = m_lines.size();
    if (m_prompt)
        m_prompt->redraw();
}

void Screen::writeError(const QString& text)
{
    const bool shares = m_prompt || m_drawn > 0; // the terminal, most likely
    if (shares)
        hideBlock();
    write(stderr, lineOf(text));
    if (shares)
        showBlock();
}

void Screen::write(FILE* file, const QString& text) const
{
    const QByteArray bytes = m_style.unicode ? text.toUtf8() : text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), file);
    std::fflush(file);
}
