#include "support/ConnectorTest.h"
#include "support/Rows.h"

#include <QTest>

/// The end of a connection, from either side. Hosts that bring it about from inside a slot are in
/// tst_HostActions.
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
        m_connector->close();

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

private:
};

QTEST_GUILESS_MAIN(TestSockJSConnectorClose)
#include "tst_SockJSConnectorClose.moc"
