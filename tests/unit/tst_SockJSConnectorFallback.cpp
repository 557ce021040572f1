#include "support/ConnectorTest.h"
#include "support/Rows.h"

#include <QTest>

using Protocol = SockJSConnector::PROTOCOL_TYPE;
using Protocols = QList<Protocol>;
using Server = FakeSockJSServer;

Q_DECLARE_METATYPE(Protocols)

namespace {

const auto noMore = QStringLiteral("[SockJSConnector] No more protocols found!");
const auto fellBack = QStringLiteral("[SockJSConnector] Fallback to XHR_Polling");
const auto upSocket = QStringLiteral("[SockJSConnector] CONNECTED via Websocket");

void addEveryRefusal()
{
    QTest::newRow("403") << Server::Refuse403;
    QTest::newRow("404") << Server::Refuse404;
    QTest::newRow("200") << Server::Answer200;
    QTest::newRow("garbage") << Server::AnswerGarbage;
    QTest::newRow("connection ended") << Server::EndInstead;
    QTest::newRow("connection reset") << Server::ResetInstead;
}

void addEveryDrop()
{
    QTest::newRow("closed as WebSockets are") << Server::CloseAfterUpgrade;
    QTest::newRow("connection ended") << Server::EndAfterUpgrade;
    QTest::newRow("connection reset") << Server::ResetAfterUpgrade;
}

} // namespace

/// Transports that fail: which is tried next, and what the host hears of it.
class TestSockJSConnectorFallback : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void aRefusedUpgradeGoesToTheNextTransport_data()
    {
        columns<Server::Upgrade>();
        addEveryRefusal();
    }

    void aRefusedUpgradeGoesToTheNextTransport()
    {
        const auto [refusal] = row<Server::Upgrade>();
        m_server->setFirstFrames({}); // the poll stays without an answer
        m_server->setUpgrade(refusal);

        QVERIFY(m_probe->open(m_server->url(QStringLiteral("/base")), webSocketThenPolling));

        QTRY_COMPARE(m_server->count(QStringLiteral("/xhr")), 1);
        const QString session = QStringLiteral("/base/eventbus/119/") + m_connector->sessionId();
        QCOMPARE(m_server->paths(), QStringList({session + "/websocket", session + "/xhr"}));
        QVERIFY(!m_probe->hasClosed());
        QVERIFY(m_log->debug(upSocket).isEmpty());
        QVERIFY(m_log->debug(fellBack).isEmpty());
    }

    void nobodyListeningGoesToTheNextEntry()
    {
        const auto url = m_server->url();
        m_server->stopListening();

        QVERIFY(m_probe->open(url, {SockJSConnector::WEBSOCKET, SockJSConnector::WEBSOCKET}));

        QCOMPARE(m_log->debug(QStringLiteral("[SockJSConnector] Websocket url =")).size(), 2);
        QVERIFY(m_probe->events().isEmpty());
    }

    void allTransportsFailingIsSilent_data()
    {
        columns<Server::Upgrade>();
        addEveryRefusal();
    }

    void allTransportsFailingIsSilent()
    {
        const auto [refusal] = row<Server::Upgrade>();
        m_server->setUpgrade(refusal);

        QVERIFY(m_probe->open(m_server->url(), webSocket));

        QTRY_COMPARE(m_server->openConnections(), 0);
        QVERIFY(anotherConnectorOpens());
        QVERIFY(m_probe->events().isEmpty());
        QVERIFY(!m_connector->isConnected());
        QVERIFY(m_log->debug(noMore).isEmpty());
        QVERIFY(m_log->debug(QStringLiteral("[SockJSConnector] Websocket CLOSED")).isEmpty());

        // The next open() is not impaired.
        QVERIFY(openSession());
        QVERIFY(syncInbound());
    }

    void noTransportsIsSilent()
    {
        QVERIFY(m_probe->open(m_server->url(), {}));

        QVERIFY(m_log->debug(noMore).isEmpty());
        QVERIFY(anotherConnectorOpens());
        QVERIFY(m_probe->events().isEmpty());
        QCOMPARE(m_server->requests().size(), 1);
    }

    void entriesAreTriedInOrder()
    {
        m_server->setUpgrades({Server::Refuse404, Server::ResetInstead, Server::Open});

        QVERIFY(m_probe->openSession(m_server->url(), webSocket + webSocket + webSocketThenPolling));

        const QString path =
            QStringLiteral("/eventbus/119/") + m_connector->sessionId() + QStringLiteral("/websocket");
        QCOMPARE(m_server->paths(), QStringList({path, path, path}));
        QCOMPARE(m_probe->events(), QStringList({"connected"}));
    }

    void unknownEntriesAreLoggedAndSkipped_data()
    {
        columns<Protocols, int, bool>();

        const auto ws = SockJSConnector::WEBSOCKET;
        QTest::newRow("none") << Protocols{ws} << 0 << true;
        QTest::newRow("0 in front") << Protocols{Protocol(0), ws} << 1 << true;
        QTest::newRow("two bits in front") << Protocols{Protocol(3), Protocol(7), ws} << 2 << true;
        QTest::newRow("behind what opens") << Protocols{ws, Protocol(5)} << 0 << true;
        QTest::newRow("nothing else") << Protocols{Protocol(6)} << 1 << false;
    }

    void unknownEntriesAreLoggedAndSkipped()
    {
        const auto [protocols, unknown, opens] = row<Protocols, int, bool>();

        QVERIFY(m_probe->open(m_server->url(), protocols));

        QCOMPARE(m_log->debug(noMore).size(), unknown);
        if (opens)
            QTRY_VERIFY(m_connector->isConnected());
        QCOMPARE(m_server->requests().size(), opens ? 1 : 0);
    }

    void xhrEntriesAskForTheirPath_data()
    {
        rows<int, QString, QString>({
            {"polling", 4, "/xhr", "[SockJSConnector] CONNECTED via xhr_polling"},
            {"streaming", 2, "/xhr_streaming", "[SockJSConnector] CONNECTED via xhr_streaming"},
        });
    }

    void xhrEntriesAskForTheirPath()
    {
        const auto [protocol, path, log] = row<int, QString, QString>();

        QVERIFY(m_probe->open(m_server->url(QStringLiteral("/base/")), {Protocol(protocol)}));

        QTRY_VERIFY(!m_server->requests().isEmpty());
        QCOMPARE(m_server->requests().first().method, QByteArray("POST"));
        QCOMPARE(m_server->paths().first(),
                 QStringLiteral("/base/eventbus/119/") + m_connector->sessionId() + path);
        QString line = m_log->debug(QStringLiteral("[SockJSConnector] CONNECTED via")).value(0);
        QCOMPARE(line.remove(QLatin1Char('"')).replace(QStringLiteral("xhr_ "), QStringLiteral("xhr_")), log);
    }

    void aDropBeforeTheOpenFrameFallsBackToPolling_data()
    {
        columns<Server::Upgrade>();
        addEveryDrop();
    }

    void aDropBeforeTheOpenFrameFallsBackToPolling()
    {
        const auto [drop] = row<Server::Upgrade>();
        m_server->setFirstFrames({}); // the poll stays without an answer
        m_server->setUpgrade(drop);

        QVERIFY(m_probe->open(m_server->url(QStringLiteral("/base")), webSocket));

        QTRY_COMPARE(m_server->count(QStringLiteral("/xhr")), 1);
        const QString session = QStringLiteral("/base/eventbus/119/") + m_connector->sessionId();
        QCOMPARE(m_server->paths(), QStringList({session + "/websocket", session + "/xhr"}));
        QVERIFY(!m_probe->hasClosed());
        QTRY_COMPARE(m_log->debug(fellBack).size(), 1);
    }

    void theFallbackIgnoresTheList()
    {
        m_server->setFirstFrames({}); // the poll stays without an answer
        m_server->setUpgrade(Server::CloseAfterUpgrade);

        QVERIFY(m_probe->open(m_server->url(), {SockJSConnector::WEBSOCKET, SockJSConnector::XHR_STREAMING}));

        QTRY_COMPARE(m_server->requests().size(), 2);
        QVERIFY2(m_server->paths().last().endsWith(QLatin1String("/xhr")),
                 qPrintable(m_server->paths().last()));
    }

    void aFailedFallbackIsReportedAsClosed()
    {
        m_server->setUpgrade(Server::CloseAfterUpgrade);
        connect(m_server.get(), &Server::requested, m_server.get(), &Server::stopListening);

        QVERIFY(m_probe->open(m_server->url(), webSocket));

        QTRY_COMPARE(m_probe->events(), QStringList({"closed false"}));
        QVERIFY(m_log->debug(fellBack).isEmpty());
        QVERIFY(!m_connector->isConnected());
        m_connector->close();
        Server other;
        QVERIFY(m_probe->openSession(other.url(), webSocket));
        QCOMPARE(m_probe->events(), QStringList({"closed false", "connected"}));
    }
};

QTEST_GUILESS_MAIN(TestSockJSConnectorFallback)
#include "tst_SockJSConnectorFallback.moc"
