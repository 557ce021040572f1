#pragma once

#include "commands/Command.h"

#include <QStringList>
#include <QVector>

/// All commands, and how lines are matched with them.
namespace CommandTable {

/// A line that has been understood, or what is wrong with it.
struct Match
{
    const Command* command = nullptr;
    Arguments arguments;
    QString fault;
};

const QVector<Command>& commands();
/// Finds the command of a line that is not blank and checks its arguments as far as that goes without running
/// it.
Match match(const QString& line);
/// The command whose name \p words begin with, the longest if there are several; null when there is none.
const Command* find(const QStringList& words);
/// Those whose name begins with \p name, as "session" does for "session start"; all for an empty name.
QVector<const Command*> family(const QString& name);
QString usage(const Command& command);
/// What stands at an argument's place.
Place place(const Command& command, int index);
QStringList keywords(const Command& command);

/// What "help" and "help NAME" print; empty when there is no such command.
QStringList overview();
QStringList help(const QString& name);

} // namespace CommandTable
