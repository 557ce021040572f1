#include "app/Host.h"
#include "app/Waiter.h"
#include "commands/Handlers.h"
#include "commands/Support.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Table.h"
#include "text/Text.h"

#include <CalyxClient/SockJSConnector>

namespace {

// Every transport may take its time, and then some for the messages.
qint64 openingTime(Host& host)
{
    constexpr int unlimited = 30000;
    constexpr int spare = 2000;
    const PresenterClient& client = host.lesson.client();
    const int transports = SockJSConnector::GetProtocolsFromStrings(client.sockJSProtocols()).size();
    return host.openLimit > 0 ? static_cast<qint64>(host.openLimit) * transports + spare : unlimited;
}

Outcome waitForChannel(Host& host, qint64 msecs)
{
    const Waiter::Result result = host.waiter.until([&] { return host.lesson.isLive(); }, msecs);
    if (result == Waiter::Interrupted)
        return Outcome::failed(QStringLiteral("The wait for the live channel was given up."));
    if (result == Waiter::TimedOut)
        return Outcome::failed(
            QStringLiteral("The live channel to %1 did not open. Check that the network lets it through, or "
                           "name other transports with --transports.")
                .arg(host.lesson.client().collabServerUrl()));
    return Outcome::done();
}

Outcome create(Host& host)
{
    PresenterClient& client = host.lesson.client();
    if (!client.sessionToken().isEmpty())
        return Outcome::failed(QStringLiteral("Session %1 is open. Use \"session stop\" first.")
                                   .arg(Text::clean(client.sessionCode())));
    if (client.doStartSession(QString()))
        return Outcome::done();
    if (!client.isLoggedIn() && client.lastError().isEmpty())
        return Outcome::failed(QStringLiteral("A session needs a login. Use \"login\" first."));
    return Support::refused(host, QStringLiteral("Creating a session"),
                            QStringLiteral("Use \"login\" again."));
}

Outcome goLive(Host& host, const qint64* limit)
{
    PresenterClient& client = host.lesson.client();
    if (client.sessionCode().isEmpty())
        return Outcome::failed(QStringLiteral("There is no session. Use \"session create\" first."));
    PresenterCollab* collab = nullptr;
    if (!client.startWebsocket(&collab))
        return Support::refused(host, QStringLiteral("Starting session %1").arg(client.sessionCode()),
                                QStringLiteral("Use \"session create\" again."));
    host.lesson.adopt(collab);
    if (client.sessionToken().isEmpty())
        return Support::refused(host, QStringLiteral("Starting session %1").arg(client.sessionCode()),
                                QStringLiteral("Use \"session create\" again."));
    const Outcome opened = waitForChannel(host, limit ? *limit : openingTime(host));
    if (!opened.isDone())
        return opened;
    host.screen.print(QStringLiteral("Session %1 is live. Learners join with this code.")
                          .arg(host.screen.style().paint(Ink::Strong, Text::clean(client.sessionCode()))));
    host.lesson.findEarlyLearners();
    return Outcome::done();
}

Outcome withLimit(Arguments arguments, qint64& limit, bool& isGiven)
{
    isGiven = !arguments.isEmpty();
    return Support::takeWithin(arguments, limit);
}

} // namespace

Outcome Handlers::sessionStart(Host& host, const Arguments& arguments)
{
    qint64 limit = 0;
    bool isGiven = false;
    if (const Outcome outcome = withLimit(arguments, limit, isGiven); !outcome.isDone())
        return outcome;
    if (const Outcome outcome = create(host); !outcome.isDone())
        return outcome;
    return goLive(host, isGiven ? &limit : nullptr);
}

Outcome Handlers::sessionCreate(Host& host, const Arguments&)
{
    const Outcome outcome = create(host);
    if (outcome.isDone())
        host.screen.print(QStringLiteral("Session %1 is created. \"session live\" starts it.")
                              .arg(Text::clean(host.lesson.client().sessionCode())));
    return outcome;
}

Outcome Handlers::sessionLive(Host& host, const Arguments& arguments)
{
    qint64 limit = 0;
    bool isGiven = false;
    if (const Outcome outcome = withLimit(arguments, limit, isGiven); !outcome.isDone())
        return outcome;
    return goLive(host, isGiven ? &limit : nullptr);
}

Outcome Handlers::sessionReconnect(Host& host, const Arguments& arguments)
{
    PresenterCollab* const collab = host.lesson.collab();
    if (!collab || host.lesson.client().sessionToken().isEmpty())
        return Outcome::failed(QStringLiteral("There is no session to connect to. Use \"session start\"."));
    host.lesson.expectClose(); // of the channel that is still open, if any
    collab->open(arguments.isEmpty() ? host.lesson.client().sockJSProtocols() : arguments);
    const Outcome opened = waitForChannel(host, openingTime(host));
    host.lesson.expectClose(false);
    if (!opened.isDone())
        return opened;
    host.screen.note(QStringLiteral("The live channel is open again."));
    host.lesson.refreshLearners();
    return opened;
}

Outcome Handlers::sessionDisconnect(Host& host, const Arguments&)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    host.lesson.expectClose();
    host.lesson.collab()->close();
    host.screen.note(QStringLiteral("The live channel is closed; the session goes on."));
    return Outcome::done();
}

Outcome Handlers::sessionInfo(Host& host, const Arguments&)
{
    PresenterClient& client = host.lesson.client();
    const auto orNone = [](const QString& text) {
        return text.isEmpty() ? QStringLiteral("none") : Text::clean(text);
    };
    const QVector<QStringList> rows = {
        {QStringLiteral("Service"), client.server()},
        {QStringLiteral("User"), client.isLoggedIn() ? Text::clean(client.userId()) : QStringLiteral("none")},
        {QStringLiteral("Session code"), orNone(client.sessionCode())},
        {QStringLiteral("Session token"), orNone(client.sessionToken())},
        {QStringLiteral("Collaboration server"), orNone(client.collabServerUrl())},
        {QStringLiteral("Transports"), orNone(client.sockJSProtocols().join(QStringLiteral(", ")))},
        {QStringLiteral("Live channel"), QLatin1String(host.lesson.isLive() ? "open" : "closed")},
        {QStringLiteral("Learners"), QString::number(host.lesson.roster().presentCount())}};
    host.screen.print(Table::lines({QString(), QString()}, rows, host.screen.style()).mid(1));
    return Outcome::done();
}

Outcome Handlers::sessionStop(Host& host, const Arguments&)
{
    PresenterClient& client = host.lesson.client();
    const QString code = Text::clean(client.sessionCode());
    Support::stopActivities(host);
    host.lesson.expectClose();
    if (!client.doStopSession())
        return Outcome::failed(QStringLiteral("There is no session to stop."));
    host.lesson.forgetSession();
    host.screen.note(QStringLiteral("Session %1 is stopped.").arg(code));
    return Outcome::done();
}

Outcome Handlers::learners(Host& host, const Arguments&)
{
    if (host.lesson.client().sessionToken().isEmpty())
        return Outcome::failed(QStringLiteral("There is no session. Use \"session start\" first."));
    host.lesson.refreshLearners();
    QVector<QStringList> rows;
    const QList<Roster::Member> members = host.lesson.roster().members();
    for (const Roster::Member& member : members) {
        if (member.isPresent)
            rows.append({member.name, member.deviceType, Text::clean(member.deviceId)});
    }
    if (rows.isEmpty())
        host.screen.print(QStringLiteral("No learner is here."));
    else
        host.screen.print(
            Table::lines({QStringLiteral("Name"), QStringLiteral("Device"), QStringLiteral("Device id")},
                         rows, host.screen.style()));
    return Outcome::done();
}

Outcome Handlers::removeLearner(Host& host, const Arguments& arguments)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    QString deviceId;
    if (const Outcome found = Support::findLearner(host, arguments.first(), deviceId); !found.isDone())
        return found;
    host.lesson.collab()->removeLearner(deviceId);
    return Outcome::done();
}
