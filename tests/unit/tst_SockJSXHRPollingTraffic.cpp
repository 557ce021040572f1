#include <CalyxClient/SockJSXHRPolling>

#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
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
        m_server->answerAlways("/xhr_send", plain(""));
        QVERIFY(start());
        for (int connection = 0; connection < 2; ++connection) {
            send();
            send();
            QTRY_COMPARE(m_server->count("/xhr_send"), 2 * connection + 2);
            QTRY_COMPARE(ProcessResources::connectionsThatSendAtOnce(m_server->port()), 1);
            QCOMPARE(m_server->requests("/xhr_send").last().connection,
                     m_server->requests("/xhr_send").at(2 * connection).connection);
            m_server->dropConnections();
            QTRY_COMPARE(ProcessResources::connectionsThatSendAtOnce(m_server->port()), 0);
        }
    }

    void noCookiesNoLine()
    {
        m_server->answer("/xhr", plain("o\n"));
        QVERIFY(start());
        QTRY_COMPARE(m_server->count(), 2);
        QCOMPARE(m_session->transport->getCookieCount(), 0);
        QCOMPARE(m_session->transport->getCookieString(), QString());
        QVERIFY(!m_server->received(0).contains("Cookie"));
    }

    void cookiesGoOutOnBothSides()
    {
        m_server->answer("/xhr",
                         plain("o\n", "Set-Cookie: a=1; path=/\r\nSet-Cookie: b=2 3; path=/; HttpOnly\r\n"));
        m_server->answerAlways("/xhr_send", plain(""));
        LogRecorder log;
        QVERIFY(start());
        QTRY_COMPARE(m_server->count("/xhr"), 2);
        QCOMPARE(m_session->transport->getCookieCount(), 2);
        QCOMPARE(m_session->transport->getCookieString(), QStringLiteral("a=1; b=2 3; "));
        QTRY_VERIFY(m_server->received(0).endsWith(Session::pollText("Cookie: a=1; b=2 3; \r\n")));
        QCOMPARE(log.debug(cookiesLine).size(), 1);
        send();
        QTRY_COMPARE(m_server->count("/xhr_send"), 1);
        QCOMPARE(m_server->requests("/xhr_send").first().headers.value("cookie"), QByteArray("a=1; b=2 3"));
    }

    void cookiesOfASendGoOutOnTheReceivingSide()
    {
        m_server->answer("/xhr", Server::Script{Server::hold(), Server::send(plain("o\n"))});
        m_server->answer("/xhr_send", plain("", "Set-Cookie: c=3; path=/\r\n"));
        QVERIFY(start());
        send();
        QTRY_COMPARE(m_session->transport->getCookieString(), QStringLiteral("c=3; "));
        m_server->release();
        QTRY_COMPARE(m_server->count("/xhr"), 2);
        QCOMPARE(m_server->requests("/xhr").last().headers.value("cookie"), QByteArray("c=3;"));
    }

    void laterCookieReplacesAnEarlier()
    {
        m_server->answer("/xhr", plain("o\n", "Set-Cookie: a=1\r\n"));
        m_server->answer("/xhr", plain("h\n", "Set-Cookie: a=2\r\n"));
        QVERIFY(start());
        QTRY_COMPARE(m_server->count("/xhr"), 3);
        QCOMPARE(m_session->transport->getCookieString(), QStringLiteral("a=2; "));
    }

    void cookiesInLowerCaseHeader()
    {
        m_server->answer("/xhr", "HTTP/1.1 200 OK\r\nset-cookie: a=1\r\ncontent-length: 2\r\n\r\no\n");
        QVERIFY(start());
        QTRY_COMPARE(m_session->transport->getCookieString(), QStringLiteral("a=1; "));
    }

    void everyPollAnswerIssuesOnePoll()
    {
        for (const char* frame : {"o\n", "h\n", "a[\"x\"]\n", "a[]\n"})
            m_server->answer("/xhr", chunked(frame));
        QVERIFY(start());
        QTRY_COMPARE(m_server->count(), 5);
        QCOMPARE(m_session->texts, QStringList({"o", "h", "a[\"x\"]", "a[]"}));
        QCOMPARE(m_server->connections(), 1);
        m_session->transport->close();
        QTRY_COMPARE(m_session->ends, 1);
        QCOMPARE(m_server->count(), 5);
    }

    void streamingAnswersIssueNone()
    {
        m_server->answer("/xhr_streaming", chunkedHead() + chunk(HttpText::prelude()) + chunk("o\n") +
                                               chunk("a[\"x\"]\n") + chunk("h\n"));
        QVERIFY(start(true));
        QTRY_COMPARE(m_session->texts.mid(1), QStringList({"o", "a[\"x\"]", "h"}));
        m_session->transport->close();
        QTRY_COMPARE(m_session->ends, 1);
        QCOMPARE(m_server->count(), 1);
    }

    void endedStreamIsAskedForAgain()
    {
        m_server->answer("/xhr_streaming", chunkedHead() + chunk("o\n") + chunk("a[\"1\"]\n") + endChunk());
        m_server->answer("/xhr_streaming", chunkedHead() + chunk("a[\"2\"]\n") + endChunk());
        m_server->answer("/xhr_streaming", chunkedHead() + chunk("a[\"3\"]\n"));
        QVERIFY(start(true));
        QTRY_COMPARE(m_session->texts, QStringList({"o", "a[\"1\"]", "a[\"2\"]", "a[\"3\"]"}));
        QCOMPARE(m_server->count(), 3);
        QCOMPARE(m_server->connections(), 3);
    }

    void pollIsNeverDoubled()
    {
        m_server->answer("/xhr", Server::Script{Server::hold(), Server::send(plain("o\n"))});
        m_server->answer("/other", plain("h\n"));
        LogRecorder log;
        QVERIFY(start());
        for (int i = 0; i < 100; ++i)
            m_session->transport->doPoll();
        QCOMPARE(log.debug(), QStringList());
        // It is next in the queue only when no second poll waits.
        m_session->transport->doRequestXHR(QStringLiteral("/other"), QString());
        QTRY_COMPARE(m_server->count(), 1);
        m_server->release();
        QTRY_COMPARE(m_server->count(), 3);
        QCOMPARE(m_server->requests().at(1).path, QByteArray("/other"));
        QCOMPARE(m_server->count("/xhr"), 2);
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
        m_server->answer("/xhr", plain("a[\"ä\"]\n"));
        LogRecorder log;
        QVERIFY(start());
        QTRY_COMPARE(log.debug("[SockJSXHRPolling]"),
                     QStringList(QStringLiteral("[SockJSXHRPolling] RECEIVED: a[\"ä\"]")));
    }

    void answersToOneRequestNeverFreeItTwice()
    {
        auto* request = new XHRRequest(QStringLiteral("/x"), QStringLiteral("y"));
        const QPointer<XHRRequest> guard(request);
        const auto tell = [this](XHRRequest* answered) {
            return QMetaObject::invokeMethod(m_session->transport, "onReceivedHeadersResponse",
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
        m_server->answerAlways("/xhr_send", QByteArray("HTTP/1.1 204 No Content\r\n\r\n"));
        QVERIFY(start());
        send(QStringLiteral("[\n    \"ä€😀\"\n]\n"));
        QTRY_COMPARE(m_server->count("/xhr_send"), 1);
        const Server::Request request = m_server->requests("/xhr_send").first();
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
        constexpr int frames = 40;
        m_server->answer("/xhr_send", Server::Script{Server::hold(), Server::send(plain(""))});
        m_server->answerAlways("/xhr_send", plain(""));
        QVERIFY(start());
        for (int i = 0; i < frames; ++i)
            send(QString::number(i));
        QTRY_COMPARE(m_server->count("/xhr_send"), 1);
        m_session->transport->doRequestXHR(QStringLiteral("/x"), QString());
        m_server->release();
        QTRY_COMPARE(m_server->count("/xhr_send"), frames);
        const QList<Server::Request> requests = m_server->requests("/xhr_send");
        for (int i = 0; i < frames; ++i)
            QCOMPARE(requests.at(i).body, QByteArray::number(i));
    }

    void failedSendIsLoggedAndLost_data() { rows<bool>({{"lost", false}, {"ends the transport", true}}); }

    void failedSendIsLoggedAndLost()
    {
        const auto [ends] = row<bool>();
        m_server->answer("/xhr_send", "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
        if (!ends)
            m_server->answer("/xhr_send", plain(""));
        m_session->transport->setEndsWithLostRequest(ends);
        QVERIFY(start());
        LogRecorder log;
        send(QStringLiteral("[1]"));
        send(QStringLiteral("[2]"));
        QTRY_VERIFY(m_server->isUsedUp());
        QTRY_COMPARE(log.debug(sendErrorLine).size(), 1);
        QVERIFY(log.debug(sendErrorLine).first().contains(QLatin1String("Not Found")));
        const QList<Server::Request> requests = m_server->requests("/xhr_send");
        QCOMPARE(requests.size(), ends ? 1 : 2);
        QCOMPARE(requests.first().body, QByteArray("[1]"));
        QCOMPARE(requests.last().body, QByteArray(ends ? "[1]" : "[2]"));
        QTRY_COMPARE(m_session->ends, ends ? 1 : 0);
    }

    void sendsAcceptedBeforeCloseGoOut()
    {
        m_server->answer("/xhr_send", Server::Script{Server::hold(), Server::send(plain(""))});
        m_server->answerAlways("/xhr_send", plain(""));
        QVERIFY(start());
        for (int i = 0; i < 3; ++i)
            send(QString::number(i));
        m_session->transport->close();
        QTRY_COMPARE(m_session->ends, 1);
        QTRY_COMPARE(m_server->count("/xhr_send"), 1);
        m_server->release();
        QTRY_COMPARE(m_server->count("/xhr_send"), 3);
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
