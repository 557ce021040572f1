#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Servers.h"

namespace {

QString streamRequest(const Host& host)
{
    return QStringLiteral("request /eventbus/119/%1/xhr_streaming").arg(host.connector()->sessionId());
}

} // namespace

/// Streams that are longer than one answer: servers end each after a number of bytes, and the next request
/// goes on where it has ended.
class TestStreamSeams : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLost_data()
    {
        QTest::addColumn<QString>("server"); // Servers::start() looks for it
        QTest::addColumn<int>("limit");
        for (const char* server : {"sockjs", "sockjs-go"}) {
            for (const int limit : {4096, 16384, 131072})
                QTest::addRow("%s, %d bytes", server, limit) << QString::fromLatin1(server) << limit;
        }
    }

    void nothingIsLost()
    {
        constexpr int seamsOfDefaultLimit = 10;
        QFETCH(int, limit);
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus, {QStringLiteral("--response-limit"), QString::number(limit)}));
        Host host(bus.url());
        QVERIFY(host.open(Transport::streaming));
        for (int round = 0; round < 2; ++round)
            QVERIFY2(host.receiveNumbers(10000), qPrintable(host.numbers().fault()));
        QVERIFY(bus.count(streamRequest(host)) > seamsOfDefaultLimit);
        QCOMPARE(host.connected(), 1);
        QCOMPARE(host.closed(), 0);
        QVERIFY(host.close());
        QVERIFY2(host.numbers().fault().isNull(), qPrintable(host.numbers().fault()));
    }

    void sendsMeanwhile_data() { Servers::addRows({Transport::streaming}); }

    void sendsMeanwhile()
    {
        constexpr int first = 945; // one of 60 kB is among them
        constexpr int texts = 60;
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus, {QStringLiteral("--response-limit"), QStringLiteral("4096")}));
        Host host(bus.url());
        QVERIFY(host.open(Transport::streaming));
        // What is sent comes back over the stream.
        host.numbers().restart(first);
        for (int number = first; number < first + texts; ++number)
            host.connector()->sendMessage(NumberedText::text(number), false);
        QTRY_VERIFY_WITH_TIMEOUT(host.numbers().count() == texts || !host.numbers().fault().isNull(), 60000);
        QVERIFY2(host.numbers().fault().isNull(), qPrintable(host.numbers().fault()));
        QVERIFY(bus.count(streamRequest(host)) > 3);
        QCOMPARE(host.closed(), 0);
        QVERIFY(host.close());
    }

    void survivesABusyHost_data() { Servers::addRows({Transport::streaming}); }

    // For less than the 5 s after which a server gives the session up.
    void survivesABusyHost()
    {
        Peer bus;
        VERIFY_STARTED(Servers::start(&bus, {QStringLiteral("--response-limit"), QStringLiteral("4096")}));
        Host host(bus.url());
        QVERIFY(host.open(Transport::streaming));
        const QString id = host.connector()->sessionId();
        const QString answered = QStringLiteral("answered /eventbus/119/%1/xhr_streaming").arg(id);
        int busyRounds = 0;
        for (int round = 0; round < 5; ++round) {
            host.numbers().restart();
            host.publish(QStringLiteral("numbers"));
            QTRY_VERIFY(host.numbers().count() > 1000);
            // Busy until the present answer has ended: nobody asks for the next one. On a slow machine this
            // may be the last one, which stays open.
            busyRounds +=
                bus.blockUntil([&] { return bus.count(answered) == bus.count(streamRequest(host)); }) ? 1 : 0;
            QTRY_VERIFY(host.numbers().count() == 10000 || !host.numbers().fault().isNull());
            QVERIFY2(host.numbers().fault().isNull(), qPrintable(host.numbers().fault()));
        }
        QVERIFY(busyRounds > 0);
        QCOMPARE(host.closed(), 0);
        QVERIFY(host.close());
    }
};

INTEROP_MAIN(TestStreamSeams)
#include "tst_StreamSeams.moc"
