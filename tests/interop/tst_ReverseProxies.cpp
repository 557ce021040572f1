#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"

namespace {

constexpr int openLimit = 1500; // milliseconds

const QString forStreaming = QStringLiteral("proxy_http_version 1.1;\n"
                                            "proxy_buffering off;\n"
                                            "proxy_read_timeout 1h;\n"
                                            "proxy_set_header Host $http_host;\n"
                                            "proxy_set_header Upgrade $http_upgrade;\n"
                                            "proxy_set_header Connection $upgrade_or_nothing;\n");

// The server, and nginx in front of it.
struct ProxiedBus
{
    QByteArray start(const QString& options = QString())
    {
        const QByteArray failure = bus.start();
        if (!failure.isEmpty())
            return failure;
        nginx.setProgram(Peers::nginx(bus.port(), options));
        return nginx.start();
    }

    Peer bus{Peers::nodeBus()};
    Peer nginx;
};

} // namespace

/// nginx in front of the server, as it comes and set up for streaming.
class TestReverseProxies : public QObject
{
    // It upgrades nothing, and keeps a streamed answer back until it is whole.
    Q_OBJECT

private Q_SLOTS:
    void withDefaultsPollingComesUp()
    {
        ProxiedBus server;
        VERIFY_STARTED(server.start());
        Host host(server.nginx.url());
        host.connector()->setOpenLimit(openLimit);
        for (int round = 1; round <= 3; ++round) {
            QVERIFY(host.open(Transport::all));
            QVERIFY2(host.receiveNumbers(10000), qPrintable(host.numbers().fault()));
            const QStringList opened =
                server.bus.lines(QStringLiteral("open ") + host.connector()->sessionId());
            QVERIFY2(opened.last().endsWith(Transport::polling), qPrintable(opened.join(QLatin1Char('\n'))));
            QCOMPARE(host.connected(), round);
            QCOMPARE(host.closed(), round - 1);
            QVERIFY(host.close());
        }
        QCOMPARE(server.bus.count(QStringLiteral("upgrade ")), 0);
    }

    void withDefaultsStreamingAloneFails()
    {
        ProxiedBus server;
        VERIFY_STARTED(server.start());
        Host host(server.nginx.url());
        host.connector()->setOpenLimit(openLimit);
        QVERIFY(host.tryOpen({Transport::webSocket, Transport::streaming}));
        // The server has opened a session, and has seen it go when the limit was over.
        QVERIFY(server.bus.waitFor(QStringLiteral("close ") + host.connector()->sessionId()));
        QVERIFY(!host.collab()->isConnected());
        QCOMPARE(host.connected(), 0);
        QCOMPARE(host.closed(), 0);
    }

    void setUpForStreaming_data() { Transport::addRows(); }

    void setUpForStreaming()
    {
        QFETCH(QString, transport);
        ProxiedBus server;
        VERIFY_STARTED(server.start(forStreaming));
        Host host(server.nginx.url());
        host.connector()->setOpenLimit(openLimit);
        // The transport comes up by itself, not for want of the ones before it.
        const QStringList list = Transport::all.mid(Transport::all.indexOf(transport));
        for (int round = 1; round <= 2; ++round) {
            QVERIFY(host.open(list));
            // Told by the server after it has sent the "o".
            QVERIFY2(host.receiveNumbers(10000), qPrintable(host.numbers().fault()));
            QCOMPARE(server.bus.lines(QStringLiteral("open ")).last(),
                     QStringLiteral("open %1 %2").arg(host.connector()->sessionId(), transport));
            QCOMPARE(host.closed(), round - 1);
            QVERIFY(host.close());
        }
        QCOMPARE(server.bus.count(QStringLiteral("open ")), 2);

        QVERIFY(host.open(list));
        host.publish(QStringLiteral("leave"));
        QVERIFY(host.waitForClosed(3));
        QCOMPARE(host.connected(), 3);
    }
};

INTEROP_MAIN(TestReverseProxies)
#include "tst_ReverseProxies.moc"
