#include "commands/CommandRows.h"
#include "commands/Handlers.h"

#include <iterator>

namespace {

using P = Place;

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
const Command rows[] = {
    {"check", "[USER PASSWORD]", "Ask whether the service answers.",
     "USER and PASSWORD are offered when the service asks for HTTP authentication.",
     0, 2, false, {}, "", Handlers::check},
    {"login", "[USER [PASSWORD]]", "Log in.",
     "Without USER and PASSWORD, those of the command line and of CALYX_PASSWORD are taken.",
     0, 2, false, {}, "", Handlers::login},
    {"login token", "USER DEVICE TOKEN", "Log in with a device token instead of a password.",
     "", 3, 3, false, {}, "", Handlers::loginToken},
    {"login oauth", "PROVIDER CODE", "Log in with the code of an OAuth provider.",
     "The service may want a new user to register first: \"register\" does that.",
     2, 2, false, {}, "", Handlers::loginOAuth},
    {"register", "[NAME=VALUE ...]", "Complete the registration that an OAuth login has asked for.",
     "Adds the values to what the service knows, or changes it, and logs in.",
     0, -1, false, {}, "", Handlers::registerUser},
    {"token", "DEVICE NAME [USER [PASSWORD]]", "Get a token for later logins of this device.",
     "DEVICE is the device's id, NAME what people call it. This logs in, too.",
     2, 4, false, {}, "", Handlers::token},
    {"token oauth", "PROVIDER CODE DEVICE NAME", "Get a device token with a provider's code.",
     "", 4, 4, false, {}, "", Handlers::tokenOAuth},
    {"whoami", "", "Ask the service who is logged in.", "", 0, 0, false, {}, "", Handlers::whoAmI},
    {"relogin", "", "Log in again as the last time.", "", 0, 0, false, {}, "", Handlers::reLogin},
    {"keepalive", "", "Keep the login alive.",
     "Every minute this happens by itself.",
     0, 0, false, {}, "", Handlers::keepAlive},
    {"logout", "", "Stop the session, if one is open, and log out.",
     "", 0, 0, false, {}, "", Handlers::logout},
    {"session start", "[within SECONDS]", "Create a session and go live.",
     "Waits until the live channel is open: for as long as the transports may take together, or\n"
     "for SECONDS. Does \"session create\" and \"session live\" in one.",
     0, 2, false, {P::Keyword, P::Number}, "within", Handlers::sessionStart},
    {"session create", "", "Create a session, without starting it.",
     "", 0, 0, false, {}, "", Handlers::sessionCreate},
    {"session live", "[within SECONDS]", "Start the created session and open its live channel.",
     "", 0, 2, false, {P::Keyword, P::Number}, "within", Handlers::sessionLive},
    {"session info", "", "Show the session's code, address, transports and state.",
     "", 0, 0, false, {}, "", Handlers::sessionInfo},
    {"session disconnect", "", "Close the live channel; the session goes on.",
     "", 0, 0, false, {}, "", Handlers::sessionDisconnect},
    {"session reconnect", "[TRANSPORT ...]", "Open the live channel again.",
     "With the transports as before, or with those named.",
     0, 3, false, {P::Transport, P::Transport, P::Transport}, "", Handlers::sessionReconnect},
    {"session stop", "", "Stop the session.",
     "A poll that runs is stopped first.",
     0, 0, false, {}, "", Handlers::sessionStop},
    {"learners", "", "List the learners who are here.", "", 0, 0, false, {}, "", Handlers::learners},
    {"remove", "LEARNER", "Send a learner's device away.",
     "LEARNER is a name, the beginning of one, or a device id.",
     1, 1, false, {P::Learner}, "", Handlers::removeLearner},
    {"ping", "", "Send a ping on the live channel.",
     "Every minute this happens by itself.",
     0, 0, false, {}, "", Handlers::ping},
};
// clang-format on

} // namespace

QVector<Command> CommandRows::service()
{
    return QVector<Command>(std::begin(rows), std::end(rows));
}
