#include "support/Rows.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QTest>

namespace {

// The texts of each line, "|" between them; a line without a text by what it prints.
const char* const lines[] = {
    R"(+++ SSL Config +++)",
    R"(CommonName:)",
    R"(Connecting to collaboration server (default):)",
    R"(Connecting to collaboration server:| [|, |])",
    R"(ERROR: %0\nRESPONSE: %1)",
    R"(ERROR: Failed to get collab server URL!)",
    R"(JOIN)",
    R"(Learner | requesting question )",
    R"(POLL_RESPONSE|:)",
    R"(REGISTER CONTROLLER|token)",
    R"(Refused a cookie: control character, or a domain not its own)",
    R"(TRANSMIT: )",
    R"(UNREGISTER)",
    R"(UNREGISTER CONTROLLER)",
    R"([CalyxCollabMessage] data object in message is invalid!)",
    R"([DEBUG] RECEIVED RESPONSE FROM DEVICE | of value: )",
    R"([JsonSerializer] ERROR: )",
    R"([JsonSerializer] ERROR: Failed to map property: )",
    R"([JsonSerializer] ERROR: Reached max depth! Increase MAX_RECURSE_DEPTH or check object references!)",
    R"([JsonSerializer] Mapping sub-property: )",
    R"([MessageHandler.ACTION])",
    R"([MessageHandler.Decompressed from List] )",
    R"([MessageHandler.Decompressed from String] )",
    R"([MessageHandler.Decompressed] FAILED to decompress List!)",
    R"([MessageHandler.Decompressed] FAILED to decompress, forwarding raw string!)",
    R"([MessageHandler.TYPE])",
    R"([MessageHandler]|\n)",
    R"([PresenterClient] No session to get users for!)",
    R"([PresenterClient] No session to stop!)",
    R"([PresenterClient] Stopping session, closing websocket...)",
    R"([PresenterCollab] No image reference has been set!)",
    R"([PresenterCollab] SockJS socket not connected!)",
    R"([REST Response] )",
    R"([REST Responze.gzip] Compressed size: )",
    R"([SockJSConnector] CONNECTED via Websocket)",
    R"([SockJSConnector] CONNECTED via xhr_|streaming|polling)",
    R"([SockJSConnector] Fallback to XHR_Polling)",
    R"([SockJSConnector] No more protocols found!)",
    R"([SockJSConnector] No protocols specified. Using defaults.)",
    R"([SockJSConnector] Websocket CLOSED)",
    R"([SockJSConnector] Websocket connected)",
    R"([SockJSConnector] Websocket url =)",
    R"([SockJSXHRPollingWorker.BufferData] = )",
    R"([SockJSXHRPollingWorker] Async socket tx queue error: Failed to establish mutex lock!)",
    R"([SockJSXHRPollingWorker] Async socket tx queue error: Socket closing!)",
    R"([SockJSXHRPollingWorker] Async socket tx queue error: Too many items in queue!)",
    R"([SockJSXHRPollingWorker] Chunk_continued)",
    R"([SockJSXHRPollingWorker] Connection attempts exceeded retry limit!)",
    R"([SockJSXHRPollingWorker] Connection lost, attempting to re-establish...)",
    R"([SockJSXHRPollingWorker] Detected transfer-encoding: chunked header)",
    R"([SockJSXHRPollingWorker] Incoming data timeout, clearing buffer)",
    R"([SockJSXHRPollingWorker] chunk complete size )",
    R"([SockJSXHRPolling])",
    R"([SockJSXHRPolling] Can't make request when in closed state!)",
    R"([SockJSXHRPolling] Can't make request: blank or control character in its path)",
    R"([SockJSXHRPolling] Can't start: blank or control character in host or path)",
    R"([SockJSXHRPolling] RECEIVED: )",
    R"([SockJSXHRPolling] parsed cookies)",
    R"([SockJSXHRPolling] xhr_send error: )",
    R"(certificate list)",
    R"(diagnostics) << m_collabServerUrl)",
    R"(diagnostics) << m_sessionToken)",
    R"(gUncompress: Input data is truncated)",
    R"(peer certificate list)",
    R"(ssl error )",
};

QMap<QString, QString> sources()
{
    QMap<QString, QString> texts;
    QDirIterator files(QStringLiteral(LIBRARY_SOURCE_DIR), {"*.cpp", "*.h"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly))
            texts.insert(file.fileName(), QString::fromUtf8(file.readAll()));
    }
    return texts;
}

// The texts between quotes, those that only continue one another put together.
QString textsOf(const QString& statement)
{
    static const QRegularExpression seam(QStringLiteral("\"\\s+\""));
    static const QRegularExpression literal(QStringLiteral("\"((?:[^\"\\\\]|\\\\.)*)\""));
    const QString joined = QString(statement).remove(seam);
    QStringList found;
    for (auto match = literal.globalMatch(joined); match.hasNext();)
        found.append(match.next().captured(1));
    return found.isEmpty() ? joined.simplified() : found.join(QLatin1Char('|'));
}

QStringList linesOf(const QString& source)
{
    static const QRegularExpression line(
        QStringLiteral("q(?:C?Debug|C?Warning|C?Info|C?Critical|Fatal)\\(([^;]*);\n"));
    QStringList found;
    for (auto match = line.globalMatch(source); match.hasNext();)
        found.append(textsOf(match.next().captured(1)));
    return found;
}

} // namespace

/// What the library can write anywhere, found in its sources: the debug lines that are listed here, one
/// warning, and no file. Who adds a line thinks of what it tells about a user.
class tst_DiagnosticTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreTheListedOnes()
    {
        QStringList listed;
        for (const char* line : lines)
            listed.append(QString::fromUtf8(line));
        QStringList found;
        const QMap<QString, QString> all = sources();
        for (auto source = all.begin(); source != all.end(); ++source) {
            if (!source.key().endsWith(QLatin1String("Diagnostics.h")))
                found += linesOf(source.value());
        }
        found.removeDuplicates();
        found.sort();
        listed.sort();
        QVERIFY(all.size() > 60);
        for (const QString& line : qAsConst(found))
            QVERIFY2(listed.removeOne(line), qPrintable("not listed: " + line));
        QVERIFY2(listed.isEmpty(), qPrintable("nobody writes: " + listed.join('\n')));
    }

    void nothingElseWrites_data()
    {
        columns<QString>();
        for (const char* name : {"printf(",       "fprintf(",
                                 "puts(",         "fputs(",
                                 "fwrite(",       "cout ",
                                 "cerr ",         "clog ",
                                 "syslog(",       "fopen(",
                                 "ofstream",      "fstream",
                                 "QFile(",        "QFile ",
                                 "QSaveFile",     "QTemporaryFile",
                                 "QTemporaryDir", "QSettings",
                                 "QLockFile",     "QDir(",
                                 "QDir ",         "QProcess",
                                 "QTextStream",   "QLocalSocket",
                                 "QSharedMemory", "QNetworkDiskCache"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void nothingElseWrites()
    {
        const auto [name] = row<QString>();
        const QRegularExpression word(QStringLiteral("\\b") + QRegularExpression::escape(name));
        const QMap<QString, QString> all = sources();
        for (auto source = all.begin(); source != all.end(); ++source)
            QVERIFY2(!source.value().contains(word), qPrintable(source.key()));
    }
};

QTEST_GUILESS_MAIN(tst_DiagnosticTexts)
#include "tst_DiagnosticTexts.moc"
