#pragma once

#include "commands/Command.h"
#include <CalyxClient/Lesson>

#include <QString>

/// Takes what it reads from a command's arguments.
namespace ArgumentReader {

/// "within SECONDS" at the end; \p msecs stays as it is without.
Outcome takeWithin(Arguments& arguments, qint64& msecs);
/// "NAME=..."; false when there is none.
bool takeSetting(Arguments& arguments, const QString& name, QString& value);
/// "NAME=yes" or "NAME=no"; \p flag stays as it is without.
Outcome takeFlag(Arguments& arguments, const QString& name, bool& flag);
/// "NAME=NUMBER", a whole number from 0.
Outcome takeCount(Arguments& arguments, const QString& name, int& number);
/// "TYPE [ORDINAL] [OPTIONS] [EXTRA]" at the start, with "text=TEXT", "choices=A|B" and "answer=ANSWER".
Outcome takeQuestion(Arguments& arguments, Calyx::Question& question);

/// A time in seconds, "1.5" for example, as milliseconds; false when it is none.
bool readSeconds(const QString& text, qint64& msecs);
/// The device of the one learner that \p text names.
Outcome findLearner(const Calyx::Roster& roster, const QString& text, QString& deviceId);
/// The names of the learners with these \p devices.
QStringList names(const Calyx::Roster& roster, const QStringList& devices);

} // namespace ArgumentReader
