// How far the serializer follows objects that hold objects.

#include "support/LogRecorder.h"
#include "support/Node.h"
#include "support/Rows.h"

#include <CalyxClient/JsonSerializer>

#include <QJsonDocument>
#include <QObject>
#include <QTest>

#include <limits>
#include <memory>
#include <vector>

using Calyx::JsonSerializer;

namespace {

const QString MAX_DEPTH = QStringLiteral(
    "[JsonSerializer] ERROR: Reached max depth! Increase MAX_RECURSE_DEPTH or check object references!");
const QString MAPPING = QStringLiteral("[JsonSerializer] Mapping sub-property: ");
const QString FAILED = QStringLiteral("[JsonSerializer] ERROR: Failed to map property: ");

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
    return map.isEmpty() ? 0 : 1 + chainLength(map.value(QStringLiteral("next")));
}

} // namespace

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

class tst_JsonSerializerDepth : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }
    void cleanup() { m_log.reset(); }

    void objectPropertyIsFollowedAndLogged()
    {
        Node inner(QStringLiteral("inner"));
        const Node outer(QStringLiteral("outer"), &inner);
        QCOMPARE(JsonSerializer::serializeToJson(&outer), QStringLiteral("{\n"
                                                                         "    \"name\": \"outer\",\n"
                                                                         "    \"next\": {\n"
                                                                         "        \"name\": \"inner\",\n"
                                                                         "        \"next\": null\n"
                                                                         "    }\n"
                                                                         "}\n"));
        QCOMPARE(m_log->debug(MAPPING).size(), 1);
        QVERIFY(m_log->debug(MAPPING).first().mid(MAPPING.size()).contains(QLatin1String("next")));
    }

    void objectWithoutPropertiesIsWrittenAsAnEmptyObject()
    {
        QObject plain;
        const Node outer(QStringLiteral("outer"), &plain);
        const QVariant next = mapOf(outer).value(QStringLiteral("next"));
        QCOMPARE(next.userType(), int(QMetaType::QVariantMap));
        QCOMPARE(next.toMap(), QVariantMap());
        QCOMPARE(m_log->debug(MAX_DEPTH), QStringList());
    }

    void depthFallsWithEachFollowedProperty()
    {
        // Each holds itself, so that the length of what is written shows the depth that it got.
        Node node(QStringLiteral("n"));
        node.next = &node;
        FourObjects object;
        object.alpha = object.beta = object.third = object.zulu = &node;
        const QVariantMap map = jsonOf(object);
        QCOMPARE(chainLength(map.value(QStringLiteral("alpha"))), 3);
        QCOMPARE(chainLength(map.value(QStringLiteral("beta"))), 2);
        QCOMPARE(chainLength(map.value(QStringLiteral("third"))), 1);
        QCOMPARE(chainLength(map.value(QStringLiteral("zulu"))), 0);
        QCOMPARE(map.value(QStringLiteral("number")).toInt(), 7);
        // Once for the end of each chain.
        QCOMPARE(m_log->debug(MAX_DEPTH).size(), 4);
    }

    void fourthObjectPropertyIsEmptyAndReportedOnce()
    {
        Node node(QStringLiteral("n"));
        FourObjects object;
        object.alpha = object.beta = object.third = object.zulu = &node;
        const QString full = QStringLiteral("{\n        \"name\": \"n\",\n        \"next\": null\n    }");
        QCOMPARE(JsonSerializer::serializeToJson(&object),
                 QStringLiteral("{\n    \"alpha\": ") + full + QStringLiteral(",\n    \"beta\": ") + full +
                     QStringLiteral(",\n    \"number\": 7,\n    \"third\": ") + full +
                     QStringLiteral(",\n    \"zulu\": {\n    }\n}\n"));
        QCOMPARE(m_log->debug(MAX_DEPTH).size(), 1);
        const QStringList mapped = m_log->debug(MAPPING);
        QCOMPARE(mapped.size(), 4);
        const QStringList keys{QStringLiteral("alpha"), QStringLiteral("beta"), QStringLiteral("third"),
                               QStringLiteral("zulu")};
        for (int i = 0; i < keys.size(); ++i)
            QVERIFY2(mapped.at(i).contains(keys.at(i)), qPrintable(mapped.at(i)));
    }

    void nullPointerStaysAndIsReported()
    {
        const Node node(QStringLiteral("alone"));
        const QVariant next = mapOf(node).value(QStringLiteral("next"));
        QCOMPARE(next.userType(), int(QMetaType::QObjectStar));
        QVERIFY(!next.value<QObject*>());
        QCOMPARE(m_log->debug(FAILED).size(), 1);
        QVERIFY(m_log->debug(FAILED).first().mid(FAILED.size()).contains(QLatin1String("next")));
        QCOMPARE(m_log->debug(MAPPING), QStringList());
        QVERIFY(JsonSerializer::serializeToJson(&node).contains(QLatin1String("    \"next\": null\n")));
    }

    void nullPointerDoesNotLowerTheDepth()
    {
        Node node(QStringLiteral("n"));
        FourObjects object;
        object.zulu = &node;
        QCOMPARE(jsonOf(object).value(QStringLiteral("zulu")).toMap().size(), 2);
        node.next = &node;
        QCOMPARE(chainLength(jsonOf(object).value(QStringLiteral("zulu"))), 3);
    }

    void depthOfZeroOrLessGivesNothing_data()
    {
        rows<int>({
            {"0", 0},
            {"-1", -1},
            {"smallest", std::numeric_limits<int>::min()},
        });
    }

    void depthOfZeroOrLessGivesNothing()
    {
        const auto [depth] = row<int>();
        const Node node(QStringLiteral("n"));
        QCOMPARE(mapOf(node, depth), QVariantMap());
        QCOMPARE(m_log->debug(), QStringList({MAX_DEPTH}));
    }

    void depthBoundsAChain_data()
    {
        columns<int>();
        for (int depth = 1; depth <= 7; ++depth)
            QTest::addRow("%d", depth) << depth;
    }

    void depthBoundsAChain()
    {
        const auto [depth] = row<int>();
        std::vector<std::unique_ptr<Node>> nodes;
        QObject* follower = nullptr;
        for (int i = 0; i < 10; ++i) {
            nodes.push_back(std::make_unique<Node>(QString::number(i), follower));
            follower = nodes.back().get();
        }
        QCOMPARE(chainLength(mapOf(*nodes.back(), depth)), depth);
        QCOMPARE(m_log->debug(MAX_DEPTH).size(), 1);
    }

    void objectThatHoldsItselfEnds()
    {
        Node node(QStringLiteral("self"));
        node.next = &node;
        QCOMPARE(chainLength(jsonOf(node)), 4);
        QCOMPARE(m_log->debug(MAX_DEPTH).size(), 1);
    }

    void derivedPointerIsNotFollowed()
    {
        Node node(QStringLiteral("derived"));
        Holder holder;
        holder.derived = &node;
        holder.anything = QVariant::fromValue(&node);
        const QVariantMap map = mapOf(holder);
        for (const QString& key : {QStringLiteral("derived"), QStringLiteral("anything")}) {
            QCOMPARE(map.value(key).userType(), qMetaTypeId<Node*>());
            QCOMPARE(map.value(key).value<Node*>(), &node);
        }
        // Only of the plain pointer, which is null.
        QCOMPARE(m_log->debug(FAILED).size(), 1);
        QCOMPARE(m_log->debug(MAPPING), QStringList());
        QVERIFY(!JsonSerializer::serializeToJson(&holder).contains(QLatin1String("\"name\"")));
    }

    void objectInsideAVariantPropertyIsFollowed()
    {
        Node node(QStringLiteral("boxed"));
        Holder holder;
        holder.anything = QVariant::fromValue<QObject*>(&node);
        QCOMPARE(
            jsonOf(holder).value(QStringLiteral("anything")).toMap().value(QStringLiteral("name")).toString(),
            QStringLiteral("boxed"));
    }

    void listOfObjectsIsExpandedInOrder()
    {
        Node one(QStringLiteral("zz"));
        QObject plain;
        Node two(QStringLiteral("aa"));
        const QVariantList list = JsonSerializer::buildArrayObjectMap({&one, &plain, &two});
        QCOMPARE(list.size(), 3);
        for (const QVariant& entry : list)
            QCOMPARE(entry.userType(), int(QMetaType::QVariantMap));
        QCOMPARE(list.at(0).toMap().value(QStringLiteral("name")).toString(), QStringLiteral("zz"));
        QCOMPARE(list.at(1).toMap(), QVariantMap());
        QCOMPARE(list.at(2).toMap().value(QStringLiteral("name")).toString(), QStringLiteral("aa"));

        Holder holder;
        holder.list = {&one, &two};
        QVERIFY(
            JsonSerializer::serializeToJson(&holder).contains(QLatin1String("    \"list\": [\n"
                                                                            "        {\n"
                                                                            "            \"name\": \"zz\",\n"
                                                                            "            \"next\": null\n"
                                                                            "        },\n"
                                                                            "        {\n"
                                                                            "            \"name\": \"aa\",\n"
                                                                            "            \"next\": null\n"
                                                                            "        }\n"
                                                                            "    ],\n")));
    }

    void emptyListOfObjectsIsAnEmptyArray()
    {
        QCOMPARE(JsonSerializer::buildArrayObjectMap({}), QVariantList());
        const Holder holder;
        QVERIFY(
            JsonSerializer::serializeToJson(&holder).contains(QLatin1String("    \"list\": [\n    ],\n")));
    }

    void listOfObjectsInsideAVariantIsExpanded()
    {
        Node node(QStringLiteral("boxed"));
        Holder holder;
        holder.anything = QVariant::fromValue(QList<QObject*>{&node});
        const QVariantList list = jsonOf(holder).value(QStringLiteral("anything")).toList();
        QCOMPARE(list.size(), 1);
        QCOMPARE(list.first().toMap().value(QStringLiteral("name")).toString(), QStringLiteral("boxed"));
    }

    void objectsInListsHaveDepthTwo()
    {
        Node node(QStringLiteral("self"));
        node.next = &node;
        QCOMPARE(chainLength(JsonSerializer::buildArrayObjectMap({&node}).value(0)), 2);
        Holder holder;
        holder.list = {&node, &node};
        const QVariantList list = jsonOf(holder).value(QStringLiteral("list")).toList();
        QCOMPARE(list.size(), 2);
        QCOMPARE(chainLength(list.at(0)), 2);
        QCOMPARE(chainLength(list.at(1)), 2);
    }

    void listDoesNotLowerTheDepthOfOtherProperties()
    {
        Node node(QStringLiteral("self"));
        node.next = &node;
        Holder holder;
        // "list" comes before "next".
        holder.list = {&node, &node, &node, &node, &node};
        holder.next = &node;
        QCOMPARE(chainLength(jsonOf(holder).value(QStringLiteral("next"))), 3);
    }

    void objectsInListsHaveLessDepthThanTheirOwner()
    {
        Node node(QStringLiteral("self"));
        node.next = &node;
        Holder holder;
        holder.list = {&node};
        const auto length = [&holder](int depth) {
            return chainLength(mapOf(holder, depth).value(QStringLiteral("list")).toList().value(0));
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
        const QVariantMap map = jsonOf(one);
        // One with depth 4, its list with 2, theirs with 1, and then nothing.
        const QVariantList second = map.value(QStringLiteral("list")).toList();
        QCOMPARE(second.size(), 2);
        const QVariantList third = second.first().toMap().value(QStringLiteral("list")).toList();
        QCOMPARE(third.size(), 2);
        const QVariantList fourth = third.first().toMap().value(QStringLiteral("list")).toList();
        QCOMPARE(fourth, QVariantList({QVariantMap(), QVariantMap()}));
        QCOMPARE(m_log->debug(MAX_DEPTH).size(), 8);
    }

    void nullPointerInAListGivesAnEmptyMap()
    {
        Node node(QStringLiteral("n"));
        const QVariantList list = JsonSerializer::buildArrayObjectMap({nullptr, &node});
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.at(0), QVariant(QVariantMap()));
        QCOMPARE(list.at(1).toMap().value(QStringLiteral("name")).toString(), QStringLiteral("n"));
    }

private:
    std::unique_ptr<LogRecorder> m_log;
};

QTEST_GUILESS_MAIN(tst_JsonSerializerDepth)
#include "tst_JsonSerializerDepth.moc"
