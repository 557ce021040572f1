#pragma once

struct CommandContext;
struct Outcome;

/// What commands stop, and the program at its end.
namespace Ending {

/// Stops the poll that runs, if any, and prints its final tally.
void stopPoll(CommandContext& context);
/// Prints the final tally of the poll that was put last.
void printPoll(CommandContext& context);
/// Prints the results of the assessment that is under way or was last.
void printResults(CommandContext& context);
/// Stops the assessment that is under way, if any, and prints its results.
void stopAssessment(CommandContext& context);
/// A row for each poll, a line for each assessment, and the sums.
void printSummary(CommandContext& context);
/// Stops both, and prints the summary unless it stands there already.
void stopActivities(CommandContext& context);
/// Ends the session, if one is open, and the login.
Outcome logOut(CommandContext& context);
/// Stops what is open and logs out, as far as it goes. False when something of it failed.
bool endLesson(CommandContext& context);

} // namespace Ending
