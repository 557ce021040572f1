#include "model/PollQuestionFactory.h"

#include <CalyxClient/ActivityOption>
#include <CalyxClient/QuestionBaseWithOptions>
#include <CalyxClient/QuestionMetadata>
#include <CalyxClient/QuestionMultiChoice>
#include <CalyxClient/QuestionNumeric>
#include <CalyxClient/QuestionYesNo>

#include <QTest>

#include <limits>

using namespace Calyx;

Q_DECLARE_METATYPE(Calyx::PollType::POLL_TYPE)
Q_DECLARE_METATYPE(Calyx::OrdinalType::ORDINAL_TYPE)

/// The question that each poll becomes. The bytes that go out are in tst_PresenterCollabPollQuestions.
class tst_PollQuestionFactory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classOfEachPollType_data()
    {
        QTest::addColumn<PollType::POLL_TYPE>("type");
        QTest::addColumn<QString>("expected");
        const auto row = [](PollType::POLL_TYPE type, const char* expected) {
            QTest::newRow(expected) << type << QString::fromLatin1(expected);
        };
        QTest::newRow("true or false") << PollType::TRUE_FALSE << QStringLiteral("Calyx::QuestionYesNo");
        row(PollType::YES_NO_OTHER, "Calyx::QuestionYesNo");
        row(PollType::MULTIPLE, "Calyx::QuestionMultiChoice");
        row(PollType::SCALE, "Calyx::QuestionScale");
        row(PollType::SORT, "Calyx::QuestionSort");
        row(PollType::TEXT, "Calyx::QuestionText");
        row(PollType::NUMBER, "Calyx::QuestionNumeric");
        row(PollType::MATH_FORMULA, "Calyx::QuestionMathFormula");
    }

    void classOfEachPollType()
    {
        QFETCH(PollType::POLL_TYPE, type);
        QObject parent;
        const auto* question = PollQuestionFactory::create(&parent, type, OrdinalType::ALPHA_UPPER, 2, 1);
        QVERIFY(question);
        QTEST(QString::fromLatin1(question->metaObject()->className()), "expected");
        QCOMPARE(question->parent(), &parent);
        QCOMPARE(question->getType(), PollType::POLL_TYPE_STR().value(type));
    }

    void pollDocumentsHaveNoQuestion_data()
    {
        QTest::addColumn<PollType::POLL_TYPE>("type");
        QTest::newRow("word seed") << PollType::WORD_SEED;
        QTest::newRow("creative") << PollType::CREATIVE;
    }

    void pollDocumentsHaveNoQuestion()
    {
        QFETCH(PollType::POLL_TYPE, type);
        QObject parent;
        QVERIFY(!PollQuestionFactory::create(&parent, type, OrdinalType::ALPHA_UPPER, 2, 1));
        QVERIFY(parent.children().isEmpty());
    }

    void optionsAreLabelledAndNumbered_data()
    {
        QTest::addColumn<PollType::POLL_TYPE>("type");
        QTest::addColumn<OrdinalType::ORDINAL_TYPE>("ordinal");
        QTest::newRow("yes or no") << PollType::YES_NO_OTHER << OrdinalType::YES_NO;
        QTest::newRow("choice") << PollType::MULTIPLE << OrdinalType::ALPHA_LOWER;
        QTest::newRow("scale") << PollType::SCALE << OrdinalType::AGREEMENT;
        QTest::newRow("sort") << PollType::SORT << OrdinalType::NUMBER;
    }

    void optionsAreLabelledAndNumbered()
    {
        QFETCH(PollType::POLL_TYPE, type);
        QFETCH(OrdinalType::ORDINAL_TYPE, ordinal);
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

    void schemeIsInferredFromTheOptions_data()
    {
        QTest::addColumn<OrdinalType::ORDINAL_TYPE>("ordinal");
        QTest::addColumn<QString>("expected");
        QTest::newRow("capitals") << OrdinalType::ALPHA_UPPER << QStringLiteral("alpha-upper");
        QTest::newRow("small letters") << OrdinalType::ALPHA_LOWER << QStringLiteral("alpha-lower");
        QTest::newRow("numbers") << OrdinalType::NUMBER << QStringLiteral("number");
    }

    void schemeIsInferredFromTheOptions()
    {
        QFETCH(OrdinalType::ORDINAL_TYPE, ordinal);
        QObject parent;
        const auto* question = PollQuestionFactory::create(&parent, PollType::MULTIPLE, ordinal, 3, 1);
        const auto* metadata = question->property("metadata").value<QObject*>();
        QVERIFY(metadata);
        QTEST(metadata->property("ordinalType").toString(), "expected");
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

    void noOptionsWhereNoneAreWanted_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("none") << 0;
        QTest::newRow("less than none") << -1;
        QTest::newRow("the least number") << std::numeric_limits<int>::min();
    }

    void noOptionsWhereNoneAreWanted()
    {
        QFETCH(int, count);
        QObject parent;
        const auto* question =
            PollQuestionFactory::create(&parent, PollType::SORT, OrdinalType::ALPHA_UPPER, count, 1);
        QVERIFY(question);
        QVERIFY(question->property("activityOptions").value<QList<QObject*>>().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_PollQuestionFactory)
#include "tst_PollQuestionFactory.moc"
