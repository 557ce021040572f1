#include "support/ConnectorTest.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"

#include <QNetworkProxy>
#include <QTest>

namespace {

constexpr int manyTimes = 500;
// What belongs to a session that is being ended goes a little later than its `closed`: threads and
// descriptors of so many sessions may be there at a time.
constexpr int overlapping = 20;
constexpr int threadsOfASession = 2;      // the receiver, and Qt's for the posts
constexpr int descriptorsOfASession = 16; // sockets of both ends, and those by which threads wake each other

} // namespace

/// Hosts that close, open and delete a connector at every moment of its life and from each of its signals, on
/// each transport, and for a whole day.
class TestHostActions : public ConnectorTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        m_before = std::make_unique<ProcessResources::Snapshot>([this] {
            for (const Protocol protocol : SockJSConnector::GetDefaultProtocols()) {
                setUp();
                m_protocols = {protocol};
                QVERIFY(opensAndEnds(QStringLiteral("close")));
                tearDown();
            }
        });
    }

    void hostActs_data()
    {
        columns<QString, int, QString>();
        for (const char* transport : {"websocket", "fallback", "xhr-streaming", "xhr-polling"}) {
            for (int i = 0; i < moments().size(); ++i) {
                // While an XHR transport is opened no event is processed, and nobody can act.
                if (moments().at(i).isWithinOpen && qstrcmp(transport, "websocket") != 0)
                    continue;
                for (const char* action : {"close", "open", "delete"})
                    QTest::addRow("%s, %s %s", transport, action, moments().at(i).name)
                        << QString::fromLatin1(transport) << i << QString::fromLatin1(action);
            }
        }
    }
    void hostActs()
    {
        const auto [transport, moment, action] = row<QString, int, QString>();
        m_falls = transport == QLatin1String("fallback");
        m_isWebSocket = transport == QLatin1String("websocket");
        m_protocols = m_falls         ? webSocket
                      : m_isWebSocket ? webSocketThenPolling // of which the second is not tried
                                      : SockJSConnector::GetProtocolsFromStrings({transport});
        if (m_falls)
            m_server->setUpgrade(Server::CloseAfterUpgrade);
        m_action = action;
        m_acted = false;
        moments().at(moment).reach(*this);
        if (QTest::currentTestFailed())
            return;
        QTRY_VERIFY(m_acted);
        verify(moments().at(moment).closed);
        if (QTest::currentTestFailed())
            return;
        QVERIFY(!m_isWebSocket || m_server->count(QStringLiteral("/xhr")) == 0);
        QCOMPARE(m_log->warnings(), QStringList());
        tearDown();
        QCOMPARE(m_before->waitForSurplusToGo(), QString());
    }

    void opensAndEndsManyTimes_data()
    {
        combinations({{"websocket", "xhr-streaming", "xhr-polling"},
                      {"close", "closed by the server", "open", "delete"}});
    }
    void opensAndEndsManyTimes()
    {
        const auto [transport, end] = row<QString, QString>();
        m_protocols = SockJSConnector::GetProtocolsFromStrings({transport});
        const int threads = ProcessResources::threads();
        const int descriptors = ProcessResources::descriptors();
        for (int i = 0; i < manyTimes; ++i) {
            QVERIFY2(opensAndEnds(end), qPrintable(QString::number(i)));
            forgetLog(); // or the log of all of them is kept
            QVERIFY2(ProcessResources::threads() <= threads + overlapping * threadsOfASession,
                     qPrintable(QString::number(ProcessResources::threads())));
            QVERIFY2(ProcessResources::descriptors() <= descriptors + overlapping * descriptorsOfASession,
                     qPrintable(QString::number(ProcessResources::descriptors())));
        }
        tearDown();
        QCOMPARE(m_before->waitForSurplusToGo(), QString());
    }

private:
    // How a moment and `closed` belong together.
    enum Closed {
        Never,   ///< there is no connection yet
        Follows, ///< there is one: `closed` follows from close(), and only from it
        Pending, ///< it has ended already, and `closed` is on its way
        Ending,  ///< it is just being ended from elsewhere
        Told     ///< `closed` has been emitted
    };
    struct Moment
    {
        const char* name;
        Closed closed;
        void (*reach)(TestHostActions& test);
        bool isWithinOpen = false;
    };

    static const QVector<Moment>& moments()
    {
        using T = TestHostActions;
        static const QVector<Moment> all = {
            {"before opening", Never, [](T& t) { t.act(); }},
            {"while opening", Never, [](T& t) { t.actWhileOpening(Server::Silent); }, true},
            {"while being refused", Never, [](T& t) { t.actWhileOpening(Server::Refuse403); }, true},
            {"while being reset", Never, [](T& t) { t.actWhileOpening(Server::ResetInstead); }, true},
            {"in connected within open", Follows, [](T& t) { t.actInConnectedWithinOpen(); }, true},
            {"before the open frame", Follows, [](T& t) { t.actBeforeTheOpenFrame(); }},
            {"in connected", Follows, [](T& t) { t.actInConnected(); }},
            {"when open", Follows, [](T& t) { t.actAfter([] {}); }},
            {"in a message", Follows, [](T& t) { t.actInMessage(); }},
            {"with half a frame received", Follows, [](T& t) { t.actWithHalfAFrame(); }},
            {"right after sending", Follows,
             [](T& t) { t.actAfter([&t] { t.send(QString(1024 * 1024, QLatin1Char('x'))); }); }},
            {"with an unanswered post", Follows, [](T& t) { t.actWithAnUnansweredPost(); }},
            {"when the connection is just lost", Ending,
             [](T& t) { t.actAfter([&t] { t.m_server->dropConnections(); }); }},
            {"when the server has just closed", Ending,
             [](T& t) { t.actAfter([&t] { t.m_server->closeSession(); }); }},
            {"in closed by the server", Told,
             [](T& t) { t.actInClosed([&t] { t.m_server->closeSession(); }); }},
            {"right after close", Pending, [](T& t) { t.actAfter([&t] { t.m_connector->close(); }); }},
            {"in closed by us", Told, [](T& t) { t.actInClosed([&t] { t.m_connector->close(); }); }},
            {"when closed", Told, [](T& t) { t.actWhenClosed(); }},
        };
        return all;
    }

    void actWhileOpening(Server::Upgrade upgrade)
    {
        m_server->setUpgrades({upgrade, Server::Open});
        // Queued: from the event loop in which open() waits, not from inside the server.
        const auto guard = connect(m_server.get(), &Server::requested, this, &TestHostActions::actOnce,
                                   Qt::QueuedConnection);
        QVERIFY(open(QStringLiteral("/first")));
        disconnect(guard);
    }

    void actBeforeTheOpenFrame()
    {
        m_server->setFirstFrames({});
        QVERIFY(open(QStringLiteral("/first")));
        QTRY_VERIFY(!m_server->requests().isEmpty() &&
                    (!m_falls || m_server->count(QStringLiteral("/xhr")) > 0));
        m_server->setFirstFrames({QStringLiteral("o")});
        act();
    }

    void actInConnectedWithinOpen()
    {
        m_server->setUpgrades({Server::OpenInSamePacket, Server::Open});
        actInConnected();
    }

    void actInConnected()
    {
        connect(m_connector, &SockJSConnector::connected, this, &TestHostActions::actOnce);
        QVERIFY(open(QStringLiteral("/first")));
    }

    void actInMessage()
    {
        m_server->setFirstFrames({"o", "a[\"one\",\"two\"]", "a[\"three\"]"});
        connect(m_connector, &SockJSConnector::sockJSMessage, this, &TestHostActions::actOnce);
        QVERIFY(open(QStringLiteral("/first")));
    }

    void actWithHalfAFrame()
    {
        if (m_isWebSocket || m_falls)
            m_server->setUpgrades({Server::OpenInSamePacket, Server::Open});
        QVERIFY(openFirst());
        m_server->injectHalf();
        QVERIFY(anotherSessionOpens());
        act();
    }

    void actWithAnUnansweredPost()
    {
        m_server->holdPosts();
        QVERIFY(openFirst());
        send(QStringLiteral("one"));
        send(QStringLiteral("two"));
        QTRY_VERIFY(!m_server->unreadFrames().isEmpty());
        act();
    }

    void actWhenClosed()
    {
        QVERIFY(openFirst());
        m_connector->close();
        QTRY_VERIFY(m_probe->hasClosed());
        act();
    }

    void actAfter(const std::function<void()>& event)
    {
        QVERIFY(openFirst());
        event();
        act();
    }

    void actInClosed(const std::function<void()>& cause)
    {
        QVERIFY(openFirst());
        connect(m_connector, &SockJSConnector::closed, this, &TestHostActions::actOnce);
        cause();
    }

    bool opensAndEnds(const QString& end)
    {
        const int closed = closedCount();
        if (!m_probe->openSession(m_server->url(), m_protocols))
            return false;
        send(QStringLiteral("hello"));
        if (m_server->nextMessage() != QLatin1String("hello") || !syncInbound())
            return false;
        if (end == QLatin1String("open"))
            return true;
        if (end == QLatin1String("delete")) {
            delete m_connector;
            m_connector = new SockJSConnector;
            m_probe = std::make_unique<ConnectorProbe>(m_connector);
            return true;
        }
        if (end == QLatin1String("close"))
            m_connector->close();
        else
            m_server->closeSession();
        return waitFor([&] { return closedCount() == closed + 1; });
    }

    // By its end everything that was on its way before has happened.
    bool anotherSessionOpens()
    {
        m_server->setUpgrade(Server::Open);
        m_server->setFirstFrames({QStringLiteral("o")});
        SockJSConnector other;
        return ConnectorProbe(&other).openSession(m_server->url(QStringLiteral("/other")), webSocket);
    }

    void send(const QString& text) { m_connector->sendMessage(text, false); }
    bool open(const QString& path) { return m_probe->open(m_server->url(path), m_protocols); }

    bool openFirst()
    {
        return open(QStringLiteral("/first")) && waitFor([this] { return isOpen(); });
    }
    bool isOpen() const { return m_connector && m_connector->isConnected(); }
    int closedCount() const { return m_probe->count(QStringLiteral("closed false")); }

    void act()
    {
        m_acted = true;
        if (m_action == QLatin1String("close"))
            m_connector->close();
        else if (m_action == QLatin1String("delete"))
            delete m_connector;
        else
            open(QStringLiteral("/second"));
    }

    void actOnce()
    {
        if (!m_acted)
            act();
    }

    void verify(Closed closed)
    {
        if (m_action == QLatin1String("delete"))
            return verifyDeleted(closed);
        if (m_action == QLatin1String("close"))
            verifyClosed(closed);
        if (!QTest::currentTestFailed())
            verifySecondSession();
        const int times = closedCount();
        if (m_action == QLatin1String("close"))
            QCOMPARE(times, closed == Never ? 0 : 1);
        else if (closed == Ending)
            QVERIFY(times <= 1);
        else
            QCOMPARE(times, closed == Pending || closed == Told ? 1 : 0);
    }

    void verifyDeleted(Closed closed)
    {
        QVERIFY(!m_connector);
        QVERIFY(anotherSessionOpens());
        QCOMPARE(closedCount(), closed == Told ? 1 : 0);
    }

    void verifyClosed(Closed closed)
    {
        QTRY_COMPARE(closedCount(), closed == Never ? 0 : 1);
        QVERIFY(!m_connector->isConnected());
        QVERIFY(open(QStringLiteral("/second")));
    }

    // It works in both directions, and the end of the first one does not touch it.
    void verifySecondSession()
    {
        QTRY_VERIFY(isOpen());
        QVERIFY(syncInbound());
        const auto text = QStringLiteral("to the second session");
        m_connector->sendMessage(text, true);
        QString message;
        do {
            message = m_server->nextMessage();
        } while (!message.isNull() && message != text);
        QCOMPARE(message, text);
        QVERIFY(m_server->paths().last().startsWith(QLatin1String("/second/")));
        QVERIFY(syncInbound());
        QVERIFY(isOpen());
        const QStringList events = m_probe->events();
        QVERIFY2(events.lastIndexOf(QStringLiteral("closed false")) <
                     events.lastIndexOf(QStringLiteral("connected")),
                 qPrintable(events.join(QLatin1Char('|'))));
    }

    std::unique_ptr<ProcessResources::Snapshot> m_before;
    Protocols m_protocols;
    bool m_falls = false;
    bool m_isWebSocket = false;
    QString m_action;
    bool m_acted = false;
};

QTEST_GUILESS_MAIN(TestHostActions)
#include "tst_HostActions.moc"
