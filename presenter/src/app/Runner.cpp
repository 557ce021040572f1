#include "app/Runner.h"

#include "app/Host.h"
#include "app/Waiter.h"
#include "commands/CommandTable.h"
#include "commands/Support.h"
#include "terminal/Screen.h"
#include "terminal/UnixSignals.h"
#include "text/Words.h"

#include <csignal>

Runner::Runner(Host& host, OnFailure onFailure) : m_host(host), m_onFailure(onFailure) {}

void Runner::add(const CommandLine& line)
{
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
    const bool isAtWork = (m_isBusy && !m_isGivenUp) || !m_queue.isEmpty();
    if (signal == SIGINT && m_onFailure == GoOn && isAtWork && !m_isEnding) {
        giveUp();
        return;
    }
    if (m_signal == 0)
        m_signal = signal;
    m_host.waiter.shutDown();
    runSoon();
}

// The operation under way goes on to its end, which is near; a wait ends now.
void Runner::giveUp()
{
    UnixSignals::forgetRequests();
    m_host.screen.note(QStringLiteral("Interrupted."));
    m_isGivenUp = true;
    m_queue.clear();
    m_host.waiter.interrupt();
}

void Runner::stopSession()
{
    m_queue.clear();
    if (m_onFailure == EndLesson) {
        m_isStopped = true;
        m_host.isQuitting = true;
    } else {
        m_queue.enqueue({QStringLiteral("session stop"), QString()});
    }
    m_host.waiter.interrupt();
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
    if (m_signal != 0 || m_host.isQuitting || (m_queue.isEmpty() && m_isInputOver)) {
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
    if (Words::isBlank(line.text))
        return;
    const CommandTable::Match match = CommandTable::match(line.text);
    if (!match.fault.isEmpty()) {
        fail(line, Outcome::failed(match.fault));
        return;
    }
    const Outcome outcome = match.command->run(m_host, match.arguments);
    if (!outcome.isDone())
        fail(line, outcome);
}

void Runner::fail(const CommandLine& line, const Outcome& outcome)
{
    // What a signal or the remote control cut short is no failure of its own.
    if (m_signal != 0 || m_isStopped)
        return;
    const QString origin = line.origin.isEmpty() ? QString() : line.origin + QStringLiteral(": ");
    m_host.screen.error(origin + outcome.message);
    if (m_onFailure == GoOn)
        return;
    m_status = outcome.code;
    m_host.isQuitting = true;
}

void Runner::end()
{
    m_isEnding = true;
    if (m_signal != 0)
        m_host.screen.note(QStringLiteral("Interrupted: the lesson is ended."));
    if (!Support::endLesson(m_host) && m_status == ExitCode::Done)
        m_status = ExitCode::Failed;
    Q_EMIT finished(m_signal != 0 ? ExitCode::Signal + m_signal : m_status);
}
