#include "JsonReader.h"

#include <QHash>

#include <cstring>
#include <vector>

namespace {

constexpr size_t deepestLevel = 1024; // deeper ones are an error to QJsonDocument

// Qt 5.15 never frees an object or a list that a later member of the same name replaces: whoever may send us
// JSON could take all memory. So such a value is overwritten with a plain number before Qt sees it.
class RepeatedMembers
{
public:
    explicit RepeatedMembers(QByteArray* json) : m_json(json->data()), m_size(json->size()) {}

    // Up to the end, or to where Qt will stop as well: the rest is never read.
    void overwrite()
    {
        for (int i = 0; i < m_size && m_levels.size() <= deepestLevel; ++i) {
            switch (m_json[i]) {
            case '"':
                i = readString(i);
                break;
            case '{':
            case '[':
                m_levels.push_back({m_json[i] == '{', m_json[i] == '{', i, {0, 0}, {}});
                break;
            case '}':
            case ']':
                if (!endLevel(i + 1))
                    return;
                break;
            case ',':
                if (!m_levels.empty())
                    m_levels.back().nameFollows = m_levels.back().isObject;
                break;
            default:
                break;
            }
        }
    }

private:
    struct Span
    {
        int begin;
        int end;
    };
    struct Level
    {
        bool isObject;
        bool nameFollows;
        int begin;
        Span name;                   // of the member that is being read, without the quotes
        QHash<QString, Span> values; // the objects and lists among the members so far
    };

    // Returns where the closing quote is.
    int readString(int begin)
    {
        int end = begin + 1;
        while (end < m_size && m_json[end] != '"')
            end += m_json[end] == '\\' ? 2 : 1;
        if (end < m_size && !m_levels.empty() && m_levels.back().nameFollows)
            beginMember({begin + 1, end});
        return end;
    }

    void beginMember(Span name)
    {
        Level& level = m_levels.back();
        level.nameFollows = false;
        level.name = name;
        if (level.values.isEmpty())
            return;
        const auto replaced = level.values.find(textOf(name));
        if (replaced == level.values.end())
            return;
        std::memset(m_json + replaced->begin, ' ', size_t(replaced->end - replaced->begin));
        m_json[replaced->begin] = '0';
        level.values.erase(replaced);
    }

    bool endLevel(int end)
    {
        if (m_levels.empty())
            return false;
        const int begin = m_levels.back().begin;
        m_levels.pop_back();
        if (!m_levels.empty() && m_levels.back().isObject)
            m_levels.back().values.insert(textOf(m_levels.back().name), {begin, end});
        return true;
    }

    // The same name can be written in many ways.
    QString textOf(Span name) const
    {
        QString text = QString::fromUtf8(m_json + name.begin, name.end - name.begin);
        for (int i = text.indexOf(QLatin1Char('\\')); i >= 0 && i + 1 < text.size();
             i = text.indexOf(QLatin1Char('\\'), i + 1)) {
            const bool isCode = text.at(i + 1) == QLatin1Char('u');
            text.replace(i, isCode ? 6 : 2,
                         isCode ? codeUnit(text.mid(i + 2, 4)) : unescaped(text.at(i + 1)));
        }
        return text;
    }

    static QChar codeUnit(const QString& digits) { return QChar(digits.toUShort(nullptr, 16)); }

    static QChar unescaped(QChar c)
    {
        static const char letters[] = "bfnrt";
        static const char meanings[] = "\b\f\n\r\t";
        const char* letter = c.unicode() < 0x80 && !c.isNull() ? std::strchr(letters, c.toLatin1()) : nullptr;
        return letter ? QLatin1Char(meanings[letter - letters]) : c;
    }

    char* m_json;
    int m_size;
    std::vector<Level> m_levels;
};

bool isBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

bool endsValueBefore(const char* comma, const char* begin)
{
    while (comma != begin && isBlank(*--comma)) {
    }
    return *comma == '}' || *comma == ']';
}

bool startsStringBehind(const char* comma, const char* end)
{
    while (++comma != end && isBlank(*comma)) {
    }
    return comma != end && *comma == '"';
}

// Whether an object or a list can be replaced at all: a member has to follow it. In most messages none does,
// and they need not be taken apart for it. What stands in a string counts as well, which does no harm.
bool canRepeatMembers(const QByteArray& json)
{
    const char* const begin = json.constData();
    const char* const end = begin + json.size();
    for (const char* in = begin; in < end; ++in) {
        in = static_cast<const char*>(std::memchr(in, ',', size_t(end - in)));
        if (!in)
            return false;
        if (endsValueBefore(in, begin) && startsStringBehind(in, end))
            return true;
    }
    return false;
}

} // namespace

QJsonDocument JsonReader::read(const QString& text, QJsonParseError* error)
{
    return read(text.toUtf8(), error);
}

QJsonDocument JsonReader::read(QByteArray utf8, QJsonParseError* error)
{
    if (canRepeatMembers(utf8))
        RepeatedMembers(&utf8).overwrite();
    return QJsonDocument::fromJson(utf8, error);
}
