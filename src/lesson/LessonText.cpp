#include "lesson/LessonText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

bool isUnfitForReference(QChar character)
{
    return character <= QLatin1Char(' ') || character == QLatin1Char('"') || character == QLatin1Char('\'') ||
           character == QLatin1Char('\\');
}

// A spreadsheet takes a text that begins with one of these for a formula, and runs it.
bool looksLikeFormula(const QString& field)
{
    return !field.isEmpty() && QStringLiteral("=+-@\t\r").contains(field.at(0));
}

QString csvField(QString field)
{
    bool isNumber = false;
    field.toDouble(&isNumber);
    if (!isNumber && looksLikeFormula(field))
        field.prepend(QLatin1Char('\''));
    const auto isSpecial = [](QChar c) { return c == '"' || c == ',' || c == '\n' || c == '\r'; };
    if (!std::any_of(field.cbegin(), field.cend(), isSpecial))
        return field;
    return QLatin1Char('"') + field.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

} // namespace

QString LessonText::clean(const QString& text, int longest)
{
    QString cleaned = text.left(longest);
    if (!cleaned.isEmpty() && cleaned.at(cleaned.size() - 1).isHighSurrogate())
        cleaned.chop(1);
    for (QChar& character : cleaned) {
        const QChar::Category category = character.category();
        const bool isFormat = category == QChar::Other_Format && character != QChar(0x200d); // joins emoji
        if (isFormat || category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph)
            character = QLatin1Char(' ');
    }
    return cleaned.trimmed();
}

QString LessonText::escaped(const QString& text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(2, array.size() - 4)); // without [" and "]
}

bool LessonText::hasControls(const QString& text)
{
    return std::any_of(text.cbegin(), text.cend(),
                       [](QChar character) { return character.category() == QChar::Other_Control; });
}

QString LessonText::asReference(const QString& reference)
{
    QString result;
    result.reserve(reference.size());
    for (const QChar character : reference) {
        if (isUnfitForReference(character))
            result += QStringLiteral("%%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        else
            result += character;
    }
    return result;
}

QString LessonText::csvLine(const QStringList& fields)
{
    QStringList line;
    for (const QString& field : fields)
        line.append(csvField(field));
    return line.join(QLatin1Char(',')) + QLatin1String("\r\n");
}

QString LessonText::csvMark(Calyx::PollAnswer::Mark mark)
{
    if (mark <= Calyx::PollAnswer::Unmarked)
        return QString();
    return mark == Calyx::PollAnswer::Right ? QStringLiteral("yes") : QStringLiteral("no");
}
