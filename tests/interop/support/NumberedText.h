#pragma once

#include <QString>
#include <QStringList>

/// The numbered texts that the peers send: 20 bytes to 60 kB of UTF-8 each, with characters of one to four
/// bytes, quotes, backslashes and line breaks among them.
namespace NumberedText {

constexpr int COUNT = 10000;

/// What they are made of.
inline const QStringList& alphabet()
{
    static const QStringList characters = {
        QStringLiteral("a"),      QStringLiteral("Ä"), QStringLiteral("ж"),      QStringLiteral("€"),
        QStringLiteral("漢"),     QStringLiteral("😀"), QStringLiteral("\""),     QStringLiteral("\\"),
        QStringLiteral("\n"),     QStringLiteral("<"), QStringLiteral("\u2028"), QStringLiteral("%1"),
        QStringLiteral("\u0301"), QStringLiteral("]"), QStringLiteral("\t"),     QStringLiteral("🏫"),
    };
    return characters;
}

/// Bytes of the text number \p number (from 0) as UTF-8.
inline int size(int number)
{
    const int spread = number * 7919;
    if (number % 1000 == 999)
        return 60000;
    if (number % 50 == 49)
        return 2000 + spread % 4000;
    return 20 + spread % 280;
}

inline QString text(int number)
{
    QString text = QString::number(number).rightJustified(6, QLatin1Char('0')) + QLatin1Char(':');
    int left = size(number) - text.size();
    for (int i = number;; ++i) {
        const QString& character = alphabet().at(i % alphabet().size());
        const int bytes = character.toUtf8().size();
        if (bytes > left)
            break;
        text += character;
        left -= bytes;
    }
    return text + QString(left, QLatin1Char('.'));
}

/// Checks that texts come in order, with none lost or doubled.
class Sequence
{
public:
    void take(const QString& text)
    {
        const int expected = m_first + m_count;
        if (text == NumberedText::text(expected)) {
            ++m_count;
        } else if (m_fault.isNull()) {
            m_fault = QStringLiteral("expected number %1, got \"%2\" of %3 characters")
                          .arg(QString::number(expected), text.left(40), QString::number(text.size()));
            qWarning("%s", qPrintable(m_fault));
        }
    }

    /// How many have come as they should.
    int count() const { return m_count; }
    /// What was wrong first; null while nothing was.
    QString fault() const { return m_fault; }
    /// Begins anew, with number \p first.
    void restart(int first = 0)
    {
        m_first = first;
        m_count = 0;
        m_fault.clear();
    }

private:
    int m_first = 0;
    int m_count = 0;
    QString m_fault;
};

} // namespace NumberedText
