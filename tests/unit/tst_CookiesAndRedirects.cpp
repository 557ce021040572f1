#include "base/SafeCookieJar.h"
#include "support/ConnectorProbe.h"
#include "support/FakeService.h"
#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/ScriptedHttpServer.h"
#include "support/TestCertificates.h"
#include "support/TransportTest.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/SockJSConnector>

#include <QNetworkCookie>
#include <QUrl>
#include <QtTest>

using Answer = FakeService::Answer;
using HttpText::plain;
using Server = ScriptedHttpServer;
using Session = TransportSession;

namespace {

/// Answers at another address than the others, which is another host.
class ElsewhereService : public FakeService
{
public:
    ElsewhereService()
    {
        close();
        if (!listen(QHostAddress("127.0.0.2")))
            qFatal("Cannot listen on 127.0.0.2.");
    }
    QByteArray address() const { return "http://127.0.0.2:" + QByteArray::number(serverPort()); }
};

QByteArray redirection(quint16 port, const char* status = "302 Found")
{
    return QByteArray("HTTP/1.1 ") + status + "\r\nLocation: http://127.0.0.1:" + QByteArray::number(port) +
           "/elsewhere\r\nContent-Length: 0\r\n\r\n";
}

bool check(PresenterClient* client)
{
    return client->checkServer(QString(), QString());
}

QByteArray sent(const SafeCookieJar& jar, const QByteArray& url)
{
    QByteArray text;
    const QList<QNetworkCookie> cookies = jar.cookiesForUrl(QUrl(QLatin1String(url.constData())));
    for (const QNetworkCookie& cookie : cookies)
        text += cookie.toRawForm(QNetworkCookie::NameAndValueOnly) + ';';
    return text;
}

bool set(SafeCookieJar* jar, const QByteArray& header, const QByteArray& url)
{
    return jar->setCookiesFromUrl(QNetworkCookie::parseCookies(header), QUrl(QLatin1String(url.constData())));
}

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

/// Where a redirect leads, which cookies are kept, and who gets them; and that an address that says https or
/// wss gets TLS or nothing, also from a server that speaks plain HTTP there.
class tst_CookiesAndRedirects : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("http_proxy");
        qRegisterMetaType<QStringMap>("QStringMap");
    }

    void cookiesStayWithTheirService()
    {
        FakeService here;
        ElsewhereService there;
        here.expect("/tavisto", Answer::redirect(there.address()).with("Set-Cookie", "here=1; Path=/"));
        there.expect("/tavisto", Answer::redirect(here.url().toUtf8()).with("Set-Cookie", "there=1; Path=/"));
        here.expect("/tavisto", Answer::redirect(there.address()));
        there.expect("/tavisto", Answer::json("{}"));
        PresenterClient client(nullptr, here.url());
        for (int i = 0; i < 4; ++i)
            QVERIFY(check(&client));
        QVERIFY(there.requests().first().header("cookie").isNull());
        QCOMPARE(here.last().header("cookie"), QByteArray("here=1"));
        QCOMPARE(there.last().header("cookie"), QByteArray("there=1"));
    }

    void cookiesGoAlongToHttps()
    {
        const TestCertificates::TrustedRoot trusted;
        FakeService clear;
        FakeService secure(TestCertificates::server("loopback"));
        clear.expect("/tavisto", Answer::redirect(secure.url().toUtf8()).with("Set-Cookie", "a=1; Path=/"));
        secure.expect("/tavisto", Answer::json("{}"));
        PresenterClient client(nullptr, clear.url());
        QVERIFY(check(&client));
        QVERIFY(check(&client));
        QCOMPARE(client.server(), secure.url());
        QCOMPARE(secure.last().header("cookie"), QByteArray("a=1"));
    }

    void redirectSendsNothingByItself_data()
    {
        columns<int, bool>();
        for (const int status : {301, 302, 303, 307, 308})
            QTest::addRow("%d", status) << status << true;
        for (const int status : {200, 201, 300, 304, 305, 401, 503})
            QTest::addRow("%d", status) << status << false;
    }
    // Neither the password nor the request: both go to where the host has been told that they go.
    void redirectSendsNothingByItself()
    {
        const auto [status, moves] = row<int, bool>();
        FakeService here;
        ElsewhereService there;
        here.expect("/tavisto/login/submit", Answer::redirect(there.address() + "/tavisto", status));
        PresenterClient client(nullptr, here.url());
        QVERIFY(!client.doLogin("teacher", "chalk"));
        QCOMPARE(client.server(), moves ? QString::fromUtf8(there.address()) : here.url());
        FakeService& next = moves ? there : here;
        next.expect("/tavisto", Answer::json("{}"));
        QVERIFY(check(&client));
        QCOMPARE(there.requests().size(), moves ? 1 : 0);
    }

    void redirectToClearTextIsNotFollowed()
    {
        const TestCertificates::TrustedRoot trusted;
        const Server clear;
        FakeService secure(TestCertificates::server("loopback"));
        const auto target = "http://127.0.0.1:" + QByteArray::number(clear.port()) + '/';
        const QByteArray refusal = R"({"errorMsgKeys":["error.moved"]})";
        PresenterClient client(nullptr, secure.url());
        for (const int status : {301, 302, 303, 307, 308}) {
            secure.expect("/tavisto/login/submit",
                          Answer::json(refusal, status).with("Location", target).with("Set-Cookie", "a=1"));
            QVERIFY(!client.doLogin("teacher", "chalk"));
            QCOMPARE(client.server(), secure.url());
        }
        QCOMPARE(clear.connections(), 0);
    }

    void redirectTargetLosesItsCredentials()
    {
        FakeService here;
        ElsewhereService there;
        QByteArray target = there.address();
        here.expect("/tavisto", Answer::redirect(target.replace("http://", "http://user:word@")));
        there.expect("/tavisto",
                     Answer::json("{}", 401).with("WWW-Authenticate", "Basic realm=\"classroom\""));
        PresenterClient client(nullptr, here.url());
        QVERIFY(check(&client));
        QCOMPARE(client.server().toUtf8(), there.address());
        QVERIFY(!check(&client));
        QVERIFY(there.last().header("authorization").isNull());
    }

    void busIsNotFollowedElsewhere_data()
    {
        columns<int>();
        const QMap<SockJSConnector::PROTOCOL_TYPE, QString> protocols = SockJSConnector::PROTOCOL_TYPE_STR();
        for (auto protocol = protocols.begin(); protocol != protocols.end(); ++protocol)
            QTest::newRow(qPrintable(protocol.value())) << int(protocol.key());
    }
    // An answer is an answer to these, whatever its status says.
    void busIsNotFollowedElsewhere()
    {
        const auto [protocol] = row<int>();
        const Server elsewhere;
        Server server;
        server.answerAlways("", redirection(elsewhere.port()));
        SockJSConnector connector;
        ConnectorProbe probe(&connector);
        const QUrl url(QStringLiteral("http://127.0.0.1:%1/p").arg(server.port()));
        QVERIFY(probe.open(url, {SockJSConnector::PROTOCOL_TYPE(protocol)}));
        const int asked = protocol == SockJSConnector::WEBSOCKET ? 1 : 2;
        QTRY_VERIFY(server.count() >= asked);
        QCOMPARE(probe.events(), QStringList());
        QCOMPARE(elsewhere.connections(), 0);
    }

    void sendIsNotFollowedElsewhere()
    {
        const Server elsewhere;
        Server server;
        server.answer("/xhr_send", redirection(elsewhere.port()));
        server.answer("/xhr_send", redirection(elsewhere.port(), "307 Temporary Redirect"));
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.start(server));
        for (int i = 0; i < 3; ++i)
            session.transport->sendTextMessage("[\"secret\"]");
        QTRY_COMPARE(server.count("/xhr_send"), 3);
        QCOMPARE(elsewhere.connections(), 0);
    }

    void busKeepsItsCookiesToItself_data()
    {
        rows<QByteArray, bool>({
            {"none", QByteArray(), true},
            {"its path", "; Path=/p", true},
            {"its address", "; Domain=127.0.0.1", true},
            {"another address", "; Domain=127.0.0.2", false},
            {"the end of its address", "; Domain=.0.0.1", false},
            {"another path", "; Path=/other", false},
            {"secure", "; Secure", false},
            {"expired", "; Max-Age=0", false},
        });
    }
    void busKeepsItsCookiesToItself()
    {
        const auto [attributes, isSent] = row<QByteArray, bool>();
        Server server;
        server.answer("/xhr", plain("o\n", "Set-Cookie: a=1" + attributes + "\r\n"));
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count("/xhr"), 2);
        session.transport->sendTextMessage("[]");
        QTRY_COMPARE(server.count("/xhr_send"), 1);
        QCOMPARE(server.requests("/xhr").last().headers.contains("cookie"), isSent);
        QCOMPARE(server.requests("/xhr_send").last().headers.contains("cookie"), isSent);
        // Another transport begins without.
        server.answer("/xhr", plain("o\n"));
        Session other;
        QVERIFY(other.start(server));
        QTRY_COMPARE(other.texts, QStringList("o"));
        QTRY_COMPARE(server.count("/xhr"), 4);
        QVERIFY(!server.requests("/xhr").last().headers.contains("cookie"));
    }

    void controlCharactersAreRefused_data()
    {
        columns<QByteArray, QByteArray>();
        const QList<QByteArray> breaking{"\r", "\n", "\r\n", QByteArray(1, '\0')};
        for (const QByteArray& text : breaking) {
            const QByteArray hex = text.toHex();
            QTest::addRow("%s in the value", hex.constData()) << QByteArray("a") << '1' + text + "X: 1";
            QTest::addRow("%s in the name", hex.constData()) << 'a' + text + 'b' << QByteArray("1");
        }
    }
    void controlCharactersAreRefused()
    {
        const auto [name, value] = row<QByteArray, QByteArray>();
        SafeCookieJar jar("[Tag]", nullptr);
        const LogRecorder log;
        QVERIFY(!jar.setCookiesFromUrl({QNetworkCookie(name, value)}, QUrl("http://127.0.0.1/")));
        QCOMPARE(sent(jar, "http://127.0.0.1/"), QByteArray());
        QCOMPARE(log.debug("[Tag] Refused a cookie").size(), 1);
    }

    void harmlessOnesAreKept_data()
    {
        rows<QByteArray, QByteArray>({
            {"plain", "a=1", "a=1;"},
            {"a tab", "a=1\t2", "a=1\t2;"},
            {"a blank", "a=1 2", "a=1 2;"},
            {"beyond ASCII", "a=\xc3\xa4", "a=\xc3\xa4;"},
            {"beside a bad one", "a=1\nb=2\r3\nc=4", "a=1;c=4;"},
            {"its own address as domain", "a=1; Domain=127.0.0.1", "a=1;"},
            {"its own address, a point before it", "a=1; Domain=.127.0.0.1", "a=1;"},
        });
    }
    void harmlessOnesAreKept()
    {
        const auto [header, expected] = row<QByteArray, QByteArray>();
        SafeCookieJar jar("[Tag]", nullptr);
        set(&jar, header, "http://127.0.0.1/");
        QCOMPARE(sent(jar, "http://127.0.0.1/"), expected);
    }

    // A server could have each request take longer than the one before, and be larger.
    void theLatestHundredAreKept()
    {
        SafeCookieJar jar("[Tag]", nullptr);
        QByteArray expected;
        for (int i = 0; i < 200; ++i) {
            const QByteArray cookie = 'a' + QByteArray::number(i) + "=1";
            QVERIFY(set(&jar, cookie, "http://127.0.0.1/"));
            QVERIFY(set(&jar, "balancer=1", "http://127.0.0.1/"));
            if (i > 100)
                expected += cookie + ';';
        }
        QCOMPARE(sent(jar, "http://127.0.0.1/"), expected + "balancer=1;");
    }

    void cookiesGoToNoOtherHost_data()
    {
        using Texts = QList<QByteArray>;
        rows<QByteArray, Texts, Texts>({
            {"address", "127.0.0.1", Texts{".0.0.1", "0.0.1", ".1", "1", "127.0.0.2", ".127.0.0.1", "local"},
             Texts{"10.0.0.1", "127.0.0.2", "x.127.0.0.1"}},
            {"host of one name, whose own it is", "localhost", Texts{"localhost", ".localhost", "LOCALHOST"},
             Texts{"host", "otherlocalhost"}},
            {"name", "school.example",
             Texts{"school.example", "other.example", "example", ".example", ".", "", "none"},
             Texts{"other.example", "example", "notschool.example", "school.example.org"}},
        });
    }
    void cookiesGoToNoOtherHost()
    {
        const auto [own, domains, others] = row<QByteArray, QList<QByteArray>, QList<QByteArray>>();
        for (const QByteArray& domain : domains) {
            SafeCookieJar jar("[Tag]", nullptr);
            set(&jar, domain == "none" ? "a=1" : "a=1; Domain=" + domain, "http://" + own + '/');
            if (own == "localhost")
                QCOMPARE(sent(jar, "http://localhost/"), QByteArray("a=1;"));
            for (const QByteArray& other : others)
                QVERIFY2(sent(jar, "http://" + other + '/').isEmpty(), domain.constData());
        }
    }

    void busGetsTlsOnly_data()
    {
        columns<QString, QList<int>>();
        const QList<QPair<const char*, QList<int>>> entries = {
            {"websocket", {1}}, {"xhr-streaming", {2}}, {"xhr-polling", {4}}, {"all", {1, 2, 4}}};
        for (const char* scheme : {"https", "wss", "HTTPS", "WSS"}) {
            for (const auto& [name, protocols] : entries)
                QTest::addRow("%s, %s", scheme, name) << scheme << protocols;
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

QTEST_GUILESS_MAIN(tst_CookiesAndRedirects)
#include "tst_CookiesAndRedirects.moc"
