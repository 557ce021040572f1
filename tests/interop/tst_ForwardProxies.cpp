#include "interop/support/BusTest.h"
#include "interop/support/Main.h"
#include "support/LogRecorder.h"

#include <CalyxClient/PresenterClient>

#include <QElapsedTimer>

namespace {

const QString demandsPassword = QStringLiteral("BasicAuth pupil secret");

} // namespace

/// A forward proxy as the only way out: the server's door turns away whoever does not come from there.
/// Lessons through it are in tst_TaughtLessons.
class TestForwardProxies : public BusTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        BusTest::cleanup();
        m_proxy.reset();
        qunsetenv("http_proxy");
        QNetworkProxyFactory::setUseSystemConfiguration(false);
    }

    void directConnectionsAreRefused()
    {
        startDoor(Peers::nodeBus());
        QVERIFY(m_host->tryOpen({Transport::webSocket}));
        QVERIFY(!m_host->collab()->isConnected());
        PresenterClient client(nullptr, doorForRequests().toString());
        QVERIFY(!client.checkServer(QString(), QString()));
        QCOMPARE(m_bus->count(QStringLiteral("request ")), 0);
        QCOMPARE(m_bus->count(QStringLiteral("upgrade ")), 0);
    }

    void proxyGoesAndComesBack_data() { combinations({Transport::all}); }
    void proxyGoesAndComesBack()
    {
        const auto [transport] = row<QString>();
        startDoor(hundredTexts());
        useProxy();
        QVERIFY(m_host->open(transport));
        m_proxy->kill();
        QVERIFY(m_host->waitForEnd());
        QVERIFY(m_host->tryOpen({transport}));
        QVERIFY(!m_host->collab()->isConnected());
        QVERIFY(m_proxy->start());
        QVERIFY(m_host->open(transport));
        QVERIFY(m_host->receiveNumbers(100));
        QVERIFY(m_host->close());
    }

    void passwordIsDemanded_data() { combinations({Transport::all}); }
    void passwordIsDemanded()
    {
        constexpr int longest = 5000; // ms
        const auto [transport] = row<QString>();
        startDoor(Peers::nodeBus());
        useProxy(demandsPassword);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(m_host->tryOpen({transport}));
        QVERIFY(clock.elapsed() < longest);
        QVERIFY(!m_host->collab()->isConnected());
        QCOMPARE(m_bus->count(QStringLiteral("request ")), 0);
        // Nothing of it comes up later: the proxy lets us pass from now on.
        m_proxy->end();
        QVERIFY(m_proxy->start(Peers::tinyproxy()));
        QVERIFY(m_host->open(transport));
        QVERIFY(m_host->close());
    }

    void passwordIsDemandedOfRequests()
    {
        startDoor(Peers::classroom());
        useProxy(demandsPassword);
        QNetworkProxyFactory::setUseSystemConfiguration(true);
        LogRecorder log;
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=true"));
        PresenterClient client(nullptr, doorForRequests().toString());
        QVERIFY(!client.checkServer(QString(), QString()));
        QVERIFY(!client.doLogin(QStringLiteral("teacher"), QStringLiteral("chalk")));
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        const QStringList errors = log.debug(QStringLiteral("ERROR: "));
        QVERIFY(!errors.isEmpty());
        QVERIFY2(errors.first().contains(QStringLiteral("auth"), Qt::CaseInsensitive),
                 qPrintable(errors.first()));
    }

    void passwordIsKnown_data() { combinations({Transport::all}); }
    void passwordIsKnown()
    {
        const auto [transport] = row<QString>();
        startDoor(hundredTexts());
        useProxy(demandsPassword, "pupil:secret@");
        QVERIFY(m_host->open(transport));
        QVERIFY(m_host->receiveNumbers(100));
        QVERIFY(m_host->close());
    }

private:
    static Peer::Program hundredTexts()
    {
        return Peers::nodeBus({QStringLiteral("--count"), QStringLiteral("100")});
    }

    // Starts the server, and the door in front of it, where the host is to go.
    void startDoor(const Peer::Program& server)
    {
        m_bus.emplace(server);
        m_front.emplace(Peers::door(m_bus->port()));
        m_host.emplace(m_front->url());
    }

    void useProxy(const QString& options = QString(), const QByteArray& credentials = QByteArray())
    {
        m_proxy.emplace(Peers::tinyproxy(options));
        qputenv("http_proxy",
                "http://" + credentials + "127.0.0.1:" + QByteArray::number(m_proxy->port()) + "/");
    }

    /// The door for Qt's own requests, for which it uses no proxy to an address of loopback: this one means
    /// the same.
    QUrl doorForRequests() const { return QUrl(QStringLiteral("http://0.0.0.0:%1").arg(m_front->port())); }

    std::optional<Peer> m_proxy;
};

INTEROP_MAIN(TestForwardProxies)
#include "tst_ForwardProxies.moc"
