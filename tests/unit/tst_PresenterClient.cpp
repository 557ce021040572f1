// The request engine: what goes out, which handler gets the answer, and what it gets: redirects, encodings,
// the end of the text, log lines.

#include "support/ClientTest.h"
#include "support/Gzip.h"
#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
#include "support/TypeNamed.h"

#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterClient>

#include <QNetworkAccessManager>
#include <QNetworkCookieJar>
#include <QSignalSpy>
#include <QTest>

#include <utility>

namespace {

// One request that gets \p answer, and what the client has made of it.
struct Exchange
{
    explicit Exchange(const FakeService::Answer& answer) : client(service.url())
    {
        service.expect("/a", answer);
        client.request("/a");
    }

    FakeService service;
    ClientProbe client;
    LogRecorder log;
};

} // namespace

class tst_PresenterClient : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void declaresItsSignalsAndSlotsInOrder()
    {
        QCOMPARE(
            signaturesOf(PresenterClient::staticMetaObject),
            QStringList({"signal requestProcessed()", "protected slot slotRequestFinished(QNetworkReply*)",
                         "protected slot onPingTimer()",
                         "protected slot slotSslErrors(QNetworkReply*,QList<QSslError>)",
                         "protected slot authenticationRequired(QNetworkReply*,QAuthenticator*)"}));
    }

    void baseAddressLosesOneTrailingSlash_data()
    {
        rows<QString, QString>({
            {"none", "https://host.example", "https://host.example"},
            {"one", "https://host.example/", "https://host.example"},
            {"two", "https://host.example//", "https://host.example/"},
            {"below a path", "https://host.example:8443/a/", "https://host.example:8443/a"},
            {"nothing", "", ""},
        });
    }
    void baseAddressLosesOneTrailingSlash()
    {
        const auto [given, kept] = row<QString, QString>();
        QCOMPARE(PresenterClient(nullptr, given).server(), kept);
    }

    void ownsItsNetworkManagerAndCookieJar()
    {
        QObject parent;
        auto* client = new PresenterClient(&parent, "http://127.0.0.1:1");
        QCOMPARE(client->parent(), &parent);
        const auto managers = client->findChildren<QNetworkAccessManager*>();
        QCOMPARE(managers.size(), 1);
        QCOMPARE(client->findChildren<QNetworkCookieJar*>(),
                 QList<QNetworkCookieJar*>{managers.first()->cookieJar()});
    }

    void postsJson()
    {
        const QString text = "{\"k\":\"Zoë \xf0\x9f\x8e\x93 %1\"}";
        service().expect("/tavisto/any?a=b", Answer::json("{}"));
        client().doRequest(true, QUrl(service().url() + "/tavisto/any?a=b"), text,
                           ClientProbe::successHandler());
        const FakeService::Request request = service().last();
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.header("accept-encoding"), QByteArray("identity"));
        QCOMPARE(request.header("content-type"), QByteArray("application/json; charset=UTF-8"));
        QCOMPARE(request.body, text.toUtf8());
        QVERIFY(request.header("authorization").isNull());
        QVERIFY(request.header("cookie").isNull());
        QCOMPARE(client().successes, QStringList{"{}"});
    }
    void oneHandlerGetsTheAnswer_data()
    {
        const QByteArray large(300000, 'x');
        const QByteArray error = R"({"errorMsgKeys":["x"]})";
        const auto none = QNetworkReply::NoError;
        const int lost = -1; // of one kind or another
        rows<Answer, QString, int>({
            {"200", Answer::json(R"({"data":{"name":"Zoë"}})"), R"({"data":{"name":"Zoë"}})", none},
            {"201", Answer::json("created", 201), "created", none},
            {"empty", Answer::json(""), "", none},
            {"large", Answer::json(large), large, none},
            {"line ends kept", Answer::json("a\r\nb\n"), "a\r\nb\n", none},
            {"http error", Answer::json(error, 500), error, QNetworkReply::InternalServerError},
            {"service gone", Answer::gone(), "", lost},
            {"cut short", Answer::cut(R"({"data":{}})"), "{\"dat", lost},
        });
    }
    void oneHandlerGetsTheAnswer()
    {
        const auto [answer, body, error] = row<Answer, QString, int>();
        service().expect("/a", answer);
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));
        client().request("/a");
        QCOMPARE(client().successes + client().failures, QStringList{body});
        const int seen = client().errors.value(0, QNetworkReply::NoError);
        QVERIFY(error == seen || (error < 0 && seen > 0 && seen < QNetworkReply::ContentAccessDenied));
        QCOMPARE(processed.size(), 1);
    }

    void missingHandlersAreSkipped()
    {
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));
        for (const int status : {200, 500}) {
            service().expect("/a", Answer::json("{}", status));
            client().doRequest(true, QUrl(service().url() + "/a"), QString(), nullptr);
        }
        QCOMPARE(processed.size(), 2);
    }

    void returnsAtOnceWhenNotToldToWait()
    {
        service().expect("/a", Answer::json("1"));
        client().request("/a", false);
        QVERIFY(service().requests().isEmpty());
        QVERIFY(client().successes.isEmpty());
        QTRY_COMPARE(client().successes, QStringList{"1"});
    }

    // A reply that is reported a second time finds no handler any more.
    void handlerRunsOnceBeforeRequestProcessed()
    {
        service().expect("/a", Answer::json("1"));
        QNetworkReply* reply = nullptr;
        connect(client().findChild<QNetworkAccessManager*>(), &QNetworkAccessManager::finished, this,
                [&](QNetworkReply* finished) { reply = finished; });
        int handledBefore = -1;
        connect(&client(), &PresenterClient::requestProcessed, this,
                [&] { handledBefore = int(client().successes.size()); });
        client().request("/a");
        QCOMPARE(handledBefore, 1);
        QVERIFY(reply);
        QVERIFY(QMetaObject::invokeMethod(&client(), "slotRequestFinished", Q_ARG(QNetworkReply*, reply)));
        QCOMPARE(client().successes, QStringList{"1"});
    }

    void repliesAreReleased()
    {
        service().expect("/ok", Answer::json("1"));
        service().expect("/bad", Answer::json("1", 500));
        service().expect("/moved", Answer::redirect("http://elsewhere.example/"));
        QList<QPointer<QNetworkReply>> replies;
        connect(client().findChild<QNetworkAccessManager*>(), &QNetworkAccessManager::finished, this,
                [&](QNetworkReply* reply) { replies.append(reply); });
        client().request("/ok");
        client().request("/bad");
        client().request("/moved");
        QCOMPARE(replies.size(), 3);
        for (const auto& reply : std::as_const(replies))
            QTRY_VERIFY(reply.isNull());
    }

    void replyOfNoRequestIsReleasedAndAnnounced()
    {
        service().expect("/a", Answer::json("1"));
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));
        QNetworkAccessManager manager;
        const QPointer<QNetworkReply> reply = manager.get(QNetworkRequest(QUrl(service().url() + "/a")));
        QTRY_VERIFY(reply->isFinished());
        QVERIFY(QMetaObject::invokeMethod(&client(), "slotRequestFinished", Q_ARG(QNetworkReply*, reply)));
        QCOMPARE(processed.size(), 1);
        QVERIFY(client().successes.isEmpty());
        QTRY_VERIFY(reply.isNull());
    }

    void firstErrorKeyCounts_data()
    {
        columns<QVariant, QString>();
        // null: none
        const auto row = [](const char* name, const QVariant& keys, const QString& error) {
            QTest::newRow(name) << QVariant(QVariantMap{{"errorMsgKeys", keys}}) << error;
        };
        row("contains error", QVariantList{"login.error.password"}, "login.error.password");
        row("is error", QVariantList{"error"}, "error");
        row("inside a word", QVariantList{"Terrors"}, "Terrors");
        row("first of two", QVariantList{"a.error", "b.error"}, "a.error");
        row("only the second", QVariantList{"login.refused", "b.error"}, QString());
        row("capital", QVariantList{"login.Error"}, QString());
        row("empty list", QVariantList(), QString());
        row("first is empty", QVariantList{"", "b.error"}, QString());
        row("first is null", QVariantList{QVariant(), "b.error"}, QString());
        row("first is an object", QVariantList{QVariantMap{{"error", "error"}}}, QString());
        row("string list", QStringList{"a.error"}, "a.error");
        row("text instead of a list", "a.error", QString());
        row("object instead of a list", QVariantMap{{"error", "error"}}, QString());
        row("null instead of a list", QVariant::fromValue(nullptr), QString());
        QTest::newRow("no key") << QVariant(QVariantMap{{"infoMsgKeys", QVariantList{"a.error"}}})
                                << QString();
        QTest::newRow("no map") << QVariant(QVariantList{"a.error"}) << QString();
        QTest::newRow("nothing") << QVariant() << QString();
    }
    void firstErrorKeyCounts()
    {
        const auto [reply, error] = row<QVariant, QString>();
        QString found = "earlier";
        QCOMPARE(client().isErrorInErrorMsgKeys(reply, found), !error.isNull());
        QCOMPARE(found, error);
        QCOMPARE(found.isNull(), error.isNull());
        QVERIFY(client().lastError().isNull());
    }

    void decompressesLzma()
    {
        QString packed;
        QVERIFY(Lzma::compress64("Zoë \"%1\"\n", &packed));
        QString text;
        QVERIFY(client().LzmaDecompress64(packed, &text));
        QVERIFY(!client().LzmaDecompress64("AAAAAAAAAAAAAAAAAA==", &text)); // 13 bytes
        QCOMPARE(text, QString::fromUtf8("Zoë \"%1\"\n"));
    }

    // Else the bodies of the requests that follow on this connection wait for 40 ms each.
    void connectionOfTheCheckSendsAtOnce()
    {
        service().expect("/tavisto", Answer::json("{}"));
        QVERIFY(client().checkServer(QString(), QString()));
        QCOMPARE(ProcessResources::connectionsThatSendAtOnce(service().serverPort()), 1);
    }

    void logsTheBody()
    {
        const Exchange exchange(Answer::json("[1,2]"));
        const QStringList lines = exchange.log.debug("[REST Response] ");
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines.first().contains("[1,2]"));
        for (const LogRecorder::Message& message : exchange.log.messages())
            QCOMPARE(message.category, QStringLiteral("default"));
        QVERIFY(exchange.log.debug().filter("ERROR").isEmpty());
        QVERIFY(exchange.log.warnings().isEmpty());
    }

    void logsErrorAndBody()
    {
        service().expect("/a", Answer::json("[1,2]", 500));
        QString errorString;
        connect(client().findChild<QNetworkAccessManager*>(), &QNetworkAccessManager::finished, this,
                [&](QNetworkReply* reply) { errorString = reply->errorString(); });
        const LogRecorder log;
        client().request("/a");
        QVERIFY(!errorString.isEmpty());
        QCOMPARE(log.debug("[REST Response] ").size(), 1);
        QString line = log.debug().last();
        line.replace("\\n", "\n"); // Qt's quoting of texts in debug output is as good
        QVERIFY2(line.contains("ERROR: " + errorString + "\nRESPONSE: [1,2]"), qPrintable(line));
    }

    void redirectChangesTheBaseAddress_data()
    {
        // The statuses are in tst_CookiesAndRedirects.
        rows<QByteArray, QString>({
            {"no path", "https://moved.example", "https://moved.example"},
            {"query", "https://moved.example/login?next=%2F#top", "https://moved.example"},
            {"port", "https://moved.example:8443/", "https://moved.example:8443"},
            {"port of https", "https://moved.example:443/", "https://moved.example:443"},
            {"port of http", "https://moved.example:80/", "https://moved.example"},
            {"http", "http://moved.example/a", "http://moved.example"},
            {"http, its port", "http://moved.example:80/a", "http://moved.example"},
            {"http, another port", "http://moved.example:8080/a", "http://moved.example:8080"},
            {"http, port of https", "http://moved.example:443/a", "http://moved.example:443"},
            // Qt shows the names of this domain decoded, unless it is asked for the encoded one.
            {"name", u8"https://prüfling.info/", "https://xn--prfling-o2a.info"},
        });
    }
    void redirectChangesTheBaseAddress()
    {
        const auto [location, server] = row<QByteArray, QString>();
        service().expect("/tavisto", Answer::redirect(location));
        QVERIFY(client().checkServer(QString(), QString()));
        QVERIFY(client().isServerReachable());
        QCOMPARE(client().server(), server);
    }

    void redirectEndsTheOperation()
    {
        service().expect("/tavisto/login/submit", Answer::redirect("https://moved.example/"));
        const LogRecorder log;
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));
        QVERIFY(!client().doLogin("u", "p"));
        QCOMPARE(processed.size(), 1);
        QVERIFY(log.debug("[REST Response]").isEmpty());
        QVERIFY(client().lastError().isNull());
        QVERIFY(client().isServerReachable());
        QCOMPARE(client().server(), QStringLiteral("https://moved.example"));
    }

    void otherRedirectsAreAnswersLikeAnyOther_data()
    {
        rows<QByteArray>({
            {"another scheme", "ftp://moved.example/"},
            {"wss", "wss://moved.example/"},
            {"no scheme", "/elsewhere"},
        });
    }
    void otherRedirectsAreAnswersLikeAnyOther()
    {
        const auto [location] = row<QByteArray>();
        service().expect("/tavisto", Answer::redirect(location));
        service().expect("/a", Answer::redirect(location));
        QVERIFY(!client().checkServer(QString(), QString())); // an empty body is no JSON
        client().request("/a");
        QCOMPARE(client().successes.size() + client().failures.size(), 1);
        QCOMPARE(client().server(), service().url());
    }

    void bodyIsDecoded_data()
    {
        const QByteArray text = R"({"data":{"name":"Zoë"}})";
        const QByteArray nul("{\"a\":1}\0garbage\0", 16);
        QByteArray corrupt = Gzip::gzip(QByteArray(5000, 'x'));
        corrupt[corrupt.size() - 8] = char(corrupt.at(corrupt.size() - 8) ^ 1);
        rows<QByteArray, QByteArray, int, QString>({
            {"plain, up to its NUL", "identity", nul, 200, "{\"a\":1}"},
            {"gzip", "gzip", Gzip::gzip(text), 200, text},
            {"gzip of a failure", "gzip", Gzip::gzip(text), 500, text},
            {"gzip, up to its NUL", "gzip", Gzip::gzip(nul), 200, "{\"a\":1}"},
            {"another name, which is no gzip", "GZIP", text, 200, text},
            {"no byte", "gzip", "", 200, ""},
            {"4 bytes", "gzip", QByteArray("\x1f\x8b\x08\x00", 4), 200, ""},
            {"5 bytes", "gzip", QByteArray("\x1f\x8b\x08\x00\x00", 5), 200, ""},
            {"no gzip", "gzip", text, 200, ""},
            {"wrong checksum", "gzip", corrupt, 200, ""},
        });
    }
    void bodyIsDecoded()
    {
        const auto [encoding, bytes, status, body] = row<QByteArray, QByteArray, int, QString>();
        const Exchange exchange(Answer::json(bytes, status).with("content-encoding", encoding));
        QCOMPARE(exchange.client.successes + exchange.client.failures, QStringList{body});
        const QStringList lines = exchange.log.debug("[REST Responze.gzip] Compressed size: ");
        QCOMPARE(lines.size(), encoding == "gzip" ? 1 : 0);
        QVERIFY(lines.isEmpty() || lines.first().trimmed().endsWith(' ' + QString::number(bytes.size())));
        const QStringList truncated{"gUncompress: Input data is truncated"};
        QCOMPARE(exchange.log.warnings(), bytes.size() < 5 ? truncated : QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClient)
#include "tst_PresenterClient.moc"
