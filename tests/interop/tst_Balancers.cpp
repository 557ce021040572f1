#include "interop/support/BusTest.h"
#include "interop/support/Main.h"
#include "support/ProcessResources.h"

#include <QRegularExpression>
#include <QSet>

namespace {

Peer::Program balancer(const QList<quint16>& servers, const QString& options)
{
    return Peers::haproxy(servers, {{QStringLiteral("DEFAULTS"), options}});
}

} // namespace

/// haproxy, which picks a server for each session and marks the session with a cookie.
class TestBalancers : public BusTest
{
    Q_OBJECT

private Q_SLOTS:
    void sessionsStayWhereTheyAre_data()
    {
        combinations(
            {Transport::all, {"option http-keep-alive", "option httpclose", "timeout http-request 300ms"}});
    }
    void sessionsStayWhereTheyAre()
    {
        const auto [transport, options] = row<QString, QString>();
        m_bus.emplace(Peers::nodeBus());
        const Peer second(Peers::nodeBus());
        m_front.emplace(balancer({m_bus->port(), second.port()}, options));
        QSet<QString> used;
        for (int session = 1; session <= 2; ++session) {
            // The balancer takes its servers in turn.
            m_host.emplace(m_front->url());
            QVERIFY(m_host->open(transport));
            QVERIFY(m_host->receiveNumbers(10000));
            QVERIFY(m_host->close());
            const int requests = transport == Transport::webSocket ? 1 : 5;
            const QString id = m_host->connector()->sessionId();
            QTRY_COMPARE(serversOf(id).size(), 1);
            QTRY_VERIFY(serversOf(id).first() >= requests);
            used += serversOf(id).firstKey();
            QCOMPARE(m_bus->count(QStringLiteral("open ")) + second.count(QStringLiteral("open ")), session);
        }
        QCOMPARE(used.size(), 2);
    }

    void timesOutWhileTheHostIsBusy_data() { combinations({Transport::xhr}); }
    // Nobody sends the next request in time, and the balancer says so with a 408 that answers none.
    void timesOutWhileTheHostIsBusy()
    {
        const auto [transport] = row<QString>();
        m_bus.emplace(Peers::nodeBus());
        m_front.emplace(
            balancer({m_bus->port()}, QStringLiteral("timeout http-request 300ms\nno option dontlognull")));
        m_host.emplace(m_front->url());
        QVERIFY(m_host->open(transport));
        const QString timeOut = QStringLiteral("request main/<NOSRV> 408");
        int timeOuts = 0;
        const auto untilOneMore = [&] {
            const int before = m_front->count(timeOut);
            timeOuts += Peer::blockUntil([&] { return m_front->count(timeOut) > before; }) ? 1 : 0;
        };
        for (int round = 1; round <= 3; ++round) {
            QVERIFY(m_host->receiveNumbers(10000, untilOneMore));
            QCOMPARE(timeOuts, round);
        }
        QCOMPARE(m_bus->count(QStringLiteral("open ")), 1);
        QVERIFY(m_host->close());
    }

    void closesIdleConnections_data() { combinations({Transport::xhr}); }
    // Between two posts the balancer ends the connection that the first has left behind.
    void closesIdleConnections()
    {
        const auto [transport] = row<QString>();
        m_bus.emplace(Peers::nodeBus({QStringLiteral("--count"), QStringLiteral("100")}));
        m_front.emplace(balancer({m_bus->port()}, QStringLiteral("timeout http-request 700ms")));
        m_host.emplace(m_front->url());
        QVERIFY(m_host->open(transport));
        for (int round = 0; round < 3; ++round) {
            QVERIFY(m_host->receiveNumbers(100));
            const int descriptors = ProcessResources::descriptors();
            QTRY_VERIFY(ProcessResources::descriptors() < descriptors);
        }
        QVERIFY(m_host->close());
    }

private:
    // The servers that have answered requests of \p session, with the number of answers.
    QMap<QString, int> serversOf(const QString& session) const
    {
        static const QRegularExpression line(QStringLiteral("^request classrooms/(\\w+) .* (\\S+)$"));
        QMap<QString, int> answers;
        for (const QString& request : m_front->lines(QStringLiteral("request "))) {
            const QRegularExpressionMatch match = line.match(request);
            if (match.captured(2).contains(session))
                ++answers[match.captured(1)];
        }
        return answers;
    }
};

INTEROP_MAIN(TestBalancers)
#include "tst_Balancers.moc"
