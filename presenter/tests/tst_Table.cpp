#include "text/Table.h"

#include "text/Text.h"

#include <QTest>

#include <clocale>

class tst_Table : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(std::setlocale(LC_ALL, "C.UTF-8")); }

    void columnsLineUp()
    {
        const QStringList lines =
            Table::lines({"Name", "Device"}, {{"小明", "phone"}, {"Ann", "x"}}, Style());
        QCOMPARE(lines, QStringList({"  Name  Device", "  小明  phone", "  Ann   x"}));
    }

    void noLineIsWiderThanTheTerminal()
    {
        Style style;
        style.columns = 20;
        const QStringList lines = Table::lines({"A", "B"}, {{"x", QString(100, QLatin1Char('y'))}}, style);
        for (const QString& line : lines)
            QVERIFY(Text::width(line) < style.columns);
    }

    void onlyTheHeaderIsPainted()
    {
        Style style;
        style.colour = true;
        const QStringList lines = Table::lines({"A"}, {{"x"}}, style);
        QVERIFY(lines.first().contains(QLatin1Char('\033')));
        QCOMPARE(lines.last(), QStringLiteral("  x"));
    }
};

QTEST_GUILESS_MAIN(tst_Table)
#include "tst_Table.moc"
