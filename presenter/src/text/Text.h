#pragma once

#include <QString>
#include <QStringList>

/// Text from outside, made fit for one line of a terminal.
namespace Text {

/// Without whatever could steer a terminal or turn the direction of writing: control characters, their C1
/// counterparts, bidirectional marks. Line ends and tabs become blanks; blanks at the ends
/// go.
QString clean(const QString& text);

/// Columns that \p text takes on a terminal, by the locale's character table.
int width(const QString& text);

/// \p text cut to \p columns, with a sign of the cut as its last column.
QString elide(const QString& text, int columns, bool unicode);

/// Filled up with blanks to \p columns; longer text stays.
QString padRight(const QString& text, int columns);
QString padLeft(const QString& text, int columns);

/// "1 answer", "2 answers".
QString count(int number, const char* thing);

/// The items as one enumeration; those beyond \p most are only counted.
QString list(const QStringList& items, int most);

/// Lines of at most \p columns, broken between words where that is possible: the first begins behind \p first
/// blanks, the others behind \p next.
QStringList wrap(const QString& text, int columns, int first, int next);

/// "1 second", "0.5 seconds".
QString seconds(qint64 msecs);

constexpr int msecsPerSecond = 1000;

/// \p part of \p whole in percent, to the next whole number; 0 of nothing.
int percent(int part, int whole);

/// Minutes and seconds, "1:05".
QString duration(int seconds);

} // namespace Text
