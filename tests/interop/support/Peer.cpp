#include "interop/support/Peer.h"

#include "support/ChildProcess.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QNetworkProxy>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QThread>

#include <csignal>
#include <cstdio>

namespace {

constexpr int startLimit = 20000; // milliseconds, as all below
constexpr int endLimit = 5000;
constexpr int lineLimit = 30000;
constexpr int attempts = 5;
constexpr int shownOnFailure = 6000; // bytes

quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

QProcessEnvironment environmentWithoutProxy()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy"}) {
        environment.remove(QLatin1String(name));
        environment.remove(QString::fromLatin1(name).toUpper());
    }
    return environment;
}

} // namespace

Peer::Peer() = default;

Peer::Peer(const Program& program) : m_program(program) {}

Peer::~Peer()
{
    end();
    if (QTest::currentTestFailed())
        std::fprintf(stderr, "---- %s said ----\n%s----\n", qPrintable(m_program.name),
                     log().right(shownOnFailure).constData());
}

QByteArray Peer::start()
{
    m_error.clear();
    if (!m_folder.isValid())
        fail(m_folder.errorString());
    if (!m_error.isEmpty() || !findProgram())
        return m_error.toUtf8();
    const bool keepsPort = m_port != 0;
    // Another program may have taken the port that was free a moment ago.
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (!keepsPort && !m_program.saysPort)
            m_port = freePort();
        if (launch() && waitUntilReady())
            return QByteArray();
    }
    fail(QStringLiteral("does not get ready: ") + QString::fromUtf8(log().right(shownOnFailure)));
    return m_error.toUtf8();
}

bool Peer::findProgram()
{
    m_executable = QStandardPaths::findExecutable(m_program.name);
    // Servers are not on everybody's path.
    if (m_executable.isEmpty())
        m_executable = QStandardPaths::findExecutable(
            m_program.name, {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin")});
    if (m_executable.isEmpty())
        return fail(QStringLiteral("not found: install the Debian package ") + m_program.package);
    return true;
}

bool Peer::launch()
{
    if (!writeConfig())
        return false;
    QStringList arguments;
    for (const QString& argument : qAsConst(m_program.arguments))
        arguments.append(fill(argument));
    m_begin = QFileInfo(m_folder.filePath(QStringLiteral("log"))).size();
    m_process = std::make_unique<ChildProcess>();
    m_process->setProcessEnvironment(environmentWithoutProxy());
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    m_process->setStandardOutputFile(m_folder.filePath(QStringLiteral("log")), QIODevice::Append);
    m_process->setWorkingDirectory(m_folder.path());
    m_process->start(m_executable, arguments);
    return m_process->waitForStarted() || fail(m_process->errorString());
}

bool Peer::writeConfig()
{
    if (m_program.config.isEmpty())
        return true;
    QFile source(QStringLiteral(INTEROP_SOURCE_DIR "/config/") + m_program.config);
    QFile target(m_folder.filePath(QStringLiteral("config")));
    if (!source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly))
        return fail(source.errorString() + QStringLiteral(", ") + target.errorString());
    target.write(fill(QString::fromUtf8(source.readAll())).toUtf8());
    return true;
}

QString Peer::fill(QString text) const
{
    for (auto value = m_program.values.cbegin(); value != m_program.values.cend(); ++value)
        text.replace(QLatin1Char('@') + value.key() + QLatin1Char('@'), value.value());
    text.replace(QLatin1String("@CONFIG@"), m_folder.filePath(QStringLiteral("config")));
    text.replace(QLatin1String("@FOLDER@"), m_folder.path());
    text.replace(QLatin1String("@PORT@"), QString::number(m_port));
    return text;
}

bool Peer::waitUntilReady()
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

bool Peer::isReady()
{
    if (!m_program.saysPort)
        return accepts();
    const QStringList said = QString::fromUtf8(log().mid(static_cast<int>(m_begin))).split(QLatin1Char('\n'));
    for (const QString& line : said.mid(0, said.size() - 1)) {
        if (line.startsWith(QLatin1String("listening ")))
            m_port = static_cast<quint16>(QUrl(line.mid(10)).port());
    }
    return m_port != 0 && accepts();
}

bool Peer::accepts() const
{
    QTcpSocket probe;
    probe.setProxy(QNetworkProxy::NoProxy);
    probe.connectToHost(QHostAddress(QHostAddress::LocalHost), m_port);
    return probe.waitForConnected();
}

void Peer::end()
{
    if (!m_process || m_process->state() == QProcess::NotRunning)
        return;
    m_process->terminate();
    if (!m_process->waitForFinished(endLimit))
        kill();
}

void Peer::kill()
{
    if (!m_process)
        return;
    m_process->kill();
    m_process->waitForFinished(endLimit);
}

void Peer::stop()
{
    ::kill(static_cast<pid_t>(m_process->processId()), SIGSTOP);
}

void Peer::goOn()
{
    ::kill(static_cast<pid_t>(m_process->processId()), SIGCONT);
}

QUrl Peer::url(const QString& scheme) const
{
    return QUrl(QStringLiteral("%1://127.0.0.1:%2").arg(scheme).arg(m_port));
}

QByteArray Peer::log() const
{
    QFile file(m_folder.filePath(QStringLiteral("log")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList Peer::lines(const QString& prefix) const
{
    QStringList found = QString::fromUtf8(log()).split(QLatin1Char('\n'));
    found.removeLast(); // not ended yet
    QStringList fitting;
    for (const QString& line : qAsConst(found)) {
        if (line.startsWith(prefix))
            fitting.append(line);
    }
    return fitting;
}

bool Peer::waitFor(const QString& prefix, int least) const
{
    return QTest::qWaitFor([&] { return count(prefix) >= least; }, lineLimit);
}

bool Peer::blockUntil(const std::function<bool()>& condition)
{
    const QDeadlineTimer limit(lineLimit);
    while (!condition() && !limit.hasExpired())
        QThread::msleep(10);
    return condition();
}

bool Peer::fail(const QString& reason)
{
    m_error = m_program.name + QStringLiteral(": ") + reason;
    return false;
}
