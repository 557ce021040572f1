#include "transport/SockJSFrame.h"

#include "base/JsonEscape.h"
#include "base/JsonReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QVarLengthArray>

#include <array>

namespace {

// What follows the backslash in the usual escapes; 0 for all others, among them \u.
ushort unescaped(ushort character)
{
    switch (character) {
    case '"':
    case '\\':
    case '/':
        return character;
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return 0;
    }
}

constexpr std::array<bool, 128> plainTable()
{
    std::array<bool, 128> table{};
    for (unsigned character = 0; character < table.size(); ++character)
        table[character] = character >= ' ' && character != '"' && character != '\\';
    return table;
}

constexpr std::array<bool, 128> plain = plainTable();

bool isPlain(ushort character)
{
    return character < plain.size() ? plain[character] : !QChar::isSurrogate(character);
}

// Reads what servers send, an array of strings with the usual escapes and without blanks between them, in one
// pass. What else JSON allows is left to Qt.
class StringArray
{
public:
    explicit StringArray(const QString& frame, int begin)
        : m_in(frame.utf16() + begin), m_end(frame.utf16() + frame.size()), m_string(frame.size() - begin)
    {}

    bool read(QStringList* strings)
    {
        if (!take('['))
            return false;
        if (take(']'))
            return m_in == m_end;
        do {
            strings->append(QString());
            if (!take('"') || !readString(&strings->last()))
                return false;
        } while (take(','));
        return take(']') && m_in == m_end;
    }

private:
    bool take(char character)
    {
        if (m_in == m_end || *m_in != ushort(character))
            return false;
        ++m_in;
        return true;
    }

    // Up to the closing quote.
    bool readString(QString* string)
    {
        ushort* const begin = m_string.data();
        ushort* out = begin;
        while (m_in != m_end) {
            const ushort character = *m_in++;
            if (isPlain(character)) {
                *out++ = character;
            } else if (character == '"') {
                *string = QString(reinterpret_cast<const QChar*>(begin), int(out - begin));
                return true;
            } else if (character == '\\') {
                *out = m_in == m_end ? 0 : unescaped(*m_in++);
                if (*out++ == 0)
                    return false;
            } else if (isPair(character)) {
                *out++ = character;
                *out++ = *m_in++;
            } else {
                return false;
            }
        }
        return false;
    }

    bool isPair(ushort first) const
    {
        return QChar::isHighSurrogate(first) && m_in != m_end && QChar::isLowSurrogate(*m_in);
    }

    const ushort* m_in;
    const ushort* m_end;
    QVarLengthArray<ushort, 1024> m_string; // room for the longest string that the frame can hold
};

// Writes the JSON string of \p message, without its quotes, unless it needs more than the usual escapes.
// Without \p out only counts.
bool writeEscaped(const QString& message, ushort* out, int* length)
{
    const ushort* in = message.utf16();
    const ushort* const end = in + message.size();
    int count = 0;
    const auto put = [&](ushort character) {
        if (out)
            out[count] = character;
        ++count;
    };
    while (in != end) {
        const ushort character = *in++;
        if (isPlain(character)) {
            put(character);
        } else if (const ushort letter = jsonEscape(character)) {
            put('\\');
            put(letter);
        } else if (QChar::isHighSurrogate(character) && in != end && QChar::isLowSurrogate(*in)) {
            put(character);
            put(*in++);
        } else {
            return false;
        }
    }
    *length = count;
    return true;
}

QString arrayOf(const QString& message)
{
    int length = 0;
    if (!writeEscaped(message, nullptr, &length))
        return QString::fromUtf8(QJsonDocument(QJsonArray{message}).toJson().constData());
    const QLatin1String opening("[\n    \"");
    const QLatin1String closing("\"\n]\n");
    QString frame;
    frame.reserve(opening.size() + length + closing.size());
    frame += opening;
    frame.resize(opening.size() + length);
    writeEscaped(message, reinterpret_cast<ushort*>(frame.data()) + opening.size(), &length);
    frame += closing;
    return frame;
}

} // namespace

QString SockJSFrame::encode(const QString& message)
{
    QString frame = arrayOf(message);
    frame.replace(QLatin1String("[ "), QLatin1String("["));
    frame.replace(QLatin1String(" ]"), QLatin1String("]"));
    return frame;
}

QStringList SockJSFrame::messages(const QString& frame)
{
    QStringList strings;
    if (StringArray(frame, 1).read(&strings))
        return strings;
    strings.clear();
    const QJsonArray array = JsonReader::read(frame.mid(1)).array();
    for (const QJsonValue& value : array)
        strings.append(value.toVariant().toString());
    return strings;
}
