#include "interop/support/BusTest.h"
#include "interop/support/Main.h"
#include "support/ProcessResources.h"

namespace {

const QStringList webSocketThenStreaming = {Transport::webSocket, Transport::streaming};
const QStringList drops = {"drop", "dropLater", "resetLater"};
const QStringList limited = {"silence", "mute"};

Peer::Program bus(const QString& upgrade)
{
    return Peers::nodeBus({"--count", "100", "--upgrade", upgrade});
}

} // namespace

/// Servers and filters that do something else with a WebSocket's upgrade than to upgrade. Hosts that act
/// meanwhile are in tests/faults/tst_HostActions.
class TestRefusedUpgrades : public BusTest
{
    Q_OBJECT

private Q_SLOTS:
    void anotherTransportComesUp_data()
    {
        combinations({QStringList{"403", "200", "reset"} + limited + drops});
    }
    // The next one; or after an upgrade polling, whatever stands next in the list, and in the same session.
    // Threads and descriptors are given back.
    void anotherTransportComesUp()
    {
        const auto [upgrade] = row<QString>();
        const bool isLimited = limited.contains(upgrade);
        m_bus.emplace(bus(upgrade));
        ProcessResources::Snapshot early;
        for (int round = 1; round <= 10; ++round) {
            m_host.reset();
            // What Qt itself makes once and keeps is there after the first rounds.
            if (round == 3)
                early = ProcessResources::Snapshot();
            m_host.emplace(m_bus->url());
            // Of the wait for what never comes. Elsewhere it could end what is only slow.
            m_host->connector()->setOpenLimit(isLimited ? 500 : 0);
            QVERIFY(m_host->open(webSocketThenStreaming));
            QVERIFY(m_host->receiveNumbers(100));
            const QString id = m_host->connector()->sessionId();
            QCOMPARE(m_bus->count(QStringLiteral("open ")), round);
            QCOMPARE(m_bus->lines(QStringLiteral("open ")).last(),
                     QStringLiteral("open %1 %2")
                         .arg(id, drops.contains(upgrade) ? Transport::polling : Transport::streaming));
            QCOMPARE(m_bus->count(QStringLiteral("upgrade ")), round);
            QVERIFY(isLimited || m_bus->count(QStringLiteral("upgrade ") + id) == 1);
            QVERIFY(round % 2 == 0 || m_host->close());
        }
        m_host.reset();
        QCOMPARE(early.waitForSurplusToGo(), QString());
    }

    void leavingBeforeOpenFrame_data() { combinations({QStringList{"dropLater", "resetLater"}}); }
    // The fallback comes up when the host has left already: it is closed at once, and nothing is registered.
    void leavingBeforeOpenFrame()
    {
        const auto [upgrade] = row<QString>();
        m_bus.emplace(bus(upgrade));
        m_host.emplace(m_bus->url());
        QVERIFY(m_host->tryOpen(webSocketThenStreaming));
        m_host->collab()->close();
        QVERIFY(m_host->waitForEnd());
        QCOMPARE(m_bus->count(QStringLiteral("frame ")), 0);
        QVERIFY(m_host->tryOpen({Transport::streaming}));
        QVERIFY(m_bus->waitFor(QStringLiteral("frame "), 3));
        m_host->collab()->close();
        QVERIFY(m_host->waitForEnd());
    }
};

INTEROP_MAIN(TestRefusedUpgrades)
#include "tst_RefusedUpgrades.moc"
