// Stopping a classroom session, and clients that go with one.

#include "support/ClientTest.h"
#include "support/Lesson.h"
#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/Sessions.h"
#include "support/TimerClock.h"

#include <CalyxClient/PresenterClient>

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Sessions;

class tst_PresenterClientSessionEnd : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void stopsTheSession()
    {
        service().expect(STOP, Answer::json("{}"));
        openSession(client(), "%1");

        QVERIFY(client().doStopSession());
        QCOMPARE(service().last().method, QByteArray("POST"));
        QCOMPARE(service().last().header("content-type"), QByteArray("application/json; charset=UTF-8"));
        QCOMPARE(service().last().body, QByteArray(R"({"sessionToken":"%1"})"));
    }

    void stopSetsOnlyTokenAndCodeToNull()
    {
        service().expect(STOP, Answer::json("{}"));
        openSession(client());
        client().getLearnersResponse(R"({"data":{"users":[{"mode":"learner","userToken":"d"}]}})");
        client().getCollabUrlResponse(R"({"data":{"url":"a"}})");
        client().sessionJoinResponse(R"({"data":{"userToken":"U"}})");
        client().doStopSession();

        QVERIFY(client().sessionToken().isNull());
        QVERIFY(client().sessionCode().isNull());
        QCOMPARE(client().learners().size(), 1);
        QCOMPARE(client().collabServerUrl(), QStringLiteral("a"));
        QCOMPARE(client().userToken(), QStringLiteral("U"));
    }

    void onlyAStartedSessionIsStopped()
    {
        createSession(client());
        const LogRecorder log;
        QVERIFY(!client().doStopSession());
        QCOMPARE(log.debug(), QStringList{"[PresenterClient] No session to stop!"});
        QCOMPARE(client().sessionCode(), QStringLiteral("123456"));

        service().expect(STOP, Answer::json("{}"));
        openSession(client());
        QVERIFY(client().doStopSession());
        QVERIFY(!client().doStopSession());
        QCOMPARE(log.debug("[PresenterClient] No session to stop!").size(), 2);
    }

    void stopNeedsNoGoodAnswer_data()
    {
        rows<Answer>({
            {"http error", Answer::json(R"({"errorMsgKeys":["a.error"]})", 500)},
            {"no JSON", Answer::json("bye")},
            {"service gone", Answer::gone()},
        });
    }

    void stopNeedsNoGoodAnswer()
    {
        const auto [answer] = row<Answer>();
        service().expect(STOP, answer);
        openSession(client());

        QVERIFY(client().doStopSession());
        QVERIFY(client().sessionToken().isNull());
        QVERIFY(client().sessionCode().isNull());
        QVERIFY(client().lastError().isNull());
    }

    void stopClosesTheChannelFirst()
    {
        Lesson lesson;
        QVERIFY(lesson.startWell());
        QTRY_VERIFY(lesson.collab->isConnected());
        const QSignalSpy closed(lesson.collab, SIGNAL(connectionClosed(bool)));
        bool openMeanwhile = true;
        lesson.service.expect(STOP,
                              Answer::json("{}").then([&] { openMeanwhile = lesson.collab->isConnected(); }));

        QVERIFY(lesson.client->doStopSession());
        QVERIFY(!openMeanwhile);
        QTRY_COMPARE(closed.size(), 1);
        QCOMPARE(closed.first().first().toBool(), false);
        QTRY_COMPARE(lesson.bus.endedSessions(), 1);
    }

    void stopLogsAfterTheRequest()
    {
        const QString line = "[PresenterClient] Stopping session, closing websocket...";
        openSession(client());
        const LogRecorder log;
        int before = -1;
        service().expect(STOP, Answer::json("{}").then([&] { before = log.debug(line).size(); }));
        client().doStopSession();

        QCOMPARE(before, 0);
        QCOMPARE(log.debug().last(), line);
    }

    void destructorStopsTheSession()
    {
        service().expect(STOP, Answer::json("{}"));
        openSession(client());
        deleteClient();

        QCOMPARE(service().last().body, QByteArray(R"({"sessionToken":"T"})"));
    }

    void destructorOfACreatedSessionOnlyLogs()
    {
        createSession(client());
        const LogRecorder log;
        deleteClient();

        QCOMPARE(log.debug(), QStringList{"[PresenterClient] No session to stop!"});
    }

    void destructorWithoutSessionDoesNothing()
    {
        const LogRecorder log;
        deleteClient();

        QVERIFY(log.messages().isEmpty());
    }

    void destructorWaitsNoLongerThanTheLimit()
    {
        service().expect(STOP, Answer::never().then([] { TimerClock::advance(10600); }));
        openSession(client());
        deleteClient();

        QTRY_COMPARE(service().abandoned(), 1);
    }

    void destructorKeepsNothingAlive()
    {
        service().expect("/tavisto/login/submit", Answer::json(R"({"infoMsgs":["success"]})"));
        QVERIFY(client().doLogin("u", "p"));
        openSession(client());
        TimerClock::advance(55000);
        service().expect(STOP, Answer::json("{}").held().then([&] {
            TimerClock::advance(9000); // the next keep-alive is due, the limit of the wait is not
            QTimer::singleShot(0, &service(), [&] { service().release(); });
        }));
        deleteClient();

        QVERIFY(service().isUsedUp());
    }

    void destructorClosesTheChannel()
    {
        Lesson lesson;
        QVERIFY(lesson.startWell());
        const QPointer<PresenterCollab> collab = lesson.collab;
        for (int i = 0; i < 3; ++i)
            lesson.bus.nextMessage(); // the registrations
        lesson.service.expect(STOP, Answer::json("{}"));
        lesson.client.reset();

        QVERIFY(!collab);
        QVERIFY(lesson.bus.nextMessage().contains(R"("type":"disconnect")"));
        QTRY_COMPARE(lesson.bus.endedSessions(), 1);
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientSessionEnd)

#include "tst_PresenterClientSessionEnd.moc"
