// The live channel in the hands of its client and of the host.

#include "support/Lesson.h"

#include <CalyxClient/Lzma>
#include <CalyxClient/SockJSConnector>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <QTimer>

using Answer = FakeService::Answer;

class tst_PresenterClientChannel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hostMayAskTheClientForTheChannel()
    {
        Lesson lesson;
        lesson.expectStart();

        QVERIFY(lesson.client->startWebsocket(nullptr));
        QVERIFY(lesson.client->collab());
    }

    void unreachableBusIsNoFailure()
    {
        Lesson lesson;
        lesson.bus.stopListening();

        QVERIFY(lesson.startWell());
        QVERIFY(lesson.collab);
        QVERIFY(!lesson.collab->isConnected());
        QVERIFY(lesson.stop());
    }

    void secondStartForgetsTheFirstChannel()
    {
        Lesson lesson;
        QVERIFY(lesson.startWell());
        const QPointer<PresenterCollab> first = lesson.collab;
        QTRY_VERIFY(first->isConnected());
        QVERIFY(lesson.startWell());

        QVERIFY(lesson.collab != first);
        QCOMPARE(lesson.client->collab(), lesson.collab);
        QVERIFY(first);
        QCOMPARE(first->parent(), lesson.client.get());
        QTRY_VERIFY(lesson.collab->isConnected());
        QVERIFY(lesson.stop()); // closes the second one only
        QTRY_COMPARE(lesson.bus.endedSessions(), 1);
        QVERIFY(first->isConnected());
        lesson.client.reset();
        QVERIFY(!first);
    }

    void limitsArePassedOn()
    {
        Lesson lesson;
        QVERIFY(lesson.startWell());
        QCOMPARE(lesson.collab->connector()->openLimit(), 0);
        lesson.client->setOpenLimit(4321);
        lesson.client->setStallLimit(5432);
        lesson.client->setAsynchronousConnect(true);
        lesson.client->setEndsWithLostRequest(true);
        lesson.client->setSilenceLimit(54321);
        lesson.client->setPingInterval(65432);
        lesson.client->setPongLimit(76543);
        lesson.client->setRandomSessionIds(true);

        QVERIFY(lesson.startWell());
        const auto* connector = lesson.collab->connector();
        QCOMPARE(connector->openLimit(), 4321);
        QCOMPARE(connector->silenceLimit(), 54321);
        QCOMPARE(connector->pingInterval(), 65432);
        QCOMPARE(connector->pongLimit(), 76543);
        QVERIFY(connector->randomSessionIds());
        QCOMPARE(connector->stallLimit(), 5432);
        QVERIFY(connector->asynchronousConnect());
        QVERIFY(connector->endsWithLostRequest());
    }

    void stoppedSessionCanBeFollowedByAnother()
    {
        Lesson lesson;
        QVERIFY(lesson.startWell());
        QTRY_VERIFY(lesson.collab->isConnected());
        QVERIFY(lesson.stop());
        lesson.service.expect("/tavisto/login/user", Answer::json(R"({"data":{"userLoginId":"teacher"}})"));
        lesson.service.expect("/tavisto/session/create", Answer::json(R"({"data":{"sessionCode":"2"}})"));
        QVERIFY(lesson.client->doStartSession(QString()));

        QVERIFY(lesson.startWell());
        QCOMPARE(lesson.collab->sessionCode(), QStringLiteral("2"));
        QTRY_VERIFY(lesson.collab->isConnected());
    }

    void goodbyeIsSaidToTheWholeSession()
    {
        Lesson lesson;
        QVERIFY(lesson.startWell());
        for (int i = 0; i < 3; ++i)
            QVERIFY(!Lesson::registered(lesson.bus.nextMessage()).isNull());
        QVERIFY(lesson.stop());

        const QJsonObject frame = QJsonDocument::fromJson(lesson.bus.nextMessage().toUtf8()).object();
        const QJsonObject body = frame.value("body").toObject();
        QCOMPARE(frame.value("address").toString(), QStringLiteral("T"));
        QCOMPARE(body.value("from").toString(), QStringLiteral("U"));
        QCOMPARE(body.value("type").toString(), QStringLiteral("disconnect"));
        QString data;
        QVERIFY(Lzma::decompress64(body.value("data").toVariant().toStringList().value(0), &data));
        QCOMPARE(data, QStringLiteral("\"\""));
        QTRY_COMPARE(lesson.bus.endedSessions(), 1);
    }

    void logoutClosesTheChannelAndStops()
    {
        Lesson lesson;
        QVERIFY(lesson.startWell());
        QTRY_VERIFY(lesson.collab->isConnected());
        lesson.service.expect(Lesson::STOP, Answer::json("{}"));
        lesson.service.expect("/tavisto/login/logout", Answer::json("{}"));

        QVERIFY(lesson.client->doLogout());
        QVERIFY(!lesson.collab->isConnected());
        QTRY_COMPARE(lesson.bus.endedSessions(), 1);
    }

    void hostMayDeleteTheChannelAndStartAgain()
    {
        Lesson lesson;
        QVERIFY(lesson.startWell());
        delete lesson.collab;
        QVERIFY(!lesson.client->collab());
        QTRY_COMPARE(lesson.bus.openConnections(), 0);

        QVERIFY(lesson.startWell());
        QCOMPARE(lesson.client->collab(), lesson.collab);
        QTRY_VERIFY(lesson.collab->isConnected());
        delete lesson.collab;
        QVERIFY(lesson.stop());
    }

    // The server leaves the WebSocket without an answer; what the host does meanwhile ends the wait.
    void hostMayDeleteTheChannelWhileItOpens()
    {
        Lesson lesson;
        lesson.bus.setUpgrade(FakeSockJSServer::Silent);
        lesson.expectStart();
        connect(&lesson.bus, &FakeSockJSServer::requested, this,
                [&] { QTimer::singleShot(0, this, [&] { delete lesson.client->collab(); }); });
        lesson.start();

        QVERIFY(!lesson.client->collab());
        QVERIFY(!lesson.collab);
        QVERIFY(lesson.stop());
    }

    void hostMayDeleteTheClientWhileTheChannelOpens()
    {
        Lesson lesson;
        lesson.bus.setUpgrade(FakeSockJSServer::Silent);
        lesson.expectStart();
        lesson.service.expect(Lesson::STOP, Answer::json("{}"));
        connect(&lesson.bus, &FakeSockJSServer::requested, this,
                [&] { QTimer::singleShot(0, this, [&] { lesson.client.reset(); }); });

        QVERIFY(!lesson.client->startWebsocket(&lesson.collab));
        QVERIFY(!lesson.collab);
    }

    // Opening a WebSocket exports the proxy in a form that Qt misreads afterwards.
    void requestsKeepTheirProxyAfterAnOpen()
    {
        const QByteArray before = qgetenv("http_proxy");
        FakeService proxy;
        qputenv("http_proxy", proxy.url().toUtf8());
        const QByteArray service("http://classroom.invalid");
        {
            PresenterClient client(nullptr, QString::fromLatin1(service));
            client.sessionSuccessResponse(R"({"data":{"sessionCode":"1"}})");
            proxy.expect(service + Lesson::ADDRESS,
                         Answer::json("{\"data\":{\"url\":\"http://bus.invalid/\"}}"));
            proxy.expect(service + Lesson::FEATURES, Answer::json(Lesson::WEBSOCKET));
            proxy.expect(service + Lesson::START, Answer::json(Lesson::STARTED));
            proxy.expect(service + Lesson::JOIN, Answer::json(Lesson::JOINED));
            proxy.expect("bus.invalid:80", Answer::json("", 403)); // the WebSocket's CONNECT
            PresenterCollab* collab = nullptr;
            QVERIFY(client.startWebsocket(&collab));
            QCOMPARE(qgetenv("http_proxy"), "127.0.0.1:" + QByteArray::number(proxy.serverPort()));

            proxy.expect(service + "/tavisto/session/getusers", Answer::json("{}"));
            QVERIFY(client.doGetLearners());
            QVERIFY(proxy.isUsedUp());
            proxy.expect(service + Lesson::STOP, Answer::json("{}"));
        }
        qputenv("http_proxy", before);
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientChannel)

#include "tst_PresenterClientChannel.moc"
