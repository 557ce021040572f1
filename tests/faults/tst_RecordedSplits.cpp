#include "faults/support/Recordings.h"
#include "support/LogRecorder.h"
#include "support/ScriptedHttpServer.h"
#include "support/WaitFor.h"
#include "support/WorkerRun.h"

#include <QNetworkProxy>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <vector>

using Recordings::Answer;
using Server = ScriptedHttpServer;

namespace {

constexpr int preludeStep = 64;

const QString goodPoll = QStringLiteral("/p/first/xhr");

QString pathOf(const Answer& answer)
{
    return answer.isStream() ? QStringLiteral("/p/xhr_streaming") : QStringLiteral("/p/xhr");
}

// Every byte, but among the equal ones that begin a stream every 64th.
QList<int> splitsOf(const Answer& answer)
{
    const int prelude = answer.isStream() ? answer.bytes.indexOf("hhhh") + 1 : answer.bytes.size();
    const int end = prelude + 2046;
    QList<int> splits;
    for (int i = 1; i < answer.bytes.size(); ++i) {
        if (i < prelude || i > end || i % preludeStep == 0)
            splits.append(i);
    }
    return splits;
}

// The last report that there is about the answer to the request \p number.
bool isOver(const WorkerRun& run, const Answer& answer, int number, int messages)
{
    if (answer.isStream() || answer.closes())
        return run.reconnects > number && run.messages.size() >= messages;
    return run.messages.size() >= messages;
}

} // namespace

/// The worker on a real socket, to which recorded answers come byte by byte, or end in the middle.
class TestRecordedSplits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); }

    void byteByByte_data() { Recordings::addRows(); }

    void byteByByte()
    {
        const Answer& answer = Recordings::ofRow();
        Server server;
        server.answer("", Server::bytewise(answer.bytes));
        WorkerRun run(server.port());
        QVERIFY(run.start());
        QVERIFY(run.queue(pathOf(answer)));
        QVERIFY(waitFor([&] { return isOver(run, answer, 0, answer.ends().size()); }));
        QCOMPARE(Recordings::contents(run.messages), answer.contents);
        QCOMPARE(run.headers.size(), 1);
    }

    void connectionEndsAtEveryByte_data()
    {
        Recordings::addRows([](const Answer& answer) {
            return answer.isStream() || answer.isPage() || answer.name.endsWith(QLatin1String("-messages"));
        });
    }

    // What was complete is delivered and the rest is lost, without a trace in what the next connection
    // brings.
    void connectionEndsAtEveryByte()
    {
        const Answer& answer = Recordings::ofRow();
        const QList<int> ends = answer.ends();
        Server server;
        // A connection that has brought an answer is made anew at once.
        server.answerAlways(goodPoll.toUtf8(), HttpText::plain("h\n"));
        WorkerRun run(server.port());
        QVERIFY(run.start());
        const QList<int> cuts = splitsOf(answer);
        for (int round = 0; round < cuts.size(); ++round) {
            const int at = cuts.at(round);
            const auto complete =
                std::count_if(ends.begin(), ends.end(), [at](int end) { return end <= at; });
            server.answer(pathOf(answer).toUtf8(),
                          Server::Script{Server::send(answer.bytes.left(at)), Server::close()});
            run.messages.clear();
            run.reports.clear();
            QVERIFY(run.queue(goodPoll));
            QVERIFY(run.queue(pathOf(answer)));
            QVERIFY2(waitFor([&] { return run.reconnects == round + 1; }),
                     qPrintable(QStringLiteral("cut at %1").arg(at)));
            QCOMPARE(run.messages.takeFirst(), QStringLiteral("h"));
            const QStringList whole = answer.isStream() || complete > 0 ? answer.contents : QStringList();
            const int due = answer.isStream() ? static_cast<int>(complete) : whole.size();
            QVERIFY2(Recordings::contents(run.messages) == whole.mid(0, due),
                     qPrintable(QStringLiteral("cut at %1: ").arg(at) + run.messages.join(QLatin1Char('|'))));
        }
    }

    void answersThatNobodyAskedForAreDropped_data()
    {
        Recordings::addRows([](const Answer& answer) { return answer.isChunked() || answer.closes(); });
    }

    void answersThatNobodyAskedForAreDropped()
    {
        const Answer& answer = Recordings::ofRow();
        Server server;
        server.onConnect({Server::send(answer.bytes)});
        server.answer("", HttpText::plain("a[\"asked\"]\n"));
        WorkerRun run(server.port());
        LogRecorder log;
        QVERIFY(run.start());
        // Only when it has been read it is the answer to no request.
        const QString read = QStringLiteral("[SockJSXHRPollingWorker] chunk complete size");
        QTRY_VERIFY(run.reconnects == 1 || !log.debug(read).isEmpty());
        run.reports.clear();
        QVERIFY(run.queue());
        QVERIFY(waitFor([&] { return run.messages.size() == 1; }));
        run.reports.removeAll(QStringLiteral("reconnected"));
        QCOMPARE(run.reports, QStringList({"header 0", "message 0"}));
        QCOMPARE(run.messages, QStringList("a[\"asked\"]"));
    }
};

QTEST_GUILESS_MAIN(TestRecordedSplits)
#include "tst_RecordedSplits.moc"
