#pragma once

#include "app/CommandLine.h"

#include <QStringList>
#include <QVector>

/// A lesson in a file.
namespace ScriptFile {

struct Script
{
    /// Without blank lines and comments.
    QVector<CommandLine> lines;
    /// What is wrong with it, one line for each fault; nothing of such a script should be run.
    QStringList faults;
};

Script read(const QString& fileName);
/// The same for the content of a file.
Script parse(const QString& text, const QString& fileName);

} // namespace ScriptFile
