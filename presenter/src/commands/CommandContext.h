#pragma once

#include "commands/Command.h"

#include <QString>

#include <functional>

class Lesson;
class Screen;
class Waiter;

/// What a command works with.
struct CommandContext
{
    Lesson& lesson;
    Screen& screen;
    Waiter& waiter;
    /// Who "login" logs in when it names nobody.
    QString user;
    QString password;
    /// Where relative file names begin: at the script, or where the program was started.
    QString folder;
    /// How long a "wait" lasts when it does not say, in seconds.
    double waitLimit = 60;
    /// How long a transport may take to open, in ms; 0 is no limit.
    int openLimit = 0;
    /// "quit" was given.
    bool isQuitting = false;
    /// Asks at the terminal for a password, which is not shown; false when it was given up. Empty where
    /// nobody can be asked.
    std::function<bool(const QString& prompt, QString& password)> askPassword = {};

    /// The facts that hold.
    int facts() const;
    /// Done when the facts \p needs hold; else what to do.
    Outcome require(int needs) const;
    /// The same for facts that are given.
    static Outcome require(int needs, int facts);

    /// Why \p what ("Login") failed: the service's error key if it gave one, else whether the service answers
    /// at all; \p hint says what to do next about a refusal.
    Outcome refused(const QString& what, const QString& hint) const;
};
