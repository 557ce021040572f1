#pragma once

struct CommandContext;

/// What commands stop, and the program at its end.
namespace Ending {

/// Stops the poll that runs, if any, and prints its final tally.
void stopPoll(CommandContext& context);
/// Prints the results of the assessment that is under way or was last.
void printResults(CommandContext& context);
/// Stops the assessment that is under way, if any, and prints its results.
void stopAssessment(CommandContext& context);
/// Both of them.
void stopActivities(CommandContext& context);
/// Stops what is open and logs out, as far as it goes. False when something of it failed.
bool endLesson(CommandContext& context);

} // namespace Ending
