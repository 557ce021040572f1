#include "commands/ArgumentReader.h"

#include <QTest>

using namespace Calyx;

class tst_ArgumentReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsLeftOutIsUsual_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<int>("ordinal");
        QTest::addColumn<int>("options");
        QTest::addColumn<int>("choices");
        QTest::addColumn<QStringList>("rest");
        const int alphaUpper = OrdinalType::ALPHA_UPPER;
        QTest::newRow("type only") << "multiple" << alphaUpper << 4 << 1 << QStringList{};
        QTest::newRow("ordinal") << "multiple alpha-lower" << int(OrdinalType::ALPHA_LOWER) << 4 << 1
                                 << QStringList{};
        QTest::newRow("options") << "multiple 6" << alphaUpper << 6 << 1 << QStringList{};
        QTest::newRow("extra") << "multiple alpha-upper 6 3" << alphaUpper << 6 << 3 << QStringList{};
        QTest::newRow("labels decide")
            << "multiple yes-no-maybe" << int(OrdinalType::YES_NO_MAYBE) << 3 << 1 << QStringList{};
        QTest::newRow("two labels") << "scale true-false" << int(OrdinalType::TRUE_FALSE) << 2 << 1
                                    << QStringList{};
        QTest::newRow("picture") << "multiple picture a.png" << alphaUpper << 4 << 1
                                 << QStringList({"picture", "a.png"});
        QTest::newRow("picture behind all")
            << "multiple alpha-upper 5 2 ref x" << alphaUpper << 5 << 2 << QStringList({"ref", "x"});
        QTest::newRow("decimals") << "number 2" << int(OrdinalType::NUMBER) << 2 << 1 << QStringList{};
        QTest::newRow("ordinal called as its type")
            << "number number 3" << int(OrdinalType::NUMBER) << 3 << 1 << QStringList{};
    }

    void whatIsLeftOutIsUsual()
    {
        QFETCH(QString, words);
        Arguments arguments = words.split(QLatin1Char(' '));
        Question question;
        const Outcome outcome = ArgumentReader::takeQuestion(arguments, question);
        QVERIFY2(outcome.isDone(), qPrintable(outcome.message));
        QTEST(int(question.ordinal), "ordinal");
        QTEST(question.type == PollType::NUMBER ? question.decimals : question.optionCount, "options");
        QTEST(question.choices, "choices");
        QTEST(arguments, "rest");
    }

    void faultsAreTold_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("part");
        QTest::newRow("type") << "essay"
                              << "There is no poll type \"essay\"";
        QTest::newRow("ordinal") << "multiple alhpa-upper"
                                 << "Did you mean alpha-upper?";
        QTest::newRow("too many") << "multiple alpha-upper 27"
                                  << "from 2 to 26 options, not 27";
        QTest::newRow("none") << "multiple alpha-upper 0"
                              << "from 2 to 26 options, not 0";
        QTest::newRow("more than labels") << "multiple yes-no-maybe 4"
                                          << "from 2 to 3 options, not 4";
        QTest::newRow("correct") << "multiple alpha-upper 3 4"
                                 << "from 0 to 3 options, not 4";
        QTest::newRow("options of a text") << "text generic 3"
                                           << "has no options";
        QTest::newRow("extra") << "scale number 5 1"
                               << "Only a multiple choice";
        QTest::newRow("answer") << "true-false answer=C"
                                << "cannot be the right answer";
        QTest::newRow("choices") << "text choices=a|b"
                                 << "of type text has no choices.";
    }

    void faultsAreTold()
    {
        QFETCH(QString, words);
        QFETCH(QString, part);
        Arguments arguments = words.split(QLatin1Char(' '));
        Question question;
        const Outcome outcome = ArgumentReader::takeQuestion(arguments, question);
        QVERIFY(!outcome.isDone());
        QVERIFY2(outcome.message.contains(part), qPrintable(outcome.message));
    }
};

QTEST_APPLESS_MAIN(tst_ArgumentReader)
#include "tst_ArgumentReader.moc"
