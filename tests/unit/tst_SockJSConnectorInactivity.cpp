#include "support/ConnectorTest.h"
#include "support/Rows.h"
#include "support/WallClock.h"

#include <QTest>
#include <QTimer>

#include <algorithm>

/// The close after an hour in which nothing but pings was sent.
class TestSockJSConnectorInactivity : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setUp();
        WallClock::freeze();
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

QTEST_GUILESS_MAIN(TestSockJSConnectorInactivity)
#include "tst_SockJSConnectorInactivity.moc"
