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
        const ScriptFile::Script script = ScriptFile::parse("login\npol text\nwait learners x\nlogout", "x");
        QCOMPARE(script.faults.size(), 2);
        QVERIFY(script.faults.at(0).startsWith("x:2: "));
        QVERIFY(script.faults.at(1).startsWith("x:3: "));
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
