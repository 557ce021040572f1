#include "app/Runner.h"

#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Ending.h"
#include "commands/Waiter.h"
#include "terminal/Screen.h"
#include "terminal/UnixSignals.h"
#include "text/LineSyntax.h"
#include "text/Text.h"
#include "text/Words.h"

#include <CalyxClient/Lesson>

#include <csignal>
#include <utility>

Runner::Runner(CommandContext& context, OnFailure onFailure) : m_context(context), m_onFailure(onFailure) {}

void Runner::add(const CommandLine& line)
{
    m_hasAsked = false;
    m_queue.enqueue(line);
    runSoon();
}

void Runner::finishInput()
{
    m_isInputOver = true;
    runSoon();
}

void Runner::interrupt(int signal)
{
    const bool isTyped = signal == SIGINT && m_onFailure == GoOn && !m_isEnding;
    if (isTyped && ((m_isBusy && !m_isGivenUp) || !m_queue.isEmpty())) {
        giveUp();
        return;
    }
    if (isTyped && !m_isBusy && asksFirst())
        return;
    if (m_signal == 0)
        m_signal = signal;
    m_context.waiter.shutDown();
    runSoon();
}

void Runner::giveUp()
{
    UnixSignals::forgetRequests();
    m_context.screen.note(Words::tr("Interrupted."));
    m_isGivenUp = true;
    QStringList lines;
    for (const CommandLine& line : std::exchange(m_queue, {}))
        lines.append(line.text);
    drop(lines);
    Q_EMIT givenUp();
    m_context.waiter.interrupt();
}

void Runner::drop(const QStringList& lines)
{
    for (const QString& line : lines) {
        if (!LineSyntax::isBlank(line) && !CommandTable::holdsSecret(line))
            m_context.screen.note(Words::tr("Not done: %1").arg(Text::clean(line)), Ink::Bad);
    }
}

// Whole classes were sent home by a key that was meant for half a line.
bool Runner::asksFirst()
{
    if (m_hasAsked || !(m_context.facts() & Fact::Session))
        return false;
    m_hasAsked = true;
    UnixSignals::forgetRequests();
    m_context.screen.note(Words::tr("A session with %1 is open. Ctrl-C again, or \"quit\", ends it.")
                              .arg(Text::count(m_context.lesson.roster()->presentCount(), "learner")),
                          Ink::Strong);
    return true;
}

void Runner::stopSession()
{
    m_queue.clear();
    if (m_onFailure == EndLesson) {
        m_isStopped = true;
        m_context.isQuitting = true;
    } else {
        m_queue.enqueue({QStringLiteral("session stop"), QString()});
    }
    m_context.waiter.interrupt();
    runSoon();
}

void Runner::runSoon()
{
    QMetaObject::invokeMethod(this, &Runner::runNext, Qt::QueuedConnection);
}

// One line at a time: this is also called from the event loops in which a command waits.
void Runner::runNext()
{
    if (m_isBusy || m_isEnding)
        return;
    if (m_signal != 0 || m_context.isQuitting || (m_queue.isEmpty() && m_isInputOver)) {
        end();
    } else if (!m_queue.isEmpty()) {
        m_isBusy = true;
        m_isGivenUp = false;
        run(m_queue.dequeue());
        m_isBusy = false;
        runSoon();
    }
}

void Runner::run(const CommandLine& line)
{
    if (LineSyntax::isBlank(line.text))
        return;
    const Outcome outcome = runCommand(line);
    setCurrent(QString());
    if (!outcome.isDone())
        fail(line, outcome);
}

Outcome Runner::runCommand(const CommandLine& line)
{
    const CommandTable::Match match = CommandTable::match(line.text);
    if (!match.fault.isEmpty())
        return Outcome::failed(match.fault);
    if (const Outcome ready = m_context.require(match.command->needs); !ready.isDone())
        return ready;
    if (const Outcome checked = CommandTable::check(match, m_context.folder); !checked.isDone())
        return checked;
    setCurrent(QLatin1String(match.command->name));
    if (match.command->needs & Fact::Now) {
        if (const Outcome open = m_context.waitForChannel(); !open.isDone())
            return open;
    }
    return match.command->run(m_context, match.arguments);
}

void Runner::setCurrent(const QString& name)
{
    if (name.isEmpty() == m_current.isEmpty())
        return;
    m_current = name;
    m_clock.start();
    Q_EMIT busyChanged(!name.isEmpty());
}

void Runner::fail(const CommandLine& line, const Outcome& outcome)
{
    // What a signal or the remote control cut short is no failure of its own.
    if (m_signal != 0 || m_isStopped)
        return;
    const QString origin = line.origin.isEmpty() ? QString() : line.origin + QStringLiteral(": ");
    m_context.screen.error(origin + outcome.message);
    if (m_onFailure == GoOn)
        return;
    m_status = outcome.code;
    m_context.isQuitting = true;
}

void Runner::end()
{
    m_isEnding = true;
    m_context.waiter.open();
    setCurrent(QStringLiteral("quit"));
    if (m_signal != 0)
        m_context.screen.note(Words::tr("Interrupted: the lesson is ended."));
    if (!Ending::endLesson(m_context) && m_status == ExitCode::Done)
        m_status = ExitCode::Failed;
    Q_EMIT finished(m_signal != 0 ? ExitCode::Signal + m_signal : m_status);
}
