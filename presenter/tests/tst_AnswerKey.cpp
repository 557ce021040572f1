#include "lesson/AnswerKey.h"

#include <QTest>

using namespace Calyx;

namespace {

PollPlan planOf(const QString& type, int options = -1)
{
    PollPlan plan;
    PollKinds::readType(type, plan.type);
    plan = PollKinds::usual(plan.type);
    if (options >= 0)
        plan.options = options;
    return plan;
}

} // namespace

class tst_AnswerKey : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsRightWithoutAKey()
    {
        const AnswerKey key;
        QVERIFY(!key.isGiven());
        QVERIFY(!key.isRight(QString()));
        QVERIFY(!key.isRight("A"));
    }

    void answersAreMarked_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("right");
        QTest::newRow("option") << "true-false"
                                << "A"
                                << "A" << true;
        QTest::newRow("option by its text") << "true-false"
                                            << "TRUE"
                                            << "A" << true;
        QTest::newRow("answered by its text") << "yes-no-other"
                                              << "B"
                                              << "NO" << true;
        QTest::newRow("other option") << "true-false"
                                      << "A"
                                      << "B" << false;
        QTest::newRow("no answer in it") << "true-false"
                                         << "A"
                                         << "" << false;
        QTest::newRow("options") << "multiple"
                                 << "AC"
                                 << "AC" << true;
        QTest::newRow("options in another order") << "multiple"
                                                  << "C,A"
                                                  << "AC" << true;
        QTest::newRow("one too few") << "multiple"
                                     << "AC"
                                     << "A" << false;
        QTest::newRow("one too many") << "multiple"
                                      << "AC"
                                      << "ABC" << false;
        QTest::newRow("one of several") << "multiple"
                                        << "AC|B"
                                        << "B" << true;
        QTest::newRow("none of several") << "multiple"
                                         << "AC|B"
                                         << "C" << false;
        QTest::newRow("step of a scale") << "scale"
                                         << "3|4"
                                         << "4" << true;
        QTest::newRow("order") << "sort"
                               << "BACD"
                               << "BACD" << true;
        QTest::newRow("other order") << "sort"
                                     << "BACD"
                                     << "ABCD" << false;
        QTest::newRow("number") << "number"
                                << "4"
                                << "4.00" << true;
        QTest::newRow("number with a comma") << "number"
                                             << "4,5"
                                             << "4.50" << true;
        QTest::newRow("other number") << "number"
                                      << "4"
                                      << "4.01" << false;
        QTest::newRow("no number") << "number"
                                   << "4"
                                   << "four" << false;
        QTest::newRow("word") << "text"
                              << "Water"
                              << " water " << true;
        QTest::newRow("composed and not")
            << "text" << QStringLiteral("caf\u00e9") << QStringLiteral("Cafe\u0301") << true;
        QTest::newRow("part of a word") << "text"
                                        << "water"
                                        << "wat" << false;
        QTest::newRow("formula") << "math-formula"
                                 << "x^2 + 1"
                                 << "x^2+1" << true;
        QTest::newRow("formula of another name") << "math-formula"
                                                 << "x^2"
                                                 << "X^2" << false;
    }

    void answersAreMarked()
    {
        QFETCH(QString, type);
        QFETCH(QString, key);
        QFETCH(QString, answer);
        const AnswerKey answerKey(planOf(type), key);
        QCOMPARE(answerKey.fault(), QString());
        QVERIFY(answerKey.isGiven());
        QTEST(answerKey.isRight(answer), "right");
    }

    void optionsOfSeveralDigitsAreToldApart()
    {
        const AnswerKey key(planOf("scale", 12), "11");
        QVERIFY(key.isRight("11"));
        QVERIFY(!key.isRight("1"));
        QCOMPARE(AnswerKey(planOf("multiple"), "BCD|A").optionCount(), 3);
        QCOMPARE(AnswerKey(planOf("text"), "BCD").optionCount(), 0);
    }

    void keysThatNobodyCanMeetAreFaults_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("part");
        QTest::newRow("no option") << "multiple"
                                   << "AE"
                                   << "The options are: A, B, C, D.";
        QTest::newRow("second of several") << "multiple"
                                           << "A|X"
                                           << "\"X\" names no option";
        QTest::newRow("twice") << "multiple"
                               << "AA"
                               << "names an option twice";
        QTest::newRow("order left out") << "sort"
                                        << "ABC"
                                        << "leaves options out";
        QTest::newRow("no number") << "number"
                                   << "four"
                                   << "\"four\" is no number";
        QTest::newRow("nothing") << "text"
                                 << " "
                                 << "takes an answer";
    }

    void keysThatNobodyCanMeetAreFaults()
    {
        QFETCH(QString, type);
        QFETCH(QString, key);
        QFETCH(QString, part);
        const QString fault = AnswerKey(planOf(type), key).fault();
        QVERIFY2(fault.contains(part), qPrintable(fault));
    }
};

QTEST_APPLESS_MAIN(tst_AnswerKey)
#include "tst_AnswerKey.moc"
