#include "commands/CommandContext.h"

#include "lesson/Lesson.h"
#include "text/Text.h"

namespace {

const QString missingRoot = QStringLiteral("SSLRootCertificateMissing");

// In the order in which a lesson gets to them.
const struct
{
    int fact;
    const char* advice;
} advices[] = {
    {Fact::Login, "This needs a login. Use \"login\" first."},
    {Fact::Session, "There is no session. Use \"session start\" first."},
    {Fact::Opened, "There is no session. Use \"session start\" first."},
    {Fact::Channel, "The live channel is closed. Use \"session reconnect\" to open it again."},
    {Fact::Poll, "No poll is running. Use \"poll TYPE\" to start one."},
    {Fact::AnyPoll, "No poll has been put. Use \"poll TYPE\"."},
    {Fact::Assessment, "No assessment is under way. Use \"assessment start\"."},
    {Fact::AnyAssessment, "There has been no assessment. Use \"assessment start\"."},
    {Fact::Questions, "There are no questions. Use \"assessment question\" first."},
    {Fact::Cards, "The lesson has no cards. Use \"deck add\"."},
};

Outcome unreachable(const QString& what, PresenterClient& client)
{
    if (client.lastError() == missingRoot)
        return Outcome::unreachable(
            QStringLiteral("%1 failed (%2). The certificate of %3 is signed by an authority that this "
                           "machine does not know: install the authority's certificate.")
                .arg(what, missingRoot, client.server()));
    return Outcome::unreachable(
        QStringLiteral("%1 failed: no classroom service answers at %2. Check --server, and that the service "
                       "is running.")
            .arg(what, client.server()));
}

} // namespace

int CommandContext::facts() const
{
    const PresenterClient& client = lesson.client();
    const struct
    {
        int fact;
        bool holds;
    } all[] = {{Fact::Login, client.isLoggedIn()},
               {Fact::Session, !client.sessionCode().isEmpty()},
               {Fact::Opened, !client.sessionToken().isEmpty()},
               {Fact::Channel, lesson.isLive()},
               {Fact::Poll, lesson.board().isRunning()},
               {Fact::AnyPoll, lesson.board().last() != nullptr},
               {Fact::Assessment, lesson.desk().isRunning()},
               {Fact::AnyAssessment, lesson.desk().sheet() != nullptr},
               {Fact::Questions, !lesson.desk().written().isEmpty()},
               {Fact::Cards, lesson.deck().count() > 0}};
    int facts = Fact::Nothing;
    for (const auto& [fact, holds] : all)
        facts |= holds ? fact : Fact::Nothing;
    return facts;
}

Outcome CommandContext::require(int needs) const
{
    return require(needs, facts());
}

Outcome CommandContext::require(int needs, int facts)
{
    const bool isNeverLive = (needs & Fact::Channel) && !(facts & (Fact::Channel | Fact::Opened));
    if (isNeverLive)
        return Outcome::failed(QStringLiteral("No session is live. Use \"session start\" first."));
    for (const auto& [fact, advice] : advices) {
        if ((needs & fact) && !(facts & fact))
            return Outcome::failed(QLatin1String(advice));
    }
    return Outcome::done();
}

Outcome CommandContext::refused(const QString& what, const QString& hint) const
{
    PresenterClient& client = lesson.client();
    const QString key = Text::clean(client.lastError());
    if (key == missingRoot)
        return unreachable(what, client);
    if (!key.isEmpty())
        return Outcome::failed(QStringLiteral("%1 was refused (%2). %3").arg(what, key, hint));
    if (!client.checkServer(QString(), QString()))
        return unreachable(what, client);
    return Outcome::failed(QStringLiteral("%1 failed; the service gave no error key. %2").arg(what, hint));
}
