#include "model/PollQuestionFactory.h"
#include "support/Rows.h"

#include <CalyxClient/ActivityOption>
#include <CalyxClient/QuestionMultiChoice>
#include <CalyxClient/QuestionNumeric>
#include <CalyxClient/QuestionYesNo>

#include <QTest>

#include <limits>

using namespace Calyx;

Q_DECLARE_METATYPE(Calyx::PollType::POLL_TYPE)
Q_DECLARE_METATYPE(Calyx::OrdinalType::ORDINAL_TYPE)

/// The question that each poll becomes. The bytes that go out are in tst_PresenterCollabPolls.
class tst_PollQuestionFactory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classOfEachPollType_data()
    {
        rows<PollType::POLL_TYPE, QString>({
            {"true or false", PollType::TRUE_FALSE, "Calyx::QuestionYesNo"},
            {"yes or no", PollType::YES_NO_OTHER, "Calyx::QuestionYesNo"},
            {"choice", PollType::MULTIPLE, "Calyx::QuestionMultiChoice"},
            {"scale", PollType::SCALE, "Calyx::QuestionScale"},
            {"sort", PollType::SORT, "Calyx::QuestionSort"},
            {"text", PollType::TEXT, "Calyx::QuestionText"},
            {"number", PollType::NUMBER, "Calyx::QuestionNumeric"},
            {"formula", PollType::MATH_FORMULA, "Calyx::QuestionMathFormula"},
        });
    }

    void classOfEachPollType()
    {
        const auto [type, expected] = row<PollType::POLL_TYPE, QString>();
        QObject parent;
        const auto* question = PollQuestionFactory::create(&parent, type, OrdinalType::ALPHA_UPPER, 2, 1);
        QVERIFY(question);
        QCOMPARE(QString::fromLatin1(question->metaObject()->className()), expected);
        QCOMPARE(question->parent(), &parent);
        QCOMPARE(question->getType(), PollType::POLL_TYPE_STR().value(type));
    }

    void optionsAreLabelledAndNumbered_data()
    {
        rows<PollType::POLL_TYPE, OrdinalType::ORDINAL_TYPE>({
            {"yes or no", PollType::YES_NO_OTHER, OrdinalType::YES_NO},
            {"choice", PollType::MULTIPLE, OrdinalType::ALPHA_LOWER},
            {"scale", PollType::SCALE, OrdinalType::AGREEMENT},
            {"sort", PollType::SORT, OrdinalType::NUMBER},
        });
    }

    void optionsAreLabelledAndNumbered()
    {
        const auto [type, ordinal] = row<PollType::POLL_TYPE, OrdinalType::ORDINAL_TYPE>();
        QObject parent;
        const auto* question = PollQuestionFactory::create(&parent, type, ordinal, 2, 1);
        const auto options = question->property("activityOptions").value<QList<QObject*>>();
        QCOMPARE(options.size(), 2);
        for (int i = 0; i < 2; ++i) {
            const auto* option = qobject_cast<ActivityOption*>(options.at(i));
            QVERIFY(option);
            QCOMPARE(option->id(), OrdinalType::optionId(ordinal, i));
            QCOMPARE(option->optionText(), OrdinalType::optionText(ordinal, i));
            QCOMPARE(option->displaySeqNumber(), i + 1);
        }
        QVERIFY(options.first()->property("id") != options.last()->property("id"));
    }

    void schemeIsInferredFromTheOptions()
    {
        QObject parent;
        for (const auto ordinal : {OrdinalType::ALPHA_UPPER, OrdinalType::ALPHA_LOWER, OrdinalType::NUMBER}) {
            const auto* question = PollQuestionFactory::create(&parent, PollType::MULTIPLE, ordinal, 3, 1);
            const auto* metadata = question->property("metadata").value<QObject*>();
            QVERIFY(metadata);
            QCOMPARE(metadata->property("ordinalType").toString(),
                     OrdinalType::ORDINAL_TYPE_STR().value(ordinal));
        }
    }

    void flagOfATrueFalsePoll()
    {
        QObject parent;
        for (const auto type : {PollType::TRUE_FALSE, PollType::YES_NO_OTHER}) {
            const auto* question = qobject_cast<QuestionYesNo*>(
                PollQuestionFactory::create(&parent, type, OrdinalType::TRUE_FALSE, 2, 0));
            QVERIFY(question);
            QCOMPARE(question->isTrueFalse(), type == PollType::TRUE_FALSE);
        }
    }

    void extraIsTheNumberOfCorrectOptions()
    {
        QObject parent;
        for (const int extra : {0, 1, 3, -1}) {
            const auto* question = qobject_cast<QuestionMultiChoice*>(
                PollQuestionFactory::create(&parent, PollType::MULTIPLE, OrdinalType::ALPHA_UPPER, 4, extra));
            QVERIFY(question);
            QCOMPARE(question->numberOfCorrectOptions(), extra);
        }
    }

    void optionCountOfANumberIsItsDecimals()
    {
        QObject parent;
        const auto* question = qobject_cast<QuestionNumeric*>(
            PollQuestionFactory::create(&parent, PollType::NUMBER, OrdinalType::NUMBER, 2, 5));
        QVERIFY(question);
        QCOMPARE(question->noOfDecimals(), 2);
        QVERIFY(!question->property("activityOptions").isValid());
    }

    void noOptionsWhereNoneAreWanted()
    {
        QObject parent;
        for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
            const auto* question =
                PollQuestionFactory::create(&parent, PollType::SORT, OrdinalType::ALPHA_UPPER, count, 1);
            QVERIFY(question);
            QVERIFY(question->property("activityOptions").value<QList<QObject*>>().isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(tst_PollQuestionFactory)
#include "tst_PollQuestionFactory.moc"
