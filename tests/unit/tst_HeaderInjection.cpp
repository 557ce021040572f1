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

namespace {

const QByteArray refused = "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n";

QString injected(const char* before)
{
    return QLatin1String(before) + QStringLiteral("X-Injected: 1");
}

// The header lines, and the first line, of all requests that have come.
bool areClean(const ScriptedHttpServer& server)
{
    using Request = ScriptedHttpServer::Request;
    const QList<Request> requests = server.requests();
    return std::all_of(requests.begin(), requests.end(), [](const Request& request) {
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
class tst_HeaderInjection : public TransportTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_session.reset();
        QVERIFY(areClean(*m_server));
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
        m_server->answerAlways("", refused);
        QUrl url(address());
        url.setPath(QStringLiteral("/a") + text, QUrl::DecodedMode);
        QVERIFY(url.isValid());
        SockJSConnector connector;
        ConnectorProbe probe(&connector);
        const LogRecorder log;
        QVERIFY(probe.open(url, {SockJSConnector::PROTOCOL_TYPE(protocol)}));
        QCOMPARE(probe.events(), QStringList());
        if (protocol != SockJSConnector::WEBSOCKET && text != injected(" ")) {
            QCOMPARE(m_server->connections(), 0);
            QCOMPARE(log.debug("[SockJSXHRPolling] Can't start").size(), 1);
        }
    }

    void hostOfTheBus_data() { texts(); }
    void hostOfTheBus()
    {
        QFETCH(QString, text);
        m_server->answerAlways("", refused);
        int usable = 0; // Qt lets a NUL end an address
        for (const auto mode : {QUrl::DecodedMode, QUrl::TolerantMode}) {
            QUrl url(QStringLiteral("http://127.0.0.1:%1/p").arg(m_server->port()));
            url.setHost(QStringLiteral("127.0.0.1") + text, mode);
            usable += url.host().isEmpty() ? 0 : 1;
            QVERIFY(url.host().isEmpty() || url.host() == QLatin1String("127.0.0.1"));
            SockJSConnector connector;
            ConnectorProbe probe(&connector);
            QVERIFY(probe.open(url, SockJSConnector::GetDefaultProtocols()));
            QCOMPARE(probe.events(), QStringList());
        }
        QVERIFY(usable > 0 || m_server->connections() == 0);
    }

    void pathOfAnXHRRequest_data() { texts(); }
    void pathOfAnXHRRequest()
    {
        QFETCH(QString, text);
        m_server->answer("/xhr", plain("o\n"));
        QVERIFY(start());
        QTRY_COMPARE(m_server->count("/xhr"), 2);
        const LogRecorder log;
        m_session->transport->doRequestXHR(QStringLiteral("/a") + text, QString());
        QCOMPARE(log.debug("[SockJSXHRPolling] Can't make request").size(), 1);
        m_session->transport->close();
        QTRY_COMPARE(m_session->ends, 1);
        QCOMPARE(m_server->count(), 2);
    }

    void messageOfAnXHRTransport_data() { texts(); }
    void messageOfAnXHRTransport()
    {
        QFETCH(QString, text);
        m_server->answerAlways("/xhr_send", plain(""));
        QVERIFY(start());
        send(text);
        QTRY_COMPARE(m_server->count("/xhr_send"), 1);
        QCOMPARE(m_server->requests("/xhr_send").first().body, text.toUtf8());
        QTRY_COMPARE(m_server->count(), 2); // and the poll
    }

    void cookieOfTheBus_data() { cookies(); }
    void cookieOfTheBus()
    {
        QFETCH(QByteArray, cookie);
        m_server->answer("/xhr", plain("o\n", "Set-Cookie: " + cookie + "\r\n"));
        m_server->answer("/xhr_send", plain("", "Set-Cookie: " + cookie + "\r\n"));
        m_server->answerAlways("/xhr_send", plain(""));
        QVERIFY(start());
        QTRY_COMPARE(m_server->count("/xhr"), 2);
        send();
        send();
        QTRY_COMPARE(m_server->count("/xhr_send"), 2);
        QCOMPARE(m_session->transport->getCookieCount(), 0);
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
        auto [url, isSent] = row<QString, bool>();
        m_server->answerAlways("", plain("{}"));
        PresenterClient client(nullptr, url.replace(QLatin1String("%1"), QString::number(m_server->port())));
        const bool reached = client.checkServer(QString(), QString());
        QVERIFY(isSent || !reached);
        QVERIFY(isSent || m_server->count() == 0);
    }

    void textsOfALogin_data() { texts(); }
    // All of them are in the body, but for the provider.
    void textsOfALogin()
    {
        QFETCH(QString, text);
        m_server->answerAlways("", plain("{}"));
        PresenterClient client(nullptr, address());
        client.doLogin(text, text);
        client.doLogin(text, text, text);
        client.doGetAccessToken(text, text, text, text);
        QString registration;
        client.doLoginWithOAuth(text, text, registration);
        client.doGetOAuthAccessToken(text, text, text, text, registration);
        QCOMPARE(m_server->count(), 5);
        for (const Server::Request& request : m_server->requests())
            QCOMPARE(request.headers.value("content-length").toInt(), request.body.size());
    }

    void cookieOfTheService_data() { cookies(); }
    void cookieOfTheService()
    {
        QFETCH(QByteArray, cookie);
        m_server->answer("", plain("{}", "Set-Cookie: " + cookie + "\r\nSet-Cookie: good=1\r\n"));
        m_server->answerAlways("", plain("{}"));
        PresenterClient client(nullptr, address());
        QVERIFY(client.checkServer(QString(), QString()));
        QVERIFY(client.checkServer(QString(), QString()));
        QCOMPARE(m_server->requests().last().headers.value("cookie"), QByteArray("good=1"));
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
        location.replace("%1", QByteArray::number(m_server->port()));
        m_server->answer("", "HTTP/1.1 302 Found\r\nLocation: " + location + "\r\nContent-Length: 0\r\n\r\n");
        m_server->answerAlways("", plain("{}"));
        PresenterClient client(nullptr, address());
        client.checkServer(QString(), QString());
        client.checkServer(QString(), QString());
        QVERIFY(m_server->count() >= 1);
        QVERIFY(!client.server().contains(QLatin1String("Injected")));
    }

    void everyCharacter()
    {
        for (int character = 0; character <= 0xffff; ++character) {
            const QString hex = QString::number(character, 16);
            const bool isWord = character > ' ' && character != 0x7f;
            const bool endsALine = character == '\r' || character == '\n' || character == '\0';
            QVERIFY2(RequestText::isSafeInFirstLine(QString(QChar(character))) == isWord, qPrintable(hex));
            QVERIFY2(character > 0xff ||
                         RequestText::isSafeInLine(QByteArray(1, char(character))) != endsALine,
                     qPrintable(hex));
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
    QString address() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_server->port()); }

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
