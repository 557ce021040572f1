#pragma once

#include "terminal/LineSource.h"

/// What may be typed next.
namespace Completer {

/// \p line is what stands before the cursor; file names are relative to \p folder.
Completion complete(const QString& line, const QStringList& learners, const QString& folder);

} // namespace Completer
