#pragma once

#include "app/CommandLine.h"
#include "app/ExitCode.h"
#include "commands/Outcome.h"

#include <QObject>
#include <QQueue>

struct Host;

/// Runs the lines of a lesson one after the other. Operations of the library and waits run the event loop;
/// what is typed meanwhile waits in a queue.
class Runner : public QObject
{
    Q_OBJECT

public:
    /// Whether a failed command ends the lesson.
    enum OnFailure { EndLesson, GoOn };

    Runner(Host& host, OnFailure onFailure);

    void add(const CommandLine& line);
    /// There will be no further line: the lesson ends after those that wait.
    void finishInput();
    /// A signal asks to end the lesson. Where failed commands do not end it, SIGINT first gives up what is
    /// under way.
    void interrupt(int signal);
    /// The remote control asks to stop the session. Where failed commands end the lesson, this ends it, too,
    /// as something that was to be.
    void stopSession();

Q_SIGNALS:
    /// What was open has been stopped; the program can exit.
    void finished(int exitStatus);

private:
    void giveUp();
    void runSoon();
    void runNext();
    void run(const CommandLine& line);
    void fail(const CommandLine& line, const Outcome& outcome);
    void end();

    Host& m_host;
    OnFailure m_onFailure;
    QQueue<CommandLine> m_queue;
    bool m_isBusy = false;
    bool m_isGivenUp = false; // the command under way
    bool m_isInputOver = false;
    bool m_isEnding = false;
    bool m_isStopped = false; // by the remote control
    int m_signal = 0;
    int m_status = ExitCode::Done;
};
