#pragma once

#include "commands/Command.h"
#include "lesson/PollKinds.h"

/// Reads "TYPE [ORDINAL] [OPTIONS] [EXTRA]" from the start of arguments.
namespace PollArguments {

/// Takes the words that it reads.
Outcome take(Arguments& arguments, PollPlan& plan);

} // namespace PollArguments
