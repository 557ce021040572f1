#include "support/ConnectorTest.h"
#include "support/Rows.h"
#include "support/WallClock.h"

#include <QTest>
#include <QTimer>

#include <algorithm>

/// The end of a connection: from either side, and after an hour in which nothing but pings was sent. Hosts
/// that bring it about from inside a slot, twice, or while there is no connection, are in tst_HostActions.
class TestSockJSConnectorClose : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setUp();
        WallClock::freeze();
    }

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

    void aCloseFrameAloneDoesNotCloseAWebSocket()
    {
        QVERIFY(openSession());

        m_server->inject(QStringLiteral("c[3000,\"Go away!\"]"));
        QVERIFY(syncInbound());

        QVERIFY(m_connector->isConnected());
        QVERIFY(syncOutbound());
        QVERIFY(!m_probe->hasClosed());
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

    void framesSentBeforeTheEndReachTheServer_data() { rows<bool>({{"close", false}, {"deletion", true}}); }

    void framesSentBeforeTheEndReachTheServer()
    {
        const auto [deletes] = row<bool>();
        QVERIFY(openSession());
        const QString large(8 * 1024 * 1024, QLatin1Char('x'));

        m_connector->sendMessage(large, false);
        m_connector->sendMessage(QStringLiteral("disconnect"), false);
        if (deletes)
            delete m_connector;
        else
            m_connector->close();

        const auto first = m_server->nextMessage();
        QCOMPARE(first.size(), large.size());
        QVERIFY(first == large);
        QCOMPARE(m_server->nextMessage(), QStringLiteral("disconnect"));
        QTRY_COMPARE(m_server->endedSessions(), 1);
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed false")), deletes ? 0 : 1);
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

    void inactivityTimerRunsEveryHalfHour()
    {
        QVERIFY(halfHourTimers().isEmpty()); // it comes with the first open()

        QVERIFY(openSession());
        const auto timers = halfHourTimers();
        QCOMPARE(timers.size(), 1);
        QVERIFY(timers.first()->isActive());
        QVERIFY(!timers.first()->isSingleShot());
        QCOMPARE(timers.first()->parent(), m_connector.data());

        m_connector->close();
        QTRY_VERIFY(m_probe->hasClosed());
        QVERIFY(openSession());
        QCOMPARE(halfHourTimers(), timers);

        // The next open() does not restart it.
        idle(3601);
        QVERIFY(!timers.first()->isActive());
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);
        QVERIFY(openSession());
        QCOMPARE(halfHourTimers(), timers);
        QVERIFY(!timers.first()->isActive());
    }

    void inactivityBound_data()
    {
        rows<int, bool>({
            {"at once", 0, false},
            {"half an hour", 1800, false},
            {"3599", 3599, false},
            {"3600", 3600, false},
            {"3601", 3601, true},
            {"a day", 86400, true},
            {"the clock was put back", -86400, false},
        });
    }

    void inactivityBound()
    {
        const auto [seconds, closes] = row<int, bool>();
        QVERIFY(openSession());

        idle(seconds);

        QCOMPARE(m_connector->isConnected(), !closes);
        if (closes) {
            QTRY_COMPARE(m_probe->events(), QStringList({"connected", "closed true"}));
            QTRY_COMPARE(m_server->openConnections(), 0);
        } else {
            QVERIFY(syncOutbound());
            QVERIFY(syncInbound());
            QCOMPARE(m_probe->events().size(), 2);
        }
    }

    void inactivityDoesNotCloseBeforeTheSessionIsOpen()
    {
        m_server->setUpgrade(Server::Mute);
        QVERIFY(m_probe->open(m_server->url(), webSocket));

        idle(10000);

        m_server->inject(QStringLiteral("o"));
        QTRY_VERIFY(m_connector->isConnected());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->events().first(), QStringLiteral("connected"));
    }

    void pingsAreNoActivity()
    {
        QVERIFY(openSession());

        WallClock::advance(3000);
        m_connector->sendMessage(QStringLiteral("ping"), true);
        m_server->injectMessages({"inbound is none either"});
        QVERIFY(syncInbound());
        idle(601);

        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);
    }

    void sendsAreActivity()
    {
        QVERIFY(openSession());

        WallClock::advance(3000);
        m_connector->sendMessage(QStringLiteral("text"), false);
        idle(3600);
        QVERIFY(m_connector->isConnected());

        m_connector->sendMessage(QVariantMap{{"a", "map"}});
        idle(3600);
        QVERIFY(m_connector->isConnected());

        idle(1);
        QVERIFY(!m_connector->isConnected());
    }

    void openIsActivity()
    {
        QVERIFY(openSession());
        m_connector->close();
        QTRY_VERIFY(m_probe->hasClosed());

        WallClock::advance(3601);
        QVERIFY(openSession());
        idle(0);

        QVERIFY(m_connector->isConnected());
        QVERIFY(syncInbound());
    }

    void closedTellsInactivityOnlyForThatConnection()
    {
        QVERIFY(openSession());
        idle(3601);
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);

        QVERIFY(openSession());
        m_connector->close();

        QTRY_COMPARE(m_probe->events(),
                     QStringList({"connected", "closed true", "connected", "closed false"}));
    }

    void closeAfterAnInactivityCloseDoesNotReportTwice()
    {
        QVERIFY(openSession());
        idle(3601);
        m_connector->close();
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);
        m_connector->close();

        QVERIFY(openSession());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->count(QStringLiteral("closed true")), 1);
        QVERIFY(!m_probe->hasClosed());
    }

    void inactivityClosesPollingToo()
    {
        QVERIFY(m_probe->openSession(m_server->url(), {SockJSConnector::XHR_POLLING}));

        idle(3600);
        QVERIFY(m_connector->isConnected());
        idle(1);

        QTRY_COMPARE(m_probe->events(), QStringList({"connected", "closed true"}));
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

private:
    QList<QTimer*> halfHourTimers() const
    {
        QList<QTimer*> timers;
        const auto all = m_connector->findChildren<QTimer*>();
        std::copy_if(all.begin(), all.end(), std::back_inserter(timers),
                     [](const auto* timer) { return timer->interval() == 1800000; });
        return timers;
    }

    // Lets the time pass, and the connector look at the clock.
    void idle(int seconds)
    {
        WallClock::advance(seconds);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));
    }
};

QTEST_GUILESS_MAIN(TestSockJSConnectorClose)
#include "tst_SockJSConnectorClose.moc"
