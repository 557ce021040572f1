// A drawing or other free work.

#include "support/QuestionContract.h"

#include <CalyxClient/QuestionCreative>

#include <QTest>

class tst_QuestionCreative : public QuestionContract
{
    Q_OBJECT

public:
    tst_QuestionCreative()
        : QuestionContract(
              {{&create<Calyx::QuestionCreative>, QStringLiteral("creative"), WithOptions, Prior::OneOption}})
    {}
};

QTEST_GUILESS_MAIN(tst_QuestionCreative)
#include "tst_QuestionCreative.moc"
