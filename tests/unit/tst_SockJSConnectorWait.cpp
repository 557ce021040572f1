#include "support/ConnectorTest.h"
#include "support/Rows.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTest>
#include <QTimer>

#include <ctime>
#include <functional>
#include <memory>
#include <utility>

/// The wait for a server: what ends it, and the limit that a host may set.
class TestSockJSConnectorWait : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void theWaitHasNoLimitOfItsOwn()
    {
        m_server->setUpgrade(Server::Silent);
        // Another connector with a limit, told to open during the wait, has long given up the same silence.
        SockJSConnector limited;
        limited.setOpenLimit(300);
        bool gaveUp = false;
        duringTheWait([&] {
            limited.open(m_server->url(), webSocket);
            gaveUp = true;
            m_server->answerUpgrade();
        });

        QVERIFY(m_probe->openSession(m_server->url(), webSocketThenPolling));

        QVERIFY(gaveUp);
        QVERIFY(syncInbound());
        QCOMPARE(m_server->count(QStringLiteral("/websocket")), 2);
        QCOMPARE(m_server->count(QStringLiteral("/xhr")), 0);
    }

    void quitBeforeTheApplicationRunsDoesNotEndIt()
    {
        QCoreApplication::quit();

        QVERIFY(openSession());

        QTimer::singleShot(0, qApp, &QCoreApplication::quit); // it lasts until the application has run
        QCoreApplication::exec();
        QVERIFY(syncInbound());
    }

    // A wait that spins takes as much processor time as it lasts.
    void theWaitSleeps()
    {
        m_server->setUpgrade(Server::Silent);
        m_connector->setOpenLimit(1000);
        const auto before = std::clock();

        QVERIFY(m_probe->open(m_server->url(), webSocket));

        QVERIFY2(std::clock() - before < CLOCKS_PER_SEC / 2, "the wait kept the processor busy");
    }

    void anXHRTransportMayBeConnectedWithEvents()
    {
        m_connector->setAsynchronousConnect(true);
        bool turned = false;
        QTimer::singleShot(0, this, [&turned] { turned = true; });

        m_connector->open(m_server->url(), {SockJSConnector::XHR_POLLING});

        QVERIFY(turned);
        QTRY_VERIFY(m_connector->isConnected());
    }

    void theLimitGivesUpASilentServer()
    {
        m_server->setFirstFrames({}); // the poll stays without an answer
        m_server->setUpgrade(Server::Silent);
        m_connector->setOpenLimit(200);
        QCOMPARE(m_connector->openLimit(), 200);

        QVERIFY(m_probe->open(m_server->url(), webSocketThenPolling));

        QTRY_COMPARE(m_server->count(QStringLiteral("/xhr")), 1);
        QCOMPARE(m_server->requests().last().sessionId(), m_connector->sessionId());
        QVERIFY(!m_probe->hasClosed());
    }

    void theLimitGivesUpAServerWithoutOpenFrame()
    {
        m_server->setUpgrades({Server::Mute, Server::Mute, Server::Open});
        m_connector->setOpenLimit(500);

        QVERIFY(m_probe->open(m_server->url(), webSocket + webSocket + webSocketThenPolling));

        QTRY_VERIFY(m_connector->isConnected());
        QVERIFY(syncInbound());
        QTRY_COMPARE(m_server->endedSessions(), 2);
        QVERIFY(syncInbound());
        QCOMPARE(m_server->count(QStringLiteral("/websocket")), 3);
        QCOMPARE(m_server->count(QStringLiteral("/xhr")), 0);
        QVERIFY(m_server->requests().first().sessionId() != m_server->requests().last().sessionId());
        QCOMPARE(m_probe->count(QStringLiteral("connected")), 1);
        QVERIFY(!m_probe->hasClosed());
    }

    void theLimitOnTheLastEntryIsSilent()
    {
        m_server->setUpgrade(Server::Mute);
        m_connector->setOpenLimit(200);

        QVERIFY(m_probe->open(m_server->url(), webSocket));

        QTRY_COMPARE(m_server->endedSessions(), 1);
        QVERIFY(anotherConnectorOpens());
        QVERIFY(m_probe->events().isEmpty());
        QVERIFY(!m_connector->isConnected());
        QCOMPARE(m_server->count(QStringLiteral("/xhr")), 0);
    }

    void theLimitBoundsAPollingHandshake()
    {
        constexpr int withoutLimit = 30000; // milliseconds
        QTcpServer mute;                    // takes the connection, and answers no handshake
        QVERIFY(mute.listen(QHostAddress::LocalHost));
        m_connector->setOpenLimit(200);
        QElapsedTimer clock;
        clock.start();

        m_connector->open(QUrl(QStringLiteral("https://127.0.0.1:%1").arg(mute.serverPort())),
                          {SockJSConnector::XHR_STREAMING, SockJSConnector::XHR_POLLING});

        QVERIFY(clock.elapsed() < withoutLimit);
        QVERIFY(m_probe->events().isEmpty());
    }

    void theLimitDoesNotTouchAnOpenSession()
    {
        m_connector->setOpenLimit(200);
        QVERIFY(m_probe->openSession(m_server->url(), webSocketThenPolling));

        m_server->setUpgrade(Server::Silent);
        outlast(300);

        QVERIFY(syncInbound());
        QVERIFY(m_connector->isConnected());
        QVERIFY(!m_probe->hasClosed());
        QCOMPARE(m_server->requests().size(), 2);
    }

    void closeEndsTheLimit()
    {
        m_server->setUpgrades({Server::Mute, Server::Silent});
        m_connector->setOpenLimit(200);
        QVERIFY(m_probe->open(m_server->url(), webSocketThenPolling));
        m_connector->close();

        outlast(300);

        QCOMPARE(m_server->requests().size(), 2);
        QTRY_COMPARE(m_probe->events(), QStringList({"closed false"}));
    }

    void theLimitCountsFromTheNextOpen()
    {
        m_server->setUpgrades({Server::Mute, Server::Silent});
        QVERIFY(m_probe->open(m_server->url(), webSocketThenPolling));
        m_connector->setOpenLimit(100);

        outlast(300);
        QCOMPARE(m_server->requests().size(), 2);
        QCOMPARE(m_server->endedSessions(), 0);

        m_server->setUpgrade(Server::Mute);
        QVERIFY(m_probe->open(m_server->url(), webSocket));
        QTRY_COMPARE(m_server->endedSessions(), 2);
    }

    void aFarEndThatIsGoneIsNoticed_data()
    {
        constexpr auto ws = SockJSConnector::WEBSOCKET;
        constexpr auto streaming = SockJSConnector::XHR_STREAMING;
        constexpr auto polling = SockJSConnector::XHR_POLLING;
        rows<Protocol, int, int, bool, bool, bool>({
            {"silence, websocket", ws, 100, 0, false, false, true},
            {"silence, streaming", streaming, 100, 0, false, false, true},
            {"silence, polling", polling, 100, 0, false, false, true},
            {"heartbeats, websocket", ws, 200, 0, true, false, false},
            {"heartbeats, streaming", streaming, 200, 0, true, false, false},
            {"heartbeats, polling", polling, 200, 0, true, false, false},
            {"answers pings no more", ws, 0, 20, false, true, true},
            {"has never answered pings", ws, 0, 20, false, false, false},
            {"answers no pings, but sends", ws, 0, 20, true, true, false},
            {"no limits", ws, 0, 0, false, true, false},
        });
    }

    void aFarEndThatIsGoneIsNoticed()
    {
        const auto [transport, silenceLimit, pingInterval, heartbeats, pong, gone] =
            row<Protocol, int, int, bool, bool, bool>();
        m_server->setUpgrades({Server::OpenInSamePacket, Server::Silent});
        m_connector->setSilenceLimit(silenceLimit);
        m_connector->setPingInterval(pingInterval);
        m_connector->setPongLimit(200);
        QVERIFY(m_probe->openSession(m_server->url(), {transport}));
        QTimer beats;
        connect(&beats, &QTimer::timeout, this, [this] { m_server->inject(QStringLiteral("h")); });
        if (heartbeats)
            beats.start(20);
        if (pong)
            m_server->injectPong();

        m_server->setUpgrade(Server::Silent);
        outlast(600);

        QCOMPARE(m_probe->count(QStringLiteral("closed false")), gone ? 1 : 0);
        QCOMPARE(m_connector->isConnected(), !gone);
    }

    void pingsAreAnswered()
    {
        m_connector->setPingInterval(20);
        m_connector->setPongLimit(200);
        QVERIFY(openSession());
        m_server->setUpgrade(Server::Silent);
        outlast(600);
        QVERIFY(syncInbound());
        QVERIFY(!m_probe->hasClosed());
    }

private:
    // Another connector waits in vain, and gives up after this time: limits that have begun before are over.
    void outlast(int msecs)
    {
        SockJSConnector other;
        other.setOpenLimit(msecs);
        other.open(m_server->url(), webSocket);
    }

    // Runs once, when the server has the first upgrade and has not answered it.
    void duringTheWait(const std::function<void()>& action)
    {
        const auto due = std::make_shared<bool>(true);
        connect(m_server.get(), &Server::requested, m_server.get(), [this, action, due] {
            if (std::exchange(*due, false))
                QTimer::singleShot(0, m_server.get(), action);
        });
    }
};

QTEST_GUILESS_MAIN(TestSockJSConnectorWait)
#include "tst_SockJSConnectorWait.moc"
