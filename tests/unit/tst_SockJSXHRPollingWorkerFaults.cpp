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
    // More of them are in tests/faults.
    void stallIsDiscarded_data()
    {
        rows<QByteArray, QByteArray>({
            {"in a chunk's size", chunkedHead() + "1", "1"},
            {"in the end chunk", chunkedHead() + chunk("ab") + "0", "0"},
        });
    }

    void stallIsDiscarded()
    {
        const auto [begin, pending] = row<QByteArray, QByteArray>();
        m_server->answer("/xhr", begin);
        m_server->answer("/xhr", plain("o\n"));
        m_run->queueAgain = true;
        LogRecorder log;
        QVERIFY(start(1));
        QElapsedTimer clock;
        clock.start();
        QTRY_COMPARE_WITH_TIMEOUT(m_run->messages, QStringList("o"), patience);
        QVERIFY(clock.elapsed() > 2000);
        QVERIFY2(clock.elapsed() < 5000, "the server's session would be gone");
        QCOMPARE(log.debug(stallLine), QStringList(stallLine));
        QCOMPARE(log.debug(bufferLine), QStringList(bufferLine + pending));
        QVERIFY(m_run->reports.contains(QStringLiteral("lost 0")));
        QCOMPARE(m_run->reconnects, 1);
    }

    void hostMayAllowLongerPauses()
    {
        m_server->answer("/xhr", Server::Script{Server::send(chunkedHead() + "5\r\nab"), Server::pause(3500),
                                                Server::send("cd\n\r\n" + endChunk())});
        LogRecorder log;
        m_run->worker->setStallLimit(20000);
        QVERIFY(start(1));
        QTRY_COMPARE_WITH_TIMEOUT(m_run->messages, QStringList("abcd"), patience);
        QCOMPARE(log.debug(stallLine), QStringList());
    }

    void freshAnswerAfterAStallIsTaken()
    {
        m_server->answer("/xhr", "HTTP/1.1 200 OK\r\nConte");
        LogRecorder log;
        QVERIFY(start(1));
        QTRY_COMPARE_WITH_TIMEOUT(log.debug(stallLine).size(), 1, patience);
        m_server->sendNow(plain("o\n"));
        QTRY_COMPARE(m_run->messages, QStringList("o"));
        QCOMPARE(m_run->reports, QStringList({"header 0", "message 0"}));
    }

    // What is left of the answer that was cut can hold an "HTTP/" in a text, with the line break of its chunk
    // behind it.
    void textAfterAStallIsNoAnswer()
    {
        m_server->answer("/xhr_streaming", chunkedHead() + "64\r\na[");
        m_server->answer("/xhr", plain("o\n"));
        m_run->queueAgain = true;
        LogRecorder log;
        QVERIFY(start(1, QStringLiteral("/p/xhr_streaming")));
        QTRY_COMPARE_WITH_TIMEOUT(log.debug(stallLine).size(), 1, patience);
        m_server->sendNow("\"HTTP/1.1\"]\n\r\n" + chunk("a[\"x\"]\n") + endChunk());
        QTRY_COMPARE_WITH_TIMEOUT(m_run->messages, QStringList("o"), patience);
        QCOMPARE(m_run->reports, QStringList({"header 0", "lost 0", "reconnected", "header 1", "message 1"}));
    }

    void garbageIsDiscardedAfterAStall()
    {
        m_server->onConnect({Server::send("garbage")});
        m_server->answer("/xhr", plain("o\n"));
        LogRecorder log;
        QVERIFY(start());
        QTRY_COMPARE_WITH_TIMEOUT(log.debug(bufferLine), QStringList(bufferLine + "garbage"), patience);
        QVERIFY(m_run->queue());
        QTRY_COMPARE(m_run->messages, QStringList("o"));
        QCOMPARE(m_run->reconnects, 0);
    }

    void answerToNoRequestIsDropped()
    {
        m_server->onConnect({Server::send(chunked("nobody asked\n"))});
        m_server->answer("/xhr", plain("o\n"));
        LogRecorder log;
        QVERIFY(start());
        // Only now it is the answer to no request.
        QTRY_COMPARE(log.debug(), QStringList("[SockJSXHRPollingWorker] chunk complete size 13"));
        QVERIFY(m_run->queue());
        QTRY_COMPARE(m_run->reports, QStringList({"header 0", "message 0"}));
        QCOMPARE(m_run->messages, QStringList("o"));
    }

    void timeoutAnswerOfABalancerIsDropped()
    {
        m_server->onConnect(
            {Server::send(
                 "HTTP/1.1 408 Request Time-out\r\ncontent-length: 4\r\nconnection: close\r\n\r\n<h1>"),
             Server::close()});
        m_server->answer("/xhr", plain("o\n"));
        QVERIFY(start());
        QTRY_COMPARE(m_run->reconnects, 1);
        QVERIFY(m_run->queue());
        QTRY_COMPARE(m_run->messages, QStringList("o"));
        QCOMPARE(m_run->reports, QStringList({"reconnected", "header 0", "message 0"}));
    }

    void secondAnswerToOneRequestIsDropped()
    {
        m_server->answer("/xhr", plain("h\n") + plain("h\n") + chunked("h\n"));
        m_server->answer("/xhr", plain("a[]\n"));
        QVERIFY(start(1));
        QTRY_COMPARE(m_run->messages, QStringList("h"));
        QVERIFY(m_run->queue());
        QTRY_COMPARE(m_run->messages, QStringList({"h", "a[]"}));
        QCOMPARE(m_run->reports, QStringList({"header 0", "message 0", "header 1", "message 1"}));
    }

    void emptyAnswerIsReported()
    {
        m_server->answer("/xhr", plain(""));
        m_server->answer("/xhr", chunkedHead() + endChunk());
        QVERIFY(start(2));
        QTRY_COMPARE(m_run->reports, QStringList({"header 0", "empty 0", "header 1", "empty 1"}));
        QCOMPARE(m_run->messages, QStringList());
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
        m_server->answer("/xhr", answer);
        m_server->answer("/xhr", plain("o\n"));
        QVERIFY(start(2));
        QTRY_COMPARE(m_server->count(), 2);
        const QList<Server::Request> requests = m_server->requests();
        const qint64 gap = requests.last().msecs - requests.first().msecs;
        QVERIFY2(waits ? gap >= 980 && gap < 2000 : gap < 900, qPrintable(QString::number(gap)));
    }

    void serverThatNeverAnswersIsAskedOnceASecond()
    {
        for (int i = 0; i < 3; ++i)
            m_server->answer("/xhr", Server::Script{i == 1 ? Server::reset() : Server::close()});
        m_server->answer("/xhr", plain("o\n"));
        m_run->queueAgain = true;
        QVERIFY(start(1));
        QTRY_COMPARE_WITH_TIMEOUT(m_run->messages, QStringList("o"), patience);
        const QList<Server::Request> requests = m_server->requests();
        for (int i = 1; i < requests.size(); ++i) {
            const qint64 gap = requests.at(i).msecs - requests.at(i - 1).msecs;
            QVERIFY2(gap >= 980 && gap < 2000, qPrintable(QString::number(gap)));
        }
        QCOMPARE(m_run->reconnects, 3);
    }

    // It has answered: there is nothing to spare the server, and messages would come late.
    void streamThatIsCutAfterAFrameIsAskedAnewAtOnce()
    {
        m_server->answer("/xhr_streaming",
                         Server::Script{Server::send(chunkedHead() + chunk("o\n") + chunk("a[\"x\"]\n")),
                                        Server::close()});
        m_server->answer("/xhr_streaming", chunkedHead() + chunk("a[\"y\"]\n"));
        const QString path = QStringLiteral("/p/xhr_streaming");
        connect(m_run->worker, &SockJSXHRPollingWorker::reconnected, m_run.get(),
                [&] { m_run->queue(path); });
        QVERIFY(start());
        QVERIFY(m_run->queue(path));
        QTRY_COMPARE_WITH_TIMEOUT(m_run->messages, QStringList({"o", "a[\"x\"]", "a[\"y\"]"}), patience);
        const qint64 gap = m_server->requests().at(1).msecs - m_server->requests().at(0).msecs;
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
        m_server->answer("/xhr", answer);
        m_server->answer("/xhr", plain("o\n"));
        m_run->queueAgain = true;
        QVERIFY(start(1));
        QTRY_COMPARE_WITH_TIMEOUT(m_run->messages, QStringList("o"), patience);
        QCOMPARE(m_server->requests().last().connection, 1);
        QVERIFY(m_server->requests().last().msecs - m_server->requests().first().msecs >= 980);
        QVERIFY(m_run->reports.contains(QStringLiteral("lost 0")));
    }
};

QTEST_GUILESS_MAIN(tst_SockJSXHRPollingWorkerFaults)
#include "tst_SockJSXHRPollingWorkerFaults.moc"
