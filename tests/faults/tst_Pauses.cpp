#include "faults/support/Bounds.h"
#include "faults/support/FaultSession.h"
#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/Recordings.h"
#include "support/WaitFor.h"

#include <QNetworkProxy>
#include <QtTest>

#include <memory>
#include <vector>

using Fault = FaultSession::Fault;
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

// A recorded answer in which a session goes on.
struct Sample
{
    QString name;
    bool streaming;
    QByteArray bytes;
    QStringList messages;
    int lastText; ///< where the last text begins
};

Sample sampleOf(const char* recording)
{
    const Recordings::Answer& answer = Recordings::named(QLatin1String(recording));
    Sample sample{answer.name, answer.isStream(), answer.bytes, answer.contents,
                  int(answer.bytes.lastIndexOf("\na[")) + 1};
    if (answer.isStream()) {
        // Another open frame would end the session.
        sample.bytes.replace("\no\n", "\nh\n");
        sample.messages = answer.contents.mid(2);
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
    QVector<Place> places{{QStringLiteral(", in the status line"), 4, true},
                          {QStringLiteral(", in the header"), headEnd / 2, true},
                          {QStringLiteral(", in the empty line"), headEnd - 1, true},
                          {QStringLiteral(", after the header"), headEnd, false},
                          {QStringLiteral(", in the last text"), sample.lastText + 10, true}};
    if (!bytes.left(headEnd).toLower().contains("chunked"))
        return places;
    const int textEnd = bytes.indexOf("\"]\n", sample.lastText) + 3;
    const int sizeBegin = bytes.lastIndexOf('\n', sample.lastText - 3) + 1;
    places += {{QStringLiteral(", before a chunk's size"), sizeBegin, false},
               {QStringLiteral(", in a chunk's size"), sizeBegin + 1, true},
               {QStringLiteral(", after a chunk's size"), sample.lastText, false},
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
    return sample.streaming ? sample.messages.mid(0, complete) : QStringList();
}

} // namespace

/// Answers that stop for a while, at every place and at the same time.
class TestPauses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        m_before = std::make_unique<ProcessResources::Snapshot>([] {
            FaultSession session({QStringLiteral("none"), {Server::send(FaultSession::good(false, "h"))}},
                                 false);
            QVERIFY(session.open());
            QVERIFY(waitFor([&] { return session.isThrough(); }));
        });
    }

    void init() { m_log = std::make_unique<LogRecorder>(); }

    void cleanup()
    {
        m_sessions.clear();
        QCOMPARE(m_before->waitForSurplusToGo(), QString());
        QCOMPARE(m_log->warnings(), QStringList());
        m_log.reset();
    }

    void shortPauseIsWaitedOut()
    {
        for (const Sample& answer : samples()) {
            for (const Place& place : placesIn(answer))
                open(answer.name + place.name, answer.streaming,
                     {Server::send(answer.bytes.left(place.at)), Server::pause(below),
                      Server::send(answer.bytes.mid(place.at))},
                     answer.messages);
        }
        verifyThrough();
        QCOMPARE(m_log->debug(stallLine), QStringList());
    }

    void longPauseBetweenPiecesIsWaitedOut()
    {
        for (const Sample& answer : samples()) {
            for (const Place& place : placesIn(answer)) {
                if (!place.isInPiece)
                    open(answer.name + place.name, answer.streaming,
                         {Server::send(answer.bytes.left(place.at)), Server::pause(beyond),
                          Server::send(answer.bytes.mid(place.at))},
                         answer.messages);
            }
        }
        verifyThrough();
        QCOMPARE(m_log->debug(stallLine), QStringList());
    }

    // The rest comes once the worker has given the beginning up. The texts hold an "HTTP/1.1", which must not
    // pass for a new answer.
    void longPauseInAPieceLosesTheAnswer()
    {
        for (const Sample& answer : samples()) {
            for (const Place& place : placesIn(answer)) {
                if (place.isInPiece)
                    open(answer.name + place.name, answer.streaming,
                         {Server::send(answer.bytes.left(place.at)), Server::hold(),
                          Server::send(answer.bytes.mid(place.at))},
                         completeIn(answer, place.at));
            }
        }
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
            open(answer.name, answer.streaming, script, answer.messages);
        }
        verifyThrough(pieces * below + Bounds::recovery);
        QCOMPARE(m_log->debug(stallLine), QStringList());
    }

private:
    using Sessions = std::vector<std::unique_ptr<FaultSession>>;

    void open(const QString& name, bool streaming, const Server::Script& script, const QStringList& messages)
    {
        m_sessions.push_back(std::make_unique<FaultSession>(Fault{name, script, messages}, streaming));
        QVERIFY2(m_sessions.back()->open(), qPrintable(name));
    }

    void verifyThrough(int limit = Bounds::recovery)
    {
        for (const auto& session : m_sessions) {
            const bool through = waitFor([&] { return session->isThrough(); }, limit);
            QVERIFY2(through && session->verdict().isEmpty(), qPrintable(session->verdict()));
            QVERIFY2(session->duration() <= limit, qPrintable(session->name()));
        }
    }

    std::unique_ptr<ProcessResources::Snapshot> m_before;
    std::unique_ptr<LogRecorder> m_log;
    Sessions m_sessions;
};

QTEST_GUILESS_MAIN(TestPauses)
#include "tst_Pauses.moc"
