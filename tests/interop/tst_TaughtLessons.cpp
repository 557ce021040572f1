#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>

namespace {

constexpr int learners = 30;
constexpr int limit = 150000; // ms
const QString source = QStringLiteral(INTEROP_SOURCE_DIR "/../..");

QStringList simulatedLearners(const QUrl& classroom)
{
    return {source + QStringLiteral("/classroom/learners.js"),
            QStringLiteral("--url"),
            classroom.toString(),
            QStringLiteral("--session"),
            QStringLiteral("auto"),
            QStringLiteral("--count"),
            QString::number(learners)};
}

QStringList demoLesson(const QUrl& door, const QString& transport)
{
    return {QStringLiteral("--server"),     door.toString(),
            QStringLiteral("--user"),       QStringLiteral("teacher"),
            QStringLiteral("--password"),   QStringLiteral("chalk"),
            QStringLiteral("--transports"), transport,
            QStringLiteral("--script"),     source + QStringLiteral("/presenter/lessons/demo.lesson")};
}

bool ends(QProcess* program)
{
    return QTest::qWaitFor([program] { return program->state() == QProcess::NotRunning; }, limit);
}

QString numberIn(const QString& text, const QString& pattern)
{
    return QRegularExpression(pattern).match(text).captured(1);
}

void addTransports(const QStringList& networks)
{
    QTest::addColumn<QString>("transport");
    QTest::addColumn<QString>("network");
    for (const QString& network : networks) {
        for (const QString& transport : Transport::all)
            QTest::addRow("%s, %s", qPrintable(transport), qPrintable(network)) << transport << network;
    }
}

} // namespace

/// The demo lesson as the console host teaches it, over the networks that schools have.
class TestTaughtLessons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void throughABalancer_data()
    {
        addTransports(
            {QStringLiteral("lasting connections"), QStringLiteral("a connection for each answer")});
    }

    void throughABalancer()
    {
        QFETCH(QString, transport);
        QFETCH(QString, network);
        const QString options =
            network.startsWith(QLatin1Char('a')) ? QStringLiteral("option httpclose") : QString();
        Peer classroom(Peers::classroom());
        VERIFY_STARTED(classroom.start());
        Peer balancer(Peers::haproxy({classroom.port()}, {{QStringLiteral("DEFAULTS"), options}}));
        VERIFY_STARTED(balancer.start());
        teach(classroom, balancer.url());
        QVERIFY(!balancer.lines(QStringLiteral("request "))
                     .filter(transport == Transport::polling ? QStringLiteral("/xhr") : transport.mid(4))
                     .isEmpty());
    }

    void throughAProxy_data() { addTransports({QStringLiteral("forward proxy")}); }

    void throughAProxy()
    {
        Peer classroom(Peers::classroom());
        VERIFY_STARTED(classroom.start());
        // Only who comes from the proxy is let in.
        Peer door(Peers::haproxy(
            {classroom.port()},
            {{QStringLiteral("FRONTEND"), QStringLiteral("bind %1:@PORT@\n"
                                                         "tcp-request connection reject unless { src %1 }")
                                              .arg(Peers::forwarded)}}));
        VERIFY_STARTED(door.start());
        Peer proxy(Peers::tinyproxy());
        VERIFY_STARTED(proxy.start());
        // To an address of loopback Qt uses no proxy; this one means the same.
        teach(classroom, QUrl(QStringLiteral("http://0.0.0.0:%1").arg(door.port())), proxy.url().toString());
    }

private:
    // The host goes through the door, the learners straight to the classroom.
    void teach(const Peer& classroom, const QUrl& door, const QString& proxy = QString())
    {
        QFETCH(QString, transport);
        QProcess devices;
        devices.start(QStringLiteral("node"), simulatedLearners(classroom.url()));
        QProcess host;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("COLUMNS"), QStringLiteral("200"));
        if (!proxy.isEmpty())
            environment.insert(QStringLiteral("http_proxy"), proxy);
        host.setProcessEnvironment(environment);
        host.start(QStringLiteral(CALYX_PRESENTER), demoLesson(door, transport));
        QVERIFY(ends(&host));
        const QString told = QString::fromUtf8(host.readAllStandardOutput());
        QVERIFY2(host.exitCode() == 0, qPrintable(told + QString::fromUtf8(host.readAllStandardError())));
        QVERIFY(ends(&devices));
        const QString totals = QString::fromUtf8(devices.readAllStandardOutput());

        const QString everyone = QStringLiteral("%1 of %1 ").arg(learners);
        QCOMPARE(told.mid(told.indexOf(QStringLiteral("Most frequent"))).count(everyone), 11);
        QCOMPARE(numberIn(totals, QStringLiteral("answers=(\\d+)")), QString::number(11 * learners));
        QCOMPARE(numberIn(told, QStringLiteral("Total: .* (\\d+) answers")), QString::number(11 * learners));
        QCOMPARE(numberIn(totals, QStringLiteral("decode-failures=(\\d+)")), QStringLiteral("0"));
    }
};

INTEROP_MAIN(TestTaughtLessons)
#include "tst_TaughtLessons.moc"
