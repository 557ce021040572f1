#include <CalyxClient/SockJSXHRPolling>

#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/ScriptedHttpServer.h"
#include "support/TestCertificates.h"
#include "transport/SockJSXHRPollingWorker.h"

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QTcpServer>
#include <QtTest>

#include <functional>
#include <memory>

using HttpText::chunk;
using HttpText::chunked;
using HttpText::chunkedHead;
using HttpText::endChunk;
using HttpText::plain;
using Server = ScriptedHttpServer;
using Transport = SockJSXHRPolling;

namespace {

const QString closedLine = QStringLiteral("[SockJSXHRPolling] Can't make request when in closed state!");
const QString cookiesLine = QStringLiteral("[SockJSXHRPolling] parsed cookies");
const QString sendErrorLine = QStringLiteral("[SockJSXHRPolling] xhr_send error: ");
const QString sessionPath = QStringLiteral("/p/eventbus/119/abcdefgh");

constexpr int patience = 8000;

// A transport with what it has told so far.
struct Session
{
    Session() : transport(new Transport(nullptr))
    {
        QObject::connect(transport, &Transport::textMessageReceived, transport, [this](const QString& text) {
            texts.append(text);
            if (onText)
                onText();
        });
        QObject::connect(transport, &Transport::connectionClosed, transport, [this] {
            ++ends;
            if (onEnd)
                onEnd();
        });
    }
    ~Session() { delete transport; }
    Q_DISABLE_COPY(Session)

    bool start(const Server& server, bool streaming = false, bool secure = false)
    {
        return transport->start(QStringLiteral("127.0.0.1"), server.port(), secure, sessionPath, streaming);
    }

    QPointer<Transport> transport;
    QStringList texts;
    int ends = 0;
    std::function<void()> onText;
    std::function<void()> onEnd;
};

QByteArray pollText(const QByteArray& cookie = QByteArray())
{
    return "POST /p/eventbus/119/abcdefgh/xhr HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: keep-alive\r\n"
           "Accept-Encoding: identity\r\nContent-Type: application/json\r\nContent-Length: 0\r\n" +
           cookie + "\r\n\r\n\r\n";
}

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

} // namespace

class tst_SockJSXHRPolling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void declaresItsSignalsAndSlots();

    void startFailsWithALogLine();
    void startRefusesTextThatBreaksTheRequest_data();
    void startRefusesTextThatBreaksTheRequest();
    void startRefusesASecondTime();
    void startAgainAfterAFailure();
    void secureStartUsesTheSecureAddress();
    void unknownCertificateIsRefused();
    void pathGetsExactlyOneSlash_data();
    void pathGetsExactlyOneSlash();
    void addressOfIPv6GetsBrackets();

    void pollIsWrittenByteForByte();
    void streamingRequestNamesItsPath();
    void requestWithPayload();
    void requestPathThatBreaksTheRequestIsRefused();
    void requestAfterCloseIsRefused();
    void requestBeforeStartIsRefused();
    void refusedRequestIsFreed();

    void noCookiesNoLine();
    void cookiesGoOutOnBothSides();
    void cookiesOfASendGoOutOnTheReceivingSide();
    void laterCookieReplacesAnEarlier();
    void cookiesInLowerCaseHeader();
    void cookieThatBreaksTheRequestIsRefused();

    void everyPollAnswerIssuesOnePoll();
    void streamingAnswersIssueNone();
    void endedStreamIsAskedForAgain();
    void pollIsNeverDoubled();
    void emptyAnswerIsAskedAgainAfterTheWait();
    void lostPollIsAskedAgain();
    void receivedTextIsLogged();
    void answersToOneRequestNeverFreeItTwice();

    void sendsAsItShould();
    void sendsInOrderOneAtATime();
    void failedSendIsLoggedAndLost();
    void sendsAcceptedBeforeCloseGoOut();
    void sendOverTlsVerifiesTheServer();

    void closeEndsOnce();
    void closeIsPrompt();
    void closeFrameEndsTheSession_data();
    void closeFrameEndsTheSession();
    void secondOpenFrameEndsTheSession();
    void unreachableServerEndsTheSession();

    void mayBeDeletedAnywhere_data();
    void mayBeDeletedAnywhere();
    void mayBeClosedAnywhere_data() { mayBeDeletedAnywhere_data(); }
    void mayBeClosedAnywhere();
    void destructorIsPrompt_data();
    void destructorIsPrompt();
    void givesItsThreadsAndDescriptorsBack();

    void retiredTransportIsSilentAndGoes();
    void retiredTransportSendsWhatItHas();
    void retiredTransportGivesUpOnASilentServer();
    void retiredTransportNeverStarted();

    void goesThroughTheSystemsProxy();
    void proxyThatWantsAPasswordFailsClearly();
};

void tst_SockJSXHRPolling::initTestCase()
{
    qunsetenv("http_proxy");
    qRegisterMetaType<QStringMap>("QStringMap");
}

void tst_SockJSXHRPolling::declaresItsSignalsAndSlots()
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

void tst_SockJSXHRPolling::startFailsWithALogLine()
{
    quint16 port = 0;
    {
        const Server gone;
        port = gone.port();
    }
    Session session;
    LogRecorder log;
    QVERIFY(!session.transport->start(QStringLiteral("127.0.0.1"), port, false, sessionPath, false));
    QCOMPARE(log.debug(), QStringList("[SockJSXHRPolling] Connection refused"));
    QCOMPARE(session.ends, 0);
}

void tst_SockJSXHRPolling::startRefusesTextThatBreaksTheRequest_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("CR") << "a\rb";
    QTest::newRow("LF") << "a\nb";
    QTest::newRow("blank") << "a b";
    QTest::newRow("NUL") << QString(QLatin1String("a\0b", 3));
    QTest::newRow("a line of its own") << " HTTP/1.1\r\nX-Injected: 1\r\n";
}

void tst_SockJSXHRPolling::startRefusesTextThatBreaksTheRequest()
{
    QFETCH(QString, text);
    const Server server;
    Session session;
    LogRecorder log;
    QVERIFY(!session.transport->start(QStringLiteral("127.0.0.1"), server.port(), false,
                                      QLatin1Char('/') + text, false));
    QVERIFY(!session.transport->start(text, server.port(), false, sessionPath, false));
    QCOMPARE(log.debug("[SockJSXHRPolling]").size(), 2);
    QCOMPARE(server.connections(), 0);
}

void tst_SockJSXHRPolling::startRefusesASecondTime()
{
    Server server;
    Session session;
    QVERIFY(session.start(server));
    QVERIFY(!session.start(server));
    QTRY_COMPARE(server.count(), 1);
    QCOMPARE(server.connections(), 1);
}

void tst_SockJSXHRPolling::startAgainAfterAFailure()
{
    Server server;
    server.answer("/xhr", chunked("o\n"));
    Session session;
    QVERIFY(!session.transport->start(QStringLiteral("127.0.0.1"), 1, false, sessionPath, false));
    QVERIFY(session.start(server));
    QTRY_COMPARE(session.texts, QStringList("o"));
    session.transport->close();
    QTRY_COMPARE(session.ends, 1);
    server.answer("/xhr", chunked("o\n"));
    QVERIFY(session.start(server));
    QTRY_COMPARE(session.texts, QStringList({"o", "o"}));
    QCOMPARE(session.ends, 1);
}

void tst_SockJSXHRPolling::secureStartUsesTheSecureAddress()
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

void tst_SockJSXHRPolling::unknownCertificateIsRefused()
{
    const Server server(TestCertificates::server(QStringLiteral("loopback")));
    Session session;
    LogRecorder log;
    QVERIFY(!session.start(server, false, true));
    QCOMPARE(log.debug("[SockJSXHRPolling] ").size(), 1);
    QCOMPARE(server.received(0), QByteArray());
}

void tst_SockJSXHRPolling::pathGetsExactlyOneSlash_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("polled");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("with") << "/e/1" << QByteArray("/e/1/xhr") << QByteArray("/e/1/xhr_send");
    QTest::newRow("without") << "e/1" << QByteArray("/e/1/xhr") << QByteArray("/e/1/xhr_send");
    QTest::newRow("at the end too") << "/e/1/" << QByteArray("/e/1//xhr") << QByteArray("/e/1/xhr_send");
}

void tst_SockJSXHRPolling::pathGetsExactlyOneSlash()
{
    QFETCH(QString, path);
    Server server;
    server.answerAlways("/xhr_send", plain(""));
    Session session;
    QVERIFY(session.transport->start(QStringLiteral("127.0.0.1"), server.port(), false, path, false));
    session.transport->sendTextMessage(QStringLiteral("[]"));
    QTRY_COMPARE(server.count(), 2);
    QTEST(server.requests("/xhr").first().path, "polled");
    QTEST(server.requests("/xhr_send").first().path, "sent");
}

void tst_SockJSXHRPolling::addressOfIPv6GetsBrackets()
{
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHostIPv6))
        return; // this machine has none
    Session session;
    QVERIFY(session.transport->start(QStringLiteral("::1"), server.serverPort(), false, sessionPath, false));
    QTRY_VERIFY(server.hasPendingConnections());
    QTcpSocket* peer = server.nextPendingConnection();
    QTRY_VERIFY(peer->bytesAvailable() > 0);
    QVERIFY(peer->readAll().contains("\r\nHost: [::1]\r\n"));
}

void tst_SockJSXHRPolling::pollIsWrittenByteForByte()
{
    Server server;
    Session session;
    QVERIFY(session.start(server));
    QTRY_COMPARE(server.received(0), pollText());
}

void tst_SockJSXHRPolling::streamingRequestNamesItsPath()
{
    Server server;
    Session session;
    QVERIFY(session.start(server, true));
    QTRY_COMPARE(server.received(0), pollText().replace("/xhr ", "/xhr_streaming "));
}

void tst_SockJSXHRPolling::requestWithPayload()
{
    Server server;
    server.answerAlways("/xhr", plain("o\n"));
    Session session;
    QVERIFY(session.start(server));
    session.transport->doRequestXHR(QStringLiteral("/%1/other"), QStringLiteral("%2 pay"));
    QTRY_COMPARE(server.count("/other"), 1);
    const Server::Request request = server.requests("/other").first();
    QCOMPARE(request.path, QByteArray("/%1/other"));
    QCOMPARE(request.headers.value("content-length"), QByteArray("6"));
    QCOMPARE(request.body, QByteArray("%2 pay"));
}

void tst_SockJSXHRPolling::requestPathThatBreaksTheRequestIsRefused()
{
    Server server;
    server.answer("/xhr", plain("o\n"));
    Session session;
    QVERIFY(session.start(server));
    QTRY_COMPARE(server.count("/xhr"), 2);
    LogRecorder log;
    session.transport->doRequestXHR(QStringLiteral("/x HTTP/1.1\r\nInjected: 1"), QString());
    session.transport->doRequestXHR(QStringLiteral("/a b"), QString());
    QCOMPARE(log.debug("[SockJSXHRPolling]").size(), 2);
    session.transport->close();
    QTRY_COMPARE(session.ends, 1);
    QVERIFY(!server.received(0).contains("Injected"));
    QCOMPARE(server.count(), 2);
}

void tst_SockJSXHRPolling::requestAfterCloseIsRefused()
{
    Server server;
    Session session;
    QVERIFY(session.start(server));
    QTRY_COMPARE(server.count(), 1);
    session.transport->close();
    LogRecorder log;
    session.transport->doRequestXHR(QStringLiteral("/x"), QString());
    session.transport->doPoll();
    QTRY_COMPARE(session.ends, 1);
    session.transport->doPoll();
    QCOMPARE(log.debug(), QStringList({closedLine, closedLine, closedLine}));
    QCOMPARE(server.count(), 1);
}

void tst_SockJSXHRPolling::requestBeforeStartIsRefused()
{
    Session session;
    LogRecorder log;
    session.transport->doPoll();
    QCOMPARE(log.debug(), QStringList(closedLine));
}

void tst_SockJSXHRPolling::refusedRequestIsFreed()
{
    Server server;
    Session session;
    QVERIFY(session.start(server));
    QTRY_COMPARE(server.count(), 1);
    LogRecorder log;
    const int before = XHRRequest(QString(), QString()).requestId();
    for (int i = 0; i < 60; ++i)
        session.transport->doRequestXHR(QStringLiteral("/x"), QString());
    QCOMPARE(XHRRequest(QString(), QString()).requestId(), before + 61);
    // What is not freed here, the leak check of a sanitized run reports.
    QCOMPARE(
        log.debug("[SockJSXHRPollingWorker] Async socket tx queue error: Too many items in queue!").size(),
        9);
}

void tst_SockJSXHRPolling::noCookiesNoLine()
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

void tst_SockJSXHRPolling::cookiesGoOutOnBothSides()
{
    Server server;
    server.answer("/xhr", plain("o\n", "Set-Cookie: a=1; path=/\r\nSet-Cookie: b=2 3; path=/; HttpOnly\r\n"));
    server.answerAlways("/xhr_send", plain(""));
    Session session;
    LogRecorder log;
    QVERIFY(session.start(server));
    QTRY_COMPARE(server.count("/xhr"), 2);
    QCOMPARE(session.transport->getCookieCount(), 2);
    QCOMPARE(session.transport->getCookieString(), QStringLiteral("a=1; b=2 3; "));
    QTRY_VERIFY(server.received(0).endsWith(pollText("Cookie: a=1; b=2 3; \r\n")));
    QCOMPARE(log.debug(cookiesLine).size(), 1);
    session.transport->sendTextMessage(QStringLiteral("[]"));
    QTRY_COMPARE(server.count("/xhr_send"), 1);
    QCOMPARE(server.requests("/xhr_send").first().headers.value("cookie"), QByteArray("a=1; b=2 3"));
}

void tst_SockJSXHRPolling::cookiesOfASendGoOutOnTheReceivingSide()
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

void tst_SockJSXHRPolling::laterCookieReplacesAnEarlier()
{
    Server server;
    server.answer("/xhr", plain("o\n", "Set-Cookie: a=1\r\n"));
    server.answer("/xhr", plain("h\n", "Set-Cookie: a=2\r\n"));
    Session session;
    QVERIFY(session.start(server));
    QTRY_COMPARE(server.count("/xhr"), 3);
    QCOMPARE(session.transport->getCookieString(), QStringLiteral("a=2; "));
}

void tst_SockJSXHRPolling::cookiesInLowerCaseHeader()
{
    Server server;
    server.answer("/xhr", "HTTP/1.1 200 OK\r\nset-cookie: a=1\r\ncontent-length: 2\r\n\r\no\n");
    Session session;
    QVERIFY(session.start(server));
    QTRY_COMPARE(session.transport->getCookieString(), QStringLiteral("a=1; "));
}

void tst_SockJSXHRPolling::cookieThatBreaksTheRequestIsRefused()
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

void tst_SockJSXHRPolling::everyPollAnswerIssuesOnePoll()
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

void tst_SockJSXHRPolling::streamingAnswersIssueNone()
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

void tst_SockJSXHRPolling::endedStreamIsAskedForAgain()
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

void tst_SockJSXHRPolling::pollIsNeverDoubled()
{
    Server server;
    server.answer("/xhr", Server::Script{Server::hold(), Server::send(plain("o\n"))});
    Session session;
    QVERIFY(session.start(server));
    for (int i = 0; i < 10; ++i)
        session.transport->doPoll();
    QTRY_COMPARE(server.count(), 1);
    for (int i = 0; i < 10; ++i)
        session.transport->doPoll();
    server.release();
    QTRY_COMPARE(server.count(), 2);
    session.transport->doPoll();
    server.dropConnections();
    QTRY_COMPARE(server.connections(), 2);
    session.transport->doPoll();
    QTRY_COMPARE(server.count(), 3);
    session.transport->close();
    QTRY_COMPARE(session.ends, 1);
    QCOMPARE(server.count(), 3);
}

void tst_SockJSXHRPolling::emptyAnswerIsAskedAgainAfterTheWait()
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

void tst_SockJSXHRPolling::lostPollIsAskedAgain()
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

void tst_SockJSXHRPolling::receivedTextIsLogged()
{
    Server server;
    server.answer("/xhr", plain("a[\"ä\"]\n"));
    Session session;
    LogRecorder log;
    QVERIFY(session.start(server));
    QTRY_COMPARE(log.debug("[SockJSXHRPolling]"),
                 QStringList(QStringLiteral("[SockJSXHRPolling] RECEIVED: a[\"ä\"]")));
}

void tst_SockJSXHRPolling::answersToOneRequestNeverFreeItTwice()
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

void tst_SockJSXHRPolling::sendsAsItShould()
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

void tst_SockJSXHRPolling::sendsInOrderOneAtATime()
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

void tst_SockJSXHRPolling::failedSendIsLoggedAndLost()
{
    Server server;
    server.answer("/xhr_send", "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
    server.answer("/xhr_send", plain(""));
    Session session;
    QVERIFY(session.start(server));
    LogRecorder log;
    session.transport->sendTextMessage(QStringLiteral("[1]"));
    session.transport->sendTextMessage(QStringLiteral("[2]"));
    QTRY_VERIFY(server.isUsedUp());
    QTRY_COMPARE(log.debug(sendErrorLine).size(), 1);
    QVERIFY(log.debug(sendErrorLine).first().contains(QLatin1String("Not Found")));
    const QList<Server::Request> requests = server.requests("/xhr_send");
    QCOMPARE(requests.size(), 2);
    QCOMPARE(requests.first().body, QByteArray("[1]"));
    QCOMPARE(requests.last().body, QByteArray("[2]"));
    QCOMPARE(session.ends, 0);
}

void tst_SockJSXHRPolling::sendsAcceptedBeforeCloseGoOut()
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

void tst_SockJSXHRPolling::sendOverTlsVerifiesTheServer()
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

void tst_SockJSXHRPolling::closeEndsOnce()
{
    Server server;
    server.answer("/xhr", plain("o\n"));
    Session session;
    QVERIFY(session.start(server));
    QTRY_COMPARE(server.count(), 2);
    session.transport->close();
    QCOMPARE(session.ends, 0);
    session.transport->close();
    QTRY_COMPARE(session.ends, 1);
    session.transport->close();
    QTRY_COMPARE(server.openConnections(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(session.ends, 1);
}

void tst_SockJSXHRPolling::closeIsPrompt()
{
    Server server;
    qint64 best = patience;
    for (int i = 0; i < 5 && best > 50; ++i) {
        Session session;
        QVERIFY(session.start(server));
        QTRY_COMPARE(server.count(), i + 1);
        QElapsedTimer clock;
        clock.start();
        session.transport->close();
        while (session.ends == 0 && clock.elapsed() < patience)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        best = std::min(best, clock.elapsed());
    }
    QVERIFY2(best <= 50, qPrintable(QString::number(best)));
}

void tst_SockJSXHRPolling::closeFrameEndsTheSession_data()
{
    QTest::addColumn<bool>("streaming");
    QTest::newRow("polling") << false;
    QTest::newRow("streaming") << true;
}

void tst_SockJSXHRPolling::closeFrameEndsTheSession()
{
    QFETCH(bool, streaming);
    Server server;
    server.answer("/xhr", plain("o\n"));
    server.answer("/xhr", plain("c[3000,\"Go away!\"]\n"));
    server.answer("/xhr_streaming",
                  chunkedHead() + chunk("o\n") + chunk("c[3000,\"Go away!\"]\n") + endChunk());
    Session session;
    QVERIFY(session.start(server, streaming));
    QTRY_COMPARE(session.ends, 1);
    QCOMPARE(session.texts, QStringList({"o", "c[3000,\"Go away!\"]"}));
    QTRY_COMPARE(server.openConnections(), 0);
    QCOMPARE(server.count(), streaming ? 1 : 2);
}

void tst_SockJSXHRPolling::secondOpenFrameEndsTheSession()
{
    Server server;
    server.answer("/xhr", plain("o\n"));
    server.answer("/xhr", Server::Script{Server::close()});
    server.answer("/xhr", plain("o\n"));
    Session session;
    QVERIFY(session.start(server));
    QTRY_COMPARE(session.ends, 1);
    QCOMPARE(session.texts, QStringList({"o", "o"}));
}

void tst_SockJSXHRPolling::unreachableServerEndsTheSession()
{
    Server server;
    server.answer("/xhr", plain("o\n"));
    Session session;
    QVERIFY(session.start(server));
    QTRY_COMPARE(server.count(), 2);
    LogRecorder log;
    server.stopListening();
    server.dropConnections();
    QTRY_COMPARE_WITH_TIMEOUT(session.ends, 1, patience);
    QCOMPARE(log.debug("[SockJSXHRPollingWorker] Connection lost, attempting to re-establish...").size(), 11);
    session.transport->doPoll();
    QCOMPARE(log.debug(closedLine).size(), 1);
}

void tst_SockJSXHRPolling::mayBeDeletedAnywhere_data()
{
    QTest::addColumn<bool>("streaming");
    QTest::addColumn<QByteArray>("frames");
    QTest::addColumn<bool>("atEnd");
    for (const bool streaming : {false, true}) {
        const char* kind = streaming ? "streaming" : "polling";
        QTest::addRow("%s: open", kind) << streaming << QByteArray("o\n") << false;
        QTest::addRow("%s: messages", kind) << streaming << QByteArray("a[\"x\"]\n") << false;
        QTest::addRow("%s: close frame", kind) << streaming << QByteArray("c[1,\"\"]\n") << false;
        QTest::addRow("%s: end", kind) << streaming << QByteArray("c[1,\"\"]\n") << true;
    }
}

void tst_SockJSXHRPolling::mayBeDeletedAnywhere()
{
    QFETCH(bool, streaming);
    QFETCH(QByteArray, frames);
    QFETCH(bool, atEnd);
    Server server;
    server.answerAlways("/xhr", plain(frames));
    server.answerAlways("/xhr_streaming", chunkedHead() + chunk(frames) + chunk(frames) + endChunk());
    Session session;
    const auto deleteIt = [&session] { delete session.transport; };
    (atEnd ? session.onEnd : session.onText) = deleteIt;
    QVERIFY(session.start(server, streaming));
    session.transport->sendTextMessage(QStringLiteral("[]"));
    QTRY_VERIFY(!session.transport);
    QCOMPARE(session.ends, atEnd ? 1 : 0);
    QTRY_COMPARE(server.openConnections(), 0);
}

void tst_SockJSXHRPolling::mayBeClosedAnywhere()
{
    QFETCH(bool, streaming);
    QFETCH(QByteArray, frames);
    QFETCH(bool, atEnd);
    Server server;
    server.answerAlways("/xhr", plain(frames));
    server.answerAlways("/xhr_streaming", chunkedHead() + chunk(frames) + chunk(frames) + endChunk());
    Session session;
    const auto closeIt = [&session] { session.transport->close(); };
    (atEnd ? session.onEnd : session.onText) = closeIt;
    QVERIFY(session.start(server, streaming));
    QTRY_COMPARE(session.ends, 1);
    QTRY_COMPARE(server.openConnections(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(session.ends, 1);
}

void tst_SockJSXHRPolling::destructorIsPrompt_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("a poll is pending") << QByteArray();
    QTest::newRow("an answer is half received") << chunkedHead() + "5\r\nab";
    QTest::newRow("the next poll is held back") << plain("");
}

void tst_SockJSXHRPolling::destructorIsPrompt()
{
    QFETCH(QByteArray, answer);
    qint64 best = patience;
    for (int i = 0; i < 5 && best > 100; ++i) {
        Server server;
        if (!answer.isEmpty())
            server.answer("/xhr", answer);
        const int threads = ProcessResources::threads();
        auto session = std::make_unique<Session>();
        QVERIFY(session->start(server));
        QTRY_COMPARE(server.count(), 1);
        QElapsedTimer clock;
        clock.start();
        session.reset();
        best = std::min(best, clock.elapsed());
        QTRY_VERIFY(ProcessResources::threads() <= threads);
    }
    QVERIFY2(best <= 100, qPrintable(QString::number(best)));
}

void tst_SockJSXHRPolling::givesItsThreadsAndDescriptorsBack()
{
    Server server;
    server.answerAlways("/xhr", plain("h\n"));
    server.answerAlways("/xhr_send", plain("", "Connection: close\r\n"));
    const auto runOnce = [&server] {
        Session session;
        const bool started = session.start(server);
        session.transport->sendTextMessage(QStringLiteral("[]"));
        const bool received = QTest::qWaitFor([&session] { return session.texts.size() > 2; }, patience);
        session.transport->close();
        return started && received && QTest::qWaitFor([&session] { return session.ends == 1; }, patience);
    };
    QVERIFY(runOnce());
    QTRY_COMPARE(server.openConnections(), 0);
    const int threads = ProcessResources::threads();
    const int descriptors = ProcessResources::descriptors();
    for (int i = 0; i < 20; ++i)
        QVERIFY(runOnce());
    QTRY_COMPARE(server.openConnections(), 0);
    QTRY_VERIFY(ProcessResources::threads() <= threads);
    QTRY_VERIFY(ProcessResources::descriptors() <= descriptors);
}

void tst_SockJSXHRPolling::retiredTransportIsSilentAndGoes()
{
    Server server;
    server.answerAlways("/xhr", plain("h\n"));
    QObject parent;
    const QPointer<Transport> transport(new Transport(&parent));
    QSignalSpy texts(transport, &Transport::textMessageReceived);
    QSignalSpy ends(transport, &Transport::connectionClosed);
    QVERIFY(transport->start(QStringLiteral("127.0.0.1"), server.port(), false, sessionPath, false));
    QTRY_VERIFY(!texts.isEmpty());
    const int heard = texts.size();
    transport->retire();
    QVERIFY(!transport->parent());
    QTRY_VERIFY(!transport);
    QCOMPARE(texts.size(), heard);
    QCOMPARE(ends.size(), 0);
    QTRY_COMPARE(server.openConnections(), 0);
}

void tst_SockJSXHRPolling::retiredTransportSendsWhatItHas()
{
    Server server;
    server.answer("/xhr_send", Server::Script{Server::hold(), Server::send(plain(""))});
    server.answerAlways("/xhr_send", plain(""));
    const QPointer<Transport> transport(new Transport(nullptr));
    QVERIFY(transport->start(QStringLiteral("127.0.0.1"), server.port(), false, sessionPath, false));
    for (int i = 0; i < 3; ++i)
        transport->sendTextMessage(QString::number(i));
    transport->retire();
    QTRY_COMPARE(server.count("/xhr_send"), 1);
    QVERIFY(transport);
    server.release();
    QTRY_COMPARE(server.count("/xhr_send"), 3);
    QTRY_VERIFY(!transport);
}

void tst_SockJSXHRPolling::retiredTransportGivesUpOnASilentServer()
{
    Server server;
    const QPointer<Transport> transport(new Transport(nullptr));
    QVERIFY(transport->start(QStringLiteral("127.0.0.1"), server.port(), false, sessionPath, false));
    transport->sendTextMessage(QStringLiteral("[]"));
    transport->sendTextMessage(QStringLiteral("[]"));
    QElapsedTimer clock;
    clock.start();
    transport->retire();
    QTRY_VERIFY_WITH_TIMEOUT(!transport, 20000);
    QVERIFY(clock.elapsed() >= 9000);
    QCOMPARE(server.count("/xhr_send"), 1);
}

void tst_SockJSXHRPolling::retiredTransportNeverStarted()
{
    const QPointer<Transport> transport(new Transport(nullptr));
    transport->retire();
    QTRY_VERIFY(!transport);
}

void tst_SockJSXHRPolling::goesThroughTheSystemsProxy()
{
    // It stands for the proxy, and for the server that the proxy connects to.
    Server proxy;
    proxy.answer("server.invalid:80", "HTTP/1.1 200 Connection established\r\n\r\n");
    proxy.answer("/xhr", plain("o\n"));
    proxy.answer("/xhr_send", plain(""));
    proxy.answerAlways("server.invalid:80", "HTTP/1.1 200 Connection established\r\n\r\n");
    const SystemProxy system(proxy.port());
    Session session;
    QVERIFY(session.transport->start(QStringLiteral("server.invalid"), 80, false, sessionPath, false));
    QTRY_COMPARE(session.texts, QStringList("o"));
    session.transport->sendTextMessage(QStringLiteral("[]"));
    QTRY_COMPARE(proxy.count("/xhr_send"), 1);
    QCOMPARE(proxy.requests().first().method, QByteArray("CONNECT"));
}

void tst_SockJSXHRPolling::proxyThatWantsAPasswordFailsClearly()
{
    Server proxy;
    proxy.answerAlways(
        "server.invalid:80",
        Server::Script{Server::send("HTTP/1.1 407 Proxy Authentication Required\r\n"
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

QTEST_GUILESS_MAIN(tst_SockJSXHRPolling)
#include "tst_SockJSXHRPolling.moc"
