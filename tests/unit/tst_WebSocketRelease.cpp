#include "support/FakeSockJSServer.h"
#include "support/Rows.h"
#include "support/TimerClock.h"
#include "support/WaitFor.h"
#include "transport/WebSocketRelease.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QWebSocket>

#include <memory>

namespace {

constexpr int longestFarewell = 5000; // ms

using Spies = std::vector<std::unique_ptr<QSignalSpy>>;

// Everything that a socket can tell of its end.
Spies spiesOn(QWebSocket* socket)
{
    Spies spies;
    for (const char* signal :
         {SIGNAL(disconnected()), SIGNAL(aboutToClose()), SIGNAL(stateChanged(QAbstractSocket::SocketState)),
          SIGNAL(error(QAbstractSocket::SocketError)), SIGNAL(textMessageReceived(QString)),
          SIGNAL(destroyed())})
        spies.push_back(std::make_unique<QSignalSpy>(socket, signal));
    return spies;
}

QUrl busUrl(quint16 port)
{
    return QUrl(QStringLiteral("ws://127.0.0.1:%1/bus/119/abcdefgh/websocket").arg(port));
}

enum Stage { New, BeforeTheUpgrade, Open, Ended };

} // namespace

Q_DECLARE_METATYPE(Stage)

/// How a WebSocket goes that nobody wants any more. One that outlives the application is in tst_ProcessExit.
class tst_WebSocketRelease : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<FakeSockJSServer>();
        m_socket = new QWebSocket;
    }

    void cleanup()
    {
        delete m_socket;
        m_server.reset();
    }

    void goesUnheardAtEveryStage_data()
    {
        rows<Stage>(
            {{"new", New}, {"before the upgrade", BeforeTheUpgrade}, {"open", Open}, {"ended", Ended}});
    }
    void goesUnheardAtEveryStage()
    {
        const auto [stage] = row<Stage>();
        QVERIFY(openUntil(stage));
        const Spies spies = spiesOn(m_socket);
        m_server->inject(QStringLiteral("a[\"late\"]"));
        releaseWebSocket(m_socket);
        QVERIFY(m_socket);
        QVERIFY(waitFor([&] { return !m_socket; }));
        QVERIFY(waitFor([&] { return m_server->openConnections() == 0; }));
        for (const auto& spy : spies)
            QCOMPARE(spy->size(), 0);
    }

    void whatWasSentArrives()
    {
        QVERIFY(openUntil(Open));
        // More than a socket takes at once.
        const QString large = QStringLiteral("0123456789abcdef").repeated(256 * 1024);
        m_socket->sendTextMessage(large);
        m_socket->sendTextMessage(QStringLiteral("last"));
        releaseWebSocket(m_socket);
        QVERIFY(m_server->nextFrame() == large);
        QCOMPARE(m_server->nextFrame(), QStringLiteral("last"));
        QVERIFY(waitFor([&] { return m_server->endedSessions() == 1; }));
        QVERIFY(waitFor([&] { return !m_socket; }));
    }

    void belongsToTheApplicationMeanwhile()
    {
        QObject owner;
        m_socket->setParent(&owner);
        QVERIFY(openUntil(Open));
        releaseWebSocket(m_socket);
        QCOMPARE(m_socket->parent(), QCoreApplication::instance());
        QVERIFY(waitFor([&] { return !m_socket; }));
    }

    void insideItsOwnMessage()
    {
        QVERIFY(openUntil(Open));
        QStringList heard;
        connect(m_socket, &QWebSocket::textMessageReceived, this, [&](const QString& text) {
            heard.append(text);
            releaseWebSocket(m_socket);
            heard.append(m_socket ? QStringLiteral("is still there") : QStringLiteral("is gone"));
        });
        m_server->inject(QStringLiteral("h"));
        m_server->inject(QStringLiteral("h"));
        QVERIFY(waitFor([&] { return !m_socket; }));
        QCOMPARE(heard.mid(heard.size() - 1), QStringList(QStringLiteral("is still there")));
        QCOMPARE(heard.count(QStringLiteral("is still there")), 1);
    }

    void insideItsOwnEnd()
    {
        QVERIFY(openUntil(Open));
        int ends = 0;
        connect(m_socket, &QWebSocket::disconnected, this, [&] {
            ++ends;
            releaseWebSocket(m_socket);
            QVERIFY(m_socket);
        });
        m_server->closeSession();
        QVERIFY(waitFor([&] { return !m_socket; }));
        QCOMPARE(ends, 1);
    }

    void peerThatDoesNotReadIsLeft()
    {
        m_server->setUpgrade(FakeSockJSServer::Deaf);
        m_socket->open(busUrl(m_server->port()));
        QVERIFY(waitFor([&] { return m_socket->state() == QAbstractSocket::ConnectedState; }));
        m_socket->sendTextMessage(QString(16 * 1024 * 1024, QLatin1Char('x'))); // more than fits in between
        releaseWebSocket(m_socket);
        TimerClock::advance(longestFarewell / 2);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(m_socket);
        TimerClock::advance(longestFarewell);
        QVERIFY(waitFor([&] { return !m_socket; }, longestFarewell / 2));
    }

private:
    bool openUntil(Stage stage)
    {
        const auto reaches = [this](QAbstractSocket::SocketState state) {
            return waitFor([&] { return m_socket->state() == state; });
        };
        if (stage == New)
            return true;
        m_server->setUpgrade(stage == BeforeTheUpgrade ? FakeSockJSServer::Silent : FakeSockJSServer::Open);
        m_socket->open(busUrl(m_server->port()));
        if (stage == BeforeTheUpgrade)
            return waitFor([&] { return m_server->paths().size() == 1; });
        if (!reaches(QAbstractSocket::ConnectedState))
            return false;
        if (stage == Open)
            return true;
        m_server->dropConnections();
        return reaches(QAbstractSocket::UnconnectedState);
    }

    std::unique_ptr<FakeSockJSServer> m_server;
    QPointer<QWebSocket> m_socket;
};

QTEST_GUILESS_MAIN(tst_WebSocketRelease)
#include "tst_WebSocketRelease.moc"
