#pragma once

#include "base/QtVersion.h"

// For qCDebug(diagnostics): the default category, so that the messages are those of a plain qDebug(), but
// no text is built while the category is off.
inline auto diagnostics() -> decltype(diagnosticsCategory())
{
    return diagnosticsCategory();
}
