// A yes/no or true/false question.

#include "support/QuestionContract.h"

#include <CalyxClient/QuestionYesNo>

#include <QTest>

namespace {

std::unique_ptr<Calyx::QuestionBase> trueFalse()
{
    auto question = std::make_unique<Calyx::QuestionYesNo>();
    question->setTrueFalse(true);
    return question;
}

} // namespace

class tst_QuestionYesNo : public QuestionContract
{
    Q_OBJECT

public:
    tst_QuestionYesNo()
        : QuestionContract(
              {{&create<Calyx::QuestionYesNo>, QStringLiteral("yes-no-other"), WithOptions, Prior::OneOption},
               {&trueFalse, QStringLiteral("true-false"), WithOptions, Prior::OneOption}})
    {}

private Q_SLOTS:
    void typeFollowsTheFlag()
    {
        Calyx::QuestionYesNo question;
        QVERIFY(!question.isTrueFalse());
        QCOMPARE(question.getType(), QStringLiteral("yes-no-other"));
        question.setTrueFalse(true);
        QVERIFY(question.isTrueFalse());
        QCOMPARE(question.getType(), QStringLiteral("true-false"));
        question.setTrueFalse(false);
        QCOMPARE(question.getType(), QStringLiteral("yes-no-other"));
    }

    void flagIsNoProperty()
    {
        Calyx::QuestionYesNo question;
        const QStringList keys = jsonOf(question).keys();
        QCOMPARE(keys.size(), 15);
        QVERIFY(keys.filter(QStringLiteral("true"), Qt::CaseInsensitive).isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_QuestionYesNo)
#include "tst_QuestionYesNo.moc"
