// A classroom session from its creation to its end, who is in it, and what is stored for it.

#include "support/ClientTest.h"
#include "support/Lesson.h"
#include "support/LogRecorder.h"
#include "support/Logins.h"
#include "support/Rows.h"
#include "support/TimerClock.h"

#include <CalyxClient/Learner>
#include <CalyxClient/PresenterClient>

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Sessions;

namespace {

const char UPLOAD[] = "/tavisto/resource/uploadResourceFile";
const char STORED[] = R"({"data":{"id":"r1","path":"/files/r1"}})";

// What follows the file's bytes, byte for byte: the lines that look superfluous belong there.
const char BEHIND_THE_FILE[] = "\r\n"
                               "------boundary\r\n"
                               "\r\n"
                               "Content-Disposition: form-data; name=isTemporary\r\n"
                               "Content-Type: text/plain; charset=utf-8\r\n"
                               "\r\n"
                               "true\r\n"
                               "------boundary\r\n"
                               "\r\n"
                               "Content-Disposition: form-data; name=clientProvidedGUID\r\n"
                               "Content-Type: text/plain; charset=utf-8\r\n"
                               "\r\n"
                               "false\r\n"
                               "------boundary--\r\n"
                               "\r\n";

} // namespace

class tst_PresenterClientSession : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsAskedWithoutASession()
    {
        createSession(client());
        const LogRecorder log;
        QVERIFY(!client().doGetLearners());
        QVERIFY(!client().doStopSession());
        QCOMPARE(log.debug(), QStringList({"[PresenterClient] No session to get users for!",
                                           "[PresenterClient] No session to stop!"}));
        QCOMPARE(client().sessionCode(), QStringLiteral("123456"));
    }

    void stopSetsOnlyTokenAndCodeToNullAndIsLogged()
    {
        const QString line = "[PresenterClient] Stopping session, closing websocket...";
        const LogRecorder log;
        int before = -1;
        service().expect(STOP, Answer::json("{}").then([&] { before = int(log.debug(line).size()); }));
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
        QCOMPARE(before, 0);
        QCOMPARE(log.debug().last(), line);
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

    void destructorStopsTheSession()
    {
        service().expect(STOP, Answer::json("{}"));
        openSession(client());
        deleteClient();
        QCOMPARE(service().last().body, QByteArray(R"({"sessionToken":"T"})"));
    }

    void destructorWithoutAStartedSessionAsksNothing()
    {
        const LogRecorder log;
        deleteClient();
        QVERIFY(log.messages().isEmpty());
        begin();
        createSession(client());
        deleteClient();
        QCOMPARE(log.debug(), QStringList{"[PresenterClient] No session to stop!"});
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

    void sendsTheBody_data()
    {
        QByteArray allBytes;
        for (int byte = 0; byte < 256; ++byte)
            allBytes.append(char(byte));
        rows<QString, QByteArray>({
            {"three bytes", "f.png", "ABC"},
            {"no bytes", "f.png", QByteArray()},
            {"every byte", "f.png", allBytes},
            {"the boundary inside", "f.png", "\r\n------boundary--\r\n"},
            {"large", "f.png", QByteArray(2000000, '\xff')},
            {"quote in the name", "a\"b\".png", "ABC"},
            {"name is not ASCII", "Zoë 🎓.png", "ABC"},
            {"placeholder in the name", "%1%2", "%1"},
            {"no name", QString(), "ABC"},
        });
    }
    void sendsTheBody()
    {
        const auto [fileName, data] = row<QString, QByteArray>();
        service().expect(UPLOAD, Answer::json(STORED));
        QString id;
        QString path;
        QVERIFY(client().doUploadResource(fileName, data, &id, &path));
        const FakeService::Request request = service().last();
        QCOMPARE(PresenterClient::MULTIPART_BOUNDARY, QStringLiteral("----boundary"));
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.header("accept-encoding"), QByteArray("identity"));
        QCOMPARE(request.header("content-type"),
                 QByteArray("multipart/form-data; charset=UTF-8; boundary=----boundary"));
        const QByteArray before = "------boundary\r\n"
                                  "Content-Disposition: form-data; name=files; filename=\"" +
                                  fileName.toUtf8() + "\"\r\n\r\n";
        QCOMPARE(request.body, before + data + BEHIND_THE_FILE);
    }

    void multipartValue_data()
    {
        const QString type = "\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n";
        const QString head = "Content-Disposition: form-data; name=";
        rows<QString, QString, bool, QString>({
            {"not the last", "a", "b", false, head + "a" + type + "b\r\n------boundary\r\n\r\n"},
            {"the last", "a", "b", true, head + "a" + type + "b\r\n------boundary--\r\n\r\n"},
            {"empty", "", "", false, head + type + "\r\n------boundary\r\n\r\n"},
            {"placeholders", "%1", "%2%1", true, head + "%1" + type + "%2%1\r\n------boundary--\r\n\r\n"},
            {"quotes", "\"a\"", "\"b\"", false, head + "\"a\"" + type + "\"b\"\r\n------boundary\r\n\r\n"},
        });
    }
    void multipartValue()
    {
        const auto [name, value, last, text] = row<QString, QString, bool, QString>();
        QCOMPARE(client().addMultipartValue(name, value, last), text);
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientSession)
#include "tst_PresenterClientSession.moc"
