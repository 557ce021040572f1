// Whether the service is there, and whether it is the service.

#include "support/ClientTest.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"

#include <CalyxClient/PresenterClient>

#include <QTest>

class tst_PresenterClientServerCheck : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void checkServerPostsAnEmptyBody()
    {
        service().expect("/tavisto", Answer::json("{}"));

        QVERIFY(client().checkServer(QString(), QString()));
        QCOMPARE(service().last().method, QByteArray("POST"));
        QCOMPARE(service().last().body, QByteArray());
        QCOMPARE(service().last().header("content-type"), QByteArray("application/json; charset=UTF-8"));
    }

    // Else the bodies of the requests that follow on this connection wait for 40 ms each.
    void connectionOfTheCheckSendsAtOnce()
    {
        service().expect("/tavisto", Answer::json("{}"));

        QVERIFY(client().checkServer(QString(), QString()));
        QCOMPARE(ProcessResources::connectionsThatSendAtOnce(service().serverPort()), 1);
    }

    void checkServer_data()
    {
        rows<int, QByteArray, bool>({
            {"empty object", 200, "{}", true},
            {"array", 200, "[]", true},
            {"error envelope", 200, R"({"success":false,"errorMsgKeys":["a.error"]})", true},
            {"html", 200, "<html></html>", false},
            {"empty body", 200, QByteArray(), false},
            {"half an object", 200, "{\"a\":", false},
            {"http error", 500, "{}", false},
            {"not found", 404, "{}", false},
        });
    }

    void checkServer()
    {
        const auto [status, body, reachable] = row<int, QByteArray, bool>();
        service().expect("/tavisto", Answer::json("{}"));
        service().expect("/tavisto", Answer::json(body, status));

        QVERIFY(client().checkServer(QString(), QString()));
        QCOMPARE(client().checkServer(QString(), QString()), reachable);
        QCOMPARE(client().isServerReachable(), reachable);
    }

    void checkServerWithoutAnyService()
    {
        service().expect("/tavisto", Answer::gone());

        QVERIFY(!client().checkServer(QString(), QString()));
        QVERIFY(!client().checkServer(QString(), QString())); // nobody listens any more
        QVERIFY(client().lastError().isNull());
    }

    void checkServerClearsTheLastError()
    {
        service().expect("/tavisto", Answer::json("{}"));
        service().expect("/tavisto", Answer::json(R"({"errorMsgKeys":["b.error"]})", 500));
        client().loginFailureResponse(nullptr, R"({"errorMsgKeys":["a.error"]})");
        QCOMPARE(client().lastError(), QStringLiteral("a.error"));

        QVERIFY(client().checkServer(QString(), QString()));
        QVERIFY(client().lastError().isNull());
        QVERIFY(!client().checkServer(QString(), QString()));
        QVERIFY(client().lastError().isNull()); // it has no failure handler
    }

    void serverCheckLooksOnlyAtTheSyntax_data()
    {
        rows<QString, bool>({
            {"object", "{\"success\":false}", true},
            {"array", " [ ] ", true},
            {"null text", QString(), false},
            {"blank", " ", false},
            {"garbage behind", "{} x", false},
            {"bare number", "1", false},
        });
    }

    void serverCheckLooksOnlyAtTheSyntax()
    {
        const auto [body, reachable] = row<QString, bool>();
        client().serverCheckResponse("{}");
        QVERIFY(client().isServerReachable());
        client().serverCheckResponse(body);

        QCOMPARE(client().isServerReachable(), reachable);
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientServerCheck)

#include "tst_PresenterClientServerCheck.moc"
