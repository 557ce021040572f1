#include "text/LineSyntax.h"

#include <QTest>

class tst_LineSyntax : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordsAreDividedByBlanks_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("words");
        QTest::newRow("empty") << "" << QStringList{};
        QTest::newRow("blanks") << " \t " << QStringList{};
        QTest::newRow("plain") << "  poll  text " << QStringList{"poll", "text"};
        QTest::newRow("double quotes") << "card \"my leaf.png\"" << QStringList{"card", "my leaf.png"};
        QTest::newRow("single quotes")
            << "publish a b '{\"x\": 1}'" << QStringList{"publish", "a", "b", "{\"x\": 1}"};
        QTest::newRow("empty word") << "login \"\" x" << QStringList{"login", "", "x"};
        QTest::newRow("within a word") << "title=\"A B\"c" << QStringList{"title=A Bc"};
        QTest::newRow("apostrophe") << "say Ann's" << QStringList{"say", "Ann's"};
        QTest::newRow("escaped") << "a\\ b \"c\\\"d\" 'e\\f'" << QStringList{"a b", "c\"d", "e\\f"};
        QTest::newRow("backslash at the end") << "a\\" << QStringList{"a\\"};
    }

    void wordsAreDividedByBlanks()
    {
        QFETCH(QString, line);
        const LineSyntax::Split split = LineSyntax::split(line);
        QTEST(split.words, "words");
        QVERIFY(split.error.isEmpty());
    }

    void anOpenQuotationIsAFault()
    {
        QVERIFY(!LineSyntax::split(QStringLiteral("say \"a")).error.isEmpty());
        QVERIFY(!LineSyntax::split(QStringLiteral("say 'a")).error.isEmpty());
    }

    void theWordAtTheEndIsKnown_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("endsInWord");
        QTest::addColumn<int>("lastStart");
        QTest::newRow("within") << "poll te" << true << 5;
        QTest::newRow("between") << "poll te " << false << 8;
        QTest::newRow("quoted") << "card \"my le" << true << 5;
        QTest::newRow("escaped") << "card \\ my" << true << 5;
        QTest::newRow("empty") << "" << false << 0;
    }

    void theWordAtTheEndIsKnown()
    {
        QFETCH(QString, line);
        const LineSyntax::Split split = LineSyntax::split(line);
        QTEST(split.endsInWord, "endsInWord");
        QTEST(split.lastStart, "lastStart");
    }

    void textIsTakenAsItStands_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("text");
        QTest::newRow("one word") << " say  Don't \"panic\" \\n " << 1 << "Don't \"panic\" \\n";
        QTest::newRow("two words") << "assessment dialog hi" << 2 << "hi";
        QTest::newRow("quoted") << "say \"  kept  \"" << 1 << "  kept  ";
        QTest::newRow("two quotations") << "say \"a\" and \"b\"" << 1 << "\"a\" and \"b\"";
        QTest::newRow("nothing") << "say" << 1 << "";
    }

    void textIsTakenAsItStands()
    {
        QFETCH(QString, line);
        QFETCH(int, count);
        QTEST(LineSyntax::textAfter(line, count), "text");
    }

    void quotedWordsComeBack_data()
    {
        QTest::addColumn<QString>("word");
        for (const char* word : {"plain", "", "two words", "it's", "a\"b", "back\\slash", "tab\there"})
            QTest::newRow(word) << QString::fromUtf8(word);
    }

    void quotedWordsComeBack()
    {
        QFETCH(QString, word);
        QCOMPARE(LineSyntax::split(LineSyntax::quoted(word)).words, QStringList{word});
    }

    void commentsAreBlank()
    {
        QVERIFY(LineSyntax::isBlank(QStringLiteral("  # say no")));
        QVERIFY(LineSyntax::isBlank(QString()));
        QVERIFY(!LineSyntax::isBlank(QStringLiteral("say #1")));
    }
};

QTEST_APPLESS_MAIN(tst_LineSyntax)
#include "tst_LineSyntax.moc"
