#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/WorkerTest.h"

#include <QElapsedTimer>
#include <QtTest>

using HttpText::chunk;
using HttpText::chunked;
using HttpText::chunkedHead;
using HttpText::endChunk;
using HttpText::plain;

namespace {

const QString stallLine = QStringLiteral("[SockJSXHRPollingWorker] Incoming data timeout, clearing buffer");
const QString bufferLine = QStringLiteral("[SockJSXHRPollingWorker.BufferData] = ");

} // namespace

class tst_SockJSXHRPollingWorkerFaults : public WorkerTest
{
    Q_OBJECT

private Q_SLOTS:
    void stallIsDiscarded_data()
    {
        rows<QByteArray, QByteArray>({
            {"in the header", "HTTP/1.1 200 OK\r\nConte", "HTTP/1.1 200 OK\r\nConte"},
            {"in a chunk's size", chunkedHead() + "1", "1"},
            {"in a chunk", chunkedHead() + "5\r\nab", "ab"},
            {"in the end chunk", chunkedHead() + chunk("ab") + "0", "0"},
            {"in a body with a length", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nab", "ab"},
        });
    }

    void stallIsDiscarded()
    {
        const auto [begin, pending] = row<QByteArray, QByteArray>();
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

    void shortPauseIsWaitedOut_data()
    {
        columns<QByteArray, QByteArray>();
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

    void shortPauseIsWaitedOut()
    {
        const auto [begin, rest] = row<QByteArray, QByteArray>();
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

    void longPauseBetweenPiecesIsNoStall()
    {
        Server server;
        server.answer("/xhr",
                      Server::Script{Server::send(chunkedHead()), Server::pause(2300), Server::send("5\r\n"),
                                     Server::pause(2300), Server::send("abcde\r\n0\r\n\r\n")});
        WorkerRun run(server.port());
        LogRecorder log;
        QVERIFY(run.start());
        QVERIFY(run.queue());
        QTRY_COMPARE_WITH_TIMEOUT(run.messages, QStringList("abcde"), patience);
        QCOMPARE(run.reports, QStringList({"header 0", "message 0"}));
        QCOMPARE(log.debug(stallLine), QStringList());
    }

    void hostMayAllowLongerPauses()
    {
        Server server;
        server.answer("/xhr", Server::Script{Server::send(chunkedHead() + "5\r\nab"), Server::pause(3500),
                                             Server::send("cd\n\r\n" + endChunk())});
        LogRecorder log;
        WorkerRun run(server.port());
        run.worker->setStallLimit(20000);
        QVERIFY(run.start());
        QVERIFY(run.queue());
        QTRY_COMPARE_WITH_TIMEOUT(run.messages, QStringList("abcd"), patience);
        QCOMPARE(log.debug(stallLine), QStringList());
    }

    void freshAnswerAfterAStallIsTaken()
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

    // What is left of the answer that was cut can hold an "HTTP/" in a text, with the line break of its chunk
    // behind it.
    void textAfterAStallIsNoAnswer()
    {
        Server server;
        server.answer("/xhr_streaming", chunkedHead() + "64\r\na[");
        server.answer("/xhr", plain("o\n"));
        WorkerRun run(server.port());
        run.queueAgain = true;
        LogRecorder log;
        QVERIFY(run.start());
        QVERIFY(run.queue(QStringLiteral("/p/xhr_streaming")));
        QTRY_COMPARE_WITH_TIMEOUT(log.debug(stallLine).size(), 1, patience);
        server.sendNow("\"HTTP/1.1\"]\n\r\n" + chunk("a[\"x\"]\n") + endChunk());
        QTRY_COMPARE_WITH_TIMEOUT(run.messages, QStringList("o"), patience);
        QCOMPARE(run.reports, QStringList({"header 0", "lost 0", "reconnected", "header 1", "message 1"}));
    }

    void garbageIsDiscardedAfterAStall()
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

    void answerToNoRequestIsDropped()
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

    void timeoutAnswerOfABalancerIsDropped()
    {
        Server server;
        server.onConnect(
            {Server::send(
                 "HTTP/1.1 408 Request Time-out\r\ncontent-length: 4\r\nconnection: close\r\n\r\n<h1>"),
             Server::close()});
        server.answer("/xhr", plain("o\n"));
        WorkerRun run(server.port());
        QVERIFY(run.start());
        QTRY_COMPARE(run.reconnects, 1);
        QVERIFY(run.queue());
        QTRY_COMPARE(run.messages, QStringList("o"));
        QCOMPARE(run.reports, QStringList({"reconnected", "header 0", "message 0"}));
    }

    void secondAnswerToOneRequestIsDropped()
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

    void emptyAnswerIsReported()
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

    void badAnswerKeepsTheFullWait_data()
    {
        rows<QByteArray, bool>({
            {"open", plain("o\n"), false},
            {"heartbeat", plain("h\n"), false},
            {"messages", plain("a[\"x\"]\n"), false},
            {"page", plain("<html>\n"), true},
            {"close frame", plain("c[3000,\"Go away!\"]\n"), true},
            {"nothing", plain(""), true},
            {"not found", "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nwhat", true},
            {"page, then closed", plain("<html>\n", "Connection: close\r\n"), true},
            {"messages, then closed", plain("a[]\n", "Connection: close\r\n"), false},
        });
    }

    void badAnswerKeepsTheFullWait()
    {
        const auto [answer, waits] = row<QByteArray, bool>();
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

    void serverThatNeverAnswersIsAskedOnceASecond()
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

    // It has answered: there is nothing to spare the server, and messages would come late.
    void streamThatIsCutAfterAFrameIsAskedAnewAtOnce()
    {
        Server server;
        server.answer("/xhr_streaming",
                      Server::Script{Server::send(chunkedHead() + chunk("o\n") + chunk("a[\"x\"]\n")),
                                     Server::close()});
        server.answer("/xhr_streaming", chunkedHead() + chunk("a[\"y\"]\n"));
        WorkerRun run(server.port());
        const QString path = QStringLiteral("/p/xhr_streaming");
        connect(run.worker, &SockJSXHRPollingWorker::reconnected, &run, [&] { run.queue(path); });
        QVERIFY(run.start());
        QVERIFY(run.queue(path));
        QTRY_COMPARE_WITH_TIMEOUT(run.messages, QStringList({"o", "a[\"x\"]", "a[\"y\"]"}), patience);
        const qint64 gap = server.requests().at(1).msecs - server.requests().at(0).msecs;
        QVERIFY2(gap < 900, qPrintable(QString::number(gap)));
    }

    void overrunIsABrokenConnection_data()
    {
        rows<QByteArray>({
            {"chunk of 2^64-1", chunkedHead() + "ffffffffffffffff\r\nab"},
            {"length of 2^63", "HTTP/1.1 200 OK\r\nContent-Length: 9223372036854775808\r\n\r\nab"},
            {"header without end", "HTTP/1.1 200 OK\r\n" + QByteArray(4 * 1024 * 1024, 'x')},
        });
    }

    void overrunIsABrokenConnection()
    {
        const auto [answer] = row<QByteArray>();
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
};

QTEST_GUILESS_MAIN(tst_SockJSXHRPollingWorkerFaults)
#include "tst_SockJSXHRPollingWorkerFaults.moc"
