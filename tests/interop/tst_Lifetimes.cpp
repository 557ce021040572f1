#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"
#include "support/ProcessResources.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Learner>
#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterClient>

#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>

namespace {

struct World
{
    QString transport;
    QPointer<PresenterClient> client;
    QPointer<PresenterCollab> collab;

    bool logIn() { return client->doLogin(QStringLiteral("teacher"), QStringLiteral("chalk")); }
    bool create() { return client && client->doStartSession(QString()); }
    bool logInAndCreate() { return logIn() && create(); }
    bool start()
    {
        client->setSockJSOverrideProtocols({transport});
        PresenterCollab* channel = nullptr;
        const bool started = client->startWebsocket(&channel);
        if (started)
            collab = channel;
        return started;
    }
    bool isConnected() const { return collab && collab->isConnected(); }
    bool teach()
    {
        return logInAndCreate() && start() && QTest::qWaitFor([this] { return isConnected(); }, 20000);
    }
    bool teachesAndCloses()
    {
        int closed = 0;
        if (!teach())
            return false;
        QObject context;
        QObject::connect(collab, &PresenterCollab::connectionClosed, &context, [&closed] { ++closed; });
        collab->close();
        return QTest::qWaitFor([&closed] { return closed > 0; }, 20000) && closed == 1;
    }
    // To the whole session, and so to us.
    void send(const QString& body) const
    {
        collab->connector()->sendMessage(
            QStringLiteral("{\"type\":\"publish\",\"address\":\"%1\",\"body\":%2}")
                .arg(collab->sessionToken(), body),
            false);
    }
};

using Act = std::function<void()>;
using Action = std::function<void(World&)>;

const QMap<QString, Action> actions = {
    {"close",
     [](World& world) {
         if (world.collab)
             world.collab->close();
     }},
    {"open",
     [](World& world) {
         if (world.collab)
             world.collab->open({world.transport});
     }},
    {"delete collab", [](World& world) { delete world.collab; }},
    {"delete client", [](World& world) { delete world.client; }},
    {"quit", [](World&) { QCoreApplication::quit(); }},
    {"log out", [](World& world) { world.client->doLogout(); }},
    {"stop session", [](World& world) { world.client->doStopSession(); }},
    {"start again", [](World& world) { world.start(); }},
};

/// Brings the world to where something is possible. False when that was not reached.
using Way = std::function<bool(World&)>;
/// Brings the world to where the action is to happen, and has it happen. False when that was not reached.
using Occasion = std::function<bool(World&, const Act& act)>;

Occasion once(const Way& isThere)
{
    return [isThere](World& world, const Act& act) {
        const bool ready = isThere(world);
        act();
        return ready;
    };
}

// From a timer while \p operation waits for its reply.
Occasion during(const Way& isThere, const Action& operation)
{
    return [isThere, operation](World& world, const Act& act) {
        if (!isThere(world))
            return false;
        bool isRunning = true;
        bool acted = false;
        QTimer::singleShot(0, world.client, [&isRunning, &acted, act] {
            acted = isRunning;
            act();
        });
        operation(world);
        isRunning = false;
        return acted;
    };
}

// In a slot of \p signal of the object that \p sender gives, which \p cause brings about.
template<typename Sender, typename Signal>
Occasion inSlot(const Way& isThere, Sender sender, Signal signal, const Action& cause)
{
    return [=](World& world, const Act& act) {
        if (!isThere(world))
            return false;
        QObject context;
        bool acted = false;
        QObject::connect(sender(world), signal, &context, [&acted, act] {
            if (!std::exchange(acted, true))
                act();
        });
        cause(world);
        return QTest::qWaitFor([&acted] { return acted; }, 20000);
    };
}

// As soon as the client has a channel, which it opens in the same call.
bool actWhileOpening(World& world, const Act& act)
{
    if (!world.logInAndCreate())
        return false;
    bool acted = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        if (!world.client || !world.client->collab())
            return;
        watch.stop();
        world.collab = world.client->collab();
        acted = true;
        act();
    });
    watch.start(0);
    world.start();
    return acted;
}

QString typed(const char* type)
{
    QString block;
    Lzma::compress64(QStringLiteral("{}"), &block);
    return QStringLiteral(R"({"from":"device","type":"%1","data":["%2"]})").arg(QLatin1String(type), block);
}

QString gone(const char* type)
{
    return QStringLiteral(R"({"action":"unregister","client":{"type":"%1"}})").arg(QLatin1String(type));
}

// What brings this to the session.
Action sending(const QString& body)
{
    return [body](World& world) { world.send(body); };
}

const auto clientOf = [](World& world) { return world.client.data(); };
const auto channelOf = [](World& world) { return world.collab.data(); };
const auto connectorOf = [](World& world) { return world.collab->connector(); };
const auto handlerOf = [](World& world) { return world.collab->messageHandler(); };
const auto nothing = [](World&) { return true; };
const auto close = actions.value("close");

const QMap<QString, Occasion> withoutChannel = {
    {"before the login", once(nothing)},
    {"logged in", once(&World::logIn)},
    {"session created", once(&World::logInAndCreate)},
    {"waiting for the login", during(nothing, &World::logIn)},
    {"waiting for the session", during(&World::logIn, &World::create)},
    {"waiting for the start", during(&World::logInAndCreate, &World::start)},
    {"in requestProcessed", inSlot(nothing, clientOf, &PresenterClient::requestProcessed, &World::logIn)},
};

using Handler = CollaborationMessageHandler;

template<typename Signal>
Occasion inHandler(Signal signal, const QString& body)
{
    return inSlot(&World::teach, handlerOf, signal, sending(body));
}

const QMap<QString, Occasion> withChannel = {
    {"connected", once(&World::teach)},
    {"closed", once(&World::teachesAndCloses)},
    {"in connectionClosed", inSlot(&World::teach, channelOf, &PresenterCollab::connectionClosed, close)},
    {"in connected", inSlot(&World::teach, connectorOf, &SockJSConnector::connected, actions.value("open"))},
    {"in closed", inSlot(&World::teach, connectorOf, &SockJSConnector::closed, close)},
    {"in sockJSMessage", inSlot(&World::teach, connectorOf, &SockJSConnector::sockJSMessage, sending("{}"))},
    {"in learnerJoin", inHandler(&Handler::learnerJoin, typed("join"))},
    {"in learnerPollResponse", inHandler(&Handler::learnerPollResponse, typed("pollResponse"))},
    {"in learnerUnregister", inHandler(&Handler::learnerUnregister, gone("user"))},
    {"in controllerRegister", inHandler(&Handler::controllerRegister, gone("controller"))},
    {"in remoteControl", inHandler(&Handler::remoteControl, typed("nextCard"))},
    {"in learnerGetQuestion", inHandler(&Handler::learnerGetQuestion, typed("questionGet"))},
    {"in unhandledMessage", inHandler(&Handler::unhandledMessage, typed("other"))},
};

const QStringList needChannel = {"close", "open", "delete collab"};

} // namespace

/// What a host may do at any time, at every time: each action on each occasion, on each transport. Nothing
/// crashes or hangs, and a client that is still there teaches another lesson. CALYX_LIFETIMES names the one
/// transport to try.
class TestLifetimes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_classroom.start(Peers::classroom({QStringLiteral("--quiet")})));
        m_before = std::make_unique<ProcessResources::Snapshot>([this] {
            for (const QString& transport : Transport::all) {
                PresenterClient client(nullptr, m_classroom.url().toString());
                QVERIFY(World({transport, &client, nullptr}).teachesAndCloses());
            }
        });
    }

    void cleanupTestCase()
    {
        QCOMPARE(m_before->waitForSurplusToGo(), QString());
        m_classroom.end();
    }

    void cell_data()
    {
        columns<QString, QString, QString>();
        const auto addRows = [](const QString& transport, const QMap<QString, Occasion>& occasions,
                                const QStringList& without = {}) {
            for (const QString& occasion : occasions.keys()) {
                for (const QString& action : actions.keys()) {
                    if (!without.contains(action))
                        QTest::addRow("%s, %s, %s", qPrintable(occasion), qPrintable(action),
                                      qPrintable(transport))
                            << transport << action << occasion;
                }
            }
        };
        const QString only = qEnvironmentVariable("CALYX_LIFETIMES");
        if (only.isEmpty() || only == Transport::webSocket) {
            addRows(Transport::webSocket, withoutChannel, needChannel);
            // The other transports connect without events.
            addRows(Transport::webSocket, {{"while the channel opens", actWhileOpening}});
        }
        for (const QString& transport : Transport::all) {
            if (only.isEmpty() || only == transport)
                addRows(transport, withChannel);
        }
    }
    void cell()
    {
        const auto [transport, action, occasion] = row<QString, QString, QString>();
        const QPointer<PresenterClient> client(new PresenterClient(nullptr, m_classroom.url().toString()));
        World world{transport, client, nullptr};
        const Occasion occur = withoutChannel.value(occasion, withChannel.value(occasion, actWhileOpening));
        const bool reached = occur(world, [&, action = action] { actions.value(action)(world); });
        QVERIFY(reached);
        if (action == QLatin1String("quit"))
            forgetQuit();
        if (!client)
            return;
        QVERIFY(world.teachesAndCloses());
        delete client;
    }

private:
    Peer m_classroom;
    std::unique_ptr<ProcessResources::Snapshot> m_before;
};

INTEROP_MAIN(TestLifetimes)
#include "tst_Lifetimes.moc"
