#include "interop/support/BusTest.h"
#include "interop/support/Main.h"

namespace {

const QString forStreaming = QStringLiteral("proxy_http_version 1.1;\n"
                                            "proxy_buffering off;\n"
                                            "proxy_read_timeout 1h;\n"
                                            "proxy_set_header Host $http_host;\n"
                                            "proxy_set_header Upgrade $http_upgrade;\n"
                                            "proxy_set_header Connection $upgrade_or_nothing;\n");

} // namespace

/// nginx in front of the server, as it comes and set up for streaming.
class TestReverseProxies : public BusTest
{
    Q_OBJECT

private Q_SLOTS:
    // As it comes, it upgrades nothing, and keeps a streamed answer back until it is whole.
    void withDefaultsPollingComesUp()
    {
        start();
        for (int round = 1; round <= 3; ++round) {
            QVERIFY(m_host->open(Transport::all));
            QVERIFY(m_host->receiveNumbers(10000));
            const QStringList opened = opens();
            QVERIFY2(opened.last().endsWith(Transport::polling), qPrintable(opened.join(QLatin1Char('\n'))));
            QVERIFY(m_host->close());
        }
        QCOMPARE(m_bus->count(QStringLiteral("upgrade ")), 0);
    }

    void withDefaultsStreamingAloneFails()
    {
        start();
        QVERIFY(m_host->tryOpen({Transport::webSocket, Transport::streaming}));
        // The server has opened a session, and has seen it go when the limit was over.
        QVERIFY(m_bus->waitFor(QStringLiteral("close ") + m_host->connector()->sessionId()));
        QVERIFY(!m_host->collab()->isConnected());
        QCOMPARE(m_host->connected(), 0);
        QCOMPARE(m_host->closed(), 0);
    }

    void setUpForStreaming_data() { combinations({Transport::all}); }
    void setUpForStreaming()
    {
        const auto [transport] = row<QString>();
        start(forStreaming);
        // The transport comes up by itself, not for want of the ones before it.
        const QStringList list = Transport::all.mid(Transport::all.indexOf(transport));
        for (int round = 1; round <= 2; ++round) {
            QVERIFY(m_host->open(list));
            // Told by the server after it has sent the "o".
            QVERIFY(m_host->receiveNumbers(10000));
            QCOMPARE(opens(),
                     {QStringLiteral("open %1 %2").arg(m_host->connector()->sessionId(), transport)});
            QVERIFY(m_host->close());
        }
        QCOMPARE(m_bus->count(QStringLiteral("open ")), 2);
        QVERIFY(m_host->open(list));
        m_host->publish(QStringLiteral("leave"));
        QVERIFY(m_host->waitForEnd());
        QCOMPARE(m_host->connected(), 3);
    }

private:
    void start(const QString& options = QString())
    {
        constexpr int openLimit = 1500; // milliseconds
        m_bus.emplace(Peers::nodeBus());
        m_front.emplace(Peers::nginx(m_bus->port(), options));
        m_host.emplace(m_front->url());
        m_host->connector()->setOpenLimit(openLimit);
    }

    // Of the present session.
    QStringList opens() { return m_bus->lines(QStringLiteral("open ") + m_host->connector()->sessionId()); }
};

INTEROP_MAIN(TestReverseProxies)
#include "tst_ReverseProxies.moc"
