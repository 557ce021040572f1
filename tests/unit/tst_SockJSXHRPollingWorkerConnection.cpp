#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
#include "support/TestCertificates.h"
#include "support/WorkerTest.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QtTest>

using HttpText::chunk;
using HttpText::chunked;
using HttpText::chunkedHead;
using HttpText::endChunk;
using HttpText::plain;

namespace {

const QString lostLine =
    QStringLiteral("[SockJSXHRPollingWorker] Connection lost, attempting to re-establish...");
const QString limitLine =
    QStringLiteral("[SockJSXHRPollingWorker] Connection attempts exceeded retry limit!");

} // namespace

class tst_SockJSXHRPollingWorkerConnection : public WorkerTest
{
    Q_OBJECT

private Q_SLOTS:
    void connectsOverTcp()
    {
        const Server server;
        WorkerRun run(server.port());
        QVERIFY(run.worker->connectToServer());
        QTRY_COMPARE(server.connections(), 1);
    }

    void connectsOverTls()
    {
        const TestCertificates::TrustedRoot trusted;
        Server server(TestCertificates::server(QStringLiteral("loopback")));
        server.answerAlways("/xhr", plain("o\n"));
        WorkerRun run(server.port(), true);
        QVERIFY(run.start());
        QVERIFY(run.queue());
        QTRY_COMPARE(run.messages, QStringList("o"));
    }

    void refusesAnUnknownCertificate()
    {
        const Server unknown(TestCertificates::server(QStringLiteral("loopback")));
        QVERIFY(!WorkerRun(unknown.port(), true).worker->connectToServer());

        const TestCertificates::TrustedRoot trusted;
        const Server elsewhere(TestCertificates::server(QStringLiteral("elsewhere")));
        QVERIFY(!WorkerRun(elsewhere.port(), true).worker->connectToServer());
        QCOMPARE(elsewhere.received(0), QByteArray());
    }

    void reportsAFailedConnection()
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

    void reconnectsAfterEveryAnswerAtOnce()
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

    void obeysConnectionClose()
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

    void reconnectStartsEmpty()
    {
        Server server;
        server.answer(
            "/xhr", Server::Script{Server::send(chunkedHead() + chunk("old") + "5\r\nab"), Server::close()});
        server.answer("/xhr", chunked("new\n"));
        WorkerRun run(server.port());
        run.queueAgain = true;
        QVERIFY(run.start());
        QVERIFY(run.queue());
        QTRY_COMPARE(run.messages, QStringList("new"));
        QCOMPARE(run.reports, QStringList({"header 0", "lost 0", "reconnected", "header 1", "message 1"}));
    }

    void requestInFlightIsLostWithItsConnection()
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

    void waitingRequestOutlivesTheConnection()
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

    // The worker writes before it can read of the reset: then Qt closes the socket.
    void reconnectsWhenAWriteFails()
    {
        Server server;
        server.answer("/xhr", plain("o\n"));
        WorkerRun run(server.port());
        run.queueAgain = true;
        QVERIFY(run.worker->connectToServer());
        while (server.openConnections() == 0)
            QThread::yieldCurrentThread();
        server.dropConnections(true);
        QVERIFY(run.queue());
        run.startThread();
        QTRY_COMPARE(run.messages, QStringList("o"));
        QCOMPARE(run.reports, QStringList({"lost 0", "reconnected", "header 1", "message 1"}));
    }

    void eleventhFailureInARowEnds()
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

    void successfulReconnectCountsAnew()
    {
        // A proxy says of each attempt whether it succeeds. What it lets through ends at once.
        const QByteArray target = "127.0.0.1:1";
        const Server::Script lets{Server::send("HTTP/1.1 200 OK\r\n\r\n"), Server::hold(), Server::close()};
        const Server::Script refuses{Server::close()};
        Server proxy;
        proxy.answer(target, lets);
        for (int i = 0; i < 5; ++i)
            proxy.answer(target, refuses);
        proxy.answer(target, lets);
        proxy.answerAlways(target, refuses);

        WorkerRun run(1);
        run.socket->setProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), proxy.port()));
        LogRecorder log;
        QVERIFY(run.start());
        proxy.release();
        QTRY_COMPARE(run.reports, QStringList("reconnected"));
        QCOMPARE(log.debug(lostLine).size(), 5 + 1);
        proxy.release();
        QTRY_COMPARE(run.ends, 1);
        QCOMPARE(log.debug(lostLine).size(), 5 + 1 + 11);
    }

    void reconnectsOverTls()
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

    void streamEndDropsTheConnection()
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

    void preludeAloneKeepsTheFullWait()
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

    void stopsWithinFiftyMilliseconds_data()
    {
        rows<QByteArray>({
            {"a poll is pending", QByteArray()},
            {"an answer is half received", chunkedHead() + "5\r\nab"},
            {"the next request is held back", plain("")},
        });
    }

    void stopsWithinFiftyMilliseconds()
    {
        const auto [answer] = row<QByteArray>();
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
            while (run.ends == 0 && clock.elapsed() < patience)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            best = std::min(best, clock.elapsed());
        }
        QVERIFY2(best <= 50, qPrintable(QString::number(best)));
    }

    void stopsInTheMiddleOfAReconnect()
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

    void stopsWhenTheThreadIsToldToQuit()
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

    void endsWhenTheSocketIsClosed()
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

    void givesItsDescriptorsAndThreadsBack()
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
};

QTEST_GUILESS_MAIN(tst_SockJSXHRPollingWorkerConnection)
#include "tst_SockJSXHRPollingWorkerConnection.moc"
