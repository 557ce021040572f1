#include "faults/support/Bounds.h"
#include "support/FakeSockJSServer.h"
#include "support/Rows.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

#include <memory>
#include <vector>

using Server = FakeSockJSServer;

/// Processes that end in the middle: they end with their own status, in a moment, and say nothing.
class TestProcessExit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exits_data()
    {
        combinations({{"websocket", "xhr-streaming", "xhr-polling"},
                      {"deleted before the application", "child of the application",
                       "deleted after the application", "deleted by exit", "never deleted", "exit",
                       "on a thread, deleted at once", "on a thread, deleted later"}});
    }
    // A process for each state, all at a time.
    void exits()
    {
        const auto [transport, way] = row<QString, QString>();
        struct Run
        {
            QString state;
            Server server;
            QProcess process;
        };
        std::vector<std::unique_ptr<Run>> runs;
        for (const char* state : {"idle", "opening", "waiting", "connected", "open", "message", "sending",
                                  "closing", "closed", "reopening"}) {
            // Nobody can act while an XHR transport is opened.
            if (qstrcmp(state, "opening") == 0 && transport != QLatin1String("websocket"))
                continue;
            auto run = std::make_unique<Run>();
            run->state = QString::fromLatin1(state);
            run->server.setFirstFrames({QStringLiteral("o"), QStringLiteral("a[\"x\",\"y\"]")});
            if (qstrcmp(state, "opening") == 0)
                run->server.setUpgrade(Server::Silent);
            if (qstrcmp(state, "waiting") == 0)
                run->server.setFirstFrames({});
            run->server.holdPosts();
            // What is never deleted is no leak of ours, also where a sanitizer looks for leaks.
            run->process.setEnvironment(QProcess::systemEnvironment() +
                                        QStringList{"ASAN_OPTIONS=detect_leaks=0"});
            run->process.start(QStringLiteral(EXITING_HOST),
                               {run->server.url().toString(), transport, run->state, way});
            runs.push_back(std::move(run));
        }
        QElapsedTimer clock;
        clock.start();
        for (const auto& run : runs) {
            // The peer closes while the process ends.
            if (way.startsWith(QLatin1String("on a thread")) &&
                waitFor([&] { return run->process.bytesAvailable() > 0; }))
                run->server.dropConnections();
            const bool ended =
                waitFor([&] { return run->process.state() == QProcess::NotRunning; }, Bounds::givingBack);
            QVERIFY2(ended, qPrintable(run->state));
            const QStringList outcome{run->state, QString::number(run->process.exitStatus()),
                                      QString::number(run->process.exitCode()),
                                      QString::fromUtf8(run->process.readAllStandardOutput()),
                                      QString::fromUtf8(run->process.readAllStandardError())};
            QCOMPARE(outcome, QStringList({run->state, "0", "0", "exiting\n", ""}));
            QVERIFY2(waitFor([&] { return run->server.openConnections() == 0; }), qPrintable(run->state));
        }
        QVERIFY2(clock.elapsed() <= Bounds::givingBack, qPrintable(QString::number(clock.elapsed())));
    }
};

QTEST_GUILESS_MAIN(TestProcessExit)
#include "tst_ProcessExit.moc"
