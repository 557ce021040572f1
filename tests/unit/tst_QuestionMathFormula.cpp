// A formula.

#include "support/QuestionContract.h"

#include <CalyxClient/QuestionMathFormula>

#include <QTest>

class tst_QuestionMathFormula : public QuestionContract
{
    Q_OBJECT

public:
    tst_QuestionMathFormula()
        : QuestionContract({{&create<Calyx::QuestionMathFormula>, QStringLiteral("math formula"),
                             WithoutOptions, Prior::Text}})
    {}
};

QTEST_GUILESS_MAIN(tst_QuestionMathFormula)
#include "tst_QuestionMathFormula.moc"
