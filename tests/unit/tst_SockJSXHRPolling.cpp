#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"
#include "support/TestCertificates.h"
#include "support/TransportTest.h"
#include "support/WaitFor.h"
#include "transport/SockJSXHRPollingWorker.h"

#include <CalyxClient/SockJSXHRPolling>

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QTcpServer>
#include <QtTest>

#include <memory>

using namespace HttpText;

namespace {
const QString cookiesLine = QStringLiteral("[SockJSXHRPolling] parsed cookies");
const QString sendErrorLine = QStringLiteral("[SockJSXHRPolling] xhr_send error: ");

// For as long as it lives, the system's proxy.
class SystemProxy
{
public:
    explicit SystemProxy(quint16 port)
    {
        qputenv("http_proxy", "http://127.0.0.1:" + QByteArray::number(port));
    }
    ~SystemProxy() { qunsetenv("http_proxy"); }
    Q_DISABLE_COPY(SystemProxy)
};

constexpr int patience = 8000;

} // namespace

/// Starting, what is asked, sent and received, and how it ends.
class tst_SockJSXHRPolling : public TransportTest
{
    Q_OBJECT

private Q_SLOTS:
    void declaresItsSignalsAndSlots()
    {
        const QMetaObject* meta = &Transport::staticMetaObject;
        QVERIFY(meta->indexOfSignal("connectionClosed()") >= 0);
        QVERIFY(meta->indexOfSignal("textMessageReceived(QString)") >= 0);
        for (const char* slot : {"onReceivedHeadersResponse(XHRRequest*,QStringMap)",
                                 "onReceivedMessageResponse(XHRRequest*,QString)",
                                 "onNAMRequestFinished(QNetworkReply*)", "onReconnected()"}) {
            const int index = meta->indexOfSlot(slot);
            QVERIFY2(index >= 0, slot);
            QCOMPARE(meta->method(index).access(), QMetaMethod::Private);
        }
    }

    void aRequestKeepsWhatItIsGiven()
    {
        XHRRequest request(QStringLiteral("/a"), QString());
        QCOMPARE(request.path(), QStringLiteral("/a"));
        QVERIFY(request.payload().isNull());
        QVERIFY(!request.parent() && !request.isChunked() && request.contentLength() == 0);
        request.setChunked(true);
        request.setContentLength(17);
        QVERIFY(request.isChunked() && request.contentLength() == 17);
        QVERIFY(request.requestId() >= 1);
        const XHRRequest next(QStringLiteral("/a"), QStringLiteral("x"));
        QCOMPARE(next.requestId(), request.requestId() + 1);
        QCOMPARE(next.payload(), QStringLiteral("x"));
    }

    void startRefusesASecondTime()
    {
        QVERIFY(start());
        QVERIFY(!start());
        QTRY_COMPARE(m_server->count(), 1);
        QCOMPARE(m_server->connections(), 1);
    }

    void startAgainAfterAFailure()
    {
        m_server->answer("/xhr", chunked("o\n"));
        LogRecorder log;
        QVERIFY(!m_session->transport->start(QStringLiteral("127.0.0.1"), 1, false, sessionPath, false));
        QCOMPARE(log.debug(), QStringList("[SockJSXHRPolling] Connection refused"));
        QCOMPARE(m_session->ends, 0);
        QVERIFY(start());
        QTRY_COMPARE(m_session->texts, QStringList("o"));
        m_session->transport->close();
        QTRY_COMPARE(m_session->ends, 1);
        m_server->answer("/xhr", chunked("o\n"));
        QVERIFY(start());
        QTRY_COMPARE(m_session->texts, QStringList({"o", "o"}));
        QCOMPARE(m_session->ends, 1);
    }

    void secureStartUsesTheSecureAddress()
    {
        const TestCertificates::TrustedRoot trusted;
        Server server(TestCertificates::server(QStringLiteral("loopback")));
        server.answer("/xhr", plain("o\n", "Set-Cookie: a=1; Secure\r\n"));
        server.answerAlways("/xhr_send", plain(""));
        Session session;
        QVERIFY(session.start(server, false, true));
        QTRY_COMPARE(session.texts, QStringList("o"));
        // A secure cookie is one of a secure address only.
        QCOMPARE(session.transport->getCookieString(), QStringLiteral("a=1; "));
        session.transport->sendTextMessage(QStringLiteral("[]"));
        QTRY_COMPARE(server.count("/xhr_send"), 1);
        QCOMPARE(server.requests("/xhr_send").first().path, QByteArray("/p/eventbus/119/abcdefgh/xhr_send"));
        QCOMPARE(server.requests("/xhr_send").first().headers.value("cookie"), QByteArray("a=1"));
    }

    void unknownCertificateIsRefused()
    {
        const Server server(TestCertificates::server(QStringLiteral("loopback")));
        Session session;
        LogRecorder log;
        QVERIFY(!session.start(server, false, true));
        QCOMPARE(log.debug("[SockJSXHRPolling] ").size(), 1);
        QCOMPARE(server.received(0), QByteArray());
    }

    void pathOfEachRequest_data()
    {
        rows<QString, QByteArray, QByteArray>({
            {"with", "/e/1", "/e/1/xhr", "/e/1/xhr_send"},
            {"without", "e/1", "/e/1/xhr", "/e/1/xhr_send"},
            {"a blank", "/e 1", "/e%201/xhr", "/e%201/xhr_send"},
            {"beyond ASCII", QString::fromUtf8("/\xc3\xa4"), "/%C3%A4/xhr", "/%C3%A4/xhr_send"},
            {"at the end too", "/e/1/", "/e/1//xhr", "/e/1/xhr_send"},
        });
    }
    void pathOfEachRequest()
    {
        const auto [path, polled, sent] = row<QString, QByteArray, QByteArray>();
        m_server->answerAlways("/xhr_send", plain(""));
        QVERIFY(
            m_session->transport->start(QStringLiteral("127.0.0.1"), m_server->port(), false, path, false));
        send();
        QTRY_COMPARE(m_server->count(), 2);
        QCOMPARE(m_server->requests("/xhr").first().path, polled);
        QCOMPARE(m_server->requests("/xhr_send").first().path, sent);
    }

    void addressOfIPv6GetsBrackets()
    {
        QTcpServer server;
        if (!server.listen(QHostAddress::LocalHostIPv6))
            return; // this machine has none
        Session session;
        QVERIFY(
            session.transport->start(QStringLiteral("::1"), server.serverPort(), false, sessionPath, false));
        QTRY_VERIFY(server.hasPendingConnections());
        QTcpSocket* peer = server.nextPendingConnection();
        QTRY_VERIFY(peer->bytesAvailable() > 0);
        QVERIFY(peer->readAll().contains("\r\nHost: [::1]\r\n"));
    }

    void pollIsWrittenByteForByte()
    {
        QVERIFY(start());
        QTRY_COMPARE(m_server->received(0), Session::pollText());
        Session streaming;
        QVERIFY(streaming.start(*m_server, true));
        QTRY_COMPARE(m_server->received(1), Session::pollText().replace("/xhr ", "/xhr_streaming "));
    }

    void requestWithPayload()
    {
        m_server->answerAlways("/xhr", plain("o\n"));
        QVERIFY(start());
        m_session->transport->doRequestXHR(QStringLiteral("/%1/other"), QStringLiteral("%2 pay"));
        QTRY_COMPARE(m_server->count("/other"), 1);
        const Server::Request request = m_server->requests("/other").first();
        QCOMPARE(request.path, QByteArray("/%1/other"));
        QCOMPARE(request.headers.value("content-length"), QByteArray("6"));
        QCOMPARE(request.body, QByteArray("%2 pay"));
    }

    void requestBeforeStartAndAfterCloseIsRefused()
    {
        LogRecorder log;
        QVERIFY(!m_session->transport->isUp());
        m_session->transport->doPoll();
        QVERIFY(start());
        QTRY_COMPARE(m_server->count(), 1);
        m_session->transport->close();
        m_session->transport->doRequestXHR(QStringLiteral("/x"), QString());
        m_session->transport->doPoll();
        QTRY_COMPARE(m_session->ends, 1);
        m_session->transport->doPoll();
        QCOMPARE(log.debug(closedLine).size(), 4);
        QCOMPARE(m_server->count(), 1);
    }

    void refusedRequestIsFreed()
    {
        QVERIFY(start());
        QTRY_COMPARE(m_server->count(), 1);
        LogRecorder log;
        const int before = XHRRequest(QString(), QString()).requestId();
        for (int i = 0; i < 60; ++i)
            m_session->transport->doRequestXHR(QStringLiteral("/x"), QString());
        QCOMPARE(XHRRequest(QString(), QString()).requestId(), before + 61);
        // What is not freed here, the leak check of a sanitized run reports.
        QCOMPARE(log.debug("[SockJSXHRPollingWorker] Async socket tx queue error: Too many items in queue!")
                     .size(),
                 9);
    }

    void goesThroughTheSystemsProxy()
    {
        // It stands for the proxy, and for the server that the proxy connects to.
        Server proxy;
        proxy.answer("server.invalid:80", "HTTP/1.1 200 Connection established\r\n\r\n");
        proxy.answer("/xhr", plain("o\n"));
        proxy.answer("/xhr_send", plain(""));
        proxy.answerAlways("server.invalid:80", "HTTP/1.1 200 Connection established\r\n\r\n");
        const SystemProxy system(proxy.port());
        // What the application has chosen for itself does not count.
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        Session session;
        QVERIFY(session.transport->start(QStringLiteral("server.invalid"), 80, false, sessionPath, false));
        QTRY_COMPARE(session.texts, QStringList("o"));
        session.transport->sendTextMessage(QStringLiteral("[]"));
        QTRY_COMPARE(proxy.count("/xhr_send"), 1);
        QCOMPARE(proxy.requests().first().method, QByteArray("CONNECT"));
    }

    void proxyThatWantsAPasswordFailsClearly()
    {
        Server proxy;
        proxy.answerAlways("server.invalid:80",
                           Server::Script{Server::send(
                               "HTTP/1.1 407 Proxy Authentication Required\r\n"
                               "Proxy-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n")});
        const SystemProxy system(proxy.port());
        Session session;
        LogRecorder log;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!session.transport->start(QStringLiteral("server.invalid"), 80, false, sessionPath, false));
        QVERIFY(clock.elapsed() < 5000);
        QCOMPARE(log.debug("[SockJSXHRPolling] ").size(), 1);
    }

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

    void everyPollAnswerIssuesOnePoll()
    {
        for (const char* frame : {"o\n", "h\n", u8"a[\"ä\"]\n", "a[]\n"})
            m_server->answer("/xhr", chunked(frame));
        LogRecorder log;
        QVERIFY(start());
        QTRY_COMPARE(m_server->count(), 5);
        QCOMPARE(m_session->texts, QStringList({"o", "h", u8"a[\"ä\"]", "a[]"}));
        QCOMPARE(log.debug("[SockJSXHRPolling] RECEIVED: ").value(2),
                 "[SockJSXHRPolling] RECEIVED: " + m_session->texts.at(2));
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

    void hostHasItsTurnInAFlood_data() { rows<bool>({{"clear", false}, {"TLS", true}}); }
    // However fast the frames come, and however long it takes for each.
    void hostHasItsTurnInAFlood()
    {
        const auto [secure] = row<bool>();
        constexpr int frames = 20000;
        const TestCertificates::TrustedRoot trusted;
        Server clear;
        Server tls(TestCertificates::server("loopback"));
        Server& server = secure ? tls : clear;
        const QByteArray flood = QByteArray("a[\"" + QByteArray(200, 'x') + "\"]\n").repeated(frames);
        server.answer(
            "/xhr_streaming",
            Server::Script{Server::send(chunkedHead() + chunk("o\n") + chunk(flood)), Server::close()});
        Session session;
        int most = 0; // texts in one turn
        int before = 0;
        const LogRecorder log; // of all of them
        session.onText = [] {
            QElapsedTimer work;
            work.start();
            while (work.nsecsElapsed() < 20000) {
            }
        };
        QTimer turns;
        connect(&turns, &QTimer::timeout, this, [&] {
            most = qMax(most, int(session.texts.size()) - before);
            before = int(session.texts.size());
        });
        turns.start(0);
        QVERIFY(session.start(server, true, secure));
        QTRY_COMPARE_WITH_TIMEOUT(session.texts.size(), frames + 1, 30000);
        QVERIFY2(most <= 2000, qPrintable(QString::number(most)));
        QCOMPARE(session.ends, 0);
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

    void sendsInOrderOneAtATime_data() { rows<bool>({{"open", false}, {"closed meanwhile", true}}); }
    void sendsInOrderOneAtATime()
    {
        const auto [isClosed] = row<bool>();
        constexpr int frames = 40;
        m_server->answer("/xhr_send", Server::Script{Server::hold(), Server::send(plain(""))});
        m_server->answerAlways("/xhr_send", plain(""));
        QVERIFY(start());
        for (int i = 0; i < frames; ++i)
            send(QString::number(i));
        if (isClosed)
            m_session->transport->close();
        QTRY_COMPARE(m_session->ends, isClosed ? 1 : 0);
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

    void closeEndsOnce()
    {
        m_server->answer("/xhr", plain("o\n"));
        QVERIFY(start());
        QTRY_COMPARE(m_server->count(), 2);
        m_session->transport->close();
        QCOMPARE(m_session->ends, 0);
        m_session->transport->close();
        QTRY_COMPARE(m_session->ends, 1);
        m_session->transport->close();
        QTRY_COMPARE(m_server->openConnections(), 0);
        QCoreApplication::processEvents();
        QCOMPARE(m_session->ends, 1);
    }

    // The poll that follows the frame can be answered, by a session that is not ours, before the thread ends.
    void nothingIsHeardAfterTheEndOfTheSession()
    {
        m_server->answer("/xhr", plain("o\n"));
        m_server->answer("/xhr", plain("c[3000,\"Go away!\"]\n"));
        QVERIFY(start());
        SockJSXHRPolling* const transport = m_session->transport;
        connect(transport, &SockJSXHRPolling::textMessageReceived, this, [transport](const QString& text) {
            if (text.startsWith(QLatin1Char('c')))
                QMetaObject::invokeMethod(transport, "onReceivedMessageResponse", Qt::QueuedConnection,
                                          Q_ARG(XHRRequest*, nullptr),
                                          Q_ARG(QString, QStringLiteral("a[1]")));
        });
        QTRY_COMPARE(m_session->ends, 1);
        QCOMPARE(m_session->texts, QStringList({"o", "c[3000,\"Go away!\"]"}));
    }

    void unreachableServerEndsTheSession()
    {
        m_server->answer("/xhr", plain("o\n"));
        QVERIFY(start());
        QTRY_COMPARE(m_server->count(), 2);
        LogRecorder log;
        m_server->stopListening();
        m_server->dropConnections();
        QTRY_COMPARE_WITH_TIMEOUT(m_session->ends, 1, patience);
        QCOMPARE(log.debug("[SockJSXHRPollingWorker] Connection lost, attempting to re-establish...").size(),
                 11);
        m_session->transport->doPoll();
        QCOMPARE(log.debug(closedLine).size(), 1);
    }

    void endIsPrompt_data()
    {
        columns<QByteArray, bool>();
        for (const bool byDeletion : {false, true}) {
            const char* end = byDeletion ? "deletion" : "close";
            QTest::addRow("%s, a poll is pending", end) << QByteArray() << byDeletion;
            QTest::addRow("%s, an answer is half received", end) << chunkedHead() + "5\r\nab" << byDeletion;
            QTest::addRow("%s, the next poll is held back", end) << plain("") << byDeletion;
        }
    }
    void endIsPrompt()
    {
        const auto [answer, byDeletion] = row<QByteArray, bool>();
        const int limit = byDeletion ? 100 : 50;
        qint64 best = patience;
        for (int i = 0; i < 5 && best > limit; ++i) {
            Server server;
            if (!answer.isEmpty())
                server.answer("/xhr", answer);
            const int threads = ProcessResources::threads();
            auto session = std::make_unique<Session>();
            QVERIFY(session->start(server));
            QTRY_COMPARE(server.count(), 1);
            QElapsedTimer clock;
            clock.start();
            if (byDeletion)
                session.reset();
            else
                session->transport->close();
            while (session && session->ends == 0 && clock.elapsed() < patience)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            best = std::min(best, clock.elapsed());
            session.reset();
            QTRY_VERIFY(ProcessResources::threads() <= threads);
        }
        QVERIFY2(best <= limit, qPrintable(QString::number(best)));
    }

    void retiredTransportIsSilentAndGoes()
    {
        m_server->answerAlways("/xhr", plain("h\n"));
        QObject parent;
        const QPointer<Transport> transport = m_session->transport;
        transport->setParent(&parent);
        QVERIFY(start());
        QTRY_VERIFY(!m_session->texts.isEmpty());
        const int heard = m_session->texts.size();
        transport->retire();
        QVERIFY(!transport->parent());
        QTRY_VERIFY(!transport);
        QCOMPARE(m_session->texts.size(), heard);
        QCOMPARE(m_session->ends, 0);
        QTRY_COMPARE(m_server->openConnections(), 0);
        const QPointer<Transport> neverStarted(new Transport(nullptr));
        neverStarted->retire();
        QTRY_VERIFY(!neverStarted);
    }

    // A server refuses what is posted to a session without a receiver.
    void receiverStaysWhilePostsAreAnswered()
    {
        m_server->answerAlways("/xhr_send", Server::Script{Server::pause(1200), Server::send(plain(""))});
        m_server->answer("/xhr", Server::Script{Server::hold(), Server::send(plain("h\n"))});
        const QPointer<Transport> transport = m_session->transport;
        QVERIFY(start());
        for (int i = 0; i < 4; ++i)
            transport->sendTextMessage(QString::number(i));
        QTRY_COMPARE(m_server->count("/xhr"), 1);
        transport->retire();
        m_server->release();
        QTRY_COMPARE(m_server->count("/xhr"), 2);
        QTRY_COMPARE(m_server->count("/xhr_send"), 4);
        QCOMPARE(m_server->openConnections(), 2);
        QTRY_VERIFY(!transport);
        QTRY_COMPARE(m_server->openConnections(), 0);
    }

    void retiredTransportGivesUpOnASilentServer()
    {
        const QPointer<Transport> transport = m_session->transport;
        QVERIFY(start());
        transport->sendTextMessage(QStringLiteral("[]"));
        transport->sendTextMessage(QStringLiteral("[]"));
        QElapsedTimer clock;
        clock.start();
        transport->retire();
        QTRY_VERIFY_WITH_TIMEOUT(!transport, 20000);
        QVERIFY(clock.elapsed() >= 9000);
        QCOMPARE(m_server->count("/xhr_send"), 1);
    }

    void threadThatEndsTakesItsTransportsAlong_data()
    {
        rows<QString>({
            {"retired", "retired"},
            {"retired at the thread's end", "retired at the end"},
            {"open, and retired elsewhere afterwards", "open"},
        });
    }
    void threadThatEndsTakesItsTransportsAlong()
    {
        const QString left = std::get<0>(row<QString>()); // not a binding: lambdas take it
        m_server->answerAlways("/xhr_send", Server::Script{Server::pause(20), Server::send(plain(""))});
        const ProcessResources::Snapshot before;
        for (int i = 1; i <= 5; ++i) {
            QThread thread;
            QObject context;
            QPointer<Transport> transport;
            bool started = false;
            context.moveToThread(&thread);
            const auto teach = [&] {
                transport = new Transport(nullptr);
                started = transport->start(QStringLiteral("127.0.0.1"), m_server->port(), false, sessionPath,
                                           false);
                transport->sendTextMessage(QStringLiteral("[]"));
                transport->sendTextMessage(QStringLiteral("goodbye"));
                if (left == QLatin1String("retired"))
                    transport->retire();
                thread.quit();
            };
            connect(&thread, &QThread::started, &context, teach);
            if (left == QLatin1String("retired at the end"))
                connect(
                    &thread, &QThread::finished, &context, [&] { transport->retire(); },
                    Qt::DirectConnection);
            thread.start();
            QVERIFY(thread.wait(patience));
            QVERIFY(started);
            QCOMPARE(m_server->count("/xhr_send"), 2 * i);
            QCOMPARE(m_server->requests("/xhr_send").last().body, QByteArray("goodbye"));
            QCOMPARE(!transport, left != QLatin1String("open"));
            if (transport)
                transport->retire();
            QVERIFY(!transport);
        }
        QCOMPARE(before.waitForSurplusToGo(), QString());
    }

    // A proxy that does not answer keeps the connection from being made.
    void asynchronousStartEndsAtOnce_data()
    {
        rows<QString>({{"close", "close"}, {"retire", "retire"}, {"delete", "delete"}});
    }
    void asynchronousStartEndsAtOnce()
    {
        const QString by = std::get<0>(row<QString>());
        const Server proxy;
        const SystemProxy system(proxy.port());
        Session session;
        session.transport->setAsynchronousConnect(true);
        bool acted = false;
        const auto act = [&] {
            acted = true;
            if (by == QLatin1String("close"))
                session.transport->close();
            else if (by == QLatin1String("retire"))
                session.transport->retire();
            else
                delete session.transport;
        };
        QTimer::singleShot(0, &session.context, act);
        QElapsedTimer clock;
        clock.start();
        const bool started =
            session.transport->start(QStringLiteral("server.invalid"), 80, false, sessionPath, false);
        QVERIFY(acted && !started);
        QVERIFY(clock.elapsed() < patience);
        QCOMPARE(session.ends, 0);
        QTRY_COMPARE(!session.transport, by != QLatin1String("close"));
        QTRY_COMPARE(proxy.openConnections(), 0);
    }

    void asynchronousStartSucceeds_data() { rows<bool>({{"fresh", false}, {"after quit()", true}}); }
    void asynchronousStartSucceeds()
    {
        const auto [hasQuit] = row<bool>();
        if (hasQuit) // outside exec(), where it is without effect until the application runs
            QCoreApplication::quit();
        m_server->answer("/xhr", plain("o\n"));
        m_session->transport->setAsynchronousConnect(true);
        bool turned = false;
        QTimer::singleShot(0, &m_session->context, [&turned] { turned = true; });
        const bool started = start();
        forgetQuit();
        QVERIFY(started);
        QVERIFY(turned);
        QTRY_COMPARE(m_session->texts, QStringList("o"));
    }
};

QTEST_GUILESS_MAIN(tst_SockJSXHRPolling)
#include "tst_SockJSXHRPolling.moc"
