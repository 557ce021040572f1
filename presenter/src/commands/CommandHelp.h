#pragma once

#include <QStringList>

/// What "help" prints, in lines of at most \p columns.
namespace CommandHelp {

/// The topics with their commands.
QStringList overview(int columns);
/// A topic's commands, or all about a command and those whose names begin with its; empty when there is
/// neither.
QStringList about(const QString& name, int columns);

} // namespace CommandHelp
