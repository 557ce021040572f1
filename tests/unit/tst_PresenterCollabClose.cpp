#include "support/Rows.h"
#include "support/SessionTest.h"
#include "transport/SockJSConnector.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

/// The end of a session, from either side.
class TestPresenterCollabClose : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void closeSaysGoodbyeAndDisconnects()
    {
        QVERIFY(m_session->open());
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);

        collab()->close();

        QVERIFY(!collab()->isConnected());
        QVERIFY(!pingTimer()->isActive());
        QCOMPARE(closed.size(), 0);
        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.type, QStringLiteral("disconnect"));
        QCOMPARE(publish.data, QStringLiteral("\"\""));
        QTRY_COMPARE(closed.size(), 1);
        QCOMPARE(closed.first().first().toBool(), false);
        QTRY_COMPARE(server().endedSessions(), 1);

        collab()->close();
        QVERIFY(m_session->open());
        QVERIFY(m_session->syncInbound());
        QCOMPARE(closed.size(), 1);
    }

    void closeOfASessionThatNeverConnected()
    {
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);

        collab()->close();

        QCOMPARE(dropped(), 1);
        QVERIFY(!pingTimer()->isActive());
        QVERIFY(m_session->open());
        QVERIFY(m_session->syncInbound());
        QCOMPARE(closed.size(), 0);
    }

    void closeBeforeTheChannelIsUpClosesItOnceItIs()
    {
        server().setUpgrade(Server::Mute);
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);
        collab()->open({"websocket"});
        collab()->close();
        QCOMPARE(dropped(), 1);

        server().inject("o");

        QTRY_COMPARE(server().endedSessions(), 1);
        QVERIFY2(server().unreadFrames().isEmpty(),
                 qPrintable(server().unreadFrames().join(QLatin1Char('\n'))));
        QVERIFY(!collab()->isConnected());
        QVERIFY(!pingTimer()->isActive());
        QTRY_COMPARE(closed.size(), 1);
        QCOMPARE(closed.first().first().toBool(), false);
    }

    void openAfterACloseThatCameEarlyRegisters()
    {
        server().setUpgrades({Server::Mute, Server::Open});
        collab()->open({"websocket"});
        collab()->close();

        QVERIFY(m_session->open()); // reads the registers
        QVERIFY(m_session->syncInbound());
        QVERIFY(collab()->isConnected());
        QVERIFY(pingTimer()->isActive());
    }

    void openOfTheConnectorAfterACloseRegisters()
    {
        QVERIFY(m_session->open());
        collab()->close();
        QCOMPARE(m_session->nextPublish().type, QStringLiteral("disconnect"));

        collab()->connector()->open(server().url(), {SockJSConnector::WEBSOCKET});

        QVERIFY(m_session->readRegisters());
        QVERIFY(m_session->syncInbound());
        QVERIFY(pingTimer()->isActive());
    }

    void aSecondOpenThatFailsEndsThePings_data()
    {
        rows<bool>({
            {"of the channel", false},
            {"of its connector", true},
        });
    }

    void aSecondOpenThatFailsEndsThePings()
    {
        const auto [ofTheConnector] = row<bool>();
        QVERIFY(m_session->open());
        server().setUpgrade(Server::Refuse403);

        if (ofTheConnector) {
            collab()->connector()->open(server().url(), {SockJSConnector::WEBSOCKET});
            QVERIFY(QMetaObject::invokeMethod(collab(), "onPingTimer"));
        } else {
            collab()->open({"websocket"});
        }

        QVERIFY(!pingTimer()->isActive());
    }

    void openRightAfterCloseKeepsTheNewChannel()
    {
        QVERIFY(m_session->open());
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);

        collab()->close();
        collab()->open({"websocket"});

        QCOMPARE(m_session->nextPublish().type, QStringLiteral("disconnect"));
        QVERIFY(m_session->readRegisters());
        QTRY_COMPARE(server().openConnections(), 1);
        QVERIFY(m_session->syncInbound());
        QCOMPARE(closed.size(), 1);
        QVERIFY(collab()->isConnected());
        QVERIFY(pingTimer()->isActive());
        QVERIFY(m_session->nothingWasSent());
    }

    void theServersEndStopsThePingAndIsReported()
    {
        QVERIFY(m_session->open());
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);

        server().closeSession();

        QTRY_COMPARE(closed.size(), 1);
        QCOMPARE(closed.first().first().toBool(), false);
        QVERIFY(!collab()->isConnected());
        QVERIFY(!pingTimer()->isActive());
    }

private:
    QTimer* pingTimer() const { return collab()->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly); }
};

QTEST_GUILESS_MAIN(TestPresenterCollabClose)
#include "tst_PresenterCollabClose.moc"
