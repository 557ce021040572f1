#include "interop/support/BusTest.h"
#include "interop/support/Main.h"

/// Streams that are longer than one answer: servers end each after a number of bytes, and the next request
/// goes on where it has ended. What is sent meanwhile is in tst_RealServers.
class TestStreamSeams : public BusTest
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLost_data() { combinations({servers, {"4096", "16384", "131072"}}); }

    void nothingIsLost()
    {
        constexpr int seamsOfDefaultLimit = 10;
        const auto [name, limit] = row<QString, QString>();
        QVERIFY(open(name, limit));
        for (int round = 0; round < 2; ++round)
            QVERIFY(m_host->receiveNumbers(10000));
        QVERIFY(m_bus->count(told("request")) > seamsOfDefaultLimit);
        QVERIFY(m_host->close());
    }

    void survivesABusyHost_data() { combinations({servers}); }

    // For less than the 5 s after which a server gives the session up.
    void survivesABusyHost()
    {
        const auto [name] = row<QString>();
        QVERIFY(open(name, QStringLiteral("4096")));
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
    bool open(const QString& name, const QString& limit)
    {
        return BusTest::open(server(name, {QStringLiteral("--response-limit"), limit}), Transport::streaming);
    }

    QString told(const char* what)
    {
        return QStringLiteral("%1 /eventbus/119/%2/xhr_streaming")
            .arg(QLatin1String(what), m_host->connector()->sessionId());
    }
};

INTEROP_MAIN(TestStreamSeams)
#include "tst_StreamSeams.moc"
