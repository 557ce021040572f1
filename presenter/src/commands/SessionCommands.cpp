#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Ending.h"
#include "commands/JoinAddress.h"
#include "commands/Waiter.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Table.h"
#include "text/Text.h"

#include <CalyxClient/SockJSConnector>

namespace {

// Every transport may take its time, and then some for the messages.
qint64 openingTime(CommandContext& context)
{
    constexpr int unlimited = 30000;
    constexpr int spare = 2000;
    const PresenterClient& client = context.lesson.client();
    const int transports = SockJSConnector::GetProtocolsFromStrings(client.sockJSProtocols()).size();
    return context.openLimit > 0 ? static_cast<qint64>(context.openLimit) * transports + spare : unlimited;
}

Outcome waitForChannel(CommandContext& context, qint64 msecs)
{
    const Waiter::Result result = context.waiter.until([&] { return context.lesson.isLive(); }, msecs,
                                                       [] { return QStringLiteral("the live channel"); });
    if (result == Waiter::Interrupted)
        return Outcome::failed(QStringLiteral("The wait for the live channel was given up."));
    if (result == Waiter::TimedOut)
        return Outcome::failed(
            QStringLiteral("The live channel to %1 did not open. Check that the network lets it through, or "
                           "name other transports with --transports.")
                .arg(context.lesson.client().collabServerUrl()));
    return Outcome::done();
}

Outcome create(CommandContext& context)
{
    PresenterClient& client = context.lesson.client();
    if (!client.sessionToken().isEmpty())
        return Outcome::failed(QStringLiteral("Session %1 is open. Use \"session stop\" first.")
                                   .arg(Text::code(Text::clean(client.sessionCode()))));
    if (client.doStartSession(QString()))
        return Outcome::done();
    return context.refused(QStringLiteral("Creating a session"), QStringLiteral("Use \"login\" again."));
}

void tellHowToJoin(CommandContext& context)
{
    const PresenterClient& client = context.lesson.client();
    const Style& style = context.screen.style();
    const QString code = Text::clean(client.sessionCode());
    const QString hint = JoinAddress::hint(client.server());
    QStringList picture;
    if (context.screen.isLive() && style.unicode && hint.isEmpty())
        picture = JoinAddress::qrCode(JoinAddress::withCode(client.server(), code), style);
    if (!picture.isEmpty())
        context.screen.print(picture);
    context.screen.print(QStringLiteral("Session %1 is live. Join at %2 with %1.")
                             .arg(Text::code(code), JoinAddress::ofService(client.server())),
                         Ink::Strong);
    if (!hint.isEmpty())
        context.screen.note(hint, Ink::Faint);
}

Outcome goLive(CommandContext& context, const qint64* limit)
{
    PresenterClient& client = context.lesson.client();
    PresenterCollab* collab = nullptr;
    if (!client.startWebsocket(&collab))
        return context.refused(QStringLiteral("Starting session %1").arg(client.sessionCode()),
                               QStringLiteral("Use \"session create\" again."));
    context.lesson.adopt(collab);
    if (client.sessionToken().isEmpty())
        return context.refused(QStringLiteral("Starting session %1").arg(client.sessionCode()),
                               QStringLiteral("Use \"session create\" again."));
    const Outcome opened = waitForChannel(context, limit ? *limit : openingTime(context));
    if (!opened.isDone())
        return opened;
    tellHowToJoin(context);
    context.lesson.findEarlyLearners();
    return Outcome::done();
}

Outcome withLimit(Arguments arguments, qint64& limit, bool& isGiven)
{
    isGiven = !arguments.isEmpty();
    return ArgumentReader::takeWithin(arguments, limit);
}

Outcome sessionStart(CommandContext& context, const Arguments& arguments)
{
    qint64 limit = 0;
    bool isGiven = false;
    if (const Outcome outcome = withLimit(arguments, limit, isGiven); !outcome.isDone())
        return outcome;
    if (const Outcome outcome = create(context); !outcome.isDone())
        return outcome;
    return goLive(context, isGiven ? &limit : nullptr);
}

Outcome sessionCreate(CommandContext& context, const Arguments&)
{
    const Outcome outcome = create(context);
    if (outcome.isDone())
        context.screen.print(QStringLiteral("Session %1 is created. \"session live\" starts it.")
                                 .arg(Text::code(Text::clean(context.lesson.client().sessionCode()))));
    return outcome;
}

Outcome sessionLive(CommandContext& context, const Arguments& arguments)
{
    qint64 limit = 0;
    bool isGiven = false;
    if (const Outcome outcome = withLimit(arguments, limit, isGiven); !outcome.isDone())
        return outcome;
    return goLive(context, isGiven ? &limit : nullptr);
}

Outcome sessionReconnect(CommandContext& context, const Arguments& arguments)
{
    PresenterCollab* const collab = context.lesson.collab();
    if (!collab || context.lesson.client().sessionToken().isEmpty())
        return Outcome::failed(QStringLiteral("There is no session to connect to. Use \"session start\"."));
    context.lesson.expectClose(); // of the channel that is still open, if any
    collab->open(arguments.isEmpty() ? context.lesson.client().sockJSProtocols() : arguments);
    const Outcome opened = waitForChannel(context, openingTime(context));
    context.lesson.expectClose(false);
    if (!opened.isDone())
        return opened;
    context.screen.note(QStringLiteral("The live channel is open again."));
    context.lesson.refreshLearners();
    return opened;
}

Outcome sessionDisconnect(CommandContext& context, const Arguments&)
{
    context.lesson.expectClose();
    context.lesson.collab()->close();
    context.screen.note(
        QStringLiteral("The live channel is closed: the learners' devices say that the session "
                       "has ended. \"session reconnect\" opens it again; they join again."));
    return Outcome::done();
}

Outcome sessionInfo(CommandContext& context, const Arguments&)
{
    PresenterClient& client = context.lesson.client();
    const auto orNone = [](const QString& text) {
        return text.isEmpty() ? QStringLiteral("none") : Text::clean(text);
    };
    const QVector<QStringList> rows = {
        {QStringLiteral("Service"), client.server()},
        {QStringLiteral("User"), client.isLoggedIn() ? Text::clean(client.userId()) : QStringLiteral("none")},
        {QStringLiteral("Session code"), orNone(Text::code(client.sessionCode()))},
        {QStringLiteral("Learners join at"), JoinAddress::ofService(client.server())},
        {QStringLiteral("Session token"), orNone(client.sessionToken())},
        {QStringLiteral("Collaboration server"), orNone(client.collabServerUrl())},
        {QStringLiteral("Transports"), orNone(client.sockJSProtocols().join(QStringLiteral(", ")))},
        {QStringLiteral("Live channel"), QLatin1String(context.lesson.isLive() ? "open" : "closed")},
        {QStringLiteral("Learners"), QString::number(context.lesson.roster().presentCount())}};
    context.screen.print(Table::lines({QString(), QString()}, rows, context.screen.style()).mid(1));
    return Outcome::done();
}

Outcome sessionStop(CommandContext& context, const Arguments&)
{
    PresenterClient& client = context.lesson.client();
    const QString code = Text::code(Text::clean(client.sessionCode()));
    Ending::stopActivities(context);
    context.lesson.expectClose();
    if (!client.doStopSession())
        return Outcome::failed(QStringLiteral("There is no session to stop."));
    context.lesson.forgetSession();
    context.screen.note(QStringLiteral("Session %1 is stopped.").arg(code));
    return Outcome::done();
}

Outcome learners(CommandContext& context, const Arguments&)
{
    context.lesson.refreshLearners();
    QVector<QStringList> rows;
    const QList<Roster::Member> members = context.lesson.roster().members();
    for (const Roster::Member& member : members) {
        if (member.isPresent)
            rows.append({member.name, member.deviceType, Text::clean(member.deviceId)});
    }
    if (rows.isEmpty())
        context.screen.print(QStringLiteral("No learner is here."));
    else
        context.screen.print(
            Table::lines({QStringLiteral("Name"), QStringLiteral("Device"), QStringLiteral("Device id")},
                         rows, context.screen.style()));
    return Outcome::done();
}

Outcome removeLearner(CommandContext& context, const Arguments& arguments)
{
    QString deviceId;
    if (const Outcome found =
            ArgumentReader::findLearner(context.lesson.roster(), arguments.first(), deviceId);
        !found.isDone())
        return found;
    context.lesson.collab()->removeLearner(deviceId);
    context.screen.note(QStringLiteral("%1 is sent away.").arg(context.lesson.roster().name(deviceId)));
    return Outcome::done();
}

namespace F = Fact;
using P = Place;

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
const Command rows[] = {
    {"session start", "[within SECONDS]", "Create a session and go live.",
     "Waits until the live channel is open: for as long as the transports may take together, or "
     "for SECONDS. Does \"session create\" and \"session live\" in one.",
     F::Login, F::Session | F::Opened | F::Channel, F::Nothing, 0, 2, {P::Keyword, P::Seconds}, "within", sessionStart},
    {"session create", "", "Create a session, without starting it.",
     "",
     F::Login, F::Session, F::Nothing, 0, 0, {}, "", sessionCreate},
    {"session live", "[within SECONDS]", "Start the created session and open its live channel.",
     "",
     F::Session, F::Opened | F::Channel, F::Nothing, 0, 2, {P::Keyword, P::Seconds}, "within", sessionLive},
    {"session reconnect", "[TRANSPORT ...]", "Open the live channel again.",
     "With the transports as before, or with those named.",
     F::Opened, F::Channel, F::Nothing, 0, 3, {P::Transport, P::Transport, P::Transport}, "", sessionReconnect},
    {"session disconnect", "", "Close the live channel, for the learners the end of the session.",
     "",
     F::Channel, F::Nothing, F::Channel, 0, 0, {}, "", sessionDisconnect},
    {"session info", "", "Show the session's code, address, transports and state.",
     "",
     F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", sessionInfo},
    {"session stop", "", "Stop the session.",
     "A poll that runs is stopped first.",
     F::Session, F::Nothing, F::TheSession, 0, 0, {}, "", sessionStop},
    {"learners", "", "List the learners who are here.",
     "",
     F::Opened, F::Nothing, F::Nothing, 0, 0, {}, "", learners},
    {"remove", "LEARNER", "Send a learner's device away.",
     "LEARNER is a name, the beginning of one, or a device id.",
     F::Channel, F::Nothing, F::Nothing, 1, 1, {P::Learner}, "", removeLearner},
};
// clang-format on

} // namespace

QVector<Command> CommandTable::session()
{
    return QVector<Command>(std::begin(rows), std::end(rows));
}
