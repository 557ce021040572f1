// Questions: the base, those with options, and what each kind makes of them. Their properties are in
// tst_DataClasses.

#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/TypeNamed.h"

#include <CalyxClient/ActivityOption>
#include <CalyxClient/JsonSerializer>
#include <CalyxClient/OrdinalType>
#include <CalyxClient/PollType>
#include <CalyxClient/QuestionCreative>
#include <CalyxClient/QuestionFeedback>
#include <CalyxClient/QuestionMathFormula>
#include <CalyxClient/QuestionMetadata>
#include <CalyxClient/QuestionMultiChoice>
#include <CalyxClient/QuestionNumeric>
#include <CalyxClient/QuestionScale>
#include <CalyxClient/QuestionSort>
#include <CalyxClient/QuestionText>
#include <CalyxClient/QuestionWordSeed>
#include <CalyxClient/QuestionYesNo>

#include <QJsonDocument>
#include <QMetaType>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Calyx;

namespace {

using Make = QuestionBase* (*)();

/// What a kind makes of a prior answer.
enum Prior { Text, OneOption, OptionForEachCharacter };

QuestionBase* trueFalse()
{
    auto question = std::make_unique<QuestionYesNo>();
    question->setTrueFalse(true);
    return question.release();
}

template<class Question>
QuestionBase* make()
{
    return new Question;
}

/// What the service gets for \p object.
QVariantMap jsonOf(const QObject& object)
{
    const LogRecorder quiet;
    return QJsonDocument::fromJson(JsonSerializer::serializeToJson(&object).toUtf8()).toVariant().toMap();
}

/// The option answers of a learner who has chosen \p ids, in order.
QVariantList chosen(const QStringList& ids)
{
    QVariantList list;
    for (const QString& id : ids)
        list.append(QVariantMap{{"activityOptionId", id}});
    return list;
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

Q_DECLARE_METATYPE(Make)

/// Tells which of the operations that a question class may override were called.
class Overriding : public QuestionBase
{
    Q_OBJECT

public:
    QString getType() const override { return "own"; }
    void inferOrdinalType() override { calls.append("infer"); }
    void setPriorAnswer(QString answer) override { calls.append(answer); }

    QStringList calls;
};

class tst_QuestionBase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void idIsEightLettersAndDigits()
    {
        const QuestionBase question;
        const QRegularExpression id("^[A-Za-z0-9]{8}$");
        QVERIFY2(id.match(question.id()).hasMatch(), qPrintable(question.id()));
        // Fresh: no longer the same once the second that seeds it is over.
        QTRY_VERIFY(QuestionBase().id() != question.id());
    }

    void typeIsWhatWasSet()
    {
        QuestionBase question;
        QCOMPARE(question.getType(), QString());
        question.setType("any text");
        QCOMPARE(question.getType(), QStringLiteral("any text"));
        QCOMPARE(question.property("type").toString(), QStringLiteral("any text"));
    }

    void overridesAreReachedThroughTheBase()
    {
        Overriding overriding;
        QuestionBase& question = overriding;
        question.setType("set");
        QCOMPARE(question.getType(), QStringLiteral("own"));
        QCOMPARE(question.type(), QStringLiteral("own"));
        QCOMPARE(jsonOf(question).value("type").toString(), QStringLiteral("own"));
        question.inferOrdinalType();
        question.setPriorAnswer("A");
        QCOMPARE(overriding.calls, QStringList({"infer", "A"}));
    }

    void typeIsTheNameOfThePollTypeAndStays_data() { kinds(); }

    void typeIsTheNameOfThePollTypeAndStays()
    {
        const auto [make, type, hasOptions, prior] = row<Make, QString, bool, int>();
        const std::unique_ptr<QuestionBase> question(make());
        QCOMPARE(jsonOf(*question).value("type").toString(), type);
        QVERIFY(PollType::POLL_TYPE_ID().contains(type));
        question->setType("other");
        QCOMPARE(question->getType(), type);
        QCOMPARE(question->property("type").toString(), type);
    }

    void typeFollowsTheFlagOfYesNo()
    {
        QuestionYesNo question;
        QVERIFY(!question.isTrueFalse());
        question.setTrueFalse(true);
        QVERIFY(question.isTrueFalse());
        QCOMPARE(question.getType(), QStringLiteral("true-false"));
        question.setTrueFalse(false);
        QCOMPARE(question.getType(), QStringLiteral("yes-no-other"));
    }

    void schemeIsInferredWhereTheKindHasOptions_data() { kinds(); }

    // The operation of the base finds the scheme of those that have one, and does no harm to the others.
    void schemeIsInferredWhereTheKindHasOptions()
    {
        const auto [make, type, hasOptions, prior] = row<Make, QString, bool, int>();
        const std::unique_ptr<QuestionBase> question(make());
        auto* withOptions = qobject_cast<QuestionBaseWithOptions*>(question.get());
        QCOMPARE(withOptions != nullptr, hasOptions);
        if (withOptions)
            withOptions->addActivityOption("a", QString(), 1);
        QVariantMap expected = jsonOf(*question);
        if (hasOptions)
            expected["metadata"] = QVariantMap{{"options", QVariantList()}, {"ordinalType", "alpha-lower"}};
        question->inferOrdinalType();
        QCOMPARE(jsonOf(*question), expected);
    }

    void priorAnswer_data() { kinds(); }

    void priorAnswer()
    {
        const auto [make, type, hasOptions, prior] = row<Make, QString, bool, int>();
        const std::unique_ptr<QuestionBase> question(make());
        auto* feedback = qobject_cast<QuestionFeedback*>(question->feedBack());
        QVERIFY(feedback);
        for (const QString answer : {"B,b B", "1", ""}) {
            feedback->setnumberOfRetriesRemaining(0);
            question->setPriorAnswer(answer);
            QCOMPARE(feedback->numberOfRetriesRemaining(), 99);
            QCOMPARE(feedback->answer(), prior == Text ? QVariant(answer) : QVariant());
            QStringList ids{answer};
            if (prior == OptionForEachCharacter)
                ids = answer.split(QString(), Qt::SkipEmptyParts);
            QCOMPARE(feedback->optionAnswers(), prior == Text ? QVariantList() : chosen(ids));
        }
        delete feedback;
        question->setPriorAnswer("lost");
        question->configurePriorAnswer();
        QVERIFY(!question->feedBack());
    }

    void configurePriorAnswerLeavesTheAnswer()
    {
        QuestionBase question;
        question.configurePriorAnswer();
        auto* feedback = qobject_cast<QuestionFeedback*>(question.feedBack());
        QCOMPARE(feedback->numberOfRetriesRemaining(), 99);
        QVERIFY(!feedback->answer().isValid());
        QCOMPARE(feedback->optionAnswers(), QVariantList());
    }

    void priorAnswerGoesToTheFeedbackThatWasSet()
    {
        QuestionBase question;
        const QPointer<QObject> first = question.feedBack();
        QuestionFeedback feedback;
        question.setfeedBack(&feedback);
        question.setPriorAnswer("new");
        QCOMPARE(feedback.answer(), QVariant("new"));
        QCOMPARE(feedback.numberOfRetriesRemaining(), 99);
        QCOMPARE(first->property("numberOfRetriesRemaining"), QVariant(0));
    }

    void settersTakeBothPointerTypes()
    {
        QuestionBaseWithOptions question;
        QuestionFeedback feedback;
        QuestionMetadata metadata;
        QObject plain;
        question.setfeedBack(&feedback);
        question.setmetadata(&metadata);
        QCOMPARE(question.feedBack(), &feedback);
        QCOMPARE(question.metadata(), &metadata);
        QVERIFY(QMetaObject::invokeMethod(&question, "setfeedBack", Q_ARG(QObject*, &plain)));
        QVERIFY(QMetaObject::invokeMethod(&question, "setmetadata", Q_ARG(QObject*, &plain)));
        QCOMPARE(question.feedBack(), &plain);
        QCOMPARE(question.metadata(), &plain);
        QVERIFY(
            QMetaObject::invokeMethod(&question, "setfeedBack", Q_ARG(Calyx::QuestionFeedback*, &feedback)));
        QVERIFY(
            QMetaObject::invokeMethod(&question, "setmetadata", Q_ARG(Calyx::QuestionMetadata*, &metadata)));
        QCOMPARE(question.feedBack(), &feedback);
        QCOMPARE(question.metadata(), &metadata);
        question.setfeedBack(nullptr);
        question.setmetadata(nullptr);
        QVERIFY(!question.feedBack() && !question.metadata());
    }

    void pointerTypesAreRegistered()
    {
        const QuestionBaseWithOptions question;
        for (const char* name : {"Calyx::QuestionFeedback*", "Calyx::QuestionMetadata*"}) {
            const int type = typeNamed(name);
            QVERIFY2(type != QMetaType::UnknownType, name);
            QVERIFY2(QMetaType(type).flags() & QMetaType::PointerToQObject, name);
        }
    }

    void replacedObjectsStayUntilTheQuestionGoes()
    {
        auto question = std::make_unique<QuestionBaseWithOptions>();
        const QList<QPointer<QObject>> replaced{question->feedBack(), question->card(), question->metadata()};
        QObject other;
        question->setfeedBack(&other);
        question->setcard(&other);
        question->setmetadata(&other);
        for (const auto& object : replaced)
            QVERIFY(object && object->parent() == question.get());
        question.reset();
        for (const auto& object : replaced)
            QVERIFY(!object);
    }

    void deletedObjectsReadAsNull()
    {
        QuestionBaseWithOptions question;
        addOptions(&question, {"A"});
        delete question.feedBack();
        delete question.card();
        delete question.metadata();
        QVERIFY(!question.feedBack() && !question.card() && !question.metadata());
        const QVariantMap json = jsonOf(question);
        for (const char* key : {"feedBack", "card", "metadata"})
            QVERIFY2(json.contains(key) && json.value(key).isNull(), key);
        // What would change the metadata is dropped.
        question.setMetadata("lost", 1);
        question.setOrdinals(OrdinalType::NUMBER);
        question.inferOrdinalType();
        QVERIFY(!question.metadata());
    }

    void optionsAreListedInTheOrderOfTheirAddition()
    {
        QuestionBaseWithOptions question;
        question.addActivityOption("z", "first", 9);
        question.addActivityOption("a", "\"second\"", 3);
        question.addActivityOption("z", "", -1);
        QStringList seen;
        for (QObject* object : optionsOf(question)) {
            const auto* option = qobject_cast<ActivityOption*>(object);
            QVERIFY(option);
            seen.append(option->id() + '/' + option->optionText() + '/' +
                        QString::number(option->displaySeqNumber()));
            QVERIFY(!option->math());
        }
        QCOMPARE(seen, QStringList({"z/first/9", "a/\"second\"/3", "z//-1"}));
        QCOMPARE(question.activityOptions().value<QList<QObject*>>(), optionsOf(question));
        const QVariantMap second{
            {"id", "a"}, {"optionText", "\"second\""}, {"displaySeqNumber", 3}, {"math", false}};
        QCOMPARE(jsonOf(question).value("activityOptions").toList().value(1), QVariant(second));
    }

    void optionsAreOwnedByTheQuestion()
    {
        auto question = std::make_unique<QuestionBaseWithOptions>();
        addOptions(question.get(), {"A", "B"});
        const QPointer<QObject> option = optionsOf(*question).last();
        QCOMPARE(option->parent(), question.get());
        question.reset();
        QVERIFY(!option);
    }

    void deletedOptionIsNoLongerListed()
    {
        QuestionBaseWithOptions question;
        addOptions(&question, {"A", "B", "C"});
        delete optionsOf(question).at(1);
        QStringList ids;
        for (const QVariant& option : jsonOf(question).value("activityOptions").toList())
            ids.append(option.toMap().value("id").toString());
        QCOMPARE(ids, QStringList({"A", "C"}));
        delete optionsOf(question).first();
        question.inferOrdinalType();
        QCOMPARE(schemeOf(question), QString());
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
        question.setMetadata("before", 5);
        question.setMetadata("any name", count);
        QCOMPARE(schemeOf(question), QStringLiteral("any name"));
        QCOMPARE(indicesOf(question), indices);
        for (const QVariant& index : indicesOf(question))
            QCOMPARE(index.userType(), int(QMetaType::Int));
    }

    void setMetadataByValueNamesTheScheme()
    {
        QuestionBaseWithOptions question;
        // All that the enumeration's type can hold: those without a name give an empty one.
        for (int value = 0; value < 16; ++value) {
            const auto scheme = static_cast<OrdinalType::ORDINAL_TYPE>(value);
            question.setMetadata(scheme, 2);
            QCOMPARE(schemeOf(question), OrdinalType::ORDINAL_TYPE_STR().value(scheme));
            QCOMPARE(indicesOf(question), QVariantList({0, 1}));
        }
    }

    void setOrdinalsCountsTheOptions()
    {
        QuestionBaseWithOptions question;
        QuestionMetadata metadata;
        question.setmetadata(&metadata);
        for (const QVariantList& indices : {QVariantList(), QVariantList{0}, QVariantList{0, 1}}) {
            question.setOrdinals(OrdinalType::ALPHA_UPPER);
            QCOMPARE(metadata.ordinalType(), QStringLiteral("alpha-upper"));
            QCOMPARE(metadata.options(), indices);
            addOptions(&question, {"x"});
        }
    }

    void inferOrdinalTypeReadsTheFirstId_data()
    {
        rows<QStringList, QString>({
            {"A", QStringList{"A", "x"}, "alpha-upper"},
            {"a", QStringList{"a"}, "alpha-lower"},
            {"0", QStringList{"0", "A"}, "number"},
            {"1", QStringList{"1"}, "number"},
            {"no options", QStringList(), QString()},
        });
        for (const char* other : {"B", "b", "2", "00", "01", "AA", "aa", " A", "A ", "", "?"})
            QTest::addRow("other: '%s'", other) << QStringList{other, "A"} << QString();
    }

    void inferOrdinalTypeReadsTheFirstId()
    {
        const auto [ids, scheme] = row<QStringList, QString>();
        QuestionBaseWithOptions question;
        addOptions(&question, ids);
        question.setMetadata("before", 2);
        question.inferOrdinalType();
        QCOMPARE(schemeOf(question), scheme.isEmpty() ? QString("before") : scheme);
        QCOMPARE(indicesOf(question), scheme.isEmpty() ? QVariantList({0, 1}) : QVariantList());
    }

private:
    void kinds()
    {
        rows<Make, QString, bool, int>({
            {"yes-no-other", &make<QuestionYesNo>, "yes-no-other", true, OneOption},
            {"true-false", &trueFalse, "true-false", true, OneOption},
            {"multiple", &make<QuestionMultiChoice>, "multiple", true, OptionForEachCharacter},
            {"scale", &make<QuestionScale>, "scale", true, OneOption},
            {"sort", &make<QuestionSort>, "sort", true, OptionForEachCharacter},
            {"creative", &make<QuestionCreative>, "creative", true, OneOption},
            {"text", &make<QuestionText>, "text", false, Text},
            {"word-seed", &make<QuestionWordSeed>, "word-seed", false, Text},
            {"number", &make<QuestionNumeric>, "number", false, Text},
            {"math formula", &make<QuestionMathFormula>, "math formula", false, Text},
        });
    }
};

QTEST_GUILESS_MAIN(tst_QuestionBase)
#include "tst_QuestionBase.moc"
