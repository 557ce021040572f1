#include "interop/support/BusTest.h"
#include "interop/support/Main.h"

/// Servers that forget a session, and go away: the host is told once, opens again, and everything works. And
/// those that end a streamed answer after a number of bytes: the next request goes on where it has ended.
/// What is sent meanwhile is in tst_RealServers.
class TestLostSessions : public BusTest
{
    Q_OBJECT

private Q_SLOTS:
    void hostOpensAgain_data()
    {
        combinations({servers, Transport::all, {"cut", "leave", "restart", "absence"}});
    }
    // Where a server is restarted, a poll or a streamed answer is pending.
    void hostOpensAgain()
    {
        const auto [name, transport, loss] = row<QString, QString, QString>();
        const bool isRestarted = loss == QLatin1String("restart");
        const bool isAway = loss == QLatin1String("absence");
        QVERIFY(open(server(name, {QStringLiteral("--count"), QStringLiteral("100")}), transport));
        for (int round = 0; round < 2; ++round) {
            QVERIFY(m_host->receiveNumbers(100));
            if (isRestarted || isAway)
                m_bus->kill();
            else
                m_host->publish(loss);
            // The host hears of nothing in between, because its event loop does not run.
            QVERIFY(!isRestarted || m_bus->start());
            QVERIFY(m_host->waitForEnd());
            if (isAway) {
                QVERIFY(m_host->tryOpen(Transport::all));
                QVERIFY(!m_host->collab()->isConnected());
                QVERIFY(m_bus->start());
            }
            QVERIFY(m_host->open(transport));
        }
        QVERIFY(m_host->receiveNumbers(100));
        QVERIFY(m_host->close());
    }

    void hostIsBusyForTooLong_data() { combinations({servers, Transport::xhr}); }
    // Servers give a session up when nobody has asked for its frames for 5 s.
    void hostIsBusyForTooLong()
    {
        const auto [name, transport] = row<QString, QString>();
        QVERIFY(open(server(name, {QStringLiteral("--response-limit"), QStringLiteral("8192")}), transport));
        m_host->publish(QStringLiteral("numbers"));
        QTRY_VERIFY(m_host->numbers().count() > 0);
        const QString forgotten = QStringLiteral("close ") + m_host->connector()->sessionId();
        QVERIFY(Peer::blockUntil([&] { return m_bus->count(forgotten) > 0; }));
        QVERIFY(m_host->waitForEnd());
        QCOMPARE(m_host->numbers().fault(), QString());
        QVERIFY(m_host->open(transport));
        QVERIFY(m_host->receiveNumbers(10000));
        QVERIFY(m_host->close());
    }

    void nothingIsLostAtSeams_data() { combinations({servers, {"4096", "16384", "131072"}}); }
    void nothingIsLostAtSeams()
    {
        constexpr int seamsOfDefaultLimit = 10;
        const auto [name, limit] = row<QString, QString>();
        QVERIFY(openStream(name, limit));
        for (int round = 0; round < 2; ++round)
            QVERIFY(m_host->receiveNumbers(10000));
        QVERIFY(m_bus->count(told("request")) > seamsOfDefaultLimit);
        QVERIFY(m_host->close());
    }

    void hostIsBusyAtSeams_data() { combinations({servers}); }
    // For less than the 5 s.
    void hostIsBusyAtSeams()
    {
        const auto [name] = row<QString>();
        QVERIFY(openStream(name, QStringLiteral("4096")));
        int busyRounds = 0;
        // Busy until the present answer has ended: nobody asks for the next one. On a slow machine this may
        // be the last one, which stays open.
        const auto allAreAnswered = [this] {
            return m_bus->count(told("answered")) == m_bus->count(told("request"));
        };
        for (int round = 0; round < 5; ++round)
            QVERIFY(m_host->receiveNumbers(10000,
                                           [&] { busyRounds += Peer::blockUntil(allAreAnswered) ? 1 : 0; }));
        QVERIFY(busyRounds > 0);
        QVERIFY(m_host->close());
    }

private:
    bool openStream(const QString& name, const QString& limit)
    {
        return open(server(name, {QStringLiteral("--response-limit"), limit}), Transport::streaming);
    }

    QString told(const char* what)
    {
        return QStringLiteral("%1 /eventbus/119/%2/xhr_streaming")
            .arg(QLatin1String(what), m_host->connector()->sessionId());
    }
};

INTEROP_MAIN(TestLostSessions)
#include "tst_LostSessions.moc"
