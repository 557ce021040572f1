#include "interop/support/Peers.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

namespace {

const QString sourceDir = QStringLiteral(INTEROP_SOURCE_DIR);
const QString classroomDir = QStringLiteral(INTEROP_SOURCE_DIR "/../../classroom");

Peer::Program node(const QString& script, const QStringList& options)
{
    Peer::Program program;
    program.name = QStringLiteral("node");
    program.package = QStringLiteral("nodejs");
    program.arguments = QStringList{script, QStringLiteral("--port"), QStringLiteral("@PORT@")} + options;
    program.saysPort = true;
    return program;
}

// Offline, from the packages that Debian has put beside each other.
bool buildGo(const QString& source, const QString& target, QString* error)
{
    const QString packages = QStringLiteral("/usr/share/gocode");
    const QString go = QStandardPaths::findExecutable(QStringLiteral("go"));
    if (go.isEmpty() || !QFileInfo::exists(packages + QStringLiteral("/src/github.com/igm/sockjs-go/v3"))) {
        *error = QStringLiteral("sockjs-go: install the Debian packages golang-go and "
                                "golang-github-igm-sockjs-go-dev");
        return false;
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("GOPATH"), packages);
    environment.insert(QStringLiteral("GO111MODULE"), QStringLiteral("off"));
    environment.insert(QStringLiteral("GOPROXY"), QStringLiteral("off"));
    environment.insert(QStringLiteral("GOFLAGS"), QString());
    environment.insert(QStringLiteral("GOCACHE"), QStringLiteral(INTEROP_BINARY_DIR "/go-cache"));
    QProcess build;
    build.setProcessEnvironment(environment);
    build.setProcessChannelMode(QProcess::MergedChannels);
    build.start(go, {QStringLiteral("build"), QStringLiteral("-o"), target, source});
    constexpr int limit = 100000; // ms; the first time, Go builds its own library too
    if (build.waitForFinished(limit) && build.exitStatus() == QProcess::NormalExit && build.exitCode() == 0)
        return true;
    *error = QStringLiteral("go build: ") + build.errorString() + QLatin1Char('\n') +
             QString::fromUtf8(build.readAll());
    return false;
}

} // namespace

Peer::Program Peers::nodeBus(const QStringList& options)
{
    return node(sourceDir + QStringLiteral("/peers/bus.js"), options);
}

Peer::Program Peers::goBus(QString* error, const QStringList& options)
{
    static const QTemporaryDir folder;
    const QString built = folder.filePath(QStringLiteral("bus"));
    Peer::Program program;
    if (!QFileInfo::exists(built) && !buildGo(sourceDir + QStringLiteral("/peers/bus.go"), built, error))
        return program;
    program.name = built;
    program.package = QStringLiteral("golang-go");
    program.arguments = QStringList{QStringLiteral("--port"), QStringLiteral("@PORT@")} + options;
    program.saysPort = true;
    return program;
}

Peer::Program Peers::classroom(const QStringList& options)
{
    return node(classroomDir + QStringLiteral("/server.js"), options);
}

Peer::Program Peers::haproxy(const QList<quint16>& servers, const QMap<QString, QString>& values)
{
    Peer::Program program;
    program.name = QStringLiteral("haproxy");
    program.package = QStringLiteral("haproxy");
    program.arguments = QStringList{QStringLiteral("-db"), QStringLiteral("-f"), QStringLiteral("@CONFIG@")};
    program.config = QStringLiteral("haproxy.cfg");
    program.values = values;
    for (const char* name : {"DEFAULTS", "BIND", "FRONTEND"})
        program.values.insert(QLatin1String(name), values.value(QLatin1String(name)));
    QStringList lines;
    for (const quint16 server : servers) {
        const QString name = QString(QChar('a' + int(lines.size())));
        lines.append(QStringLiteral("    server %1 127.0.0.1:%2 cookie %1").arg(name).arg(server));
    }
    program.values.insert(QStringLiteral("SERVERS"), lines.join(QLatin1Char('\n')));
    return program;
}

Peer::Program Peers::nginx(quint16 server, const QString& options)
{
    Peer::Program program;
    program.name = QStringLiteral("nginx");
    program.package = QStringLiteral("nginx-light");
    program.arguments =
        QStringList{QStringLiteral("-p"),       QStringLiteral("@FOLDER@"), QStringLiteral("-c"),
                    QStringLiteral("@CONFIG@"), QStringLiteral("-e"),       QStringLiteral("stderr")};
    program.config = QStringLiteral("nginx.conf");
    program.values = {{QStringLiteral("SERVER"), QString::number(server)},
                      {QStringLiteral("OPTIONS"), options}};
    return program;
}

Peer::Program Peers::tinyproxy(const QString& options)
{
    Peer::Program program;
    program.name = QStringLiteral("tinyproxy");
    program.package = QStringLiteral("tinyproxy");
    program.arguments = QStringList{QStringLiteral("-d"), QStringLiteral("-c"), QStringLiteral("@CONFIG@")};
    program.config = QStringLiteral("tinyproxy.conf");
    program.values = {{QStringLiteral("FORWARDED"), forwarded}, {QStringLiteral("OPTIONS"), options}};
    return program;
}
