#include "lesson/PollBoard.h"

#include "lesson/Roster.h"

#include <QTest>

using Calyx::Learner;

namespace {

PollPlan textPoll()
{
    return PollKinds::usual(Calyx::PollType::TEXT);
}

} // namespace

class tst_PollBoard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_roster = Roster();
        m_roster.join(Learner("d1", "Ann", ""));
        m_roster.join(Learner("d2", "Bea", ""));
    }

    void onlyAnswersToTheRunningPollCount()
    {
        PollBoard board;
        QCOMPARE(board.addAnswer("d1", "q1", "x"), PollBoard::UnknownPoll);
        board.start(textPoll(), "q1");
        QCOMPARE(board.addAnswer("d1", "q1", "x"), PollBoard::Counted);
        QCOMPARE(board.addAnswer("d1", "q2", "x"), PollBoard::UnknownPoll);
        QCOMPARE(board.addAnswer("d1", "", "x"), PollBoard::UnknownPoll);
        board.stop(m_roster);
        QCOMPARE(board.addAnswer("d2", "q1", "x"), PollBoard::TooLate);
        board.start(textPoll(), "q2");
        QCOMPARE(board.addAnswer("d2", "q1", "x"), PollBoard::TooLate);
        QCOMPARE(board.addAnswer("d2", "q2", "x"), PollBoard::Counted);
        QCOMPARE(board.answers(), 2);
        QCOMPARE(board.lateAnswers(), 2);
    }

    void expectedAreThoseWhoAnsweredOrCould()
    {
        PollBoard board;
        board.start(textPoll(), "q");
        QCOMPARE(board.last()->expected(m_roster), 2);
        QCOMPARE(board.last()->missing(m_roster), QStringList({"Ann", "Bea"}));
        board.addAnswer("d1", "q", "x");
        m_roster.leave("d1"); // its answer stays
        QCOMPARE(board.last()->expected(m_roster), 2);
        m_roster.leave("d2"); // will not answer any more
        QCOMPARE(board.last()->expected(m_roster), 1);
        m_roster.join(Learner("d3", "Cy", "")); // comes late
        QCOMPARE(board.last()->expected(m_roster), 2);
        QCOMPARE(board.last()->missing(m_roster), QStringList{"Cy"});
        board.addAnswer("d9", "q", "x"); // never heard of, but it answers
        QCOMPARE(board.last()->expected(m_roster), 3);
    }

    void aStoppedPollKeepsItsNumbers()
    {
        PollBoard board;
        board.start(textPoll(), "q");
        board.addAnswer("d1", "q", "x");
        board.stop(m_roster);
        m_roster.clear();
        const ChartData data = board.last()->chart(m_roster);
        QCOMPARE(data.answered, 1);
        QCOMPARE(data.expected, 2);
        QVERIFY(!board.isRunning());
    }

    void stoppingTwiceDoesNothing()
    {
        PollBoard board;
        board.stop(m_roster);
        QVERIFY(!board.last());
        board.start(textPoll(), "q");
        board.stop(m_roster);
        m_roster.leave("d1");
        board.stop(m_roster);
        QCOMPARE(board.last()->expected(m_roster), 2);
    }

    void aPauseEndsWithThePoll()
    {
        PollBoard board;
        board.setPaused(true);
        board.start(textPoll(), "q");
        QVERIFY(!board.last()->chart(m_roster).isPaused);
        board.setPaused(true);
        QVERIFY(board.last()->chart(m_roster).isPaused);
        board.stop(m_roster);
        QVERIFY(!board.last()->chart(m_roster).isPaused);
    }

    void pollsAreNumbered()
    {
        PollBoard board;
        board.start(textPoll(), "q1");
        board.start(PollKinds::usual(Calyx::PollType::SCALE), "q2");
        QCOMPARE(board.polls().size(), 2);
        QCOMPARE(board.last()->chart(m_roster).title, QStringLiteral("Poll 2: scale, number, 5 options"));
    }

private:
    Roster m_roster;
};

QTEST_APPLESS_MAIN(tst_PollBoard)
#include "tst_PollBoard.moc"
