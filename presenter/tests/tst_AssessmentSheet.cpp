#include "lesson/AssessmentSheet.h"

#include <QTest>

using namespace Calyx;

namespace {

AssessmentItem item(PollType::POLL_TYPE type, const QString& id, const QString& key = QString())
{
    AssessmentItem item;
    item.plan = PollKinds::usual(type);
    item.id = id;
    if (!key.isEmpty())
        item.key = AnswerKey(item.plan, key);
    return item;
}

AssessmentPlan plan()
{
    AssessmentPlan plan;
    plan.items = {item(PollType::MULTIPLE, "q1", "BC"), item(PollType::TEXT, "q2"),
                  item(PollType::NUMBER, "q3", "4")};
    return plan;
}

} // namespace

class tst_AssessmentSheet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersCountByLearnerAndByQuestion()
    {
        AssessmentSheet sheet(plan());
        sheet.enter("d1", "Ann");
        sheet.enter("d2", "Bea");
        QVERIFY(sheet.addAnswer("d1", 1, "CB"));
        QVERIFY(sheet.addAnswer("d1", 2, "leaf"));
        QVERIFY(sheet.addAnswer("d2", 1, "A"));
        QVERIFY(sheet.addAnswer("d2", 3, "4.0"));
        QCOMPARE(sheet.mark("d1", 1), AssessmentSheet::Right);
        QCOMPARE(sheet.mark("d1", 2), AssessmentSheet::Unmarked);
        QCOMPARE(sheet.mark("d1", 3), AssessmentSheet::NoAnswer);
        QCOMPARE(sheet.mark("d2", 1), AssessmentSheet::Wrong);
        QCOMPARE(sheet.rightAnswers("d1"), 1);
        QCOMPARE(sheet.rightAnswers("d2"), 1);
        QCOMPARE(sheet.answers(1), 2);
        QCOMPARE(sheet.rightAnswers(1), 1);
        QCOMPARE(sheet.answers(2), 1);
        QCOMPARE(sheet.rightAnswers(2), 0);
        QCOMPARE(sheet.markedQuestions(), 2);
        QCOMPARE(sheet.participants(), QStringList({"d1", "d2"}));
    }

    void whoHasAnsweredAllHasFinished()
    {
        AssessmentSheet sheet(plan());
        sheet.enter("d1", "Ann");
        sheet.addAnswer("d1", 1, "A");
        sheet.addAnswer("d1", 3, "1");
        QVERIFY(!sheet.isFinished("d1"));
        sheet.addAnswer("d1", 2, QString()); // an empty answer is one
        QVERIFY(sheet.isFinished("d1"));
        QVERIFY(!sheet.isFinished("d2"));
    }

    void theLastAnswerCounts()
    {
        AssessmentSheet sheet(plan());
        sheet.enter("d1", "Ann");
        QVERIFY(sheet.addAnswer("d1", 1, "A"));
        QVERIFY(sheet.addAnswer("d1", 1, "BC"));
        QCOMPARE(sheet.answer("d1", 1), QStringLiteral("BC"));
        QCOMPARE(sheet.answers(1), 1);
    }

    void theFirstAnswerCountsWhereNoneMayBeChanged()
    {
        AssessmentPlan strict = plan();
        strict.mayResubmit = false;
        AssessmentSheet sheet(strict);
        sheet.enter("d1", "Ann");
        QVERIFY(sheet.addAnswer("d1", 1, "A"));
        QVERIFY(!sheet.addAnswer("d1", 1, "BC"));
        QCOMPARE(sheet.answer("d1", 1), QStringLiteral("A"));
    }

    void onlyParticipantsAnswer()
    {
        AssessmentSheet sheet(plan());
        QVERIFY(!sheet.addAnswer("d1", 1, "BC"));
        QCOMPARE(sheet.answers(1), 0);
    }

    void comingTwiceIsTakingPartOnce()
    {
        AssessmentSheet sheet(plan());
        sheet.enter("d1", "Ann");
        sheet.addAnswer("d1", 1, "BC");
        sheet.enter("d1", "Anna");
        QCOMPARE(sheet.participants(), QStringList("d1"));
        QCOMPARE(sheet.name("d1"), QStringLiteral("Anna"));
        QCOMPARE(sheet.rightAnswers("d1"), 1);
    }

    void answersAreMadeFitForATerminal()
    {
        AssessmentSheet sheet(plan());
        sheet.enter("d1", "Ann");
        sheet.addAnswer("d1", 2, "a\033[2J\nb" + QString(1000, 'x'));
        QVERIFY(sheet.answer("d1", 2).startsWith("a[2J bxx"));
        QCOMPARE(sheet.answer("d1", 2).size(), 500);
    }

    void idsAreFound()
    {
        const AssessmentSheet sheet(plan());
        QCOMPARE(sheet.numberOf("q1"), 1);
        QCOMPARE(sheet.numberOf("q3"), 3);
        QCOMPARE(sheet.numberOf("q4"), 0);
        QCOMPARE(sheet.numberOf(QString()), 0);
    }
};

QTEST_APPLESS_MAIN(tst_AssessmentSheet)
#include "tst_AssessmentSheet.moc"
