#include "Tally.h"

#include <QTest>

namespace {

QString text(const Tally& tally, int most = 10)
{
    QStringList bars;
    for (const Tally::Bar& bar : tally.bars(most))
        bars.append(QStringLiteral("%1=%2").arg(bar.label).arg(bar.count));
    return bars.join(QLatin1Char(' '));
}

const PollKind& kind(Calyx::PollType::POLL_TYPE type)
{
    for (const PollKind& one : PollKind::all()) {
        if (one.type == type)
            return one;
    }
    qFatal("no such kind");
}

} // namespace

class tst_Tally : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void offersEveryKindOnce()
    {
        QCOMPARE(PollKind::all().size(), Calyx::PollType::POLL_TYPE_STR().size());
        for (const auto type : Calyx::PollType::POLL_TYPE_STR().keys())
            QCOMPARE(kind(type).type, type);
    }

    void showsOptionsThatNobodyChose()
    {
        QCOMPARE(text(Tally(kind(Calyx::PollType::MULTIPLE), 3)), QStringLiteral("A=0 B=0 C=0"));
    }

    void countsTheLastAnswerOfADevice()
    {
        Tally tally(kind(Calyx::PollType::MULTIPLE), 2);
        tally.add(QStringLiteral("one"), QStringLiteral("A"));
        tally.add(QStringLiteral("one"), QStringLiteral("B"));
        QCOMPARE(tally.answered(), 1);
        QCOMPARE(text(tally), QStringLiteral("A=0 B=1"));
    }

    void countsEachOptionOfAnAnswer()
    {
        Tally tally(kind(Calyx::PollType::MULTIPLE), 3);
        tally.add(QStringLiteral("one"), QStringLiteral("AC"));
        tally.add(QStringLiteral("two"), QStringLiteral("C"));
        QCOMPARE(text(tally), QStringLiteral("A=1 B=0 C=2"));
    }

    void knowsOptionsByIdAndByText()
    {
        Tally tally(kind(Calyx::PollType::TRUE_FALSE), 2);
        tally.add(QStringLiteral("one"), QStringLiteral("A"));
        tally.add(QStringLiteral("two"), QStringLiteral("TRUE"));
        QCOMPARE(text(tally), QStringLiteral("True=2 False=0"));
    }

    void keepsAnAnswerThatIsNoOption()
    {
        Tally tally(kind(Calyx::PollType::MULTIPLE), 2);
        tally.add(QStringLiteral("one"), QStringLiteral("A?"));
        tally.add(QStringLiteral("two"), QString());
        QCOMPARE(text(tally), QStringLiteral("A=0 B=0 (empty)=1 A?=1"));
    }

    void countsAnOrderAsAWhole()
    {
        Tally tally(kind(Calyx::PollType::SORT), 2);
        tally.add(QStringLiteral("one"), QStringLiteral("BA"));
        tally.add(QStringLiteral("two"), QStringLiteral("BA"));
        QCOMPARE(text(tally), QStringLiteral("BA=2"));
    }

    void putsTheMostFrequentFirstAndTheRestTogether()
    {
        Tally tally(kind(Calyx::PollType::TEXT), 0);
        const QStringList words = {QStringLiteral("light"), QStringLiteral("water"), QStringLiteral("air"),
                                   QStringLiteral("water"), QStringLiteral("soil")};
        for (int i = 0; i < words.size(); ++i)
            tally.add(QString::number(i), words.at(i));
        QCOMPARE(text(tally), QStringLiteral("water=2 air=1 light=1 soil=1"));
        QCOMPARE(text(tally, 2), QStringLiteral("water=2 (others)=3"));
    }
};

QTEST_GUILESS_MAIN(tst_Tally)
#include "tst_Tally.moc"
