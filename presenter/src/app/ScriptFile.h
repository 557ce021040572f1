#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// One line of a lesson and where it stands ("FILE:LINE"; empty for a typed one).
struct CommandLine
{
    QString text;
    QString origin;
};

/// A lesson in a file.
namespace ScriptFile {

struct Script
{
    /// Without blank lines and comments.
    QVector<CommandLine> lines;
    /// What is wrong with it, one line for each fault; nothing of such a script should be run.
    QStringList faults;
};

/// Reads a lesson and finds what can be known to go wrong: commands, their numbers and labels, files, answers
/// that cannot be, and commands that come before what they need.
Script read(const QString& fileName);
/// The same for the content of a file. The files that it names begin at the folder of \p fileName.
Script parse(const QString& text, const QString& fileName);

} // namespace ScriptFile
