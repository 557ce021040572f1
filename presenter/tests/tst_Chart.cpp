#include "text/Chart.h"

#include "text/Text.h"

#include <QTest>

#include <clocale>

namespace {

ChartData data()
{
    ChartData data;
    data.title = QStringLiteral("Poll 1: text");
    data.bars = {{"A", 10}, {"B", 5}, {"C", 0}};
    data.answered = 15;
    data.expected = 20;
    data.seconds = 65;
    return data;
}

Style style(bool unicode, int columns)
{
    Style style;
    style.unicode = unicode;
    style.columns = columns;
    return style;
}

constexpr int many = 100;

} // namespace

class tst_Chart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(std::setlocale(LC_ALL, "C.UTF-8")); }

    void barsAreDrawnToScale()
    {
        const QStringList lines = Chart::lines(data(), style(false, 38), many);
        QCOMPARE(
            lines,
            QStringList({"Poll 1: text  15 of 20 answered  1:05", "  A  #####################  10   67 %",
                         "  B  ##########              5   33 %", "  C                          0    0 %"}));
    }

    void partsOfAColumnAreDrawnWithBlocks()
    {
        ChartData eighths = data();
        eighths.bars = {{"A", 8}, {"B", 1}, {"C", 5}};
        // One column of bar: the count in eighths of it is what is drawn.
        const QStringList lines = Chart::lines(eighths, style(true, 17), many);
        QVERIFY2(lines.at(1).startsWith(QStringLiteral("  A  █  8")), qPrintable(lines.at(1)));
        QVERIFY2(lines.at(2).startsWith(QStringLiteral("  B  ▏  1")), qPrintable(lines.at(2)));
        QVERIFY2(lines.at(3).startsWith(QStringLiteral("  C  ▋  5")), qPrintable(lines.at(3)));
    }

    void noCountIsInvisible()
    {
        ChartData few = data();
        few.bars = {{"A", 100000}, {"B", 1}};
        QVERIFY(Chart::lines(few, style(true, 40), many).at(2).contains(QStringLiteral("▏")));
        QVERIFY(Chart::lines(few, style(false, 40), many).at(2).contains(QLatin1Char('#')));
    }

    void noLineIsWiderThanTheTerminal_data()
    {
        QTest::addColumn<int>("columns");
        for (const int columns : {20, 30, 40, 60, 80, 200})
            QTest::newRow(qPrintable(QString::number(columns))) << columns;
    }

    void noLineIsWiderThanTheTerminal()
    {
        QFETCH(int, columns);
        ChartData wide = data();
        wide.title = QString(300, QLatin1Char('t'));
        wide.bars = {{QString(300, QChar(0x5C0F)), 1234}, {"short", 1}};
        wide.answered = 1235;
        wide.expected = 5000;
        const QStringList lines = Chart::lines(wide, style(true, columns), many);
        for (const QString& line : lines)
            QVERIFY2(Text::width(line) < columns, qPrintable(line));
    }

    void barsThatFindNoPlaceAreCounted()
    {
        const QStringList lines = Chart::lines(data(), style(false, 60), 3);
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines.last(), QStringLiteral("  and 2 different answers more"));
    }

    void anOptionWithVotesIsNeverHidden()
    {
        ChartData options;
        for (char letter = 'A'; letter <= 'Z'; ++letter)
            options.bars.append({QString(QLatin1Char(letter)),
                                 letter == 'Z'   ? 5
                                 : letter == 'B' ? 2
                                                 : 0,
                                 true});
        options.bars[1].label = QStringLiteral("B 5%1"); // what people write stays as it is
        const QStringList some = Chart::lines(options, style(false, 60), 4);
        QCOMPARE(some.size(), 4);
        QVERIFY(some.at(1).startsWith("  B ") && some.at(2).startsWith("  Z "));
        QCOMPARE(some.last(), QStringLiteral("  and 24 more options"));
        QCOMPARE(Chart::lines(options, style(false, 60), 3).last(),
                 QStringLiteral("  and B 5%1 2, 24 more options"));
        Style small = style(false, 60);
        small.rows = 4;
        for (Bar& bar : options.bars)
            bar.count = 1;
        QCOMPARE(Chart::all(options, small).size(), 27); // the window scrolls
    }

    void aChartThatJustFitsIsWhole()
    {
        const QStringList lines = Chart::lines(data(), style(false, 60), 4);
        QCOMPARE(lines.size(), 4);
        QVERIFY(lines.last().startsWith(QStringLiteral("  C")));
    }

    void oneLineIsTheHeadOnly() { QCOMPARE(Chart::lines(data(), style(false, 60), 1).size(), 1); }

    void withoutAnswersItSaysSo()
    {
        ChartData none;
        none.title = QStringLiteral("Poll 1: text");
        const QStringList lines = Chart::lines(none, style(false, 60), many);
        QCOMPARE(lines, QStringList({"Poll 1: text  0 of 0 answered  0:00", "  No answers yet."}));
    }

    void aPausedPollSaysSo()
    {
        ChartData paused = data();
        paused.isPaused = true;
        QVERIFY(
            Chart::lines(paused, style(false, 80), many).first().endsWith(QStringLiteral("1:05  paused")));
    }

    void thereIsNoColourUnlessWanted()
    {
        const QString plain = Chart::lines(data(), style(true, 80), many).join(QLatin1Char('\n'));
        QVERIFY(!plain.contains(QLatin1Char('\033')));
        Style coloured = style(true, 80);
        coloured.colour = true;
        QVERIFY(Chart::lines(data(), coloured, many).at(1).contains(QStringLiteral("\033[32m")));
    }
};

QTEST_GUILESS_MAIN(tst_Chart)
#include "tst_Chart.moc"
