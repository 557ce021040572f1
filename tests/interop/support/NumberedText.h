#pragma once

#include <QString>

/// The numbered texts that the peers send: 20 bytes to 60 kB of UTF-8 each, with characters of one to four
/// bytes, quotes, backslashes and line breaks among them. The peers make the same ones (see peers/).
namespace NumberedText {

/// Bytes of the text number \p number (from 0) as UTF-8.
int size(int number);
QString text(int number);

/// Checks that texts come in order, with none lost or doubled.
class Sequence
{
public:
    void take(const QString& text);
    /// How many have come as they should.
    int count() const { return m_count; }
    /// What was wrong first; null while nothing was.
    QString fault() const { return m_fault; }
    /// Begins anew, with number \p first.
    void restart(int first = 0);

private:
    int m_first = 0;
    int m_count = 0;
    QString m_fault;
};

} // namespace NumberedText
