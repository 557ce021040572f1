// The library's side of peers/client.cjs: bench_client PORT TRANSPORT COUNT TURNS asks for COUNT answers
// TURNS times, one after the other, and prints how long each turn took and the CPU time of all, in
// nanoseconds.

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QStringList>

#include <cstdio>
#include <ctime>

namespace {

qint64 cpuTime()
{
    constexpr qint64 second = 1000000000;
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return time.tv_sec * second + time.tv_nsec;
}

class Client : public QObject
{
public:
    Client(const QString& port, int count, int turns)
        : m_collab(nullptr, QStringLiteral("http://127.0.0.1:") + port, QStringLiteral("123456"),
                   QStringLiteral("6f1c0a52-session"), QStringLiteral("user"))
        , m_count(count)
        , m_turns(turns)
    {
        connect(m_collab.connector(), &SockJSConnector::connected, this, &Client::begin);
        connect(&m_collab, &PresenterCollab::learnerPollResponse, this, &Client::onAnswer);
    }

    void open(const QString& transport) { m_collab.open({transport}); }

private:
    void begin()
    {
        m_cpuBegun = cpuTime();
        ask();
    }

    void ask()
    {
        m_left = m_count;
        m_clock.start();
        m_collab.connector()->sendMessage(QStringLiteral("answers:%1").arg(m_count), false);
    }

    void onAnswer(const QString& deviceId)
    {
        if (!deviceId.startsWith(QLatin1String("device-")))
            qFatal("not an answer");
        if (--m_left > 0)
            return;
        m_durations.append(QString::number(m_clock.nsecsElapsed()));
        if (m_durations.size() < m_turns)
            ask();
        else
            finish();
    }

    void finish()
    {
        std::printf("{\"durations\":[%s],\"cpu\":%lld}\n", qPrintable(m_durations.join(QLatin1Char(','))),
                    cpuTime() - m_cpuBegun);
        QCoreApplication::quit();
    }

    PresenterCollab m_collab;
    int m_count;
    int m_turns;
    int m_left = 0;
    qint64 m_cpuBegun = 0;
    QElapsedTimer m_clock;
    QStringList m_durations;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 5)
        return 1;
    Client client(arguments.at(1), arguments.at(3).toInt(), arguments.at(4).toInt());
    QMetaObject::invokeMethod(
        &client, [&] { client.open(arguments.at(2)); }, Qt::QueuedConnection);
    return QCoreApplication::exec();
}
