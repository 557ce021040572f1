#include "interop/support/ClassroomSession.h"
#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"
#include "support/LogRecorder.h"

#include <QElapsedTimer>

namespace {

const QString demandsPassword = QStringLiteral("BasicAuth pupil secret");

} // namespace

/// A forward proxy as the only way out: the server's door turns away whoever does not come from there.
class TestForwardProxies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<Peer>();
        m_door = std::make_unique<Peer>();
        m_proxy = std::make_unique<Peer>();
    }

    void cleanup()
    {
        m_proxy.reset();
        m_door.reset();
        m_server.reset();
        qunsetenv("http_proxy");
        QNetworkProxyFactory::setUseSystemConfiguration(false);
    }

    void directConnectionsAreRefused()
    {
        startDoor(Peers::nodeBus());
        Host host(m_door->url());
        QVERIFY(host.tryOpen({Transport::webSocket}));
        QVERIFY(!host.collab()->isConnected());
        PresenterClient client(nullptr, doorForRequests().toString());
        QVERIFY(!client.checkServer(QString(), QString()));
        QCOMPARE(m_server->count(QStringLiteral("request ")), 0);
        QCOMPARE(m_server->count(QStringLiteral("upgrade ")), 0);
    }

    void carriesALesson_data() { Transport::addRows(); }

    void carriesALesson()
    {
        QFETCH(QString, transport);
        startDoor(Peers::classroom());
        useProxy();
        QNetworkProxyFactory::setUseSystemConfiguration(true);

        ClassroomSession lesson(doorForRequests());
        QVERIFY(lesson.client().checkServer(QString(), QString()));
        QVERIFY(lesson.create());
        lesson.client().setSockJSOverrideProtocols({transport});
        PresenterCollab* collab = nullptr;
        QVERIFY(lesson.client().startWebsocket(&collab));
        Host host(collab);
        QTRY_VERIFY(collab->isConnected());
        QVERIFY(host.exchange(10));
        QVERIFY(host.close());
        QVERIFY(lesson.client().doGetLearners());
        QVERIFY(lesson.client().doStopSession());
    }

    void proxyGoesAndComesBack_data() { Transport::addRows(); }

    void proxyGoesAndComesBack()
    {
        QFETCH(QString, transport);
        startDoor(hundredTexts());
        useProxy();
        Host host(m_door->url());
        QVERIFY(host.open(transport));
        m_proxy->kill();
        QVERIFY(host.waitForClosed(1));
        QVERIFY(host.tryOpen({transport}));
        QVERIFY(!host.collab()->isConnected());
        VERIFY_STARTED(m_proxy->start());
        QVERIFY(host.open(transport));
        QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
        QCOMPARE(host.connected(), 2);
        QCOMPARE(host.closed(), 1);
        QVERIFY(host.close());
    }

    void passwordIsDemanded_data() { Transport::addRows(); }

    void passwordIsDemanded()
    {
        constexpr int longest = 5000; // ms
        QFETCH(QString, transport);
        startDoor(Peers::nodeBus());
        useProxy(demandsPassword);
        Host host(m_door->url());
        QElapsedTimer clock;
        clock.start();
        QVERIFY(host.tryOpen({transport}));
        QVERIFY(clock.elapsed() < longest);
        QVERIFY(!host.collab()->isConnected());
        QCOMPARE(m_server->count(QStringLiteral("request ")), 0);
        // Nothing of it comes up later: the proxy lets us pass from now on.
        m_proxy->end();
        useProxy();
        QVERIFY(host.open(transport));
        QCOMPARE(host.connected(), 1);
        QCOMPARE(host.closed(), 0);
        QVERIFY(host.close());
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

    void passwordIsKnown_data() { Transport::addRows(); }

    void passwordIsKnown()
    {
        QFETCH(QString, transport);
        startDoor(hundredTexts());
        useProxy(demandsPassword, "pupil:secret@");
        Host host(m_door->url());
        QVERIFY(host.open(transport));
        QVERIFY2(host.receiveNumbers(100), qPrintable(host.numbers().fault()));
        QVERIFY(host.close());
    }

private:
    static Peer::Program hundredTexts()
    {
        return Peers::nodeBus({QStringLiteral("--count"), QStringLiteral("100")});
    }

    // Starts the server, and the door in front of it.
    void startDoor(const Peer::Program& server)
    {
        m_server->setProgram(server);
        VERIFY_STARTED(m_server->start());
        m_door->setProgram(Peers::haproxy(
            {m_server->port()},
            {{QStringLiteral("FRONTEND"), QStringLiteral("bind %1:@PORT@\n"
                                                         "tcp-request connection reject unless { src %1 }")
                                              .arg(Peers::forwarded)}}));
        VERIFY_STARTED(m_door->start());
    }

    void useProxy(const QString& options = QString(), const QByteArray& credentials = QByteArray())
    {
        m_proxy->setProgram(Peers::tinyproxy(options));
        VERIFY_STARTED(m_proxy->start());
        qputenv("http_proxy",
                "http://" + credentials + "127.0.0.1:" + QByteArray::number(m_proxy->port()) + "/");
    }

    /// The door for Qt's own requests, for which it uses no proxy to an address of loopback: this one means
    /// the same.
    QUrl doorForRequests() const { return QUrl(QStringLiteral("http://0.0.0.0:%1").arg(m_door->port())); }

    std::unique_ptr<Peer> m_server;
    std::unique_ptr<Peer> m_door;
    std::unique_ptr<Peer> m_proxy;
};

INTEROP_MAIN(TestForwardProxies)
#include "tst_ForwardProxies.moc"
