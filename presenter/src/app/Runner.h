#pragma once

#include "app/ScriptFile.h"
#include "commands/Command.h"

#include <QElapsedTimer>
#include <QObject>
#include <QQueue>

struct CommandContext;

/// Runs the lines of a lesson one after the other. While one waits, the event loop runs; what is typed
/// meanwhile waits in a queue.
class Runner : public QObject
{
    Q_OBJECT

public:
    /// Whether a failed command ends the lesson.
    enum OnFailure { EndLesson, GoOn };

    Runner(CommandContext& context, OnFailure onFailure);

    void add(const CommandLine& line);
    /// There will be no further line: the lesson ends after those that wait.
    void finishInput();
    /// A signal asks to end the lesson. Where failed commands do not end it, SIGINT first gives up what is
    /// under way, and asks before it ends a session.
    void interrupt(int signal);
    /// The remote control asks to stop the session. Where failed commands end the lesson, this ends it, too,
    /// as something that was to be.
    void stopSession();

    /// Names lines that will not be done.
    void drop(const QStringList& lines);

    /// The name of the command that is at work; empty when none is.
    QString current() const { return m_current; }
    /// For how long it has been, in ms.
    qint64 elapsed() const { return m_clock.elapsed(); }

Q_SIGNALS:
    void busyChanged(bool isBusy);
    /// What waits will not be done: what has been typed and not been read is to be taken, and dropped with
    /// drop().
    void givenUp();
    /// What was open has been stopped; the program can exit.
    void finished(int exitStatus);

private:
    void giveUp();
    bool asksFirst();
    void runSoon();
    void runNext();
    void run(const CommandLine& line);
    void setCurrent(const QString& name);
    Outcome runCommand(const CommandLine& line);
    void fail(const CommandLine& line, const Outcome& outcome);
    void end();

    CommandContext& m_context;
    OnFailure m_onFailure;
    QQueue<CommandLine> m_queue;
    QString m_current;
    QElapsedTimer m_clock;
    bool m_isBusy = false;
    bool m_isGivenUp = false; // the command under way
    bool m_hasAsked = false;  // whether to end the session
    bool m_isInputOver = false;
    bool m_isEnding = false;
    bool m_isStopped = false; // by the remote control
    int m_signal = 0;
    int m_status = ExitCode::Done;
};
