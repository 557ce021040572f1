#include "text/LineSyntax.h"

#include "text/Words.h"

#include <algorithm>

namespace {

const QChar backslash = QLatin1Char('\\');

class Splitter
{
public:
    explicit Splitter(const QString& line) : m_line(line) {}

    LineSyntax::Split run()
    {
        for (m_at = 0; m_at < m_line.size(); ++m_at)
            take(m_line.at(m_at));
        m_result.endsInWord = m_inWord;
        m_result.lastStart = m_inWord ? m_start : m_line.size();
        if (!m_quote.isNull())
            m_result.error = Words::tr("The quotation that begins with %1 has no end.").arg(m_quote);
        finishWord();
        return m_result;
    }

private:
    void take(QChar character)
    {
        if (character == backslash && m_quote != QLatin1Char('\'') && m_at + 1 < m_line.size()) {
            append(m_line.at(++m_at), 1);
        } else if (!m_quote.isNull()) {
            if (character == m_quote)
                m_quote = QChar();
            else
                append(character, 0);
        } else if (character == QLatin1Char('"') || (character == QLatin1Char('\'') && !m_inWord)) {
            beginWord(0);
            m_quote = character;
        } else if (character.isSpace()) {
            finishWord();
        } else {
            append(character, 0);
        }
    }

    void append(QChar character, int escapes)
    {
        beginWord(escapes);
        m_word.append(character);
    }

    void beginWord(int escapes)
    {
        if (m_inWord)
            return;
        m_inWord = true;
        m_start = m_at - escapes;
    }

    void finishWord()
    {
        if (m_inWord)
            m_result.words.append(m_word);
        m_inWord = false;
        m_word.clear();
    }

    const QString& m_line;
    LineSyntax::Split m_result;
    QString m_word;
    QChar m_quote;
    int m_at = 0;
    int m_start = 0;
    bool m_inWord = false;
};

} // namespace

LineSyntax::Split LineSyntax::split(const QString& line)
{
    return Splitter(line).run();
}

QString LineSyntax::textAfter(const QString& line, int count)
{
    int at = 0;
    const auto skip = [&](bool blanks) {
        while (at < line.size() && line.at(at).isSpace() == blanks)
            ++at;
    };
    for (int i = 0; i < count; ++i) {
        skip(true);
        skip(false);
    }
    const QString text = line.mid(at).trimmed();
    const QChar quote = QLatin1Char('"');
    const bool isQuoted = text.startsWith(quote) && text.endsWith(quote) && text.count(quote) == 2;
    return isQuoted ? text.mid(1, text.size() - 2) : text;
}

QString LineSyntax::quoted(const QString& word)
{
    const auto isPlain = [](QChar character) {
        return !character.isSpace() && character != QLatin1Char('"') && character != QLatin1Char('\'') &&
               character != backslash;
    };
    if (!word.isEmpty() && std::all_of(word.begin(), word.end(), isPlain))
        return word;
    QString escaped = word;
    escaped.replace(backslash, QStringLiteral("\\\\")).replace(QLatin1Char('"'), QStringLiteral("\\\""));
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

bool LineSyntax::isBlank(const QString& line)
{
    const QString text = line.trimmed();
    return text.isEmpty() || text.startsWith(QLatin1Char('#'));
}
