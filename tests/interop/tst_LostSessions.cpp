#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Servers.h"

namespace {

const QStringList hundredTexts = {QStringLiteral("--count"), QStringLiteral("100")};

} // namespace

/// Servers that forget a session, and go away: the host is told once, opens again, and everything works.
class TestLostSessions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void connectionsAreCut_data() { Servers::addRows(Transport::all); }

    // Or closed by the server.
    void connectionsAreCut()
    {
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus, hundredTexts));
        Host host(bus.url());
        for (int round = 1; round <= 4; ++round) {
            QVERIFY(host.open(transport));
            QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
            host.publish(round % 2 == 0 ? QStringLiteral("leave") : QStringLiteral("cut"));
            QVERIFY(host.waitForClosed(round));
        }
        QVERIFY(host.open(transport));
        QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
        QCOMPARE(host.closed(), 4);
        QVERIFY(host.close());
        QCOMPARE(host.connected(), 5);
    }

    void serverIsRestarted_data() { Servers::addRows(Transport::all); }

    // With a poll, or a streamed answer, pending.
    void serverIsRestarted()
    {
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus, hundredTexts));
        Host host(bus.url());
        for (int round = 1; round <= 2; ++round) {
            QVERIFY(host.open(transport));
            QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
            // The host hears of nothing in between, because its event loop does not run.
            bus.kill();
            VERIFY_STARTED(bus.start());
            QVERIFY(host.waitForClosed(round));
        }
        QVERIFY(host.open(transport));
        QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
        QVERIFY(host.close());
        QCOMPARE(host.connected(), 3);
    }

    void serverIsGone_data() { Servers::addRows(Transport::all); }

    void serverIsGone()
    {
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus, hundredTexts));
        Host host(bus.url());
        QVERIFY(host.open(transport));
        bus.kill();
        QVERIFY(host.waitForClosed(1));
        QVERIFY(host.tryOpen(Transport::all));
        QVERIFY(!host.collab()->isConnected());
        VERIFY_STARTED(bus.start());
        QVERIFY(host.open(transport));
        QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
        QCOMPARE(host.closed(), 1);
        QVERIFY(host.close());
        QCOMPARE(host.connected(), 2);
    }

    void hostIsBusyForTooLong_data() { Servers::addRows({Transport::streaming, Transport::polling}); }

    // Servers give a session up when nobody has asked for its frames for 5 s.
    void hostIsBusyForTooLong()
    {
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus, {QStringLiteral("--response-limit"), QStringLiteral("8192")}));
        Host host(bus.url());
        QVERIFY(host.open(transport));
        host.publish(QStringLiteral("numbers"));
        QTRY_VERIFY(host.numbers().count() > 0);
        const QString forgotten = QStringLiteral("close ") + host.connector()->sessionId();
        QVERIFY(Peer::blockUntil([&] { return bus.count(forgotten) > 0; }));
        QVERIFY(host.waitForClosed(1));
        QVERIFY2(host.numbers().fault().isNull(), qPrintable(host.numbers().fault()));

        QVERIFY(host.open(transport));
        QVERIFY2(host.receiveNumbers(10000), qPrintable(host.numbers().fault()));
        QCOMPARE(host.closed(), 1);
        QVERIFY(host.close());
        QCOMPARE(host.connected(), 2);
    }
};

INTEROP_MAIN(TestLostSessions)
#include "tst_LostSessions.moc"
