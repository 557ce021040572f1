#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Servers.h"

/// One conformance suite, run over every transport against every server.
class TestRealServers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void receivesTenThousandTextsInOrder_data() { Servers::addRows(Transport::all); }

    void receivesTenThousandTextsInOrder()
    {
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus));
        Host host(bus.url());
        QVERIFY(host.open(transport));
        QVERIFY2(host.receiveNumbers(10000), qPrintable(host.numbers().fault()));
        QCOMPARE(host.closed(), 0);
        QVERIFY(host.close());
        QCOMPARE(host.numbers().count(), 10000);
        QVERIFY2(host.numbers().fault().isNull(), qPrintable(host.numbers().fault()));
    }

    void registersThenPublishes_data() { Servers::addRows(Transport::all); }

    void registersThenPublishes()
    {
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus));
        Host host(bus.url(), QStringLiteral("tökén"));
        QVERIFY(host.open(transport));
        host.publish(QStringLiteral("någon"));
        QVERIFY(bus.waitFor(QStringLiteral("frame "), 4));
        const QStringList frames = bus.lines(QStringLiteral("frame "));
        const QString registration = QStringLiteral("frame {\"type\":\"register\",\"address\":\"tökén%1\"}");
        QCOMPARE(frames.at(0), registration.arg(QString()));
        QCOMPARE(frames.at(1), registration.arg(QStringLiteral(".presenter")));
        QCOMPARE(frames.at(2), registration.arg(QStringLiteral(".presenter.host")));
        QVERIFY(frames.at(3).startsWith(
            QStringLiteral("frame {\"type\":\"publish\",\"address\":\"tökén.peer\",\"body\":"
                           "{\"from\":\"host\",\"type\":\"någon\",\"data\":[\"")));
        QCOMPARE(bus.lines(QStringLiteral("open ")),
                 {QStringLiteral("open %1 %2").arg(host.connector()->sessionId(), transport)});
    }

    void saysGoodbye_data() { Servers::addRows(Transport::all); }

    void saysGoodbye()
    {
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus));
        Host host(bus.url());
        QVERIFY(host.open(transport));
        constexpr int last = 100;
        for (int i = 0; i < last; ++i)
            host.publish(QStringLiteral("last"));
        QVERIFY(host.close());
        // Three registrations, what was published before, and the farewell.
        QVERIFY(bus.waitFor(QStringLiteral("frame "), 3 + last + 1));
        const QString farewell = bus.lines(QStringLiteral("frame ")).at(3 + last);
        QVERIFY2(farewell.contains(QStringLiteral("\"type\":\"disconnect\"")), qPrintable(farewell));
        QVERIFY(bus.waitFor(QStringLiteral("close ") + host.connector()->sessionId()));
    }

    void sendsInOrder_data() { Servers::addRows(Transport::all); }

    void sendsInOrder()
    {
        constexpr int first = 945; // one of 60 kB is among them
        constexpr int texts = 60;
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus));
        Host host(bus.url());
        QVERIFY(host.open(transport));
        host.numbers().restart(first);
        for (int number = first; number < first + texts; ++number)
            host.connector()->sendMessage(NumberedText::text(number), false);
        QTRY_VERIFY_WITH_TIMEOUT(host.numbers().count() == texts || !host.numbers().fault().isNull(), 60000);
        QVERIFY2(host.numbers().fault().isNull(), qPrintable(host.numbers().fault()));
        QVERIFY(host.close());
        QCOMPARE(host.numbers().count(), texts);
    }

    void hostClosesAndOpensAgain_data() { Servers::addRows(Transport::all); }

    void hostClosesAndOpensAgain()
    {
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus, {QStringLiteral("--count"), QStringLiteral("100")}));
        Host host(bus.url());
        QStringList ids;
        for (int round = 1; round <= 3; ++round) {
            QVERIFY(host.open(transport));
            ids.append(host.connector()->sessionId());
            QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
            QVERIFY(host.close());
            QCOMPARE(host.connected(), round);
            QVERIFY(bus.waitFor(QStringLiteral("close ") + ids.last()));
        }
        ids.removeDuplicates();
        QCOMPARE(ids.size(), 3);
    }

    void staysOpenThroughHeartbeats_data() { Servers::addRows(Transport::all); }

    void staysOpenThroughHeartbeats()
    {
        QFETCH(QString, transport);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus, {QStringLiteral("--heartbeat"), QStringLiteral("20"),
                                             QStringLiteral("--count"), QStringLiteral("2000")}));
        Host host(bus.url());
        QVERIFY(host.open(transport));
        // A poll that nothing else ends is ended by a heartbeat.
        const QString poll =
            QStringLiteral("request /eventbus/119/%1/xhr ").arg(host.connector()->sessionId());
        QVERIFY(transport != Transport::polling || bus.waitFor(poll, 20));
        for (int round = 0; round < 3; ++round)
            QVERIFY2(host.receiveNumbers(2000), qPrintable(host.numbers().fault()));
        QCOMPARE(host.connected(), 1);
        QCOMPARE(host.closed(), 0);
        QVERIFY(host.close());
    }
};

INTEROP_MAIN(TestRealServers)
#include "tst_RealServers.moc"
