#include "interop/support/Host.h"
#include "interop/support/Learners.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"
#include "support/ProcessResources.h"
#include "support/Relay.h"

#include <CalyxClient/Lesson>

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Calyx;
using Interop::amount;

namespace {

constexpr int second = 1000;              // ms
constexpr int patience = 300 * second;    // of a bad network, of a machine that is busy
constexpr qint64 allowedGrowth = 1 << 20; // bytes

/// A lesson on one transport, and its learners; between either and the classroom stands a relay.
struct Class
{
    Class(const Peer& classroom, const QString& transport)
        : name(transport), hostLine(classroom.port()), learnerLine(classroom.port()), lesson(hostLine.url())
    {
        lesson.setTransports({transport});
        lesson.logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
        lesson.start();
    }

    // The relays run on this thread: not while the lesson's destructor waits.
    ~Class()
    {
        lesson.logOut();
        if (!waitFor([&] { return lesson.state() == Lesson::LoggedOut; }))
            qWarning("The lesson does not end.");
    }

    bool isLive() const { return lesson.state() == Lesson::Live; }
    bool isLost() const { return lesson.state() == Lesson::Reconnecting; }

    bool join(int count)
    {
        if (!waitFor([&] { return isLive(); }))
            return false;
        learners = std::make_unique<Learners>(learnerLine.url(), lesson.joinCode(), count,
                                              QStringList{QStringLiteral("--reconnect")});
        return waitFor([&] { return lesson.roster()->presentCount() == count; }, patience);
    }

    /// Every learner's answer is there, once.
    QString fault(const Poll* poll) const
    {
        QStringList devices;
        for (const PollAnswer& answer : poll->answers())
            devices.append(answer.deviceId);
        devices.removeDuplicates();
        int counted = 0;
        for (const PollResults::Row& row : poll->results()->rows())
            counted += row.count;
        const int all = lesson.roster()->rowCount();
        if (devices.size() == all && poll->answered() == all && counted == all)
            return QString();
        return QString::asprintf("poll %d: %d devices, %d answers, %d counted, of %d", poll->number(),
                                 int(devices.size()), poll->answered(), counted, all);
    }

    QString name;
    Relay hostLine;
    Relay learnerLine;
    Lesson lesson;
    std::unique_ptr<Learners> learners;
};

/// A host in a process of its own.
Peer::Program hostProcess(const QStringList& arguments)
{
    return {QStringLiteral(LESSON_HOST), {}, arguments, {}, Peer::Program::AtOnce, {}};
}

/// What follows \p prefix when \p host first says that; null when it does not.
QByteArray said(const Peer& host, const char* prefix)
{
    const QString begin = QLatin1String(prefix);
    return host.waitFor(begin) ? host.lines(begin).first().mid(begin.size()).toUtf8() : QByteArray();
}

/// Without what is of the moment.
QJsonObject timeless(QJsonObject report)
{
    report.remove(QStringLiteral("savedAt"));
    for (const char* part : {"polls", "assessments"}) {
        QJsonArray all = report.value(QLatin1String(part)).toArray();
        QJsonObject last = all.last().toObject();
        last.remove(QStringLiteral("msecs")); // it runs
        all.replace(all.size() - 1, last);
        report[QLatin1String(part)] = all;
    }
    return report;
}

qint64 median(std::vector<qint64> times)
{
    std::sort(times.begin(), times.end());
    return times.at(times.size() / 2);
}

void report(const QString& what, const std::vector<qint64>& times)
{
    qInfo("%s: %d times, median %lld ms, worst %lld ms", qPrintable(what), int(times.size()),
          static_cast<long long>(median(times)),
          static_cast<long long>(*std::max_element(times.begin(), times.end())));
}

} // namespace

/// Lessons whose connections are lost. The environment says how much is done: CALYX_CUTS, CALYX_OUTAGES,
/// CALYX_POLLS, CALYX_LEARNERS, CALYX_MISHAPS (in each poll), CALYX_DELAY (ms each way, until the first
/// mishap), CALYX_SEED.
class TestComingBack : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_classroom.start(Peers::classroom())); }

    // All transports at the same time, since the far end is given some seconds.
    void noticesAFrozenLine()
    {
        constexpr int limit = 15 * second;
        std::vector<std::unique_ptr<Class>> classes;
        for (const QString& transport : Transport::all) {
            classes.push_back(std::make_unique<Class>(m_classroom, transport));
            QVERIFY(classes.back()->join(2));
        }
        for (const auto& one : classes)
            one->lesson.ask(Question::usual(PollType::MULTIPLE));
        for (const auto& one : classes)
            QVERIFY(waitFor([&] { return one->lesson.poll()->answered() == 2; }));
        QElapsedTimer clock;
        clock.start();
        std::vector<qint64> times;
        for (const auto& one : classes) {
            one->hostLine.have(Relay::Freeze);
            connect(&one->lesson, &Lesson::stateChanged, this, [&, at = one.get()] {
                if (at->isLost()) {
                    qInfo("%s: noticed after %lld ms", qPrintable(at->name),
                          static_cast<long long>(clock.elapsed()));
                    times.push_back(clock.elapsed());
                }
            });
        }
        QVERIFY(waitFor([&] { return times.size() == classes.size(); }, patience));
        QVERIFY(*std::max_element(times.begin(), times.end()) <= limit);
        for (const auto& one : classes)
            one->hostLine.recover();
        for (const auto& one : classes)
            QVERIFY(waitFor([&] { return one->isLive(); }));
    }

    void isBackSoon_data()
    {
        columns<QString, int, int>();
        for (const QString& transport : Transport::all) {
            QTest::addRow("%s, short", qPrintable(transport)) << transport << 0 << 5 * second;
            if (qEnvironmentVariableIsSet("CALYX_OUTAGES"))
                QTest::addRow("%s, long", qPrintable(transport)) << transport << 5 * second << 40 * second;
        }
    }
    // The network is away for a while.
    void isBackSoon()
    {
        const auto [transport, shortest, longest] = row<QString, int, int>();
        constexpr int limit = 18 * second;
        const bool isCounted =
            qEnvironmentVariableIsSet("CALYX_OUTAGES"); // else the machine is busy with others
        const int outages = amount("CALYX_OUTAGES", 2);
        QRandomGenerator script(seed());
        Class lesson(m_classroom, transport);
        QVERIFY(lesson.join(2));
        std::vector<qint64> noticed;
        std::vector<qint64> back;
        for (int round = 0; round < outages; ++round) {
            QElapsedTimer clock;
            clock.start();
            lesson.hostLine.have(Relay::Refuse);
            QVERIFY(waitFor([&] { return lesson.isLost(); }));
            noticed.push_back(clock.elapsed());
            const int away = !isCounted ? 300 : script.bounded(shortest, longest);
            QTimer::singleShot(away, &lesson.hostLine, [&] {
                lesson.hostLine.recover();
                clock.start();
            });
            QVERIFY(waitFor([&] { return lesson.isLive(); }, 2 * longest + patience));
            back.push_back(clock.elapsed());
        }
        report(QStringLiteral("noticed"), noticed);
        report(QStringLiteral("back"), back);
        QVERIFY(*std::max_element(back.begin(), back.end()) <= limit);
        QVERIFY(!isCounted || shortest > 0 || median(back) <= second);
    }

    void everyAnswerCounts_data() { combinations({Transport::all}); }
    // The lines of the host and of the learners have one mishap after the other, while they are asked.
    void everyAnswerCounts()
    {
        const auto [transport] = row<QString>();
        const int polls = amount("CALYX_POLLS", 3);
        const int count = amount("CALYX_LEARNERS", 10);
        const int mishaps = amount("CALYX_MISHAPS", 4);
        QRandomGenerator script(seed());
        Class lesson(m_classroom, transport);
        QVERIFY(lesson.join(count));
        for (Relay* line : {&lesson.hostLine, &lesson.learnerLine})
            line->setPace(amount("CALYX_DELAY", 0), 0);
        for (int number = 1; number <= polls; ++number) {
            Poll* const poll = lesson.lesson.ask(Question::usual(PollType::MULTIPLE));
            for (int i = 0; i < mishaps; ++i) {
                Relay& line = script.bounded(2) == 0 ? lesson.hostLine : lesson.learnerLine;
                line.haveNext(&script);
                QVERIFY(waitFor([&] { return line.isIdle(); }));
            }
            const bool isComplete =
                waitFor([&] { return poll->answered() == count && lesson.isLive(); }, patience);
            QVERIFY2(isComplete, qPrintable(lesson.fault(poll)));
        }
        for (const Poll* poll : lesson.lesson.polls())
            QCOMPARE(lesson.fault(poll), QString());
        QCOMPARE(lesson.lesson.roster()->rowCount(), count);
        qInfo("%d answers, each once", polls * count);
    }

    void answersMayPause_data() { combinations({Transport::all}); }
    // For longer than the transports allow where nobody asks them to.
    void answersMayPause()
    {
        const auto [transport] = row<QString>();
        constexpr int pause = 3 * second;
        Class lesson(m_classroom, transport);
        QVERIFY(lesson.join(5));
        int losses = 0;
        connect(&lesson.lesson, &Lesson::stateChanged, this, [&] { losses += lesson.isLost() ? 1 : 0; });
        lesson.hostLine.have(Relay::Stall);
        Poll* const poll = lesson.lesson.ask(Question::usual(PollType::MULTIPLE));
        QVERIFY(waitFor([&] { return lesson.hostLine.isFrozen(); }));
        QTimer::singleShot(pause, &lesson.hostLine, [&] { lesson.hostLine.recover(); });
        QVERIFY(waitFor([&] { return poll->answered() == 5; }));
        QCOMPARE(losses, 0);
    }

    // A process that does not run for a while, as on a computer that sleeps. A server gives a session over
    // XHR up when nobody has polled for 5 s.
    void goesOnAfterASleep()
    {
        constexpr int sleep = 7 * second;
        constexpr int limit = 5 * second;
        const QTemporaryDir folder;
        const auto posts = [this] {
            return m_classroom.lines(QStringLiteral("POST /eventbus/")).filter("/xhr_send").size();
        };
        const int before = posts();
        std::vector<std::unique_ptr<Peer>> hosts;
        for (const QString& transport : Transport::all)
            hosts.push_back(std::make_unique<Peer>(
                hostProcess({m_classroom.url().toString(), folder.filePath(transport), transport})));
        std::vector<std::unique_ptr<Learners>> learners;
        for (const auto& host : hosts)
            QVERIFY(host->waitFor(QStringLiteral("state 4 ")));
        // The bus knows the addresses of those whose posts are under way.
        QVERIFY(QTest::qWaitFor([&] { return posts() >= before + 2 * 3; }, patience));
        for (const auto& host : hosts) {
            const QByteArray code = said(*host, "state 4 ");
            host->send(SIGSTOP);
            learners.push_back(std::make_unique<Learners>(m_classroom.url(), QString::fromUtf8(code), 3));
        }
        QElapsedTimer clock;
        clock.start();
        QVERIFY(QTest::qWaitFor([&] { return clock.hasExpired(sleep); }, 2 * sleep));
        for (const auto& host : hosts)
            host->send(SIGCONT);
        clock.start();
        for (const auto& host : hosts) // who has got three answers from everybody
            QVERIFY(host->waitFor(QStringLiteral("report ")));
        qInfo("taught after %lld ms", static_cast<long long>(clock.elapsed()));
        QVERIFY(clock.elapsed() < limit);
    }

    // Its host was killed while it wrote.
    void isTakenUp()
    {
        const QTemporaryDir folder;
        const QString journal = folder.filePath(QStringLiteral("journal"));
        Peer host(hostProcess({m_classroom.url().toString(), journal}));
        const QByteArray code = said(host, "state 4 ");
        QVERIFY(!code.isNull());
        const Learners learners(m_classroom.url(), QString::fromUtf8(code), 3);
        const QByteArray report = said(host, "report ");
        QVERIFY(!report.isNull());
        host.kill();
        QFile file(journal);
        QVERIFY(file.open(QIODevice::Append));
        file.write("{\"event\":\"answer\",\"device\":\"a");
        file.close();
        QCOMPARE(Lesson::journalOf(journal).value(QStringLiteral("code")).toByteArray(), code);
        Lesson lesson(m_classroom.url());
        LessonError error;
        connect(&lesson, &Lesson::failed, this, [&](const LessonError& one) { error = one; });
        lesson.logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
        lesson.takeUp(journal);
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::Starting; }));
        lesson.cancel(); // the session goes on without us
        lesson.takeUp(journal);
        const QJsonObject before = QJsonDocument::fromJson(report).object();
        QCOMPARE(timeless(lesson.report()), timeless(before));
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::Live; }));
        QCOMPARE(timeless(lesson.report()), timeless(before));
        QCOMPARE(lesson.joinCode().toUtf8(), code);
        QVERIFY(lesson.poll()->isRunning());
        const Poll* const poll = lesson.ask(Question::usual(PollType::TEXT));
        QVERIFY(waitFor([&] { return poll->answered() == 3; }));
        const QString unended = folder.filePath(QStringLiteral("unended"));
        QVERIFY(QFile::copy(journal, unended));
        lesson.end();
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::LoggedIn; }));
        const QJsonObject after = lesson.report();
        lesson.takeUp(journal);
        QCOMPARE(error.kind, LessonError::BadInput);
        error = LessonError();
        lesson.takeUp(unended);
        QVERIFY(waitFor([&] { return error.kind != LessonError::NoError; }));
        QCOMPARE(error.kind, LessonError::SessionGone);
        QCOMPARE(lesson.state(), Lesson::LoggedIn);
        const QString polls = QStringLiteral("polls");
        QCOMPARE(timeless(lesson.report()).value(polls), timeless(after).value(polls));
    }

    void nothingGrows_data() { combinations({Transport::all}); }
    // Cut after cut.
    void nothingGrows()
    {
        const auto [transport] = row<QString>();
        const int cuts = amount("CALYX_CUTS", 20);
        Class lesson(m_classroom, transport);
        QVERIFY(lesson.join(2));
        ProcessResources::Use atFirst;
        for (int round = 1; round <= cuts; ++round) {
            lesson.hostLine.have(round % 2 == 0 ? Relay::Finish : Relay::Reset);
            lesson.lesson.clearPolls();
            const Poll* const poll = lesson.lesson.ask(Question::usual(PollType::MULTIPLE));
            QVERIFY(waitFor([&] { return lesson.isLive() && poll->answered() == 2; }));
            QCOMPARE(lesson.fault(poll), QString());
            lesson.lesson.stop();
            if (round == cuts / 2)
                atFirst = ProcessResources::Use();
        }
        // One connection more may be kept open for the next post: it counts at both ends of the relay.
        constexpr int ofOneConnection = 3;
        const auto isBack = [&] {
            const ProcessResources::Use now;
            return now.threads <= atFirst.threads &&
                   now.descriptors <= atFirst.descriptors + ofOneConnection &&
                   now.bytes - atFirst.bytes < allowedGrowth;
        };
        const bool isFlat = QTest::qWaitFor(isBack, 10 * second);
        const ProcessResources::Use atLast;
        qInfo("%d cuts: in the second half %lld bytes, %d threads, %d descriptors more", cuts,
              static_cast<long long>(atLast.bytes - atFirst.bytes), atLast.threads - atFirst.threads,
              atLast.descriptors - atFirst.descriptors);
        QVERIFY(isFlat);
    }

private:
    static quint32 seed()
    {
        const auto seed = quint32(amount("CALYX_SEED", 1));
        qInfo("CALYX_SEED=%u", seed);
        return seed;
    }

    Peer m_classroom;
};

INTEROP_MAIN(TestComingBack)
#include "tst_ComingBack.moc"
