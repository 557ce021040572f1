// What every kind of question keeps to, and what is a kind's own.

#include "support/LogRecorder.h"
#include "support/Rows.h"

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
        list.append(QVariantMap{{QStringLiteral("activityOptionId"), id}});
    return list;
}

} // namespace

Q_DECLARE_METATYPE(Make)

class tst_QuestionKinds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newQuestionIsReadyForAPoll_data() { kinds(); }

    void newQuestionIsReadyForAPoll()
    {
        const auto question = ofRow();
        const QRegularExpression id(QStringLiteral("^[A-Za-z0-9]{8}$"));
        QVERIFY2(id.match(question->id()).hasMatch(), qPrintable(question->id()));
        const QVariantMap json = jsonOf(*question);
        QCOMPARE(json.value("id").toString(), question->id());
        QCOMPARE(json.value("questionSetMode"), QVariant("Poll"));
        QCOMPARE(json.value("card"), QVariant(QVariantMap()));
        QCOMPARE(json.value("feedBack").toMap().value("allowResubmit"), QVariant(true));
    }

    void typeIsTheNameOfThePollTypeAndStays_data() { kinds(); }

    void typeIsTheNameOfThePollTypeAndStays()
    {
        const auto [make, type, hasOptions, prior] = row<Make, QString, bool, int>();
        const auto question = ofRow();
        QCOMPARE(jsonOf(*question).value("type").toString(), type);
        QVERIFY(PollType::POLL_TYPE_STR().values().contains(type));
        QVERIFY(PollType::POLL_TYPE_ID().contains(type));
        question->setType("other");
        QCOMPARE(question->getType(), type);
        QCOMPARE(question->property("type").toString(), type);
    }

    void hasOptionsWhereTheKindHasThem_data() { kinds(); }

    // The operation of the base finds the scheme of those that have one, and does no harm to the others.
    void hasOptionsWhereTheKindHasThem()
    {
        const auto [make, type, hasOptions, prior] = row<Make, QString, bool, int>();
        const auto question = ofRow();
        auto* withOptions = qobject_cast<QuestionBaseWithOptions*>(question.get());
        QCOMPARE(withOptions != nullptr, hasOptions);
        QCOMPARE(jsonOf(*question).contains("activityOptions"), hasOptions);
        QCOMPARE(jsonOf(*question).contains("metadata"), hasOptions);
        if (withOptions)
            withOptions->addActivityOption("a", QString(), 1);
        question->inferOrdinalType();
        QCOMPARE(jsonOf(*question).value("metadata").toMap().value("ordinalType").toString(),
                 QString(hasOptions ? "alpha-lower" : ""));
    }

    void priorAnswer_data() { kinds(); }

    void priorAnswer()
    {
        const auto [make, type, hasOptions, prior] = row<Make, QString, bool, int>();
        const auto question = ofRow();
        auto* feedback = qobject_cast<QuestionFeedback*>(question->feedBack());
        QVERIFY(feedback);
        for (const QString& answer : {QStringLiteral("B,b B"), QStringLiteral("1"), QStringLiteral("")}) {
            feedback->setnumberOfRetriesRemaining(0);
            question->setPriorAnswer(answer);
            QCOMPARE(feedback->numberOfRetriesRemaining(), 99);
            QCOMPARE(feedback->answer(), prior == Text ? QVariant(answer) : QVariant());
            QStringList ids{answer};
            if (prior == OptionForEachCharacter)
                ids = answer.split(QString(), Qt::SkipEmptyParts);
            QCOMPARE(feedback->optionAnswers(), prior == Text ? QVariantList() : chosen(ids));
        }
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

    static std::unique_ptr<QuestionBase> ofRow()
    {
        return std::unique_ptr<QuestionBase>(std::get<0>(row<Make, QString, bool, int>())());
    }
};

QTEST_GUILESS_MAIN(tst_QuestionKinds)
#include "tst_QuestionKinds.moc"
