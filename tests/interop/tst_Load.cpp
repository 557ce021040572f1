#include "interop/support/Host.h"
#include "interop/support/Learners.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Learner>
#include <CalyxClient/Lesson>
#include <CalyxClient/PresenterClient>

#include <QElapsedTimer>
#include <QSet>
#include <QTimer>

#include <ctime>

namespace {

constexpr int usualLearners = 300;
constexpr int limit = 240000; // ms
constexpr qint64 longestTurn = 100;

// How long this thread keeps its event loop from turning. The time that it computes, not the time that it
// waits for a processor which others are using.
class Turns : public QObject
{
public:
    Turns()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            const qint64 now = cpuMsecs();
            m_longest = qMax(m_longest, now - m_last);
            m_last = now;
        });
        m_timer.start(1);
    }
    qint64 longest() const { return m_longest; }

private:
    static qint64 cpuMsecs()
    {
        constexpr qint64 thousand = 1000;
        timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return time.tv_sec * thousand + time.tv_nsec / (thousand * thousand);
    }

    QTimer m_timer;
    qint64 m_last = cpuMsecs();
    qint64 m_longest = 0;
};

void tell(int count, qint64 joined, qint64 answered, qint64 turn)
{
    qInfo("%d learners joined in %lld ms and answered in %lld ms; longest turn of the event loop %lld ms",
          count, joined, answered, turn);
}

} // namespace

/// A full classroom answers one poll. CALYX_LOAD_LEARNERS says how full; 5000 is a whole university's.
class TestLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyAnswerComesOnce_data() { combinations({Transport::all}); }
    void everyAnswerComesOnce()
    {
        const auto [transport] = row<QString>();
        const int count = Interop::amount("CALYX_LOAD_LEARNERS", usualLearners);
        const Peer classroom(Peers::classroom({QStringLiteral("--quiet")}));
        PresenterClient client(nullptr, classroom.url().toString());
        QVERIFY(client.doLogin("teacher", "chalk") && client.doStartSession(QString()));
        client.setSockJSOverrideProtocols({transport});
        PresenterCollab* collab = nullptr;
        QVERIFY(client.startWebsocket(&collab));
        QTRY_VERIFY(collab->isConnected());
        QSet<QString> here;
        QStringList answered;
        const CollaborationMessageHandler* handler = collab->messageHandler();
        connect(handler, &CollaborationMessageHandler::learnerJoin, this,
                [&here](const Calyx::Learner& learner) { here.insert(learner.deviceId); });
        connect(handler, &CollaborationMessageHandler::learnerPollResponse, this,
                [&](const QString& device) { answered.append(device); });
        const Turns turns;
        QElapsedTimer clock;
        clock.start();
        const Learners devices(classroom.url(), client.sessionCode(), count);
        QTRY_VERIFY_WITH_TIMEOUT(here.size() == count || !collab->isConnected(), limit);
        QCOMPARE(here.size(), count);
        const qint64 joined = clock.restart();
        collab->startPoll(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4, 1);
        QTRY_VERIFY_WITH_TIMEOUT(answered.size() >= count || !collab->isConnected(), limit);
        QCOMPARE(answered.size(), count);
        tell(count, joined, clock.elapsed(), turns.longest());
        QVERIFY(client.doStopSession());
        QCOMPARE(answered.size(), count);
        QCOMPARE(answered.removeDuplicates(), 0);
        QVERIFY(turns.longest() < longestTurn);
    }

    void everyAnswerComesToTheModels_data() { combinations({Transport::all}); }
    // The same in a lesson, whose turns are short whatever the channel's are.
    void everyAnswerComesToTheModels()
    {
        constexpr qint64 longestTurnOfALesson = 5; // ms
        const auto [transport] = row<QString>();
        const int count = Interop::amount("CALYX_LOAD_LEARNERS", usualLearners);
        const Peer classroom(Peers::classroom({QStringLiteral("--quiet")}));
        Calyx::Lesson lesson(classroom.url());
        lesson.setTransports({transport});
        lesson.logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
        lesson.start();
        QTRY_COMPARE(lesson.state(), Calyx::Lesson::Live);
        const Turns turns;
        const Learners devices(classroom.url(), lesson.joinCode(), count);
        QElapsedTimer clock;
        clock.start();
        QTRY_COMPARE_WITH_TIMEOUT(lesson.roster()->presentCount(), count, limit);
        const qint64 joined = clock.restart();
        const Calyx::Poll* const poll =
            lesson.ask(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4);
        QTRY_COMPARE_WITH_TIMEOUT(poll->answered(), count, limit);
        tell(count, joined, clock.elapsed(), turns.longest());
        int all = 0;
        for (const Calyx::PollResults::Row& row : poll->results()->rows())
            all += row.count;
        QCOMPARE(all, count);
        QVERIFY(turns.longest() < longestTurnOfALesson);
    }
};

INTEROP_MAIN(TestLoad)
#include "tst_Load.moc"
