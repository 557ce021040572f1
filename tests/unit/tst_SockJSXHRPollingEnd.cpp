#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
#include "support/TransportTest.h"

#include <CalyxClient/SockJSXHRPolling>

#include <QElapsedTimer>
#include <QtTest>

#include <memory>

using HttpText::chunk;
using HttpText::chunkedHead;
using HttpText::endChunk;
using HttpText::plain;

namespace {

constexpr int patience = 8000;

} // namespace

class tst_SockJSXHRPollingEnd : public TransportTest
{
    Q_OBJECT

private Q_SLOTS:
    void closeEndsOnce()
    {
        m_server->answer("/xhr", plain("o\n"));
        QVERIFY(start());
        QTRY_COMPARE(m_server->count(), 2);
        m_session->transport->close();
        QCOMPARE(m_session->ends, 0);
        m_session->transport->close();
        QTRY_COMPARE(m_session->ends, 1);
        m_session->transport->close();
        QTRY_COMPARE(m_server->openConnections(), 0);
        QCoreApplication::processEvents();
        QCOMPARE(m_session->ends, 1);
    }

    // The poll that follows the frame can be answered, by a session that is not ours, before the thread ends.
    void nothingIsHeardAfterTheEndOfTheSession()
    {
        m_server->answer("/xhr", plain("o\n"));
        m_server->answer("/xhr", plain("c[3000,\"Go away!\"]\n"));
        QVERIFY(start());
        SockJSXHRPolling* const transport = m_session->transport;
        connect(transport, &SockJSXHRPolling::textMessageReceived, this, [transport](const QString& text) {
            if (text.startsWith(QLatin1Char('c')))
                QMetaObject::invokeMethod(transport, "onReceivedMessageResponse", Qt::QueuedConnection,
                                          Q_ARG(XHRRequest*, nullptr),
                                          Q_ARG(QString, QStringLiteral("a[1]")));
        });
        QTRY_COMPARE(m_session->ends, 1);
        QCOMPARE(m_session->texts, QStringList({"o", "c[3000,\"Go away!\"]"}));
    }

    void unreachableServerEndsTheSession()
    {
        m_server->answer("/xhr", plain("o\n"));
        QVERIFY(start());
        QTRY_COMPARE(m_server->count(), 2);
        LogRecorder log;
        m_server->stopListening();
        m_server->dropConnections();
        QTRY_COMPARE_WITH_TIMEOUT(m_session->ends, 1, patience);
        QCOMPARE(log.debug("[SockJSXHRPollingWorker] Connection lost, attempting to re-establish...").size(),
                 11);
        m_session->transport->doPoll();
        QCOMPARE(log.debug(closedLine).size(), 1);
    }

    void endIsPrompt_data()
    {
        columns<QByteArray, bool>();
        for (const bool byDeletion : {false, true}) {
            const char* end = byDeletion ? "deletion" : "close";
            QTest::addRow("%s, a poll is pending", end) << QByteArray() << byDeletion;
            QTest::addRow("%s, an answer is half received", end) << chunkedHead() + "5\r\nab" << byDeletion;
            QTest::addRow("%s, the next poll is held back", end) << plain("") << byDeletion;
        }
    }

    void endIsPrompt()
    {
        const auto [answer, byDeletion] = row<QByteArray, bool>();
        const int limit = byDeletion ? 100 : 50;
        qint64 best = patience;
        for (int i = 0; i < 5 && best > limit; ++i) {
            Server server;
            if (!answer.isEmpty())
                server.answer("/xhr", answer);
            const int threads = ProcessResources::threads();
            auto session = std::make_unique<Session>();
            QVERIFY(session->start(server));
            QTRY_COMPARE(server.count(), 1);
            QElapsedTimer clock;
            clock.start();
            if (byDeletion)
                session.reset();
            else
                session->transport->close();
            while (session && session->ends == 0 && clock.elapsed() < patience)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            best = std::min(best, clock.elapsed());
            session.reset();
            QTRY_VERIFY(ProcessResources::threads() <= threads);
        }
        QVERIFY2(best <= limit, qPrintable(QString::number(best)));
    }

    void retiredTransportIsSilentAndGoes()
    {
        m_server->answerAlways("/xhr", plain("h\n"));
        QObject parent;
        const QPointer<Transport> transport = m_session->transport;
        transport->setParent(&parent);
        QVERIFY(start());
        QTRY_VERIFY(!m_session->texts.isEmpty());
        const int heard = m_session->texts.size();
        transport->retire();
        QVERIFY(!transport->parent());
        QTRY_VERIFY(!transport);
        QCOMPARE(m_session->texts.size(), heard);
        QCOMPARE(m_session->ends, 0);
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

    // A server refuses what is posted to a session without a receiver.
    void receiverStaysWhilePostsAreAnswered()
    {
        m_server->answerAlways("/xhr_send", Server::Script{Server::pause(1200), Server::send(plain(""))});
        m_server->answer("/xhr", Server::Script{Server::hold(), Server::send(plain("h\n"))});
        const QPointer<Transport> transport = m_session->transport;
        QVERIFY(start());
        for (int i = 0; i < 4; ++i)
            transport->sendTextMessage(QString::number(i));
        QTRY_COMPARE(m_server->count("/xhr"), 1);
        transport->retire();
        m_server->release();
        QTRY_COMPARE(m_server->count("/xhr"), 2);
        QTRY_COMPARE(m_server->count("/xhr_send"), 4);
        QCOMPARE(m_server->openConnections(), 2);
        QTRY_VERIFY(!transport);
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

    void retiredTransportGivesUpOnASilentServer()
    {
        const QPointer<Transport> transport = m_session->transport;
        QVERIFY(start());
        transport->sendTextMessage(QStringLiteral("[]"));
        transport->sendTextMessage(QStringLiteral("[]"));
        QElapsedTimer clock;
        clock.start();
        transport->retire();
        QTRY_VERIFY_WITH_TIMEOUT(!transport, 20000);
        QVERIFY(clock.elapsed() >= 9000);
        QCOMPARE(m_server->count("/xhr_send"), 1);
    }

    void threadThatEndsTakesItsTransportsAlong_data()
    {
        rows<QString>({
            {"retired", "retired"},
            {"retired at the thread's end", "retired at the end"},
            {"open, and retired elsewhere afterwards", "open"},
        });
    }

    void threadThatEndsTakesItsTransportsAlong()
    {
        const QString left = std::get<0>(row<QString>()); // not a binding: lambdas take it
        m_server->answerAlways("/xhr_send", Server::Script{Server::pause(20), Server::send(plain(""))});
        const ProcessResources::Snapshot before;
        for (int i = 1; i <= 5; ++i) {
            QThread thread;
            QObject context;
            QPointer<Transport> transport;
            bool started = false;
            context.moveToThread(&thread);
            const auto teach = [&] {
                transport = new Transport(nullptr);
                started = transport->start(QStringLiteral("127.0.0.1"), m_server->port(), false, sessionPath,
                                           false);
                transport->sendTextMessage(QStringLiteral("[]"));
                transport->sendTextMessage(QStringLiteral("goodbye"));
                if (left == QLatin1String("retired"))
                    transport->retire();
                thread.quit();
            };
            connect(&thread, &QThread::started, &context, teach);
            if (left == QLatin1String("retired at the end"))
                connect(
                    &thread, &QThread::finished, &context, [&] { transport->retire(); },
                    Qt::DirectConnection);
            thread.start();
            QVERIFY(thread.wait(patience));
            QVERIFY(started);
            QCOMPARE(m_server->count("/xhr_send"), 2 * i);
            QCOMPARE(m_server->requests("/xhr_send").last().body, QByteArray("goodbye"));
            QCOMPARE(!transport, left != QLatin1String("open"));
            if (transport)
                transport->retire();
            QVERIFY(!transport);
        }
        QCOMPARE(before.waitForSurplusToGo(), QString());
    }

    // A proxy that does not answer keeps the connection from being made.
    void asynchronousStartEndsAtOnce_data()
    {
        rows<QString>({{"close", "close"}, {"retire", "retire"}, {"delete", "delete"}});
    }

    void asynchronousStartEndsAtOnce()
    {
        const QString by = std::get<0>(row<QString>());
        const Server proxy;
        qputenv("http_proxy", "http://127.0.0.1:" + QByteArray::number(proxy.port()));
        Session session;
        session.transport->setAsynchronousConnect(true);
        bool acted = false;
        const auto act = [&] {
            acted = true;
            if (by == QLatin1String("close"))
                session.transport->close();
            else if (by == QLatin1String("retire"))
                session.transport->retire();
            else
                delete session.transport;
        };
        QTimer::singleShot(0, &session.context, act);
        QElapsedTimer clock;
        clock.start();
        const bool started =
            session.transport->start(QStringLiteral("server.invalid"), 80, false, sessionPath, false);
        qunsetenv("http_proxy");
        QVERIFY(acted && !started);
        QVERIFY(clock.elapsed() < patience);
        QCOMPARE(session.ends, 0);
        QTRY_COMPARE(!session.transport, by != QLatin1String("close"));
        QTRY_COMPARE(proxy.openConnections(), 0);
    }

    void asynchronousStartSucceeds_data() { rows<bool>({{"fresh", false}, {"after quit()", true}}); }

    void asynchronousStartSucceeds()
    {
        const auto [hasQuit] = row<bool>();
        if (hasQuit) // outside exec(), where it is without effect until the application runs
            QCoreApplication::quit();
        m_server->answer("/xhr", plain("o\n"));
        m_session->transport->setAsynchronousConnect(true);
        bool turned = false;
        QTimer::singleShot(0, &m_session->context, [&turned] { turned = true; });
        const bool started = start();
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec(); // forgets the quit()
        QVERIFY(started);
        QVERIFY(turned);
        QTRY_COMPARE(m_session->texts, QStringList("o"));
    }

    void retiredTransportNeverStarted()
    {
        const QPointer<Transport> transport(new Transport(nullptr));
        transport->retire();
        QTRY_VERIFY(!transport);
    }
};

QTEST_GUILESS_MAIN(tst_SockJSXHRPollingEnd)
#include "tst_SockJSXHRPollingEnd.moc"
