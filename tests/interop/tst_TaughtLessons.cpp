#include "interop/support/Host.h"
#include "interop/support/Learners.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"

#include <QProcess>
#include <QRegularExpression>

#include <memory>
#include <vector>

namespace {

constexpr int learners = 30;
constexpr int limit = 150000; // ms
const QString demoLesson = QStringLiteral(INTEROP_SOURCE_DIR "/../../presenter/lessons/demo.lesson");

bool ends(QProcess* program)
{
    return QTest::qWaitFor([program] { return program->state() == QProcess::NotRunning; }, limit);
}

QString numberIn(const QString& text, const QString& pattern)
{
    return QRegularExpression(pattern).match(text).captured(1);
}

/// One lesson: the host goes through the door, the learners straight to the classroom.
struct Taught
{
    explicit Taught(const QString& name) : transport(name) {}

    void begin(const QUrl& server, const QString& way = QString())
    {
        devices = std::make_unique<Learners>(classroom.url(), QStringLiteral("auto"), learners);
        host.setEnvironment(QProcess::systemEnvironment() + QStringList{"COLUMNS=200", "http_proxy=" + way});
        host.start(CALYX_PRESENTER, {"--server", server.toString(), "--user", "teacher", "--password",
                                     "chalk", "--transports", transport, "--script", demoLesson});
    }

    void beginThroughBalancer(const QString& options)
    {
        QVERIFY(door.start(Peers::haproxy({classroom.port()}, {{QStringLiteral("DEFAULTS"), options}})));
        begin(door.url());
    }

    void beginThroughProxy()
    {
        QVERIFY(door.start(Peers::door(classroom.port())));
        QVERIFY(proxy.start(Peers::tinyproxy()));
        // To an address of loopback Qt uses no proxy; this one means the same.
        begin(QUrl(QStringLiteral("http://0.0.0.0:%1").arg(door.port())), proxy.url().toString());
    }

    void verify()
    {
        QVERIFY(ends(&host));
        const QString told = QString::fromUtf8(host.readAllStandardOutput());
        QVERIFY2(host.exitCode() == 0, qPrintable(told + QString::fromUtf8(host.readAllStandardError())));
        QVERIFY(ends(devices->process()));
        const QString totals = QString::fromUtf8(devices->process()->readAllStandardOutput());
        const QString everyone = QStringLiteral("%1 of %1 ").arg(learners);
        QCOMPARE(told.mid(told.indexOf(QStringLiteral("Most frequent"))).count(everyone), 11);
        QCOMPARE(numberIn(totals, QStringLiteral("answers=(\\d+)")), QString::number(11 * learners));
        QCOMPARE(numberIn(told, QStringLiteral("Total: .* (\\d+) answers")), QString::number(11 * learners));
        QCOMPARE(numberIn(totals, QStringLiteral("decode-failures=(\\d+)")), QStringLiteral("0"));
    }

    QString transport;
    Peer classroom{Peers::classroom()};
    Peer door;
    Peer proxy;
    std::unique_ptr<Learners> devices;
    QProcess host;
};

} // namespace

/// The demo lesson as the console host teaches it, over the networks that schools have: on each transport,
/// all at the same time.
class TestTaughtLessons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        for (const QString& transport : Transport::all)
            m_lessons.push_back(std::make_unique<Taught>(transport));
    }
    void cleanup() { m_lessons.clear(); }

    void isTaught_data()
    {
        combinations({QStringList{"option http-keep-alive", "option httpclose", "through a proxy"}});
    }
    void isTaught()
    {
        const auto [way] = row<QString>();
        for (const auto& lesson : m_lessons) {
            if (way == QLatin1String("through a proxy"))
                lesson->beginThroughProxy();
            else
                lesson->beginThroughBalancer(way);
        }
        for (const auto& lesson : m_lessons) {
            lesson->verify();
            const QString path =
                lesson->transport == Transport::polling ? QStringLiteral("/xhr") : lesson->transport.mid(4);
            QVERIFY(!lesson->door.lines(QStringLiteral("request ")).filter(path).isEmpty());
        }
    }

private:
    std::vector<std::unique_ptr<Taught>> m_lessons;
};

INTEROP_MAIN(TestTaughtLessons)
#include "tst_TaughtLessons.moc"
