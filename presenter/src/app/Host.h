#pragma once

#include "app/Options.h"

#include <QString>

class Lesson;
class Screen;
class Waiter;

/// What a command works with.
struct Host
{
    const Options& options;
    Lesson& lesson;
    Screen& screen;
    Waiter& waiter;
    /// Where relative file names begin: at the script, or where the program was started.
    QString folder;
    /// How long a "wait" lasts when it does not say, in seconds.
    int waitLimit = 60;
    /// How long a transport may take to open, in ms; 0 is no limit.
    int openLimit = 0;
    /// "quit" was given.
    bool isQuitting = false;
};
