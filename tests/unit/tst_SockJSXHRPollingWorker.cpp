#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/ScriptedHttpServer.h"
#include "support/TestCertificates.h"
#include "support/WorkerRun.h"

#include <QElapsedTimer>
#include <QMetaMethod>
#include <QNetworkProxy>
#include <QTcpServer>
#include <QtTest>

#include <functional>

using HttpText::chunk;
using HttpText::chunked;
using HttpText::chunkedHead;
using HttpText::endChunk;
using HttpText::plain;
using Server = ScriptedHttpServer;

namespace {

const QString lostLine =
    QStringLiteral("[SockJSXHRPollingWorker] Connection lost, attempting to re-establish...");
const QString stallLine = QStringLiteral("[SockJSXHRPollingWorker] Incoming data timeout, clearing buffer");
const QString bufferLine = QStringLiteral("[SockJSXHRPollingWorker.BufferData] = ");
const QString limitLine =
    QStringLiteral("[SockJSXHRPollingWorker] Connection attempts exceeded retry limit!");

// Longer than the worker's idle wait and its stall limit together.
constexpr int patience = 8000;

} // namespace

class tst_SockJSXHRPollingWorker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void declaresItsSignalsAndSlots();
    void registersTheHeaderMapForQueuedSignals();

    void queueRefusesTheFiftySecondRequest();
    void queueRefusesWhenClosing();
    void queueCountsReceiveRequests();

    void headerParserStatedResults_data();
    void headerParserStatedResults();
    void headerParserKeepsWhatIsThere();
    void messageParserStatedResults_data();
    void messageParserStatedResults();
    void messageParserAppends();
    void messageParserLogs();

    void connectsOverTcp();
    void connectsOverTls();
    void refusesAnUnknownCertificate();
    void reportsAFailedConnection();

    void writesTheRequestAsItIs();
    void transmitTakesTheFirstRequest();
    void dropsARequestWithoutText();
    void writesWithinFiftyMilliseconds();
    void writesOneRequestAtATime();
    void endChunkDoesNotDelayTheNextRequest();

    void deliversA404LikeA200();
    void deliversTwoBytesInAChunkAtTheEndChunk();
    void takesAChunkOfOneByteAsTheEnd();
    void deliversALengthInTwoPiecesOnce();
    void deliversUtf8CutAnywhere();
    void tellsTheHeadersInTheirUsualSpelling();
    void storesFramingInTheRequest();
    void logsChunksAsTheyCome();
    void deliversABodyWithoutEndWhenTheSenderFallsSilent();
    void deliversABodyThatEndsWithTheConnection();

    void stallIsDiscarded_data();
    void stallIsDiscarded();
    void shortPauseIsWaitedOut_data();
    void shortPauseIsWaitedOut();
    void freshAnswerAfterAStallIsTaken();
    void garbageIsDiscardedAfterAStall();

    void answerToNoRequestIsDropped();
    void timeoutAnswerOfABalancerIsDropped();
    void secondAnswerToOneRequestIsDropped();

    void emptyAnswerIsReported();
    void badAnswerKeepsTheFullWait_data();
    void badAnswerKeepsTheFullWait();
    void serverThatNeverAnswersIsAskedOnceASecond();
    void overrunIsABrokenConnection_data();
    void overrunIsABrokenConnection();

    void reconnectsAfterEveryAnswerAtOnce();
    void obeysConnectionClose();
    void reconnectStartsEmpty();
    void requestInFlightIsLostWithItsConnection();
    void waitingRequestOutlivesTheConnection();
    void eleventhFailureInARowEnds();
    void successfulReconnectCountsAnew();
    void reconnectsOverTls();

    void streamDeliversFramesAtTheirNewline();
    void streamEndDropsTheConnection();
    void preludeAloneKeepsTheFullWait();

    void stopsWithinFiftyMilliseconds_data();
    void stopsWithinFiftyMilliseconds();
    void stopsInTheMiddleOfAReconnect();
    void stopsWhenTheThreadIsToldToQuit();
    void endsWhenTheSocketIsClosed();
    void givesItsDescriptorsAndThreadsBack();
};

void tst_SockJSXHRPollingWorker::initTestCase()
{
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
}

void tst_SockJSXHRPollingWorker::cleanup()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void tst_SockJSXHRPollingWorker::declaresItsSignalsAndSlots()
{
    const QMetaObject* meta = &SockJSXHRPollingWorker::staticMetaObject;
    for (const char* signature :
         {"finished()", "reconnected()", "receivedHeadersResponse(XHRRequest*,QStringMap)",
          "receivedMessageResponse(XHRRequest*,QString)"}) {
        const int index = meta->indexOfSignal(signature);
        QVERIFY2(index >= 0, signature);
    }
    QVERIFY(meta->indexOfSlot("process()") >= 0);
}

void tst_SockJSXHRPollingWorker::registersTheHeaderMapForQueuedSignals()
{
    const SockJSXHRPollingWorker worker(nullptr, nullptr, QStringLiteral("h"), 80, false, true);
    QVERIFY(QMetaType::type("QStringMap") != QMetaType::UnknownType);
    QCOMPARE(QMetaType::type("QStringMap"), qMetaTypeId<QStringMap>());
}

void tst_SockJSXHRPollingWorker::queueRefusesTheFiftySecondRequest()
{
    WorkerRun run(1);
    LogRecorder log;
    for (int i = 0; i < 51; ++i)
        QVERIFY(run.queue(QStringLiteral("/p/other")));
    QCOMPARE(log.debug(), QStringList());
    QVERIFY(!run.queue(QStringLiteral("/p/other")));
    QCOMPARE(log.debug(),
             QStringList("[SockJSXHRPollingWorker] Async socket tx queue error: Too many items in queue!"));
    QVERIFY(!run.queue(QStringLiteral("/p/other")));
}

void tst_SockJSXHRPollingWorker::queueRefusesWhenClosing()
{
    WorkerRun run(1);
    run.worker->forceClose();
    LogRecorder log;
    QVERIFY(!run.queue());
    QCOMPARE(log.debug(),
             QStringList("[SockJSXHRPollingWorker] Async socket tx queue error: Socket closing!"));
    QVERIFY(!run.worker->isReceiving());
}

void tst_SockJSXHRPollingWorker::queueCountsReceiveRequests()
{
    for (const QString& path : {QStringLiteral("/p/xhr"), QStringLiteral("/p/xhr_streaming")}) {
        WorkerRun run(1);
        QVERIFY(run.queue(QStringLiteral("/p/other")));
        QVERIFY(!run.worker->isReceiving());
        QVERIFY(run.queue(path));
        QVERIFY(run.worker->isReceiving());
    }
}

void tst_SockJSXHRPollingWorker::headerParserStatedResults_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("consumed");
    QTest::addColumn<QStringMap>("headers");

    const QByteArray whole = "HTTP/1.1 404 Not Found\r\nA: b\r\nset-cookie:c=d\r\n\r\n";
    const QStringMap map{{"A", " b"}, {"set-cookie", "c=d"}};
    QTest::newRow("nothing") << QByteArray() << -1 << 0 << QStringMap();
    QTest::newRow("no HTTP/") << QByteArray("garbage\r\n\r\n") << -1 << 0 << QStringMap();
    QTest::newRow("whole") << whole << 200 << whole.size() << map;
    QTest::newRow("with a body") << whole + "body" << 200 << whole.size() << map;
    QTest::newRow("garbage before") << "garbage" + whole << 200 << whole.size() + 7 << map;
    QTest::newRow("up to the end of the data")
        << whole.left(whole.size() - 2) << 200 << whole.size() - 2 << map;
    QTest::newRow("lines without CR")
        << QByteArray("HTTP/1.1 200\nA: b\n\nx") << 200 << 19 << QStringMap{{"A", " b"}};
    QTest::newRow("later duplicate") << QByteArray("HTTP/1.1 200\r\nA: 1\r\nA: 2\r\n\r\n") << 200 << 28
                                     << QStringMap{{"A", " 2"}};
    QTest::newRow("colon first") << QByteArray("HTTP/1.1 200\r\n: 1\r\nnone\r\n\r\n") << 200 << 27
                                 << QStringMap();
}

void tst_SockJSXHRPollingWorker::headerParserStatedResults()
{
    QFETCH(QByteArray, data);
    SockJSXHRPollingWorker worker(nullptr, nullptr, QStringLiteral("h"), 80, false, true);
    int status = 7;
    QStringMap headers;
    QTEST(worker.parseHttpHeaderResponse(data, &status, &headers), "consumed");
    QTEST(status, "status");
    QTEST(headers, "headers");
}

void tst_SockJSXHRPollingWorker::headerParserKeepsWhatIsThere()
{
    SockJSXHRPollingWorker worker(nullptr, nullptr, QStringLiteral("h"), 80, false, true);
    int status = 0;
    QStringMap headers{{"Old", "1"}, {"A", "1"}};
    worker.parseHttpHeaderResponse("HTTP/1.1 200 OK\r\nA:2\r\n\r\n", &status, &headers);
    QCOMPARE(headers, QStringMap({{"Old", "1"}, {"A", "2"}}));
}

void tst_SockJSXHRPollingWorker::messageParserStatedResults_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("isChunked");
    QTest::addColumn<int>("contentLength");
    QTest::addColumn<int>("consumed");
    QTest::addColumn<QString>("out");

    QTest::newRow("nothing") << QByteArray() << false << 5 << 0 << QString();
    QTest::newRow("no length") << QByteArray("abc") << false << 0 << 3 << "abc";
    QTest::newRow("length 1 sets no bound") << QByteArray("abc") << false << 1 << 3 << "abc";
    QTest::newRow("length 2") << QByteArray("abc") << false << 2 << 2 << "ab";
    QTest::newRow("less than the length") << QByteArray("abc") << false << 5 << 3 << "abc";
    QTest::newRow("text outside ASCII")
        << QByteArray("\xe2\x82\xac") << false << 3 << 3 << QStringLiteral("€");
    QTest::newRow("chunk") << QByteArray("2\r\nab\r\n0\r\n\r\n") << true << 0 << 7 << "ab";
    QTest::newRow("chunk in hexadecimal")
        << QByteArray("B\r\n0123456789a\r\n") << true << 0 << 16 << "0123456789a";
    QTest::newRow("chunk without its line break") << QByteArray("2\r\nab") << true << 0 << 7 << "ab";
    QTest::newRow("chunk after an empty line") << QByteArray("\r\n2\r\nab\r\n") << true << 0 << 9 << "ab";
    QTest::newRow("half a chunk") << QByteArray("5\r\nab") << true << 0 << 0 << QString();
    QTest::newRow("end chunk") << QByteArray("0\r\n\r\n") << true << 0 << -1 << QString();
    QTest::newRow("chunk of one") << QByteArray("1\r\na\r\n") << true << 0 << -1 << QString();
    QTest::newRow("no number") << QByteArray("what\r\nab\r\n") << true << 0 << -1 << QString();
    QTest::newRow("number beyond an int")
        << QByteArray("ffffffffffffffff\r\nab\r\n") << true << 0 << -1 << QString();
}

void tst_SockJSXHRPollingWorker::messageParserStatedResults()
{
    QFETCH(QByteArray, data);
    QFETCH(bool, isChunked);
    QFETCH(int, contentLength);
    SockJSXHRPollingWorker worker(nullptr, nullptr, QStringLiteral("h"), 80, false, true);
    QString text;
    QTEST(worker.parseMessageResponse(data, isChunked, &text, contentLength), "consumed");
    QTEST(text, "out");
}

void tst_SockJSXHRPollingWorker::messageParserAppends()
{
    SockJSXHRPollingWorker worker(nullptr, nullptr, QStringLiteral("h"), 80, false, true);
    QString out = QStringLiteral("x");
    QCOMPARE(worker.parseMessageResponse("ab", false, &out, 0), 2);
    QCOMPARE(worker.parseMessageResponse("2\r\ncd\r\n", true, &out, 0), 7);
    QCOMPARE(out, QStringLiteral("xabcd"));
}

void tst_SockJSXHRPollingWorker::messageParserLogs()
{
    SockJSXHRPollingWorker worker(nullptr, nullptr, QStringLiteral("h"), 80, false, true);
    QString out = QStringLiteral("abc");
    LogRecorder log;
    worker.parseMessageResponse("\r\n0\r\n\r\n", true, &out, 0);
    QCOMPARE(log.debug(), QStringList({"[SockJSXHRPollingWorker] Chunk_continued",
                                       "[SockJSXHRPollingWorker] chunk complete size 3"}));
}

void tst_SockJSXHRPollingWorker::connectsOverTcp()
{
    const Server server;
    WorkerRun run(server.port());
    QVERIFY(run.worker->connectToServer());
    QTRY_COMPARE(server.connections(), 1);
}

void tst_SockJSXHRPollingWorker::connectsOverTls()
{
    const TestCertificates::TrustedRoot trusted;
    Server server(TestCertificates::server(QStringLiteral("loopback")));
    server.answerAlways("/xhr", plain("o\n"));
    WorkerRun run(server.port(), true);
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList("o"));
}

void tst_SockJSXHRPollingWorker::refusesAnUnknownCertificate()
{
    const Server unknown(TestCertificates::server(QStringLiteral("loopback")));
    QVERIFY(!WorkerRun(unknown.port(), true).worker->connectToServer());

    const TestCertificates::TrustedRoot trusted;
    const Server elsewhere(TestCertificates::server(QStringLiteral("elsewhere")));
    QVERIFY(!WorkerRun(elsewhere.port(), true).worker->connectToServer());
    QCOMPARE(elsewhere.received(0), QByteArray());
}

void tst_SockJSXHRPollingWorker::reportsAFailedConnection()
{
    quint16 port = 0;
    {
        const Server gone;
        port = gone.port();
    }
    WorkerRun run(port);
    QVERIFY(!run.worker->connectToServer());
    QVERIFY(!run.socket->errorString().isEmpty());
}

void tst_SockJSXHRPollingWorker::writesTheRequestAsItIs()
{
    const Server server;
    WorkerRun run(server.port());
    QVERIFY(run.start());
    const QString text = QStringLiteral("POST /x HTTP/1.1\r\nA: ä€\r\n\r\nbody\r\n\r\n");
    run.requests.push_back(std::make_unique<XHRRequest>(QStringLiteral("/x"), text));
    QVERIFY(run.worker->queueRequest(run.requests.back().get()));
    QTRY_COMPARE(server.received(0), text.toUtf8());
}

void tst_SockJSXHRPollingWorker::transmitTakesTheFirstRequest()
{
    const Server server;
    WorkerRun run(server.port());
    QVERIFY(run.worker->connectToServer());
    run.worker->transmitNextRequest();
    QVERIFY(run.queue(QStringLiteral("/first")));
    QVERIFY(run.queue(QStringLiteral("/second")));
    run.worker->transmitNextRequest();
    QTRY_COMPARE(server.count(), 1);
    QCOMPARE(server.requests().first().path, QByteArray("/first"));
    run.worker->transmitNextRequest();
    QTRY_COMPARE(server.count(), 2);
}

void tst_SockJSXHRPollingWorker::dropsARequestWithoutText()
{
    const Server server;
    WorkerRun run(server.port());
    QVERIFY(run.start());
    run.requests.push_back(std::make_unique<XHRRequest>(QStringLiteral("/p/xhr"), QString()));
    QVERIFY(run.worker->queueRequest(run.requests.back().get()));
    QVERIFY(run.queue(QStringLiteral("/next")));
    QTRY_COMPARE(server.count(), 1);
    QCOMPARE(server.requests().first().path, QByteArray("/next"));
    QTRY_COMPARE(run.reports, QStringList("lost 0"));
    QVERIFY(!run.worker->isReceiving());
}

void tst_SockJSXHRPollingWorker::writesWithinFiftyMilliseconds()
{
    Server server;
    server.answerAlways("/xhr", chunked("o\n"));
    WorkerRun run(server.port());
    QVERIFY(run.start());
    // The best of some, because the machine may be busy; a poll with a second's wait would never get there.
    qint64 best = patience;
    for (int i = 0; i < 10 && best > 50; ++i) {
        QElapsedTimer clock;
        clock.start();
        QVERIFY(run.queue());
        while (server.count() == i && clock.elapsed() < patience)
            QThread::yieldCurrentThread();
        best = std::min(best, clock.elapsed());
        QTRY_COMPARE(run.messages.size(), i + 1);
    }
    QVERIFY2(best <= 50, qPrintable(QString::number(best)));
}

void tst_SockJSXHRPollingWorker::writesOneRequestAtATime()
{
    Server server;
    server.answer("/xhr", Server::Script{Server::send(chunkedHead() + chunk("h\n")), Server::hold(),
                                         Server::send(endChunk())});
    server.answerAlways("/xhr", plain("h\n"));
    WorkerRun run(server.port());
    QVERIFY(run.start());
    for (int i = 0; i < 3; ++i)
        QVERIFY(run.queue());
    QTRY_COMPARE(run.reports, QStringList("header 0"));
    QCOMPARE(server.count(), 1);
    server.release();
    QTRY_COMPARE(run.messages.size(), 3);
    QCOMPARE(run.reports,
             QStringList({"header 0", "message 0", "header 1", "message 1", "header 2", "message 2"}));
}

void tst_SockJSXHRPollingWorker::endChunkDoesNotDelayTheNextRequest()
{
    Server server;
    server.answer("/xhr", chunkedHead() + chunk("h\n") + "0\r\n");
    server.answer("/xhr", chunkedHead() + chunk("h\n") + chunk("x") + "0\r\nTrailer: a\r\n\r\n");
    server.answer("/xhr", plain("h\n"));
    WorkerRun run(server.port());
    LogRecorder log;
    QVERIFY(run.start());
    for (int i = 0; i < 3; ++i)
        QVERIFY(run.queue());
    QTRY_COMPARE(run.messages.size(), 3);
    const QList<Server::Request> requests = server.requests();
    QVERIFY(requests.last().msecs - requests.first().msecs < 1000);
    QCOMPARE(log.debug(stallLine), QStringList());
}

void tst_SockJSXHRPollingWorker::deliversA404LikeA200()
{
    Server server;
    server.answer("/xhr", "HTTP/1.1 404 Not Found\r\nA: b\r\nContent-Length: 5\r\n\r\nwhat?");
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList("what?"));
    QCOMPARE(run.headers, QList<QStringMap>({{{"A", " b"}, {"Content-Length", " 5"}}}));
}

void tst_SockJSXHRPollingWorker::deliversTwoBytesInAChunkAtTheEndChunk()
{
    Server server;
    server.answer("/xhr", Server::Script{Server::send(chunkedHead() + "2\r\nab\r\n"), Server::hold(),
                                         Server::send("0\r\n\r\n")});
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.reports, QStringList("header 0"));
    server.release();
    QTRY_COMPARE(run.messages, QStringList("ab"));
}

void tst_SockJSXHRPollingWorker::takesAChunkOfOneByteAsTheEnd()
{
    Server server;
    server.answer("/xhr", chunkedHead() + "1\r\na\r\n");
    server.answer("/xhr", chunkedHead() + "2\r\nab\r\n1\r\nc\r\n");
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.reports, QStringList({"header 0", "empty 0", "header 1", "message 1"}));
    QCOMPARE(run.messages, QStringList("ab"));
}

void tst_SockJSXHRPollingWorker::deliversALengthInTwoPiecesOnce()
{
    Server server;
    server.answer("/xhr", Server::Script{Server::send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nabc"),
                                         Server::hold(), Server::send("de")});
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.reports, QStringList("header 0"));
    server.release();
    QTRY_COMPARE(run.messages, QStringList("abcde"));
    QCOMPARE(run.reports, QStringList({"header 0", "message 0"}));
}

void tst_SockJSXHRPollingWorker::deliversUtf8CutAnywhere()
{
    const QString text = QStringLiteral("a[\"äß€😀\"]");
    const QByteArray body = text.toUtf8() + '\n';
    Server server;
    server.answer("/xhr", Server::bytewise(plain(body)));
    server.answer("/xhr",
                  Server::bytewise(chunkedHead() + chunk(body.left(4)) + chunk(body.mid(4)) + endChunk()));
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList({text, text}));
}

void tst_SockJSXHRPollingWorker::tellsTheHeadersInTheirUsualSpelling()
{
    Server server;
    server.answer("/xhr",
                  "HTTP/1.1 200 OK\r\nset-cookie: a=1\r\nset-cookie: b=2\r\ncontent-length: 2\r\n\r\no\n");
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.headers, QList<QStringMap>({{{"Set-Cookie", " a=1\n b=2"}, {"Content-Length", " 2"}}}));
}

void tst_SockJSXHRPollingWorker::storesFramingInTheRequest()
{
    Server server;
    server.answer("/xhr", chunked("o\n"));
    server.answer("/xhr", plain("a[]\n"));
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages.size(), 2);
    QVERIFY(run.requests.at(0)->isChunked());
    QCOMPARE(run.requests.at(0)->contentLength(), 0);
    QVERIFY(!run.requests.at(1)->isChunked());
    QCOMPARE(run.requests.at(1)->contentLength(), 4);
}

void tst_SockJSXHRPollingWorker::logsChunksAsTheyCome()
{
    Server server;
    server.answer("/xhr", chunked("abc\n"));
    WorkerRun run(server.port());
    LogRecorder log;
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages.size(), 1);
    QCOMPARE(log.debug(), QStringList({"[SockJSXHRPollingWorker] Detected transfer-encoding: chunked header",
                                       "[SockJSXHRPollingWorker] chunk complete size 4"}));
}

void tst_SockJSXHRPollingWorker::deliversABodyWithoutEndWhenTheSenderFallsSilent()
{
    Server server;
    server.answer("/xhr", "HTTP/1.1 200 OK\r\n\r\nwhatever");
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE_WITH_TIMEOUT(run.messages, QStringList("whatever"), patience);
}

void tst_SockJSXHRPollingWorker::deliversABodyThatEndsWithTheConnection()
{
    Server server;
    server.answer("/xhr", Server::Script{Server::send("HTTP/1.0 200 OK\r\n\r\na[]"), Server::close()});
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList("a[]"));
    QTRY_COMPARE(run.reports, QStringList({"header 0", "message 0", "reconnected"}));
}

void tst_SockJSXHRPollingWorker::stallIsDiscarded_data()
{
    QTest::addColumn<QByteArray>("begin");
    QTest::addColumn<QByteArray>("pending");
    QTest::newRow("in the header") << QByteArray("HTTP/1.1 200 OK\r\nConte")
                                   << QByteArray("HTTP/1.1 200 OK\r\nConte");
    QTest::newRow("in a chunk's size") << chunkedHead() + "1" << QByteArray("1");
    QTest::newRow("in a chunk") << chunkedHead() + "5\r\nab" << QByteArray("ab");
    QTest::newRow("in the end chunk") << chunkedHead() + chunk("ab") + "0" << QByteArray("0");
    QTest::newRow("in a body with a length")
        << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nab") << QByteArray("ab");
}

void tst_SockJSXHRPollingWorker::stallIsDiscarded()
{
    QFETCH(QByteArray, begin);
    QFETCH(QByteArray, pending);
    Server server;
    server.answer("/xhr", begin);
    server.answer("/xhr", plain("o\n"));
    WorkerRun run(server.port());
    run.queueAgain = true;
    LogRecorder log;
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QElapsedTimer clock;
    clock.start();
    QTRY_COMPARE_WITH_TIMEOUT(run.messages, QStringList("o"), patience);
    QVERIFY(clock.elapsed() > 2000);
    QVERIFY2(clock.elapsed() < 5000, "the server's session would be gone");
    QCOMPARE(log.debug(stallLine), QStringList(stallLine));
    QCOMPARE(log.debug(bufferLine), QStringList(bufferLine + pending));
    QVERIFY(run.reports.contains(QStringLiteral("lost 0")));
    QCOMPARE(run.reconnects, 1);
}

void tst_SockJSXHRPollingWorker::shortPauseIsWaitedOut_data()
{
    QTest::addColumn<QByteArray>("begin");
    QTest::addColumn<QByteArray>("rest");
    const QByteArray answer = chunkedHead() + chunk("abcde") + endChunk();
    for (const char* place : {"in the header", "in a chunk's size", "after a chunk's size", "in a chunk",
                              "after a chunk", "in the end chunk"}) {
        static const QMap<QByteArray, int> splits{{"in the header", 20},
                                                  {"in a chunk's size", chunkedHead().size() + 1},
                                                  {"after a chunk's size", chunkedHead().size() + 3},
                                                  {"in a chunk", chunkedHead().size() + 5},
                                                  {"after a chunk", chunkedHead().size() + 8},
                                                  {"in the end chunk", chunkedHead().size() + 11}};
        const int split = splits.value(place);
        QTest::newRow(place) << answer.left(split) << answer.mid(split);
    }
}

void tst_SockJSXHRPollingWorker::shortPauseIsWaitedOut()
{
    QFETCH(QByteArray, begin);
    QFETCH(QByteArray, rest);
    Server server;
    server.answer("/xhr", Server::Script{Server::send(begin), Server::pause(1500), Server::send(rest)});
    WorkerRun run(server.port());
    LogRecorder log;
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList("abcde"));
    QCOMPARE(run.reports, QStringList({"header 0", "message 0"}));
    QCOMPARE(log.debug(stallLine), QStringList());
}

void tst_SockJSXHRPollingWorker::freshAnswerAfterAStallIsTaken()
{
    Server server;
    server.answer("/xhr", "HTTP/1.1 200 OK\r\nConte");
    WorkerRun run(server.port());
    LogRecorder log;
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE_WITH_TIMEOUT(log.debug(stallLine).size(), 1, patience);
    server.sendNow(plain("o\n"));
    QTRY_COMPARE(run.messages, QStringList("o"));
    QCOMPARE(run.reports, QStringList({"header 0", "message 0"}));
}

void tst_SockJSXHRPollingWorker::garbageIsDiscardedAfterAStall()
{
    Server server;
    server.onConnect({Server::send("garbage")});
    server.answer("/xhr", plain("o\n"));
    WorkerRun run(server.port());
    LogRecorder log;
    QVERIFY(run.start());
    QTRY_COMPARE_WITH_TIMEOUT(log.debug(bufferLine), QStringList(bufferLine + "garbage"), patience);
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList("o"));
    QCOMPARE(run.reconnects, 0);
}

void tst_SockJSXHRPollingWorker::answerToNoRequestIsDropped()
{
    Server server;
    server.onConnect({Server::send(chunked("nobody asked\n"))});
    server.answer("/xhr", plain("o\n"));
    WorkerRun run(server.port());
    LogRecorder log;
    QVERIFY(run.start());
    // Only now it is the answer to no request.
    QTRY_COMPARE(log.debug(), QStringList("[SockJSXHRPollingWorker] chunk complete size 13"));
    QVERIFY(run.queue());
    QTRY_COMPARE(run.reports, QStringList({"header 0", "message 0"}));
    QCOMPARE(run.messages, QStringList("o"));
}

void tst_SockJSXHRPollingWorker::timeoutAnswerOfABalancerIsDropped()
{
    Server server;
    server.onConnect(
        {Server::send("HTTP/1.1 408 Request Time-out\r\ncontent-length: 4\r\nconnection: close\r\n\r\n<h1>"),
         Server::close()});
    server.answer("/xhr", plain("o\n"));
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QTRY_COMPARE(run.reconnects, 1);
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList("o"));
    QCOMPARE(run.reports, QStringList({"reconnected", "header 0", "message 0"}));
}

void tst_SockJSXHRPollingWorker::secondAnswerToOneRequestIsDropped()
{
    Server server;
    server.answer("/xhr", plain("h\n") + plain("h\n") + chunked("h\n"));
    server.answer("/xhr", plain("a[]\n"));
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList("h"));
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList({"h", "a[]"}));
    QCOMPARE(run.reports, QStringList({"header 0", "message 0", "header 1", "message 1"}));
}

void tst_SockJSXHRPollingWorker::emptyAnswerIsReported()
{
    Server server;
    server.answer("/xhr", plain(""));
    server.answer("/xhr", chunkedHead() + endChunk());
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.reports, QStringList({"header 0", "empty 0", "header 1", "empty 1"}));
    QCOMPARE(run.messages, QStringList());
}

void tst_SockJSXHRPollingWorker::badAnswerKeepsTheFullWait_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("waits");
    QTest::newRow("open") << plain("o\n") << false;
    QTest::newRow("heartbeat") << plain("h\n") << false;
    QTest::newRow("messages") << plain("a[\"x\"]\n") << false;
    QTest::newRow("page") << plain("<html>\n") << true;
    QTest::newRow("close frame") << plain("c[3000,\"Go away!\"]\n") << true;
    QTest::newRow("nothing") << plain("") << true;
    QTest::newRow("not found") << QByteArray("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nwhat")
                               << true;
    QTest::newRow("page, then closed") << plain("<html>\n", "Connection: close\r\n") << true;
    QTest::newRow("messages, then closed") << plain("a[]\n", "Connection: close\r\n") << false;
}

void tst_SockJSXHRPollingWorker::badAnswerKeepsTheFullWait()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, waits);
    Server server;
    server.answer("/xhr", answer);
    server.answer("/xhr", plain("o\n"));
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QVERIFY(run.queue());
    QTRY_COMPARE(server.count(), 2);
    const QList<Server::Request> requests = server.requests();
    const qint64 gap = requests.last().msecs - requests.first().msecs;
    QVERIFY2(waits ? gap >= 980 && gap < 2000 : gap < 900, qPrintable(QString::number(gap)));
}

void tst_SockJSXHRPollingWorker::serverThatNeverAnswersIsAskedOnceASecond()
{
    Server server;
    for (int i = 0; i < 3; ++i)
        server.answer("/xhr", Server::Script{i == 1 ? Server::reset() : Server::close()});
    server.answer("/xhr", plain("o\n"));
    WorkerRun run(server.port());
    run.queueAgain = true;
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE_WITH_TIMEOUT(run.messages, QStringList("o"), patience);
    const QList<Server::Request> requests = server.requests();
    for (int i = 1; i < requests.size(); ++i) {
        const qint64 gap = requests.at(i).msecs - requests.at(i - 1).msecs;
        QVERIFY2(gap >= 980 && gap < 2000, qPrintable(QString::number(gap)));
    }
    QCOMPARE(run.reconnects, 3);
}

void tst_SockJSXHRPollingWorker::overrunIsABrokenConnection_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("chunk of 2^64-1") << chunkedHead() + "ffffffffffffffff\r\nab";
    QTest::newRow("length of 2^63") << QByteArray(
        "HTTP/1.1 200 OK\r\nContent-Length: 9223372036854775808\r\n\r\nab");
    QTest::newRow("header without end") << "HTTP/1.1 200 OK\r\n" + QByteArray(4 * 1024 * 1024, 'x');
}

void tst_SockJSXHRPollingWorker::overrunIsABrokenConnection()
{
    QFETCH(QByteArray, answer);
    Server server;
    server.answer("/xhr", answer);
    server.answer("/xhr", plain("o\n"));
    WorkerRun run(server.port());
    run.queueAgain = true;
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE_WITH_TIMEOUT(run.messages, QStringList("o"), patience);
    QCOMPARE(server.requests().last().connection, 1);
    QVERIFY(server.requests().last().msecs - server.requests().first().msecs >= 980);
    QVERIFY(run.reports.contains(QStringLiteral("lost 0")));
}

void tst_SockJSXHRPollingWorker::reconnectsAfterEveryAnswerAtOnce()
{
    Server server;
    constexpr int answers = 5;
    for (int i = 0; i < answers; ++i)
        server.answer("/xhr", Server::Script{Server::send(plain("h\n")), Server::close()});
    WorkerRun run(server.port());
    run.queueAgain = true;
    LogRecorder log;
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages.size(), answers);
    const QList<Server::Request> requests = server.requests();
    QVERIFY(requests.at(answers - 1).msecs - requests.first().msecs < 1000);
    QCOMPARE(requests.at(answers - 1).connection, answers - 1);
    QVERIFY(log.debug(lostLine).size() >= answers - 1);
}

void tst_SockJSXHRPollingWorker::obeysConnectionClose()
{
    Server server;
    server.answer("/xhr", plain("h\n", "Connection: close\r\n"));
    server.answer("/xhr", plain("h\n"));
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages.size(), 2);
    QCOMPARE(server.requests().last().connection, 1);
}

void tst_SockJSXHRPollingWorker::reconnectStartsEmpty()
{
    Server server;
    server.answer("/xhr",
                  Server::Script{Server::send(chunkedHead() + chunk("old") + "5\r\nab"), Server::close()});
    server.answer("/xhr", chunked("new\n"));
    WorkerRun run(server.port());
    run.queueAgain = true;
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList("new"));
    QCOMPARE(run.reports, QStringList({"header 0", "lost 0", "reconnected", "header 1", "message 1"}));
}

void tst_SockJSXHRPollingWorker::requestInFlightIsLostWithItsConnection()
{
    Server server;
    server.answer("/xhr", Server::Script{Server::close()});
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.reports, QStringList({"lost 0", "reconnected"}));
    QVERIFY(!run.worker->isReceiving());
    QCOMPARE(server.count(), 1);
}

void tst_SockJSXHRPollingWorker::waitingRequestOutlivesTheConnection()
{
    Server server;
    server.answer("/first", Server::Script{Server::hold(), Server::close()});
    server.answer("/xhr", plain("o\n"));
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue(QStringLiteral("/first")));
    QTRY_COMPARE(server.count(), 1);
    QVERIFY(run.queue());
    server.release();
    QTRY_COMPARE(run.messages, QStringList("o"));
    QCOMPARE(run.reports, QStringList({"lost 0", "reconnected", "header 1", "message 1"}));
}

void tst_SockJSXHRPollingWorker::eleventhFailureInARowEnds()
{
    Server server;
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QTRY_COMPARE(server.openConnections(), 1);
    LogRecorder log;
    server.stopListening();
    server.dropConnections();
    QTRY_COMPARE(run.ends, 1);
    QCOMPARE(log.debug(lostLine).size(), 11);
    QCOMPARE(log.debug(limitLine).size(), 1);
    QCOMPARE(run.reports, QStringList("finished"));
}

void tst_SockJSXHRPollingWorker::successfulReconnectCountsAnew()
{
    Server server;
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QTRY_COMPARE(server.openConnections(), 1);
    server.dropConnections();
    QTRY_COMPARE(run.reconnects, 1);
    QTRY_COMPARE(server.openConnections(), 1);
    LogRecorder log;
    server.stopListening();
    server.dropConnections();
    QTRY_COMPARE(run.ends, 1);
    QCOMPARE(log.debug(lostLine).size(), 11);
}

void tst_SockJSXHRPollingWorker::reconnectsOverTls()
{
    const TestCertificates::TrustedRoot trusted;
    Server server(TestCertificates::server(QStringLiteral("loopback")));
    server.answer("/xhr", Server::Script{Server::send(plain("h\n")), Server::close()});
    server.answer("/xhr", plain("a[]\n"));
    WorkerRun run(server.port(), true);
    run.queueAgain = true;
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(run.messages, QStringList({"h", "a[]"}));
}

void tst_SockJSXHRPollingWorker::streamDeliversFramesAtTheirNewline()
{
    Server server;
    server.answer("/xhr_streaming",
                  Server::Script{Server::send(chunkedHead() + chunk(HttpText::prelude()) + "64\r\no\na[\"x"),
                                 Server::hold(), Server::send("\"]\nh")});
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue(QStringLiteral("/p/xhr_streaming")));
    const QString prelude(2048, QLatin1Char('h'));
    QTRY_COMPARE(run.messages, QStringList({prelude, "o"}));
    server.release();
    QTRY_COMPARE(run.messages, QStringList({prelude, "o", "a[\"x\"]"}));
    QVERIFY(run.worker->isReceiving());
}

void tst_SockJSXHRPollingWorker::streamEndDropsTheConnection()
{
    Server server;
    server.answer("/xhr_streaming", chunkedHead() + chunk("o\n") + chunk("h") + endChunk());
    server.answer("/xhr", plain("o\n"));
    WorkerRun run(server.port());
    run.queueAgain = true;
    QVERIFY(run.start());
    QVERIFY(run.queue(QStringLiteral("/p/xhr_streaming")));
    QTRY_COMPARE(run.messages, QStringList({"o", "h", "o"}));
    QCOMPARE(run.reports,
             QStringList({"header 0", "message 0", "message 0", "reconnected", "header 1", "message 1"}));
    QCOMPARE(server.requests().last().connection, 1);
    QVERIFY(server.requests().last().msecs - server.requests().first().msecs < 900);
}

void tst_SockJSXHRPollingWorker::preludeAloneKeepsTheFullWait()
{
    Server server;
    server.answer("/xhr_streaming", chunkedHead() + chunk(HttpText::prelude()) + endChunk());
    WorkerRun run(server.port());
    run.queueAgain = true;
    QVERIFY(run.start());
    QVERIFY(run.queue(QStringLiteral("/p/xhr_streaming")));
    QTRY_COMPARE(server.count(), 2);
    QVERIFY(server.requests().last().msecs - server.requests().first().msecs >= 980);
}

void tst_SockJSXHRPollingWorker::stopsWithinFiftyMilliseconds_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("a poll is pending") << QByteArray();
    QTest::newRow("an answer is half received") << chunkedHead() + "5\r\nab";
    QTest::newRow("the next request is held back") << plain("");
}

void tst_SockJSXHRPollingWorker::stopsWithinFiftyMilliseconds()
{
    QFETCH(QByteArray, answer);
    qint64 best = patience;
    for (int i = 0; i < 5 && best > 50; ++i) {
        Server server;
        if (!answer.isEmpty())
            server.answer("/xhr", answer);
        WorkerRun run(server.port());
        QVERIFY(run.start());
        QVERIFY(run.queue());
        QTRY_COMPARE(server.count(), 1);
        QTRY_VERIFY(answer.isEmpty() || !run.reports.isEmpty());
        QElapsedTimer clock;
        clock.start();
        run.worker->forceClose();
        run.thread.quit();
        QVERIFY(run.thread.wait(patience));
        best = std::min(best, clock.elapsed());
        QTRY_COMPARE(run.ends, 1);
    }
    QVERIFY2(best <= 50, qPrintable(QString::number(best)));
}

void tst_SockJSXHRPollingWorker::stopsInTheMiddleOfAReconnect()
{
    Server server;
    // A proxy that takes the connection and never answers keeps the worker connecting for the full 30
    // seconds.
    QTcpServer silentProxy;
    QVERIFY(silentProxy.listen(QHostAddress::LocalHost));
    WorkerRun run(server.port());
    QVERIFY(run.worker->connectToServer());
    run.socket->setProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), silentProxy.serverPort()));
    run.startThread();
    QTRY_COMPARE(server.openConnections(), 1);
    server.dropConnections();
    QTRY_VERIFY(silentProxy.hasPendingConnections());
    QElapsedTimer clock;
    clock.start();
    run.worker->forceClose();
    QTRY_COMPARE(run.ends, 1);
    QVERIFY2(clock.elapsed() < 500, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(run.reports, QStringList("finished"));
}

void tst_SockJSXHRPollingWorker::stopsWhenTheThreadIsToldToQuit()
{
    const Server server;
    WorkerRun run(server.port());
    QVERIFY(run.start());
    QVERIFY(run.queue());
    QTRY_COMPARE(server.count(), 1);
    run.thread.quit();
    QVERIFY(run.thread.wait(patience));
    QTRY_COMPARE(run.ends, 1);
}

void tst_SockJSXHRPollingWorker::endsWhenTheSocketIsClosed()
{
    const Server server;
    WorkerRun run(server.port());
    QVERIFY(run.worker->connectToServer());
    run.socket->close();
    int ends = 0;
    connect(run.worker, &SockJSXHRPollingWorker::finished, &run, [&ends] { ++ends; });
    run.worker->process();
    QCOMPARE(ends, 1);
}

void tst_SockJSXHRPollingWorker::givesItsDescriptorsAndThreadsBack()
{
    Server server;
    server.answerAlways("/xhr", Server::Script{Server::send(plain("h\n")), Server::close()});
    const auto runOnce = [&server](int answers) {
        WorkerRun run(server.port());
        run.queueAgain = true;
        return run.start() && run.queue() &&
               QTest::qWaitFor([&] { return run.messages.size() >= answers; }, patience);
    };
    QVERIFY(runOnce(1));
    QTRY_COMPARE(server.openConnections(), 0);
    const int threads = ProcessResources::threads();
    const int descriptors = ProcessResources::descriptors();
    for (int i = 0; i < 20; ++i)
        QVERIFY(runOnce(3));
    QTRY_COMPARE(server.openConnections(), 0);
    QTRY_VERIFY(ProcessResources::threads() <= threads);
    QTRY_VERIFY(ProcessResources::descriptors() <= descriptors);
}

QTEST_GUILESS_MAIN(tst_SockJSXHRPollingWorker)
#include "tst_SockJSXHRPollingWorker.moc"
