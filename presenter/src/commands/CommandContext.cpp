#include "commands/CommandContext.h"

#include "commands/Waiter.h"
#include "lesson/Notebook.h"
#include "terminal/Screen.h"
#include "text/Text.h"
#include "text/Words.h"

#include <CalyxClient/PresenterClient>

#include <QCoreApplication>
#include <QPointer>

#include <memory>

using namespace Calyx;

namespace {

const QString missingRoot = QStringLiteral("SSLRootCertificateMissing");

// In the order in which a lesson gets to them.
const struct
{
    int fact;
    const char* advice;
} advices[] = {
    {Fact::Login, QT_TRANSLATE_NOOP("Words", "This needs a login. Use \"login\" first.")},
    {Fact::Session, QT_TRANSLATE_NOOP("Words", "There is no session. Use \"session start\" first.")},
    {Fact::Opened, QT_TRANSLATE_NOOP("Words", "There is no session. Use \"session start\" first.")},
    {Fact::Channel,
     QT_TRANSLATE_NOOP("Words", "The live channel is closed. Use \"session reconnect\" to open it again.")},
    {Fact::Poll, QT_TRANSLATE_NOOP("Words", "No poll is running. Use \"poll TYPE\" to start one.")},
    {Fact::AnyPoll, QT_TRANSLATE_NOOP("Words", "No poll has been put. Use \"poll TYPE\".")},
    {Fact::Assessment, QT_TRANSLATE_NOOP("Words", "No assessment is under way. Use \"assessment start\".")},
    {Fact::AnyAssessment,
     QT_TRANSLATE_NOOP("Words", "There has been no assessment. Use \"assessment start\".")},
    {Fact::Questions,
     QT_TRANSLATE_NOOP("Words", "There are no questions. Use \"assessment question\" first.")},
    {Fact::Cards, QT_TRANSLATE_NOOP("Words", "The lesson has no cards. Use \"deck add\".")},
};

bool isUnreachable(LessonError::Kind kind)
{
    return kind == LessonError::Unreachable || kind == LessonError::NoAnswer ||
           kind == LessonError::NotTheService || kind == LessonError::UnknownAuthority;
}

LessonError errorOf(PresenterClient* client)
{
    const QString key = client->lastError();
    if (key == missingRoot)
        return LessonError::make(LessonError::UnknownAuthority, key);
    const bool answers = !key.isEmpty() || client->checkServer(QString(), QString());
    return LessonError::make(answers ? LessonError::Refused : LessonError::Unreachable, key);
}

} // namespace

int CommandContext::facts() const
{
    const Lesson::State state = lesson.state();
    const bool isOpen = state == Lesson::Live || state == Lesson::Reconnecting;
    const Poll* const poll = lesson.poll();
    const Assessment* const assessment = lesson.assessment();
    const struct
    {
        int fact;
        bool holds;
    } all[] = {{Fact::Login, state != Lesson::LoggedOut && state != Lesson::LoggingIn},
               {Fact::Session, isOpen || !notes.createdCode.isEmpty()},
               {Fact::Opened, isOpen},
               {Fact::Channel, isOpen && !notes.isDisconnected},
               {Fact::Poll, poll && poll->isRunning()},
               {Fact::AnyPoll, poll != nullptr},
               {Fact::Assessment, assessment && assessment->isRunning()},
               {Fact::AnyAssessment, assessment != nullptr},
               {Fact::Questions, !notes.written().isEmpty()},
               {Fact::Cards, lesson.deck()->rowCount() > 0}};
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
        return Outcome::failed(Words::tr("No session is live. Use \"session start\" first."));
    for (const auto& [fact, advice] : advices) {
        if ((needs & fact) && !(facts & fact))
            return Outcome::failed(Words::tr(advice));
    }
    return Outcome::done();
}

Outcome CommandContext::carryOut(const Task& task, qint64 msecs)
{
    LessonError error;
    failure = &error;
    task.begin();
    const Waiter::Result result =
        waiter.until([&] { return error.kind != LessonError::NoError || task.isDone(); }, msecs);
    if (result != Waiter::Met)
        lesson.cancel();
    failure = nullptr;
    if (result == Waiter::Interrupted)
        return refused(task.what, task.hint, LessonError::make(LessonError::Cancelled));
    if (result == Waiter::TimedOut)
        return refused(task.what, task.hint, LessonError::make(LessonError::NoChannel));
    return error.kind == LessonError::NoError ? Outcome::done() : refused(task.what, task.hint, error);
}

Outcome CommandContext::askService(const QString& what, const QString& hint,
                                   const std::function<bool(PresenterClient*)>& work)
{
    const auto error = std::make_shared<LessonError>();
    const auto isOver = std::make_shared<bool>(false);
    const auto ask = [=, waiter = QPointer<Waiter>(&waiter)](PresenterClient* client) {
        const LessonError given = work(client) ? LessonError() : errorOf(client);
        const auto tell = [=] { // here again
            *error = given;
            *isOver = true;
            if (waiter)
                waiter->poke();
        };
        QMetaObject::invokeMethod(qApp, tell);
    };
    lesson.onClient(ask);
    if (waiter.until([&] { return *isOver; }, unlimited) != Waiter::Met)
        *error = LessonError::make(LessonError::Cancelled);
    return error->kind == LessonError::NoError ? Outcome::done() : refused(what, hint, *error);
}

Outcome CommandContext::waitForChannel()
{
    const auto isOver = [this] { return lesson.state() != Lesson::Reconnecting || notes.isDisconnected; };
    if (waiter.until(isOver, unlimited, [] { return Words::tr("the live channel"); }) != Waiter::Met)
        return Outcome::failed(Words::tr("The wait for the live channel was given up."));
    return require(Fact::Channel);
}

Outcome CommandContext::refused(const QString& what, const QString& hint, const LessonError& error) const
{
    const QString server = lesson.server().toString();
    const QString key = Text::clean(error.key);
    switch (error.kind) {
    case LessonError::Cancelled:
        return Outcome::failed(Words::tr("%1 was given up.").arg(what));
    case LessonError::BadInput:
        return Outcome::failed(error.text);
    case LessonError::NoChannel:
        return Outcome::failed(Words::tr("The live channel to %1 did not open. Check that the network lets "
                                         "it through, or name other transports with --transports.")
                                   .arg(server));
    case LessonError::Unreachable:
        return Outcome::unreachable(
            Words::tr("%1 failed: no classroom service answers at %2. Check --server, and that the "
                      "service is running.")
                .arg(what, server));
    case LessonError::UnknownAuthority:
        return Outcome::unreachable(
            Words::tr("%1 failed (%2). The certificate of %3 is signed by an authority that this "
                      "machine does not know: install the authority's certificate.")
                .arg(what, missingRoot, server));
    default:
        break;
    }
    if (isUnreachable(error.kind))
        return Outcome::unreachable(Words::tr("%1 failed. %2 %3").arg(what, error.text, error.advice));
    return Outcome::failed(key.isEmpty() ? Words::tr("%1 failed. %2 %3").arg(what, error.text, hint)
                                         : Words::tr("%1 was refused (%2). %3").arg(what, key, hint));
}

void CommandContext::take(const LessonError& error)
{
    if (!failure)
        screen.note(QStringLiteral("%1 %2").arg(error.text, error.advice).trimmed(), Ink::Bad);
    else if (failure->kind == LessonError::NoError)
        *failure = error;
}
