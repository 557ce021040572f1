#include "support/ConnectorTest.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
#include "support/WaitFor.h"

#include <QNetworkProxy>
#include <QTest>

namespace {

constexpr int cycles = 500;
// What belongs to a session that is being ended goes a little later than its `closed`: threads and
// descriptors of so many sessions may be there at a time.
constexpr int overlapping = 20;
constexpr int threadsOfASession = 2;      // the receiver, and Qt's for the posts
constexpr int descriptorsOfASession = 16; // sockets of both ends, and those by which threads wake each other

} // namespace

/// A host that opens and closes for a whole day.
class TestOpenCloseCycles : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        m_before = std::make_unique<ProcessResources::Snapshot>([this] {
            for (const Protocol protocol : SockJSConnector::GetDefaultProtocols()) {
                setUp();
                m_protocols = {protocol};
                QVERIFY(cycle(QStringLiteral("close")));
                tearDown();
            }
        });
    }

    void cycles_data()
    {
        combinations({{"websocket", "xhr-streaming", "xhr-polling"},
                      {"close", "closed by the server", "open", "delete"}});
    }

    void cycles()
    {
        const auto [transport, end] = row<QString, QString>();
        m_protocols = SockJSConnector::GetProtocolsFromStrings({transport});
        const int threads = ProcessResources::threads();
        const int descriptors = ProcessResources::descriptors();
        for (int i = 0; i < ::cycles; ++i) {
            QVERIFY2(cycle(end), qPrintable(QString::number(i)));
            forgetLog(); // or the log of all of them is kept
            QVERIFY2(ProcessResources::threads() <= threads + overlapping * threadsOfASession,
                     qPrintable(QString::number(ProcessResources::threads())));
            QVERIFY2(ProcessResources::descriptors() <= descriptors + overlapping * descriptorsOfASession,
                     qPrintable(QString::number(ProcessResources::descriptors())));
        }
        tearDown();
        QCOMPARE(m_before->waitForSurplusToGo(), QString());
    }

private:
    bool cycle(const QString& end)
    {
        const int closed = m_probe->count(QStringLiteral("closed false"));
        if (!m_probe->openSession(m_server->url(), m_protocols))
            return false;
        m_connector->sendMessage(QStringLiteral("hello"), false);
        if (m_server->nextMessage() != QLatin1String("hello") || !syncInbound())
            return false;
        if (end == QLatin1String("open"))
            return true;
        if (end == QLatin1String("delete")) {
            delete m_connector;
            m_connector = new SockJSConnector;
            m_probe = std::make_unique<ConnectorProbe>(m_connector);
            return true;
        }
        if (end == QLatin1String("close"))
            m_connector->close();
        else
            m_server->closeSession();
        return waitFor([&] { return m_probe->count(QStringLiteral("closed false")) == closed + 1; });
    }

    std::unique_ptr<ProcessResources::Snapshot> m_before;
    Protocols m_protocols;
};

QTEST_GUILESS_MAIN(TestOpenCloseCycles)
#include "tst_OpenCloseCycles.moc"
