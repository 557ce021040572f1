#include "lesson/Tally.h"

#include <QTest>

namespace {

// "A TRUE=2 B FALSE=0 ..."
QString shown(const Tally& tally)
{
    QStringList parts;
    const QVector<Bar> bars = tally.bars();
    for (const Bar& bar : bars)
        parts.append(QStringLiteral("%1=%2").arg(bar.label).arg(bar.count));
    return parts.join(QLatin1Char(' '));
}

Tally letters()
{
    return Tally(Tally::EachOption, {{"A", "A", ""}, {"B", "B", ""}, {"C", "C", ""}});
}

} // namespace

class tst_Tally : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void optionsThatNobodyChoseAreShown() { QCOMPARE(shown(letters()), QStringLiteral("A=0 B=0 C=0")); }

    void theLastAnswerOfADeviceCounts()
    {
        Tally tally = letters();
        QVERIFY(tally.add("d1", "A"));
        QVERIFY(!tally.add("d1", "B"));
        QVERIFY(tally.add("d2", "B"));
        QCOMPARE(shown(tally), QStringLiteral("A=0 B=2 C=0"));
        QCOMPARE(tally.answered(), 2);
        QVERIFY(tally.hasAnswered("d1"));
        QVERIFY(!tally.hasAnswered("d3"));
    }

    void severalOptionsOfOneAnswerCount_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("bars");
        QTest::newRow("one") << "B"
                             << "A=0 B=1 C=0";
        QTest::newRow("ids in a row") << "AC"
                                      << "A=1 B=0 C=1";
        QTest::newRow("picks") << "A,C"
                               << "A=1 B=0 C=1";
        QTest::newRow("twice the same") << "AA"
                                        << "A=1 B=0 C=0";
        QTest::newRow("unknown") << "AX"
                                 << "A=0 B=0 C=0 AX=1";
        QTest::newRow("unknown pick") << "A,X"
                                      << "A=0 B=0 C=0 A,X=1";
        QTest::newRow("another case") << "a"
                                      << "A=0 B=0 C=0 a=1";
        QTest::newRow("empty") << ""
                               << "A=0 B=0 C=0 (empty)=1";
        QTest::newRow("only a comma") << ","
                                      << "A=0 B=0 C=0 ,=1";
    }

    void severalOptionsOfOneAnswerCount()
    {
        QFETCH(QString, answer);
        Tally tally = letters();
        tally.add("d", answer);
        QTEST(shown(tally), "bars");
    }

    void anOptionIsNamedByItsTextToo()
    {
        Tally tally(Tally::EachOption, {{"A", "A", "TRUE"}, {"B", "B", "FALSE"}});
        tally.add("d1", "TRUE");
        tally.add("d2", "B");
        QCOMPARE(shown(tally), QStringLiteral("A TRUE=1 B FALSE=1"));
    }

    void theLongestIdFits()
    {
        QVector<AnswerOption> options;
        for (int i = 0; i < 12; ++i)
            options.append({QString::number(i), QString::number(i), QString()});
        Tally tally(Tally::EachOption, options);
        tally.add("d1", "112");
        tally.add("d2", "10");
        QVERIFY(shown(tally).contains("2=1"));
        QVERIFY(shown(tally).contains("11=1"));
        QVERIFY(shown(tally).contains("10=1"));
        QVERIFY(shown(tally).startsWith("0=0 1=0"));
    }

    void anIdThatSeveralOptionsShareIsOneBar()
    {
        const Tally tally(Tally::EachOption,
                          {{"A", "A", "YES"}, {"?", "?", "DONTKNOW"}, {"?", "?", "DONTKNOW"}});
        QCOMPARE(shown(tally), QStringLiteral("A YES=0 ? DONTKNOW=0"));
    }

    void wholeAnswersAreSortedByFrequency()
    {
        Tally tally;
        for (const char* answer : {"b", "a", "b", "10", "9"})
            tally.add(QString::number(tally.answered()), answer);
        QCOMPARE(shown(tally), QStringLiteral("b=2 9=1 10=1 a=1"));
    }

    void equalAnswersCountTogether()
    {
        for (const auto counting : {Tally::WholeAnswer, Tally::ExactAnswer}) {
            Tally tally(counting);
            for (const char* answer : {"Water", " water.", "WATER!", "wat er"})
                tally.add(QString::number(tally.answered()), answer);
            QCOMPARE(shown(tally),
                     QLatin1String(counting == Tally::WholeAnswer ? "Water=3 wat er=1"
                                                                  : "WATER!=1 Water=1 wat er=1 water.=1"));
        }
    }

    void wholeAnswersAreNotTakenApart()
    {
        Tally tally(Tally::WholeAnswer, {});
        tally.add("d1", "A,B");
        QCOMPARE(shown(tally), QStringLiteral("A,B=1"));
    }

    void answersAreMadeHarmless()
    {
        Tally tally;
        tally.add("d1", "a\033[2J\nb");
        QCOMPARE(shown(tally), QStringLiteral("a[2J b=1"));
        tally.add("d1", QString(100000, QLatin1Char('x')));
        QVERIFY(tally.bars().first().label.size() <= 500);
    }
};

QTEST_APPLESS_MAIN(tst_Tally)
#include "tst_Tally.moc"
