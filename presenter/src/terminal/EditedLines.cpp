#include "terminal/EditedLines.h"

#include "text/Text.h"

#include <QSocketNotifier>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <utility>

#include <editline/readline.h>
#include <poll.h>
#include <termios.h>
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

// What is typed is neither shown nor edited, and stays with the terminal until it is read. A signal of the
// keyboard does not throw it away.
void setSilent()
{
    termios settings{};
    if (tcgetattr(STDIN_FILENO, &settings) != 0)
        return;
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    settings.c_lflag |= ISIG | NOFLSH;
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSADRAIN, &settings);
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

EditedLines::EditedLines(const QString& prompt, Screen& screen, Complete completer, IsSecret isSecret)
    : m_prompt(prompt), m_screen(screen), m_completer(std::move(completer)), m_isSecret(std::move(isSecret))
{
    constexpr int unnoticed = 150; // ms
    m_hideSoon.setSingleShot(true);
    m_hideSoon.setInterval(unnoticed);
    connect(&m_hideSoon, &QTimer::timeout, this, &EditedLines::hidePrompt);
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
    tcgetattr(STDIN_FILENO, &m_before);
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
    removePrompt();
    m_active = false;
    tcsetattr(STDIN_FILENO, TCSADRAIN, &m_before);
}

void EditedLines::setBusy(bool isBusy)
{
    if (isBusy && m_active) {
        m_hideSoon.start();
        return;
    }
    m_hideSoon.stop();
    showPrompt();
}

void EditedLines::hidePrompt()
{
    if (removePrompt())
        Q_EMIT promptShown(false);
}

bool EditedLines::removePrompt()
{
    m_hideSoon.stop();
    if (m_isHidden || !m_active)
        return false;
    m_isHidden = true;
    m_notifier->setEnabled(false);
    m_kept = typed(rl_end);
    m_screen.hideBlock();
    m_screen.setPrompt(nullptr);
    rl_callback_handler_remove();
    setSilent();
    m_screen.showBlock();
    return true;
}

// What has been typed meanwhile is read now, by the editor.
void EditedLines::showPrompt()
{
    if (!m_isHidden || !m_active)
        return;
    m_isHidden = false;
    Q_EMIT promptShown(true);
    m_screen.setPrompt(this);
    install();
    if (!m_kept.isEmpty()) {
        m_screen.hideBlock();
        rl_insert_text(std::exchange(m_kept, QString()).toLocal8Bit().constData());
        m_screen.showBlock();
    }
    m_notifier->setEnabled(true);
}

QStringList EditedLines::takeTyped()
{
    QByteArray bytes;
    pollfd input{STDIN_FILENO, POLLIN, 0};
    char byte = 0;
    while (m_isHidden && poll(&input, 1, 0) > 0 && ::read(STDIN_FILENO, &byte, 1) == 1)
        bytes.append(byte == '\r' ? '\n' : byte);
    const QString kept = std::exchange(m_kept, QString());
    return (kept + QString::fromLocal8Bit(bytes)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

bool EditedLines::clearLine()
{
    if (m_isHidden || !m_active || rl_end == 0)
        return false;
    const QString line = typed(rl_end);
    m_screen.enterLine(m_prompt + line + QStringLiteral("^C"), rowsAboveCursor(m_screen.style().columns));
    rl_callback_handler_remove();
    install();
    return true;
}

void EditedLines::startHidden()
{
    hidePrompt();
    m_isHiddenDone = false;
    m_hidden.clear();
    m_secretNotifier = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
    connect(m_secretNotifier.get(), &QSocketNotifier::activated, this, &EditedLines::readHidden);
}

QString EditedLines::takeHidden()
{
    m_secretNotifier.reset();
    m_isHiddenDone = true;
    return QString::fromLocal8Bit(std::exchange(m_hidden, QByteArray()));
}

void EditedLines::readHidden()
{
    constexpr char erase = 0x7F;
    char byte = '\n';
    const ssize_t count = ::read(STDIN_FILENO, &byte, 1); // an end of input ends the line, too
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (byte == erase || byte == '\b')
        m_hidden = QString::fromLocal8Bit(m_hidden).chopped(m_hidden.isEmpty() ? 0 : 1).toLocal8Bit();
    else if (byte != '\n' && byte != '\r')
        m_hidden.append(byte);
    else
        endHidden();
}

void EditedLines::endHidden()
{
    m_secretNotifier->setEnabled(false);
    m_isHiddenDone = true;
    Q_EMIT hiddenRead();
}

// Draws the prompt, too. The library tells of the line before until a key is pressed.
void EditedLines::install()
{
    rl_point = 0;
    rl_end = 0;
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
    if (!line.trimmed().isEmpty() && !m_isSecret(line))
        add_history(line.toLocal8Bit().constData());
    m_screen.enterLine(m_prompt + line, rowsOf(line));
    install();
    Q_EMIT lineRead(line);
}

int EditedLines::rowsOf(const QString& line) const
{
    return Text::width(m_prompt + line) / m_screen.style().columns + 1;
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
    const Completion completion = m_completer(line);
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
