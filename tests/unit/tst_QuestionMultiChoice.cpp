// A choice among options.

#include "support/QuestionContract.h"

#include <CalyxClient/QuestionMultiChoice>

#include <QTest>

class tst_QuestionMultiChoice : public QuestionContract
{
    Q_OBJECT

public:
    tst_QuestionMultiChoice()
        : QuestionContract({{&create<Calyx::QuestionMultiChoice>, QStringLiteral("multiple"), WithOptions,
                             Prior::OptionForEachCharacter}})
    {}

private Q_SLOTS:
    void countsItsCorrectOptions()
    {
        Calyx::QuestionMultiChoice question;
        QCOMPARE(question.numberOfCorrectOptions(), 1);
        question.setnumberOfCorrectOptions(3);
        QCOMPARE(question.numberOfCorrectOptions(), 3);
        QCOMPARE(jsonOf(question).value(QStringLiteral("numberOfCorrectOptions")).toInt(), 3);
    }
};

QTEST_GUILESS_MAIN(tst_QuestionMultiChoice)
#include "tst_QuestionMultiChoice.moc"
