#include "app/ScriptFile.h"

#include <QDir>
#include <QTest>

class tst_ScriptFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesKnowWhereTheyStand()
    {
        const ScriptFile::Script script =
            ScriptFile::parse("# a lesson\n\nlogin\n  say hi\r\nlogout", "x.lesson");
        QVERIFY(script.faults.isEmpty());
        QCOMPARE(script.lines.size(), 3);
        QCOMPARE(script.lines.at(0).origin, QStringLiteral("x.lesson:3"));
        QCOMPARE(script.lines.at(2).text, QStringLiteral("logout"));
        QCOMPARE(script.lines.at(2).origin, QStringLiteral("x.lesson:5"));
    }

    void allFaultsAreFoundBeforeAnythingRuns()
    {
        const ScriptFile::Script script =
            ScriptFile::parse("login\npol text\nexpect learners x\nlogout", "x");
        QCOMPARE(script.faults.size(), 2);
        QVERIFY(script.faults.at(0).startsWith("x:2: "));
        QVERIFY(script.faults.at(1).startsWith("x:3: "));
    }

    void whatCanBeKnownIsChecked_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("part");
        QTest::newRow("label") << "poll multiple alhpa-upper"
                               << "Did you mean alpha-upper?";
        QTest::newRow("number of options") << "poll multiple alpha-upper 27"
                                           << "from 2 to 26 options, not 27";
        QTest::newRow("picture of a poll") << "poll text picture no-such.png"
                                           << "no-such.png cannot be read";
        QTest::newRow("picture") << "card no-such.png"
                                 << "no-such.png cannot be read";
        QTest::newRow("no picture") << "deck add demo.lesson"
                                    << "demo.lesson is not a PNG file";
        QTest::newRow("upload") << "upload no-such.pdf"
                                << "no-such.pdf cannot be read";
        QTest::newRow("impossible answer") << "assessment question multiple alpha-upper 3 answer=D"
                                           << "cannot be the right answer";
        QTest::newRow("number") << "assessment start time=soon"
                                << "takes a whole number";
        QTest::newRow("limit") << "wait learners 3 within"
                               << "within";
        QTest::newRow("setting") << "set wait-limit soon"
                                 << "not a number of seconds";
        QTest::newRow("transport") << "set transports websockt"
                                   << "Did you mean websocket?";
        QTest::newRow("card") << "remote card 5 3"
                              << "from 1 to the number of cards";
        QTest::newRow("order: poll") << "poll stop"
                                     << "No poll is running";
        QTest::newRow("order: assessment") << "assessment pause"
                                           << "No assessment is under way";
        QTest::newRow("order: questions") << "assessment start"
                                          << "There are no questions";
        QTest::newRow("order: channel") << "session disconnect\nlock"
                                        << ":4: The live channel is closed";
        QTest::newRow("order: session") << "logout\npoll text"
                                        << ":4: No session is live";
        QTest::newRow("order: login") << "logout\nsession start"
                                      << ":4: This needs a login";
    }

    void whatCanBeKnownIsChecked()
    {
        QFETCH(QString, line);
        QFETCH(QString, part);
        const QString name = QStringLiteral(CALYX_LESSONS "/x.lesson");
        const QString text = "login\nsession start\n" + line;
        const QStringList faults = ScriptFile::parse(text, name).faults;
        QCOMPARE(faults.size(), 1);
        QVERIFY2(faults.first().contains(part), qPrintable(faults.first()));
    }

    void aFileThatIsNoLessonGetsOneSentence_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("part");
        const QString prose = QStringLiteral("It was dark.\nNobody came.\n\nThen came somebody.\nlogin\n");
        QTest::newRow("prose") << prose.repeated(30)
                               << "is no lesson: 90 of its 120 lines begin with no command";
        QTest::newRow("bytes") << QString("PK").append(QChar::Null) << "it is not text in UTF-8";
    }

    void aFileThatIsNoLessonGetsOneSentence()
    {
        QFETCH(QString, text);
        QFETCH(QString, part);
        const ScriptFile::Script script = ScriptFile::parse(text, "x.txt");
        QCOMPARE(script.faults.size(), 1);
        QVERIFY2(script.faults.first().contains(part), qPrintable(script.faults.first()));
        QVERIFY(script.lines.isEmpty());
    }

    void aFileThatCannotBeReadIsAFault()
    {
        const ScriptFile::Script script = ScriptFile::read("no/such.lesson");
        QCOMPARE(script.faults.size(), 1);
        QVERIFY(script.faults.first().contains("no/such.lesson"));
    }

    void ourOwnLessonsAreRight_data()
    {
        QTest::addColumn<QString>("file");
        const QDir folder(QStringLiteral(CALYX_LESSONS));
        const QStringList files = folder.entryList({"*.lesson"});
        QVERIFY(!files.isEmpty());
        for (const QString& file : files)
            QTest::newRow(qPrintable(file)) << folder.filePath(file);
    }

    void ourOwnLessonsAreRight()
    {
        QFETCH(QString, file);
        const ScriptFile::Script script = ScriptFile::read(file);
        QVERIFY2(script.faults.isEmpty(), qPrintable(script.faults.join(QLatin1Char('\n'))));
        QVERIFY(!script.lines.isEmpty());
    }
};

QTEST_APPLESS_MAIN(tst_ScriptFile)
#include "tst_ScriptFile.moc"
