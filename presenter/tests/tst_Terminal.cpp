#include "FakeClassroom.h"
#include "Terminal.h"

#include <QRegularExpression>
#include <QTest>

#include <csignal>

namespace {

constexpr int limit = 30000; // ms

QStringList arguments(const FakeClassroom& classroom)
{
    return {"--server", classroom.url(), "--user", "teacher", "--password", "chalk"};
}

} // namespace

#define TRY(condition) QTRY_VERIFY2_WITH_TIMEOUT(condition, qPrintable(terminal.text()), limit)
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
        TRY(terminal.lastLine() == "calyx>");
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
        TRY(terminal.text().contains("There is no command \"logn\". Did you mean login?"));
        terminal.type("quit\r");
        TRY_ENDED(0);
    }

    void linesAreEditedCompletedAndRemembered()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        TRY(terminal.lastLine() == "calyx>");
        terminal.type("who");
        terminal.type("\t");
        TRY(terminal.lastLine() == "calyx> whoami");
        terminal.type("\r");
        TRY(terminal.text().contains("teacher is logged in."));
        terminal.type("\033[A");
        TRY(terminal.lastLine() == "calyx> whoami");
        terminal.type("\025session \t");
        TRY(terminal.text().contains("create  disconnect  info  live  reconnect  start  stop"));
        QCOMPARE(terminal.lastLine(), QStringLiteral("calyx> session"));
        terminal.type("INF\t");
        TRY(terminal.lastLine() == "calyx> session info");
        terminal.type("\025\004");
        TRY_ENDED(0);
    }

    void aLoneEscapeBlocksNothing()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        terminal.type("login\rsession start\r");
        TRY(terminal.text().contains("is live"));
        terminal.type("ab\033");
        classroom.join("d1", "Ann");
        TRY(terminal.text().contains("+ Ann has joined, 1 here"));
        TRY(terminal.lastLine() == "calyx> ab");
    }

    void theChartIsRedrawnAboveWhatIsTyped()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        terminal.type("login\rsession start\r");
        TRY(terminal.text().contains("is live"));
        classroom.join("d1", "Ann");
        classroom.join("d2", "Bea");
        TRY(terminal.text().contains("2 here"));
        terminal.type("poll multiple alpha-upper 2\r");
        TRY(terminal.text().contains("0 of 2 answered"));
        terminal.type("poll sto");
        TRY(terminal.lastLine() == "calyx> poll sto");
        classroom.answer("d1", classroom.lastQuestion(), {"A"});
        TRY(terminal.text().contains("1 of 2 answered"));
        classroom.answer("d2", classroom.lastQuestion(), {"A"});
        TRY(terminal.text().contains("2 of 2 answered"));
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
        terminal.type("login\rsession start\r");
        TRY(terminal.text().contains("is live"));
        const QString typed = "say a line that is longer than the terminal is wide, and then some";
        terminal.type(typed);
        TRY(terminal.lastLine() == typed.mid(columns - 7));
        classroom.join("d1", "Ann");
        TRY(terminal.text().contains("+ Ann has joined, 1 here\ncalyx> say a line"));
        TRY(terminal.text().remove('\n').endsWith("here" + QString("calyx> ") + typed));
        terminal.type("\001"); // to its start
        TRY(terminal.cursorColumn() == 7);
        classroom.leave("d1");
        TRY(terminal.text().contains("- Ann has left, 0 here\ncalyx> say a line"));
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
        terminal.type("login\rsession start\r");
        TRY(terminal.text().contains("is live"));
        terminal.type("say now\rwait learners 5\rsay queued\r");
        TRY(terminal.text().contains("\nnow\n"));
        TRY(terminal.text().contains("calyx> say queued"));
        terminal.type("\003");
        TRY(terminal.text().contains("Interrupted."));
        terminal.type("say after\r");
        TRY(terminal.text().contains("\nafter\n"));
        QVERIFY(!terminal.text().contains("\nqueued\n")); // what waited behind it is given up, too
        terminal.type("\003");
        TRY_ENDED(128 + SIGINT);
        QVERIFY(terminal.isCooked());
        QCOMPARE(classroom.requests().last(), QStringLiteral("/login/logout"));
    }

    void theRemoteControlStopsTheSessionAndThePromptStays()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom));
        terminal.type("login\rsession start\r");
        TRY(terminal.text().contains("is live"));
        terminal.type("wait learners 3\r");
        TRY(terminal.text().contains("calyx> wait learners 3"));
        classroom.remote("stopSession");
        TRY(terminal.text().contains("Session 123456 is stopped."));
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
        terminal.type("login\rsession start\rassessment question text\rassessment question number\r");
        TRY(terminal.text().contains("is live"));
        classroom.join("d1", "Ann");
        classroom.join("d2", "Bea");
        TRY(terminal.text().contains("2 here"));
        terminal.type("assessment start title=Leaves\r");
        TRY(terminal.text().contains("Leaves  0 of 2 finished"));
        classroom.send("d1", "questionGet", QVariantMap{{"questionNumber", 1}});
        TRY(!classroom.lastQuestion().isEmpty());
        classroom.answer("d1", classroom.lastQuestion(), {}, "word");
        TRY(terminal.text().contains(
            QRegularExpression("  1 text    █+  1   50 %\n  2 number +0    0 %\ncalyx>$")));
        terminal.type("assessment stop\r");
        TRY(terminal.text().contains("  2 learners, 1 answer.\ncalyx>"));
        QCOMPARE(terminal.screen().filter("of 2 finished").size(), 1);
        terminal.type("quit\r");
        TRY_ENDED(0);
    }

    void anotherWidthIsUsed()
    {
        FakeClassroom classroom;
        Terminal terminal(arguments(classroom), 80);
        terminal.type("login\rsession start\rpoll text\r");
        TRY(terminal.text().contains("0 of 0 answered"));
        terminal.resize(40, 24);
        classroom.join("d1", "Ann");
        classroom.answer("d1", classroom.lastQuestion(), {}, "word");
        TRY(terminal.text().contains(QRegularExpression("\n  word  █{21}  1  100 %\ncalyx>$")));
    }
};

QTEST_GUILESS_MAIN(tst_Terminal)
#include "tst_Terminal.moc"
