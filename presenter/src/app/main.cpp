#include "app/Announcer.h"
#include "app/LiveView.h"
#include "app/Options.h"
#include "app/Runner.h"
#include "app/ScriptFile.h"
#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Waiter.h"
#include "lesson/Notebook.h"
#include "terminal/PlainLines.h"
#include "terminal/Screen.h"
#include "terminal/UnixSignals.h"
#include "text/Words.h"
#ifdef CALYX_PRESENTER_LINE_EDITING
#include "terminal/EditedLines.h"
#endif

#include <CalyxClient/Lesson>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTranslator>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <langinfo.h>
#include <limits>
#include <unistd.h>
#include <utility>

using Calyx::Lesson;

namespace {

// Where nobody has chosen a locale, as in a bare container, terminals take UTF-8 all the same.
void chooseLocale()
{
    std::setlocale(LC_ALL, "");
    const char* const chosen = std::setlocale(LC_CTYPE, nullptr);
    if (std::strcmp(chosen, "C") == 0 || std::strcmp(chosen, "POSIX") == 0)
        qputenv("LC_ALL", "C.UTF-8");
}

// In the locale "C" all is English, whatever LANGUAGE says: scripts rely on that.
void translate(const QLocale& locale, QTranslator& texts, QTranslator& lessonTexts)
{
    if (locale.language() == QLocale::C)
        return;
    if (texts.load(locale, QStringLiteral("calyx-presenter"), QStringLiteral("_"),
                   QStringLiteral(":/calyxclient")))
        QCoreApplication::installTranslator(&texts);
    if (Lesson::loadTranslation(&lessonTexts, locale))
        QCoreApplication::installTranslator(&lessonTexts);
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
        printTo(stderr, QStringLiteral("calyx-presenter: %1\n%2\n")
                            .arg(options.fault, Words::tr("\"calyx-presenter --help\" tells more.")));
        status = ExitCode::Usage;
        return true;
    case Options::CheckScript:
    case Options::Run:
        break;
    }
    return false;
}

bool isTyped()
{
    return isatty(STDIN_FILENO) == 1;
}

#ifdef CALYX_PRESENTER_LINE_EDITING
std::unique_ptr<LineSource> makeEditor(CommandContext& context, LiveView& view)
{
    const auto complete = [&context](const QString& line) {
        const Calyx::Roster& roster = *context.lesson.roster();
        const QStringList names = ArgumentReader::names(roster, roster.present());
        return Completer::complete(line, names, context.folder);
    };
    auto editor = std::make_unique<EditedLines>(QStringLiteral("calyx> "), context.screen, complete,
                                                &CommandTable::holdsSecret);
    QObject::connect(editor.get(), &EditedLines::promptShown, &view,
                     [&view](bool isShown) { view.showWork(!isShown); });
    LineSource* const source = editor.get();
    context.askPassword = [&context, source](const QString& question, QString& password) {
        if (!context.screen.isLive())
            context.screen.print(Words::tr("Type %1.").arg(question));
        source->startHidden();
        const bool isGiven =
            context.waiter.until([source] { return source->isHiddenDone(); }, std::numeric_limits<int>::max(),
                                 [question] { return question; }) == Waiter::Met;
        password = source->takeHidden();
        return isGiven;
    };
    QObject::connect(source, &LineSource::hiddenRead, &context.waiter, &Waiter::poke);
    return editor;
}
#endif

std::unique_ptr<LineSource> makeInput(CommandContext& context, LiveView& view)
{
#ifdef CALYX_PRESENTER_LINE_EDITING
    const QByteArray terminal = qgetenv("TERM");
    if (isTyped() && isatty(STDOUT_FILENO) == 1 && !terminal.isEmpty() && terminal != "dumb")
        return makeEditor(context, view);
#else
    Q_UNUSED(view)
#endif
    if (isTyped())
        context.screen.disableLive();
    return std::make_unique<PlainLines>();
}

void feedScript(Runner& runner, CommandContext& context, const QString& fileName,
                const ScriptFile::Script& script)
{
    context.folder = QFileInfo(fileName).absolutePath();
    context.notes.setName(context.notes.lessonId(), QFileInfo(fileName).completeBaseName());
    for (const CommandLine& line : script.lines)
        runner.add(line);
    runner.finishInput();
}

// Feeds the runner from standard input. The source is to live as long as the runner.
void feed(Runner& runner, LineSource& source, CommandContext& context)
{
    int number = 0;
    QObject::connect(&source, &LineSource::lineRead, &runner, [&runner, number](const QString& line) mutable {
        ++number;
        runner.add({line, isTyped() ? QString() : QStringLiteral("stdin:%1").arg(number)});
    });
    QObject::connect(&source, &LineSource::ended, &runner, &Runner::finishInput);
    QObject::connect(&runner, &Runner::busyChanged, &source, &LineSource::setBusy);
    QObject::connect(&runner, &Runner::givenUp, &source, [&] { runner.drop(source.takeTyped()); });
    QObject::connect(&runner, &Runner::finished, &source, &LineSource::stop);
    if (isTyped())
        context.screen.note(context.askPassword
                                ? Words::tr("\"help\" lists the commands, Tab completes them, \"quit\" ends.")
                                : Words::tr("\"help\" lists the commands, \"quit\" ends."));
    source.start();
}

void handle(int signal, Runner& runner, Screen& screen, LineSource* source)
{
    if (signal == SIGWINCH || signal == SIGCONT)
        screen.refresh();
    else if (signal == SIGINT && source && source->clearLine())
        UnixSignals::forgetRequests();
    else
        runner.interrupt(signal);
}

// Where a lesson that is typed writes its journal: one that a script teaches begins anew.
QString journalOf(const Options& options)
{
    if (options.journal == QLatin1String("none"))
        return QString();
    if (!options.journal.isEmpty() || !options.script.isEmpty() || !isTyped())
        return options.journal;
    const QUrl server(options.server);
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
    if (!folder.mkpath(QStringLiteral(".")))
        return QString();
    return folder.filePath(
        QStringLiteral("%1-%2.journal").arg(server.host(), QString::number(server.port(0))));
}

// What learners wrote does not stay behind unasked, unless the session may still be open: neither that of the
// last session, nor that of the one before.
void removeJournals(const Notebook& notes)
{
    if (notes.isSessionGone || Lesson::journalOf(notes.journal).isEmpty())
        QFile::remove(notes.journal);
    const QString before = notes.journal + QLatin1Char('~');
    if (Lesson::journalOf(before).isEmpty())
        QFile::remove(before);
}

void setUp(Lesson& lesson, Notebook& notes, const Options& options)
{
    lesson.setOpenLimit(options.openLimit);
    lesson.setTransports(options.transports);
    notes.journal = journalOf(options);
    lesson.setJournal(notes.journal);
}

int run(QCoreApplication& application, const Options& options, const ScriptFile::Script& script)
{
    Screen screen(options.quiet);
    UnixSignals unixSignals; // until the lesson has said goodbye
    Waiter waiter;
    Lesson lesson(QUrl(options.server));
    Notebook notes(lesson);
    setUp(lesson, notes, options);
    CommandContext context{
        lesson, notes, screen, waiter, options.user, options.password, QDir::currentPath()};
    QObject::connect(&lesson, &Lesson::failed, &waiter, [&](const Calyx::LessonError& error) {
        context.take(error);
        waiter.poke();
    });
    QObject::connect(&notes, &Notebook::changed, &waiter, &Waiter::poke);

    const bool hasScript = !options.script.isEmpty();
    Runner runner(context, hasScript || !isTyped() ? Runner::EndLesson : Runner::GoOn);
    const Announcer announcer(lesson, notes, screen);
    QObject::connect(&announcer, &Announcer::stopRequested, &runner, &Runner::stopSession);
    LiveView view(lesson, notes, screen, runner, waiter);
    QObject::connect(&runner, &Runner::finished, &view, [&view] { view.showWork(false); });
    const std::unique_ptr<LineSource> source = hasScript ? nullptr : makeInput(context, view);
    QObject::connect(&unixSignals, &UnixSignals::received, &runner,
                     [&](int signal) { handle(signal, runner, screen, source.get()); });
    QObject::connect(&runner, &Runner::finished, &application, &QCoreApplication::exit, Qt::QueuedConnection);

    if (hasScript)
        feedScript(runner, context, options.script, script);
    else
        feed(runner, *source, context);
    const int status = application.exec();
    if (options.journal.isEmpty() && !notes.journal.isEmpty())
        removeJournals(notes);
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    const QLocale locale = QLocale::system(); // reads the environment before we change it
    chooseLocale();
    QCoreApplication application(argc, argv);
    QTranslator texts, lessonTexts;
    translate(locale, texts, lessonTexts);
    const Options options = Options::parse(QCoreApplication::arguments());
    int status = ExitCode::Done;
    if (answer(options, status))
        return status;
    filterDiagnostics(options.verbose);
    ScriptFile::Script script;
    if (!options.script.isEmpty())
        script = ScriptFile::read(options.script);
    for (const QString& fault : std::as_const(script.faults))
        printTo(stderr, fault + QLatin1Char('\n'));
    if (!script.faults.isEmpty())
        return ExitCode::Usage;
    return options.request == Options::CheckScript ? ExitCode::Done : run(application, options, script);
}
