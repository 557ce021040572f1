#pragma once

#include <QString>
#include <QStringList>

/// A line of command language taken apart: words divided by blanks, "..." around what holds blanks (also
/// within a word, as in title="A B"), '...' around a whole word, and a backslash before a character that is
/// meant as it stands (not within '...'). An apostrophe within a word is one.
namespace LineSyntax {

struct Split
{
    QStringList words;
    /// What is wrong with the line; empty when nothing is.
    QString error;
    /// A quotation is open at the end, or the line ends within a word: for completion.
    bool endsInWord = false;
    /// Where the last word begins, its opening quote included; the line's length when it ends between words.
    int lastStart = 0;
};

Split split(const QString& line);

/// The line behind its first \p count words, without blanks around it and without one pair of double quotes
/// around all of it. Nothing in it is taken for a quotation or an escape.
QString textAfter(const QString& line, int count);

/// \p word so that split() gives it back as one word.
QString quoted(const QString& word);

/// Nothing but blanks, or a comment: "#" and what follows.
bool isBlank(const QString& line);

} // namespace LineSyntax
