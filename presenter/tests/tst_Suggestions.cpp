#include "text/Suggestions.h"

#include <QTest>

class tst_Suggestions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void distanceCountsChanges_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<int>("distance");
        QTest::newRow("same") << "poll"
                              << "poll" << 0;
        QTest::newRow("empty") << ""
                               << "poll" << 4;
        QTest::newRow("insertion") << "pol"
                                   << "poll" << 1;
        QTest::newRow("exchange") << "pull"
                                  << "poll" << 1;
        QTest::newRow("swap") << "oplls"
                              << "polls" << 1;
        QTest::newRow("far") << "kitten"
                             << "sitting" << 3;
    }

    void distanceCountsChanges()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QTEST(Suggestions::distance(a, b), "distance");
        QCOMPARE(Suggestions::distance(b, a), Suggestions::distance(a, b));
    }

    void closeWordsAreFound()
    {
        const QStringList known = {"login", "logout", "learners", "poll"};
        QCOMPARE(Suggestions::closeTo("logn", known), QStringList{"login"});
        QCOMPARE(Suggestions::closeTo("LOGIN", known), QStringList{"login"});
        QCOMPARE(Suggestions::closeTo("learn", known), QStringList{"learners"});
        QCOMPARE(Suggestions::closeTo("xyzzy", known), QStringList{});
        QCOMPARE(Suggestions::closeTo("", known), QStringList{});
    }

    void threeAreEnough() { QCOMPARE(Suggestions::closeTo("aa", {"aab", "aac", "aad", "aae"}).size(), 3); }

    void aLongWordIsNotCompared()
    {
        const QString word(100000, QLatin1Char('a'));
        QCOMPARE(Suggestions::closeTo(word, {word}), QStringList{});
    }

    void theQuestionIsASentence()
    {
        QCOMPARE(Suggestions::question("pol", {"poll"}), QStringLiteral(" Did you mean poll?"));
        QCOMPARE(Suggestions::question("xyz", {"poll"}), QString());
    }
};

QTEST_APPLESS_MAIN(tst_Suggestions)
#include "tst_Suggestions.moc"
