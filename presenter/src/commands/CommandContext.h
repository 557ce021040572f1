#pragma once

#include "commands/Command.h"

#include <CalyxClient/LessonError>

#include <QString>

#include <functional>

class Notebook;
class PresenterClient;
class Screen;
class Waiter;

namespace Calyx {
class Lesson;
} // namespace Calyx

/// What a command works with.
struct CommandContext
{
    /// What the lesson is told to do, and waited for.
    struct Task
    {
        QString what; ///< "The login"
        QString hint; ///< what to do next about a refusal
        std::function<void()> begin;
        std::function<bool()> isDone;
    };
    static constexpr qint64 unlimited = -1;

    Calyx::Lesson& lesson;
    Notebook& notes;
    Screen& screen;
    Waiter& waiter;
    /// Who "login" logs in when it names nobody.
    QString user;
    QString password;
    /// Where relative file names begin: at the script, or where the program was started.
    QString folder;
    /// How long a "wait" lasts when it does not say, in seconds.
    double waitLimit = 60;
    /// "quit" was given.
    bool isQuitting = false;
    /// Asks at the terminal for a password, which is not shown; false when it was given up. Empty where
    /// nobody can be asked.
    std::function<bool(const QString& prompt, QString& password)> askPassword = {};
    /// Where the failure of a task goes; null while none is under way: then it is news.
    Calyx::LessonError* failure = nullptr;

    /// The facts that hold.
    int facts() const;
    /// Done when the facts \p needs hold; else what to do.
    Outcome require(int needs) const;
    /// The same for facts that are given.
    static Outcome require(int needs, int facts);

    /// Begins \p task and waits for its end, \p msecs at most. One that is given up is cancelled.
    Outcome carryOut(const Task& task, qint64 msecs = unlimited);
    /// Has the service's client do \p work on the lesson's thread, and waits for that. Without a result its
    /// error is told. \p work may outlive the call, where the wait for it is given up.
    Outcome askService(const QString& what, const QString& hint,
                       const std::function<bool(PresenterClient*)>& work);
    /// Waits until a lost channel is open again.
    Outcome waitForChannel();
    /// Why \p what ("Login") failed; \p hint says what to do next about a refusal.
    Outcome refused(const QString& what, const QString& hint, const Calyx::LessonError& error) const;
    /// Something has failed: the task under way, or something that nobody has asked for.
    void take(const Calyx::LessonError& error);
};
