#include "support/ConnectorProbe.h"
#include "support/Rows.h"
#include "support/ScriptedHttpServer.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/SockJSConnector>

#include <QtTest>

using Server = ScriptedHttpServer;

namespace {

const QByteArray inviting = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}";
// The records in which a handshake goes on, and those in which one is given up.
const char handshakeRecord = 0x16;
const char alertRecord = 0x15;

// Whether TLS records have come on every connection, none with data of an application, and nothing else.
bool gotHandshakesOnly(const Server& server)
{
    for (int connection = 0; connection < server.connections(); ++connection) {
        const QByteArray bytes = server.received(connection);
        if (bytes.isEmpty())
            return false;
        for (int at = 0; at < bytes.size();) {
            const bool isRecord = bytes.size() - at >= 5 && bytes.at(at + 1) == 3 &&
                                  (bytes.at(at) == handshakeRecord || bytes.at(at) == alertRecord);
            if (!isRecord)
                return false;
            at += 5 + (quint8(bytes.at(at + 3)) << 8 | quint8(bytes.at(at + 4)));
        }
    }
    return server.connections() > 0;
}

} // namespace

/// An address that says https or wss gets TLS or nothing, also from a server that speaks plain HTTP there.
class tst_NothingInClear : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qunsetenv("http_proxy"); }

    void busGetsTlsOnly_data()
    {
        columns<QString, QList<int>>();
        for (const char* scheme : {"https", "wss", "HTTPS", "WSS"}) {
            QTest::addRow("%s, websocket", scheme) << scheme << QList<int>{SockJSConnector::WEBSOCKET};
            QTest::addRow("%s, xhr-streaming", scheme)
                << scheme << QList<int>{SockJSConnector::XHR_STREAMING};
            QTest::addRow("%s, xhr-polling", scheme) << scheme << QList<int>{SockJSConnector::XHR_POLLING};
            QTest::addRow("%s, all", scheme) << scheme << QList<int>{1, 2, 4};
        }
    }

    void busGetsTlsOnly()
    {
        const auto [scheme, protocols] = row<QString, QList<int>>();
        Server server;
        for (int i = 0; i < protocols.size(); ++i)
            server.onConnect({Server::hear(), Server::send(inviting)});
        QList<SockJSConnector::PROTOCOL_TYPE> entries;
        for (const int protocol : protocols)
            entries.append(SockJSConnector::PROTOCOL_TYPE(protocol));
        SockJSConnector connector;
        ConnectorProbe probe(&connector);
        const QUrl url(QStringLiteral("%1://127.0.0.1:%2/p").arg(scheme).arg(server.port()));
        QVERIFY(probe.open(url, entries));
        connector.sendMessage("secret", false);
        QCOMPARE(probe.events(), QStringList());
        QTRY_VERIFY(gotHandshakesOnly(server));
        QCOMPARE(server.connections(), protocols.size());
    }

    void serviceGetsTlsOnly()
    {
        Server server;
        for (int i = 0; i < 3; ++i)
            server.onConnect({Server::hear(), Server::send(inviting)});
        PresenterClient client(nullptr, QStringLiteral("https://127.0.0.1:%1").arg(server.port()));
        QVERIFY(!client.checkServer("user", "word"));
        QVERIFY(!client.doLogin("teacher", "chalk"));
        QString id;
        QString path;
        QVERIFY(!client.doUploadResource("a.png", "bytes", &id, &path));
        QTRY_VERIFY(gotHandshakesOnly(server));
    }
};

QTEST_GUILESS_MAIN(tst_NothingInClear)
#include "tst_NothingInClear.moc"
