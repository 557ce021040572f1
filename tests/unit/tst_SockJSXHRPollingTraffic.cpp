#include <CalyxClient/SockJSXHRPolling>

#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/ProcessResources.h"
#include "support/TestCertificates.h"
#include "support/TransportTest.h"
#include "transport/SockJSXHRPollingWorker.h"

#include <QtTest>

using HttpText::chunk;
using HttpText::chunked;
using HttpText::chunkedHead;
using HttpText::endChunk;
using HttpText::plain;

namespace {

const QString cookiesLine = QStringLiteral("[SockJSXHRPolling] parsed cookies");
const QString sendErrorLine = QStringLiteral("[SockJSXHRPolling] xhr_send error: ");

} // namespace

class tst_SockJSXHRPollingTraffic : public TransportTest
{
    Q_OBJECT

private Q_SLOTS:
    // Else a post's body waits on a kept connection until the server's kernel has acknowledged its header.
    void keptConnectionSendsAtOnce()
    {
        Server server;
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.start(server));
        for (int connection = 0; connection < 2; ++connection) {
            session.transport->sendTextMessage(QStringLiteral("[]"));
            session.transport->sendTextMessage(QStringLiteral("[]"));
            QTRY_COMPARE(server.count("/xhr_send"), 2 * connection + 2);
            QTRY_COMPARE(ProcessResources::connectionsThatSendAtOnce(server.port()), 1);
            QCOMPARE(server.requests("/xhr_send").last().connection,
                     server.requests("/xhr_send").at(2 * connection).connection);
            server.dropConnections();
            QTRY_COMPARE(ProcessResources::connectionsThatSendAtOnce(server.port()), 0);
        }
    }

    void noCookiesNoLine()
    {
        Server server;
        server.answer("/xhr", plain("o\n"));
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count(), 2);
        QCOMPARE(session.transport->getCookieCount(), 0);
        QCOMPARE(session.transport->getCookieString(), QString());
        QVERIFY(!server.received(0).contains("Cookie"));
    }

    void cookiesGoOutOnBothSides()
    {
        Server server;
        server.answer("/xhr",
                      plain("o\n", "Set-Cookie: a=1; path=/\r\nSet-Cookie: b=2 3; path=/; HttpOnly\r\n"));
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        LogRecorder log;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count("/xhr"), 2);
        QCOMPARE(session.transport->getCookieCount(), 2);
        QCOMPARE(session.transport->getCookieString(), QStringLiteral("a=1; b=2 3; "));
        QTRY_VERIFY(server.received(0).endsWith(Session::pollText("Cookie: a=1; b=2 3; \r\n")));
        QCOMPARE(log.debug(cookiesLine).size(), 1);
        session.transport->sendTextMessage(QStringLiteral("[]"));
        QTRY_COMPARE(server.count("/xhr_send"), 1);
        QCOMPARE(server.requests("/xhr_send").first().headers.value("cookie"), QByteArray("a=1; b=2 3"));
    }

    void cookiesOfASendGoOutOnTheReceivingSide()
    {
        Server server;
        server.answer("/xhr", Server::Script{Server::hold(), Server::send(plain("o\n"))});
        server.answer("/xhr_send", plain("", "Set-Cookie: c=3; path=/\r\n"));
        Session session;
        QVERIFY(session.start(server));
        session.transport->sendTextMessage(QStringLiteral("[]"));
        QTRY_COMPARE(session.transport->getCookieString(), QStringLiteral("c=3; "));
        server.release();
        QTRY_COMPARE(server.count("/xhr"), 2);
        QCOMPARE(server.requests("/xhr").last().headers.value("cookie"), QByteArray("c=3;"));
    }

    void laterCookieReplacesAnEarlier()
    {
        Server server;
        server.answer("/xhr", plain("o\n", "Set-Cookie: a=1\r\n"));
        server.answer("/xhr", plain("h\n", "Set-Cookie: a=2\r\n"));
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count("/xhr"), 3);
        QCOMPARE(session.transport->getCookieString(), QStringLiteral("a=2; "));
    }

    void cookiesInLowerCaseHeader()
    {
        Server server;
        server.answer("/xhr", "HTTP/1.1 200 OK\r\nset-cookie: a=1\r\ncontent-length: 2\r\n\r\no\n");
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(session.transport->getCookieString(), QStringLiteral("a=1; "));
    }

    void cookieThatBreaksTheRequestIsRefused()
    {
        Server server;
        server.answer("/xhr", plain("o\n", "Set-Cookie: a=1\rX-Injected: 1\r\n"));
        server.answer("/xhr_send", plain("", "Set-Cookie: b=1\rX-Injected: 1\r\n"));
        Session session;
        QVERIFY(session.start(server));
        session.transport->sendTextMessage(QStringLiteral("[]"));
        session.transport->sendTextMessage(QStringLiteral("[]"));
        QTRY_COMPARE(server.count("/xhr_send"), 2);
        QTRY_COMPARE(server.count("/xhr"), 2);
        QVERIFY(!session.transport->getCookieString().contains(QLatin1Char('\r')));
        QVERIFY(!server.received(0).contains("\rX-Injected"));
    }

    void everyPollAnswerIssuesOnePoll()
    {
        Server server;
        for (const char* frame : {"o\n", "h\n", "a[\"x\"]\n", "a[]\n"})
            server.answer("/xhr", chunked(frame));
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count(), 5);
        QCOMPARE(session.texts, QStringList({"o", "h", "a[\"x\"]", "a[]"}));
        QCOMPARE(server.connections(), 1);
        session.transport->close();
        QTRY_COMPARE(session.ends, 1);
        QCOMPARE(server.count(), 5);
    }

    void streamingAnswersIssueNone()
    {
        Server server;
        server.answer("/xhr_streaming", chunkedHead() + chunk(HttpText::prelude()) + chunk("o\n") +
                                            chunk("a[\"x\"]\n") + chunk("h\n"));
        Session session;
        QVERIFY(session.start(server, true));
        QTRY_COMPARE(session.texts.mid(1), QStringList({"o", "a[\"x\"]", "h"}));
        session.transport->close();
        QTRY_COMPARE(session.ends, 1);
        QCOMPARE(server.count(), 1);
    }

    void endedStreamIsAskedForAgain()
    {
        Server server;
        server.answer("/xhr_streaming", chunkedHead() + chunk("o\n") + chunk("a[\"1\"]\n") + endChunk());
        server.answer("/xhr_streaming", chunkedHead() + chunk("a[\"2\"]\n") + endChunk());
        server.answer("/xhr_streaming", chunkedHead() + chunk("a[\"3\"]\n"));
        Session session;
        QVERIFY(session.start(server, true));
        QTRY_COMPARE(session.texts, QStringList({"o", "a[\"1\"]", "a[\"2\"]", "a[\"3\"]"}));
        QCOMPARE(server.count(), 3);
        QCOMPARE(server.connections(), 3);
    }

    void pollIsNeverDoubled()
    {
        Server server;
        server.answer("/xhr", Server::Script{Server::hold(), Server::send(plain("o\n"))});
        server.answer("/other", plain("h\n"));
        Session session;
        LogRecorder log;
        QVERIFY(session.start(server));
        for (int i = 0; i < 100; ++i)
            session.transport->doPoll();
        QCOMPARE(log.debug(), QStringList());
        // It is next in the queue only when no second poll waits.
        session.transport->doRequestXHR(QStringLiteral("/other"), QString());
        QTRY_COMPARE(server.count(), 1);
        server.release();
        QTRY_COMPARE(server.count(), 3);
        QCOMPARE(server.requests().at(1).path, QByteArray("/other"));
        QCOMPARE(server.count("/xhr"), 2);
    }

    void emptyAnswerIsAskedAgainAfterTheWait()
    {
        Server server;
        server.answer("/xhr", plain(""));
        server.answer("/xhr", chunkedHead() + endChunk());
        server.answer("/xhr", plain("o\n"));
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(session.texts, QStringList("o"));
        const QList<Server::Request> requests = server.requests();
        for (int i : {1, 2}) {
            const qint64 gap = requests.at(i).msecs - requests.at(i - 1).msecs;
            QVERIFY2(gap >= 980 && gap < 2000, qPrintable(QString::number(gap)));
        }
    }

    void lostPollIsAskedAgain()
    {
        for (const bool streaming : {false, true}) {
            Server server;
            server.answer("/xhr", plain("o\n"));
            server.answer("/xhr", Server::Script{Server::close()});
            server.answer("/xhr_streaming",
                          Server::Script{Server::send(chunkedHead() + chunk("o\n")), Server::close()});
            server.answer("/xhr_streaming", Server::Script{Server::reset()});
            Session session;
            QVERIFY(session.start(server, streaming));
            QTRY_COMPARE(server.count(), 3);
            QCOMPARE(session.texts, QStringList("o"));
            QCOMPARE(session.ends, 0);
        }
    }

    void receivedTextIsLogged()
    {
        Server server;
        server.answer("/xhr", plain("a[\"ä\"]\n"));
        Session session;
        LogRecorder log;
        QVERIFY(session.start(server));
        QTRY_COMPARE(log.debug("[SockJSXHRPolling]"),
                     QStringList(QStringLiteral("[SockJSXHRPolling] RECEIVED: a[\"ä\"]")));
    }

    void answersToOneRequestNeverFreeItTwice()
    {
        Session session;
        auto* request = new XHRRequest(QStringLiteral("/x"), QStringLiteral("y"));
        const QPointer<XHRRequest> guard(request);
        const auto tell = [&session](XHRRequest* answered) {
            return QMetaObject::invokeMethod(session.transport, "onReceivedHeadersResponse",
                                             Q_ARG(XHRRequest*, answered), Q_ARG(QStringMap, QStringMap()));
        };
        QVERIFY(tell(request));
        QVERIFY(tell(request));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(guard);
        QVERIFY(tell(nullptr));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!guard);
        QVERIFY(tell(nullptr));
    }

    void sendsAsItShould()
    {
        Server server;
        server.answerAlways("/xhr_send", QByteArray("HTTP/1.1 204 No Content\r\n\r\n"));
        Session session;
        QVERIFY(session.start(server));
        session.transport->sendTextMessage(QStringLiteral("[\n    \"ä€😀\"\n]\n"));
        QTRY_COMPARE(server.count("/xhr_send"), 1);
        const Server::Request request = server.requests("/xhr_send").first();
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.path, QByteArray("/p/eventbus/119/abcdefgh/xhr_send"));
        QCOMPARE(request.headers.value("accept-encoding"), QByteArray("identity"));
        QCOMPARE(request.headers.value("content-type"), QByteArray("application/json; charset=UTF-8"));
        QCOMPARE(request.headers.value("connection"), QByteArray("keep-alive"));
        QVERIFY(!request.headers.contains("cookie"));
        QCOMPARE(request.body, QStringLiteral("[\n    \"ä€😀\"\n]\n").toUtf8());
    }

    void sendsInOrderOneAtATime()
    {
        Server server;
        constexpr int frames = 40;
        server.answer("/xhr_send", Server::Script{Server::hold(), Server::send(plain(""))});
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.start(server));
        for (int i = 0; i < frames; ++i)
            session.transport->sendTextMessage(QString::number(i));
        QTRY_COMPARE(server.count("/xhr_send"), 1);
        session.transport->doRequestXHR(QStringLiteral("/x"), QString());
        server.release();
        QTRY_COMPARE(server.count("/xhr_send"), frames);
        const QList<Server::Request> requests = server.requests("/xhr_send");
        for (int i = 0; i < frames; ++i)
            QCOMPARE(requests.at(i).body, QByteArray::number(i));
    }

    void failedSendIsLoggedAndLost_data() { rows<bool>({{"lost", false}, {"ends the transport", true}}); }

    void failedSendIsLoggedAndLost()
    {
        const auto [ends] = row<bool>();
        Server server;
        server.answer("/xhr_send", "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
        if (!ends)
            server.answer("/xhr_send", plain(""));
        Session session;
        session.transport->setEndsWithLostRequest(ends);
        QVERIFY(session.start(server));
        LogRecorder log;
        session.transport->sendTextMessage(QStringLiteral("[1]"));
        session.transport->sendTextMessage(QStringLiteral("[2]"));
        QTRY_VERIFY(server.isUsedUp());
        QTRY_COMPARE(log.debug(sendErrorLine).size(), 1);
        QVERIFY(log.debug(sendErrorLine).first().contains(QLatin1String("Not Found")));
        const QList<Server::Request> requests = server.requests("/xhr_send");
        QCOMPARE(requests.size(), ends ? 1 : 2);
        QCOMPARE(requests.first().body, QByteArray("[1]"));
        QCOMPARE(requests.last().body, QByteArray(ends ? "[1]" : "[2]"));
        QTRY_COMPARE(session.ends, ends ? 1 : 0);
    }

    void sendsAcceptedBeforeCloseGoOut()
    {
        Server server;
        server.answer("/xhr_send", Server::Script{Server::hold(), Server::send(plain(""))});
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.start(server));
        for (int i = 0; i < 3; ++i)
            session.transport->sendTextMessage(QString::number(i));
        session.transport->close();
        QTRY_COMPARE(session.ends, 1);
        QTRY_COMPARE(server.count("/xhr_send"), 1);
        server.release();
        QTRY_COMPARE(server.count("/xhr_send"), 3);
    }

    void sendOverTlsVerifiesTheServer()
    {
        Server server(TestCertificates::server(QStringLiteral("loopback")));
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        {
            const TestCertificates::TrustedRoot trusted;
            QVERIFY(session.start(server, false, true));
        }
        LogRecorder log;
        session.transport->sendTextMessage(QStringLiteral("[]"));
        QTRY_COMPARE(log.debug(sendErrorLine).size(), 1);
        QCOMPARE(server.count("/xhr_send"), 0);
    }
};

QTEST_GUILESS_MAIN(tst_SockJSXHRPollingTraffic)
#include "tst_SockJSXHRPollingTraffic.moc"
