#include "terminal/EditedLines.h"

#include "terminal/Screen.h"
#include "text/Text.h"

#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include <editline/readline.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr int historyLength = 500;

// The library's calls back have no context of ours.
EditedLines* active = nullptr;

QString typed(int bytes)
{
    return QString::fromLocal8Bit(rl_line_buffer, bytes);
}

// What all of the candidates begin with.
QString commonStart(const QStringList& candidates)
{
    QString start = candidates.value(0);
    for (const QString& candidate : candidates) {
        while (!candidate.startsWith(start, Qt::CaseInsensitive))
            start.chop(1);
    }
    return start;
}

// One byte of standard input; -1 when none comes in time, -2 when none will come any more.
int readByte()
{
    // A sequence of a key arrives at once. Without a limit, a lone Escape would block the event loop until
    // the next key.
    constexpr int limit = 100; // ms
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, limit) <= 0)
        return -1;
    unsigned char byte = 0;
    const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
    if (count == 1)
        return byte;
    return count < 0 && (errno == EINTR || errno == EAGAIN) ? -1 : -2;
}

} // namespace

EditedLines::EditedLines(const QString& prompt, Screen& screen, Complete completer)
    : m_prompt(prompt), m_screen(screen), m_completer(std::move(completer))
{
    active = this;
}

EditedLines::~EditedLines()
{
    EditedLines::stop();
    active = nullptr;
}

void EditedLines::start()
{
    static char name[] = "calyx-presenter";
    rl_readline_name = name;
    rl_catch_signals = 0;
    rl_getc_function = &EditedLines::readCharacter;
    rl_initialize();
    using_history();
    stifle_history(historyLength);
    rl_add_defun("calyx-complete", &EditedLines::onTab, '\t');
    m_active = true;
    m_screen.setPrompt(this);
    install();
    m_notifier = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &EditedLines::read);
}

void EditedLines::stop()
{
    if (!m_active)
        return;
    m_active = false;
    m_notifier->setEnabled(false);
    m_screen.hideBlock();
    m_screen.setPrompt(nullptr);
    rl_callback_handler_remove();
    m_screen.showBlock();
}

// Draws the prompt, too.
void EditedLines::install()
{
    rl_callback_handler_install(m_prompt.toLocal8Bit().constData(), &EditedLines::onLine);
}

void EditedLines::read()
{
    rl_callback_read_char();
    if (m_inputGone && m_active)
        end();
}

// A character, as the editing library wants it; -1 ends the key that is being read, without an effect.
int EditedLines::readCharacter(std::FILE*)
{
    std::mbstate_t state{};
    for (;;) {
        const int byte = readByte();
        if (byte < 0) {
            if (active && byte == -2)
                active->m_inputGone = true;
            return -1;
        }
        wchar_t character = 0;
        const char bytes[] = {static_cast<char>(byte)};
        const size_t used = std::mbrtowc(&character, bytes, 1, &state);
        if (used == static_cast<size_t>(-1))
            return '?';
        if (used != static_cast<size_t>(-2))
            return static_cast<int>(character);
    }
}

void EditedLines::onLine(char* line)
{
    const std::unique_ptr<char, decltype(&std::free)> owned(line, &std::free);
    if (!active || !active->m_active)
        return;
    if (line)
        active->take(QString::fromLocal8Bit(line));
    else
        active->end();
}

void EditedLines::take(const QString& line)
{
    if (!line.trimmed().isEmpty())
        add_history(line.toLocal8Bit().constData());
    const int rows = Text::width(m_prompt + line) / m_screen.style().columns + 1;
    m_screen.enterLine(m_prompt + line, rows);
    install();
    Q_EMIT lineRead(line);
}

void EditedLines::end()
{
    stop();
    Q_EMIT ended();
}

int EditedLines::rowsAboveCursor(int columns) const
{
    return Text::width(m_prompt + typed(rl_point)) / columns;
}

void EditedLines::redraw()
{
    rl_forced_update_display();
}

void EditedLines::resize()
{
    rl_resize_terminal();
}

int EditedLines::onTab(int, int)
{
    if (active)
        active->complete();
    return 0;
}

void EditedLines::complete()
{
    const QString line = typed(rl_point);
    const Completer::Completion completion = m_completer(line);
    if (completion.candidates.isEmpty())
        return;
    const QString piece = line.mid(completion.start);
    const bool isOne = completion.candidates.size() == 1;
    const QString common = commonStart(completion.candidates);
    if (common.size() <= piece.size() && !isOne) {
        m_screen.print(QStringLiteral("  ") + completion.candidates.join(QStringLiteral("  ")));
        return;
    }
    // A folder goes on, and so does the name of a setting.
    const bool goesOn = common.endsWith(QLatin1Char('/')) || common.endsWith(QLatin1Char('='));
    const bool isComplete = isOne && !goesOn;
    const QString end = QLatin1String(isComplete ? " " : "");
    m_screen.hideBlock();
    if (common.startsWith(piece)) {
        rl_insert_text((common.mid(piece.size()) + end).toLocal8Bit().constData());
    } else if (rl_point == rl_end) { // another case, or quotes are needed now
        // The library cannot delete. A shorter line takes the cursor to its end; an empty one is refused.
        rl_replace_line((line.left(completion.start) + common.left(1)).toLocal8Bit().constData(), 0);
        rl_insert_text((common.mid(1) + end).toLocal8Bit().constData());
    }
    m_screen.showBlock();
}
