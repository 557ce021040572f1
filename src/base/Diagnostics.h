#pragma once

#include <QLoggingCategory>

/// The default category, as long as there is one. A host may keep our objects in statics, and these go after
/// Qt's.
struct DiagnosticsCategory
{
    const QLoggingCategory* category;

    bool isDebugEnabled() const { return category && category->isDebugEnabled(); }
    const char* categoryName() const { return category->categoryName(); }
};

// For qCDebug(diagnostics): the default category, so that the messages are those of a plain qDebug(), but
// no text is built while the category is off.
inline DiagnosticsCategory diagnostics()
{
    return {QLoggingCategory::defaultCategory()};
}
