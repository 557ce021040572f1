#include "interop/support/Host.h"
#include "interop/support/Learners.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"

#include <QDir>
#include <QProcess>

/// A whole lesson leaves nothing behind: no file, and not a word where nobody has asked for diagnostics.
class TestSecrets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lessonIsWrittenNowhere_data()
    {
        combinations({Transport::all, {"default.debug=false", "default.debug=true"}});
    }
    void lessonIsWrittenNowhere()
    {
        const auto [transport, diagnostics] = row<QString, QString>();
        const Peer classroom(Peers::classroom({QStringLiteral("--quiet")}));
        const QTemporaryDir folder; // all that a program may take for its own
        QStringList environment = QProcess::systemEnvironment();
        for (const char* name : {"HOME", "TMPDIR", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME",
                                 "XDG_STATE_HOME", "XDG_RUNTIME_DIR"})
            environment.append(name + QStringLiteral("=") + folder.path());
        QProcess host;
        host.setEnvironment(environment + QStringList{"QT_LOGGING_RULES=" + diagnostics});
        host.setWorkingDirectory(folder.path());
        host.start(QStringLiteral(QUIET_HOST), {classroom.url().toString(), transport});
        QByteArray said;
        QTRY_VERIFY_WITH_TIMEOUT((said += host.readAllStandardOutput()).endsWith('\n'), 60000);
        QVERIFY2(said.startsWith("code "), said.constData());
        const Learners learners(classroom.url(), QString::fromUtf8(said.mid(5).trimmed()), 2);
        QTRY_COMPARE_WITH_TIMEOUT(host.state(), QProcess::NotRunning, 120000);
        const QList<QByteArray> lines = host.readAllStandardOutput().split('\n');
        QCOMPARE(host.exitCode(), 0);
        QCOMPARE(host.readAllStandardError(), QByteArray());
        QCOMPARE(lines.size(), 3);
        const int messages = lines.at(0).mid(int(qstrlen("messages "))).toInt();
        QVERIFY2(diagnostics.endsWith(QLatin1String("true")) ? messages > 20 : messages == 0,
                 lines.at(0).constData());
        QCOMPARE(lines.at(1), QByteArray("files 0"));
        const QDir left(folder.path());
        QCOMPARE(left.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
                 QStringList());
    }
};

INTEROP_MAIN(TestSecrets)
#include "tst_Secrets.moc"
