#include "commands/CommandRows.h"
#include "commands/Handlers.h"

#include <iterator>

namespace {

using P = Place;

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
const Command rows[] = {
    {"wait learners", "N [within SECONDS]", "Wait until N learners are here.",
     "For a minute, unless told otherwise here or by \"set wait-limit\".",
     1, 3, false, {P::Number, P::Keyword, P::Number}, "within", Handlers::waitLearners},
    {"wait answers", "N|all [within SECONDS]", "Wait until N answers have come, or those of all learners.",
     "For a minute, unless told otherwise here or by \"set wait-limit\".",
     1, 3, false, {P::Amount, P::Keyword, P::Number}, "within", Handlers::waitAnswers},
    {"wait assessment", "N|all [within SECONDS]", "Wait until N learners, or all, have finished the assessment.",
     "For a minute, unless told otherwise here or by \"set wait-limit\".",
     1, 3, false, {P::Amount, P::Keyword, P::Number}, "within", Handlers::waitAssessment},
    {"expect learners", "N", "Fail unless N learners are here.",
     "", 1, 1, false, {P::Number}, "", Handlers::expectLearners},
    {"expect answers", "N|all", "Fail unless the last poll has N answers, or those of all learners.",
     "", 1, 1, false, {P::Amount}, "", Handlers::expectAnswers},
    {"expect assessment", "N|all", "Fail unless N learners, or all, have finished the assessment.",
     "", 1, 1, false, {P::Amount}, "", Handlers::expectAssessment},
    {"summary", "", "Show a table of all polls so far.", "", 0, 0, false, {}, "", Handlers::summary},
    {"say", "[TEXT]", "Print a line.", "", 0, 1, true, {}, "", Handlers::say},
    {"heading", "TEXT", "Print a heading.", "", 1, 1, true, {}, "", Handlers::heading},
    {"pause", "MS", "Do nothing for so many milliseconds.",
     "", 1, 1, false, {P::Number}, "", Handlers::pause},
    {"set", "NAME VALUE ...", "Change a setting.",
     "transports NAME ...: those to use for the next session instead of the tenant's.\n"
     "open-limit MS: how long a transport may take to open; 0 is no limit.\n"
     "wait-limit SECONDS: how long a \"wait\" lasts when it does not say.",
     2, 4, false, {P::Keyword}, "transports open-limit wait-limit", Handlers::set},
    {"help", "[COMMAND]", "List the commands, or explain one.",
     "", 0, 2, false, {P::CommandName, P::CommandName}, "", Handlers::help},
    {"quit", "", "End the lesson: stop the session, log out, leave.",
     "Ctrl-D does so, too.",
     0, 0, false, {}, "", Handlers::quit},
};
// clang-format on

} // namespace

QVector<Command> CommandRows::flow()
{
    return QVector<Command>(std::begin(rows), std::end(rows));
}
