#include "faults/support/FaultTest.h"
#include "support/Recordings.h"

using Server = ScriptedHttpServer;

namespace {

// The worker gives up what is half received after 2 s of silence.
constexpr int below = 1200; // milliseconds
constexpr int beyond = 2600;

const QString stallLine = QStringLiteral("[SockJSXHRPollingWorker] Incoming data timeout, clearing buffer");

// Where an answer may stop for a while.
struct Place
{
    QString name;
    int at;
    bool isInPiece; ///< so that a part of something has come
};

using Sample = Recordings::Answer;

// A recorded answer in which a session goes on: its contents are messages.
Sample sampleOf(const char* recording)
{
    Sample sample = Recordings::named(QLatin1String(recording));
    if (sample.isStream()) {
        // Another open frame would end the session.
        sample.bytes.replace("\no\n", "\nh\n");
        sample.contents = sample.contents.mid(2);
    }
    return sample;
}

QVector<Sample> samples()
{
    return {sampleOf("sockjs-messages"), sampleOf("sockjs-go-messages"), sampleOf("nginx-messages"),
            sampleOf("sockjs-stream"), sampleOf("haproxy-stream")};
}

QVector<Place> placesIn(const Sample& sample)
{
    const QByteArray& bytes = sample.bytes;
    const int headEnd = bytes.indexOf("\r\n\r\n") + 4;
    const int lastText = bytes.lastIndexOf("\na[") + 1;
    QVector<Place> places{{QStringLiteral(", in the status line"), 4, true},
                          {QStringLiteral(", in the header"), headEnd / 2, true},
                          {QStringLiteral(", in the empty line"), headEnd - 1, true},
                          {QStringLiteral(", after the header"), headEnd, false},
                          {QStringLiteral(", in the last text"), lastText + 10, true}};
    if (!bytes.left(headEnd).toLower().contains("chunked"))
        return places;
    const int textEnd = bytes.indexOf("\"]\n", lastText) + 3;
    const int sizeBegin = bytes.lastIndexOf('\n', lastText - 3) + 1;
    places += {{QStringLiteral(", before a chunk's size"), sizeBegin, false},
               {QStringLiteral(", in a chunk's size"), sizeBegin + 1, true},
               {QStringLiteral(", after a chunk's size"), lastText, false},
               {QStringLiteral(", after a chunk"), textEnd, false},
               {QStringLiteral(", in the end chunk"), int(bytes.size()) - 4, true},
               {QStringLiteral(", after the end chunk"), int(bytes.size()) - 2, false}};
    return places;
}

// The messages that are complete in the first \p size bytes.
QStringList completeIn(const Sample& sample, int size)
{
    int complete = 0;
    for (int end = sample.bytes.indexOf("\"]\n"); end >= 0; end = sample.bytes.indexOf("\"]\n", end + 1))
        complete += end + 3 <= size ? 1 : 0;
    return sample.isStream() ? sample.contents.mid(0, complete) : QStringList();
}

} // namespace

/// Answers that stop for a while, at every place and at the same time.
class TestPauses : public FaultTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { begin(); }
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void shortPauseIsWaitedOut()
    {
        openAll(Server::pause(below), {true, false});
        verifyNoStall();
    }

    void longPauseBetweenPiecesIsWaitedOut()
    {
        openAll(Server::pause(beyond), {false});
        verifyNoStall();
    }

    // The rest comes once the worker has given the beginning up. The texts hold an "HTTP/1.1", which must not
    // pass for a new answer.
    void longPauseInAPieceLosesTheAnswer()
    {
        openAll(Server::hold(), {true});
        QTRY_COMPARE_WITH_TIMEOUT(m_log->debug(stallLine).size(), static_cast<int>(m_sessions.size()),
                                  Bounds::recovery);
        for (const auto& session : m_sessions)
            session->server()->release();
        verifyThrough();
    }

    // An answer may take its time, as long as something comes.
    void slowTrickleIsNoStall()
    {
        constexpr int pieces = 3;
        for (const Sample& answer : samples()) {
            Server::Script script;
            const int size = answer.bytes.size() / pieces + 1;
            for (int at = 0; at < answer.bytes.size(); at += size)
                script << Server::send(answer.bytes.mid(at, size)) << Server::pause(below);
            open({answer.name, script, answer.contents}, answer.isStream());
        }
        verifyNoStall(pieces * below + Bounds::recovery);
    }

private:
    // Each sample has \p stop at each place that is in a piece, or between pieces. What is held in a piece is
    // lost.
    void openAll(const Server::Step& stop, const QList<bool>& inPiece)
    {
        for (const Sample& answer : samples()) {
            for (const Place& place : placesIn(answer)) {
                const Server::Script script{Server::send(answer.bytes.left(place.at)), stop,
                                            Server::send(answer.bytes.mid(place.at))};
                const bool isLost = stop.kind == Server::Step::Hold;
                if (inPiece.contains(place.isInPiece))
                    open({answer.name + place.name, script,
                          isLost ? completeIn(answer, place.at) : answer.contents},
                         answer.isStream());
            }
        }
    }

    void verifyNoStall(int limit = Bounds::recovery)
    {
        verifyThrough(limit);
        QCOMPARE(m_log->debug(stallLine), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestPauses)
#include "tst_Pauses.moc"
