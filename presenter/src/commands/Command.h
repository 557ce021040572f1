#pragma once

#include "commands/Outcome.h"

#include <QStringList>

struct Host;

/// What a command gets: its words without its name; for one that takes text, that text as its only word.
using Arguments = QStringList;

/// What stands at a place of a command: for completion and, where one can tell, for a check before anything
/// runs.
enum class Place {
    Anything,
    PollType,
    Ordinal,
    File,
    Learner,
    CommandName,
    Transport,
    Keyword,
    Number,
    Amount
};

/// One row of the command table.
struct Command
{
    const char* name;  ///< one word or two
    const char* usage; ///< what follows the name
    const char* summary;
    const char* details;  ///< more for "help NAME"; may be empty
    int least;            ///< number of arguments
    int most;             ///< any number when it is negative
    bool takesText;       ///< all that follows the name is one argument, taken as it stands
    Place places[3];      ///< of the first arguments, in order
    const char* keywords; ///< of the places that take keywords, divided by blanks
    Outcome (*run)(Host&, const Arguments&);
};
