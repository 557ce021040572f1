#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"
#include "support/ProcessResources.h"

namespace {

const QStringList webSocketThenStreaming = {Transport::webSocket, Transport::streaming};

} // namespace

/// Servers and filters that do something else with a WebSocket's upgrade than to upgrade. Hosts that act
/// meanwhile are in tests/faults/tst_HostActions.
class TestRefusedUpgrades : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anotherTransportComesUp_data()
    {
        addRows({"403", "200", "reset", "silence", "mute", "drop", "dropLater", "resetLater"});
    }

    // The next one; or after an upgrade polling, whatever stands next in the list, and in the same session.
    void anotherTransportComesUp()
    {
        QFETCH(QString, upgrade);
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        const bool waits = setLimit(&host);
        QVERIFY(host.open(webSocketThenStreaming));
        const bool isUpgraded =
            upgrade.startsWith(QLatin1String("drop")) || upgrade == QLatin1String("resetLater");
        QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
        QCOMPARE(bus.lines(QStringLiteral("open ")),
                 {QStringLiteral("open %1 %2")
                      .arg(host.connector()->sessionId(),
                           isUpgraded ? Transport::polling : Transport::streaming)});
        QCOMPARE(bus.lines(QStringLiteral("upgrade ")).size(), 1);
        QVERIFY(waits || bus.count(QStringLiteral("upgrade ") + host.connector()->sessionId()) == 1);
        QCOMPARE(host.closed(), 0);
        QVERIFY(host.close());
        QCOMPARE(host.connected(), 1);
    }

    void leavingBeforeOpenFrame_data() { addRows({"dropLater", "resetLater"}); }

    // The fallback comes up when the host has left already: it is closed at once, and nothing is registered.
    void leavingBeforeOpenFrame()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        QVERIFY(host.tryOpen(webSocketThenStreaming));
        host.collab()->close();
        QVERIFY(host.waitForClosed(1));
        QCOMPARE(bus.count(QStringLiteral("frame ")), 0);
        QVERIFY(host.open(Transport::streaming));
        QVERIFY(bus.waitFor(QStringLiteral("frame "), 3));
        QCOMPARE(host.closed(), 1);
        QVERIFY(host.close());
    }

    void givesThreadsAndDescriptorsBack_data()
    {
        addRows({"403", "200", "reset", "silence", "drop", "dropLater", "resetLater", "mute"});
    }

    void givesThreadsAndDescriptorsBack()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        ProcessResources::Snapshot early;
        for (int round = 0; round < 10; ++round) {
            // What Qt itself makes once and keeps is there after the first rounds.
            if (round == 2)
                early = ProcessResources::Snapshot();
            Host host(bus.url());
            setLimit(&host);
            QVERIFY(host.open(webSocketThenStreaming));
            if (round % 2 == 0)
                QVERIFY(host.close());
        }
        QCOMPARE(early.waitForSurplusToGo(), QString());
    }

private:
    void addRows(const QStringList& upgrades)
    {
        QTest::addColumn<QString>("upgrade");
        for (const QString& upgrade : upgrades)
            QTest::newRow(qPrintable(upgrade)) << upgrade;
    }

    // Of the wait for what never comes. Elsewhere it could end what is only slow.
    static bool setLimit(Host* host)
    {
        QFETCH(QString, upgrade);
        const bool waits = upgrade == QLatin1String("silence") || upgrade == QLatin1String("mute");
        host->connector()->setOpenLimit(waits ? 500 : 0);
        return waits;
    }

    QByteArray start(Peer* bus)
    {
        QFETCH(QString, upgrade);
        bus->setProgram(Peers::nodeBus(
            {QStringLiteral("--count"), QStringLiteral("100"), QStringLiteral("--upgrade"), upgrade}));
        return bus->start();
    }
};

INTEROP_MAIN(TestRefusedUpgrades)
#include "tst_RefusedUpgrades.moc"
