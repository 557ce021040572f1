#pragma once

#include "support/ChildProcess.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QNetworkProxy>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QUrl>

#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>
#include <utility>

/// A program on loopback that the tests talk to. It ends when this object does, and also when the test
/// program dies; if the test has failed by then, the end of its output is shown. One that does not get ready
/// fails the test.
class Peer
{
public:
    struct Program
    {
        QString name;    ///< the executable: its path, or its name when it is looked up
        QString package; ///< the Debian package to install where it is missing
        /// "@PORT@" stands for the peer's port, "@FOLDER@" for its temporary folder, "@CONFIG@" for the file
        /// that is made from the template of its name in tests/interop/config, if there is one.
        QStringList arguments;
        QMap<QString, QString> values; ///< what "@NAME@" stands for in the template, beside the three above
        enum {
            Accepts,  ///< it gets a free port, and is ready when it accepts connections there
            SaysPort, ///< it takes one by itself and says "listening URL"
            AtOnce    ///< it has none
        } ready = Accepts;
        QString missing; ///< why it cannot be run; empty when it can
    };

    Peer() = default;
    explicit Peer(const Program& program) { start(program); }
    ~Peer()
    {
        end();
        if (QTest::currentTestFailed())
            std::fprintf(stderr, "---- %s said ----\n%s----\n", qPrintable(m_program.name),
                         log().right(shownOnFailure).constData());
    }
    Q_DISABLE_COPY(Peer)

    /// Starts \p program and waits until it is ready.
    bool start(const Program& program)
    {
        m_program = program;
        return start();
    }
    /// Starts the same program once more, after its end: it gets the same port again.
    bool start()
    {
        if (!m_program.missing.isEmpty() || !findProgram())
            return fail(m_program.missing);
        const bool keepsPort = m_port != 0;
        // Another program may have taken the port that was free a moment ago.
        for (int attempt = 0; attempt < attempts; ++attempt) {
            if (!keepsPort && m_program.ready == Program::Accepts)
                m_port = freePort();
            if (launch() && (m_program.ready == Program::AtOnce || waitUntilReady()))
                return true;
        }
        return fail(QStringLiteral("does not get ready: ") + QString::fromUtf8(log().right(shownOnFailure)));
    }
    /// Asks the program to end, and waits for that.
    void end()
    {
        if (!m_process || m_process->state() == QProcess::NotRunning)
            return;
        m_process->terminate();
        if (!m_process->waitForFinished(endLimit))
            kill();
    }
    /// Ends the program without asking.
    void kill()
    {
        if (!m_process)
            return;
        m_process->kill();
        m_process->waitForFinished(endLimit);
    }
    void send(int signal) const { ::kill(pid_t(m_process->processId()), signal); }

    quint16 port() const { return m_port; }
    QUrl url(const QString& scheme = QStringLiteral("http")) const
    {
        return QUrl(QStringLiteral("%1://127.0.0.1:%2").arg(scheme).arg(m_port));
    }

    /// All output so far.
    QByteArray log() const
    {
        QFile file(m_folder.filePath(QStringLiteral("log")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// The lines of the output that begin with \p prefix, in order.
    QStringList lines(const QString& prefix) const
    {
        QStringList found = QString::fromUtf8(log()).split(QLatin1Char('\n'));
        found.removeLast(); // not ended yet
        return found.filter(QRegularExpression(QLatin1Char('^') + QRegularExpression::escape(prefix)));
    }
    int count(const QString& prefix) const { return lines(prefix).size(); }
    /// Waits until as many lines begin with \p prefix. Runs the event loop meanwhile.
    bool waitFor(const QString& prefix, int least = 1) const
    {
        return QTest::qWaitFor([&] { return count(prefix) >= least; }, lineLimit);
    }
    /// Waits for \p condition without the event loop, as a host does that is busy.
    static bool blockUntil(const std::function<bool()>& condition)
    {
        const QDeadlineTimer limit(lineLimit);
        while (!condition() && !limit.hasExpired())
            QThread::msleep(10);
        return condition();
    }

private:
    static constexpr int startLimit = 20000; // milliseconds, as all below
    static constexpr int endLimit = 5000;
    static constexpr int lineLimit = 60000;
    static constexpr int attempts = 5;
    static constexpr int shownOnFailure = 6000; // bytes

    static quint16 freePort()
    {
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost);
        return probe.serverPort();
    }

    bool findProgram()
    {
        m_executable = QStandardPaths::findExecutable(m_program.name);
        // Servers are not on everybody's path.
        if (m_executable.isEmpty())
            m_executable = QStandardPaths::findExecutable(
                m_program.name, {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin")});
        if (m_executable.isEmpty())
            m_program.missing = QStringLiteral("not found: install the Debian package ") + m_program.package;
        return !m_executable.isEmpty();
    }
    bool launch()
    {
        writeConfig();
        QStringList arguments;
        for (const QString& argument : std::as_const(m_program.arguments))
            arguments.append(fill(argument));
        m_begin = QFileInfo(m_folder.filePath(QStringLiteral("log"))).size();
        m_process = std::make_unique<ChildProcess>();
        m_process->setProcessChannelMode(QProcess::MergedChannels);
        m_process->setStandardOutputFile(m_folder.filePath(QStringLiteral("log")), QIODevice::Append);
        m_process->setWorkingDirectory(m_folder.path());
        m_process->start(m_executable, arguments);
        return m_process->waitForStarted();
    }
    bool waitUntilReady()
    {
        const QDeadlineTimer limit(startLimit);
        bool ready = false;
        while (!ready && !limit.hasExpired()) {
            ready = isReady();
            if (!ready && m_process->waitForFinished(10))
                return false;
        }
        if (!ready)
            kill();
        return ready;
    }
    bool isReady()
    {
        if (m_program.ready == Program::Accepts)
            return accepts();
        const QStringList said =
            QString::fromUtf8(log().mid(static_cast<int>(m_begin))).split(QLatin1Char('\n'));
        for (const QString& line : said.mid(0, said.size() - 1)) {
            if (line.startsWith(QLatin1String("listening ")))
                m_port = static_cast<quint16>(QUrl(line.mid(10)).port());
        }
        return m_port != 0 && accepts();
    }
    bool accepts() const
    {
        QTcpSocket probe;
        probe.setProxy(QNetworkProxy::NoProxy);
        probe.connectToHost(QHostAddress(QHostAddress::LocalHost), m_port);
        return probe.waitForConnected();
    }
    QString fill(QString text) const
    {
        for (auto value = m_program.values.cbegin(); value != m_program.values.cend(); ++value)
            text.replace(QLatin1Char('@') + value.key() + QLatin1Char('@'), value.value());
        text.replace(QLatin1String("@CONFIG@"), m_folder.filePath(QStringLiteral("config")));
        text.replace(QLatin1String("@FOLDER@"), m_folder.path());
        text.replace(QLatin1String("@PORT@"), QString::number(m_port));
        return text;
    }
    void writeConfig() const
    {
        QFile source(QStringLiteral(INTEROP_SOURCE_DIR "/config/") + m_program.name);
        QFile target(m_folder.filePath(QStringLiteral("config")));
        if (source.open(QIODevice::ReadOnly) && target.open(QIODevice::WriteOnly))
            target.write(fill(QString::fromUtf8(source.readAll())).toUtf8());
    }
    bool fail(const QString& reason) const
    {
        QTest::qFail(qPrintable(m_program.name + QStringLiteral(": ") + reason), __FILE__, __LINE__);
        return false;
    }

    Program m_program;
    QString m_executable;
    QTemporaryDir m_folder;
    std::unique_ptr<QProcess> m_process;
    qint64 m_begin = 0; // where the output of the present process begins
    quint16 m_port = 0;
};
