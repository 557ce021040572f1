// What becomes of an answer: redirects, encodings, the end of the text, log lines.

#include "support/ClientTest.h"
#include "support/Gzip.h"
#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/PresenterClient>

#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTest>

using Answer = FakeService::Answer;

namespace {

// One request that gets \p answer, and what the client has made of it.
struct Exchange
{
    explicit Exchange(const Answer& answer) : client(service.url())
    {
        service.expect("/a", answer);
        client.request("/a");
    }

    FakeService service;
    ClientProbe client;
    LogRecorder log;
};

} // namespace

class tst_PresenterClientReplies : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
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

    void redirectCallsNoHandler()
    {
        const Exchange exchange(Answer::redirect("https://moved.example/"));

        QVERIFY(exchange.client.successes.isEmpty());
        QVERIFY(exchange.client.failures.isEmpty());
        QVERIFY(exchange.log.debug("[REST Response]").isEmpty());
    }

    void redirectEndsTheOperation()
    {
        service().expect("/tavisto/login/submit", Answer::redirect("https://moved.example/"));
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));

        QVERIFY(!client().doLogin("u", "p"));
        QCOMPARE(processed.size(), 1);
        QVERIFY(client().lastError().isNull());
        QVERIFY(client().isServerReachable());
        QCOMPARE(client().server(), QStringLiteral("https://moved.example"));
    }

    void redirectIsFollowedByTheNextRequest()
    {
        FakeService oldService;
        FakeService newService;
        oldService.expect("/tavisto", Answer::redirect(newService.url().toUtf8() + "/some/where?x=1"));
        newService.expect("/tavisto", Answer::json("{}"));
        PresenterClient client(nullptr, oldService.url());

        QVERIFY(client.checkServer(QString(), QString()));
        QCOMPARE(client.server(), newService.url());
        QVERIFY(newService.requests().isEmpty());
        QVERIFY(client.checkServer(QString(), QString()));
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

    void gzipIsInflated()
    {
        const QByteArray text = R"({"data":{"name":"Zoë"}})";
        const QByteArray packed = Gzip::gzip(text);
        const Exchange exchange(Answer::json(packed).with("Content-Encoding", "gzip"));

        QCOMPARE(exchange.client.successes, QStringList{QString::fromUtf8(text)});
        const QStringList lines = exchange.log.debug("[REST Responze.gzip] Compressed size: ");
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().trimmed().endsWith(' ' + QString::number(packed.size())),
                 qPrintable(lines.first()));
        QCOMPARE(exchange.log.debug("[REST Response] ").size(), 1);
    }

    void gzipOfAFailureIsInflated()
    {
        const Exchange exchange(Answer::json(Gzip::gzip("{\"a\":1}"), 500).with("content-encoding", "gzip"));

        QCOMPARE(exchange.client.failures, QStringList{"{\"a\":1}"});
    }

    void gzipNameIsCaseSensitive()
    {
        service().expect("/tavisto", Answer::json(Gzip::gzip("{}")).with("Content-Encoding", "GZIP"));
        service().expect("/tavisto", Answer::json("{}").with("Content-Encoding", "GZIP"));
        const LogRecorder log;

        QVERIFY(!client().checkServer(QString(), QString()));
        QVERIFY(client().checkServer(QString(), QString()));
        QVERIFY(log.debug("[REST Responze.gzip]").isEmpty());
    }

    void badGzipGivesAnEmptyBody_data()
    {
        QByteArray corrupt = Gzip::gzip(QByteArray(5000, 'x'));
        corrupt[corrupt.size() - 8] = char(corrupt.at(corrupt.size() - 8) ^ 1);
        rows<QByteArray, bool>({
            {"no byte", QByteArray(), true},
            {"4 bytes", QByteArray("\x1f\x8b\x08\x00", 4), true},
            {"5 bytes", QByteArray("\x1f\x8b\x08\x00\x00", 5), false},
            {"plain text", R"({"data":{}})", false},
            {"wrong checksum", corrupt, false},
        });
    }

    void badGzipGivesAnEmptyBody()
    {
        const auto [bytes, warned] = row<QByteArray, bool>();

        const Exchange exchange(Answer::json(bytes).with("Content-Encoding", "gzip"));

        QCOMPARE(exchange.client.successes, QStringList{QString()});
        QCOMPARE(exchange.log.warnings(),
                 warned ? QStringList{"gUncompress: Input data is truncated"} : QStringList());
    }

    void bodyEndsAtItsFirstNul_data()
    {
        rows<bool>({
            {"plain", false},
            {"gzip", true},
        });
    }

    void bodyEndsAtItsFirstNul()
    {
        const auto [gzip] = row<bool>();
        const QByteArray body("{\"a\":1}\0garbage\0", 16);
        Answer answer = Answer::json(gzip ? Gzip::gzip(body) : body);
        if (gzip)
            answer.with("Content-Encoding", "gzip");
        service().expect("/a", answer);
        service().expect("/tavisto", answer);
        client().request("/a");

        QCOMPARE(client().successes, QStringList{"{\"a\":1}"});
        QVERIFY(client().checkServer(QString(), QString()));
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientReplies)

#include "tst_PresenterClientReplies.moc"
