// A number.

#include "support/QuestionContract.h"

#include <CalyxClient/QuestionNumeric>

#include <QTest>

class tst_QuestionNumeric : public QuestionContract
{
    Q_OBJECT

public:
    tst_QuestionNumeric()
        : QuestionContract(
              {{&create<Calyx::QuestionNumeric>, QStringLiteral("number"), WithoutOptions, Prior::Text}})
    {}

private Q_SLOTS:
    void limitsItsDecimals()
    {
        Calyx::QuestionNumeric question;
        QCOMPARE(question.noOfDecimals(), 0);
        question.setnoOfDecimals(2);
        QCOMPARE(question.noOfDecimals(), 2);
        QCOMPARE(jsonOf(question).value(QStringLiteral("noOfDecimals")).toInt(), 2);
    }
};

QTEST_GUILESS_MAIN(tst_QuestionNumeric)
#include "tst_QuestionNumeric.moc"
