// A host whose process ends while its connector is in some state: exitingHost URL TRANSPORT STATE EXIT
//
// It says "exiting" when it is there, and then ends with status 0 and without another word.
// The ways "on a thread..." have the connector on a thread that the host ends before the application.

#include <CalyxClient/SockJSConnector>

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QNetworkProxy>
#include <QThread>
#include <QTimer>
#include <QUrl>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>

namespace {

using Action = std::function<void()>;

std::unique_ptr<SockJSConnector>& keptConnector()
{
    static std::unique_ptr<SockJSConnector> connector;
    return connector;
}

class Host : public QObject
{
public:
    Host(SockJSConnector* connector, const QStringList& arguments, const Action& leave)
        : m_connector(connector)
        , m_url(arguments.at(1))
        , m_protocols(SockJSConnector::GetProtocolsFromStrings({arguments.at(2)}))
        , m_state(arguments.at(3))
        , m_leave(leave)
    {
        connect(connector, &SockJSConnector::connected, this, &Host::onConnected);
        connect(connector, &SockJSConnector::sockJSMessage, this, [this] { leaveIn("message"); });
        connect(connector, &SockJSConnector::closed, this, [this] { leaveIn("closed"); });
    }

    void run()
    {
        if (m_state == QLatin1String("idle"))
            return leave();
        // open() comes back later, or not before leave().
        if (m_state == QLatin1String("opening"))
            QTimer::singleShot(0, this, [this] { leave(); });
        m_connector->open(m_url, m_protocols);
        if (m_state == QLatin1String("waiting"))
            leave();
    }

private:
    void onConnected()
    {
        if (m_left)
            return;
        leaveIn("connected");
        if (m_state == QLatin1String("open"))
            QTimer::singleShot(0, this, [this] { leave(); });
        if (m_state == QLatin1String("sending")) {
            m_connector->sendMessage(QString(1024 * 1024, QLatin1Char('x')), false);
            m_connector->sendMessage(QStringLiteral("bye"), false);
            leave();
        }
        if (m_state == QLatin1String("closing") || m_state == QLatin1String("closed"))
            m_connector->close();
        leaveIn("closing");
        if (m_state == QLatin1String("reopening")) {
            m_state = QStringLiteral("waiting");
            run();
        }
    }

    void leaveIn(const char* state)
    {
        if (m_state == QLatin1String(state))
            leave();
    }

    void leave()
    {
        if (m_left)
            return;
        m_left = true;
        std::printf("exiting\n");
        std::fflush(stdout);
        m_leave();
    }

    SockJSConnector* m_connector;
    QUrl m_url;
    QList<SockJSConnector::PROTOCOL_TYPE> m_protocols;
    QString m_state;
    Action m_leave;
    bool m_left = false;
};

int runOnThread(const QStringList& arguments)
{
    const bool deletesAtOnce = arguments.at(4) == QLatin1String("on a thread, deleted at once");
    QThread thread;
    QObject::connect(&thread, &QThread::finished, qApp, &QCoreApplication::quit);
    auto connector = std::make_unique<SockJSConnector>();
    Host host(connector.get(), arguments, [&] {
        connector->close();
        if (deletesAtOnce)
            connector.reset();
        else
            connector.release()->deleteLater();
        thread.quit();
    });
    connector->moveToThread(&thread);
    host.moveToThread(&thread);
    QObject::connect(&thread, &QThread::started, &host, &Host::run);
    thread.start();
    const int status = QCoreApplication::exec();
    thread.wait();
    return status;
}

int run(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const QString way = arguments.at(4);
    if (way.startsWith(QLatin1String("on a thread")))
        return runOnThread(arguments);
    const bool isChild = way == QLatin1String("child of the application");
    auto* connector = new SockJSConnector(isChild ? &application : nullptr);
    std::unique_ptr<SockJSConnector> owned;
    if (!isChild)
        (way == QLatin1String("deleted before the application") ? owned : keptConnector()).reset(connector);
    const Action leave =
        way == QLatin1String("exit") ? Action([] { std::exit(0); }) : &QCoreApplication::quit;
    Host host(connector, arguments, leave);
    // From inside the event loop.
    QTimer::singleShot(0, &host, [&host] { host.run(); });
    const int status = application.exec();
    if (way == QLatin1String("never deleted"))
        keptConnector().release();
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    keptConnector(); // goes after the application in every way of leaving
    const int status = run(argc, argv);
    if (argc > 4 && qstrcmp(argv[4], "deleted after the application") == 0)
        keptConnector().reset();
    return status;
}
