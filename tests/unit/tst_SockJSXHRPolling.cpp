#include <CalyxClient/SockJSXHRPolling>

#include "support/LogRecorder.h"
#include "support/TestCertificates.h"
#include "support/TransportTest.h"
#include "transport/SockJSXHRPollingWorker.h"

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QTcpServer>
#include <QtTest>

using HttpText::chunked;
using HttpText::plain;

namespace {

// For as long as it lives, the system's proxy.
class SystemProxy
{
public:
    explicit SystemProxy(quint16 port)
    {
        qputenv("http_proxy", "http://127.0.0.1:" + QByteArray::number(port));
    }
    ~SystemProxy() { qunsetenv("http_proxy"); }
    Q_DISABLE_COPY(SystemProxy)
};

} // namespace

class tst_SockJSXHRPolling : public TransportTest
{
    Q_OBJECT

private Q_SLOTS:
    void declaresItsSignalsAndSlots()
    {
        const QMetaObject* meta = &Transport::staticMetaObject;
        QVERIFY(meta->indexOfSignal("connectionClosed()") >= 0);
        QVERIFY(meta->indexOfSignal("textMessageReceived(QString)") >= 0);
        for (const char* slot : {"onReceivedHeadersResponse(XHRRequest*,QStringMap)",
                                 "onReceivedMessageResponse(XHRRequest*,QString)",
                                 "onNAMRequestFinished(QNetworkReply*)", "onReconnected()"}) {
            const int index = meta->indexOfSlot(slot);
            QVERIFY2(index >= 0, slot);
            QCOMPARE(meta->method(index).access(), QMetaMethod::Private);
        }
    }

    void startFailsWithALogLine()
    {
        quint16 port = 0;
        {
            const Server gone;
            port = gone.port();
        }
        Session session;
        LogRecorder log;
        QVERIFY(!session.transport->start(QStringLiteral("127.0.0.1"), port, false, sessionPath, false));
        QCOMPARE(log.debug(), QStringList("[SockJSXHRPolling] Connection refused"));
        QCOMPARE(session.ends, 0);
    }

    void startRefusesTextThatBreaksTheRequest_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("CR") << "a\rb";
        QTest::newRow("LF") << "a\nb";
        QTest::newRow("NUL") << QString(QLatin1String("a\0b", 3));
        QTest::newRow("a line of its own") << " HTTP/1.1\r\nX-Injected: 1\r\n";
    }

    void startRefusesTextThatBreaksTheRequest()
    {
        QFETCH(QString, text);
        const Server server;
        Session session;
        LogRecorder log;
        QVERIFY(!session.transport->start(QStringLiteral("127.0.0.1"), server.port(), false,
                                          QLatin1Char('/') + text, false));
        QVERIFY(!session.transport->start(text, server.port(), false, sessionPath, false));
        QCOMPARE(log.debug("[SockJSXHRPolling]").size(), 2);
        QCOMPARE(server.connections(), 0);
    }

    void startRefusesASecondTime()
    {
        Server server;
        Session session;
        QVERIFY(session.start(server));
        QVERIFY(!session.start(server));
        QTRY_COMPARE(server.count(), 1);
        QCOMPARE(server.connections(), 1);
    }

    void startAgainAfterAFailure()
    {
        Server server;
        server.answer("/xhr", chunked("o\n"));
        Session session;
        QVERIFY(!session.transport->start(QStringLiteral("127.0.0.1"), 1, false, sessionPath, false));
        QVERIFY(session.start(server));
        QTRY_COMPARE(session.texts, QStringList("o"));
        session.transport->close();
        QTRY_COMPARE(session.ends, 1);
        server.answer("/xhr", chunked("o\n"));
        QVERIFY(session.start(server));
        QTRY_COMPARE(session.texts, QStringList({"o", "o"}));
        QCOMPARE(session.ends, 1);
    }

    void secureStartUsesTheSecureAddress()
    {
        const TestCertificates::TrustedRoot trusted;
        Server server(TestCertificates::server(QStringLiteral("loopback")));
        server.answer("/xhr", plain("o\n", "Set-Cookie: a=1; Secure\r\n"));
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.start(server, false, true));
        QTRY_COMPARE(session.texts, QStringList("o"));
        // A secure cookie is one of a secure address only.
        QCOMPARE(session.transport->getCookieString(), QStringLiteral("a=1; "));
        session.transport->sendTextMessage(QStringLiteral("[]"));
        QTRY_COMPARE(server.count("/xhr_send"), 1);
        QCOMPARE(server.requests("/xhr_send").first().path, QByteArray("/p/eventbus/119/abcdefgh/xhr_send"));
        QCOMPARE(server.requests("/xhr_send").first().headers.value("cookie"), QByteArray("a=1"));
    }

    void unknownCertificateIsRefused()
    {
        const Server server(TestCertificates::server(QStringLiteral("loopback")));
        Session session;
        LogRecorder log;
        QVERIFY(!session.start(server, false, true));
        QCOMPARE(log.debug("[SockJSXHRPolling] ").size(), 1);
        QCOMPARE(server.received(0), QByteArray());
    }

    void pathOfEachRequest_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("polled");
        QTest::addColumn<QByteArray>("sent");
        QTest::newRow("with") << "/e/1" << QByteArray("/e/1/xhr") << QByteArray("/e/1/xhr_send");
        QTest::newRow("without") << "e/1" << QByteArray("/e/1/xhr") << QByteArray("/e/1/xhr_send");
        QTest::newRow("a blank") << "/e 1" << QByteArray("/e%201/xhr") << QByteArray("/e%201/xhr_send");
        QTest::newRow("beyond ASCII")
            << QString::fromUtf8("/\xc3\xa4") << QByteArray("/%C3%A4/xhr") << QByteArray("/%C3%A4/xhr_send");
        QTest::newRow("at the end too") << "/e/1/" << QByteArray("/e/1//xhr") << QByteArray("/e/1/xhr_send");
    }

    void pathOfEachRequest()
    {
        QFETCH(QString, path);
        Server server;
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.transport->start(QStringLiteral("127.0.0.1"), server.port(), false, path, false));
        session.transport->sendTextMessage(QStringLiteral("[]"));
        QTRY_COMPARE(server.count(), 2);
        QTEST(server.requests("/xhr").first().path, "polled");
        QTEST(server.requests("/xhr_send").first().path, "sent");
    }

    void addressOfIPv6GetsBrackets()
    {
        QTcpServer server;
        if (!server.listen(QHostAddress::LocalHostIPv6))
            return; // this machine has none
        Session session;
        QVERIFY(
            session.transport->start(QStringLiteral("::1"), server.serverPort(), false, sessionPath, false));
        QTRY_VERIFY(server.hasPendingConnections());
        QTcpSocket* peer = server.nextPendingConnection();
        QTRY_VERIFY(peer->bytesAvailable() > 0);
        QVERIFY(peer->readAll().contains("\r\nHost: [::1]\r\n"));
    }

    void pollIsWrittenByteForByte()
    {
        Server server;
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.received(0), Session::pollText());
    }

    void streamingRequestNamesItsPath()
    {
        Server server;
        Session session;
        QVERIFY(session.start(server, true));
        QTRY_COMPARE(server.received(0), Session::pollText().replace("/xhr ", "/xhr_streaming "));
    }

    void requestWithPayload()
    {
        Server server;
        server.answerAlways("/xhr", plain("o\n"));
        Session session;
        QVERIFY(session.start(server));
        session.transport->doRequestXHR(QStringLiteral("/%1/other"), QStringLiteral("%2 pay"));
        QTRY_COMPARE(server.count("/other"), 1);
        const Server::Request request = server.requests("/other").first();
        QCOMPARE(request.path, QByteArray("/%1/other"));
        QCOMPARE(request.headers.value("content-length"), QByteArray("6"));
        QCOMPARE(request.body, QByteArray("%2 pay"));
    }

    void requestPathThatBreaksTheRequestIsRefused()
    {
        Server server;
        server.answer("/xhr", plain("o\n"));
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count("/xhr"), 2);
        LogRecorder log;
        session.transport->doRequestXHR(QStringLiteral("/x HTTP/1.1\r\nInjected: 1"), QString());
        session.transport->doRequestXHR(QStringLiteral("/a b"), QString());
        QCOMPARE(log.debug("[SockJSXHRPolling]").size(), 2);
        session.transport->close();
        QTRY_COMPARE(session.ends, 1);
        QVERIFY(!server.received(0).contains("Injected"));
        QCOMPARE(server.count(), 2);
    }

    void requestAfterCloseIsRefused()
    {
        Server server;
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count(), 1);
        session.transport->close();
        LogRecorder log;
        session.transport->doRequestXHR(QStringLiteral("/x"), QString());
        session.transport->doPoll();
        QTRY_COMPARE(session.ends, 1);
        session.transport->doPoll();
        QCOMPARE(log.debug(), QStringList({closedLine, closedLine, closedLine}));
        QCOMPARE(server.count(), 1);
    }

    void requestBeforeStartIsRefused()
    {
        Session session;
        LogRecorder log;
        session.transport->doPoll();
        QCOMPARE(log.debug(), QStringList(closedLine));
    }

    void refusedRequestIsFreed()
    {
        Server server;
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count(), 1);
        LogRecorder log;
        const int before = XHRRequest(QString(), QString()).requestId();
        for (int i = 0; i < 60; ++i)
            session.transport->doRequestXHR(QStringLiteral("/x"), QString());
        QCOMPARE(XHRRequest(QString(), QString()).requestId(), before + 61);
        // What is not freed here, the leak check of a sanitized run reports.
        QCOMPARE(log.debug("[SockJSXHRPollingWorker] Async socket tx queue error: Too many items in queue!")
                     .size(),
                 9);
    }

    void goesThroughTheSystemsProxy()
    {
        // It stands for the proxy, and for the server that the proxy connects to.
        Server proxy;
        proxy.answer("server.invalid:80", "HTTP/1.1 200 Connection established\r\n\r\n");
        proxy.answer("/xhr", plain("o\n"));
        proxy.answer("/xhr_send", plain(""));
        proxy.answerAlways("server.invalid:80", "HTTP/1.1 200 Connection established\r\n\r\n");
        const SystemProxy system(proxy.port());
        // What the application has chosen for itself does not count.
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        Session session;
        QVERIFY(session.transport->start(QStringLiteral("server.invalid"), 80, false, sessionPath, false));
        QTRY_COMPARE(session.texts, QStringList("o"));
        session.transport->sendTextMessage(QStringLiteral("[]"));
        QTRY_COMPARE(proxy.count("/xhr_send"), 1);
        QCOMPARE(proxy.requests().first().method, QByteArray("CONNECT"));
    }

    void proxyThatWantsAPasswordFailsClearly()
    {
        Server proxy;
        proxy.answerAlways("server.invalid:80",
                           Server::Script{Server::send(
                               "HTTP/1.1 407 Proxy Authentication Required\r\n"
                               "Proxy-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n")});
        const SystemProxy system(proxy.port());
        Session session;
        LogRecorder log;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!session.transport->start(QStringLiteral("server.invalid"), 80, false, sessionPath, false));
        QVERIFY(clock.elapsed() < 5000);
        QCOMPARE(log.debug("[SockJSXHRPolling] ").size(), 1);
    }
};

QTEST_GUILESS_MAIN(tst_SockJSXHRPolling)
#include "tst_SockJSXHRPolling.moc"
