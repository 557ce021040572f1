#include "support/ConnectorTest.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
#include "support/WaitFor.h"

#include <QTest>

#include <functional>

/// The end of a connection, from either side, and hosts that bring it about from inside a slot.
class TestSockJSConnectorClose : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void closeIsFollowedByClosedFalseOnce()
    {
        QVERIFY(openSession());
        forgetLog();

        m_connector->close();

        QVERIFY(!m_connector->isConnected());
        QCOMPARE(m_probe->events(), QStringList({"connected"})); // close() itself emits nothing
        QTRY_COMPARE(m_probe->events(), QStringList({"connected", "closed false"}));
        QCOMPARE(m_log->debug(QStringLiteral("[SockJSConnector] Websocket CLOSED")).size(), 1);
        QTRY_COMPARE(m_server->openConnections(), 0);
        QTRY_COMPARE(m_server->closeCode(), 1001); // going away

        // A whole session later there is still no second one.
        QVERIFY(openSession());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->count(QStringLiteral("closed false")), 1);
    }

    void closingTwiceIsFollowedByOneClosed()
    {
        QVERIFY(openSession());

        m_connector->close();
        m_connector->close();
        QTRY_VERIFY(m_probe->hasClosed());
        m_connector->close();

        QVERIFY(openSession());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->count(QStringLiteral("closed false")), 1);
    }

    void closingWhileIdleDoesNothing()
    {
        m_connector->close();

        QVERIFY(openSession());
        QVERIFY(syncInbound());
        QVERIFY(!m_probe->hasClosed());
        QVERIFY(m_connector->isConnected());
    }

    void aServerThatClosesIsReportedOnce()
    {
        QVERIFY(openSession());
        forgetLog();

        m_server->closeSession();

        QTRY_VERIFY(m_probe->hasClosed());
        QVERIFY(!m_connector->isConnected());
        QCOMPARE(m_log->debug(QStringLiteral("[SockJSConnector] Websocket CLOSED")).size(), 1);
        QCOMPARE(m_server->count(QStringLiteral("/xhr")), 0);

        QVERIFY(openSession());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->count(QStringLiteral("closed false")), 1);
    }

    void aCloseFrameAloneDoesNotCloseAWebSocket()
    {
        QVERIFY(openSession());

        m_server->inject(QStringLiteral("c[3000,\"Go away!\"]"));
        QVERIFY(syncInbound());

        QVERIFY(m_connector->isConnected());
        QVERIFY(syncOutbound());
        QVERIFY(!m_probe->hasClosed());
    }

    void closeAfterTheServersCloseDoesNothing()
    {
        QVERIFY(openSession());
        m_server->closeSession();
        QTRY_VERIFY(m_probe->hasClosed());

        m_connector->close();

        QVERIFY(openSession());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->count(QStringLiteral("closed false")), 1);
    }

    void nothingIsHeardAfterClose()
    {
        QVERIFY(openSession());

        m_server->injectMessages({"too late"});
        m_connector->close();

        QTRY_VERIFY(m_probe->hasClosed());
        QTRY_COMPARE(m_server->openConnections(), 0);
        QVERIFY(m_probe->messages().isEmpty());
    }

    void deletionEmitsNothingAndEndsTheConnection()
    {
        QVERIFY(openSession());

        delete m_connector;

        QTRY_COMPARE(m_server->openConnections(), 0);
        QCOMPARE(m_probe->events(), QStringList({"connected"}));
    }

    void framesSentBeforeCloseReachTheServer()
    {
        QVERIFY(openSession());
        const QString large(8 * 1024 * 1024, QLatin1Char('x'));

        m_connector->sendMessage(large, false);
        m_connector->sendMessage(QStringLiteral("disconnect"), false);
        m_connector->close();

        const auto first = m_server->nextMessage();
        QCOMPARE(first.size(), large.size());
        QVERIFY(first == large);
        QCOMPARE(m_server->nextMessage(), QStringLiteral("disconnect"));
        QTRY_COMPARE(m_server->endedSessions(), 1);
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed false")), 1);
    }

    void framesSentBeforeDeletionReachTheServer()
    {
        QVERIFY(openSession());
        const QString large(8 * 1024 * 1024, QLatin1Char('x'));

        m_connector->sendMessage(large, false);
        m_connector->sendMessage(QStringLiteral("last words"), true);
        delete m_connector;

        QCOMPARE(m_server->nextMessage().size(), large.size());
        QCOMPARE(m_server->nextMessage(), QStringLiteral("last words"));
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

    void hostActsInASlot_data()
    {
        columns<QString, QString>();

        for (const char* signal : {"connected", "message", "closed by us", "closed by the server"}) {
            for (const char* action : {"close", "delete", "open"})
                QTest::addRow("%s in %s", action, signal) << signal << action;
        }
    }

    void hostActsInASlot()
    {
        const auto [signal, action] = row<QString, QString>();
        int calls = 0;
        const auto once = [&] {
            if (calls++ == 0)
                act(action);
        };
        if (signal == QLatin1String("connected"))
            connect(m_connector, &SockJSConnector::connected, this, once);
        else if (signal == QLatin1String("message"))
            connect(m_connector, &SockJSConnector::sockJSMessage, this, once);
        else
            connect(m_connector, &SockJSConnector::closed, this, once);
        m_server->setFirstFrames({"o", "a[\"one\",\"two\"]", "a[\"three\"]"});

        QVERIFY(m_probe->open(m_server->url(QStringLiteral("/first")), webSocket));
        if (signal.startsWith(QLatin1String("closed"))) {
            QTRY_COMPARE(m_probe->messages().size(), 3);
            if (signal == QLatin1String("closed by us"))
                m_connector->close();
            else
                m_server->closeSession();
        }
        QTRY_VERIFY(calls > 0);

        if (action == QLatin1String("delete")) {
            QVERIFY(!m_connector);
            QTRY_COMPARE(m_server->openConnections(), 0);
            return;
        }
        if (action == QLatin1String("close")) {
            QTRY_COMPARE(m_server->openConnections(), 0);
            QTRY_COMPARE(m_probe->count(QStringLiteral("closed false")), 1);
            QVERIFY(!m_connector->isConnected());
            openSession(QStringLiteral("/second"));
        }
        // Either way there is now a second session, which the end of the first does not touch.
        QTRY_VERIFY(m_connector->isConnected());
        QVERIFY(syncInbound());
        QVERIFY(syncOutbound());
        QVERIFY(m_server->paths().last().startsWith(QLatin1String("/second/")));
        QTRY_COMPARE(m_server->openConnections(), 1);
        QVERIFY(syncInbound());
        QVERIFY(m_connector->isConnected());
        QVERIFY(m_probe->events().lastIndexOf(QStringLiteral("closed false")) <
                m_probe->events().lastIndexOf(QStringLiteral("connected")));
        QVERIFY(m_probe->count(QStringLiteral("closed false")) <= 1);
    }

    // The end of the first session is told when the second is opened; nothing of it comes behind.
    void restOfAFrameDoesNotOutliveItsSession()
    {
        connect(m_connector, &SockJSConnector::sockJSMessage, this, [&](const QString& message) {
            if (message == QLatin1String("one")) {
                m_connector->close();
                m_server->setFirstFrames({"o", "a[\"four\"]"});
                m_probe->open(m_server->url(), webSocket);
            }
        });
        m_server->setFirstFrames({"o", "a[\"one\",\"two\",\"three\"]"});

        QVERIFY(m_probe->open(m_server->url(), webSocket));

        QTRY_COMPARE(m_probe->messages(), QStringList({"one", "four"}));
    }

    void restOfAFrameIsNotToldAfterOpenAndClose()
    {
        connect(m_connector, &SockJSConnector::sockJSMessage, this, [&] {
            m_server->setFirstFrames({"o"});
            m_probe->open(m_server->url(), webSocket);
            m_connector->close();
        });
        m_server->setFirstFrames({"o", "a[\"one\",\"two\"]"});

        QVERIFY(m_probe->open(m_server->url(), webSocket));

        QTRY_VERIFY(!m_probe->messages().isEmpty());
        QVERIFY(anotherConnectorOpens());
        QCOMPARE(m_probe->messages(), QStringList{"one"});
    }

    // The end of the first session is told inside the second open(): there is nothing to close then.
    void closeWhenTheEndIsToldLetsTheNextOpenStand()
    {
        QVERIFY(openSession());
        connect(m_connector, &SockJSConnector::closed, m_connector, &SockJSConnector::close);

        m_connector->close();
        QVERIFY(openSession());

        QVERIFY(syncInbound());
        QVERIFY(m_connector->isConnected());
        QCOMPARE(m_probe->count(QStringLiteral("closed false")), 1);
    }

    void restOfAFrameComesBeforeTheEnd()
    {
        connect(m_connector, &SockJSConnector::sockJSMessage, m_connector, &SockJSConnector::close);
        m_server->setFirstFrames({"o", "a[\"one\",\"two\"]"});

        QVERIFY(m_probe->open(m_server->url(), webSocket));

        QTRY_VERIFY(m_probe->hasClosed());
        QCOMPARE(m_probe->messages(), QStringList({"one", "two"}));
        QCOMPARE(m_probe->events().last(), QStringLiteral("closed false"));
    }

    void nothingIsLeftBehind()
    {
        const auto session = [this](const std::function<void()>& end) {
            tearDown();
            setUp();
            const bool opened = openSession() && syncInbound() && syncOutbound();
            end();
            const bool ended = waitFor([this] { return m_server->openConnections() == 0; });
            return opened && ended;
        };
        // The first session may start what a process keeps for good.
        QVERIFY(session([this] { m_connector->close(); }));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        tearDown();
        const int descriptors = ProcessResources::descriptors();
        const int threads = ProcessResources::threads();

        for (int i = 0; i < 10; ++i) {
            QVERIFY(session([this] { m_connector->close(); }));
            QVERIFY(session([this] { m_server->closeSession(); }));
            QVERIFY(session([this] { delete m_connector; }));
        }

        tearDown();
        QTRY_COMPARE(ProcessResources::descriptors(), descriptors);
        QTRY_COMPARE(ProcessResources::threads(), threads);
    }

private:
    void act(const QString& action)
    {
        if (action == QLatin1String("close"))
            m_connector->close();
        else if (action == QLatin1String("delete"))
            delete m_connector;
        else
            m_probe->open(m_server->url(QStringLiteral("/second")), webSocket);
    }
};

QTEST_GUILESS_MAIN(TestSockJSConnectorClose)
#include "tst_SockJSConnectorClose.moc"
