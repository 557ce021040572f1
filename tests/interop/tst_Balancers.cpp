#include "interop/support/ClassroomSession.h"
#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"
#include "support/ProcessResources.h"

#include <QRegularExpression>
#include <QSet>

namespace {

const QStringList xhrTransports = {Transport::streaming, Transport::polling};

const QMap<QString, QString> variants = {
    {QStringLiteral("lasting connections"), QString()},
    {QStringLiteral("a connection for each answer"), QStringLiteral("option httpclose")},
    {QStringLiteral("short time-outs"), QStringLiteral("timeout http-request 300ms")},
};

// The servers that have answered requests of \p session, with the number of answers.
QMap<QString, int> serversOf(const Peer& balancer, const QString& session)
{
    static const QRegularExpression line(QStringLiteral("^request classrooms/(\\w+) .* (\\S+)$"));
    QMap<QString, int> servers;
    for (const QString& request : balancer.lines(QStringLiteral("request "))) {
        const QRegularExpressionMatch match = line.match(request);
        if (match.captured(2).contains(session))
            ++servers[match.captured(1)];
    }
    return servers;
}

} // namespace

/// haproxy, which picks a server for each session and marks the session with a cookie.
class TestBalancers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sessionsStayWhereTheyAre_data() { addRows(); }

    void sessionsStayWhereTheyAre()
    {
        constexpr int messages = 5;
        constexpr int sessions = 2;
        QFETCH(QString, transport);
        Peer classrooms[2];
        Peer balancer;
        VERIFY_STARTED(start(&classrooms[0], &classrooms[1], &balancer));
        ClassroomSession lessons[2] = {ClassroomSession(classrooms[0].url()),
                                       ClassroomSession(classrooms[1].url())};
        QVERIFY(lessons[0].start() && lessons[1].start());

        QSet<QString> used;
        QString id;
        for (int i = 0; i < sessions; ++i) {
            // The balancer takes its servers in turn, the first one first.
            Host host(balancer.url(), lessons[i % 2].token());
            QVERIFY(host.open(transport));
            QVERIFY(host.exchange(messages));
            QCOMPARE(host.closed(), 0);
            QVERIFY(host.close());
            const int requests = transport == Transport::webSocket ? 1 : messages;
            id = host.connector()->sessionId();
            QTRY_COMPARE(serversOf(balancer, id).size(), 1);
            QTRY_VERIFY(serversOf(balancer, id).first() >= requests);
            used += serversOf(balancer, id).firstKey();
        }
        QCOMPARE(used.size(), 2);
    }

    void carriesTenThousandTexts_data() { addRows(); }

    void carriesTenThousandTexts()
    {
        QFETCH(QString, transport);
        QFETCH(QString, options);
        Peer first(Peers::nodeBus());
        VERIFY_STARTED(first.start());
        Peer second(Peers::nodeBus());
        VERIFY_STARTED(second.start());
        Peer balancer(Peers::haproxy({first.port(), second.port()}, {{QStringLiteral("DEFAULTS"), options}}));
        VERIFY_STARTED(balancer.start());
        Host host(balancer.url());
        QVERIFY(host.open(transport));
        QVERIFY2(host.receiveNumbers(10000), qPrintable(host.numbers().fault()));
        QCOMPARE(first.count(QStringLiteral("open ")), 1);
        QCOMPARE(second.count(QStringLiteral("request ")), 0);
        QCOMPARE(host.closed(), 0);
        QVERIFY(host.close());
    }

    void timesOutWhileTheHostIsBusy_data() { Transport::addRows(xhrTransports); }

    // Nobody sends the next request in time, and the balancer says so with a 408 that answers none.
    void timesOutWhileTheHostIsBusy()
    {
        QFETCH(QString, transport);
        Peer bus(Peers::nodeBus());
        VERIFY_STARTED(bus.start());
        Peer balancer(Peers::haproxy(
            {bus.port()}, {{QStringLiteral("DEFAULTS"),
                            QStringLiteral("timeout http-request 300ms\nno option dontlognull")}}));
        VERIFY_STARTED(balancer.start());
        Host host(balancer.url());
        QVERIFY(host.open(transport));
        const QString timeOut = QStringLiteral("request main/<NOSRV> 408");
        for (int round = 1; round <= 3; ++round) {
            host.numbers().restart();
            host.publish(QStringLiteral("numbers"));
            QTRY_VERIFY(host.numbers().count() > 100);
            const int before = balancer.count(timeOut);
            QVERIFY(Peer::blockUntil([&] { return balancer.count(timeOut) > before; }));
            QTRY_VERIFY(host.numbers().count() == 10000 || !host.numbers().fault().isNull());
            QVERIFY2(host.numbers().fault().isNull(), qPrintable(host.numbers().fault()));
        }
        QCOMPARE(host.closed(), 0);
        QCOMPARE(bus.count(QStringLiteral("open ")), 1);
        QVERIFY(host.close());
    }

    void closesIdleConnections_data() { Transport::addRows(xhrTransports); }

    // Between two posts the balancer ends the connection that the first has left behind.
    void closesIdleConnections()
    {
        QFETCH(QString, transport);
        Peer bus(Peers::nodeBus({QStringLiteral("--count"), QStringLiteral("100")}));
        VERIFY_STARTED(bus.start());
        Peer balancer(Peers::haproxy(
            {bus.port()}, {{QStringLiteral("DEFAULTS"), QStringLiteral("timeout http-request 700ms")}}));
        VERIFY_STARTED(balancer.start());
        Host host(balancer.url());
        QVERIFY(host.open(transport));
        for (int round = 0; round < 3; ++round) {
            QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
            const int descriptors = ProcessResources::descriptors();
            QTRY_VERIFY(ProcessResources::descriptors() < descriptors);
        }
        QCOMPARE(host.closed(), 0);
        QVERIFY(host.close());
    }

private:
    void addRows()
    {
        QTest::addColumn<QString>("transport");
        QTest::addColumn<QString>("options");
        for (const QString& transport : Transport::all) {
            for (auto variant = variants.cbegin(); variant != variants.cend(); ++variant)
                QTest::addRow("%s, %s", qPrintable(transport), qPrintable(variant.key()))
                    << transport << variant.value();
        }
    }

    QByteArray start(Peer* first, Peer* second, Peer* balancer)
    {
        QFETCH(QString, options);
        for (Peer* classroom : {first, second}) {
            classroom->setProgram(Peers::classroom());
            const QByteArray failure = classroom->start();
            if (!failure.isEmpty())
                return failure;
        }
        balancer->setProgram(
            Peers::haproxy({first->port(), second->port()}, {{QStringLiteral("DEFAULTS"), options}}));
        return balancer->start();
    }
};

INTEROP_MAIN(TestBalancers)
#include "tst_Balancers.moc"
