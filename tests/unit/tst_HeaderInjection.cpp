#include "base/RequestText.h"
#include "support/ConnectorProbe.h"
#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/ScriptedHttpServer.h"
#include "support/TransportTest.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/SockJSConnector>

#include <QtTest>

using HttpText::plain;
using Server = ScriptedHttpServer;
using Session = TransportSession;

namespace {

const QByteArray refused = "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n";

QString injected(const char* before)
{
    return QLatin1String(before) + QStringLiteral("X-Injected: 1");
}

// The header lines, and the first line, of all requests that have come.
bool areClean(const Server& server)
{
    const QList<Server::Request> requests = server.requests();
    return std::all_of(requests.begin(), requests.end(), [](const Server::Request& request) {
        const QByteArray head = request.head;
        const QByteArray first = head.left(head.indexOf("\r\n"));
        const bool hasOwnLine = std::any_of(request.headers.keyBegin(), request.headers.keyEnd(),
                                            [](const QByteArray& name) { return name.contains("injected"); });
        const int breaks = head.count("\r\n");
        return !hasOwnLine && first.count(' ') == 2 && head.count('\r') == breaks &&
               head.count('\n') == breaks && !head.contains('\0') && !head.contains('\t');
    });
}

} // namespace

/// Text from a host, a service or a bus never becomes a line of a request's header; and which characters may
/// stand in which line of a raw request.
class tst_HeaderInjection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("http_proxy");
        qRegisterMetaType<QStringMap>("QStringMap");
    }

    void pathOfTheBus_data()
    {
        columns<QString, int>();
        const QMap<SockJSConnector::PROTOCOL_TYPE, QString> protocols = SockJSConnector::PROTOCOL_TYPE_STR();
        for (auto protocol = protocols.begin(); protocol != protocols.end(); ++protocol) {
            for (const char* before : {"\r", "\n", "\r\n", " ", "\t", " HTTP/1.1\r\n"})
                QTest::addRow("%s, %s", qPrintable(protocol.value()), QByteArray(before).toHex().constData())
                    << injected(before) << int(protocol.key());
            QTest::addRow("%s, NUL", qPrintable(protocol.value()))
                << QChar(0) + injected("") << int(protocol.key());
        }
    }
    // A blank is escaped, and by a WebSocket's request whatever can be; else the library sends nothing at
    // all.
    void pathOfTheBus()
    {
        const auto [text, protocol] = row<QString, int>();
        Server server;
        server.answerAlways("", refused);
        QUrl url(QStringLiteral("http://127.0.0.1:%1").arg(server.port()));
        url.setPath(QStringLiteral("/a") + text, QUrl::DecodedMode);
        QVERIFY(url.isValid());
        SockJSConnector connector;
        ConnectorProbe probe(&connector);
        const LogRecorder log;
        QVERIFY(probe.open(url, {SockJSConnector::PROTOCOL_TYPE(protocol)}));
        QVERIFY(areClean(server));
        QCOMPARE(probe.events(), QStringList());
        if (protocol != SockJSConnector::WEBSOCKET && text != injected(" ")) {
            QCOMPARE(server.connections(), 0);
            QCOMPARE(log.debug("[SockJSXHRPolling] Can't start").size(), 1);
        }
    }

    void hostOfTheBus_data() { texts(); }
    void hostOfTheBus()
    {
        QFETCH(QString, text);
        Server server;
        server.answerAlways("", refused);
        int usable = 0; // Qt lets a NUL end an address
        for (const auto mode : {QUrl::DecodedMode, QUrl::TolerantMode}) {
            QUrl url(QStringLiteral("http://127.0.0.1:%1/p").arg(server.port()));
            url.setHost(QStringLiteral("127.0.0.1") + text, mode);
            usable += url.host().isEmpty() ? 0 : 1;
            QVERIFY(url.host().isEmpty() || url.host() == QLatin1String("127.0.0.1"));
            SockJSConnector connector;
            ConnectorProbe probe(&connector);
            QVERIFY(probe.open(url, SockJSConnector::GetDefaultProtocols()));
            QCOMPARE(probe.events(), QStringList());
        }
        QVERIFY(usable > 0 || server.connections() == 0);
        QVERIFY(areClean(server));
    }

    void pathOfAnXHRRequest_data() { texts(); }
    void pathOfAnXHRRequest()
    {
        QFETCH(QString, text);
        Server server;
        server.answer("/xhr", plain("o\n"));
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count("/xhr"), 2);
        const LogRecorder log;
        session.transport->doRequestXHR(QStringLiteral("/a") + text, QString());
        QCOMPARE(log.debug("[SockJSXHRPolling] Can't make request").size(), 1);
        session.transport->close();
        QTRY_COMPARE(session.ends, 1);
        QCOMPARE(server.count(), 2);
        QVERIFY(areClean(server));
    }

    void messageOfAnXHRTransport_data() { texts(); }
    void messageOfAnXHRTransport()
    {
        QFETCH(QString, text);
        Server server;
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.start(server));
        session.transport->sendTextMessage(text);
        QTRY_COMPARE(server.count("/xhr_send"), 1);
        QCOMPARE(server.requests("/xhr_send").first().body, text.toUtf8());
        QTRY_COMPARE(server.count(), 2); // and the poll
        QVERIFY(areClean(server));
    }

    void cookieOfTheBus_data() { cookies(); }
    void cookieOfTheBus()
    {
        QFETCH(QByteArray, cookie);
        Server server;
        server.answer("/xhr", plain("o\n", "Set-Cookie: " + cookie + "\r\n"));
        server.answer("/xhr_send", plain("", "Set-Cookie: " + cookie + "\r\n"));
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count("/xhr"), 2);
        session.transport->sendTextMessage("[]");
        session.transport->sendTextMessage("[]");
        QTRY_COMPARE(server.count("/xhr_send"), 2);
        QCOMPARE(session.transport->getCookieCount(), 0);
        QVERIFY(areClean(server));
    }

    void addressOfTheService_data()
    {
        columns<QString, bool>();
        // With the port for %1, and whether a request is made of it.
        const QString host = "http://127.0.0.1";
        for (const auto& [name, text] : breaks()) {
            QTest::addRow("%s in the path", name) << host + ":%1/a" + text << true;
            QTest::addRow("%s in the host", name) << host + text << false;
            QTest::addRow("%s after the port", name) << host + ":%1" + text << false;
        }
    }
    void addressOfTheService()
    {
        auto [address, isSent] = row<QString, bool>();
        Server server;
        server.answerAlways("", plain("{}"));
        PresenterClient client(nullptr, address.replace(QLatin1String("%1"), QString::number(server.port())));
        const bool reached = client.checkServer(QString(), QString());
        QVERIFY(areClean(server));
        QVERIFY(isSent || !reached);
        QVERIFY(isSent || server.count() == 0);
    }

    void textsOfALogin_data() { texts(); }
    // All of them are in the body, but for the provider.
    void textsOfALogin()
    {
        QFETCH(QString, text);
        Server server;
        server.answerAlways("", plain("{}"));
        const QString address = QStringLiteral("http://127.0.0.1:%1").arg(server.port());
        PresenterClient client(nullptr, address);
        client.doLogin(text, text);
        client.doLogin(text, text, text);
        client.doGetAccessToken(text, text, text, text);
        QString registration;
        client.doLoginWithOAuth(text, text, registration);
        client.doGetOAuthAccessToken(text, text, text, text, registration);
        QCOMPARE(server.count(), 5);
        QVERIFY(areClean(server));
        for (const Server::Request& request : server.requests())
            QCOMPARE(request.headers.value("content-length").toInt(), request.body.size());
    }

    void cookieOfTheService_data() { cookies(); }
    void cookieOfTheService()
    {
        QFETCH(QByteArray, cookie);
        Server server;
        server.answer("", plain("{}", "Set-Cookie: " + cookie + "\r\nSet-Cookie: good=1\r\n"));
        server.answerAlways("", plain("{}"));
        PresenterClient client(nullptr, QStringLiteral("http://127.0.0.1:%1").arg(server.port()));
        QVERIFY(client.checkServer(QString(), QString()));
        QVERIFY(client.checkServer(QString(), QString()));
        QCOMPARE(server.requests().last().headers.value("cookie"), QByteArray("good=1"));
        QVERIFY(areClean(server));
    }

    void targetOfARedirect_data()
    {
        columns<QByteArray>();
        // %1: the port
        for (const char* text : {"%0D%0A", "%0A", "%0D", "%20", "%09", "%00", "\r", "\t", " "}) {
            const QByteArray hex = QByteArray(text).toHex();
            QTest::addRow("%s in the host", hex.constData())
                << QByteArray("http://127.0.0.1") + text + "X-Injected: 1:%1/";
            QTest::addRow("%s in the path", hex.constData())
                << QByteArray("http://127.0.0.1:%1/a") + text + "X-Injected: 1";
        }
    }
    void targetOfARedirect()
    {
        auto [location] = row<QByteArray>();
        Server server;
        location.replace("%1", QByteArray::number(server.port()));
        server.answer("", "HTTP/1.1 302 Found\r\nLocation: " + location + "\r\nContent-Length: 0\r\n\r\n");
        server.answerAlways("", plain("{}"));
        PresenterClient client(nullptr, QStringLiteral("http://127.0.0.1:%1").arg(server.port()));
        client.checkServer(QString(), QString());
        client.checkServer(QString(), QString());
        QVERIFY(server.count() >= 1);
        QVERIFY(areClean(server));
        QVERIFY(!client.server().contains(QLatin1String("Injected")));
    }

    void everyCharacterOfAFirstLine()
    {
        for (int character = 0; character <= 0xffff; ++character) {
            const bool isSafe = character > ' ' && character != 0x7f;
            if (RequestText::isSafeInFirstLine(QString(QChar(character))) != isSafe)
                QFAIL(qPrintable(QString::number(character, 16)));
        }
    }

    void everyByteOfALine()
    {
        for (int byte = 0; byte <= 0xff; ++byte) {
            const bool isSafe = byte != '\r' && byte != '\n' && byte != '\0';
            if (RequestText::isSafeInLine(QByteArray(1, char(byte))) != isSafe)
                QFAIL(qPrintable(QString::number(byte, 16)));
        }
    }

    void oneBadCharacterIsEnough()
    {
        const QString text = "/bus/119/abcdefgh";
        QVERIFY(RequestText::isSafeInFirstLine(text));
        QVERIFY(RequestText::isSafeInLine(text.toLatin1()));
        for (int at = 0; at <= text.size(); ++at) {
            const QString broken = QString(text).insert(at, QLatin1Char('\n'));
            QVERIFY2(!RequestText::isSafeInFirstLine(broken), qPrintable(QString::number(at)));
            QVERIFY2(!RequestText::isSafeInLine(broken.toLatin1()), qPrintable(QString::number(at)));
        }
    }

private:
    static QList<QPair<const char*, QString>> breaks()
    {
        return {{"CR", injected("\r")},   {"LF", injected("\n")},  {"CR LF", injected("\r\n")},
                {"blank", injected(" ")}, {"tab", injected("\t")}, {"NUL", QChar(0) + injected("")}};
    }

    static void texts()
    {
        QTest::addColumn<QString>("text");
        for (const auto& [name, text] : breaks())
            QTest::newRow(name) << text;
        QTest::newRow("the end of a request") << injected(" HTTP/1.1\r\n");
        QTest::newRow("a request of its own") << injected(" HTTP/1.1\r\n\r\nPOST /x HTTP/1.1\r\n");
    }

    // What a raw answer can carry in one header line.
    static void cookies()
    {
        QTest::addColumn<QByteArray>("cookie");
        QTest::newRow("CR in the value") << QByteArray("a=1\rX-Injected: 1");
        QTest::newRow("CR in the name") << QByteArray("a\rX-Injected: 1=1");
        QTest::newRow("NUL") << QByteArray("a=1\0X-Injected: 1", 17);
    }
};

QTEST_GUILESS_MAIN(tst_HeaderInjection)
#include "tst_HeaderInjection.moc"
