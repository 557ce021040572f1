// A free text.

#include "support/QuestionContract.h"

#include <CalyxClient/QuestionText>

#include <QTest>

class tst_QuestionText : public QuestionContract
{
    Q_OBJECT

public:
    tst_QuestionText()
        : QuestionContract(
              {{&create<Calyx::QuestionText>, QStringLiteral("text"), WithoutOptions, Prior::Text}})
    {}

private Q_SLOTS:
    void limitsItsCharacters()
    {
        Calyx::QuestionText question;
        QCOMPARE(question.maxChars(), 0);
        question.setmaxChars(140);
        QCOMPARE(question.maxChars(), 140);
        QCOMPARE(jsonOf(question).value(QStringLiteral("maxChars")).toInt(), 140);
    }
};

QTEST_GUILESS_MAIN(tst_QuestionText)
#include "tst_QuestionText.moc"
