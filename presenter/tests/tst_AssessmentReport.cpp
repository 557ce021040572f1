#include "lesson/AssessmentReport.h"

#include <QTest>

#include <clocale>

using namespace Calyx;

namespace {

// A sheet as the library's: the name, the score, then answers with their marks.
class Sheet : public QAbstractTableModel
{
public:
    explicit Sheet(bool isMarked) : m_isMarked(isMarked) {}
    int rowCount(const QModelIndex&) const override { return 3; }
    int columnCount(const QModelIndex&) const override { return Assessment::FirstQuestion + 2; }
    QVariant data(const QModelIndex& index, int role) const override
    {
        static const struct
        {
            const char* texts[4];
            PollAnswer::Mark marks[2];
        } rows[] = {{{"Ann", "1 of 1", "BC", "a word that is rather long for a table"},
                     {PollAnswer::Right, PollAnswer::Unmarked}},
                    {{"Li Mei", "0 of 1", "A", ""}, {PollAnswer::Wrong, PollAnswer::NoAnswer}},
                    {{"Tom", "0 of 1", "", ""}, {PollAnswer::NoAnswer, PollAnswer::NoAnswer}}};
        if (role != Assessment::MarkRole)
            return !m_isMarked && index.column() == Assessment::Score
                       ? ""
                       : rows[index.row()].texts[index.column()];
        const PollAnswer::Mark mark = rows[index.row()].marks[index.column() - Assessment::FirstQuestion];
        return m_isMarked || mark == PollAnswer::NoAnswer ? mark : PollAnswer::Unmarked;
    }

private:
    bool m_isMarked;
};

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
        QCOMPARE(AssessmentReport::byLearner(Sheet(true), styleOf(true)),
                 QStringList({"  Learner  Score   1     2", "  Ann      1 of 1  ✓ BC  a word that is rath…",
                              "  Li Mei   0 of 1  ✗ A   –", "  Tom      0 of 1  –     –"}));
    }

    void marksAreThereWithoutUnicode()
    {
        const QStringList lines = AssessmentReport::byLearner(Sheet(true), styleOf(false));
        QCOMPARE(lines.at(1), QStringLiteral("  Ann      1 of 1  + BC  a word that is rath~"));
        QCOMPARE(lines.at(2), QStringLiteral("  Li Mei   0 of 1  x A   -"));
    }

    void aNarrowTerminalGetsTheMarksAlone()
    {
        QCOMPARE(AssessmentReport::byLearner(Sheet(true), styleOf(true, 40)),
                 QStringList({"  Learner  Score   1  2", "  Ann      1 of 1  ✓", "  Li Mei   0 of 1  ✗  –",
                              "  Tom      0 of 1  –  –"}));
    }

    void thereIsNoScoreWithoutAKey()
    {
        const QStringList lines = AssessmentReport::byLearner(Sheet(false), styleOf(true));
        QVERIFY(!lines.first().contains("Score"));
        QVERIFY(lines.at(1).contains(" BC "));
    }
};

QTEST_APPLESS_MAIN(tst_AssessmentReport)
#include "tst_AssessmentReport.moc"
