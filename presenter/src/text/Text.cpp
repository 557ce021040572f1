#include "text/Text.h"

#include <QVector>

#include <cwchar>

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
    const QString text = QString::number(number) + QLatin1Char(' ') + QLatin1String(thing);
    return number == 1 ? text : text + QLatin1Char('s');
}

QString Text::list(const QStringList& items, int most)
{
    const QString shown = QStringList(items.mid(0, most)).join(QStringLiteral(", "));
    const int rest = items.size() - most;
    return rest > 0 ? QStringLiteral("%1 and %2 more").arg(shown, QString::number(rest)) : shown;
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

QString Text::code(const QString& code)
{
    constexpr int group = 3;
    QString grouped;
    for (int at = 0; at < code.size(); ++at)
        grouped += (at > 0 && at % group == 0 ? QStringLiteral(" ") : QString()) + code.at(at);
    return grouped;
}

QString Text::seconds(qint64 msecs)
{
    constexpr double second = 1000;
    const QString number = QString::number(static_cast<double>(msecs) / second);
    return number + QLatin1String(number == QLatin1String("1") ? " second" : " seconds");
}

QString Text::duration(int seconds)
{
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}
