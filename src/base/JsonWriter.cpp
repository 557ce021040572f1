#include "base/JsonWriter.h"

#include "base/JsonEscape.h"
#include "base/JsonVariant.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QVarLengthArray>

namespace {

bool needsNoEscape(ushort character)
{
    return character >= ' ' && character < 0x80 && character != '"' && character != '\\';
}

class Writer
{
public:
    QByteArray take() { return std::move(m_json); }

    void writeMap(const QVariantMap& map)
    {
        m_json += "{\n";
        ++m_level;
        for (auto member = map.cbegin(); member != map.cend(); ++member) {
            beginItem(member == map.cbegin());
            writeString(member.key());
            m_json += ": ";
            writeValue(member.value());
        }
        end(map.isEmpty(), '}');
    }

private:
    void writeList(const QVariantList& list)
    {
        m_json += "[\n";
        ++m_level;
        for (auto element = list.cbegin(); element != list.cend(); ++element) {
            beginItem(element == list.cbegin());
            writeValue(*element);
        }
        end(list.isEmpty(), ']');
    }

    void writeValue(const QVariant& value)
    {
        switch (value.userType()) {
        case QMetaType::QVariantMap:
            return writeMap(*static_cast<const QVariantMap*>(value.constData()));
        case QMetaType::QVariantList:
            return writeList(*static_cast<const QVariantList*>(value.constData()));
        case QMetaType::QString:
            return writeString(*static_cast<const QString*>(value.constData()));
        case QMetaType::Bool:
            m_json += value.toBool() ? "true" : "false";
            return;
        case QMetaType::Int:
            m_json += QByteArray::number(value.toInt());
            return;
        default:
            writeOther(JsonVariant::toJson(value));
        }
    }

    void writeOther(const QJsonValue& value)
    {
        if (value.isObject() || value.isArray())
            writeValue(value.toVariant());
        else
            writeScalar(value);
    }

    // As Qt writes it: numbers, what is not ASCII, nothing.
    void writeScalar(const QJsonValue& value)
    {
        const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
        m_json.append(array.constData() + 1, array.size() - 2);
    }

    void writeString(const QString& text)
    {
        QVarLengthArray<char, 256> out(2 * text.size() + 2); // room for escapes only
        char* next = out.data();
        *next++ = '"';
        for (const QChar character : text) {
            const ushort unit = character.unicode();
            if (needsNoEscape(unit)) {
                *next++ = char(unit);
            } else if (const ushort letter = jsonEscape(unit)) {
                *next++ = '\\';
                *next++ = char(letter);
            } else {
                return writeScalar(text);
            }
        }
        *next++ = '"';
        m_json.append(out.data(), int(next - out.data()));
    }

    void beginItem(bool isFirst)
    {
        if (!isFirst)
            m_json += ",\n";
        indent();
    }

    void end(bool isEmpty, char bracket)
    {
        --m_level;
        if (!isEmpty)
            m_json += '\n';
        indent();
        m_json += bracket;
    }

    void indent()
    {
        constexpr int width = 4;
        for (int i = 0; i < m_level; ++i)
            m_json.append("    ", width);
    }

    QByteArray m_json;
    int m_level = 0;
};

} // namespace

QByteArray JsonWriter::write(const QVariantMap& map)
{
    Writer writer;
    writer.writeMap(map);
    return writer.take() + '\n';
}
