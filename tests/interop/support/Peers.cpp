#include "interop/support/Peers.h"

#include "interop/support/NumberedText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryFile>

namespace {

const QString sourceDir = QStringLiteral(INTEROP_SOURCE_DIR);

// The loopback address that the forward proxy connects from; everybody else's is 127.0.0.1.
const QString forwarded = QStringLiteral("127.0.0.2");

// One that takes a port by itself.
Peer::Program server(const QString& name, const QString& package, const QStringList& arguments,
                     const QString& missing = QString())
{
    const QStringList port = {QStringLiteral("--port"), QStringLiteral("@PORT@")};
    return {name, package, arguments + port, {}, Peer::Program::SaysPort, missing};
}

Peer::Program node(const QString& script, const QStringList& options)
{
    return server(QStringLiteral("node"), QStringLiteral("nodejs"), QStringList{script} + options);
}

// One that has a template of its configuration.
Peer::Program configured(const char* name, const char* package, const char* arguments,
                         const QMap<QString, QString>& values)
{
    return {QString(name), QString(package),       QString(arguments).split(QLatin1Char(' ')),
            values,        Peer::Program::Accepts, {}};
}

// The numbered texts as JSON, and that the bus is to send them.
QStringList withTexts(const QStringList& options)
{
    static QTemporaryFile file;
    if (file.fileName().isEmpty() && file.open()) {
        QJsonArray texts;
        for (int number = 0; number < NumberedText::COUNT; ++number)
            texts.append(NumberedText::text(number));
        file.write(QJsonDocument(texts).toJson());
        file.close();
    }
    return QStringList{QStringLiteral("--texts"), file.fileName()} + options;
}

// Offline, from the packages that Debian has put beside each other. Gives why that failed; empty when it did
// not.
QString buildGo(const QString& source, const QString& target)
{
    const QString packages = QStringLiteral("/usr/share/gocode");
    const QString go = QStandardPaths::findExecutable(QStringLiteral("go"));
    if (go.isEmpty() || !QFileInfo::exists(packages + QStringLiteral("/src/github.com/igm/sockjs-go/v3")))
        return QStringLiteral("install the Debian packages golang-go and golang-github-igm-sockjs-go-dev");
    QProcess build;
    build.setEnvironment(QProcess::systemEnvironment() +
                         QStringList{"GOPATH=" + packages, "GO111MODULE=off", "GOPROXY=off",
                                     "GOFLAGS=", "GOCACHE=" INTEROP_BINARY_DIR "/go-cache"});
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
    return node(sourceDir + QStringLiteral("/peers/bus.js"), withTexts(options));
}

Peer::Program Peers::goBus(const QStringList& options)
{
    static const QTemporaryDir folder;
    static const QString bus = folder.filePath(QStringLiteral("bus"));
    static const QString missing = buildGo(sourceDir + QStringLiteral("/peers/bus.go"), bus);
    return server(bus, QString(), withTexts(options), missing);
}

Peer::Program Peers::classroom(const QStringList& options)
{
    return node(sourceDir + QStringLiteral("/../../classroom/server.js"), options);
}

Peer::Program Peers::haproxy(const QList<quint16>& servers, const QMap<QString, QString>& values)
{
    QStringList lines;
    for (const quint16 server : servers) {
        const QString name = QString(QChar('a' + int(lines.size())));
        lines.append(QStringLiteral("    server %1 127.0.0.1:%2 cookie %1").arg(name).arg(server));
    }
    QMap<QString, QString> all = {{QStringLiteral("SERVERS"), lines.join(QLatin1Char('\n'))}};
    for (const char* name : {"DEFAULTS", "BIND", "FRONTEND"})
        all.insert(QLatin1String(name), values.value(QLatin1String(name)));
    return configured("haproxy", "haproxy", "-db -f @CONFIG@", all);
}

Peer::Program Peers::door(quint16 server)
{
    const QString onlyForwarded = QStringLiteral("bind %1:@PORT@\n"
                                                 "tcp-request connection reject unless { src %1 }");
    return haproxy({server}, {{QStringLiteral("FRONTEND"), onlyForwarded.arg(forwarded)}});
}

Peer::Program Peers::nginx(quint16 server, const QString& options)
{
    return configured(
        "nginx", "nginx-light", "-p @FOLDER@ -c @CONFIG@ -e stderr",
        {{QStringLiteral("SERVER"), QString::number(server)}, {QStringLiteral("OPTIONS"), options}});
}

Peer::Program Peers::tinyproxy(const QString& options)
{
    return configured("tinyproxy", "tinyproxy", "-d -c @CONFIG@",
                      {{QStringLiteral("FORWARDED"), forwarded}, {QStringLiteral("OPTIONS"), options}});
}
