// Questions: the base, those with options, and what each kind makes of them; the tables of poll types and of
// the schemes by which options are labelled. Their properties are in tst_DataClasses.

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
#include <type_traits>

using namespace Calyx;
using OrdinalType::ORDINAL_TYPE;
using PollType::POLL_TYPE;

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

    void priorAnswerGoesToTheFeedbackThatWasSet()
    {
        QuestionBase question;
        const QPointer<QObject> first = question.feedBack();
        QuestionFeedback feedback;
        question.setfeedBack(&feedback);
        question.configurePriorAnswer(); // which leaves the answer
        QCOMPARE(feedback.numberOfRetriesRemaining(), 99);
        QVERIFY(!feedback.answer().isValid() && feedback.optionAnswers().isEmpty());
        feedback.setnumberOfRetriesRemaining(0);
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
        for (const char* name : {"Calyx::QuestionFeedback*", "Calyx::QuestionMetadata*"})
            QVERIFY2(QMetaType(typeNamed(name)).flags() & QMetaType::PointerToQObject, name);
    }

    void optionsAndReplacedObjectsStayUntilTheQuestionGoes()
    {
        auto question = std::make_unique<QuestionBaseWithOptions>();
        addOptions(question.get(), {"A", "B"});
        const QList<QPointer<QObject>> replaced{question->feedBack(), question->card(), question->metadata(),
                                                optionsOf(*question).last()};
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

    void nameAndIdOfEachType_data()
    {
        rows<int, int, QString, QString>({
            {"0", PollType::TRUE_FALSE, 0, "true-false", "3c476afbcfce45eda0b44df4737c3d27"},
            {"1", PollType::YES_NO_OTHER, 1, "yes-no-other", "3c476afbcfce45eda0b44df4737c3d27"},
            {"2", PollType::MULTIPLE, 2, "multiple", "8755bfc923cb492094df5c842a30da5f"},
            {"3", PollType::SCALE, 3, "scale", "c80eb89f2c7240fb83d53069bf4c1f2c"},
            {"4", PollType::SORT, 4, "sort", "be8a3a7f5d624a798ec54900385a9eb8"},
            {"5", PollType::TEXT, 5, "text", "6efc81c52cfe4502976de55df9af2f89"},
            {"6", PollType::WORD_SEED, 6, "word-seed", "cfd9a136d9c44699ae1d7f489f6c513b"},
            {"7", PollType::NUMBER, 7, "number", "24e7bda40c4140f896648511a5782466"},
            {"8", PollType::CREATIVE, 8, "creative", "5446bd7896d54c7d84e2aeb75904ddab"},
            {"9", PollType::MATH_FORMULA, 9, "math formula", "9f31dd1a55374c49a3127b8f94a1f1a6"},
        });
    }
    void nameAndIdOfEachType()
    {
        const auto [type, value, name, id] = row<int, int, QString, QString>();
        QCOMPARE(type, value);
        QCOMPARE(PollType::POLL_TYPE_STR().value(POLL_TYPE(value)), name);
        QCOMPARE(PollType::POLL_TYPE_ID().value(name), id);
    }

    void optionsOfEachScheme_data()
    {
        rows<int, int, QString, QString, QString>({
            {"0", OrdinalType::TRUE_FALSE, 0, "true-false", "A B ? ?", "TRUE FALSE DONTKNOW DONTKNOW"},
            {"1", OrdinalType::YES_NO, 1, "yes-no", "A B ? ?", "YES NO DONTKNOW DONTKNOW"},
            {"2", OrdinalType::YES_NO_MAYBE, 2, "yes-no-maybe", "A B ? ?", "YES NO DONTKNOW DONTKNOW"},
            {"3", OrdinalType::YES_NO_UNSURE, 3, "yes-no-unsure", "A B ? ?", "YES NO DONTKNOW DONTKNOW"},
            {"4", OrdinalType::YES_NO_OTHER, 4, "yes-no-other", "A B ? ?", "YES NO DONTKNOW DONTKNOW"},
            {"5", OrdinalType::ALPHA_UPPER, 5, "alpha-upper", "A B C D", "   "},
            {"6", OrdinalType::ALPHA_LOWER, 6, "alpha-lower", "a b c d", "   "},
            {"7", OrdinalType::NUMBER, 7, "number", "0 1 2 3", "   "},
            {"8", OrdinalType::AGREEMENT, 8, "agreement", "0 1 2 3", "   "},
            {"9", OrdinalType::CONFIDENCE, 9, "confidence", "0 1 2 3", "   "},
            {"10", OrdinalType::GENERIC, 10, "generic", "0 1 2 3", "   "},
        });
    }
    void optionsOfEachScheme()
    {
        const auto [scheme, value, name, ids, texts] = row<int, int, QString, QString, QString>();
        QCOMPARE(scheme, value);
        QCOMPARE(OrdinalType::ORDINAL_TYPE_STR().value(ORDINAL_TYPE(value)), name);
        QStringList madeIds;
        QStringList madeTexts;
        for (int i = 0; i < 4; ++i) {
            madeIds.append(OrdinalType::optionId(ORDINAL_TYPE(value), i));
            madeTexts.append(OrdinalType::optionText(ORDINAL_TYPE(value), i));
        }
        QCOMPARE(madeIds.join(' '), ids);
        QCOMPARE(madeTexts.join(' '), texts);
    }

    void lettersAndNumbersGoOnAndOthersAreUnknown()
    {
        QCOMPARE(OrdinalType::optionId(OrdinalType::ALPHA_UPPER, 25), QStringLiteral("Z"));
        QCOMPARE(OrdinalType::optionId(OrdinalType::ALPHA_LOWER, 25), QStringLiteral("z"));
        QCOMPARE(OrdinalType::optionId(OrdinalType::ALPHA_UPPER, 26), QStringLiteral("["));
        QCOMPARE(OrdinalType::optionId(OrdinalType::NUMBER, 10), QStringLiteral("10"));
        QCOMPARE(OrdinalType::optionId(OrdinalType::GENERIC, 123), QStringLiteral("123"));
        for (int i = 2; i < 40; ++i) {
            QCOMPARE(OrdinalType::optionId(OrdinalType::YES_NO, i), QStringLiteral("?"));
            QCOMPARE(OrdinalType::optionText(OrdinalType::TRUE_FALSE, i), QStringLiteral("DONTKNOW"));
        }
    }

    void tablesHoldNothingElseAndAreMadeAnewOnEachCall()
    {
        static_assert(std::is_same_v<decltype(PollType::POLL_TYPE_STR()), QMap<POLL_TYPE, QString>>);
        static_assert(std::is_same_v<decltype(PollType::POLL_TYPE_ID()), QMap<QString, QString>>);
        static_assert(std::is_same_v<decltype(OrdinalType::ORDINAL_TYPE_STR()), QMap<ORDINAL_TYPE, QString>>);
        for (int times = 0; times < 2; ++times) {
            QCOMPARE(PollType::POLL_TYPE_STR().size(), 10);
            QCOMPARE(PollType::POLL_TYPE_ID().size(), 10);
            QCOMPARE(OrdinalType::ORDINAL_TYPE_STR().size(), 11);
            PollType::POLL_TYPE_STR().clear();
            PollType::POLL_TYPE_ID().clear();
            OrdinalType::ORDINAL_TYPE_STR().clear();
        }
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
