// A rating on a scale.

#include "support/QuestionContract.h"

#include <CalyxClient/QuestionScale>

#include <QTest>

class tst_QuestionScale : public QuestionContract
{
    Q_OBJECT

public:
    tst_QuestionScale()
        : QuestionContract(
              {{&create<Calyx::QuestionScale>, QStringLiteral("scale"), WithOptions, Prior::OneOption}})
    {}
};

QTEST_GUILESS_MAIN(tst_QuestionScale)
#include "tst_QuestionScale.moc"
