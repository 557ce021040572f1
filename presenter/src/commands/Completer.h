#pragma once

#include <QString>
#include <QStringList>

/// What may be typed next.
namespace Completer {

/// The candidates for the piece of the line that begins at \p start.
struct Completion
{
    int start = 0;
    QStringList candidates;
};

/// \p line is what stands before the cursor; file names are relative to \p folder.
Completion complete(const QString& line, const QStringList& learners, const QString& folder);

} // namespace Completer
