#include "commands/CommandTable.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class tst_Completer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        for (const char* name : {"leaf.png", "my leaf.png"}) {
            QFile file(m_folder.filePath(QLatin1String(name)));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QVERIFY(QDir(m_folder.path()).mkdir("images"));
    }

    void candidatesFitThePlace_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("start");
        QTest::addColumn<QStringList>("candidates");
        QTest::newRow("command") << "logo" << 0 << QStringList{"logout"};
        QTest::newRow("case") << "LOGO" << 0 << QStringList{"logout"};
        QTest::newRow("second word") << "session rec" << 8 << QStringList{"reconnect"};
        QTest::newRow("second words") << "wait " << 5 << QStringList({"answers", "assessment", "learners"});
        QTest::newRow("poll type") << "poll tr" << 5 << QStringList{"true-false"};
        QTest::newRow("poll type or command")
            << "poll s" << 5 << QStringList({"scale", "sort", "status", "stop"});
        QTest::newRow("ordinal") << "poll multiple alpha-" << 14
                                 << QStringList({"alpha-lower", "alpha-upper"});
        QTest::newRow("keyword") << "wait answers all " << 17 << QStringList{"within"};
        QTest::newRow("amount") << "expect answers " << 15 << QStringList{"all"};
        QTest::newRow("learner") << "remove Z" << 7 << QStringList{"Zoë"};
        QTest::newRow("learner with a blank") << "remove \"Li" << 7 << QStringList{"\"Li Mei\""};
        QTest::newRow("file") << "card le" << 5 << QStringList{"leaf.png"};
        QTest::newRow("file with a blank") << "card m" << 5 << QStringList{"\"my leaf.png\""};
        QTest::newRow("folder") << "upload im" << 7 << QStringList{"images/"};
        QTest::newRow("picture") << "poll text picture le" << 18 << QStringList{"leaf.png"};
        QTest::newRow("transport") << "session reconnect web" << 18 << QStringList{"websocket"};
        QTest::newRow("help") << "help whoa" << 5 << QStringList{"whoami"};
        QTest::newRow("help of a family") << "help session sta" << 13 << QStringList{"start"};
        QTest::newRow("name of a setting") << "assessment start ti" << 17 << QStringList({"time=", "title="});
        QTest::newRow("addressee") << "assessment start to=Z" << 17 << QStringList{"to=Zoë"};
        QTest::newRow("addressee with a blank")
            << "assessment start to=\"L" << 17 << QStringList{"\"to=Li Mei\""};
        QTest::newRow("behind the last word") << "wait answers all within 5 " << 26 << QStringList{};
        QTest::newRow("setting") << "set open" << 4 << QStringList{"open-limit"};
        QTest::newRow("nothing") << "say he" << 4 << QStringList{};
        QTest::newRow("unknown command") << "dance w" << 6 << QStringList{};
    }

    void candidatesFitThePlace()
    {
        QFETCH(QString, line);
        const Completion completion = Completer::complete(line, {"Zoë", "Li Mei"}, m_folder.path());
        QTEST(completion.start, "start");
        QTEST(completion.candidates, "candidates");
    }

    void anEmptyLineOffersAllFirstWordsOnce()
    {
        const QStringList candidates = Completer::complete(QString(), {}, m_folder.path()).candidates;
        QCOMPARE(candidates.count("session"), 1);
        QVERIFY(candidates.contains("quit"));
        QVERIFY(!candidates.contains("start"));
    }

private:
    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(tst_Completer)
#include "tst_Completer.moc"
