// The request engine: what goes out, and which handler gets the answer.

#include "support/ClientTest.h"
#include "support/Rows.h"

#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterClient>

#include <QMetaMethod>
#include <QNetworkAccessManager>
#include <QNetworkCookieJar>
#include <QSignalSpy>
#include <QTest>

class tst_PresenterClient : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void declaresItsSignalAndSlotsInOrder()
    {
        const QMetaObject& meta = PresenterClient::staticMetaObject;
        QList<QByteArray> signatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            signatures.append(meta.method(i).methodSignature());
        QCOMPARE(signatures,
                 (QList<QByteArray>{"requestProcessed()", "slotRequestFinished(QNetworkReply*)",
                                    "onPingTimer()", "slotSslErrors(QNetworkReply*,QList<QSslError>)",
                                    "authenticationRequired(QNetworkReply*,QAuthenticator*)"}));
        QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
        for (int i = meta.methodOffset() + 1; i < meta.methodCount(); ++i) {
            QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
            QCOMPARE(meta.method(i).access(), QMetaMethod::Protected);
        }
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

    void startsLoggedOutWithNullTexts()
    {
        const PresenterClient client(nullptr, "http://127.0.0.1:1");

        QVERIFY(!client.isLoggedIn());
        QVERIFY(!client.isServerReachable());
        QVERIFY(client.lastError().isNull());
        QVERIFY(client.userId().isNull());
        QVERIFY(client.registration().isNull());
        QVERIFY(client.sessionCode().isNull());
        QVERIFY(client.sessionToken().isNull());
        QVERIFY(client.userToken().isNull());
        QVERIFY(client.collabServerUrl().isNull());
        QVERIFY(client.resourceId().isNull());
        QVERIFY(client.resourcePath().isNull());
        QVERIFY(client.sockJSProtocols().isEmpty());
        QVERIFY(client.learners().isEmpty());
        QVERIFY(!client.collab());
        QCOMPARE(PresenterClient::MULTIPART_BOUNDARY, QStringLiteral("----boundary"));
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

    void sendsItsOwnCookiesBack()
    {
        service().expect("/a", Answer::json("{}").with("Set-Cookie", "JSESSIONID=s1; Path=/; HttpOnly"));
        service().expect("/b", Answer::json("{}"));
        service().expect("/c", Answer::json("{}"));
        client().request("/a");
        client().request("/b");
        ClientProbe(service().url()).request("/c");

        QVERIFY(service().requests().at(0).header("cookie").isNull());
        QCOMPARE(service().requests().at(1).header("cookie"), QByteArray("JSESSIONID=s1"));
        QVERIFY(service().requests().at(2).header("cookie").isNull());
    }

    void success_data()
    {
        rows<int, QByteArray>({
            {"200", 200, R"({"data":{"name":"Zoë"}})"},
            {"201", 201, "created"},
            {"empty", 200, QByteArray()},
            {"large", 200, QByteArray(300000, 'x')},
            {"line ends kept", 200, "a\r\nb\n"},
        });
    }

    void success()
    {
        const auto [status, body] = row<int, QByteArray>();
        service().expect("/a", Answer::json(body, status));
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));
        client().request("/a");

        QCOMPARE(client().successes, QStringList{QString::fromUtf8(body)});
        QVERIFY(client().failures.isEmpty());
        QCOMPARE(processed.size(), 1);
    }

    void errorsGoToTheFailureHandler_data()
    {
        rows<Answer, QString, bool>({
            {"http error", Answer::json(R"({"errorMsgKeys":["x"]})", 500), R"({"errorMsgKeys":["x"]})", true},
            {"no answer, service gone", Answer::gone(), QString(), false},
            {"answer cut short", Answer::cut(R"({"data":{}})"), "{\"dat", false},
        });
    }

    void errorsGoToTheFailureHandler()
    {
        const auto [answer, body, isHttp] = row<Answer, QString, bool>();
        service().expect("/a", answer);
        const QSignalSpy processed(&client(), SIGNAL(requestProcessed()));
        client().request("/a");

        QVERIFY(client().successes.isEmpty());
        QCOMPARE(client().failures, QStringList{body});
        QVERIFY(client().errors.first() != QNetworkReply::NoError);
        QCOMPARE(client().errors.first() == QNetworkReply::InternalServerError, isHttp);
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

    void handlerRunsBeforeRequestProcessed()
    {
        service().expect("/a", Answer::json("1"));
        int handledBefore = -1;
        connect(&client(), &PresenterClient::requestProcessed, this,
                [&] { handledBefore = client().successes.size(); });
        client().request("/a");

        QCOMPARE(handledBefore, 1);
    }

    // A reply that is reported a second time finds no handler any more.
    void callbackIsGoneWhenRequestProcessedIsEmitted()
    {
        service().expect("/a", Answer::json("1"));
        QNetworkReply* reply = nullptr;
        connect(client().findChild<QNetworkAccessManager*>(), &QNetworkAccessManager::finished, this,
                [&](QNetworkReply* finished) { reply = finished; });
        client().request("/a");
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
        for (const auto& reply : qAsConst(replies))
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
};

QTEST_GUILESS_MAIN(tst_PresenterClient)

#include "tst_PresenterClient.moc"
