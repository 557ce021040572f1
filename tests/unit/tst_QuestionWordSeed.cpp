// Single words, collected.

#include "support/QuestionContract.h"

#include <CalyxClient/QuestionWordSeed>

#include <QTest>

class tst_QuestionWordSeed : public QuestionContract
{
    Q_OBJECT

public:
    tst_QuestionWordSeed()
        : QuestionContract(
              {{&create<Calyx::QuestionWordSeed>, QStringLiteral("word-seed"), WithoutOptions, Prior::Text}})
    {}
};

QTEST_GUILESS_MAIN(tst_QuestionWordSeed)
#include "tst_QuestionWordSeed.moc"
