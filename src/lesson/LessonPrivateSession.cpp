#include "lesson/LessonPrivate.h"

#include "lesson/LessonText.h"

#include <QRandomGenerator>

#include <utility>

namespace Calyx {

namespace {

constexpr int longestLook = 1000; // ms

// Seconds between attempts, which are made 0, 1, 2, 4, 8 and 15 s after the loss, and every 15 s from then
// on; up to a fifth earlier or later, so that a service that comes back is not met by everybody at the same
// moment.
int pauseBefore(int attempt)
{
    static const int pauses[] = {0, 1, 1, 2, 4, 7, 15};
    constexpr int last = sizeof(pauses) / sizeof(*pauses) - 1;
    constexpr double second = 1000;
    constexpr double spread = 0.2;
    const double factor = 1 - spread + 2 * spread * QRandomGenerator::global()->generateDouble();
    return int(pauses[qMin(attempt, last)] * second * factor);
}

} // namespace

// Login.

void LessonPrivate::beginLogIn(const Login& login)
{
    if (server.host().isEmpty()) {
        refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "The address of the service is missing."));
        return;
    }
    for (const QString& text : {login.user, login.secret, login.deviceId}) {
        if (LessonText::hasControls(text)) {
            refuse(
                QT_TRANSLATE_NOOP("Calyx::Lesson", "User names and passwords hold no control characters."));
            return;
        }
    }
    const QPointer<Lesson> self(q);
    if (isWanted()) {
        journal.noteEnd();
        finishSession();
    }
    if (!self)
        return;
    if (!thread->isRunning())
        thread->start();
    wantsLive = isLoggingOut = false;
    user = login.user;
    ticket = ++lastTicket;
    worker->tell([login, ticket = ticket](LessonWorker* at) {
        at->cancel();
        at->logIn(ticket, login);
    });
    setState(Lesson::LoggingIn);
}

void LessonPrivate::onLoggedIn(int ticketOfLogin, const LessonError& error, const QString& registration)
{
    if (ticketOfLogin != ticket)
        return;
    const QPointer<Lesson> self(q);
    if (error.kind == LessonError::NoError) {
        if (setState(Lesson::LoggedIn))
            startIfWanted();
        return;
    }
    user.clear();
    wantsLive = false;
    if (!finishSession() || !setState(Lesson::LoggedOut))
        return;
    if (!registration.isEmpty())
        Q_EMIT q->registrationNeeded(registration);
    if (self)
        fail(error);
}

// Session.

// Starts the session that was asked for while nobody was logged in yet, or while the one before was ending.
void LessonPrivate::startIfWanted()
{
    if (state == Lesson::LoggedIn && wantsLive)
        beginStart();
}

void LessonPrivate::beginStart()
{
    wantsLive = false;
    attempts = 0;
    ticket = ++lastTicket;
    const bool isTakenUp = !takenUp.session.token.isEmpty();
    if (!isTakenUp) {
        content.teacher = user;
        content.startedAt = QDateTime::currentDateTime();
    }
    worker->tell([=, ticket = ticket, session = takenUp.session, settings = channel](LessonWorker* at) {
        at->setChannel(settings);
        isTakenUp ? at->takeUp(ticket, session) : at->open(ticket);
    });
    setState(Lesson::Starting);
}

bool LessonPrivate::takeUp(const QString& fileName)
{
    const LessonJournal::Events events = LessonJournal::read(fileName);
    if (events.isEmpty()) {
        fail(LessonError::make(LessonError::BadInput, fileName,
                               Lesson::tr("%1 holds no lesson that can be taken up.").arg(fileName)));
        return false;
    }
    const QPointer<Lesson> self(q);
    wantsLive = true;
    clearSession();
    if (!self)
        return false;
    const LessonJournal::TakenUp found = LessonJournal::find(events);
    takenUp = found;
    journal.takeUp(fileName, events);
    if (!self)
        return false;
    if (!wantsLive) { // a slot has ended it
        takenUp = found;
        finishSession();
        return false;
    }
    shown = content.wanted();
    const Poll* poll = content.poll;
    if (poll && poll->stopsAt().isValid()) {
        stopAt.setRemainingTime(qMax(qint64{0}, QDateTime::currentDateTime().msecsTo(poll->stopsAt())));
        stopTimer.start(0);
    }
    return tellTakenUp();
}

// Tells of all that has come back from the journal.
bool LessonPrivate::tellTakenUp()
{
    const QPointer<Lesson> self(q);
    for (int i = 0; self && i < content.polls.size(); ++i)
        content.polls.at(i)->flush();
    return self && whileThere([this] { content.roster->flush(); }, [this] { content.roster->tellAnswers(); },
                              [this] { Q_EMIT q->pollChanged(); }, [this] { Q_EMIT q->assessmentChanged(); },
                              [this] { Q_EMIT q->lockedChanged(); });
}

void LessonPrivate::onOpened(int ticketOfOpening, const Opening& opening)
{
    if (ticketOfOpening != ticket || (state != Lesson::Starting && state != Lesson::Reconnecting))
        return;
    joinCode = opening.joinCode;
    joinAddress = opening.joinAddress;
    beginToLive(opening);
    QStringList newcomers;
    if (!meet(opening, &newcomers))
        return;
    attempts = 0;
    // Before slots hear that it is live: what they ask for is sent at once, and only once.
    isBringing = true;
    if (opening.isReturn)
        bringsBack ? bringBack(newcomers) : void();
    else if (!content.wanted().isNothing())
        send([wanted = content.wanted()](PresenterCollab* collab) {
            LessonMessages::bring(collab, QString(), wanted);
        });
    isBringing = false;
    if (setState(Lesson::Live) && state == Lesson::Live)
        tellRemote();
}

// Brings the roster to the service's list. False where a slot has ended the lesson, or what it was doing.
bool LessonPrivate::meet(const Opening& opening, QStringList* newcomers)
{
    const QPointer<Lesson> self(q);
    const auto isOver = [&, at = ticket] { return !self || ticket != at; };
    QSet<QString> listed = opening.heard;
    const QDateTime now = QDateTime::currentDateTime(); // looked up for each, it would take most of the time
    for (const Learner& learner : opening.learners) {
        listed.insert(learner.deviceId);
        if (come(learner, now))
            newcomers->append(learner.deviceId);
        if (isOver())
            return false;
    }
    if (!opening.isReturn || !opening.hasLearners)
        return true;
    const QStringList present = content.roster->present();
    for (const QString& deviceId : present) {
        if (!listed.contains(deviceId))
            onLeave(deviceId, {});
        if (isOver())
            return false;
    }
    return true;
}

// The journal is written from here on, or goes on where the session has been taken up.
void LessonPrivate::beginToLive(const Opening& opening)
{
    if (std::exchange(takenUp, {}).session.token.isEmpty()) {
        if (!opening.isReturn)
            journal.noteSession({joinCode, opening.sessionToken}, server.toString());
        return;
    }
    journal.goOn();
}

void LessonPrivate::onNotOpened(int ticketOfOpening, const LessonError& error)
{
    if (ticketOfOpening != ticket)
        return;
    const bool isOver =
        error.kind == LessonError::SessionGone || error.kind == LessonError::LoggedOutByService;
    if (state == Lesson::Reconnecting && !isOver) {
        reconnects ? tryAgain() : void(fail(error));
        return;
    }
    journal.close(); // the session may be taken up
    if (!finishSession())
        return;
    const bool isLoggedOut = error.kind == LessonError::LoggedOutByService;
    if (isLoggedOut)
        user.clear();
    if (setState(isLoggedOut ? Lesson::LoggedOut : Lesson::LoggedIn) && fail(error))
        startIfWanted();
}

void LessonPrivate::onConfirmed(int serial)
{
    shown = sent.value(serial, shown);
    while (!sent.isEmpty() && sent.firstKey() <= serial)
        sent.erase(sent.begin());
}

void LessonPrivate::onLost()
{
    if (state != Lesson::Live)
        return;
    attempts = 0;
    sent.clear();
    if (setState(Lesson::Reconnecting) && state == Lesson::Reconnecting && reconnects)
        tryAgain();
}

void LessonPrivate::tryAgain()
{
    const int pause = pauseBefore(attempts++);
    nextAttempt = QDateTime::currentDateTime().addMSecs(pause);
    retryAt.setRemainingTime(pause);
    retry.start(qMin(pause, longestLook));
    Q_EMIT q->nextAttemptChanged();
}

// A timer stands still while a computer sleeps. The time of day does not, but people can set it: whichever
// comes first counts.
void LessonPrivate::waitForAttempt()
{
    const int left = int(retryAt.remainingTime());
    if (left <= 0 || QDateTime::currentDateTime() >= nextAttempt) {
        attempt();
        return;
    }
    retry.start(qMin(left, longestLook));
    Q_EMIT q->secondsToAttemptChanged();
}

// For the same reason.
void LessonPrivate::waitForStop()
{
    if (!content.isAsked())
        return;
    const qint64 left =
        qMin(stopAt.remainingTime(), QDateTime::currentDateTime().msecsTo(content.poll->stopsAt()));
    left > 0 ? stopTimer.start(int(qMin<qint64>(left, longestLook))) : q->stop();
}

void LessonPrivate::attempt()
{
    retry.stop();
    nextAttempt = QDateTime();
    ticket = ++lastTicket;
    worker->tell([ticket = ticket, settings = channel](LessonWorker* at) {
        at->setChannel(settings);
        at->reopen(ticket);
    });
    Q_EMIT q->nextAttemptChanged();
}

void LessonPrivate::beginEnd(bool andLogOut)
{
    wantsLive = false;
    isLoggingOut = andLogOut;
    ticket = ++lastTicket;
    worker->tell([ticket = ticket, andLogOut](LessonWorker* at) {
        at->cancel();
        if (andLogOut)
            at->logOut(ticket);
        else
            at->endSession(ticket);
    });
    journal.noteEnd();
    if (finishSession())
        setState(Lesson::Ending);
}

void LessonPrivate::onEnded(int ticketOfEnd, const LessonError& error)
{
    if (ticketOfEnd != ticket || state != Lesson::Ending)
        return;
    if (isLoggingOut)
        user.clear();
    if (!setState(isLoggingOut ? Lesson::LoggedOut : Lesson::LoggedIn))
        return;
    if (error.kind != LessonError::NoError && !fail(error))
        return;
    startIfWanted();
}

// What cancel() does to whatever is under way.
void LessonPrivate::giveUp()
{
    const bool hadLogin = state != Lesson::LoggingIn && !(state == Lesson::Ending && isLoggingOut);
    const bool isTakenUp = !takenUp.session.token.isEmpty(); // and goes on without us
    const bool endsSession = (state == Lesson::Starting && !isTakenUp) || state == Lesson::Reconnecting;
    ticket = ++lastTicket;
    worker->tell([ticket = ticket, endsSession, isTakenUp](LessonWorker* at) {
        at->cancel();
        if (endsSession)
            at->endSession(ticket);
        else if (isTakenUp)
            at->forgetSession();
    });
    if (endsSession)
        journal.noteEnd();
    uploads.clear();
    wantsLive = false;
    const QPointer<Lesson> self(q);
    if (state == Lesson::Live) {
        if (!content.isPollReady)
            q->stop(); // a poll whose picture was on its way
        if (self)
            tellBusy();
    } else {
        if (!finishSession())
            return;
        if (!hadLogin)
            user.clear();
        if (!setState(hadLogin ? Lesson::LoggedIn : Lesson::LoggedOut))
            return;
    }
    if (self && fail(LessonError::make(LessonError::Cancelled)))
        startIfWanted();
}

bool LessonPrivate::finishSession()
{
    const QPointer<Lesson> self(q);
    const int ticketBefore = ticket;
    // A session that was taken up has been over for as long as its journal.
    const LessonJournal::TakenUp before = std::exchange(takenUp, {});
    const QDateTime at = before.session.token.isEmpty() ? QDateTime::currentDateTime() : before.until;
    joinCode.clear();
    joinAddress.clear();
    uploads.clear();
    content.cardPng.clear();
    content.cardUrl.clear();
    ++cardSerial;
    shown = {};
    sent.clear();
    isFinishing = true;
    const QStringList present = content.roster->present();
    // Slots may begin the next session, and even have its content from a journal.
    const QPointer<Poll> poll = content.poll;
    const QPointer<Assessment> assessment = content.assessment;
    const bool wasLocked = std::exchange(content.isLocked, false);
    whileThere([&] { poll ? poll->stop(at) : void(); }, [&] { assessment ? assessment->stop(at) : void(); });
    for (const QString& deviceId : present) {
        if (self && content.roster->leave(deviceId, at))
            Q_EMIT content.roster->left(deviceId);
    }
    if (!self)
        return false;
    journal.flush();
    if (!wantsLive) // else a slot has begun the next session's
        journal.close();
    if (whileThere([this, wasLocked] { wasLocked ? q->lockedChanged() : void(); },
                   [this] { content.roster->flush(); }, [this] { onRemoteGone({}); }))
        isFinishing = false;
    return self && ticket == ticketBefore;
}

void LessonPrivate::clearSession()
{
    const bool wasSomething = content.clear();
    answeredPolls.clear();
    uploaded.clear();
    whileThere([this] { content.roster->clear(); }, [this] { content.roster->flush(); },
               [=] { wasSomething ? q->pollChanged() : void(); },
               [=] { wasSomething ? q->assessmentChanged() : void(); });
}

void LessonPrivate::onProgress(int ticketOfOperation, double next)
{
    if (ticketOfOperation != ticket || state == Lesson::Live || progress == next)
        return;
    progress = next;
    Q_EMIT q->busyChanged();
}

} // namespace Calyx
