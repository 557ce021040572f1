#include "lesson/AssessmentReport.h"
#include "lesson/AssessmentSheet.h"

#include <QTest>

#include <clocale>

using namespace Calyx;

namespace {

AssessmentSheet sheetOf(bool isMarked)
{
    AssessmentItem pick;
    pick.plan = PollKinds::usual(PollType::MULTIPLE);
    pick.text = QStringLiteral("Which?");
    AssessmentItem word;
    word.plan = PollKinds::usual(PollType::TEXT);
    if (isMarked)
        pick.key = AnswerKey(pick.plan, QStringLiteral("BC"));
    AssessmentPlan plan;
    plan.items = {pick, word};
    AssessmentSheet sheet(plan);
    sheet.enter("d1", "Ann");
    sheet.enter("d2", "Li Mei");
    sheet.enter("d3", "Tom");
    sheet.addAnswer("d1", 1, "BC");
    sheet.addAnswer("d1", 2, "a word that is rather long for a table");
    sheet.addAnswer("d2", 1, "A");
    return sheet;
}

Style styleOf(bool unicode, int columns = 80)
{
    Style style;
    style.unicode = unicode;
    style.columns = columns;
    return style;
}

} // namespace

class tst_AssessmentReport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { std::setlocale(LC_ALL, "C.UTF-8"); }

    void aLearnerHasAScoreAndMarks()
    {
        QCOMPARE(AssessmentReport::byLearner(sheetOf(true), styleOf(true)),
                 QStringList({"  Learner  Score   1     2", "  Ann      1 of 1  ✓ BC  a word that is rath…",
                              "  Li Mei   0 of 1  ✗ A   –", "  Tom      0 of 1  –     –"}));
    }

    void marksAreThereWithoutUnicode()
    {
        const QStringList lines = AssessmentReport::byLearner(sheetOf(true), styleOf(false));
        QCOMPARE(lines.at(1), QStringLiteral("  Ann      1 of 1  + BC  a word that is rath~"));
        QCOMPARE(lines.at(2), QStringLiteral("  Li Mei   0 of 1  x A   -"));
    }

    void aNarrowTerminalGetsTheMarksAlone()
    {
        QCOMPARE(AssessmentReport::byLearner(sheetOf(true), styleOf(true, 40)),
                 QStringList({"  Learner  Score   1  2", "  Ann      1 of 1  ✓", "  Li Mei   0 of 1  ✗  –",
                              "  Tom      0 of 1  –  –"}));
    }

    void thereIsNoScoreWithoutAKey()
    {
        const QStringList lines = AssessmentReport::byLearner(sheetOf(false), styleOf(true));
        QVERIFY(!lines.first().contains("Score"));
        QVERIFY(lines.at(1).contains(" BC "));
        QCOMPARE(AssessmentReport::total(sheetOf(false)), QStringLiteral("3 learners, 3 answers."));
    }

    void aQuestionHasItsAnswersCounted()
    {
        QCOMPARE(
            AssessmentReport::byQuestion(sheetOf(true), styleOf(true)),
            QStringList({"  Answers  Right        Question", "  2        1      50 %  1 multiple: Which?",
                         "  1                     2 text"}));
        QCOMPARE(AssessmentReport::total(sheetOf(true)),
                 QStringLiteral("3 learners, 3 answers, 1 of 3 right."));
    }
};

QTEST_APPLESS_MAIN(tst_AssessmentReport)
#include "tst_AssessmentReport.moc"
