#include "app/Options.h"

#include <QTest>

namespace {

Options parse(const QStringList& arguments)
{
    return Options::parse(QStringList{"calyx-presenter"} + arguments);
}

const QStringList server = {"--server", "https://classroom.example"};

} // namespace

class tst_Options : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { qunsetenv("CALYX_PASSWORD"); }

    void allOptionsAreRead()
    {
        const Options options =
            parse({"--server", "http://127.0.0.1:80", "--user", "ann", "--password", "p w", "--script",
                   "a.lesson", "--transports", "websocket, xhr-polling", "--open-limit", "0.5", "--quiet"});
        QCOMPARE(options.request, Options::Run);
        QCOMPARE(options.server, QStringLiteral("http://127.0.0.1:80"));
        QCOMPARE(options.user, QStringLiteral("ann"));
        QCOMPARE(options.password, QStringLiteral("p w"));
        QCOMPARE(options.script, QStringLiteral("a.lesson"));
        QCOMPARE(options.transports, QStringList({"websocket", "xhr-polling"}));
        QCOMPARE(options.openLimit, 500);
        QVERIFY(options.quiet);
        QVERIFY(!options.verbose);
    }

    void theOpenLimitIsTenSeconds()
    {
        QCOMPARE(parse(server).openLimit, 10000);
        QVERIFY(parse(server).transports.isEmpty());
    }

    void thePasswordComesFromTheEnvironment()
    {
        qputenv("CALYX_PASSWORD", "secret");
        QCOMPARE(parse(server).password, QStringLiteral("secret"));
        QCOMPARE(parse(server + QStringList{"--password", "other"}).password, QStringLiteral("other"));
        QCOMPARE(parse(server + QStringList{"--password", ""}).password, QString());
    }

    void faultsAreTold_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("part");
        QTest::newRow("no server") << QStringList{} << "--server is missing";
        QTest::newRow("no address") << QStringList({"--server", "classroom"}) << "not \"classroom\"";
        QTest::newRow("another scheme") << QStringList({"--server", "ftp://x"}) << "not \"ftp://x\"";
        QTest::newRow("no host") << QStringList({"--server", "http://"}) << "takes an address";
        QTest::newRow("mistyped") << server + QStringList{"--usr", "x"} << "Did you mean user?";
        QTest::newRow("no value") << server + QStringList{"--user"} << "user";
        QTest::newRow("positional") << server + QStringList{"a.lesson"} << "named with --script";
        QTest::newRow("transport") << server + QStringList{"--transports", "websockets"}
                                   << "Did you mean websocket?";
        QTest::newRow("no transport") << server + QStringList{"--transports", ","} << "at least one";
        QTest::newRow("limit") << server + QStringList{"--open-limit", "soon"} << "not \"soon\"";
        QTest::newRow("negative limit") << server + QStringList{"--open-limit", "-1"} << "not \"-1\"";
        QTest::newRow("no script") << server + QStringList{"--script", ""} << "--script takes a file";
        QTest::newRow("nothing to check") << QStringList{"--check", ""} << "--check takes a file";
        QTest::newRow("quiet and verbose") << server + QStringList{"--quiet", "--verbose"} << "exclude";
    }

    void faultsAreTold()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, part);
        const Options options = parse(arguments);
        QCOMPARE(options.request, Options::WrongUsage);
        QVERIFY2(options.fault.contains(part), qPrintable(options.fault));
    }

    void helpAndVersionNeedNothingElse()
    {
        QCOMPARE(parse({"--help"}).request, Options::ShowHelp);
        QCOMPARE(parse({"-h"}).request, Options::ShowHelp);
        QCOMPARE(parse({"--version"}).request, Options::ShowVersion);
    }

    void helpNamesEveryOption()
    {
        for (const char* option :
             {"--server", "--user", "--password", "--script", "--transports", "--open-limit", "--quiet",
              "--verbose", "--version", "--help", "CALYX_PASSWORD"})
            QVERIFY2(Options::help().contains(QLatin1String(option)), option);
    }
};

QTEST_APPLESS_MAIN(tst_Options)
#include "tst_Options.moc"
