// The nine kinds of question.

#include "support/LogRecorder.h"

#include <CalyxClient/JsonSerializer>
#include <CalyxClient/PollType>
#include <CalyxClient/QuestionCreative>
#include <CalyxClient/QuestionFeedback>
#include <CalyxClient/QuestionMathFormula>
#include <CalyxClient/QuestionMultiChoice>
#include <CalyxClient/QuestionNumeric>
#include <CalyxClient/QuestionScale>
#include <CalyxClient/QuestionSort>
#include <CalyxClient/QuestionText>
#include <CalyxClient/QuestionWordSeed>
#include <CalyxClient/QuestionYesNo>

#include <QJsonDocument>
#include <QObject>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Calyx;

namespace {

using Make = QuestionBase* (*)();

// What a kind of question makes of a prior answer.
enum class Prior { Text, OneOption, OptionForEachCharacter };

template<class Question>
QuestionBase* make()
{
    return new Question;
}

QuestionBase* makeTrueFalse()
{
    auto* question = new QuestionYesNo;
    question->setTrueFalse(true);
    return question;
}

QVariantList chosen(const QStringList& ids)
{
    QVariantList list;
    for (const QString& id : ids)
        list.append(QVariantMap{{QStringLiteral("activityOptionId"), id}});
    return list;
}

QVariantMap jsonOf(const QObject& object)
{
    const LogRecorder quiet;
    return QJsonDocument::fromJson(JsonSerializer::serializeToJson(&object).toUtf8()).toVariant().toMap();
}

} // namespace

Q_DECLARE_METATYPE(Make)
Q_DECLARE_METATYPE(Prior)

class tst_Questions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newQuestionIsReadyForAPoll_data() { kinds(); }
    void newQuestionIsReadyForAPoll();
    void typeIsTheNameOfThePollType_data() { kinds(); }
    void typeIsTheNameOfThePollType();
    void typeCannotBeChanged_data() { kinds(); }
    void typeCannotBeChanged();
    void hasOptionsWhereTheKindHasThem_data() { kinds(); }
    void hasOptionsWhereTheKindHasThem();
    void priorAnswer_data() { kinds(); }
    void priorAnswer();
    void emptyPriorAnswer_data() { kinds(); }
    void emptyPriorAnswer();

    void yesNoFollowsItsFlag();
    void trueFalseFlagIsNoProperty();
    void priorAnswerTakesEachCharacterOnce();
    void multiChoiceCountsItsCorrectOptions();
    void textLimitsItsCharacters();
    void numericLimitsItsDecimals();

private:
    void kinds();
};

void tst_Questions::kinds()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("hasOptions");
    QTest::addColumn<Prior>("prior");

    QTest::newRow("QuestionYesNo") << Make(&make<QuestionYesNo>) << QStringLiteral("yes-no-other") << true
                                   << Prior::OneOption;
    QTest::newRow("QuestionYesNo, true/false")
        << Make(&makeTrueFalse) << QStringLiteral("true-false") << true << Prior::OneOption;
    QTest::newRow("QuestionMultiChoice") << Make(&make<QuestionMultiChoice>) << QStringLiteral("multiple")
                                         << true << Prior::OptionForEachCharacter;
    QTest::newRow("QuestionScale") << Make(&make<QuestionScale>) << QStringLiteral("scale") << true
                                   << Prior::OneOption;
    QTest::newRow("QuestionSort") << Make(&make<QuestionSort>) << QStringLiteral("sort") << true
                                  << Prior::OptionForEachCharacter;
    QTest::newRow("QuestionCreative")
        << Make(&make<QuestionCreative>) << QStringLiteral("creative") << true << Prior::OneOption;
    QTest::newRow("QuestionText") << Make(&make<QuestionText>) << QStringLiteral("text") << false
                                  << Prior::Text;
    QTest::newRow("QuestionNumeric") << Make(&make<QuestionNumeric>) << QStringLiteral("number") << false
                                     << Prior::Text;
    QTest::newRow("QuestionWordSeed")
        << Make(&make<QuestionWordSeed>) << QStringLiteral("word-seed") << false << Prior::Text;
    QTest::newRow("QuestionMathFormula")
        << Make(&make<QuestionMathFormula>) << QStringLiteral("math formula") << false << Prior::Text;
}

void tst_Questions::newQuestionIsReadyForAPoll()
{
    QFETCH(Make, make);
    const std::unique_ptr<QuestionBase> question(make());
    const QRegularExpression id(QStringLiteral("^[A-Za-z0-9]{8}$"));
    QVERIFY2(id.match(question->id()).hasMatch(), qPrintable(question->id()));
    const QVariantMap json = jsonOf(*question);
    QCOMPARE(json.value(QStringLiteral("id")).toString(), question->id());
    QCOMPARE(json.value(QStringLiteral("questionSetMode")).toString(), QStringLiteral("Poll"));
    QCOMPARE(json.value(QStringLiteral("card")), QVariant(QVariantMap()));
    QCOMPARE(json.value(QStringLiteral("feedBack")).toMap().value(QStringLiteral("allowResubmit")),
             QVariant(true));
}

void tst_Questions::typeIsTheNameOfThePollType()
{
    QFETCH(Make, make);
    QFETCH(QString, type);
    const std::unique_ptr<QuestionBase> question(make());
    QCOMPARE(question->getType(), type);
    QCOMPARE(question->property("type").toString(), type);
    QCOMPARE(jsonOf(*question).value(QStringLiteral("type")).toString(), type);
    QVERIFY(PollType::POLL_TYPE_STR().values().contains(type));
    QVERIFY(PollType::POLL_TYPE_ID().contains(type));
}

void tst_Questions::typeCannotBeChanged()
{
    QFETCH(Make, make);
    QFETCH(QString, type);
    const std::unique_ptr<QuestionBase> question(make());
    question->setType(QStringLiteral("other"));
    QCOMPARE(question->getType(), type);
    QCOMPARE(question->property("type").toString(), type);
}

void tst_Questions::hasOptionsWhereTheKindHasThem()
{
    QFETCH(Make, make);
    QFETCH(bool, hasOptions);
    const std::unique_ptr<QuestionBase> question(make());
    auto* withOptions = qobject_cast<QuestionBaseWithOptions*>(question.get());
    QCOMPARE(withOptions != nullptr, hasOptions);
    QCOMPARE(jsonOf(*question).contains(QStringLiteral("activityOptions")), hasOptions);
    QCOMPARE(jsonOf(*question).contains(QStringLiteral("metadata")), hasOptions);

    // The operation of the base finds the scheme of those that have one, and does no harm to the others.
    if (withOptions)
        withOptions->addActivityOption(QStringLiteral("a"), QString(), 1);
    question->inferOrdinalType();
    QCOMPARE(jsonOf(*question)
                 .value(QStringLiteral("metadata"))
                 .toMap()
                 .value(QStringLiteral("ordinalType"))
                 .toString(),
             hasOptions ? QStringLiteral("alpha-lower") : QString());
}

void tst_Questions::priorAnswer()
{
    QFETCH(Make, make);
    QFETCH(Prior, prior);
    const std::unique_ptr<QuestionBase> question(make());
    question->setPriorAnswer(QStringLiteral("CAB"));
    const auto* feedback = qobject_cast<QuestionFeedback*>(question->feedBack());
    QVERIFY(feedback);
    QCOMPARE(feedback->numberOfRetriesRemaining(), 99);
    switch (prior) {
    case Prior::Text:
        QCOMPARE(feedback->answer(), QVariant(QStringLiteral("CAB")));
        QCOMPARE(feedback->optionAnswers(), QVariantList());
        break;
    case Prior::OneOption:
        QVERIFY(!feedback->answer().isValid());
        QCOMPARE(feedback->optionAnswers(), chosen({QStringLiteral("CAB")}));
        break;
    case Prior::OptionForEachCharacter:
        QVERIFY(!feedback->answer().isValid());
        QCOMPARE(feedback->optionAnswers(),
                 chosen({QStringLiteral("C"), QStringLiteral("A"), QStringLiteral("B")}));
        break;
    }
}

void tst_Questions::emptyPriorAnswer()
{
    QFETCH(Make, make);
    QFETCH(Prior, prior);
    const std::unique_ptr<QuestionBase> question(make());
    auto* feedback = qobject_cast<QuestionFeedback*>(question->feedBack());
    QVERIFY(feedback);
    feedback->setoptionAnswers({1});
    question->setPriorAnswer(QStringLiteral(""));
    QCOMPARE(feedback->numberOfRetriesRemaining(), 99);
    switch (prior) {
    case Prior::Text:
        QCOMPARE(feedback->answer(), QVariant(QStringLiteral("")));
        QCOMPARE(feedback->optionAnswers(), QVariantList({1}));
        break;
    case Prior::OneOption:
        QCOMPARE(feedback->optionAnswers(), chosen({QStringLiteral("")}));
        break;
    case Prior::OptionForEachCharacter:
        QCOMPARE(feedback->optionAnswers(), QVariantList());
        break;
    }
}

void tst_Questions::yesNoFollowsItsFlag()
{
    QuestionYesNo question;
    QVERIFY(!question.isTrueFalse());
    QCOMPARE(question.getType(), QStringLiteral("yes-no-other"));
    question.setTrueFalse(true);
    QVERIFY(question.isTrueFalse());
    QCOMPARE(question.getType(), QStringLiteral("true-false"));
    question.setTrueFalse(false);
    QCOMPARE(question.getType(), QStringLiteral("yes-no-other"));
}

void tst_Questions::trueFalseFlagIsNoProperty()
{
    QuestionYesNo question;
    const QStringList keys = jsonOf(question).keys();
    QCOMPARE(keys.size(), 15);
    QVERIFY(keys.filter(QStringLiteral("true"), Qt::CaseInsensitive).isEmpty());
}

void tst_Questions::priorAnswerTakesEachCharacterOnce()
{
    QuestionSort question;
    question.setPriorAnswer(QStringLiteral("B,b B"));
    QCOMPARE(question.feedBack()->property("optionAnswers").toList(),
             chosen({QStringLiteral("B"), QStringLiteral(","), QStringLiteral("b"), QStringLiteral(" "),
                     QStringLiteral("B")}));
    question.setPriorAnswer(QStringLiteral("1"));
    QCOMPARE(question.feedBack()->property("optionAnswers").toList(), chosen({QStringLiteral("1")}));
}

void tst_Questions::multiChoiceCountsItsCorrectOptions()
{
    QuestionMultiChoice question;
    QCOMPARE(question.numberOfCorrectOptions(), 1);
    question.setnumberOfCorrectOptions(3);
    QCOMPARE(question.numberOfCorrectOptions(), 3);
    QCOMPARE(jsonOf(question).value(QStringLiteral("numberOfCorrectOptions")).toInt(), 3);
}

void tst_Questions::textLimitsItsCharacters()
{
    QuestionText question;
    QCOMPARE(question.maxChars(), 0);
    question.setmaxChars(140);
    QCOMPARE(question.maxChars(), 140);
    QCOMPARE(jsonOf(question).value(QStringLiteral("maxChars")).toInt(), 140);
}

void tst_Questions::numericLimitsItsDecimals()
{
    QuestionNumeric question;
    QCOMPARE(question.noOfDecimals(), 0);
    question.setnoOfDecimals(2);
    QCOMPARE(question.noOfDecimals(), 2);
    QCOMPARE(jsonOf(question).value(QStringLiteral("noOfDecimals")).toInt(), 2);
}

QTEST_GUILESS_MAIN(tst_Questions)
#include "tst_Questions.moc"
