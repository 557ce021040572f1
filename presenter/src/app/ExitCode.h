#pragma once

/// What the program's exit status tells. A signal that ended the lesson gives 128 and its number.
namespace ExitCode {

enum Code {
    Done = 0,        ///< the whole lesson did what it says
    Failed = 1,      ///< something in it did not
    Usage = 2,       ///< the command line or the script is wrong; nothing was done
    Unreachable = 3, ///< the service does not answer
    Signal = 128
};

} // namespace ExitCode
