#pragma once

#include "commands/Command.h"

#include <QVector>

/// The rows of the command table.
namespace CommandRows {

QVector<Command> service();   ///< logging in and out, sessions
QVector<Command> classroom(); ///< what learners and the remote control get
QVector<Command> flow();      ///< the lesson itself

} // namespace CommandRows
