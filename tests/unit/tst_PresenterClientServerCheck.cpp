// Whether the service is there, and whether it is the service.

#include "support/FakeService.h"

#include <CalyxClient/PresenterClient>

#include <QTest>

using Answer = FakeService::Answer;

class tst_PresenterClientServerCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void checkServerPostsAnEmptyBody()
    {
        FakeService service;
        service.expect("/tavisto", Answer::json("{}"));
        PresenterClient client(nullptr, service.url());

        QVERIFY(client.checkServer(QString(), QString()));
        QCOMPARE(service.last().method, QByteArray("POST"));
        QCOMPARE(service.last().body, QByteArray());
        QCOMPARE(service.last().header("content-type"), QByteArray("application/json; charset=UTF-8"));
    }

    void checkServer_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("reachable");

        QTest::newRow("empty object") << 200 << QByteArray("{}") << true;
        QTest::newRow("array") << 200 << QByteArray("[]") << true;
        QTest::newRow("error envelope")
            << 200 << QByteArray(R"({"success":false,"errorMsgKeys":["a.error"]})") << true;
        QTest::newRow("html") << 200 << QByteArray("<html></html>") << false;
        QTest::newRow("empty body") << 200 << QByteArray() << false;
        QTest::newRow("half an object") << 200 << QByteArray("{\"a\":") << false;
        QTest::newRow("http error") << 500 << QByteArray("{}") << false;
        QTest::newRow("not found") << 404 << QByteArray("{}") << false;
    }

    void checkServer()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(bool, reachable);

        FakeService service;
        service.expect("/tavisto", Answer::json("{}"));
        service.expect("/tavisto", Answer::json(body, status));
        PresenterClient client(nullptr, service.url());

        QVERIFY(client.checkServer(QString(), QString()));
        QCOMPARE(client.checkServer(QString(), QString()), reachable);
        QCOMPARE(client.isServerReachable(), reachable);
    }

    void checkServerWithoutAnyService()
    {
        FakeService service;
        service.expect("/tavisto", Answer::gone());
        PresenterClient client(nullptr, service.url());

        QVERIFY(!client.checkServer(QString(), QString()));
        QVERIFY(!client.checkServer(QString(), QString())); // nobody listens any more
        QVERIFY(client.lastError().isNull());
    }

    void checkServerClearsTheLastError()
    {
        FakeService service;
        service.expect("/tavisto", Answer::json("{}"));
        service.expect("/tavisto", Answer::json(R"({"errorMsgKeys":["b.error"]})", 500));
        PresenterClient client(nullptr, service.url());
        client.loginFailureResponse(nullptr, QStringLiteral(R"({"errorMsgKeys":["a.error"]})"));
        QCOMPARE(client.lastError(), QStringLiteral("a.error"));

        QVERIFY(client.checkServer(QString(), QString()));
        QVERIFY(client.lastError().isNull());
        QVERIFY(!client.checkServer(QString(), QString()));
        QVERIFY(client.lastError().isNull()); // it has no failure handler
    }

    void serverCheckLooksOnlyAtTheSyntax_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<bool>("reachable");

        QTest::newRow("object") << "{\"success\":false}" << true;
        QTest::newRow("array") << " [ ] " << true;
        QTest::newRow("null text") << QString() << false;
        QTest::newRow("blank") << " " << false;
        QTest::newRow("garbage behind") << "{} x" << false;
        QTest::newRow("bare number") << "1" << false;
    }

    void serverCheckLooksOnlyAtTheSyntax()
    {
        QFETCH(QString, body);
        QFETCH(bool, reachable);

        PresenterClient client(nullptr, QStringLiteral("http://127.0.0.1:1"));
        client.serverCheckResponse(QStringLiteral("{}"));
        QVERIFY(client.isServerReachable());
        client.serverCheckResponse(body);

        QCOMPARE(client.isServerReachable(), reachable);
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientServerCheck)

#include "tst_PresenterClientServerCheck.moc"
