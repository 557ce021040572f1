// From a created session to its live channel: four requests, and the channel in the hands of its client and
// of the host.

#include "support/Lesson.h"
#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/SockJSConnector>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using Answer = FakeService::Answer;

namespace {

const char REFUSED[] = R"({"errorMsgKeys":["session.start.error","b.error"]})";

} // namespace

class tst_PresenterClientCollaboration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksTheServiceInFourSteps_data()
    {
        rows<QString>({
            {"plain", "teacher"},
            {"quotes", "a\"b"},
            {"placeholders", "%1%2%0"},
            {"not ASCII", "Zoë 🎓"},
            {"backslash", "a\\"},
        });
    }
    // Nothing is escaped: a user id with a quote in it makes the body no JSON at all.
    void asksTheServiceInFourSteps()
    {
        const auto [value] = row<QString>();
        const auto envelope = [&, value = value](const char* key) {
            const QJsonObject object{{"data", QJsonObject{{key, value}}}};
            return QString::fromUtf8(QJsonDocument(object).toJson());
        };
        Lesson lesson;
        lesson.client->sessionSuccessResponse(envelope("sessionCode"));
        lesson.client->userNameResponse(envelope("userLoginId"));
        QVERIFY(lesson.startWell());
        QCOMPARE(lesson.service.paths(),
                 (QList<QByteArray>{Lesson::ADDRESS, Lesson::FEATURES, Lesson::START, Lesson::JOIN}));
        const QByteArray bytes = value.toUtf8();
        const QList<FakeService::Request> requests = lesson.service.requests();
        QCOMPARE(requests.at(0).body, QByteArray("{}"));
        QCOMPARE(requests.at(1).body, QByteArray("{}"));
        QCOMPARE(requests.at(2).body, "{\"sessionCode\": \"" + bytes + "\",\"serverUrl\":\"" +
                                          lesson.bus.url().toEncoded() +
                                          "\",\"sourceSystem\":\"Lumora\",\"version\":\"3.0.0\"}");
        QCOMPARE(requests.at(3).body, "{\"userName\":\"SessionStarter\",\"sessionCode\":\"" + bytes +
                                          "\",\"mode\":\"presenter\",\"deviceName\":\"" + bytes +
                                          "_SessionStarter\",\"deviceType\":\"presenter\"}");
    }

    void opensTheChannelOfTheSession()
    {
        Lesson lesson;
        QVERIFY(lesson.startWell());
        PresenterCollab* collab = lesson.collab;
        QVERIFY(collab);
        QCOMPARE(lesson.client->collab(), collab);
        QCOMPARE(collab->parent(), lesson.client.get());
        QCOMPARE(collab->serverUrl(), lesson.bus.url().toString());
        QCOMPARE(collab->sessionCode(), QStringLiteral("123456"));
        QCOMPARE(collab->sessionToken(), QStringLiteral("T"));
        QCOMPARE(collab->userToken(), QStringLiteral("U"));
        QCOMPARE(lesson.client->collabServerUrl(), lesson.bus.url().toString());
        QCOMPARE(lesson.client->sessionToken(), QStringLiteral("T"));
        QCOMPARE(lesson.client->userToken(), QStringLiteral("U"));
        QCOMPARE(lesson.client->sockJSProtocols(), QStringList{"websocket"});
        QVERIFY(lesson.client->lastError().isNull());
        QTRY_VERIFY(collab->isConnected());
        for (const char* address : {"T", "T.presenter", "T.presenter.U"})
            QCOMPARE(Lesson::registered(lesson.bus.nextMessage()), QString::fromLatin1(address));
    }

    void logsTokenAndAddress()
    {
        Lesson lesson;
        lesson.expectStart(Answer::json(Lesson::WEBSOCKET),
                           Answer::json(R"({"data":{"sessionToken":"tokenToFind"}})"));
        const LogRecorder log;
        QVERIFY(lesson.start());
        const QStringList lines = log.debug();
        int connecting = 0;
        while (connecting < lines.size() &&
               !lines.at(connecting).startsWith("Connecting to collaboration server:"))
            ++connecting;
        QVERIFY(connecting >= 2 && connecting < lines.size());
        QVERIFY(lines.at(connecting - 2).contains("tokenToFind"));
        QVERIFY(lines.at(connecting - 1).contains(lesson.bus.url().toString()));
        QVERIFY(!lines.at(connecting - 2).startsWith("[REST Response]"));
        QVERIFY(!lines.at(connecting - 1).startsWith("[REST Response]"));
    }
    void chainEnds_data()
    {
        // How many steps go well before this answer; the error and the token that the client has then.
        const QString none;
        rows<int, Answer, QString, QString>({
            {"empty address", 0, Answer::json(R"({"data":{"url":""}})"), none, none},
            {"no address", 0, Answer::json(R"({"data":{}})"), none, none},
            {"no data", 0, Answer::json("{}"), none, none},
            {"no JSON", 0, Answer::json("http://127.0.0.1:1/"), none, none},
            {"http error", 0, Answer::json(R"({"errorMsgKeys":["a.error"],"data":{"url":"x"}})", 500), none,
             none},
            {"service gone", 0, Answer::gone(), none, none},
            {"refused start", 2, Answer::json(REFUSED, 500), "session.start.error", none},
            // The session is started all the same: the error is looked at only after that request.
            {"earlier error", 2, Answer::json(Lesson::STARTED), "earlier.error", "T"},
        });
    }
    void chainEnds()
    {
        const auto [steps, answer, error, token] = row<int, Answer, QString, QString>();
        Lesson lesson;
        if (error == "earlier.error")
            lesson.client->sessionFailureResponse(nullptr, R"({"errorMsgKeys":["earlier.error"]})");
        if (steps > 0) {
            lesson.service.expect(Lesson::ADDRESS, Answer::json(lesson.address()));
            lesson.service.expect(Lesson::FEATURES, Answer::json(Lesson::WEBSOCKET));
        }
        lesson.service.expect(steps == 0 ? Lesson::ADDRESS : Lesson::START, answer);
        PresenterCollab other(nullptr, QString(), QString(), QString(), QString());
        lesson.collab = &other;
        const LogRecorder log;
        QVERIFY(!lesson.start());
        QCOMPARE(log.debug("ERROR: Failed to get collab server URL!").size(), steps == 0 ? 1 : 0);
        QCOMPARE(lesson.collab, &other);
        QVERIFY(!lesson.client->collab());
        QCOMPARE(lesson.client->lastError(), error);
        QCOMPARE(lesson.client->lastError().isNull(), error.isNull());
        QCOMPARE(lesson.client->sessionToken(), token);
        QCOMPARE(lesson.client->sessionToken().isNull(), token.isNull());
        QVERIFY(lesson.bus.requests().isEmpty());
    }

    void earlierAddressServesWhenTheRequestFails()
    {
        Lesson lesson;
        lesson.client->getCollabUrlResponse(QString::fromUtf8(lesson.address()));
        lesson.service.expect(Lesson::ADDRESS, Answer::json("{}", 500));
        lesson.service.expect(Lesson::FEATURES, Answer::json(Lesson::WEBSOCKET));
        lesson.service.expect(Lesson::START, Answer::json(Lesson::STARTED));
        lesson.service.expect(Lesson::JOIN, Answer::json(Lesson::JOINED));
        QVERIFY(lesson.start());
        QCOMPARE(lesson.collab->serverUrl(), lesson.bus.url().toString());
    }

    void tenantNamesTheTransports_data()
    {
        const QStringList earlier{"websocket", "earlier"};
        rows<int, QByteArray, QStringList>({
            {"one", 200, QByteArray(Lesson::WEBSOCKET), QStringList{"websocket"}},
            {"in order", 200, R"({"data":{"sockJSProtocols":["b","websocket","a"]}})",
             QStringList{"b", "websocket", "a"}},
            {"none", 200, R"({"data":{"sockJSProtocols":[]}})", QStringList()},
            {"absent", 200, R"({"data":{}})", QStringList()},
            {"no data", 200, "{}", QStringList()},
            {"no JSON", 200, "websocket", earlier},
            {"http error", 500, QByteArray(Lesson::WEBSOCKET), earlier},
        });
    }
    void tenantNamesTheTransports()
    {
        const auto [status, body, protocols] = row<int, QByteArray, QStringList>();
        Lesson lesson;
        lesson.client->getTenantFeatureDetailsResponse(
            R"({"data":{"sockJSProtocols":["websocket","earlier"]}})");
        lesson.expectStart(Answer::json(body, status));
        const LogRecorder log;
        QVERIFY(lesson.start());
        QCOMPARE(lesson.client->sockJSProtocols(), protocols);
        const QStringList lines = log.debug("Connecting to collaboration server:");
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().contains(protocols.join(", ")), qPrintable(lines.first()));
        QTRY_VERIFY(lesson.collab->isConnected()); // all of these lists come down to a WebSocket
    }

    void overrideWinsOverTheTenant_data()
    {
        using Lists = QList<QStringList>;
        const QStringList webSocket{"websocket"};
        rows<Lists, QStringList>({
            {"one", Lists{webSocket}, webSocket},
            {"set again", Lists{{"xhr-polling"}, webSocket, webSocket}, webSocket},
            {"an empty one is none", Lists{{"xhr-polling"}, {}}, {"xhr-polling", "websocket", "unknown"}},
        });
    }
    void overrideWinsOverTheTenant()
    {
        const auto [overrides, protocols] = row<QList<QStringList>, QStringList>();
        Lesson lesson;
        for (const QStringList& list : overrides)
            lesson.client->setSockJSOverrideProtocols(list);
        for (int starts = 0; starts < 2; ++starts) {
            lesson.expectStart(
                Answer::json(R"({"data":{"sockJSProtocols":["xhr-polling","websocket","unknown"]}})"));
            QVERIFY(lesson.start());
            QCOMPARE(lesson.client->sockJSProtocols(), protocols);
            QTRY_VERIFY(lesson.collab->isConnected());
            QCOMPARE(lesson.bus.paths().last().endsWith("/websocket"), protocols.size() == 1);
            QVERIFY(lesson.stop());
        }
    }

    void unreachableBusIsNoFailure()
    {
        Lesson lesson;
        lesson.bus.stopListening();
        lesson.expectStart();
        QVERIFY(lesson.client->startWebsocket(nullptr)); // a host may ask the client for the channel
        QVERIFY(lesson.client->collab());
        QVERIFY(!lesson.client->collab()->isConnected());
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

    void failedStartAndJoinAreGoneOnFrom_data()
    {
        rows<int, QByteArray>({
            {"first key without error", 500, R"({"errorMsgKeys":["session.refused","b.error"]})"},
            {"no key", 500, "{}"},
            {"no JSON", 500, "error"},
            {"what would be taken", 500, R"({"data":{"sessionToken":"T","userToken":"U"}})"},
            {"answered without JSON", 200, "started"},
        });
    }
    // Both keep what they had before: null is nothing.
    void failedStartAndJoinAreGoneOnFrom()
    {
        const auto [status, body] = row<int, QByteArray>();
        for (const bool isKnown : {false, true}) {
            Lesson lesson;
            if (isKnown) {
                lesson.client->sessionStartSuccessResponse(R"({"data":{"sessionToken":"T0"}})");
                lesson.client->sessionJoinResponse(R"({"data":{"userToken":"U0"}})");
            }
            lesson.expectStart(Answer::json(Lesson::WEBSOCKET), Answer::json(body, status),
                               Answer::json(body, status));
            QVERIFY(lesson.start());
            QCOMPARE(lesson.client->sessionToken(), isKnown ? QStringLiteral("T0") : QString());
            QCOMPARE(lesson.client->userToken(), isKnown ? QStringLiteral("U0") : QString());
            QCOMPARE(lesson.client->userToken().isNull(), !isKnown);
            QCOMPARE(lesson.collab->sessionToken(), lesson.client->sessionToken());
            QCOMPARE(lesson.collab->userToken(), lesson.client->userToken());
            QVERIFY(lesson.client->lastError().isNull());
        }
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientCollaboration)
#include "tst_PresenterClientCollaboration.moc"
