#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Ending.h"
#include "commands/Waiter.h"
#include "lesson/Notebook.h"
#include "terminal/Screen.h"
#include "text/Table.h"
#include "text/Text.h"
#include "text/Words.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QDir>
#include <QProcess>

#include <memory>

using Calyx::Lesson;

namespace {

// As text; empty where the program "qrencode" is not installed.
QStringList qrCode(const QString& text, const Style& style)
{
    constexpr int patience = 2000; // ms
    QProcess program;
    // With colours of its own where there are any, so that it is dark on light whatever the terminal's are.
    program.start(QStringLiteral("qrencode"),
                  {QStringLiteral("--type"), QLatin1String(style.colour ? "ANSIUTF8" : "UTF8"),
                   QStringLiteral("--margin"), QStringLiteral("2"), text});
    if (!program.waitForFinished(patience) || program.exitCode() != 0)
        return {};
    return QString::fromUtf8(program.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

const char logInAgain[] = QT_TRANSLATE_NOOP("Words", "Use \"login\" again.");

QString codeOf(const CommandContext& context)
{
    const QString code = context.lesson.joinCode();
    return Lesson::grouped(Text::clean(code.isEmpty() ? context.notes.createdCode : code));
}

Outcome alreadyOpen(const CommandContext& context)
{
    return Outcome::failed(Words::tr("Session %1 is open. Use \"session stop\" first.").arg(codeOf(context)));
}

void tellHowToJoin(CommandContext& context)
{
    const Style& style = context.screen.style();
    const QUrl address = context.lesson.joinAddress();
    const QString hint = context.lesson.joinHint();
    QStringList picture;
    if (context.screen.isLive() && style.unicode && hint.isEmpty())
        picture = qrCode(context.lesson.joinLink().toString(QUrl::FullyEncoded), style);
    if (!picture.isEmpty())
        context.screen.print(picture);
    context.screen.print(Words::tr("Session %1 is live. Join at %2 with %1.")
                             .arg(codeOf(context), address.toString(QUrl::StripTrailingSlash)),
                         Ink::Strong);
    if (!hint.isEmpty())
        context.screen.note(hint, Ink::Faint);
}

// Starts the session that was created, else a new one.
Outcome goLive(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    qint64 limit = CommandContext::unlimited;
    if (const Outcome read = ArgumentReader::takeWithin(arguments, limit); !read.isDone())
        return read;
    if (context.facts() & Fact::Opened)
        return alreadyOpen(context);
    const Outcome started = context.carryOut({Words::tr("Starting a session"), Words::tr(logInAgain),
                                              [&] { context.lesson.start(); },
                                              [&] { return context.lesson.state() == Lesson::Live; }},
                                             limit);
    if (started.isDone())
        tellHowToJoin(context);
    return started;
}

Outcome sessionCreate(CommandContext& context, const Arguments&)
{
    if (context.facts() & Fact::Opened)
        return alreadyOpen(context);
    const auto code = std::make_shared<QString>();
    const Outcome outcome = context.askService(Words::tr("Creating a session"), Words::tr(logInAgain),
                                               [code](PresenterClient* client) {
                                                   const bool isDone = client->doStartSession(QString());
                                                   *code = client->sessionCode();
                                                   return isDone;
                                               });
    if (!outcome.isDone())
        return outcome;
    context.notes.createdCode = *code;
    context.screen.print(
        Words::tr("Session %1 is created. \"session live\" starts it.").arg(codeOf(context)));
    return outcome;
}

Outcome sessionResume(CommandContext& context, const Arguments& arguments)
{
    const QString file =
        arguments.isEmpty() ? context.notes.journal : QDir(context.folder).filePath(arguments.first());
    if (context.facts() & Fact::Opened)
        return alreadyOpen(context);
    if (Lesson::journalOf(file).isEmpty())
        return Outcome::failed(Words::tr("There is no session to take up. Use \"session start\"."));
    const Outcome resumed = context.carryOut(
        {Words::tr("Taking the session up"),
         Words::tr("What was collected is still here: \"summary\" shows it, \"save FILE\" keeps it."),
         [&] { context.lesson.takeUp(file); }, [&] { return context.lesson.state() == Lesson::Live; }});
    if (resumed.isDone())
        tellHowToJoin(context);
    return resumed;
}

// Without a goodbye: the learners stay where they are.
void dropChannel(CommandContext& context)
{
    context.notes.isDisconnected = true; // which is no news
    context.carryOut(
        {QString(), QString(),
         [&] { context.lesson.onChannel([](PresenterCollab* collab) { collab->connector()->close(); }); },
         [&] { return context.lesson.state() != Lesson::Live; }});
}

Outcome sessionReconnect(CommandContext& context, const Arguments& arguments)
{
    Lesson& lesson = context.lesson;
    if (!arguments.isEmpty())
        lesson.setTransports(arguments);
    lesson.setReconnects(false); // that is done by retryNow()
    if (lesson.state() == Lesson::Live)
        dropChannel(context);
    lesson.retryNow();
    lesson.setReconnects(true);
    context.notes.isDisconnected = false;
    const Waiter::Result result = context.waiter.until([&] { return lesson.state() != Lesson::Reconnecting; },
                                                       qRound64(context.waitLimit * Text::msecsPerSecond),
                                                       [] { return Words::tr("the live channel"); });
    if (lesson.state() == Lesson::Live)
        context.screen.note(Words::tr("The live channel is open again."));
    else if (result == Waiter::Met)
        return context.require(Fact::Opened);
    else if (result == Waiter::Interrupted)
        return Outcome::failed(
            Words::tr("The wait was given up. The way back is still looked for; \"retry\" tries at once."));
    else
        return context.refused(Words::tr("The connection"), QString(),
                               Calyx::LessonError::make(Calyx::LessonError::NoChannel));
    return Outcome::done();
}

Outcome sessionDisconnect(CommandContext& context, const Arguments&)
{
    Lesson& lesson = context.lesson;
    lesson.setReconnects(false);
    context.notes.isDisconnected = true;
    const Outcome closed =
        context.carryOut({Words::tr("Closing the live channel"), QString(),
                          [&] { lesson.onChannel([](PresenterCollab* collab) { collab->close(); }); },
                          [&] { return lesson.state() != Lesson::Live; }});
    if (closed.isDone())
        context.screen.note(
            Words::tr("The live channel is closed: the learners' devices say that the session "
                      "has ended. \"session reconnect\" opens it again; they join again."));
    return closed;
}

// What the service's client knows of a session.
struct Wire
{
    QString user;
    QString token;
    QString collabServer;
    QString transports;
};

Outcome sessionInfo(CommandContext& context, const Arguments&)
{
    const auto wire = std::make_shared<Wire>();
    const Outcome asked =
        context.askService(Words::tr("The question"), QString(), [wire](PresenterClient* client) {
            *wire = {client->isLoggedIn() ? client->userId() : QString(), client->sessionToken(),
                     client->collabServerUrl(), client->sockJSProtocols().join(QStringLiteral(", "))};
            return true;
        });
    if (!asked.isDone())
        return asked;
    const auto orNone = [](const QString& text) {
        return text.isEmpty() ? Words::tr("none") : Text::clean(text);
    };
    const QString server = context.lesson.server().toString();
    const QVector<QStringList> rows = {
        {Words::tr("Service"), server},
        {Words::tr("User"), orNone(wire->user)},
        {Words::tr("Session code"), orNone(codeOf(context))},
        {Words::tr("Learners join at"),
         orNone(context.lesson.joinAddress().toString(QUrl::StripTrailingSlash))},
        {Words::tr("Session token"), orNone(wire->token)},
        {Words::tr("Collaboration server"), orNone(wire->collabServer)},
        {Words::tr("Transports"), orNone(wire->transports)},
        {Words::tr("Live channel"),
         context.lesson.state() == Lesson::Live ? Words::tr("open") : Words::tr("closed")},
        {Words::tr("Learners"), QString::number(context.lesson.roster()->presentCount())}};
    context.screen.print(Table::lines({QString(), QString()}, rows, context.screen.style()).mid(1));
    return Outcome::done();
}

Outcome sessionStop(CommandContext& context, const Arguments&)
{
    const QString code = codeOf(context);
    if (!(context.facts() & Fact::Opened)) {
        context.notes.createdCode.clear();
        return Outcome::failed(Words::tr("There is no session to stop."));
    }
    Ending::stopActivities(context);
    const Outcome stopped = context.carryOut(
        {Words::tr("Stopping the session"), QString(), [&] { context.lesson.end(); },
         [&] {
             return context.lesson.state() == Lesson::LoggedIn || context.lesson.state() == Lesson::LoggedOut;
         }});
    if (stopped.isDone())
        context.screen.note(Words::tr("Session %1 is stopped.").arg(code));
    return stopped;
}

Outcome retry(CommandContext& context, const Arguments&)
{
    const bool isLost = context.lesson.state() == Lesson::Reconnecting;
    context.lesson.retryNow();
    context.screen.note(isLost ? Words::tr("Trying again now.")
                               : Words::tr("The connection is not lost: the live channel is open."));
    return Outcome::done();
}

Outcome learners(CommandContext& context, const Arguments&)
{
    QVector<QStringList> rows;
    const QAbstractItemModel* const roster = context.lesson.roster();
    for (int i = 0; i < roster->rowCount(); ++i) {
        const auto data = [&](int role) { return roster->index(i, 0).data(role); };
        if (data(Calyx::Roster::IsPresentRole).toBool())
            rows.append({data(Calyx::Roster::NameRole).toString(),
                         data(Calyx::Roster::DeviceTypeRole).toString(),
                         Text::clean(data(Calyx::Roster::DeviceIdRole).toString())});
    }
    if (rows.isEmpty())
        context.screen.print(Words::tr("No learner is here."));
    else
        context.screen.print(Table::lines({Words::tr("Name"), Words::tr("Device"), Words::tr("Device id")},
                                          rows, context.screen.style()));
    return Outcome::done();
}

Outcome removeLearner(CommandContext& context, const Arguments& arguments)
{
    QString deviceId;
    if (const Outcome found =
            ArgumentReader::findLearner(*context.lesson.roster(), arguments.first(), deviceId);
        !found.isDone())
        return found;
    context.lesson.remove(deviceId);
    context.screen.note(Words::tr("%1 is sent away.").arg(context.lesson.roster()->name(deviceId)));
    return Outcome::done();
}

namespace F = Fact;
using P = Place;

} // namespace

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
QVector<Command> CommandTable::session()
{
    return {
        {"session start", "[within SECONDS]", QT_TRANSLATE_NOOP("Words", "Create a session and go live."),
         QT_TRANSLATE_NOOP("Words", "Waits until the live channel is open: for as long as the transports may take together, or "
         "for SECONDS. Does \"session create\" and \"session live\" in one."),
         F::Login, F::Session | F::Opened | F::Channel, F::Nothing, 0, 2, {P::Keyword, P::Seconds}, "within", goLive},
        {"session resume", "[FILE]", QT_TRANSLATE_NOOP("Words", "Take up a session whose presenter was killed."),
         QT_TRANSLATE_NOOP("Words", "With the learners who are still in it, and with all that was asked and answered. FILE is the journal, "
         "where it is not the one that this program writes by itself."),
         F::Login, F::TheSession | F::AnyPoll | F::AnyAssessment, F::Nothing, 0, 1, {P::File}, "", sessionResume},
        {"session create", "", QT_TRANSLATE_NOOP("Words", "Create a session, without starting it."),
         "",
         F::Login, F::Session, F::Nothing, 0, 0, {}, "", sessionCreate},
        {"session live", "[within SECONDS]", QT_TRANSLATE_NOOP("Words", "Start the created session and open its live channel."),
         "",
         F::Session, F::Opened | F::Channel, F::Nothing, 0, 2, {P::Keyword, P::Seconds}, "within", goLive},
        {"session reconnect", "[TRANSPORT ...]", QT_TRANSLATE_NOOP("Words", "Open the live channel again."),
         QT_TRANSLATE_NOOP("Words", "With the transports as before, or with those named."),
         F::Opened, F::Channel, F::Nothing, 0, 3, {P::Transport, P::Transport, P::Transport}, "", sessionReconnect},
        {"session disconnect", "", QT_TRANSLATE_NOOP("Words", "Close the live channel, for the learners the end of the session."),
         "",
         F::Channel | F::Now, F::Nothing, F::Channel, 0, 0, {}, "", sessionDisconnect},
        {"session info", "", QT_TRANSLATE_NOOP("Words", "Show the session's code, address, transports and state."),
         "",
         F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", sessionInfo},
        {"session stop", "", QT_TRANSLATE_NOOP("Words", "Stop the session."),
         QT_TRANSLATE_NOOP("Words", "A poll that runs is stopped first."),
         F::Session, F::Nothing, F::TheSession, 0, 0, {}, "", sessionStop},
        {"learners", "", QT_TRANSLATE_NOOP("Words", "List the learners who are here."),
         "",
         F::Opened, F::Nothing, F::Nothing, 0, 0, {}, "", learners},
        {"remove", "LEARNER", QT_TRANSLATE_NOOP("Words", "Send a learner's device away."),
         QT_TRANSLATE_NOOP("Words", "LEARNER is a name, the beginning of one, or a device id."),
         F::Channel | F::Now, F::Nothing, F::Nothing, 1, 1, {P::Learner}, "", removeLearner},
        {"retry", "", QT_TRANSLATE_NOOP("Words", "Try at once to find the way back to a lost session."),
         QT_TRANSLATE_NOOP("Words", "By itself that is tried in between, for as long as the session may live. What is done meanwhile reaches the "
         "learners when the connection is back."),
         F::Opened, F::Nothing, F::Nothing, 0, 0, {}, "", retry},
        {"r", "", QT_TRANSLATE_NOOP("Words", "The same as \"retry\"."),
         "",
         F::Opened, F::Nothing, F::Nothing, 0, 0, {}, "", retry},
    };
}
// clang-format on
