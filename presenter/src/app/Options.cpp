#include "app/Options.h"

#include "commands/ArgumentReader.h"
#include "text/Suggestions.h"
#include "text/Words.h"

#include <CalyxClient/SockJSConnector>

#include <QCommandLineParser>
#include <QUrl>

namespace {

const char* const helpTexts[] = {
    QT_TRANSLATE_NOOP("Words", R"(usage: calyx-presenter --server URL [options]

Teaches a live classroom lesson: from a script, or by commands typed at a prompt.)"),
    QT_TRANSLATE_NOOP("Words", R"(  --server URL        the classroom service's address
  --user USER         who "login" logs in when it names nobody
  --password TEXT     the password for that; better given in the environment variable
                      CALYX_PASSWORD, as a command line can be seen by others
  --script FILE       run the lesson in FILE; without it, commands come from the keyboard, or
                      line by line from standard input where that is no terminal
  --check FILE        say what is wrong with the lesson in FILE, and do nothing else
  --transports LIST   the transports to use instead of the tenant's, in this order, divided by
                      commas: websocket, xhr-streaming, xhr-polling
  --open-limit SECONDS
                      how long a transport may take to open before the next is tried (10; 0: no
                      limit)
  --journal FILE      write the lesson down in FILE while it goes on, for "session resume" after a crash;
                      names and answers stand in it. A typed lesson does so by itself, in a
                      file of its own that goes when the lesson ends; "none": no file
  --quiet             print errors and results only: no progress, no narration
  --verbose           print the library's diagnostics on standard error; they hold tokens
  --version           print the version
  --help              print this text; "help" at the prompt explains the commands)"),
    QT_TRANSLATE_NOOP(
        "Words",
        R"(In a lesson, one command stands on a line; "#" begins a comment line. A failed command ends a
script and anything piped in, not what is typed at a prompt. A session that is open at the end
is stopped, and the user is logged out. Ctrl-C (SIGINT) and SIGTERM end the lesson in the same
way; at the prompt, Ctrl-C first clears the line or gives up what is under way, and asks before it
ends a session. A third such signal ends the program at once.)"),
    QT_TRANSLATE_NOOP("Words", R"(Exit status:
  0    the whole lesson did what it says, or the remote control ended it
  1    something in it failed
  2    the command line or the script is wrong; nothing was done
  3    the service could not be reached
  130  ended by SIGINT; 143 by SIGTERM, 129 by SIGHUP)")};

// Commands are the same in every language.
const char exampleCalls[] = R"(
  calyx-presenter --server https://classroom.example --user ann
  CALYX_PASSWORD=chalk calyx-presenter --server http://127.0.0.1:8080 --user teacher \
      --script first.lesson)";
const char exampleLesson[] = R"(
  heading Photosynthesis
  login
  session start
  wait learners 30 within 120
  poll multiple alpha-upper 4
  wait answers all within 60
  poll stop
  session stop
  logout
)";

QList<QCommandLineOption> optionTable()
{
    const auto withValue = [](const char* name) {
        return QCommandLineOption(QLatin1String(name), QString(), QStringLiteral("value"));
    };
    const auto flag = [](const char* name) { return QCommandLineOption(QString(QLatin1String(name))); };
    return {withValue("server"),
            withValue("user"),
            withValue("password"),
            withValue("script"),
            withValue("check"),
            withValue("transports"),
            withValue("open-limit"),
            withValue("journal"),
            flag("quiet"),
            flag("verbose"),
            flag("version"),
            QCommandLineOption(QStringList{QStringLiteral("help"), QStringLiteral("h")})};
}

QString serverFault(const QString& server)
{
    if (server.isEmpty())
        return Words::tr("--server is missing. Name the classroom service's address.");
    const QUrl url(server, QUrl::StrictMode);
    const bool isHttp = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (url.isValid() && isHttp && !url.host().isEmpty())
        return QString();
    return Words::tr("--server takes an address such as https://classroom.example, not \"%1\".").arg(server);
}

QString transportFault(const QStringList& transports)
{
    const QStringList known = SockJSConnector::PROTOCOL_TYPE_STR().values();
    for (const QString& transport : transports) {
        if (!known.contains(transport))
            return Words::tr("--transports takes %1, not \"%2\".%3")
                .arg(known.join(QStringLiteral(", ")), transport, Suggestions::question(transport, known));
    }
    return QString();
}

QString unknownOption(const QStringList& names)
{
    QStringList known;
    const QList<QCommandLineOption> table = optionTable();
    for (const QCommandLineOption& option : table)
        known += option.names();
    const QString question = Suggestions::question(names.first(), known);
    return Words::tr("There is no option \"%1\".%2").arg(names.first(), question);
}

QString faultIn(const QCommandLineParser& parser, const Options& options, bool isOpenLimitNumber)
{
    if (!parser.unknownOptionNames().isEmpty())
        return unknownOption(parser.unknownOptionNames());
    if (!parser.positionalArguments().isEmpty())
        return Words::tr("\"%1\" is not an option. A lesson is named with --script.")
            .arg(parser.positionalArguments().first());
    if (const QString text = serverFault(options.server);
        !text.isEmpty() && options.request != Options::CheckScript)
        return text;
    if (const QString text = transportFault(options.transports); !text.isEmpty())
        return text;
    if (parser.isSet(QStringLiteral("transports")) && options.transports.isEmpty())
        return Words::tr("--transports takes at least one transport.");
    if (!isOpenLimitNumber)
        return Words::tr("--open-limit takes a number of seconds, not \"%1\".")
            .arg(parser.value(QStringLiteral("open-limit")));
    for (const char* name : {"script", "check"}) {
        if (parser.isSet(QLatin1String(name)) && options.script.isEmpty())
            return Words::tr("--%1 takes a file.").arg(QLatin1String(name));
    }
    if (options.quiet && options.verbose)
        return Words::tr("--quiet and --verbose exclude each other.");
    return parser.errorText(); // empty where nothing is wrong
}

QStringList commaList(const QString& text)
{
    QStringList items;
    const QStringList parts = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& part : parts)
        items.append(part.trimmed());
    return items;
}

} // namespace

Options Options::parse(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.addOptions(optionTable());
    parser.parse(arguments);
    const auto value = [&](const char* name) { return parser.value(QLatin1String(name)); };
    const auto isSet = [&](const char* name) { return parser.isSet(QLatin1String(name)); };

    Options options;
    options.server = value("server");
    options.user = value("user");
    options.password = isSet("password") ? value("password") : qEnvironmentVariable("CALYX_PASSWORD");
    options.request = isSet("check") ? CheckScript : Run;
    options.script = value(isSet("check") ? "check" : "script");
    options.transports = commaList(value("transports"));
    options.journal = value("journal");
    options.quiet = isSet("quiet");
    options.verbose = isSet("verbose");
    bool isNumber = true;
    qint64 msecs = options.openLimit;
    if (isSet("open-limit"))
        isNumber = ArgumentReader::readSeconds(value("open-limit"), msecs);
    options.openLimit = static_cast<int>(msecs);

    if (isSet("help")) {
        options.request = ShowHelp;
    } else if (isSet("version")) {
        options.request = ShowVersion;
    } else {
        options.fault = faultIn(parser, options, isNumber);
        if (!options.fault.isEmpty())
            options.request = WrongUsage;
    }
    return options;
}

QString Options::help()
{
    QString text;
    for (const char* const part : helpTexts)
        text += Words::tr(part) + QStringLiteral("\n\n");
    return text + Words::tr("Examples:") + QLatin1String(exampleCalls) + QStringLiteral("\n\n") +
           Words::tr("A lesson:") + QLatin1String(exampleLesson);
}
