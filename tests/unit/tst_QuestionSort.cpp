// Options to be brought into order.

#include "support/QuestionContract.h"

#include <CalyxClient/QuestionSort>

#include <QTest>

class tst_QuestionSort : public QuestionContract
{
    Q_OBJECT

public:
    tst_QuestionSort()
        : QuestionContract({{&create<Calyx::QuestionSort>, QStringLiteral("sort"), WithOptions,
                             Prior::OptionForEachCharacter}})
    {}

private Q_SLOTS:
    void priorAnswerTakesEachCharacterOnce()
    {
        Calyx::QuestionSort question;
        question.setPriorAnswer(QStringLiteral("B,b B"));
        QCOMPARE(question.feedBack()->property("optionAnswers").toList(),
                 chosen({QStringLiteral("B"), QStringLiteral(","), QStringLiteral("b"), QStringLiteral(" "),
                         QStringLiteral("B")}));
        question.setPriorAnswer(QStringLiteral("1"));
        QCOMPARE(question.feedBack()->property("optionAnswers").toList(), chosen({QStringLiteral("1")}));
    }
};

QTEST_GUILESS_MAIN(tst_QuestionSort)
#include "tst_QuestionSort.moc"
