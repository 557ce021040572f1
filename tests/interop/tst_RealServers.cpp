#include "interop/support/BusTest.h"
#include "interop/support/Main.h"

/// One conformance suite, run over every transport against every server.
class TestRealServers : public BusTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("server");
        QTest::addColumn<QString>("transport");
        for (const QString& server : servers) {
            for (const QString& transport : Transport::all)
                QTest::addRow("%s, %s", qPrintable(server), qPrintable(transport)) << server << transport;
        }
    }
    void receivesTenThousandTextsInOrder()
    {
        QVERIFY(open());
        QVERIFY(m_host->receiveNumbers(10000));
        QVERIFY(m_host->close());
    }

    void registersThenPublishes()
    {
        QFETCH_GLOBAL(QString, server);
        QFETCH_GLOBAL(QString, transport);
        m_bus.emplace(BusTest::server(server));
        m_host.emplace(m_bus->url(), QStringLiteral("tökén"));
        QVERIFY(m_host->open(transport));
        m_host->publish(QStringLiteral("någon"));
        QVERIFY(m_bus->waitFor(QStringLiteral("frame "), 4));
        const QStringList frames = m_bus->lines(QStringLiteral("frame "));
        const QString registration = QStringLiteral("frame {\"type\":\"register\",\"address\":\"tökén%1\"}");
        QCOMPARE(frames.at(0), registration.arg(QString()));
        QCOMPARE(frames.at(1), registration.arg(QStringLiteral(".presenter")));
        QCOMPARE(frames.at(2), registration.arg(QStringLiteral(".presenter.host")));
        QVERIFY(frames.at(3).startsWith(
            QStringLiteral("frame {\"type\":\"publish\",\"address\":\"tökén.peer\",\"body\":"
                           "{\"from\":\"host\",\"type\":\"någon\",\"data\":[\"")));
        QCOMPARE(m_bus->lines(QStringLiteral("open ")),
                 {QStringLiteral("open %1 %2").arg(m_host->connector()->sessionId(), transport)});
    }

    void saysGoodbye()
    {
        QVERIFY(open());
        constexpr int last = 100;
        for (int i = 0; i < last; ++i)
            m_host->publish(QStringLiteral("last"));
        QVERIFY(m_host->close());
        // Three registrations, what was published before, and the farewell.
        QVERIFY(m_bus->waitFor(QStringLiteral("frame "), 3 + last + 1));
        const QString farewell = m_bus->lines(QStringLiteral("frame ")).at(3 + last);
        QVERIFY2(farewell.contains(QStringLiteral("\"type\":\"disconnect\"")), qPrintable(farewell));
        QVERIFY(m_bus->waitFor(QStringLiteral("close ") + m_host->connector()->sessionId()));
    }

    // While each streamed answer ends after a few of them.
    void sendsInOrder()
    {
        QFETCH_GLOBAL(QString, transport);
        QVERIFY(open({QStringLiteral("--response-limit"), QStringLiteral("4096")}));
        QVERIFY(m_host->exchangeNumbers(945, 60)); // one of 60 kB is among them
        const QString stream =
            QStringLiteral("request /eventbus/119/%1/xhr_streaming").arg(m_host->connector()->sessionId());
        QVERIFY(transport != Transport::streaming || m_bus->count(stream) > 3);
        QVERIFY(m_host->close());
    }

    void hostClosesAndOpensAgain()
    {
        QFETCH_GLOBAL(QString, transport);
        QVERIFY(open({QStringLiteral("--count"), QStringLiteral("100")}));
        QStringList ids;
        for (int round = 1; round <= 3; ++round) {
            QVERIFY(round == 1 || m_host->open(transport));
            ids.append(m_host->connector()->sessionId());
            QVERIFY(m_host->receiveNumbers(100));
            QVERIFY(m_host->close());
            QVERIFY(m_bus->waitFor(QStringLiteral("close ") + ids.last()));
        }
        QCOMPARE(ids.removeDuplicates(), 0);
    }

    void staysOpenThroughHeartbeats()
    {
        QFETCH_GLOBAL(QString, transport);
        QVERIFY(open({QStringLiteral("--heartbeat"), QStringLiteral("20"), QStringLiteral("--count"),
                      QStringLiteral("2000")}));
        // A poll that nothing else ends is ended by a heartbeat.
        const QString poll =
            QStringLiteral("request /eventbus/119/%1/xhr ").arg(m_host->connector()->sessionId());
        QVERIFY(transport != Transport::polling || m_bus->waitFor(poll, 20));
        for (int round = 0; round < 3; ++round)
            QVERIFY(m_host->receiveNumbers(2000));
        QVERIFY(m_host->close());
    }

private:
    // At the row's server, over its transport.
    bool open(const QStringList& options = {})
    {
        QFETCH_GLOBAL(QString, server);
        QFETCH_GLOBAL(QString, transport);
        return BusTest::open(BusTest::server(server, options), transport);
    }
};

INTEROP_MAIN(TestRealServers)
#include "tst_RealServers.moc"
