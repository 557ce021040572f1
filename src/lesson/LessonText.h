#pragma once

#include <CalyxClient/lesson/PollAnswer.h>

#include <QString>
#include <QStringList>

/// Texts that cross the lesson's borders: from learners, onto the wire, into files.
namespace LessonText {

/// How many characters of a name and of an answer are kept; more would only be memory.
constexpr int longestName = 60;
constexpr int longestAnswer = 500;

/// \p text without what would move a cursor or turn the direction of writing: such characters become blanks.
/// At most \p longest characters.
QString clean(const QString& text, int longest);
/// What stands between the quotes of a JSON string that holds \p text: the wire's templates take texts as
/// they are.
QString escaped(const QString& text);
/// Whether \p text holds control characters, which no name, password or token has.
bool hasControls(const QString& text);
/// \p reference with everything percent-encoded that ends the quotes of JSON or of CSS's url('...').
QString asReference(const QString& reference);
/// A line of CSV, its end included. Programs read these tables, too: what is ours in them is the same in
/// every language.
QString csvLine(const QStringList& fields);

/// A mark as a field of such a line: "yes", "no", or empty where nothing is marked.
QString csvMark(Calyx::PollAnswer::Mark mark);

} // namespace LessonText
