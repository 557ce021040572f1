#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"
#include "support/ProcessResources.h"

#include <QTimer>

namespace {

const QStringList webSocketThenStreaming = {Transport::webSocket, Transport::streaming};

// Runs \p action as soon as the server has the upgrade, from an event loop that someone else runs.
void onUpgrade(const Peer* bus, QObject* context, const std::function<void()>& action)
{
    auto* timer = new QTimer(context);
    QObject::connect(timer, &QTimer::timeout, context, [=] {
        if (bus->count(QStringLiteral("upgrade ")) == 0)
            return;
        timer->stop();
        action();
    });
    timer->start(1);
}

} // namespace

/// Servers and filters that do something else with a WebSocket's upgrade than to upgrade.
class TestRefusedUpgrades : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nextTransportComesUp_data() { addRows({"403", "200", "reset"}); }

    void nextTransportComesUp()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        QVERIFY(host.open(webSocketThenStreaming));
        verifyOnlySession(bus, &host, Transport::streaming);
        QCOMPARE(bus.lines(QStringLiteral("upgrade ")),
                 {QStringLiteral("upgrade ") + host.connector()->sessionId()});
    }

    void withoutAnotherTransportNothingFollows_data() { addRows({"403", "200", "reset"}); }

    void withoutAnotherTransportNothingFollows()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        QVERIFY(host.tryOpen({Transport::webSocket}));
        QVERIFY(!host.collab()->isConnected());
        QCOMPARE(bus.count(QStringLiteral("upgrade ")), 1);
        QVERIFY(host.open(Transport::polling));
        verifyOnlySession(bus, &host, Transport::polling);
    }

    void openLimitEndsTheWait_data() { addRows({"silence", "mute"}); }

    void openLimitEndsTheWait()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        host.connector()->setOpenLimit(500);
        QVERIFY(host.open(webSocketThenStreaming));
        verifyOnlySession(bus, &host, Transport::streaming);
    }

    void droppedBeforeOpenFrameGoesOnByPolling_data() { addRows({"drop", "dropLater", "resetLater"}); }

    // Whatever stands next in the list, and in the same session.
    void droppedBeforeOpenFrameGoesOnByPolling()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        QVERIFY(host.open(webSocketThenStreaming));
        verifyOnlySession(bus, &host, Transport::polling);
        QCOMPARE(bus.lines(QStringLiteral("upgrade ")),
                 {QStringLiteral("upgrade ") + host.connector()->sessionId()});
    }

    void closeDuringTheWaitEndsIt_data() { addRows({"403", "200", "reset", "drop", "silence"}); }

    void closeDuringTheWaitEndsIt()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        duringTheWait(&bus, &host, [&] { host.connector()->close(); });
        QVERIFY(host.tryOpen(webSocketThenStreaming));
        QVERIFY(!host.collab()->isConnected());

        QVERIFY(host.open(Transport::polling));
        verifyOnlySession(bus, &host, Transport::polling);
    }

    void openDuringTheWaitReplacesIt_data() { addRows({"403", "200", "reset", "drop", "silence"}); }

    void openDuringTheWaitReplacesIt()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        duringTheWait(&bus, &host, [&] { host.collab()->open({Transport::polling}); });
        QVERIFY(host.open(webSocketThenStreaming));
        verifyOnlySession(bus, &host, Transport::polling);
    }

    void deletionDuringTheWaitEndsIt_data() { addRows({"403", "200", "reset", "drop", "silence"}); }

    void deletionDuringTheWaitEndsIt()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        duringTheWait(&bus, &host, [&] { delete host.collab(); });
        QVERIFY(host.tryOpen(webSocketThenStreaming));
        QVERIFY(!host.collab());
        QCOMPARE(host.connected(), 0);
        QCOMPARE(host.closed(), 0);
        QCOMPARE(bus.count(QStringLiteral("request ")), 0);
    }

    void closeBeforeOpenFrame_data() { addRows({"dropLater", "resetLater", "mute"}); }

    // The connection is up, so that its end is told; there is no fallback.
    void closeBeforeOpenFrame()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        QVERIFY(host.tryOpen(webSocketThenStreaming));
        host.connector()->close();
        QVERIFY(host.waitForClosed(1));
        QVERIFY(host.open(Transport::streaming));
        QCOMPARE(bus.count(QStringLiteral("open ")), 1);
        QCOMPARE(host.closed(), 1);
        QVERIFY(host.close());
        QCOMPARE(host.connected(), 1);
    }

    void openBeforeOpenFrame_data() { addRows({"dropLater", "resetLater", "mute"}); }

    void openBeforeOpenFrame()
    {
        Peer bus;
        VERIFY_STARTED(start(&bus));
        Host host(bus.url());
        QVERIFY(host.tryOpen(webSocketThenStreaming));
        QVERIFY(host.open(Transport::streaming));
        verifyOnlySession(bus, &host, Transport::streaming);
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
            host.connector()->setOpenLimit(200);
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

    QByteArray start(Peer* bus)
    {
        QFETCH(QString, upgrade);
        bus->setProgram(Peers::nodeBus(
            {QStringLiteral("--count"), QStringLiteral("100"), QStringLiteral("--upgrade"), upgrade}));
        return bus->start();
    }

    // Has \p action run while the host waits for what becomes of its upgrade: with an answer to come, before
    // that; without one, when the server has had the upgrade for sure.
    void duringTheWait(const Peer* bus, Host* host, const std::function<void()>& action)
    {
        QFETCH(QString, upgrade);
        if (upgrade == QLatin1String("silence"))
            onUpgrade(bus, host, action);
        else
            QTimer::singleShot(0, host, action);
    }

    // What \p host has open works, goes over \p transport, is the one session that there has been, and ends
    // once.
    void verifyOnlySession(const Peer& bus, Host* host, const QString& transport)
    {
        QVERIFY2(host->receiveNumbers(100), qPrintable(host->numbers().fault()));
        QCOMPARE(bus.lines(QStringLiteral("open ")),
                 {QStringLiteral("open %1 %2").arg(host->connector()->sessionId(), transport)});
        QCOMPARE(host->closed(), 0);
        QVERIFY(host->close());
        QCOMPARE(host->connected(), 1);
    }
};

INTEROP_MAIN(TestRefusedUpgrades)
#include "tst_RefusedUpgrades.moc"
