#include "support/ConnectorTest.h"
#include "support/Rows.h"
#include "support/WallClock.h"

#include <QTest>
#include <QTimer>

/// The close after an hour in which nothing but pings was sent.
class TestSockJSConnectorInactivity : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void inactivityTimerRunsEveryHalfHour()
    {
        const auto halfHourTimers = [this] {
            QList<QTimer*> timers;
            const auto all = m_connector->findChildren<QTimer*>();
            for (auto* timer : all) {
                if (timer->interval() == 1800000)
                    timers.append(timer);
            }
            return timers;
        };
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
        WallClock::freeze();
        QVERIFY(openSession());

        WallClock::advance(seconds);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));

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
        WallClock::freeze();
        m_server->setUpgrade(Server::Mute);
        QVERIFY(m_probe->open(m_server->url(), webSocket));

        WallClock::advance(10000);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));

        m_server->inject(QStringLiteral("o"));
        QTRY_VERIFY(m_connector->isConnected());
        QVERIFY(syncInbound());
        QCOMPARE(m_probe->events().first(), QStringLiteral("connected"));
    }

    void pingsAreNoActivity()
    {
        WallClock::freeze();
        QVERIFY(openSession());

        WallClock::advance(3000);
        m_connector->sendMessage(QStringLiteral("ping"), true);
        m_server->injectMessages({"inbound is none either"});
        QVERIFY(syncInbound());
        WallClock::advance(601);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));

        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);
    }

    void sendsAreActivity()
    {
        WallClock::freeze();
        QVERIFY(openSession());

        WallClock::advance(3000);
        m_connector->sendMessage(QStringLiteral("text"), false);
        WallClock::advance(3600);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));
        QVERIFY(m_connector->isConnected());

        m_connector->sendMessage(QVariantMap{{"a", "map"}});
        WallClock::advance(3600);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));
        QVERIFY(m_connector->isConnected());

        WallClock::advance(1);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));
        QVERIFY(!m_connector->isConnected());
    }

    void openIsActivity()
    {
        WallClock::freeze();
        QVERIFY(openSession());
        m_connector->close();
        QTRY_VERIFY(m_probe->hasClosed());

        WallClock::advance(3601);
        QVERIFY(openSession());
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));

        QVERIFY(m_connector->isConnected());
        QVERIFY(syncInbound());
    }

    void inactivityTimerIsNotRestartedByTheNextOpen()
    {
        WallClock::freeze();
        QVERIFY(openSession());
        const auto active = [this] {
            int count = 0;
            const auto timers = m_connector->findChildren<QTimer*>();
            for (const auto* timer : timers)
                count += timer->interval() == 1800000 && timer->isActive() ? 1 : 0;
            return count;
        };
        QCOMPARE(active(), 1);

        WallClock::advance(3601);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));
        QCOMPARE(active(), 0);
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);
        QVERIFY(openSession());

        QCOMPARE(active(), 0);
    }

    void closedTellsInactivityOnlyForThatConnection()
    {
        WallClock::freeze();
        QVERIFY(openSession());
        WallClock::advance(3601);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));
        QTRY_COMPARE(m_probe->count(QStringLiteral("closed true")), 1);

        QVERIFY(openSession());
        m_connector->close();

        QTRY_COMPARE(m_probe->events(),
                     QStringList({"connected", "closed true", "connected", "closed false"}));
    }

    void closeAfterAnInactivityCloseDoesNotReportTwice()
    {
        WallClock::freeze();
        QVERIFY(openSession());
        WallClock::advance(3601);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));
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
        WallClock::freeze();
        QVERIFY(m_probe->openSession(m_server->url(), {SockJSConnector::XHR_POLLING}));

        WallClock::advance(3600);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));
        QVERIFY(m_connector->isConnected());
        WallClock::advance(1);
        QVERIFY(QMetaObject::invokeMethod(m_connector, "onTimeout"));

        QTRY_COMPARE(m_probe->events(), QStringList({"connected", "closed true"}));
        QTRY_COMPARE(m_server->openConnections(), 0);
    }
};

QTEST_GUILESS_MAIN(TestSockJSConnectorInactivity)
#include "tst_SockJSConnectorInactivity.moc"
