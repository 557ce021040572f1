#include "PresenterTest.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>

class tst_Program : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionAndHelpAreAnswered()
    {
        Presenter version({"--version"});
        TRY_ENDED(version, 0);
        QVERIFY(version.output().startsWith("calyx-presenter "));
        Presenter help({"--help"});
        TRY_ENDED(help, 0);
        QVERIFY(help.output().contains("Exit status:"));
        QVERIFY(help.errors().isEmpty());
    }

    void aWrongCommandLineIsUsage()
    {
        Presenter presenter({"--server", "nowhere"});
        TRY_ENDED(presenter, 2);
        QVERIFY(presenter.errors().contains("--server takes an address"));
        QVERIFY(presenter.output().isEmpty());
    }

    void aWrongScriptIsUsageAndRunsNothing()
    {
        FakeClassroom classroom;
        const QString script = write("wrong.lesson", "login\n\npol text\n");
        Presenter presenter(arguments(classroom, {"--script", script}));
        TRY_ENDED(presenter, 2);
        QVERIFY(presenter.errors().contains(script + ":3: There is no command \"pol\". Did you mean poll?"));
        QVERIFY(classroom.requests().isEmpty());
    }

    void aScriptIsCheckedWithoutAService()
    {
        const QString script = write("right.lesson", "login\nsession start\npoll text\n");
        Presenter right({"--check", script});
        TRY_ENDED(right, 0);
        QCOMPARE(right.output() + right.errors(), QString());
        const QByteArray prose = QByteArray("It was dark.\nNobody came.\n").repeated(9);
        Presenter wrong({"--check", write("prose.txt", prose.constData())});
        TRY_ENDED(wrong, 2);
        QVERIFY2(wrong.errors().contains("is no lesson"), qPrintable(wrong.errors()));
    }

    void aScriptThatIsNotThereIsUsage()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom, {"--script", "no/such.lesson"}));
        TRY_ENDED(presenter, 2);
        QVERIFY(presenter.errors().contains("no/such.lesson cannot be read"));
    }

    void anUnknownServerIsUnreachable()
    {
        QTcpServer taken; // a port at which nobody answers once it is closed again
        QVERIFY(taken.listen(QHostAddress::LocalHost));
        const QString url = QStringLiteral("http://127.0.0.1:%1").arg(taken.serverPort());
        taken.close();
        Presenter presenter({"--server", url, "--user", "teacher"});
        presenter.write("login\nsay never said\n");
        TRY_ENDED(presenter, 3);
        QVERIFY(presenter.errors().contains("stdin:1: Login failed: no classroom service answers at " + url));
        QVERIFY(!presenter.output().contains("never said"));
    }

    void aRefusedLoginNamesTheKey()
    {
        FakeClassroom classroom;
        classroom.refuse("/login/submit", "login.error.invalid");
        Presenter presenter(arguments(classroom));
        presenter.write("login\n");
        TRY_ENDED(presenter, 1);
        QCOMPARE(presenter.errors(),
                 QStringLiteral(
                     "stdin:1: Login was refused (login.error.invalid). Check --user and --password.\n"));
    }

    void nothingToDoIsDone()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        presenter.closeInput();
        TRY_ENDED(presenter, 0);
        QVERIFY(classroom.requests().isEmpty());
    }

    void thePasswordMayHoldQuotes()
    {
        FakeClassroom classroom;
        Presenter presenter({"--server", classroom.url(), "--user", "te\"acher", "--password", "a\\b\"c"});
        presenter.write("login\n");
        presenter.closeInput();
        TRY_ENDED(presenter, 0);
        QVERIFY(classroom.body("/login/submit")
                    .contains("\"userId\":\"te\\\"acher\",\"password\":\"a\\\\b\\\"c\""));
    }

    void aLessonRunsFromItsScript()
    {
        FakeClassroom classroom;
        const QString script = write("ok.lesson", "login\nsession start\nwait learners 2\npoll true-false\n"
                                                  "wait answers all\nexpect answers 2\npoll stop\nsummary\n"
                                                  "session stop\nlogout\n");
        Presenter presenter(arguments(classroom, {"--script", script}));
        TRY_OUTPUT("is live"); // the bus tells nobody else of those who join
        classroom.join("d1", "Ann");
        classroom.join("d2", "Bea\033[2J");
        TRY(!classroom.lastQuestion().isEmpty());
        classroom.answer("d1", classroom.lastQuestion(), {"A"});
        classroom.answer("d1", classroom.lastQuestion(), {"B"});
        classroom.answer("d2", "another question", {"A"});
        classroom.answer("d2", classroom.lastQuestion(), {"B"});
        TRY_ENDED(presenter, 0);
        const QString output = presenter.output();
        QVERIFY2(output.contains(QRegularExpression("  \\+ (Ann, )?Bea \\[2J ha(s|ve) joined, 2 here")),
                 qPrintable(output));
        QVERIFY2(output.contains("Poll 1: true-false, 2 options  2 of 2 answered"), qPrintable(output));
        QVERIFY2(output.contains(QRegularExpression("  A True   +0    0 %\n  B False  █+  2  100 %")),
                 qPrintable(output));
        QVERIFY2(output.contains("Total: 2 learners, 1 poll, 2 answers, 0 cards, 0 late answers."),
                 qPrintable(output));
        QVERIFY2(output.contains("An answer of Bea [2J does not count"), qPrintable(output));
        QVERIFY2(!output.contains(QLatin1Char('\033')), qPrintable(output));
        QVERIFY2(!output.contains("unknown type"), qPrintable(output)); // our own question came back
        QCOMPARE(classroom.requests().last(), QStringLiteral("/login/logout"));
        QCOMPARE(presenter.errors(), QString());
    }

    void aFailedCommandEndsTheLessonCleanly()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        presenter.write(goLive + "expect learners 3\nsay never said\n");
        TRY_ENDED(presenter, 1);
        QVERIFY(presenter.errors().contains("stdin:3: Expected otherwise: 0 of 3 learners are here."));
        QVERIFY(!presenter.output().contains("never said"));
        QCOMPARE(classroom.requests().mid(classroom.requests().size() - 2),
                 QStringList({"/session/stop", "/login/logout"}));
    }

    void aWaitThatIsNotMetNamesWhoIsMissing()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        presenter.write(goLive + "wait learners 2\npoll text\nwait answers all within 1\n");
        TRY_OUTPUT("is live"); // the bus tells nobody else of those who join
        classroom.join("d1", "Ann");
        classroom.join("d2", "Bea");
        TRY(!classroom.lastQuestion().isEmpty());
        classroom.answer("d1", classroom.lastQuestion(), {}, "x");
        TRY_ENDED(presenter, 1);
        QVERIFY2(presenter.errors().contains(
                     "stdin:5: After 1 second, 1 of 2 answers have come; none yet from Bea."),
                 qPrintable(presenter.errors()));
    }

    void aWaitGoesOnWhileTheChannelIsLost()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + "wait learners 1\npoll text\n");
        classroom.closeBus();
        TRY_OUTPUT("The connection is lost. Trying again.\nThe connection is back.\n");
        classroom.join("d1", "Ann");
        TRY(!classroom.lastQuestion().isEmpty());
        TRY_END_OF_INPUT();
    }

    void aSessionThatIsGoneEndsAWait()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + "wait learners 1\n");
        classroom.refuse("/session/getusers", "session.error.unknown");
        classroom.closeBus();
        TRY_ENDED(presenter, 1);
        QVERIFY2(presenter.output().contains("The service does not know the lesson any more."),
                 qPrintable(presenter.output()));
        QVERIFY2(presenter.errors().contains("The session was lost while waiting: 0 of 1 learners are here"),
                 qPrintable(presenter.errors()));
        QCOMPARE(classroom.requests().last(), QStringLiteral("/login/logout"));
    }

    void whatLearnersAndTheRemoteControlDoIsShown()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        presenter.write(goLive);
        TRY(presenter.output().contains("is live"));
        classroom.join("d1", "Ann");
        classroom.leave("d1");
        classroom.remote("nextCard", QVariantMap{{"n", 1}});
        classroom.send("d2", "dance", QVariantMap{{"step", "\033c"}});
        TRY_OUTPUT("Remote control: nextCard {\"n\":1}\n");
        TRY(presenter.output().contains("from d2: {\"step\":"));
        presenter.write("poll text\npoll pause\npoll resume\n");
        presenter.closeInput();
        TRY_ENDED(presenter, 0);
        const QString output = presenter.output();
        QVERIFY2(output.contains("  + Ann has joined, 1 here\n  - Ann has left, 0 here\n"),
                 qPrintable(output));
        QVERIFY2(output.contains("  Remote control: nextCard {\"n\":1}\n"), qPrintable(output));
        QVERIFY2(output.contains("  A message of the unknown type \"dance\" from d2"), qPrintable(output));
        QVERIFY2(output.contains("The poll is paused; \"poll resume\" goes on.\nThe poll goes on.\n"),
                 qPrintable(output));
        QCOMPARE(output.count("Remote control:"), 1); // "pause" and "resume" were our own
        QVERIFY(!output.contains(QLatin1Char('\033')));
    }

    void whoJoinedBeforeUsIsFound()
    {
        FakeClassroom classroom;
        classroom.setUsers({QVariantMap{{"userToken", "d1"}, {"userName", "Ann"}, {"mode", "learner"}}});
        Presenter presenter(arguments(classroom));
        presenter.write(goLive + "wait learners 1\n");
        presenter.closeInput();
        TRY_ENDED(presenter, 0);
        QVERIFY(presenter.output().contains("  + Ann has joined, 1 here"));
    }

    void aSessionIsCreatedAndThenStarted()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        presenter.write("login\nsession create\nsession live\nsession stop\nsession start\n");
        TRY_END_OF_INPUT();
        QVERIFY(presenter.output().contains("Session 123 456 is created."));
        QCOMPARE(presenter.output().count("Session 123 456 is live."), 2);
        QCOMPARE(classroom.requests().count("/session/create"), 2); // one for each
    }

    void aClosedChannelIsOpenedAgainOnRequest()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + "session disconnect\nsession reconnect\nsession reconnect websocket\n");
        TRY(presenter.output().count("The live channel is open again.") == 2);
        TRY_END_OF_INPUT();
        QVERIFY(!presenter.output().contains("The connection is lost."));
        QVERIFY(presenter.output().contains("the learners' devices say that the session has ended"));
    }

    void aKilledLessonIsTakenUp()
    {
        FakeClassroom classroom;
        const QStringList journal = {"--journal", m_folder.filePath("lesson.journal")};
        Presenter killed(arguments(classroom, journal));
        killed.write(goLive + "poll true-false\nwait answers 1\nsay counted\n");
        TRY(!classroom.lastQuestion().isEmpty());
        classroom.join("d1", "Ann");
        classroom.answer("d1", classroom.lastQuestion(), {"B"});
        TRY(killed.output().contains("\ncounted\n"));
        killed.signal(SIGKILL);
        TRY(!killed.isRunning());

        classroom.setUsers({QVariantMap{{"userToken", "d1"}, {"userName", "Ann"}, {"mode", "learner"}}});
        Presenter presenter(arguments(classroom, journal));
        presenter.write(
            "login\nsession resume\nexpect learners 1\nexpect answers 1\npoll stop\nsession stop\n"
            "session resume\n");
        TRY_ENDED(presenter, 1);
        const QString output = presenter.output();
        QVERIFY2(output.contains("Session 123 456 was not ended: \"session resume\" takes it up."),
                 qPrintable(output));
        QVERIFY2(output.contains(QRegularExpression("  B False  █+  1  100 %\n")), qPrintable(output));
        QVERIFY2(presenter.errors().contains("There is no session to take up."),
                 qPrintable(presenter.errors()));
        QCOMPARE(classroom.requests().count("/session/create"), 1);
    }

    void resultsAreSaved()
    {
        FakeClassroom classroom;
        const QString json = m_folder.filePath("r.json");
        const QString csv = m_folder.filePath("r.csv");
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive +
                         "poll true-false text=\"Is it green?\" answer=A\nwait answers 1\npoll results\n"
                         "save \"" +
                         json + "\"\nsave \"" + csv + "\"\nsave /nowhere/r.csv\n");
        classroom.join("d1", "Ann");
        TRY(!classroom.lastQuestion().isEmpty());
        classroom.answer("d1", classroom.lastQuestion(), {"B"});
        TRY_ENDED(presenter, 1);
        QVERIFY2(presenter.errors().contains("/nowhere/r.csv cannot be written"),
                 qPrintable(presenter.errors()));
        QFile file(json);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QJsonDocument::fromJson(file.readAll()).object().value("polls").toArray().size(), 1);
        QVERIFY(QFile::exists(csv));
        QVERIFY2(presenter.output().contains("  1  true-false  1 of 1   0 "), qPrintable(presenter.output()));
        const QList<FakeClassroom::Message> messages = classroom.messages();
        QVERIFY(std::any_of(messages.begin(), messages.end(), [](const FakeClassroom::Message& message) {
            return message.type == "dialogShow" && message.text.contains("Your answer is not right.");
        }));
    }

    void aSecondPollStopsTheFirst()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        presenter.write(goLive + "poll text\npoll scale\n");
        presenter.closeInput();
        TRY_ENDED(presenter, 0);
        QStringList types;
        const QList<FakeClassroom::Message> messages = classroom.messages();
        for (const FakeClassroom::Message& message : messages)
            types.append(message.type);
        QCOMPARE(types,
                 QStringList({"questionStart", "pollStop", "questionStart", "pollStop", "disconnect"}));
    }

    void pollsOneAfterTheOtherHaveDifferentIds()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        presenter.write(goLive + "poll text\npoll text\npoll text\nsummary\n");
        TRY_END_OF_INPUT();
        QStringList ids;
        const QList<FakeClassroom::Message> messages = classroom.messages();
        for (const FakeClassroom::Message& message : messages) {
            if (message.type == "questionStart")
                ids.append(QJsonDocument::fromJson(message.text.toUtf8()).object().value("id").toString());
        }
        QCOMPARE(ids.size(), 3);
        QCOMPARE(ids.removeDuplicates(), 0);
    }

    void picturesGoOut()
    {
        FakeClassroom classroom;
        const QString picture = QStringLiteral(CALYX_LESSONS "/images/leaf.png");
        Presenter presenter(arguments(classroom));
        presenter.write(goLive +
                        QStringLiteral("card \"%1\"\npoll text picture \"%1\"\npoll stop\npoll text\n"
                                       "card upload \"%1\"\n")
                            .arg(picture));
        presenter.closeInput();
        TRY_ENDED(presenter, 0);
        QStringList cards;
        QStringList questions;
        const QList<FakeClassroom::Message> messages = classroom.messages();
        for (const FakeClassroom::Message& message : messages) {
            if (message.type == "showCard")
                cards.append(message.text);
            if (message.type == "questionStart")
                questions.append(message.text);
        }
        QCOMPARE(cards.size(), 2);
        QVERIFY(cards.first().contains("data:image/png;base64,"));
        QVERIFY(cards.last().contains(classroom.url() +
                                      "/tavisto/resource/downloadResourceFile?resourceId=resource-1"));
        QCOMPARE(questions.size(), 2);
        QVERIFY(questions.first().contains("data:image/png;base64,"));
        QVERIFY(!questions.last().contains("data:image/png;base64,"));
    }

    void aFileThatIsNoPictureIsRefused()
    {
        FakeClassroom classroom;
        const QString file = write("no.png", "hello");
        Presenter presenter(arguments(classroom));
        presenter.write(goLive + QStringLiteral("card \"%1\"\n").arg(file));
        TRY_ENDED(presenter, 1);
        QVERIFY(presenter.errors().contains("is not a PNG file"));
    }

    void aNewUserRegisters()
    {
        FakeClassroom classroom;
        classroom.setReply("/login/oauth/schoolid/callback",
                           "{\"infoMsgKeys\":[\"oauth.success.registration\"],"
                           "\"data\":{\"userId\":\"new\",\"age\":7}}");
        Presenter presenter(arguments(classroom));
        presenter.write("login oauth schoolid code\n");
        TRY_ENDED(presenter, 1);
        QVERIFY2(
            presenter.errors().contains("wants schoolid to register first. It knows: age=7, userId=new."),
            qPrintable(presenter.errors()));
    }

    void aSignalEndsTheLessonCleanly_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGHUP") << SIGHUP;
    }

    void aSignalEndsTheLessonCleanly()
    {
        QFETCH(int, signal);
        FakeClassroom classroom;
        const QString script = write("signal.lesson", "login\nsession start\nsay waiting\nwait learners 1\n");
        Presenter presenter(arguments(classroom, {"--script", script}));
        TRY(presenter.output().contains("waiting"));
        presenter.signal(signal);
        TRY_ENDED(presenter, 128 + signal);
        QCOMPARE(classroom.requests().mid(classroom.requests().size() - 2),
                 QStringList({"/session/stop", "/login/logout"}));
        QCOMPARE(presenter.errors(), QString());
    }

    void theThirdSignalEndsAtOnce()
    {
        FakeClassroom classroom;
        classroom.hold("/login/logout"); // the clean end would take ten seconds
        Presenter presenter(arguments(classroom));
        presenter.write("login\nsay waiting\npause 60\n");
        TRY(presenter.output().contains("waiting"));
        presenter.signal(SIGTERM);
        TRY(classroom.requests().contains("/login/logout"));
        presenter.signal(SIGINT);
        presenter.signal(SIGTERM);
        QTRY_VERIFY_WITH_TIMEOUT(!presenter.isRunning(), 5000);
        QVERIFY(presenter.status() == 128 + SIGTERM || presenter.status() == 128 + SIGINT);
    }

    void linesThatComeDuringAnOperationWait()
    {
        FakeClassroom classroom;
        classroom.hold("/login/keepSessionAlive");
        Presenter presenter(arguments(classroom));
        presenter.write("login\nkeepalive\n");
        TRY(classroom.requests().contains("/login/keepSessionAlive"));
        presenter.write("say first\nsay second\nquit\nsay third\n");
        classroom.release();
        TRY_ENDED(presenter, 0);
        QVERIFY(presenter.output().contains("first\nsecond\n"));
        QVERIFY(!presenter.output().contains("third"));
        QCOMPARE(classroom.requests(),
                 QStringList({"/login/submit", "/login/keepSessionAlive", "/login/logout"}));
    }

    void quietPrintsResultsOnly()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom, {"--quiet"}));
        presenter.write("login\nheading Hello\nsay hello\nwhoami\n");
        presenter.closeInput();
        TRY_ENDED(presenter, 0);
        QCOMPARE(presenter.output(), QStringLiteral("teacher is logged in.\n"));
    }

    void diagnosticsArePrintedOnRequestOnly()
    {
        FakeClassroom classroom;
        Presenter silent(arguments(classroom));
        silent.write("login\n");
        silent.closeInput();
        TRY_ENDED(silent, 0);
        QCOMPARE(silent.errors(), QString());
        Presenter verbose(arguments(classroom, {"--verbose"}));
        verbose.write("login\n");
        verbose.closeInput();
        TRY_ENDED(verbose, 0);
        QVERIFY(verbose.errors().contains("[REST Response]"));
    }

private:
    QString write(const char* name, const char* content)
    {
        const QString path = m_folder.filePath(QLatin1String(name));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("No temporary file");
        file.write(content);
        return path;
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(tst_Program)
#include "tst_Program.moc"
