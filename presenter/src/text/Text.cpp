#include "text/Text.h"

#include "text/Words.h"

#include <QVector>

#include <algorithm>
#include <cwchar>
#include <iterator>

namespace {

bool isDirectionMark(uint character)
{
    return character == 0x061C || character == 0x200E || character == 0x200F ||
           (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

bool isDropped(uint character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || isDirectionMark(character) ||
           character == 0xFEFF;
}

bool isBreak(uint character)
{
    return character == '\n' || character == '\r' || character == '\t' || character == 0x2028 ||
           character == 0x2029;
}

int columnsOf(uint character)
{
    const int columns = ::wcwidth(static_cast<wchar_t>(character));
    return columns < 0 ? 1 : columns; // unknown to the locale
}

QString fill(int columns)
{
    return QString(qMax(columns, 0), QLatin1Char(' '));
}

} // namespace

QString Text::clean(const QString& text)
{
    QVector<char32_t> kept;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        if (isBreak(character))
            kept.append(U' ');
        else if (!isDropped(character))
            kept.append(char32_t(character));
    }
    return QString::fromUcs4(kept.constData(), kept.size()).trimmed();
}

int Text::width(const QString& text)
{
    int columns = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters)
        columns += columnsOf(character);
    return columns;
}

QString Text::elide(const QString& text, int columns, bool unicode)
{
    if (width(text) <= columns)
        return text;
    if (columns < 1)
        return QString();
    QVector<char32_t> kept;
    int used = 1; // the sign of the cut
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        used += columnsOf(character);
        if (used > columns)
            break;
        kept.append(char32_t(character));
    }
    return QString::fromUcs4(kept.constData(), kept.size()) + (unicode ? QChar(0x2026) : QLatin1Char('~'));
}

QString Text::padRight(const QString& text, int columns)
{
    return text + fill(columns - width(text));
}

QString Text::padLeft(const QString& text, int columns)
{
    return fill(columns - width(text)) + text;
}

QString Text::count(int number, const char* thing)
{
    // The plural of English; other languages have theirs in their catalogues.
    static const struct
    {
        const char* one;
        const char* many;
    } counts[] = {
        {QT_TRANSLATE_NOOP("Words", "1 answer"), QT_TRANSLATE_N_NOOP("Words", "%n answers")},
        {QT_TRANSLATE_NOOP("Words", "1 card"), QT_TRANSLATE_N_NOOP("Words", "%n cards")},
        {QT_TRANSLATE_NOOP("Words", "1 decimal"), QT_TRANSLATE_N_NOOP("Words", "%n decimals")},
        {QT_TRANSLATE_NOOP("Words", "1 late answer"), QT_TRANSLATE_N_NOOP("Words", "%n late answers")},
        {QT_TRANSLATE_NOOP("Words", "1 learner"), QT_TRANSLATE_N_NOOP("Words", "%n learners")},
        {QT_TRANSLATE_NOOP("Words", "1 option"), QT_TRANSLATE_N_NOOP("Words", "%n options")},
        {QT_TRANSLATE_NOOP("Words", "1 poll"), QT_TRANSLATE_N_NOOP("Words", "%n polls")},
        {QT_TRANSLATE_NOOP("Words", "1 question"), QT_TRANSLATE_N_NOOP("Words", "%n questions")},
    };
    const auto isMeant = [thing](const auto& count) { return qstrcmp(count.one + 2, thing) == 0; };
    const auto* const count = std::find_if(std::begin(counts), std::end(counts), isMeant);
    Q_ASSERT(count != std::end(counts));
    return number == 1 ? Words::tr(count->one) : Words::tr(count->many, nullptr, number);
}

QString Text::list(const QStringList& items, int most)
{
    const QString shown = QStringList(items.mid(0, most)).join(QStringLiteral(", "));
    const int rest = items.size() - most;
    return rest > 0 ? Words::tr("%1 and %2 more").arg(shown, QString::number(rest)) : shown;
}

QStringList Text::wrap(const QString& text, int columns, int first, int next)
{
    QStringList lines;
    QString line = fill(first);
    bool isEmpty = true;
    // Blanks within a line stay, so that columns line up.
    const QStringList words = text.split(QLatin1Char(' '));
    for (const QString& word : words) {
        if (!isEmpty && width(line) + 1 + width(word) > columns) {
            lines.append(line);
            line = fill(next);
            isEmpty = true;
        }
        line += isEmpty ? word : QLatin1Char(' ') + word;
        isEmpty = false;
    }
    return lines << line;
}

QString Text::seconds(qint64 msecs)
{
    constexpr double second = 1000;
    const QString number = QString::number(static_cast<double>(msecs) / second);
    return number == QLatin1String("1") ? Words::tr("1 second") : Words::tr("%1 seconds").arg(number);
}

int Text::percent(int part, int whole)
{
    constexpr int hundred = 100;
    return whole > 0 ? (part * hundred + whole / 2) / whole : 0;
}

QString Text::duration(int seconds)
{
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}
