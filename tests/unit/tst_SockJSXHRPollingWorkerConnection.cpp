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
        QVERIFY(m_run->worker->connectToServer());
        QTRY_COMPARE(m_server->connections(), 1);
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
        constexpr int answers = 5;
        for (int i = 0; i < answers; ++i)
            m_server->answer("/xhr", Server::Script{Server::send(plain("h\n")), Server::close()});
        m_run->queueAgain = true;
        LogRecorder log;
        QVERIFY(start(1));
        QTRY_COMPARE(m_run->messages.size(), answers);
        const QList<Server::Request> requests = m_server->requests();
        QVERIFY(requests.at(answers - 1).msecs - requests.first().msecs < 1000);
        QCOMPARE(requests.at(answers - 1).connection, answers - 1);
        QVERIFY(log.debug(lostLine).size() >= answers - 1);
    }

    void obeysConnectionClose()
    {
        m_server->answer("/xhr", plain("h\n", "Connection: close\r\n"));
        m_server->answer("/xhr", plain("h\n"));
        QVERIFY(start(2));
        QTRY_COMPARE(m_run->messages.size(), 2);
        QCOMPARE(m_server->requests().last().connection, 1);
    }

    void reconnectStartsEmpty()
    {
        m_server->answer(
            "/xhr", Server::Script{Server::send(chunkedHead() + chunk("old") + "5\r\nab"), Server::close()});
        m_server->answer("/xhr", chunked("new\n"));
        m_run->queueAgain = true;
        QVERIFY(start(1));
        QTRY_COMPARE(m_run->messages, QStringList("new"));
        QCOMPARE(m_run->reports, QStringList({"header 0", "lost 0", "reconnected", "header 1", "message 1"}));
    }

    void requestInFlightIsLostWithItsConnection()
    {
        m_server->answer("/xhr", Server::Script{Server::close()});
        QVERIFY(start(1));
        QTRY_COMPARE(m_run->reports, QStringList({"lost 0", "reconnected"}));
        QVERIFY(!m_run->worker->isReceiving());
        QCOMPARE(m_server->count(), 1);
    }

    void waitingRequestOutlivesTheConnection()
    {
        m_server->answer("/first", Server::Script{Server::hold(), Server::close()});
        m_server->answer("/xhr", plain("o\n"));
        QVERIFY(start(1, QStringLiteral("/first")));
        QTRY_COMPARE(m_server->count(), 1);
        QVERIFY(m_run->queue());
        m_server->release();
        QTRY_COMPARE(m_run->messages, QStringList("o"));
        QCOMPARE(m_run->reports, QStringList({"lost 0", "reconnected", "header 1", "message 1"}));
    }

    // The worker writes before it can read of the reset: then Qt closes the socket.
    void reconnectsWhenAWriteFails()
    {
        m_server->answer("/xhr", plain("o\n"));
        m_run->queueAgain = true;
        QVERIFY(m_run->worker->connectToServer());
        while (m_server->openConnections() == 0)
            QThread::yieldCurrentThread();
        m_server->dropConnections(true);
        QVERIFY(m_run->queue());
        m_run->startThread();
        QTRY_COMPARE(m_run->messages, QStringList("o"));
        QCOMPARE(m_run->reports, QStringList({"lost 0", "reconnected", "header 1", "message 1"}));
    }

    void eleventhFailureInARowEnds()
    {
        QVERIFY(start());
        QTRY_COMPARE(m_server->openConnections(), 1);
        LogRecorder log;
        m_server->stopListening();
        m_server->dropConnections();
        QTRY_COMPARE(m_run->ends, 1);
        QCOMPARE(log.debug(lostLine).size(), 11);
        QCOMPARE(log.debug(limitLine).size(), 1);
        QCOMPARE(m_run->reports, QStringList("finished"));
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
        m_server->answer("/xhr_streaming", chunkedHead() + chunk("o\n") + chunk("h") + endChunk());
        m_server->answer("/xhr", plain("o\n"));
        m_run->queueAgain = true;
        QVERIFY(start(1, QStringLiteral("/p/xhr_streaming")));
        QTRY_COMPARE(m_run->messages, QStringList({"o", "h", "o"}));
        QCOMPARE(m_run->reports,
                 QStringList({"header 0", "message 0", "message 0", "reconnected", "header 1", "message 1"}));
        QCOMPARE(m_server->requests().last().connection, 1);
        QVERIFY(m_server->requests().last().msecs - m_server->requests().first().msecs < 900);
    }

    void preludeAloneKeepsTheFullWait()
    {
        m_server->answer("/xhr_streaming", chunkedHead() + chunk(HttpText::prelude()) + endChunk());
        m_run->queueAgain = true;
        QVERIFY(start(1, QStringLiteral("/p/xhr_streaming")));
        QTRY_COMPARE(m_server->count(), 2);
        QVERIFY(m_server->requests().last().msecs - m_server->requests().first().msecs >= 980);
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
        // A proxy that takes the connection and never answers keeps the worker connecting for the full 30
        // seconds.
        QTcpServer silentProxy;
        QVERIFY(silentProxy.listen(QHostAddress::LocalHost));
        QVERIFY(m_run->worker->connectToServer());
        m_run->socket->setProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), silentProxy.serverPort()));
        m_run->startThread();
        QTRY_COMPARE(m_server->openConnections(), 1);
        m_server->dropConnections();
        QTRY_VERIFY(silentProxy.hasPendingConnections());
        QElapsedTimer clock;
        clock.start();
        m_run->worker->forceClose();
        QTRY_COMPARE(m_run->ends, 1);
        QVERIFY2(clock.elapsed() < 500, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(m_run->reports, QStringList("finished"));
    }

    void stopsWhenTheThreadIsToldToQuit()
    {
        QVERIFY(start(1));
        QTRY_COMPARE(m_server->count(), 1);
        m_run->thread.quit();
        QVERIFY(m_run->thread.wait(patience));
        QTRY_COMPARE(m_run->ends, 1);
    }

    void endsWhenTheSocketIsClosed()
    {
        QVERIFY(m_run->worker->connectToServer());
        m_run->socket->close();
        int ends = 0;
        connect(m_run->worker, &SockJSXHRPollingWorker::finished, m_run.get(), [&ends] { ++ends; });
        m_run->worker->process();
        QCOMPARE(ends, 1);
    }
};

QTEST_GUILESS_MAIN(tst_SockJSXHRPollingWorkerConnection)
#include "tst_SockJSXHRPollingWorkerConnection.moc"
