#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"
#include "support/ProcessResources.h"
#include "support/Rows.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Learner>
#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterClient>

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
        return logIn() && create() && start() && QTest::qWaitFor([this] { return isConnected(); }, 20000);
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

using Action = std::function<void(World&)>;
using Act = std::function<void()>;

const QMap<QString, Action> actions = {
    {QStringLiteral("close"),
     [](World& world) {
         if (world.collab)
             world.collab->close();
     }},
    {QStringLiteral("open"),
     [](World& world) {
         if (world.collab)
             world.collab->open({world.transport});
     }},
    {QStringLiteral("delete collab"), [](World& world) { delete world.collab; }},
    {QStringLiteral("delete client"), [](World& world) { delete world.client; }},
    {QStringLiteral("quit"), [](World&) { QCoreApplication::quit(); }},
    {QStringLiteral("log out"), [](World& world) { world.client->doLogout(); }},
    {QStringLiteral("stop session"), [](World& world) { world.client->doStopSession(); }},
    {QStringLiteral("start again"), [](World& world) { world.start(); }},
};

/// Brings the world to where the action is to happen, and has it happen. False when that was not reached.
using Occasion = std::function<bool(World&, const Act& act)>;

// From a timer while \p operation waits for its reply.
bool actDuring(World& world, const Act& act, const Act& operation)
{
    bool isRunning = true;
    bool acted = false;
    QTimer::singleShot(0, world.client, [&isRunning, &acted, act] {
        acted = isRunning;
        act();
    });
    operation();
    isRunning = false;
    return acted;
}

// As soon as the client has a channel, which it opens in the same call.
bool actDuringTheOpening(World& world, const Act& act)
{
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

// In a slot of \p signal, which \p cause brings about.
template<typename Sender, typename Signal>
bool actIn(Sender* sender, Signal signal, const Act& act, const Act& cause)
{
    QObject context;
    bool acted = false;
    QObject::connect(sender, signal, &context, [&acted, act] {
        if (std::exchange(acted, true))
            return;
        act();
    });
    cause();
    return QTest::qWaitFor([&acted] { return acted; }, 20000);
}

QString typed(const QString& type, const QString& data)
{
    QString block;
    Lzma::compress64(data, &block);
    return QStringLiteral("{\"from\":\"device\",\"type\":\"%1\",\"data\":[\"%2\"]}").arg(type, block);
}

template<typename Signal>
Occasion inSlotOf(Signal signal, const QString& body)
{
    return [signal, body](World& world, const Act& act) {
        return world.teach() && actIn(world.collab->messageHandler(), signal, act, [&] { world.send(body); });
    };
}

const QMap<QString, Occasion> withoutChannel = {
    {QStringLiteral("before the login"),
     [](World&, const Act& act) {
         act();
         return true;
     }},
    {QStringLiteral("logged in"),
     [](World& world, const Act& act) {
         const bool ready = world.logIn();
         act();
         return ready;
     }},
    {QStringLiteral("session created"),
     [](World& world, const Act& act) {
         const bool ready = world.logIn() && world.create();
         act();
         return ready;
     }},
    {QStringLiteral("waiting for the login"),
     [](World& world, const Act& act) { return actDuring(world, act, [&] { world.logIn(); }); }},
    {QStringLiteral("waiting for the session"),
     [](World& world, const Act& act) {
         return world.logIn() && actDuring(world, act, [&] { world.create(); });
     }},
    {QStringLiteral("waiting for the start"),
     [](World& world, const Act& act) {
         return world.logIn() && world.create() && actDuring(world, act, [&] { world.start(); });
     }},
    {QStringLiteral("in requestProcessed"),
     [](World& world, const Act& act) {
         return actIn(world.client.data(), &PresenterClient::requestProcessed, act, [&] { world.logIn(); });
     }},
};

using Handler = CollaborationMessageHandler;

const QMap<QString, Occasion> withChannel = {
    {QStringLiteral("connected"),
     [](World& world, const Act& act) {
         const bool ready = world.teach();
         act();
         return ready;
     }},
    {QStringLiteral("closed"),
     [](World& world, const Act& act) {
         const bool ready = world.teach() && actIn(
                                                 world.collab.data(), &PresenterCollab::connectionClosed,
                                                 [] {}, [&] { world.collab->close(); });
         act();
         return ready;
     }},
    {QStringLiteral("in connectionClosed"),
     [](World& world, const Act& act) {
         return world.teach() && actIn(world.collab.data(), &PresenterCollab::connectionClosed, act,
                                       [&] { world.collab->close(); });
     }},
    {QStringLiteral("in connected"),
     [](World& world, const Act& act) {
         return world.teach() && actIn(world.collab->connector(), &SockJSConnector::connected, act,
                                       [&] { world.collab->open({world.transport}); });
     }},
    {QStringLiteral("in closed"),
     [](World& world, const Act& act) {
         return world.teach() && actIn(world.collab->connector(), &SockJSConnector::closed, act,
                                       [&] { world.collab->close(); });
     }},
    {QStringLiteral("in sockJSMessage"),
     [](World& world, const Act& act) {
         return world.teach() && actIn(world.collab->connector(), &SockJSConnector::sockJSMessage, act,
                                       [&] { world.send(QStringLiteral("{}")); });
     }},
    {QStringLiteral("in learnerJoin"),
     inSlotOf(&Handler::learnerJoin, typed(QStringLiteral("join"), QStringLiteral("{}")))},
    {QStringLiteral("in learnerPollResponse"),
     inSlotOf(&Handler::learnerPollResponse, typed(QStringLiteral("pollResponse"), QStringLiteral("{}")))},
    {QStringLiteral("in learnerUnregister"),
     inSlotOf(&Handler::learnerUnregister,
              QStringLiteral("{\"action\":\"unregister\",\"client\":{\"type\":\"user\"}}"))},
    {QStringLiteral("in controllerRegister"),
     inSlotOf(&Handler::controllerRegister,
              QStringLiteral("{\"action\":\"unregister\",\"client\":{\"type\":\"controller\"}}"))},
    {QStringLiteral("in remoteControl"),
     inSlotOf(&Handler::remoteControl, typed(QStringLiteral("nextCard"), QStringLiteral("{}")))},
    {QStringLiteral("in learnerGetQuestion"),
     inSlotOf(&Handler::learnerGetQuestion, typed(QStringLiteral("questionGet"), QStringLiteral("{}")))},
    {QStringLiteral("in unhandledMessage"),
     inSlotOf(&Handler::unhandledMessage, typed(QStringLiteral("other"), QStringLiteral("{}")))},
};

const QMap<QString, Occasion> whileOpening = {
    {QStringLiteral("while the channel opens"),
     [](World& world, const Act& act) {
         return world.logIn() && world.create() && actDuringTheOpening(world, act);
     }},
};

Occasion occasionOf(const QString& name)
{
    for (const auto* occasions : {&withoutChannel, &withChannel, &whileOpening}) {
        if (occasions->contains(name))
            return occasions->value(name);
    }
    return Occasion();
}

const QStringList needChannel = {QStringLiteral("close"), QStringLiteral("open"),
                                 QStringLiteral("delete collab")};

// What quit() leaves behind lasts until the application runs again.
void forgetQuit()
{
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

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
        m_classroom = std::make_unique<Peer>(Peers::classroom({QStringLiteral("--quiet")}));
        VERIFY_STARTED(m_classroom->start());
        // What Qt starts once and keeps is there from now on.
        for (const QString& transport : Transport::all) {
            PresenterClient client(nullptr, m_classroom->url().toString());
            QVERIFY(World({transport, &client, nullptr}).teachesAndCloses());
        }
        m_threads = ProcessResources::threads();
        m_descriptors = ProcessResources::descriptors();
    }

    void cleanupTestCase()
    {
        qInfo("%d cells", m_cells);
        QTRY_VERIFY2_WITH_TIMEOUT(ProcessResources::threads() <= m_threads,
                                  qPrintable(QString::number(ProcessResources::threads())), 15000);
        QTRY_VERIFY2_WITH_TIMEOUT(ProcessResources::descriptors() <= m_descriptors,
                                  qPrintable(QString::number(ProcessResources::descriptors())), 15000);
        m_classroom.reset();
    }

    void cell_data()
    {
        columns<QString, QString, QString>();
        const auto addRows = [this](const QString& transport, const QMap<QString, Occasion>& occasions,
                                    const QStringList& without = {}) {
            for (auto occasion = occasions.cbegin(); occasion != occasions.cend(); ++occasion) {
                for (const QString& action : actions.keys()) {
                    if (without.contains(action))
                        continue;
                    ++m_cells;
                    QTest::addRow("%s, %s, %s", qPrintable(occasion.key()), qPrintable(action),
                                  qPrintable(transport))
                        << transport << action << occasion.key();
                }
            }
        };
        const QString only = qEnvironmentVariable("CALYX_LIFETIMES");
        if (only.isEmpty() || only == Transport::webSocket) {
            addRows(Transport::webSocket, withoutChannel, needChannel);
            // The other transports connect without events.
            addRows(Transport::webSocket, whileOpening);
        }
        for (const QString& transport : Transport::all) {
            if (only.isEmpty() || only == transport)
                addRows(transport, withChannel);
        }
    }

    void cell()
    {
        const auto [transport, action, occasion] = row<QString, QString, QString>();
        const QString server = m_classroom->url().toString();
        const QPointer<PresenterClient> client(new PresenterClient(nullptr, server));
        World world{transport, client, nullptr};

        const bool reached =
            occasionOf(occasion)(world, [&, action = action] { actions.value(action)(world); });
        QVERIFY(reached);
        if (action == QLatin1String("quit"))
            forgetQuit();
        if (!client)
            return;
        QVERIFY(world.teachesAndCloses());
        delete client;
    }

private:
    std::unique_ptr<Peer> m_classroom;
    int m_cells = 0;
    int m_threads = 0;
    int m_descriptors = 0;
};

INTEROP_MAIN(TestLifetimes)
#include "tst_Lifetimes.moc"
