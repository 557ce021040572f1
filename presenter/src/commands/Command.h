#pragma once

#include <QString>
#include <QStringList>

struct CommandContext;

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

/// What came of a command.
struct Outcome
{
    ExitCode::Code code = ExitCode::Done;
    /// What failed, and what to do next.
    QString message;

    bool isDone() const { return code == ExitCode::Done; }

    static Outcome done() { return {}; }
    static Outcome failed(const QString& message) { return {ExitCode::Failed, message}; }
    static Outcome unreachable(const QString& message) { return {ExitCode::Unreachable, message}; }
    /// Done where there is no \p fault.
    static Outcome of(const QString& fault) { return fault.isEmpty() ? done() : failed(fault); }
};

/// What a command gets: its words without its name; for one that takes text, that text as its only word.
using Arguments = QStringList;

/// What holds at a point of a lesson: commands need it, bring it about and end it.
namespace Fact {

enum : int {
    Nothing = 0,
    Login = 1,
    Session = 2, ///< created, at least
    Opened = 4,  ///< the session has been started; its channel may be closed
    Channel = 8,
    Poll = 16, ///< runs
    AnyPoll = 32,
    Assessment = 64, ///< is under way
    AnyAssessment = 128,
    Questions = 256, ///< written for an assessment
    Cards = 512,     ///< in the deck
    Now = 1024,      ///< a channel that is open at this moment, or is waited for: what goes out is not kept
    TheSession = Session | Opened | Channel | Poll | Assessment,
    Everything = Login | TheSession
};

} // namespace Fact

/// What stands at a place of a command: for completion and, where one can tell, for a check before anything
/// runs.
enum class Place {
    Anything,
    PollType,
    Ordinal,
    File,
    PictureFile,
    NewFile, ///< written, not read
    Learner,
    CommandName,
    Transport,
    Keyword,
    Number,
    Seconds,
    Amount,
    Secret ///< not for the history
};

constexpr int anyNumber = -1;
/// All that follows the name is one argument, taken as it stands.
constexpr int asText = -2;

/// One row of the command table.
struct Command
{
    const char* name;  ///< one word or two
    const char* usage; ///< what follows the name
    const char* summary;
    const char* details;  ///< more for "help NAME"; may be empty
    int needs;            ///< facts
    int brings;           ///< facts that hold when it is done
    int ends;             ///< facts that hold no more
    int least;            ///< number of arguments
    int most;             ///< or anyNumber, or asText
    Place places[4];      ///< of the first arguments, in order
    const char* keywords; ///< of the places that take keywords, divided by blanks
    Outcome (*run)(CommandContext&, const Arguments&);
    /// What can be found wrong with the arguments without running anything; may be null. Relative file names
    /// begin at \p folder.
    Outcome (*check)(const QString& folder, const Arguments&) = nullptr;
};
