#include "app/ChartView.h"
#include "app/ExitCode.h"
#include "app/Host.h"
#include "app/Options.h"
#include "app/Runner.h"
#include "app/ScriptFile.h"
#include "app/Waiter.h"
#include "commands/Completer.h"
#include "lesson/Lesson.h"
#include "terminal/PlainLines.h"
#include "terminal/Screen.h"
#include "terminal/UnixSignals.h"
#ifdef CALYX_PRESENTER_LINE_EDITING
#include "terminal/EditedLines.h"
#endif

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <langinfo.h>
#include <unistd.h>

namespace {

// Where nobody has chosen a locale, as in a bare container, terminals take UTF-8 all the same.
void chooseLocale()
{
    std::setlocale(LC_ALL, "");
    const char* const chosen = std::setlocale(LC_CTYPE, nullptr);
    if (std::strcmp(chosen, "C") == 0 || std::strcmp(chosen, "POSIX") == 0)
        qputenv("LC_ALL", "C.UTF-8");
}

void filterDiagnostics(bool verbose)
{
    QLoggingCategory::setFilterRules(
        QLatin1String(verbose ? "default.debug=true" : "*.debug=false\n*.info=false\n*.warning=false"));
}

void printTo(FILE* file, const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), file);
}

// The requests that need no lesson. False when there is one to run.
bool answer(const Options& options, int& status)
{
    status = ExitCode::Done;
    switch (options.request) {
    case Options::ShowHelp:
        printTo(stdout, Options::help());
        return true;
    case Options::ShowVersion:
        printTo(stdout, QStringLiteral("calyx-presenter %1\n").arg(QLatin1String(CALYX_PRESENTER_VERSION)));
        return true;
    case Options::WrongUsage:
        printTo(stderr, QStringLiteral("calyx-presenter: %1\n\"calyx-presenter --help\" tells more.\n")
                            .arg(options.fault));
        status = ExitCode::Usage;
        return true;
    case Options::Run:
        break;
    }
    return false;
}

bool isTyped()
{
    return isatty(STDIN_FILENO) == 1;
}

std::unique_ptr<LineSource> makeInput(Host& host)
{
#ifdef CALYX_PRESENTER_LINE_EDITING
    const QByteArray terminal = qgetenv("TERM");
    if (isTyped() && isatty(STDOUT_FILENO) == 1 && !terminal.isEmpty() && terminal != "dumb") {
        const auto complete = [&host](const QString& line) {
            QStringList names;
            const QList<Roster::Member> members = host.lesson.roster().members();
            for (const Roster::Member& member : members) {
                if (member.isPresent)
                    names.append(member.name);
            }
            return Completer::complete(line, names, host.folder);
        };
        return std::make_unique<EditedLines>(QStringLiteral("calyx> "), host.screen, complete);
    }
#endif
    if (isTyped())
        host.screen.disableLive();
    return std::make_unique<PlainLines>();
}

// Feeds the runner from standard input. The source is to live as long as the runner.
std::unique_ptr<LineSource> feed(Runner& runner, Host& host)
{
    std::unique_ptr<LineSource> source = makeInput(host);
    int number = 0;
    QObject::connect(source.get(), &LineSource::lineRead, &runner,
                     [&runner, number](const QString& line) mutable {
                         ++number;
                         runner.add({line, isTyped() ? QString() : QStringLiteral("stdin:%1").arg(number)});
                     });
    QObject::connect(source.get(), &LineSource::ended, &runner, &Runner::finishInput);
    QObject::connect(&runner, &Runner::finished, source.get(), &LineSource::stop);
    if (isTyped())
        host.screen.note(QStringLiteral("\"help\" lists the commands, Tab completes them, \"quit\" ends."));
    source->start();
    return source;
}

int run(QCoreApplication& application, const Options& options, const ScriptFile::Script& script)
{
    Screen screen(options.quiet);
    Waiter waiter;
    Lesson lesson(options.server);
    lesson.client().setOpenLimit(options.openLimit);
    lesson.client().setSockJSOverrideProtocols(options.transports);
    Host host{options, lesson, screen, waiter, QDir::currentPath()};
    host.openLimit = options.openLimit;
    const ChartView chart(lesson, screen);
    QObject::connect(&lesson, &Lesson::changed, &waiter, &Waiter::poke);
    QObject::connect(&lesson, &Lesson::happened, &screen, &Screen::note);

    const bool hasScript = !options.script.isEmpty();
    Runner runner(host, hasScript || !isTyped() ? Runner::EndLesson : Runner::GoOn);
    QObject::connect(&lesson.remoteControl(), &RemoteControl::stopRequested, &runner, &Runner::stopSession);
    UnixSignals unixSignals;
    QObject::connect(&unixSignals, &UnixSignals::received, &runner, [&](int signal) {
        if (signal == SIGWINCH || signal == SIGCONT)
            screen.refresh();
        else
            runner.interrupt(signal);
    });
    QObject::connect(&runner, &Runner::finished, &application, &QCoreApplication::exit, Qt::QueuedConnection);

    std::unique_ptr<LineSource> source;
    if (hasScript) {
        host.folder = QFileInfo(options.script).absolutePath();
        lesson.lessonName = QFileInfo(options.script).completeBaseName();
        for (const CommandLine& line : script.lines)
            runner.add(line);
        runner.finishInput();
    } else {
        source = feed(runner, host);
    }
    return application.exec();
}

} // namespace

int main(int argc, char** argv)
{
    chooseLocale();
    QCoreApplication application(argc, argv);
    const Options options = Options::parse(QCoreApplication::arguments());
    int status = ExitCode::Done;
    if (answer(options, status))
        return status;
    filterDiagnostics(options.verbose);
    ScriptFile::Script script;
    if (!options.script.isEmpty())
        script = ScriptFile::read(options.script);
    for (const QString& fault : qAsConst(script.faults))
        printTo(stderr, fault + QLatin1Char('\n'));
    return script.faults.isEmpty() ? run(application, options, script) : ExitCode::Usage;
}
