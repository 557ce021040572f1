#include "support/ConnectorProbe.h"
#include "support/FakeSockJSServer.h"
#include "transport/SockJSConnector.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <memory>

namespace {

const QList<SockJSConnector::PROTOCOL_TYPE> webSocket{SockJSConnector::WEBSOCKET};

/// An HTTP proxy on loopback that knows CONNECT.
class FakeProxy : public QTcpServer
{
    Q_OBJECT

public:
    FakeProxy()
    {
        connect(this, &QTcpServer::newConnection, this, &FakeProxy::onNewConnection);
        if (!listen(QHostAddress::LocalHost))
            qFatal("The fake proxy cannot listen on loopback.");
    }

    QString address() const { return QStringLiteral("127.0.0.1:%1").arg(serverPort()); }
    void setRefusing(bool refusing) { m_refusing = refusing; }
    QStringList requests() const { return m_requests; }

private:
    void onNewConnection()
    {
        auto* client = nextPendingConnection();
        auto* target = new QTcpSocket(client);
        connect(client, &QTcpSocket::readyRead, target, [this, client, target] { onData(client, target); });
        connect(target, &QTcpSocket::readyRead, client,
                [client, target] { client->write(target->readAll()); });
        connect(target, &QTcpSocket::connected, client,
                [client] { client->write("HTTP/1.1 200 Connection established\r\n\r\n"); });
        connect(target, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
        connect(client, &QTcpSocket::disconnected, target, &QTcpSocket::disconnectFromHost);
    }

    void onData(QTcpSocket* client, QTcpSocket* target)
    {
        if (target->state() == QAbstractSocket::ConnectedState) {
            target->write(client->readAll());
            return;
        }
        if (!client->peek(client->bytesAvailable()).contains("\r\n\r\n"))
            return;
        const auto request = QString::fromLatin1(client->readAll()).section(QLatin1String("\r\n"), 0, 0);
        m_requests.append(request);
        if (m_refusing) {
            client->write("HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n");
            return;
        }
        const auto host = request.section(QLatin1Char(' '), 1, 1);
        target->connectToHost(host.section(QLatin1Char(':'), 0, 0),
                              host.section(QLatin1Char(':'), 1, 1).toUShort());
    }

    bool m_refusing = false;
    QStringList m_requests;
};

} // namespace

/// What the WebSocket transport does about the system's proxy. The functions build on each other: the
/// environment is that of the process.
class TestSockJSConnectorProxy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const char* name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "HTTP_PROXY",
                                 "HTTPS_PROXY", "ALL_PROXY", "NO_PROXY"})
            qunsetenv(name);
    }

    void init()
    {
        m_connector = std::make_unique<SockJSConnector>();
        m_probe = std::make_unique<ConnectorProbe>(m_connector.get());
    }

    void withoutAProxyTheEnvironmentStaysAsItIs()
    {
        QVERIFY(m_probe->openSession(m_server.url(), webSocket));
        QVERIFY(!qEnvironmentVariableIsSet("http_proxy"));

        qputenv("http_proxy", "");
        QVERIFY(m_probe->openSession(m_server.url(), webSocket));
        QVERIFY(qEnvironmentVariableIsSet("http_proxy"));
        QVERIFY(qEnvironmentVariableIsEmpty("http_proxy"));
        QVERIFY(m_proxy.requests().isEmpty());
    }

    void theProxyIsExportedWithoutScheme()
    {
        qputenv("http_proxy", "http://" + m_proxy.address().toLatin1());

        QVERIFY(m_probe->openSession(m_server.url(), webSocket));

        QCOMPARE(qEnvironmentVariable("http_proxy"), m_proxy.address());
        QCOMPARE(m_proxy.requests(), QStringList({connectRequest()}));
    }

    void everyOpenGoesThroughTheProxy()
    {
        const int before = m_proxy.requests().size();

        for (int i = 1; i <= 3; ++i) {
            QVERIFY(m_probe->openSession(m_server.url(), webSocket));
            QCOMPARE(m_proxy.requests().size(), before + i);
            QCOMPARE(m_proxy.requests().last(), connectRequest());
            QCOMPARE(qEnvironmentVariable("http_proxy"), m_proxy.address());
        }
        m_connector->sendMessage(QStringLiteral("through the proxy"), false);
        QCOMPARE(m_server.nextMessage(), QStringLiteral("through the proxy"));
    }

    void aProxyThatRefusesFailsTheTransport()
    {
        const int before = m_server.requests().size();
        m_proxy.setRefusing(true);

        QVERIFY(m_probe->open(m_server.url(), webSocket));
        QVERIFY(!m_connector->isConnected());
        QVERIFY(m_probe->events().isEmpty());

        m_proxy.setRefusing(false);
        QVERIFY(m_probe->openSession(m_server.url(), webSocket));
        QCOMPARE(m_server.requests().size(), before + 1);
    }

private:
    QString connectRequest() const
    {
        return QStringLiteral("CONNECT 127.0.0.1:%1 HTTP/1.1").arg(m_server.port());
    }

    FakeProxy m_proxy;
    FakeSockJSServer m_server;
    std::unique_ptr<SockJSConnector> m_connector;
    std::unique_ptr<ConnectorProbe> m_probe;
};

QTEST_GUILESS_MAIN(TestSockJSConnectorProxy)
#include "tst_SockJSConnectorProxy.moc"
