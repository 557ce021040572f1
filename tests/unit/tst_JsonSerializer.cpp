#include "support/LogRecorder.h"
#include "support/Node.h"
#include "support/Rows.h"

#include <CalyxClient/JsonSerializer>

#include <QLoggingCategory>
#include <QMetaProperty>
#include <QObject>
#include <QTest>

#include <memory>
#include <vector>

using Calyx::JsonSerializer;

namespace {

const char EMPTY_OBJECT[] = "{\n}\n";

QStringList ignored()
{
    return JsonSerializer::getIgnorePropertiesList();
}

QVariantMap mapOf(const QObject& object)
{
    return JsonSerializer::buildObjectMap(&object, ignored(), JsonSerializer::MAX_RECURSE_DEPTH);
}

} // namespace

/// Everything that a property can hold besides one object.
class Values : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(int number MEMBER number)
    Q_PROPERTY(double fraction MEMBER fraction)
    Q_PROPERTY(bool flag MEMBER flag)
    Q_PROPERTY(QVariant anything MEMBER anything)
    Q_PROPERTY(QVariantList list MEMBER list)
    Q_PROPERTY(QVariantMap map MEMBER map)
    Q_PROPERTY(QStringList words MEMBER words)
    Q_PROPERTY(QList<QVariantMap> maps MEMBER maps)

public:
    QString text;
    int number = 0;
    double fraction = 0.0;
    bool flag = false;
    QVariant anything;
    QVariantList list;
    QVariantMap map;
    QStringList words;
    QList<QVariantMap> maps;
};

class Unordered : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int zone MEMBER zone)
    Q_PROPERTY(int Zone MEMBER Zone)
    Q_PROPERTY(int betaMax MEMBER betaMax)
    Q_PROPERTY(int beta MEMBER beta)

public:
    int zone = 1;
    int Zone = 2;
    int betaMax = 3;
    int beta = 4;
};

class Derived : public Node
{
    Q_OBJECT
    Q_PROPERTY(int extra MEMBER extra)

public:
    int extra = 3;
};

/// A Node whose "name" can only be written. (Declared so, moc would warn on every build.)
class WriteOnlyNode : public Node
{
public:
    WriteOnlyNode() : m_meta(Node::staticMetaObject)
    {
        const uint* data = m_meta.d.data;
        const uint properties = data[7];
        m_data.assign(data, data + properties + 3 * data[6] + 1);
        constexpr uint readable = 1;
        m_data[properties + 2] &= ~readable;
        m_meta.d.data = m_data.data();
    }
    const QMetaObject* metaObject() const override { return &m_meta; }

private:
    QMetaObject m_meta;
    std::vector<uint> m_data;
};

class tst_JsonSerializer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }
    void cleanup() { m_log.reset(); }

    void ignoresExactlyObjectName() { QCOMPARE(ignored(), QStringList({QStringLiteral("objectName")})); }

    void depthAtTheTopIsFour() { QCOMPARE(int(JsonSerializer::MAX_RECURSE_DEPTH), 4); }

    void emptyMapGivesAnEmptyObjectAndNoMessage()
    {
        QCOMPARE(JsonSerializer::serializeToJson(QVariantMap()), QString::fromLatin1(EMPTY_OBJECT));
        QCOMPARE(m_log->debug(), QStringList());
    }

    void layoutOfAMap()
    {
        const QVariantMap map{
            {QStringLiteral("zero"), 0},
            {QStringLiteral("text"), QStringLiteral("words")},
            {QStringLiteral("flag"), true},
            {QStringLiteral("none"), QVariant()},
            {QStringLiteral("fraction"), 2.5},
            {QStringLiteral("empty list"), QVariantList()},
            {QStringLiteral("empty map"), QVariantMap()},
            {QStringLiteral("list"), QVariantList{1, QStringLiteral("two"), QVariantList{3}}},
            {QStringLiteral("map"), QVariantMap{{QStringLiteral("b"), 1}, {QStringLiteral("a"), 2}}}};
        const char expected[] = "{\n"
                                "    \"empty list\": [\n"
                                "    ],\n"
                                "    \"empty map\": {\n"
                                "    },\n"
                                "    \"flag\": true,\n"
                                "    \"fraction\": 2.5,\n"
                                "    \"list\": [\n"
                                "        1,\n"
                                "        \"two\",\n"
                                "        [\n"
                                "            3\n"
                                "        ]\n"
                                "    ],\n"
                                "    \"map\": {\n"
                                "        \"a\": 2,\n"
                                "        \"b\": 1\n"
                                "    },\n"
                                "    \"none\": null,\n"
                                "    \"text\": \"words\",\n"
                                "    \"zero\": 0\n"
                                "}\n";
        QCOMPARE(JsonSerializer::serializeToJson(map), QString::fromLatin1(expected));
    }

    void stringsAreEscapedAsJson_data()
    {
        rows<QString, QString>({
            {"quote", "a\"b", "a\\\"b"},
            {"backslash", "a\\b", "a\\\\b"},
            {"line break and tabulator", "a\r\n\tb", "a\\r\\n\\tb"},
            {"control character", QStringLiteral("a\x01"), QStringLiteral("a\\u0001")},
            {"zero, which does not cut the text", QStringLiteral("a") + QChar(0) + QStringLiteral("b"),
             QStringLiteral("a\\u0000b")},
            {"outside ASCII", QString::fromUtf8(u8"ä日😀"), QString::fromUtf8(u8"ä日😀")},
            {"placeholders", "%0 %1", "%0 %1"},
        });
    }

    void stringsAreEscapedAsJson()
    {
        const auto [text, written] = row<QString, QString>();
        QCOMPARE(JsonSerializer::serializeToJson(QVariantMap{{text, text}}),
                 QStringLiteral("{\n    \"") + written + QStringLiteral("\": \"") + written +
                     QStringLiteral("\"\n}\n"));
    }

    void keysAreInAlphabeticalOrder()
    {
        // Declared otherwise; capitals come before small letters.
        const Unordered object;
        QCOMPARE(JsonSerializer::serializeToJson(&object), QStringLiteral("{\n"
                                                                          "    \"Zone\": 2,\n"
                                                                          "    \"beta\": 4,\n"
                                                                          "    \"betaMax\": 3,\n"
                                                                          "    \"zone\": 1\n"
                                                                          "}\n"));
    }

    void everyReadablePropertyIsWritten()
    {
        Values values;
        values.text = QStringLiteral("t");
        values.number = -5;
        values.fraction = 0.25;
        values.flag = true;
        values.anything = QStringLiteral("any");
        values.list = {1, 2};
        values.map = {{QStringLiteral("k"), QStringLiteral("v")}};
        values.words = QStringList{QStringLiteral("x"), QStringLiteral("y")};
        const QVariantMap map = mapOf(values);
        QCOMPARE(map.size(), 9);
        QCOMPARE(map.value(QStringLiteral("text")), QVariant(QStringLiteral("t")));
        QCOMPARE(map.value(QStringLiteral("number")), QVariant(-5));
        QCOMPARE(map.value(QStringLiteral("fraction")), QVariant(0.25));
        QCOMPARE(map.value(QStringLiteral("flag")), QVariant(true));
        QCOMPARE(map.value(QStringLiteral("anything")), QVariant(QStringLiteral("any")));
        QCOMPARE(map.value(QStringLiteral("list")).toList(), values.list);
        QCOMPARE(map.value(QStringLiteral("map")).toMap(), values.map);
        QCOMPARE(map.value(QStringLiteral("words")).toStringList(), values.words);
        QVERIFY(JsonSerializer::serializeToJson(&values).contains(
            QLatin1String("    \"words\": [\n        \"x\",\n        \"y\"\n    ]\n")));
    }

    void objectNameIsNeverWritten()
    {
        Node inner(QStringLiteral("inner"));
        Node outer(QStringLiteral("outer"), &inner);
        inner.setObjectName(QStringLiteral("hidden"));
        outer.setObjectName(QStringLiteral("hidden"));
        const QString json = JsonSerializer::serializeToJson(&outer);
        QVERIFY(json.contains(QLatin1String("inner")));
        QVERIFY(!json.contains(QLatin1String("objectName")));
        QVERIFY(!json.contains(QLatin1String("hidden")));
        const QVariantList list = JsonSerializer::buildArrayObjectMap({&inner});
        QCOMPARE(list.value(0).toMap().keys(), QStringList({QStringLiteral("name"), QStringLiteral("next")}));
    }

    void writeOnlyPropertyIsLeftOut()
    {
        const WriteOnlyNode node;
        const int index = node.metaObject()->indexOfProperty("name");
        QVERIFY(index > 0);
        QVERIFY(!node.metaObject()->property(index).isReadable());
        QVERIFY(node.metaObject()->property(index).isWritable());
        QCOMPARE(mapOf(node).keys(), QStringList({QStringLiteral("next")}));
    }

    void invalidValueIsWrittenAsNull()
    {
        const Values values;
        const QVariantMap map = mapOf(values);
        QVERIFY(map.contains(QStringLiteral("anything")));
        QVERIFY(!map.value(QStringLiteral("anything")).isValid());
        QVERIFY(JsonSerializer::serializeToJson(&values).startsWith(
            QLatin1String("{\n    \"anything\": null,\n")));
    }

    void nullStringIsWrittenAsEmptyString()
    {
        const Node node;
        QVERIFY(node.name.isNull());
        QVERIFY(JsonSerializer::serializeToJson(&node).startsWith(QLatin1String("{\n    \"name\": \"\",\n")));
    }

    void propertiesOfBaseClassesAreWritten()
    {
        const Derived derived;
        QCOMPARE(mapOf(derived).keys(),
                 QStringList({QStringLiteral("extra"), QStringLiteral("name"), QStringLiteral("next")}));
    }

    void dynamicPropertiesAreNotWritten()
    {
        Node node;
        node.setProperty("undeclared", 1);
        QCOMPARE(mapOf(node).keys(), QStringList({QStringLiteral("name"), QStringLiteral("next")}));
    }

    void ignoreListIsCaseSensitiveAndReachesSubObjects()
    {
        Node inner(QStringLiteral("inner"));
        Node outer(QStringLiteral("outer"), &inner);
        QVariantMap map = JsonSerializer::buildObjectMap(&outer, {QStringLiteral("name")}, 4);
        QCOMPARE(map.keys(), QStringList({QStringLiteral("next"), QStringLiteral("objectName")}));
        QCOMPARE(map.value(QStringLiteral("next")).toMap().keys(),
                 QStringList({QStringLiteral("next"), QStringLiteral("objectName")}));
        map =
            JsonSerializer::buildObjectMap(&outer, {QStringLiteral("Name"), QStringLiteral("OBJECTNAME")}, 4);
        QCOMPARE(map.size(), 3);
    }

    void listOfMapsIsWrittenAsArrayOfObjects()
    {
        Values values;
        values.maps = {
            {{QStringLiteral("b"), 1}, {QStringLiteral("a"), 2}}, {}, {{QStringLiteral("c"), QVariant()}}};
        QVERIFY(JsonSerializer::serializeToJson(&values).contains(QLatin1String("    \"maps\": [\n"
                                                                                "        {\n"
                                                                                "            \"a\": 2,\n"
                                                                                "            \"b\": 1\n"
                                                                                "        },\n"
                                                                                "        {\n"
                                                                                "        },\n"
                                                                                "        {\n"
                                                                                "            \"c\": null\n"
                                                                                "        }\n"
                                                                                "    ],\n")));
        values.maps.clear();
        QVERIFY(
            JsonSerializer::serializeToJson(&values).contains(QLatin1String("    \"maps\": [\n    ],\n")));
    }

    void listOfMapsIsRegistered()
    {
        const Node node;
        JsonSerializer::serializeToJson(&node);
        QCOMPARE(QMetaType::type("QList<QVariantMap>"), qMetaTypeId<QList<QVariantMap>>());
    }

    void objectWithoutPropertiesGivesAnEmptyObject()
    {
        const QObject plain;
        QCOMPARE(JsonSerializer::serializeToJson(&plain), QString::fromLatin1(EMPTY_OBJECT));
        QCOMPARE(m_log->debug(), QStringList());
    }

    void nullPointerGivesAnEmptyObject()
    {
        const QObject* none = nullptr;
        QCOMPARE(JsonSerializer::serializeToJson(none), QString::fromLatin1(EMPTY_OBJECT));
        QCOMPARE(JsonSerializer::buildObjectMap(none, ignored(), 4), QVariantMap());
    }

    void nothingIsLoggedWhileTheCategoryIsOff()
    {
        Node inner(QStringLiteral("inner"));
        const Node outer(QStringLiteral("outer"), &inner);
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        JsonSerializer::serializeToJson(&outer);
        JsonSerializer::buildObjectMap(&outer, ignored(), 0);
        const QStringList whileOff = m_log->debug();
        QLoggingCategory::setFilterRules(QString());
        JsonSerializer::serializeToJson(&outer);

        QCOMPARE(whileOff, QStringList());
        QVERIFY(!m_log->debug().isEmpty());
    }

private:
    std::unique_ptr<LogRecorder> m_log;
};

QTEST_GUILESS_MAIN(tst_JsonSerializer)
#include "tst_JsonSerializer.moc"
