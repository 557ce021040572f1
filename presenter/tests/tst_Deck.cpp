#include "lesson/Deck.h"

#include <QTest>

class tst_Deck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyDeckHasNoCurrentCard()
    {
        Deck deck;
        QCOMPARE(deck.current(), 0);
        QCOMPARE(deck.count(), 0);
        QVERIFY(!deck.go(0));
        QVERIFY(!deck.go(1));
    }

    void theFirstCardBecomesTheCurrentOne()
    {
        Deck deck;
        deck.add({"one", {}});
        deck.add({"two", {}});
        QCOMPARE(deck.current(), 1);
        QCOMPARE(deck.count(), 2);
        QCOMPARE(deck.card(2).name, QStringLiteral("two"));
    }

    void beyondTheEndsNothingChanges()
    {
        Deck deck;
        deck.add({"one", {}});
        deck.add({"two", {}});
        QVERIFY(deck.go(2));
        QVERIFY(!deck.go(3));
        QCOMPARE(deck.current(), 2);
        QVERIFY(!deck.go(0));
        QVERIFY(!deck.go(-1));
        QCOMPARE(deck.current(), 2);
    }

    void referencesAreMadeFitForQuotes_data()
    {
        QTest::addColumn<QString>("reference");
        QTest::addColumn<QString>("fit");
        QTest::newRow("plain") << "http://a.example/b?c=1&d=%20#e"
                               << "http://a.example/b?c=1&d=%20#e";
        QTest::newRow("double quote") << "a\"b"
                                      << "a%22b";
        QTest::newRow("single quote") << "a'b"
                                      << "a%27b";
        QTest::newRow("backslash") << "a\\b"
                                   << "a%5cb";
        QTest::newRow("blank and line end") << "a b\n"
                                            << "a%20b%0a";
        QTest::newRow("letters") << QString::fromUtf8("Blätter.png") << QString::fromUtf8("Blätter.png");
        QTest::newRow("nothing") << QString() << QString();
    }

    void referencesAreMadeFitForQuotes()
    {
        QFETCH(QString, reference);
        QTEST(Picture::ofReference(reference).reference(), "fit");
        QCOMPARE(Picture::ofReference(reference).isEmpty(), reference.isEmpty());
    }
};

QTEST_APPLESS_MAIN(tst_Deck)
#include "tst_Deck.moc"
