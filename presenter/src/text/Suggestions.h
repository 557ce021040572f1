#pragma once

#include <QString>
#include <QStringList>

/// What somebody who mistyped a word may have meant.
namespace Suggestions {

/// Insertions, deletions, exchanges and swaps of neighbours that make \p a of \p b.
int distance(const QString& a, const QString& b);

/// Those of \p known that are close to \p word or begin with it, closest first, three at most.
QStringList closeTo(const QString& word, const QStringList& known);

/// " Did you mean x or y?" for \p word; empty when nothing is close.
QString question(const QString& word, const QStringList& known);

} // namespace Suggestions
