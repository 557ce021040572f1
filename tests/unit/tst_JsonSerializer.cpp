#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/TypeNamed.h"

#include <CalyxClient/CalyxCollabMessage>
#include <CalyxClient/JsonSerializer>
#include <CalyxClient/Lzma>
#include <CalyxClient/MessageTemplates>
#include <CalyxClient/QuestionText>

#include <QJsonDocument>
#include <QObject>
#include <QTest>

#include <limits>
#include <memory>
#include <vector>

using namespace Calyx;

namespace {

const char EMPTY_OBJECT[] = "{\n}\n";
const QString MAX_DEPTH =
    "[JsonSerializer] ERROR: Reached max depth! Increase MAX_RECURSE_DEPTH or check object references!";
const QString MAPPING = "[JsonSerializer] Mapping sub-property: ";
const QString FAILED = "[JsonSerializer] ERROR: Failed to map property: ";

QVariantMap mapOf(const QObject& object, int depth = JsonSerializer::MAX_RECURSE_DEPTH)
{
    return JsonSerializer::buildObjectMap(&object, JsonSerializer::getIgnorePropertiesList(), depth);
}

QVariantMap jsonOf(const QObject& object)
{
    return QJsonDocument::fromJson(JsonSerializer::serializeToJson(&object).toUtf8()).toVariant().toMap();
}

// How many objects hang on each other below "next" and were mapped with something in them.
int chainLength(const QVariant& value)
{
    const QVariantMap map = value.toMap();
    return map.isEmpty() ? 0 : 1 + chainLength(map.value("next"));
}

const QString INVALID = "[CalyxCollabMessage] data object in message is invalid!";

// The text inside of the one element of the data.
QString decoded(const CalyxCollabMessage& message)
{
    const QVariantList list = message.data().toList();
    QString text;
    if (list.size() != 1 || list.first().userType() != QMetaType::QString)
        return QStringLiteral("not a list of one text");
    return Lzma::decompress64(list.first().toString(), &text) ? text : QStringLiteral("not compressed");
}

} // namespace

/// An object that may hold one more of its kind.
class Node : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QObject* next MEMBER next)

public:
    explicit Node(const QString& text = QString(), QObject* follower = nullptr) : name(text), next(follower)
    {}
    QString name;
    QObject* next = nullptr;
};

/// Everything that a property can hold besides objects, in no alphabetical order.
class Values : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(int number MEMBER number)
    Q_PROPERTY(int Number MEMBER number)
    Q_PROPERTY(double fraction MEMBER fraction)
    Q_PROPERTY(bool flag MEMBER flag)
    Q_PROPERTY(QVariant anything MEMBER anything)
    Q_PROPERTY(QVariantList list MEMBER list)
    Q_PROPERTY(QVariantMap map MEMBER map)
    Q_PROPERTY(QStringList words MEMBER words)
    Q_PROPERTY(QList<QVariantMap> maps MEMBER maps)

public:
    QString text;
    int number = -5;
    double fraction = 0.25;
    bool flag = true;
    QVariant anything;
    QVariantList list{1, 2};
    QVariantMap map{{"k", "v"}};
    QStringList words{"x", "y"};
    QList<QVariantMap> maps;
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
        constexpr uint sizeOfOne = QT_VERSION_MAJOR < 6 ? 3 : 5;
        m_data.assign(data, data + properties + sizeOfOne * data[6] + 1);
        constexpr uint readable = 1;
        m_data[properties + 2] &= ~readable;
        m_meta.d.data = m_data.data();
    }
    const QMetaObject* metaObject() const override { return &m_meta; }

private:
    QMetaObject m_meta;
    std::vector<uint> m_data;
};

/// Four object-valued properties, declared in no alphabetical order, and an ordinary one.
class FourObjects : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject* third MEMBER third)
    Q_PROPERTY(QObject* alpha MEMBER alpha)
    Q_PROPERTY(int number MEMBER number)
    Q_PROPERTY(QObject* zulu MEMBER zulu)
    Q_PROPERTY(QObject* beta MEMBER beta)

public:
    int number = 7;
    QObject* alpha = nullptr;
    QObject* beta = nullptr;
    QObject* third = nullptr;
    QObject* zulu = nullptr;
};

/// Objects held in other ways than by a plain pointer.
class Holder : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariant anything MEMBER anything)
    Q_PROPERTY(Node* derived MEMBER derived)
    Q_PROPERTY(QList<QObject*> list MEMBER list)
    Q_PROPERTY(QObject* next MEMBER next)

public:
    QVariant anything;
    Node* derived = nullptr;
    QList<QObject*> list;
    QObject* next = nullptr;
};

/// Objects as JSON, and the message that carries them.
class tst_JsonSerializer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }

    void cleanup() { m_log.reset(); }

    void hasItsConstants()
    {
        QCOMPARE(JsonSerializer::getIgnorePropertiesList(), QStringList("objectName"));
        QCOMPARE(int(JsonSerializer::MAX_RECURSE_DEPTH), 4);
    }

    void whatHoldsNothingGivesAnEmptyObjectAndNoMessage()
    {
        const QObject plain;
        const QObject* none = nullptr;
        QCOMPARE(JsonSerializer::serializeToJson(QVariantMap()), QString(EMPTY_OBJECT));
        QCOMPARE(JsonSerializer::serializeToJson(&plain), QString(EMPTY_OBJECT));
        QCOMPARE(JsonSerializer::serializeToJson(none), QString(EMPTY_OBJECT));
        QCOMPARE(JsonSerializer::buildObjectMap(none, {}, 4), QVariantMap());
        QCOMPARE(m_log->debug(), QStringList());
    }

    void layout()
    {
        Values values;
        values.text = QString::fromUtf8("a\"\\\r\n\t\x01%1 ä日😀") + QChar(0) + "b";
        values.list = {1, "two", QVariantList{3}, QVariantList(), QVariantMap(), 2.5};
        values.maps = {{{"b", 1}, {"a", 2}}, {}, {{"c", QVariant()}}};
        QVariantMap map = mapOf(values);
        const QString json = JsonSerializer::serializeToJson(&values);
        QCOMPARE(JsonSerializer::serializeToJson(map), json);
        // To Qt's writer this list has to be one of variants.
        map["maps"] = QVariantList{values.maps.at(0), values.maps.at(1), values.maps.at(2)};
        QCOMPARE(json, QString::fromUtf8(QJsonDocument::fromVariant(map).toJson()));
        QVERIFY(json.startsWith("{\n    \"Number\": -5,\n    \"anything\": null,\n"));
    }

    void valuesKeepTheirTypes()
    {
        Values values;
        const QVariantMap map = mapOf(values);
        QCOMPARE(map.size(), 10);
        QCOMPARE(map.value("number"), QVariant(-5));
        QCOMPARE(map.value("fraction"), QVariant(0.25));
        QCOMPARE(map.value("flag"), QVariant(true));
        QVERIFY(map.contains("anything") && !map.value("anything").isValid());
        QCOMPARE(map.value("list").toList(), values.list);
        QCOMPARE(map.value("map").toMap(), values.map);
        QCOMPARE(map.value("words").toStringList(), values.words);
        QCOMPARE(typeNamed("QList<QVariantMap>"), qMetaTypeId<QList<QVariantMap>>());
        const QString json = JsonSerializer::serializeToJson(&values);
        QVERIFY2(json.contains("    \"maps\": [\n    ],\n"), qPrintable(json));
        QVERIFY2(json.contains("    \"text\": \"\",\n"), qPrintable(json)); // a null one
    }

    void keysOfAnObject()
    {
        Node inner("inner");
        Node outer("outer", &inner);
        inner.setObjectName("hidden");
        outer.setObjectName("hidden");
        outer.setProperty("undeclared", 1);
        QVERIFY(!JsonSerializer::serializeToJson(&outer).contains("hidden"));
        const QStringList keys{"name", "next"};
        QCOMPARE(mapOf(outer).keys(), keys);
        QCOMPARE(JsonSerializer::buildArrayObjectMap({&inner}).value(0).toMap().keys(), keys);
        QCOMPARE(mapOf(Derived()).keys(), QStringList({"extra", "name", "next"}));
        QCOMPARE(mapOf(WriteOnlyNode()).keys(), QStringList("next"));
    }

    void ignoreListIsCaseSensitiveAndReachesSubObjects()
    {
        Node inner("inner");
        const Node outer("outer", &inner);
        QVariantMap map = JsonSerializer::buildObjectMap(&outer, {"name"}, 4);
        const QStringList keys{"next", "objectName"};
        QCOMPARE(map.keys(), keys);
        QCOMPARE(map.value("next").toMap().keys(), keys);
        map = JsonSerializer::buildObjectMap(&outer, {"Name", "OBJECTNAME"}, 4);
        QCOMPARE(map.size(), 3);
    }

    void objectPropertyIsFollowedAndLogged()
    {
        Node inner("inner");
        const Node outer("outer", &inner);
        QCOMPARE(
            jsonOf(outer),
            QVariantMap({{"name", "outer"},
                         {"next", QVariantMap{{"name", "inner"}, {"next", QVariant::fromValue(nullptr)}}}}));
        QCOMPARE(m_log->debug(MAPPING).size(), 1);
        QVERIFY(m_log->debug(MAPPING).first().mid(MAPPING.size()).contains("next"));
    }

    void depthFallsWithEachFollowedProperty()
    {
        // Each holds itself, so that the length of what is written shows the depth that it got.
        Node node("n");
        node.next = &node;
        FourObjects object;
        object.alpha = object.beta = object.third = object.zulu = &node;
        const QVariantMap map = jsonOf(object);
        QCOMPARE(chainLength(map.value("alpha")), 3);
        QCOMPARE(chainLength(map.value("beta")), 2);
        QCOMPARE(chainLength(map.value("third")), 1);
        QCOMPARE(chainLength(map.value("zulu")), 0);
        QCOMPARE(map.value("zulu"), QVariant(QVariantMap()));
        QCOMPARE(map.value("number").toInt(), 7);
        // Once for the end of each chain.
        QCOMPARE(m_log->debug(MAX_DEPTH).size(), 4);
        // Without the inner ones, once.
        node.next = nullptr;
        m_log.reset();
        m_log = std::make_unique<LogRecorder>();
        jsonOf(object);
        QCOMPARE(m_log->debug(MAX_DEPTH).size(), 1);
        QCOMPARE(m_log->debug(MAPPING).size(), 4);
    }

    void nullPointerStaysAndIsReported()
    {
        Node node("alone");
        const QVariant next = mapOf(node).value("next");
        QCOMPARE(next.userType(), int(QMetaType::QObjectStar));
        QVERIFY(!next.value<QObject*>());
        QCOMPARE(m_log->debug(FAILED).size(), 1);
        QVERIFY(m_log->debug(FAILED).first().mid(FAILED.size()).contains("next"));
        QCOMPARE(m_log->debug(MAPPING), QStringList());
        QVERIFY(JsonSerializer::serializeToJson(&node).contains("    \"next\": null\n"));
        // It does not lower the depth of those behind it.
        node.next = &node;
        FourObjects object;
        object.zulu = &node;
        QCOMPARE(chainLength(jsonOf(object).value("zulu")), 3);
    }

    void depthOfZeroOrLessGivesNothing()
    {
        const Node node("n");
        for (const int depth : {0, -1, std::numeric_limits<int>::min()})
            QCOMPARE(mapOf(node, depth), QVariantMap());
        QCOMPARE(m_log->debug(), QStringList({MAX_DEPTH, MAX_DEPTH, MAX_DEPTH}));
    }

    void depthBoundsAChain()
    {
        std::vector<std::unique_ptr<Node>> nodes;
        QObject* follower = nullptr;
        for (int i = 0; i < 10; ++i) {
            nodes.push_back(std::make_unique<Node>(QString::number(i), follower));
            follower = nodes.back().get();
        }
        for (int depth = 1; depth <= 7; ++depth) {
            QCOMPARE(chainLength(mapOf(*nodes.back(), depth)), depth);
            QCOMPARE(m_log->debug(MAX_DEPTH).size(), depth);
        }
    }

    void derivedPointerIsNotFollowed()
    {
        Node node("derived");
        Holder holder;
        holder.derived = &node;
        holder.anything = QVariant::fromValue(&node);
        const QVariantMap map = mapOf(holder);
        QCOMPARE(map.value("derived").value<Node*>(), &node);
        QCOMPARE(map.value("anything").value<Node*>(), &node);
        // Only of the plain pointer, which is null.
        QCOMPARE(m_log->debug(FAILED).size(), 1);
        QCOMPARE(m_log->debug(MAPPING), QStringList());
        QVERIFY(!JsonSerializer::serializeToJson(&holder).contains("\"name\""));
    }

    void variantsAreFollowed()
    {
        Node node("boxed");
        Holder holder;
        holder.anything = QVariant::fromValue<QObject*>(&node);
        QCOMPARE(jsonOf(holder).value("anything").toMap().value("name").toString(), QStringLiteral("boxed"));
        holder.anything = QVariant::fromValue(QList<QObject*>{&node});
        const QVariantList list = jsonOf(holder).value("anything").toList();
        QCOMPARE(list.size(), 1);
        QCOMPARE(list.first().toMap().value("name").toString(), QStringLiteral("boxed"));
    }

    void listOfObjectsIsExpandedInOrder()
    {
        Node one("zz");
        QObject plain;
        Node two("aa");
        const QVariant null = QVariant::fromValue(static_cast<QObject*>(nullptr));
        const QVariantMap first{{"name", "zz"}, {"next", null}};
        const QVariantMap last{{"name", "aa"}, {"next", null}};
        const QVariantList list{first, QVariantMap(), QVariantMap(), last};
        QCOMPARE(JsonSerializer::buildArrayObjectMap({&one, &plain, nullptr, &two}), list);
        QCOMPARE(JsonSerializer::buildArrayObjectMap({}), QVariantList());
        Holder holder;
        QVERIFY(JsonSerializer::serializeToJson(&holder).contains("    \"list\": [\n    ],\n"));
        holder.list = {&one, &plain, nullptr, &two};
        QCOMPARE(mapOf(holder).value("list").toList(), list);
    }

    void objectsInListsHaveLessDepthThanTheirOwner()
    {
        Node node("self");
        node.next = &node;
        QCOMPARE(chainLength(JsonSerializer::buildArrayObjectMap({&node}).value(0)), 2);
        Holder holder;
        holder.list = {&node, &node, &node, &node, &node};
        holder.next = &node; // behind the list, which does not lower its depth
        QCOMPARE(chainLength(jsonOf(holder).value("next")), 3);
        const auto length = [&holder](int depth) {
            return chainLength(mapOf(holder, depth).value("list").toList().last());
        };
        QCOMPARE(length(9), 2);
        QCOMPARE(length(4), 2);
        QCOMPARE(length(3), 2);
        QCOMPARE(length(2), 1);
        QCOMPARE(length(1), 0);
    }

    void objectsThatHoldEachOtherThroughListsEnd()
    {
        Holder one;
        Holder two;
        one.list = {&two, &two};
        two.list = {&one, &two};
        // One with depth 4, its list with 2, theirs with 1, and then nothing.
        const QVariantList second = jsonOf(one).value("list").toList();
        QCOMPARE(second.size(), 2);
        const QVariantList third = second.first().toMap().value("list").toList();
        QCOMPARE(third.size(), 2);
        QCOMPARE(third.first().toMap().value("list").toList(), QVariantList({QVariantMap(), QVariantMap()}));
        QCOMPARE(m_log->debug(MAX_DEPTH).size(), 8);
    }

    void dataobjectIsASlotAndNoProperty()
    {
        CalyxCollabMessage message;
        QObject object;
        QVERIFY(QMetaObject::invokeMethod(&message, "setdataobject", Q_ARG(QObject*, &object)));
        QCOMPARE(message.dataobject(), &object);
        QVERIFY(!object.parent());
        QCOMPARE(message.metaObject()->indexOfProperty("dataobject"), -1);
        message.setdataobject(nullptr);
        QVERIFY(!message.dataobject());
    }

    void mapIsSerialisedAndCompressed_data()
    {
        rows<QVariant, QString>({
            {"map", QVariant(QVariantMap{{"text", "Hi"}, {"isDismissible", true}}),
             "{\n    \"isDismissible\": true,\n    \"text\": \"Hi\"\n}\n"},
            {"empty map", QVariant(QVariantMap()), "{\n}\n"},
            {"hash, which converts to a map", QVariant(QVariantHash{{"a", 1}}), "{\n    \"a\": 1\n}\n"},
            {"map of another type, which converts to a map",
             QVariant::fromValue(QMap<QString, int>{{"a", 1}}), "{\n    \"a\": 1\n}\n"},
        });
    }
    void mapIsSerialisedAndCompressed()
    {
        const auto [data, json] = row<QVariant, QString>();
        CalyxCollabMessage message;
        message.setdata(data);
        message.compileData();
        QCOMPARE(decoded(message), json);
        QCOMPARE(m_log->debug(), QStringList());
    }

    void dataThatIsNoMapStaysAndIsReported()
    {
        CalyxCollabMessage message;
        int reports = 0;
        for (const QVariant& data : {QVariant(), QVariant("{\"a\":1}"), QVariant(5),
                                     QVariant(QVariantList{QVariantMap()}), QVariant(QByteArray("{}"))}) {
            message.setdata(data);
            message.compileData();
            QCOMPARE(message.data(), data);
            QCOMPARE(message.data().isValid(), data.isValid());
            QCOMPARE(m_log->debug().size(), ++reports);
            QCOMPARE(m_log->debug(INVALID).size(), reports);
        }
    }

    void objectGoesBeforeTheMapWhileItLives()
    {
        auto question = std::make_unique<QuestionText>();
        CalyxCollabMessage message;
        message.setdataobject(question.get());
        for (const QString hint : {u8"Größe 😀", "changed"}) {
            question->sethint(hint);
            message.setdata(QVariantMap{{"text", "Hi"}});
            message.compileData();
            QCOMPARE(decoded(message), JsonSerializer::serializeToJson(question.get()));
        }
        QCOMPARE(m_log->debug(INVALID), QStringList());
        // The rest stays as it was.
        QCOMPARE(message.from() + message.type() + message.version() + message.sourceSystem(),
                 QStringLiteral("3.0.0Lumora"));
        question.reset();
        QVERIFY(!message.dataobject());
        message.compileData(); // a list, which is no map
        QCOMPARE(m_log->debug(INVALID).size(), 1);
        message.setdata(QVariantMap());
        message.compileData();
        QCOMPARE(decoded(message), QStringLiteral("{\n}\n"));
    }

    void textsOfFormulas()
    {
        QCOMPARE(QString(CALYX_LATEX_START), QStringLiteral("<span class=\"mathquill-embedded-latex\">"));
        QCOMPARE(QString(CALYX_LATEX_END), QStringLiteral("</span>"));
    }

private:
    std::unique_ptr<LogRecorder> m_log;
};

QTEST_GUILESS_MAIN(tst_JsonSerializer)
#include "tst_JsonSerializer.moc"
