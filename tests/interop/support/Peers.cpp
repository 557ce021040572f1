#include "interop/support/Peers.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

namespace {

const QString sourceDir = QStringLiteral(INTEROP_SOURCE_DIR);
const QString classroomDir = QStringLiteral(INTEROP_SOURCE_DIR "/../../classroom");

// The loopback address that the forward proxy connects from; everybody else's is 127.0.0.1.
const QString forwarded = QStringLiteral("127.0.0.2");

Peer::Program node(const QString& script, const QStringList& options)
{
    Peer::Program program;
    program.name = QStringLiteral("node");
    program.package = QStringLiteral("nodejs");
    program.arguments = QStringList{script, QStringLiteral("--port"), QStringLiteral("@PORT@")} + options;
    program.ready = Peer::Program::SaysPort;
    return program;
}

// Offline, from the packages that Debian has put beside each other. Gives why that failed; empty when it did
// not.
QString buildGo(const QString& source, const QString& target)
{
    const QString packages = QStringLiteral("/usr/share/gocode");
    const QString go = QStandardPaths::findExecutable(QStringLiteral("go"));
    if (go.isEmpty() || !QFileInfo::exists(packages + QStringLiteral("/src/github.com/igm/sockjs-go/v3")))
        return QStringLiteral("install the Debian packages golang-go and golang-github-igm-sockjs-go-dev");
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
        return QString();
    return QStringLiteral("go build: ") + build.errorString() + QLatin1Char('\n') +
           QString::fromUtf8(build.readAll());
}

} // namespace

Peer::Program Peers::nodeBus(const QStringList& options)
{
    return node(sourceDir + QStringLiteral("/peers/bus.js"), options);
}

Peer::Program Peers::goBus(const QStringList& options)
{
    static const QTemporaryDir folder;
    Peer::Program program;
    program.name = folder.filePath(QStringLiteral("bus"));
    if (!QFileInfo::exists(program.name))
        program.missing = buildGo(sourceDir + QStringLiteral("/peers/bus.go"), program.name);
    program.arguments = QStringList{QStringLiteral("--port"), QStringLiteral("@PORT@")} + options;
    program.ready = Peer::Program::SaysPort;
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

Peer::Program Peers::door(quint16 server)
{
    const QString onlyForwarded = QStringLiteral("bind %1:@PORT@\n"
                                                 "tcp-request connection reject unless { src %1 }");
    return haproxy({server}, {{QStringLiteral("FRONTEND"), onlyForwarded.arg(forwarded)}});
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
