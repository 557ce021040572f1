#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/ActivityOption>
#include <CalyxClient/JsonSerializer>
#include <CalyxClient/OrdinalType>
#include <CalyxClient/QuestionBaseWithOptions>
#include <CalyxClient/QuestionMetadata>

#include <QJsonDocument>
#include <QMetaType>
#include <QObject>
#include <QPointer>
#include <QTest>

#include <memory>

using namespace Calyx;

namespace {

QVariantMap jsonOf(const QObject& object)
{
    return QJsonDocument::fromJson(JsonSerializer::serializeToJson(&object).toUtf8()).toVariant().toMap();
}

QList<QObject*> optionsOf(const QuestionBaseWithOptions& question)
{
    return question.getactivityOptions().value<QList<QObject*>>();
}

QString schemeOf(const QuestionBaseWithOptions& question)
{
    return question.metadata()->property("ordinalType").toString();
}

QVariantList indicesOf(const QuestionBaseWithOptions& question)
{
    return question.metadata()->property("options").toList();
}

void addOptions(QuestionBaseWithOptions* question, const QStringList& ids)
{
    for (int i = 0; i < ids.size(); ++i)
        question->addActivityOption(ids.at(i), QString(), i + 1);
}

} // namespace

class tst_QuestionBaseWithOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasNoOptionsAtFirst()
    {
        const QuestionBaseWithOptions question;
        QCOMPARE(question.getactivityOptions().userType(), qMetaTypeId<QList<QObject*>>());
        QVERIFY(optionsOf(question).isEmpty());
        QCOMPARE(schemeOf(question), QString());
        QCOMPARE(indicesOf(question), QVariantList());
        QVERIFY(JsonSerializer::serializeToJson(&question).startsWith(
            QLatin1String("{\n    \"activityOptions\": [\n    ],\n")));
    }

    void optionsAreListedInTheOrderOfTheirAddition()
    {
        QuestionBaseWithOptions question;
        question.addActivityOption(QStringLiteral("z"), QStringLiteral("first"), 9);
        question.addActivityOption(QStringLiteral("a"), QStringLiteral("second"), 3);
        question.addActivityOption(QStringLiteral("z"), QStringLiteral(""), -1);
        const QList<QObject*> options = optionsOf(question);
        QCOMPARE(options.size(), 3);
        QStringList seen;
        for (QObject* object : options) {
            const auto* option = qobject_cast<ActivityOption*>(object);
            QVERIFY(option);
            seen.append(QStringLiteral("%1/%2/%3")
                            .arg(option->id(), option->optionText())
                            .arg(option->displaySeqNumber()));
            QVERIFY(!option->math());
        }
        QCOMPARE(seen, QStringList({QStringLiteral("z/first/9"), QStringLiteral("a/second/3"),
                                    QStringLiteral("z//-1")}));
        QCOMPARE(question.property("activityOptions").value<QList<QObject*>>(), options);
        QCOMPARE(question.activityOptions().value<QList<QObject*>>(), options);
    }

    void optionsAreOwnedByTheQuestion()
    {
        auto question = std::make_unique<QuestionBaseWithOptions>();
        addOptions(question.get(), {QStringLiteral("A"), QStringLiteral("B")});
        const QPointer<QObject> option = optionsOf(*question).last();
        QCOMPARE(option->parent(), question.get());
        question.reset();
        QVERIFY(!option);
    }

    void optionsCannotBeSet()
    {
        QuestionBaseWithOptions question;
        addOptions(&question, {QStringLiteral("A")});
        QVERIFY(!question.setProperty("activityOptions", QVariantList()));
        QCOMPARE(optionsOf(question).size(), 1);
    }

    void deletedOptionIsNoLongerListed()
    {
        QuestionBaseWithOptions question;
        addOptions(&question, {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
        delete optionsOf(question).at(1);
        QStringList ids;
        for (const QVariant& option : jsonOf(question).value(QStringLiteral("activityOptions")).toList())
            ids.append(option.toMap().value(QStringLiteral("id")).toString());
        QCOMPARE(ids, QStringList({QStringLiteral("A"), QStringLiteral("C")}));
        delete optionsOf(question).first();
        question.inferOrdinalType();
        QCOMPARE(schemeOf(question), QString());
    }

    void jsonOfAQuestionWithOptions()
    {
        QuestionBaseWithOptions question;
        question.addActivityOption(QStringLiteral("B"), QStringLiteral("no"), 1);
        question.addActivityOption(QStringLiteral("A"), QStringLiteral("\"yes\""), 2);
        question.setOrdinals(OrdinalType::ALPHA_UPPER);
        const LogRecorder log;
        const QString json = JsonSerializer::serializeToJson(&question);
        QVERIFY2(json.startsWith(QStringLiteral("{\n"
                                                "    \"activityOptions\": [\n"
                                                "        {\n"
                                                "            \"displaySeqNumber\": 1,\n"
                                                "            \"id\": \"B\",\n"
                                                "            \"math\": false,\n"
                                                "            \"optionText\": \"no\"\n"
                                                "        },\n"
                                                "        {\n"
                                                "            \"displaySeqNumber\": 2,\n"
                                                "            \"id\": \"A\",\n"
                                                "            \"math\": false,\n"
                                                "            \"optionText\": \"\\\"yes\\\"\"\n"
                                                "        }\n"
                                                "    ],\n"
                                                "    \"activityType\": {\n"
                                                "    },\n"
                                                "    \"card\": {\n"
                                                "    },\n"
                                                "    \"feedBack\": {\n")),
                 qPrintable(json));
        QVERIFY2(json.contains(QStringLiteral("    \"metadata\": {\n"
                                              "        \"options\": [\n"
                                              "            0,\n"
                                              "            1\n"
                                              "        ],\n"
                                              "        \"ordinalType\": \"alpha-upper\"\n"
                                              "    },\n")),
                 qPrintable(json));
        QCOMPARE(log.debug(QStringLiteral("[JsonSerializer] ERROR")), QStringList());
    }

    void metadataSetterTakesBothPointerTypes()
    {
        QuestionBaseWithOptions question;
        QuestionMetadata metadata;
        question.setmetadata(&metadata);
        QCOMPARE(question.metadata(), &metadata);
        QObject plain;
        QVERIFY(QMetaObject::invokeMethod(&question, "setmetadata", Q_ARG(QObject*, &plain)));
        QCOMPARE(question.metadata(), &plain);
        QVERIFY(
            QMetaObject::invokeMethod(&question, "setmetadata", Q_ARG(Calyx::QuestionMetadata*, &metadata)));
        QCOMPARE(question.metadata(), &metadata);
        question.setmetadata(nullptr);
        QVERIFY(!question.metadata());
    }

    void replacedMetadataStaysUntilTheQuestionGoes()
    {
        auto question = std::make_unique<QuestionBaseWithOptions>();
        const QPointer<QObject> first = question->metadata();
        QuestionMetadata other;
        question->setmetadata(&other);
        QVERIFY(first);
        QCOMPARE(first->parent(), question.get());
        question.reset();
        QVERIFY(!first);
    }

    void metadataTypeIsRegistered()
    {
        const QuestionBaseWithOptions question;
        const int type = QMetaType::type("Calyx::QuestionMetadata*");
        QVERIFY(type != QMetaType::UnknownType);
        QVERIFY(QMetaType(type).flags() & QMetaType::PointerToQObject);
    }

    void setMetadataListsTheIndices_data()
    {
        rows<int, QVariantList>({
            {"4", 4, QVariantList{0, 1, 2, 3}},
            {"1", 1, QVariantList{0}},
            {"0", 0, QVariantList()},
            {"-3", -3, QVariantList()},
        });
    }

    void setMetadataListsTheIndices()
    {
        const auto [count, indices] = row<int, QVariantList>();
        QuestionBaseWithOptions question;
        question.setMetadata(QStringLiteral("any name"), count);
        QCOMPARE(schemeOf(question), QStringLiteral("any name"));
        QCOMPARE(indicesOf(question), indices);
        for (const QVariant& index : indicesOf(question))
            QCOMPARE(index.userType(), int(QMetaType::Int));
    }

    void setMetadataByValueNamesTheScheme_data()
    {
        columns<int, QString>();
        const auto names = OrdinalType::ORDINAL_TYPE_STR();
        QCOMPARE(names.size(), 11);
        for (auto name = names.begin(); name != names.end(); ++name)
            QTest::newRow(qPrintable(name.value())) << int(name.key()) << name.value();
    }

    void setMetadataByValueNamesTheScheme()
    {
        const auto [value, name] = row<int, QString>();
        QuestionBaseWithOptions question;
        question.setMetadata(static_cast<OrdinalType::ORDINAL_TYPE>(value), 2);
        QCOMPARE(schemeOf(question), name);
        QCOMPARE(indicesOf(question), QVariantList({0, 1}));
    }

    void setMetadataWithUnknownValueGivesAnEmptyName_data()
    {
        // All that the enumeration's type can hold.
        columns<int>();
        for (const int value : {11, 12, 15})
            QTest::addRow("%d", value) << value;
    }

    void setMetadataWithUnknownValueGivesAnEmptyName()
    {
        const auto [value] = row<int>();
        QuestionBaseWithOptions question;
        question.setMetadata(QStringLiteral("before"), 0);
        question.setMetadata(static_cast<OrdinalType::ORDINAL_TYPE>(value), 3);
        QCOMPARE(schemeOf(question), QString());
        QCOMPARE(indicesOf(question), QVariantList({0, 1, 2}));
    }

    void setMetadataReplacesWhatWasThere()
    {
        QuestionBaseWithOptions question;
        question.setMetadata(QStringLiteral("one"), 5);
        question.setMetadata(QStringLiteral("two"), 2);
        QCOMPARE(schemeOf(question), QStringLiteral("two"));
        QCOMPARE(indicesOf(question), QVariantList({0, 1}));
    }

    void setOrdinalsCountsTheOptions_data()
    {
        rows<QStringList, QVariantList>({
            {"four",
             QStringList{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D")},
             QVariantList{0, 1, 2, 3}},
            {"one", QStringList{QStringLiteral("x")}, QVariantList{0}},
            {"none", QStringList(), QVariantList()},
        });
    }

    void setOrdinalsCountsTheOptions()
    {
        const auto [ids, indices] = row<QStringList, QVariantList>();
        QuestionBaseWithOptions question;
        addOptions(&question, ids);
        question.setOrdinals(OrdinalType::ALPHA_UPPER);
        QCOMPARE(schemeOf(question), QStringLiteral("alpha-upper"));
        QCOMPARE(indicesOf(question), indices);
    }

    void metadataOperationsUseTheObjectThatWasSet()
    {
        QuestionBaseWithOptions question;
        QuestionMetadata metadata;
        question.setmetadata(&metadata);
        question.setMetadata(QStringLiteral("other"), 1);
        QCOMPARE(metadata.ordinalType(), QStringLiteral("other"));
        QCOMPARE(metadata.options(), QVariantList({0}));
    }

    void metadataOperationsWithoutMetadataAreDropped()
    {
        QuestionBaseWithOptions question;
        addOptions(&question, {QStringLiteral("A")});
        delete question.metadata();
        QVERIFY(!question.metadata());
        question.setMetadata(QStringLiteral("lost"), 1);
        question.setOrdinals(OrdinalType::NUMBER);
        question.inferOrdinalType();
        QVERIFY(jsonOf(question).value(QStringLiteral("metadata")).isNull());
    }

    void inferOrdinalTypeReadsTheFirstId_data()
    {
        columns<QStringList, QString>();
        QTest::newRow("A") << QStringList{QStringLiteral("A"), QStringLiteral("x")}
                           << QStringLiteral("alpha-upper");
        QTest::newRow("a") << QStringList{QStringLiteral("a")} << QStringLiteral("alpha-lower");
        QTest::newRow("0") << QStringList{QStringLiteral("0"), QStringLiteral("A")}
                           << QStringLiteral("number");
        QTest::newRow("1") << QStringList{QStringLiteral("1")} << QStringLiteral("number");
        for (const char* other : {"B", "b", "2", "00", "01", "AA", "aa", " A", "A ", "", "?"})
            QTest::addRow("other: '%s'", other)
                << QStringList{QString::fromLatin1(other), QStringLiteral("A")} << QString();
    }

    void inferOrdinalTypeReadsTheFirstId()
    {
        const auto [ids, scheme] = row<QStringList, QString>();
        QuestionBaseWithOptions question;
        addOptions(&question, ids);
        question.setMetadata(QStringLiteral("before"), 2);
        question.inferOrdinalType();
        QCOMPARE(schemeOf(question), scheme.isEmpty() ? QStringLiteral("before") : scheme);
        QCOMPARE(indicesOf(question), scheme.isEmpty() ? QVariantList({0, 1}) : QVariantList());
    }

    void inferOrdinalTypeWithoutOptionsChangesNothing()
    {
        QuestionBaseWithOptions question;
        question.setMetadata(QStringLiteral("before"), 2);
        question.inferOrdinalType();
        QCOMPARE(schemeOf(question), QStringLiteral("before"));
        QCOMPARE(indicesOf(question), QVariantList({0, 1}));
    }

    void inferOrdinalTypeEmptiesTheIndices()
    {
        QuestionBaseWithOptions question;
        addOptions(&question, {QStringLiteral("A"), QStringLiteral("B")});
        question.setOrdinals(OrdinalType::ALPHA_UPPER);
        QCOMPARE(indicesOf(question).size(), 2);
        QuestionBase& base = question;
        base.inferOrdinalType();
        QCOMPARE(schemeOf(question), QStringLiteral("alpha-upper"));
        QCOMPARE(indicesOf(question), QVariantList());
    }

    void priorAnswerWithoutFeedbackIsDropped()
    {
        QuestionBaseWithOptions question;
        delete question.feedBack();
        question.setPriorAnswer(QStringLiteral("A"));
        QVERIFY(!question.feedBack());
    }
};

QTEST_GUILESS_MAIN(tst_QuestionBaseWithOptions)
#include "tst_QuestionBaseWithOptions.moc"
