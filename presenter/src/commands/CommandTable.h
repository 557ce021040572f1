#pragma once

#include "commands/Command.h"
#include "terminal/LineSource.h"

#include <QStringList>
#include <QVector>

/// All commands, and how lines are matched with them.
namespace CommandTable {

/// The commands of a topic, in the order in which help lists them.
struct Topic
{
    const char* name;
    const char* title;
    QVector<Command> commands;
};

const QVector<Topic>& topics();
const QVector<Command>& commands();

/// A line that has been understood, or what is wrong with it.
struct Match
{
    const Command* command = nullptr;
    Arguments arguments;
    QString fault;
};

/// Finds the command of a line that is not blank and checks its arguments as far as that goes without running
/// it.
Match match(const QString& line);
/// What else can be found wrong with the arguments before running it: files that cannot be read, impossible
/// answers. Relative file names begin at \p folder.
Outcome check(const Match& match, const QString& folder);
/// The command whose name \p words begin with, the longest if there are several; null when there is none.
const Command* find(const QStringList& words);
/// Those whose name begins with \p name, as "session" does for "session start".
QVector<const Command*> family(const QString& name);
QString usage(const Command& command);
/// What stands at an argument's place.
Place place(const Command& command, int index);
QStringList keywords(const Command& command);
/// Whether the line holds a password or a token.
bool holdsSecret(const QString& line);

// Each from the file of its topic.
QVector<Command> account();
QVector<Command> session();
QVector<Command> polls();
QVector<Command> cards();
QVector<Command> devices();
QVector<Command> assessments();
QVector<Command> flow();
QVector<Command> general();

} // namespace CommandTable

/// What "help" prints, in lines of at most \p columns.
namespace CommandHelp {

/// The topics with their commands.
QStringList overview(int columns);
/// A topic's commands, or all about a command and those whose names begin with its; empty when there is
/// neither.
QStringList about(const QString& name, int columns);

} // namespace CommandHelp

/// What may be typed next.
namespace Completer {

/// \p line is what stands before the cursor; file names are relative to \p folder.
Completion complete(const QString& line, const QStringList& learners, const QString& folder);

} // namespace Completer
