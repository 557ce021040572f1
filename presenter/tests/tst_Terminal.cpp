#include "FakeClassroom.h"
#include "Terminal.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

namespace {

constexpr int limit = 30000; // ms

const QString goLive = QStringLiteral("login\rsession start\r");

QStringList arguments(const FakeClassroom& classroom)
{
    return {"--server", classroom.url(), "--user", "teacher", "--password", "chalk"};
}

} // namespace

#define TRY(condition) QTRY_VERIFY2_WITH_TIMEOUT(condition, qPrintable(terminal.text()), limit)
#define TRY_SHOWN(part) TRY(terminal.text().contains(part))
#define TRY_LINE(line) TRY(terminal.lastLine() == (line))
// Types lines that start a session, and waits until it is live.
#define TYPE_UNTIL_LIVE(lines)                                                                               \
    terminal.type(lines);                                                                                    \
    TRY_SHOWN("is live")
#define TRY_ENDED(expected)                                                                                  \
    TRY(terminal.hasEnded());                                                                                \
    QCOMPARE(terminal.exitCode(), expected)

// At a terminal: the prompt, the chart that redraws, and both together.
class tst_Terminal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thePromptComesAndGoes()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TRY_LINE("calyx>");
        terminal.type("say hello\r");
        TRY(terminal.text().endsWith("calyx> say hello\nhello\ncalyx>"));
        terminal.type("\004");
        TRY_ENDED(0);
        QVERIFY2(terminal.text().endsWith("\nhello"), qPrintable(terminal.text()));
        QVERIFY(terminal.isCooked());
    }

    void aFailedCommandIsForgiven()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        terminal.type("logn\r");
        TRY_SHOWN("There is no command \"logn\". Did you mean login?");
        terminal.type("quit\r");
        TRY_ENDED(0);
    }

    void linesAreEditedCompletedAndRemembered()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TRY_LINE("calyx>");
        terminal.type("who");
        terminal.type("\t");
        TRY_LINE("calyx> whoami");
        terminal.type("\r");
        TRY_SHOWN("teacher is logged in.");
        terminal.type("\033[A");
        TRY_LINE("calyx> whoami");
        terminal.type("\025session \t");
        TRY_SHOWN("create  disconnect  info  live  reconnect  resume  start  stop");
        QCOMPARE(terminal.lastLine(), QStringLiteral("calyx> session"));
        terminal.type("INF\t");
        TRY_LINE("calyx> session info");
        terminal.type("\025\004");
        TRY_ENDED(0);
    }

    void aLoneEscapeBlocksNothing()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TYPE_UNTIL_LIVE(goLive);
        terminal.type("ab\033");
        classroom.join("d1", "Ann");
        TRY_SHOWN("+ Ann has joined, 1 here");
        TRY_LINE("calyx> ab");
    }

    void theChartIsRedrawnAboveWhatIsTyped()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TYPE_UNTIL_LIVE(goLive);
        classroom.join("d1", "Ann");
        classroom.join("d2", "Bea");
        TRY_SHOWN("2 here");
        terminal.type("poll multiple alpha-upper 2\r");
        TRY_SHOWN("0 of 2 answered");
        TRY(!classroom.lastQuestion().isEmpty());
        terminal.type("poll sto");
        TRY_LINE("calyx> poll sto");
        classroom.answer("d1", classroom.lastQuestion(), {"A"});
        TRY_SHOWN("1 of 2 answered");
        classroom.answer("d2", classroom.lastQuestion(), {"A"});
        TRY_SHOWN("2 of 2 answered");
        const QStringList screen = terminal.screen();
        QCOMPARE(screen.filter("Poll 1").size(), 1);
        QCOMPARE(screen.filter(QRegularExpression("^  A  █+  2  100 %$")).size(), 1);
        QVERIFY(screen.at(screen.size() - 2).contains(QRegularExpression("^  B +0    0 %$")));
        QCOMPARE(terminal.lastLine(), QStringLiteral("calyx> poll sto"));
        QCOMPARE(terminal.cursorColumn(), QString("calyx> poll sto").size());
        terminal.type("p\rquit\r");
        TRY_ENDED(0);
        QCOMPARE(terminal.screen().filter("Poll 1").size(), 1);
    }

    void aLongLineStaysWhole()
    {
        FakeClassroom classroom;
        constexpr int columns = 40;
        Terminal terminal(arguments(classroom), columns);
        TYPE_UNTIL_LIVE(goLive);
        const QString typed = "say a line that is longer than the terminal is wide, and then some";
        terminal.type(typed);
        TRY_LINE(typed.mid(columns - 7));
        classroom.join("d1", "Ann");
        TRY_SHOWN("+ Ann has joined, 1 here\ncalyx> say a line");
        TRY(terminal.text().remove('\n').endsWith("here" + QString("calyx> ") + typed));
        terminal.type("\001"); // to its start
        TRY(terminal.cursorColumn() == 7);
        classroom.leave("d1");
        TRY_SHOWN("- Ann has left, 0 here\ncalyx> say a line");
        TRY(terminal.text().remove('\n').endsWith("0 here" + QString("calyx> ") + typed));
        QCOMPARE(terminal.screen().filter("calyx> say").size(), 1);
        terminal.type("\r");
        TRY(terminal.text().endsWith("calyx>"));
        QCOMPARE(terminal.screen().filter("calyx> say").size(), 1);
    }

    void aWaitIsGivenUpAndTheLessonGoesOn()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TYPE_UNTIL_LIVE(goLive);
        terminal.type("say now\rwait learners 5\rsay queued\r");
        TRY_SHOWN("\nnow\n");
        TRY(terminal.lastLine().startsWith("Waiting: 0 of 5 learners are here  0:0")); // and no prompt
        terminal.type("say unread\r");
        terminal.type("\003");
        TRY_SHOWN("Interrupted.");
        TRY_SHOWN("Not done: say queued");
        TRY_SHOWN("Not done: say unread");
        TRY_LINE("calyx>");
        terminal.type("say after\r");
        TRY_SHOWN("\nafter\n");
        QVERIFY(!terminal.text().contains("\nqueued\n")); // what waited behind it is given up, too
        terminal.type("half a li");
        TRY_LINE("calyx> half a li");
        terminal.type("\003");
        TRY(terminal.text().endsWith("\nafter\ncalyx> half a li^C\ncalyx>"));
        QVERIFY(!terminal.text().contains("Ctrl-C again"));
        terminal.type("\003");
        TRY_SHOWN("A session with 0 learners is open. Ctrl-C again, or \"quit\", ends it.");
        TRY_LINE("calyx>");
        terminal.type("\003");
        TRY_ENDED(128 + SIGINT);
        QVERIFY(terminal.isCooked());
        QCOMPARE(classroom.requests().last(), QStringLiteral("/login/logout"));
    }

    void theWayBackIsShownAndNotWaitedFor()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TYPE_UNTIL_LIVE(goLive);
        classroom.refuse("/session/getusers", "not.now");
        classroom.closeBus();
        TRY_SHOWN(
            QRegularExpression("\nThe connection is lost. Trying again in \\d+ s \\(r: now\\).\ncalyx>$"));
        terminal.type("poll text\r");
        TRY_SHOWN("Poll 1: text  0 of 0 answered");
        QVERIFY(terminal.text().contains("The connection is lost."));
        terminal.type("session reconnect\r");
        TRY(terminal.lastLine().startsWith("Waiting: the live channel"));
        terminal.type("\003");
        TRY_SHOWN("The way back is still looked for");
        classroom.refuse("/session/getusers", QString());
        terminal.type("r\r");
        TRY_SHOWN("Trying again now.");
        TRY_SHOWN("The connection is back.");
        TRY(!classroom.lastQuestion().isEmpty()); // what was done meanwhile
        TRY(!terminal.text().contains("The connection is lost."));
    }

    void aSessionThatIsGoneLeavesNothingBehind()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TYPE_UNTIL_LIVE(goLive);
        terminal.type("r\r");
        TRY_SHOWN("The connection is not lost: the live channel is open.");
        const auto journals = [&] {
            return QDir(terminal.data() + "/calyx-presenter").entryList({"*.journal*"}).size();
        };
        QCOMPARE(journals(), 1);
        terminal.type("session stop\rsession start\r");
        TRY(terminal.text().count("is live") == 2);
        QCOMPARE(journals(), 2);
        classroom.refuse("/session/getusers", "session.error.unknown");
        classroom.closeBus();
        TRY_SHOWN("The service does not know the lesson any more.");
        terminal.type("quit\r");
        TRY_ENDED(0);
        QCOMPARE(journals(), 0);
    }

    void learnersAreToldWhereToJoin_data()
    {
        QTest::addColumn<QString>("host");
        QTest::newRow("loopback") << "127.0.0.1";
        QTest::newRow("all addresses, which nobody can ask for") << "0.0.0.0";
    }

    void learnersAreToldWhereToJoin()
    {
        QFETCH(QString, host);
        FakeClassroom classroom;
        QStringList all = arguments(classroom);
        all[1].replace("127.0.0.1", host);
        Terminal terminal(all, 80, 40);
        TYPE_UNTIL_LIVE(goLive);
        TRY(terminal.lastLine() == "calyx>");
        const QString shown = terminal.text();
        QVERIFY2(shown.contains(QRegularExpression("Join at http://[\\d.]+:\\d+ with 123 456\\.")),
                 qPrintable(shown));
        QVERIFY(!shown.contains("http://0.0.0.0"));
        const bool isReachable = !shown.contains("Join at http://127.");
        QCOMPARE(shown.contains("Only this machine can reach that address"), !isReachable);
        QCOMPARE(shown.contains(QString::fromUtf8("██ ▄▄▄▄▄ █")), isReachable); // a QR code's corner
    }

    void aPollIsCountedDown()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TYPE_UNTIL_LIVE(goLive);
        terminal.type("poll text\rpoll stop within 2\r");
        TRY_SHOWN(QRegularExpression("Poll 1: text  0 of 0 answered  0:0\\d  stops in \\d s\n"));
        TRY_SHOWN(QRegularExpression("Poll 1: text  0 of 0 answered  0:0\\d\n  No answers yet.\ncalyx>$"));
    }

    void whatIsTypedDuringAWaitIsDoneAfterIt()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TYPE_UNTIL_LIVE(goLive);
        terminal.type("wait learners 1\r");
        TRY(terminal.lastLine().startsWith("Waiting: "));
        terminal.type("say typed ahead\r");
        classroom.join("d1", "Ann");
        TRY(terminal.text().endsWith("calyx> say typed ahead\ntyped ahead\ncalyx>"));
    }

    void aPasswordIsAskedForAndNotShown()
    {
        FakeClassroom classroom;
        Terminal terminal({"--server", classroom.url()});
        TRY_LINE("calyx>");
        terminal.type("login teacher\r");
        TRY(terminal.lastLine().startsWith("Waiting: the password of teacher, which is not shown"));
        terminal.type("chalkx\177\r");
        TRY_SHOWN("Logged in as teacher.");
        QVERIFY(classroom.body("/login/submit").contains("\"password\":\"chalk\""));
        QVERIFY(!terminal.text().contains("chalk"));
        terminal.type("login teacher chalk\r");
        TRY(classroom.requests().count("/login/submit") == 2);
        terminal.type("say there\r");
        TRY_SHOWN("\nthere\n");
        terminal.type("\033[A\033[A");
        TRY_LINE("calyx> login teacher"); // the line with the password is not remembered
    }

    void theRemoteControlStopsTheSessionAndThePromptStays()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TYPE_UNTIL_LIVE(goLive);
        terminal.type("wait learners 3\r");
        TRY_SHOWN("Waiting: 0 of 3 learners are here");
        classroom.remote("stopSession");
        TRY_SHOWN("Session 123 456 is stopped.");
        terminal.type("say still here\r");
        TRY(terminal.text().endsWith("\nstill here\ncalyx>"));
        QCOMPARE(classroom.requests().last(), QStringLiteral("/session/stop"));
        terminal.type("quit\r");
        TRY_ENDED(0);
    }

    void theProgressOfAnAssessmentIsShown()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TYPE_UNTIL_LIVE(goLive + "assessment question text\rassessment question number\r");
        classroom.join("d1", "Ann");
        classroom.join("d2", "Bea");
        TRY_SHOWN("2 here");
        terminal.type("assessment start title=Leaves\r");
        TRY_SHOWN("Leaves  0 of 2 finished");
        classroom.send("d1", "questionGet", QVariantMap{{"questionNumber", 1}});
        TRY(!classroom.lastQuestion().isEmpty());
        classroom.answer("d1", classroom.lastQuestion(), {}, "word");
        TRY_SHOWN(QRegularExpression("  1 text    █+  1   50 %\n  2 number +0    0 %\ncalyx>$"));
        terminal.type("assessment stop\r");
        TRY_SHOWN("  2 learners, 1 answer.\ncalyx>");
        QCOMPARE(terminal.screen().filter("of 2 finished").size(), 1);
        terminal.type("quit\r");
        TRY_ENDED(0);
    }

    void anotherWidthIsUsed()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom), 80);
        terminal.type(goLive + "poll text\r");
        TRY_SHOWN("0 of 0 answered");
        TRY(!classroom.lastQuestion().isEmpty());
        terminal.resize(40, 24);
        classroom.join("d1", "Ann");
        classroom.answer("d1", classroom.lastQuestion(), {}, "word");
        TRY_SHOWN(QRegularExpression("\n  word  █{21}  1  100 %\ncalyx>$"));
    }
};

QTEST_GUILESS_MAIN(tst_Terminal)
#include "tst_Terminal.moc"
