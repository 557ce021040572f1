#include "text/Text.h"

#include <QTest>

#include <clocale>

class tst_Text : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(std::setlocale(LC_ALL, "C.UTF-8")); }

    void nothingThatSteersATerminalStays_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("clean");
        QTest::newRow("plain") << "Zoë 小明 🌱"
                               << "Zoë 小明 🌱";
        QTest::newRow("escape sequence") << "a\033[2Jb"
                                         << "a[2Jb";
        QTest::newRow("bell and backspace") << "a\a\bb"
                                            << "ab";
        QTest::newRow("C1 control sequence introducer") << QStringLiteral("a\u009b2Jb") << "a2Jb";
        QTest::newRow("delete") << QStringLiteral("a\u007fb") << "ab";
        QTest::newRow("line ends") << "a\r\nb\tc"
                                   << "a  b c";
        QTest::newRow("line separator") << QStringLiteral("a\u2028b") << "a b";
        QTest::newRow("right to left override") << QStringLiteral("a\u202eb\u2066c") << "abc";
        QTest::newRow("byte order mark") << QStringLiteral("\ufeffa") << "a";
        QTest::newRow("lone surrogate") << (QString(QChar(0xD800)) + "a") << QStringLiteral("\ufffda");
        QTest::newRow("NUL") << QString::fromUtf8("a\0b", 3) << "ab";
        QTest::newRow("blanks at the ends") << "  a  "
                                            << "a";
    }

    void nothingThatSteersATerminalStays()
    {
        QFETCH(QString, text);
        QTEST(Text::clean(text), "clean");
    }

    void widthIsThatOfTheTerminal_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("width");
        QTest::newRow("ASCII") << "abc" << 3;
        QTest::newRow("umlaut") << "Öl" << 2;
        QTest::newRow("combining") << QStringLiteral("O\u0308l") << 2;
        QTest::newRow("wide") << "小明" << 4;
        QTest::newRow("beyond the BMP") << "🌱" << 2;
        QTest::newRow("empty") << "" << 0;
    }

    void widthIsThatOfTheTerminal()
    {
        QFETCH(QString, text);
        QTEST(Text::width(text), "width");
    }

    void longTextIsCut_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("columns");
        QTest::addColumn<QString>("cut");
        QTest::newRow("fits") << "abc" << 3 << "abc";
        QTest::newRow("cut") << "abcd" << 3 << "ab…";
        QTest::newRow("no half character") << "小明小" << 4 << "小…";
        QTest::newRow("one column") << "abcd" << 1 << "…";
        QTest::newRow("no column") << "abcd" << 0 << "";
    }

    void longTextIsCut()
    {
        QFETCH(QString, text);
        QFETCH(int, columns);
        QTEST(Text::elide(text, columns, true), "cut");
        QVERIFY(Text::width(Text::elide(text, columns, true)) <= columns);
    }

    void theSignOfTheCutCanBeAscii() { QCOMPARE(Text::elide("abcd", 3, false), QStringLiteral("ab~")); }

    void paddingCountsColumns()
    {
        QCOMPARE(Text::padRight("小", 4), QStringLiteral("小  "));
        QCOMPARE(Text::padLeft("小", 4), QStringLiteral("  小"));
        QCOMPARE(Text::padRight("long", 2), QStringLiteral("long"));
    }

    void countsHaveTheirPlural()
    {
        QCOMPARE(Text::count(1, "poll"), QStringLiteral("1 poll"));
        QCOMPARE(Text::count(0, "poll"), QStringLiteral("0 polls"));
    }

    void listsEnd()
    {
        QCOMPARE(Text::list({"a", "b"}, 3), QStringLiteral("a, b"));
        QCOMPARE(Text::list({"a", "b", "c", "d"}, 2), QStringLiteral("a, b and 2 more"));
    }

    void durationsHaveTwoDigitsOfSeconds()
    {
        QCOMPARE(Text::duration(5), QStringLiteral("0:05"));
        QCOMPARE(Text::duration(725), QStringLiteral("12:05"));
    }

    void linesAreWrappedBetweenWords()
    {
        QCOMPARE(Text::wrap("one two three four", 9, 0, 2), QStringList({"one two", "  three", "  four"}));
        QCOMPARE(Text::wrap("name    what it does", 14, 2, 6),
                 QStringList({"  name    what", "      it does"}));
    }
};

QTEST_GUILESS_MAIN(tst_Text)
#include "tst_Text.moc"
