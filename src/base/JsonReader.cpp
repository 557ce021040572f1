#include "base/JsonReader.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace {

constexpr size_t deepestLevel = 1024; // deeper ones are an error to QJsonDocument
constexpr size_t keptInOrder = 16; // so many members of an object does Qt sort without changing their order

// Qt 5.15 never frees an object or a list that another member of the same name replaces: whoever may send us
// JSON could take all memory. Which one replaces which is left to its sorting, where there are many. So all
// but the last are taken out before Qt sees them. Qt 6 frees them, and keeps the last; but it wants what is
// replaced to be JSON, too, which here need not be. So they are taken out with either.
class RepeatedMembers
{
public:
    explicit RepeatedMembers(QByteArray* json) : m_json(json->data()), m_size(int(json->size())) {}

    // Up to the end, or to where Qt will stop as well: the rest is never read.
    void remove()
    {
        for (int i = 0; i < m_size && m_levels.size() <= deepestLevel; ++i) {
            switch (m_json[i]) {
            case '"':
                i = readString(i);
                break;
            case '{':
            case '[':
                beginLevel(m_json[i] == '{');
                break;
            case '}':
            case ']':
                if (m_levels.empty())
                    return;
                endLevel();
                break;
            case ',':
                endMember(i + 1);
                break;
            default:
                break;
            }
        }
    }

private:
    struct Member
    {
        int nameBegin; // without the quotes
        int nameEnd;
        int end; // behind the comma; 0 as long as there is none
    };
    struct Level
    {
        bool isObject;
        bool nameFollows;
        bool holdsLevels;
        size_t firstMember;
    };

    // Returns where the closing quote is.
    int readString(int begin)
    {
        int end = begin + 1;
        while (end < m_size && m_json[end] != '"')
            end += m_json[end] == '\\' ? 2 : 1;
        if (end < m_size && !m_levels.empty() && m_levels.back().nameFollows) {
            m_levels.back().nameFollows = false;
            m_members.push_back({begin + 1, end, 0});
        }
        return end;
    }

    void beginLevel(bool isObject)
    {
        if (!m_levels.empty())
            m_levels.back().holdsLevels = true;
        m_levels.push_back({isObject, isObject, false, m_members.size()});
    }

    void endMember(int end)
    {
        if (m_levels.empty() || !m_levels.back().isObject)
            return;
        m_levels.back().nameFollows = true;
        if (m_members.size() > m_levels.back().firstMember)
            m_members.back().end = end;
    }

    void endLevel()
    {
        const Level level = m_levels.back();
        m_levels.pop_back();
        const bool isLong = m_members.size() - level.firstMember > keptInOrder;
        if (level.isObject && (level.holdsLevels || isLong))
            removeRepeated(level.firstMember);
        m_members.resize(level.firstMember);
    }

    // The names are sorted, not hashed: a sender who knows Qt's hash could choose names that all get the same
    // one, and each would be compared with all others.
    void removeRepeated(size_t first)
    {
        std::vector<std::pair<QString, size_t>> names;
        names.reserve(m_members.size() - first);
        for (size_t i = first; i < m_members.size(); ++i)
            names.emplace_back(textOf(m_members[i]), i);
        std::sort(names.begin(), names.end());
        for (size_t i = 1; i < names.size(); ++i) {
            if (names[i - 1].first == names[i].first)
                blank(m_members[names[i - 1].second]);
        }
    }

    void blank(const Member& member)
    {
        const int begin = member.nameBegin - 1;
        if (member.end > begin)
            std::memset(m_json + begin, ' ', size_t(member.end - begin));
    }

    // The same name can be written in many ways.
    QString textOf(const Member& member) const
    {
        constexpr int digits = 4;
        const QString written =
            QString::fromUtf8(m_json + member.nameBegin, member.nameEnd - member.nameBegin);
        if (!written.contains(QLatin1Char('\\')))
            return written;
        QString text;
        text.reserve(written.size());
        for (int i = 0; i < written.size(); ++i) {
            if (written.at(i) != QLatin1Char('\\') || i + 1 == written.size()) {
                text += written.at(i);
            } else if (written.at(++i) == QLatin1Char('u')) {
                text += QChar(written.mid(i + 1, digits).toUShort(nullptr, 16));
                i += digits;
            } else {
                text += unescaped(written.at(i));
            }
        }
        return withoutHalves(text);
    }

    // Where Qt compares a name that was written in escapes with another, half a surrogate pair is the same to
    // it as U+FFFD.
    static QString withoutHalves(QString text)
    {
        for (int i = 0; i < text.size(); ++i) {
            if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
                ++i;
            else if (text.at(i).isSurrogate())
                text[i] = QChar::ReplacementCharacter;
        }
        return text;
    }

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
    std::vector<Member> m_members; // of all levels that have begun
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

// Whether an object or a list can be replaced at all: a member has to follow it, or there are so many that
// Qt's sorting puts them in another order. Most messages are not so, and need not be taken apart. What stands
// in a string counts as well, which does no harm.
bool canRepeatMembers(const QByteArray& json)
{
    const char* const begin = json.constData();
    const char* const end = begin + json.size();
    size_t commas = 0;
    for (const char* in = begin; in < end; ++in) {
        in = static_cast<const char*>(std::memchr(in, ',', size_t(end - in)));
        if (!in)
            return false;
        if (++commas == keptInOrder || (endsValueBefore(in, begin) && startsStringBehind(in, end)))
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
        RepeatedMembers(&utf8).remove();
    return QJsonDocument::fromJson(utf8, error);
}
