// The library's side of peers/client.cjs: bench_client PORT TRANSPORT burst|singles COUNT asks for answers
// and prints, in nanoseconds, how long the burst took, or the latency of each single answer, and the CPU time
// of all.

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QStringList>

#include <cstdio>
#include <ctime>

namespace {

qint64 nanoseconds(clockid_t clock)
{
    constexpr qint64 second = 1000000000;
    timespec time{};
    clock_gettime(clock, &time);
    return time.tv_sec * second + time.tv_nsec;
}

qint64 cpuTime()
{
    return nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
}

qint64 timeOfDay()
{
    return nanoseconds(CLOCK_REALTIME);
}

class Client : public QObject
{
public:
    Client(const QString& port, const QString& kind, int count)
        : m_collab(nullptr, QStringLiteral("http://127.0.0.1:") + port, QStringLiteral("123456"),
                   QStringLiteral("6f1c0a52-session"), QStringLiteral("user"))
        , m_kind(kind)
        , m_left(count)
    {
        connect(m_collab.connector(), &SockJSConnector::connected, this, &Client::ask);
        connect(&m_collab, &PresenterCollab::learnerPollResponse, this, &Client::onAnswer);
    }

    void open(const QString& transport) { m_collab.open({transport}); }

private:
    bool isBurst() const { return m_kind == QLatin1String("burst"); }

    void ask()
    {
        m_cpuBegun = cpuTime();
        m_clock.start();
        m_collab.connector()->sendMessage(m_kind + QLatin1Char(':') + QString::number(m_left), false);
    }

    void onAnswer(const QString& deviceId)
    {
        const QString prefix = QStringLiteral("device-");
        if (!deviceId.startsWith(prefix))
            qFatal("not an answer");
        if (!isBurst())
            m_durations.append(
                QString::number(timeOfDay() - deviceId.mid(prefix.size()).toLongLong() * 1000));
        if (--m_left == 0)
            finish();
    }

    void finish()
    {
        if (isBurst())
            m_durations.append(QString::number(m_clock.nsecsElapsed()));
        std::printf("{\"durations\":[%s],\"cpu\":%lld}\n", qPrintable(m_durations.join(QLatin1Char(','))),
                    cpuTime() - m_cpuBegun);
        QCoreApplication::quit();
    }

    PresenterCollab m_collab;
    QString m_kind;
    int m_left;
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
    Client client(arguments.at(1), arguments.at(3), arguments.at(4).toInt());
    QMetaObject::invokeMethod(
        &client, [&] { client.open(arguments.at(2)); }, Qt::QueuedConnection);
    return QCoreApplication::exec();
}
