#include "PresenterTest.h"

#include <QJsonArray>
#include <QTemporaryDir>

namespace {

const QString leaf = QStringLiteral("\"" CALYX_LESSONS "/images/leaf.png\"");
const QString threeCards = QStringLiteral("lesson Light and leaves id=l-1\ndeck add %1 name=\"My leaf\"\n"
                                          "deck ref http://pictures.example/two.png\ndeck upload %1\n")
                               .arg(leaf);

// What the presenter has sent of a type, decoded.
QList<QJsonObject> sent(const FakeClassroom& classroom, const QString& type)
{
    QList<QJsonObject> all;
    for (const FakeClassroom::Message& message : classroom.messages() + classroom.toRemote()) {
        if (message.type == type)
            all.append(data(message));
    }
    return all;
}

int count(const FakeClassroom& classroom, const QString& type)
{
    return sent(classroom, type).size();
}

// "2 of 3", as the remote control was told last.
QString card(const FakeClassroom& classroom)
{
    const QList<QJsonObject> all = sent(classroom, "currentCard");
    if (all.isEmpty())
        return QString();
    return all.last().value("currentCard").toVariant().toString() + " of " +
           all.last().value("totalCards").toVariant().toString();
}

QString shownUrl(const FakeClassroom& classroom)
{
    const QJsonArray components = sent(classroom, "showCard").last().value("components").toArray();
    return components.first().toObject().value("blob").toObject().value("url").toString();
}

} // namespace

// What the remote control asks for, and what the host makes of it.
class tst_RemoteControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestsAreAnswered()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE("login\n" + threeCards + "session start\n");
        TRY(card(classroom) == "1 of 3"); // told as soon as it is live
        QCOMPARE(sent(classroom, "currentLesson").last().value("lessonId").toString(), QStringLiteral("l-1"));
        QCOMPARE(sent(classroom, "currentLesson").last().value("name").toString(),
                 QStringLiteral("Light and leaves"));
        for (const char* request : {"presenterActive", "requestLessonInfo", "requestLesson"}) {
            const int before = classroom.toRemote().size();
            classroom.remote(QLatin1String(request));
            TRY(classroom.toRemote().size() == before + 3);
        }
        TRY_END_OF_INPUT();
    }

    void cardsAreGoneThroughAndPushed()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE("login\n" + threeCards + "session start\n");
        classroom.remote("pushCurrentCard");
        TRY(count(classroom, "showCard") == 1);
        QVERIFY(shownUrl(classroom).startsWith("data:image/png;base64,"));
        classroom.remote("nextCard");
        TRY(card(classroom) == "2 of 3");
        QCOMPARE(count(classroom, "showCard"), 1); // going is not showing
        classroom.remote("pushCurrentCard");
        TRY(count(classroom, "showCard") == 2);
        QCOMPARE(shownUrl(classroom), QStringLiteral("http://pictures.example/two.png"));
        classroom.remote("nextCard");
        classroom.remote("nextCard");
        TRY_OUTPUT("Not done: there is no further card.");
        TRY(card(classroom) == "3 of 3");
        classroom.remote("pushCurrentCard");
        TRY(count(classroom, "showCard") == 3);
        QVERIFY(shownUrl(classroom).endsWith("?resourceId=resource-1"));
        classroom.remote("previousCard");
        classroom.remote("previousCard");
        classroom.remote("previousCard");
        TRY_OUTPUT("Not done: there is no earlier card.");
        TRY(card(classroom) == "1 of 3");
        presenter.write("deck next\ndeck\n");
        TRY_END_OF_INPUT();
        TRY(card(classroom) == "2 of 3"); // told of what is typed, too
        const QString output = presenter.output();
        QVERIFY2(output.contains("  Card 2 of 3: two.png\n"), qPrintable(output));
        QVERIFY2(output.contains("     1  My leaf   PNG, 5707 bytes\n"), qPrintable(output));
        QVERIFY2(output.contains("  >  2  two.png   http://pictures.example/two.png\n"), qPrintable(output));
    }

    void aPictureBecomesACard()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive);
        classroom.remote("pushCurrentCard");
        TRY_OUTPUT("Not done: there is no card.");
        QCOMPARE(count(classroom, "showCard"), 0);
        TRY(card(classroom) == "0 of 0");
        const QString small = QStringLiteral("data:image/jpeg;base64,/9j/4AAQSkZJRg==");
        classroom.remote("addImageCard", QVariantMap{{"name", "Board\033[2J"}, {"url", small}});
        TRY(card(classroom) == "1 of 1");
        QCOMPARE(count(classroom, "showCard"), 0);
        classroom.remote("pushCurrentCard");
        TRY(count(classroom, "showCard") == 1);
        QCOMPARE(shownUrl(classroom), small);
        QCOMPARE(count(classroom, "heavy"), 0);
        classroom.remote("addImageCard",
                         QVariantMap{{"url", "data:image/png;base64," + QString(600000, 'A')}});
        TRY(card(classroom) == "2 of 2");
        classroom.remote("pushCurrentCard");
        TRY(count(classroom, "showCard") == 2);
        QCOMPARE(count(classroom, "heavy"), 1);
        TRY_END_OF_INPUT();
        QVERIFY(presenter.output().contains("  Card 1 of 1: Board [2J\n"));
        QVERIFY(presenter.output().contains("  Card 2 of 2: Picture\n"));
    }

    void whatIsNoPictureIsNoCard_data()
    {
        QTest::addColumn<QVariant>("data");
        QTest::newRow("nothing") << QVariant();
        QTest::newRow("no address") << QVariant(QVariantMap{{"name", "x"}});
        QTest::newRow("script") << QVariant(QVariantMap{{"url", "javascript:alert(1)"}});
        QTest::newRow("file") << QVariant(QVariantMap{{"url", "file:///etc/hostname"}});
        QTest::newRow("text") << QVariant(QVariantMap{{"url", "data:text/html;base64,AAAA"}});
        QTest::newRow("not base64") << QVariant(QVariantMap{{"url", "data:image/png;base64,AA\"AA"}});
        QTest::newRow("empty") << QVariant(QVariantMap{{"url", "data:image/png;base64,"}});
    }

    void whatIsNoPictureIsNoCard()
    {
        QFETCH(QVariant, data);
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive);
        classroom.remote("addImageCard", data);
        TRY_OUTPUT("Not done: this is no picture.");
        TRY(card(classroom) == "0 of 0");
        TRY_END_OF_INPUT();
    }

    void pollsAndAssessmentsArePausedAndResumed()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive);
        classroom.remote("pause");
        TRY_OUTPUT("Not done: neither a poll nor an assessment is under way.");
        QCOMPARE(count(classroom, "pause"), 0);
        presenter.write("poll text\n");
        TRY(!classroom.lastQuestion().isEmpty());
        classroom.remote("pause");
        TRY(count(classroom, "pause") == 1);
        presenter.write("poll status\n");
        TRY_OUTPUT("  paused");
        classroom.remote("resume");
        TRY(count(classroom, "resume") == 1);
        presenter.write("assessment question text\nassessment start\n");
        TRY(count(classroom, "assessmentStart") == 1);
        classroom.remote("pause");
        TRY(count(classroom, "pause") == 2);
        classroom.remote("resume");
        TRY(count(classroom, "resume") == 2);
        TRY_END_OF_INPUT();
    }

    void devicesAreLockedAndUnlocked()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive);
        classroom.remote("unlockAll"); // nothing is locked
        classroom.remote("lockAll");
        TRY(count(classroom, "dialogShow") == 1);
        QCOMPARE(sent(classroom, "dialogShow").last().value("isDismissible").toBool(true), false);
        classroom.join("d1", "Ann"); // comes to a locked class
        TRY(count(classroom, "dialogShow") == 2);
        QCOMPARE(classroom.messages().last().address, QStringLiteral("session-token.user.d1"));
        classroom.remote("unlockAll");
        TRY(count(classroom, "dialogShow") == 3);
        QCOMPARE(sent(classroom, "dialogShow").last().value("isDismissible").toBool(), true);
        presenter.write("lock\npoll text\n");
        TRY(!classroom.lastQuestion().isEmpty());
        classroom.join("d2", "Bea"); // the poll has unlocked
        presenter.write("unlock\n");
        TRY_END_OF_INPUT();
        QCOMPARE(count(classroom, "dialogShow"), 4);
    }

    void aLearnersDeviceIsNoRemoteControl()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive);
        classroom.join("d1", "Ann");
        classroom.send("d1", "stopSession", QVariant());
        TRY_OUTPUT("Not done: it came from Ann.");
        classroom.send("d2", "stopSession", QVariant()); // nobody whom the service knows
        TRY_OUTPUT("Not done: it came from d2.");
        presenter.write("poll text\n"); // the session goes on
        TRY(!classroom.lastQuestion().isEmpty());
        TRY_END_OF_INPUT();
    }

    void stoppingTheSessionEndsTheLessonWell()
    {
        FakeClassroom classroom;
        QTemporaryDir folder;
        QFile script(folder.filePath("ended.lesson"));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("login\nsession start\nsay waiting\nwait learners 5\nsay never said\n");
        script.close();
        Presenter presenter(arguments(classroom, {"--script", script.fileName()}));
        TRY_OUTPUT("waiting");
        TRY(count(classroom, "currentLesson") > 0);
        QCOMPARE(sent(classroom, "currentLesson").last().value("name").toString(), QStringLiteral("ended"));
        classroom.remote("stopSession");
        TRY_ENDED(presenter, 0);
        QCOMPARE(presenter.errors(), QString());
        QVERIFY(!presenter.output().contains("never said"));
        QCOMPARE(count(classroom, "disconnect"), 1);
        QCOMPARE(classroom.requests().mid(classroom.requests().size() - 2),
                 QStringList({"/session/stop", "/login/logout"}));
    }

    void anUploadedPictureGoesWithAPoll()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        presenter.write(goLive + QStringLiteral("poll text upload %1\npoll word-seed upload %1\n").arg(leaf));
        TRY_END_OF_INPUT();
        const QString address =
            QStringLiteral("url('%1/tavisto/resource/downloadResourceFile?resourceId=resource-1')")
                .arg(classroom.url());
        for (const char* type : {"questionStart", "poll"}) {
            const QJsonObject styles =
                sent(classroom, type).first().value("card").toObject().value("styles").toObject();
            QCOMPARE(styles.value("backgroundImage").toString(), address);
        }
        QVERIFY(classroom.body("/resource/uploadResourceFile").contains("filename=\"leaf.png\""));
    }

    void cardsThatAreNotThereAreRefused_data()
    {
        QTest::addColumn<QString>("lines");
        QTest::addColumn<QString>("part");
        QTest::newRow("none to show") << goLive + "deck show\n"
                                      << "The lesson has no cards.";
        QTest::newRow("none further") << "deck add " + leaf + "\ndeck next\n"
                                      << "There is no card 2: the lesson has 1 card.";
        QTest::newRow("no such number") << "deck go 1\n"
                                        << "The lesson has no cards.";
        QTest::newRow("no file") << "deck add no.png\n"
                                 << "no.png cannot be read";
        QTest::newRow("no upload") << "login\ndeck upload no.png\n"
                                   << "no.png cannot be read";
        QTest::newRow("not live") << "lock\n"
                                  << "No session is live.";
    }

    void cardsThatAreNotThereAreRefused() { verifyRefused(); }
};

QTEST_GUILESS_MAIN(tst_RemoteControl)
#include "tst_RemoteControl.moc"
