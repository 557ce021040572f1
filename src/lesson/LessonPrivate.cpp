#include "lesson/LessonPrivate.h"

#include "collab/PresenterCollab.h"
#include "lesson/LessonText.h"

#include <QCryptographicHash>
#include <QRandomGenerator>

#include <utility>

namespace Calyx {

namespace {

constexpr int goodbyeLimit = 1200; // ms
constexpr int endLimit = 2000;     // ms
constexpr int largestInline = 64 * 1024;
constexpr int largestPicture = 16 * 1024 * 1024;

// Seconds between attempts, the last one again and again; up to a fifth earlier or later, so that a service
// that comes back is not met by everybody at the same moment.
int pauseBefore(int attempt)
{
    static const int pauses[] = {0, 1, 2, 4, 8, 15};
    constexpr int last = sizeof(pauses) / sizeof(*pauses) - 1;
    constexpr double second = 1000;
    constexpr double spread = 0.2;
    const double factor = 1 - spread + 2 * spread * QRandomGenerator::global()->generateDouble();
    return int(pauses[qMin(attempt, last)] * second * factor);
}

const QHash<QString, Lesson::RemoteCommand>& remoteCommands()
{
    static const QHash<QString, Lesson::RemoteCommand> commands = {
        {QStringLiteral("presenterActive"), Lesson::AskPresence},
        {QStringLiteral("requestLessonInfo"), Lesson::AskLesson},
        {QStringLiteral("requestLesson"), Lesson::AskCards},
        {QStringLiteral("pause"), Lesson::Pause},
        {QStringLiteral("resume"), Lesson::Resume},
        {QStringLiteral("lockAll"), Lesson::Lock},
        {QStringLiteral("unlockAll"), Lesson::Unlock},
        {QStringLiteral("nextCard"), Lesson::NextCard},
        {QStringLiteral("previousCard"), Lesson::PreviousCard},
        {QStringLiteral("pushCurrentCard"), Lesson::ShowCard},
        {QStringLiteral("addImageCard"), Lesson::AddCard},
        {QStringLiteral("stopSession"), Lesson::EndLesson}};
    return commands;
}

} // namespace

LessonPrivate::LessonPrivate(Lesson* lesson)
    : q(lesson)
    , inbox(nullptr)
    , worker(new LessonWorker(inbox.slot(), this))
    , thread(new QThread)
    , roster(new Roster(lesson))
    , deck(new Deck(lesson))
{
    worker->moveToThread(thread);
    QObject::connect(thread, &QThread::finished, worker, &QObject::deleteLater);
    thread->setObjectName(QStringLiteral("lesson"));
    QObject::connect(&inbox, &Inbox::turned, q, [this] { afterTurn(); });
    retry.setSingleShot(true);
    QObject::connect(&retry, &QTimer::timeout, q, [this] { attempt(); });
    QObject::connect(deck, &Deck::changed, q, [this] { tellRemote(); });
}

// The thread comes to its end by itself: it can be in a call that cannot be interrupted.
LessonPrivate::~LessonPrivate()
{
    if (!thread->isRunning()) {
        delete worker;
        delete thread;
        return;
    }
    worker->tell([](LessonWorker* at) { at->shutDown(goodbyeLimit); });
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    if (thread->wait(endLimit))
        delete thread;
}

bool LessonPrivate::setState(Lesson::State next)
{
    const QPointer<Lesson> self(q);
    if (state == next)
        return true;
    state = next;
    progress = -1;
    if (nextAttempt.isValid()) {
        retry.stop();
        nextAttempt = QDateTime();
        Q_EMIT q->nextAttemptChanged();
        if (!self || state != next)
            return self;
    }
    Q_EMIT q->stateChanged();
    if (self)
        tellBusy();
    return self;
}

void LessonPrivate::tellBusy()
{
    if (q->isBusy() != std::exchange(wasBusy, q->isBusy()))
        Q_EMIT q->busyChanged();
}

bool LessonPrivate::fail(const LessonError& error)
{
    const QPointer<Lesson> self(q);
    Q_EMIT q->failed(error);
    return self;
}

bool LessonPrivate::refuse(const char* text)
{
    return fail(LessonError::make(LessonError::BadInput, QString(), Lesson::tr(text)));
}

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
    if (hasSession() || state == Lesson::Starting)
        finishSession();
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
        if (setState(Lesson::LoggedIn) && state == Lesson::LoggedIn && wantsLive)
            beginStart();
        return;
    }
    user.clear();
    finishSession();
    if (!self || !setState(Lesson::LoggedOut))
        return;
    if (!registration.isEmpty())
        Q_EMIT q->registrationNeeded(registration);
    if (self)
        fail(error);
}

// Session.

void LessonPrivate::beginStart()
{
    wantsLive = false;
    attempts = 0;
    startedAt = QDateTime::currentDateTime();
    ticket = ++lastTicket;
    worker->tell(
        [ticket = ticket, transports = transports](LessonWorker* at) { at->open(ticket, transports); });
    setState(Lesson::Starting);
}

void LessonPrivate::onOpened(int ticketOfOpening, const Opening& opening)
{
    if (ticketOfOpening != ticket || (state != Lesson::Starting && state != Lesson::Reconnecting))
        return;
    const QPointer<Lesson> self(q);
    joinCode = opening.joinCode;
    joinAddress = opening.joinAddress;
    QStringList newcomers;
    QSet<QString> listed = opening.heard;
    for (const Learner& learner : opening.learners) {
        listed.insert(learner.deviceId);
        if (!roster->join(learner))
            continue;
        newcomers.append(learner.deviceId);
        Q_EMIT roster->joined(learner.deviceId);
        if (!self)
            return;
    }
    const QStringList present = opening.isReturn && opening.hasLearners ? roster->present() : QStringList();
    for (const QString& deviceId : present) {
        if (!listed.contains(deviceId))
            onLeave(deviceId);
        if (!self)
            return;
    }
    attempts = 0;
    state = opening.isReturn ? Lesson::Reconnecting : Lesson::Starting;
    if (!setState(Lesson::Live) || state != Lesson::Live)
        return;
    if (opening.isReturn)
        bringBack(newcomers);
    else if (!wanted().isNothing())
        send([wanted = wanted()](PresenterCollab* collab) {
            LessonMessages::bring(collab, QString(), wanted);
        });
    tellRemote();
}

void LessonPrivate::onNotOpened(int ticketOfOpening, const LessonError& error)
{
    if (ticketOfOpening != ticket)
        return;
    const bool isOver =
        error.kind == LessonError::SessionGone || error.kind == LessonError::LoggedOutByService;
    if (state == Lesson::Reconnecting && !isOver) {
        tryAgain();
        return;
    }
    const QPointer<Lesson> self(q);
    finishSession();
    if (!self)
        return;
    const bool isLoggedOut = error.kind == LessonError::LoggedOutByService;
    if (isLoggedOut)
        user.clear();
    if (setState(isLoggedOut ? Lesson::LoggedOut : Lesson::LoggedIn))
        fail(error);
}

void LessonPrivate::onLost()
{
    if (state != Lesson::Live)
        return;
    attempts = 0;
    shown = wanted();
    if (setState(Lesson::Reconnecting) && state == Lesson::Reconnecting && reconnects)
        tryAgain();
}

void LessonPrivate::tryAgain()
{
    if (!reconnects)
        return;
    const int pause = pauseBefore(attempts++);
    nextAttempt = QDateTime::currentDateTime().addMSecs(pause);
    retry.start(pause);
    Q_EMIT q->nextAttemptChanged();
}

void LessonPrivate::attempt()
{
    retry.stop();
    nextAttempt = QDateTime();
    ticket = ++lastTicket;
    worker->tell([ticket = ticket](LessonWorker* at) { at->reopen(ticket); });
    Q_EMIT q->nextAttemptChanged();
}

void LessonPrivate::beginEnd(bool andLogOut)
{
    const QPointer<Lesson> self(q);
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
    finishSession();
    if (self)
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
    if (state == Lesson::LoggedIn && wantsLive)
        beginStart();
}

// What cancel() does to whatever is under way.
void LessonPrivate::giveUp()
{
    const bool hadLogin = state != Lesson::LoggingIn && !(state == Lesson::Ending && isLoggingOut);
    const bool endsSession = state == Lesson::Starting || state == Lesson::Reconnecting;
    ticket = ++lastTicket;
    worker->tell([ticket = ticket, endsSession](LessonWorker* at) {
        at->cancel();
        if (endsSession)
            at->endSession(ticket);
    });
    uploads.clear();
    wantsLive = false;
    if (state == Lesson::Live) {
        tellBusy();
    } else {
        const QPointer<Lesson> self(q);
        finishSession();
        if (!self)
            return;
        if (!hadLogin)
            user.clear();
        if (!setState(hadLogin ? Lesson::LoggedIn : Lesson::LoggedOut))
            return;
    }
    fail(LessonError::make(LessonError::Cancelled));
}

void LessonPrivate::finishSession()
{
    const QPointer<Lesson> self(q);
    joinCode.clear();
    joinAddress.clear();
    uploads.clear();
    cardPng.clear();
    cardUrl.clear();
    ++cardSerial;
    if (poll)
        poll->stop();
    if (self && assessment)
        assessment->stop();
    if (!self)
        return;
    const QStringList present = roster->present();
    for (const QString& deviceId : present) {
        if (self)
            onLeave(deviceId);
    }
    if (self && std::exchange(isLocked, false))
        Q_EMIT q->lockedChanged();
    if (self)
        roster->flush();
    if (self)
        onRemoteGone();
}

void LessonPrivate::clearSession()
{
    const QPointer<Lesson> self(q);
    const QList<QObject*> gone = [this] {
        QList<QObject*> all;
        for (Poll* one : qAsConst(polls))
            all.append(one);
        for (Assessment* one : qAsConst(assessments))
            all.append(one);
        return all;
    }();
    polls.clear();
    pollsById.clear();
    assessments.clear();
    answeredPolls.clear();
    poll = nullptr;
    assessment = nullptr;
    uploaded.clear();
    for (QObject* object : gone)
        object->deleteLater(); // views may be in the middle of them
    roster->setPoll(nullptr);
    roster->clear();
    if (self)
        roster->flush();
    if (!self || gone.isEmpty())
        return;
    Q_EMIT q->pollChanged();
    if (self)
        Q_EMIT q->assessmentChanged();
}

// The class.

void LessonPrivate::send(const std::function<void(PresenterCollab*)>& work)
{
    if (state == Lesson::Live)
        worker->tell([work](LessonWorker* at) { at->send(work); });
}

Wanted LessonPrivate::wanted() const
{
    Wanted wanted;
    if (poll && poll->isRunning() && isPollReady) {
        wanted.question = sentQuestion;
        wanted.pollId = poll->id();
        wanted.isPollPaused = poll->isPaused();
    }
    wanted.cardPng = cardPng;
    wanted.cardUrl = cardUrl;
    wanted.isLocked = isLocked;
    if (assessment && assessment->isRunning()) {
        wanted.assessment = assessment->plan();
        wanted.assessmentToken = assessment->token();
        wanted.isAssessmentPaused = assessment->isPaused();
    }
    return wanted;
}

// A device goes on with the first question that it has not answered; one that has answered the poll keeps
// that.
Wanted LessonPrivate::wantedBy(const QString& deviceId, const Wanted& all) const
{
    Wanted wanted = all;
    if (!all.pollId.isEmpty() && poll->hasAnswered(deviceId))
        wanted.pollId.clear();
    if (all.assessmentToken.isEmpty())
        return wanted;
    if ((!assessment->isForAll() && !assessment->takesPart(deviceId)) || assessment->isFinished(deviceId))
        wanted.assessmentToken.clear();
    while (wanted.firstQuestion < assessment->questionCount() &&
           assessment->answer(deviceId, wanted.firstQuestion).mark != PollAnswer::NoAnswer)
        ++wanted.firstQuestion;
    return wanted;
}

void LessonPrivate::bring(const QStringList& devices)
{
    const Wanted all = wanted();
    if (all.isNothing())
        return;
    for (const QString& deviceId : devices) {
        const Wanted one = wantedBy(deviceId, all);
        if (one.isNothing())
            continue;
        send([deviceId, one](PresenterCollab* collab) {
            LessonMessages::bring(collab, LessonMessages::addressOf(deviceId), one);
        });
    }
}

// The learners have had the lesson in front of them all the while: they get what has changed, and who has not
// answered gets the question again. Who has come meanwhile gets everything.
void LessonPrivate::bringBack(const QStringList& newcomers)
{
    const Wanted now = wanted();
    Wanted news = now;
    const bool isSamePoll = now.pollId == shown.pollId;
    const bool isSameAssessment = now.assessmentToken == shown.assessmentToken;
    if (isSamePoll)
        news.pollId.clear();
    if (isSameAssessment)
        news.assessmentToken.clear();
    if (now.cardPng == shown.cardPng && now.cardUrl == shown.cardUrl) {
        news.cardPng.clear();
        news.cardUrl.clear();
    }
    news.isLocked = now.isLocked && !shown.isLocked;
    send([=, before = shown](PresenterCollab* collab) {
        if (!before.pollId.isEmpty() && now.pollId.isEmpty())
            LessonMessages::sendPollStop(collab, before.pollId);
        if (!before.assessmentToken.isEmpty() && !isSameAssessment)
            LessonMessages::sendAssessmentStop(collab, before.assessmentToken);
        LessonMessages::bring(collab, QString(), news);
        if (isSamePoll && now.isPollPaused != before.isPollPaused)
            LessonMessages::sendPause(collab, QString(), now.pollId, now.isPollPaused);
        if (isSameAssessment && now.isAssessmentPaused != before.isAssessmentPaused)
            LessonMessages::sendPause(collab, QString(), now.assessmentToken, now.isAssessmentPaused);
        if (before.isLocked && !now.isLocked)
            LessonMessages::sendLock(collab, QString(), false);
    });
    bring(newcomers);
    if (!isSamePoll || now.pollId.isEmpty())
        return;
    QStringList missing = poll->missing();
    for (const QString& deviceId : newcomers)
        missing.removeOne(deviceId);
    send([now, devices = missing](PresenterCollab* collab) {
        for (const QString& deviceId : devices) {
            LessonMessages::sendPoll(collab, LessonMessages::addressOf(deviceId), now.question, now.pollId);
            if (now.isPollPaused)
                LessonMessages::sendPause(collab, LessonMessages::addressOf(deviceId), now.pollId, true);
        }
    });
}

void LessonPrivate::onJoin(const Learner& learner)
{
    welcome(learner);
}

// Whoever joins gets what the class has in front of it, also a device that was here already: it has opened
// its channel just now.
void LessonPrivate::welcome(const Learner& learner)
{
    const QPointer<Lesson> self(q);
    if (roster->join(learner))
        Q_EMIT roster->joined(learner.deviceId);
    if (!self)
        return;
    if (assessment && assessment->isRunning() && assessment->isForAll())
        assessment->enter(learner.deviceId);
    bring({learner.deviceId});
}

void LessonPrivate::onLeave(const QString& deviceId)
{
    if (roster->leave(deviceId))
        Q_EMIT roster->left(deviceId);
}

void LessonPrivate::onAnswer(const QString& deviceId, const QString& id, int time, const QString& answer)
{
    const QPointer<Lesson> self(q);
    if (deviceId.isEmpty())
        return;
    if (Poll* const answered = pollsById.value(id)) {
        if (answered->add(deviceId, answer, time))
            answeredPolls.insert(answered);
        return;
    }
    for (Assessment* one : qAsConst(assessments)) {
        const int number = one->numberOf(id);
        if (number > 0) {
            one->add(deviceId, number, answer, time);
            return;
        }
    }
}

void LessonPrivate::onQuestionWanted(const QString& deviceId, int number)
{
    if (!assessment || !assessment->isRunning())
        return;
    if (assessment->isForAll())
        assessment->enter(deviceId);
    if (!assessment->takesPart(deviceId) || number < 0 || number > assessment->questionCount())
        return;
    number = qMax(number, 1); // a device that names none wants the first
    const PollAnswer before = assessment->answer(deviceId, number);
    const QString text = before.mark == PollAnswer::NoAnswer ? QString() : before.text;
    send([=, plan = assessment->plan(), id = assessment->questionId(number)](PresenterCollab* collab) {
        LessonMessages::sendAssessmentQuestion(collab, LessonMessages::addressOf(deviceId), plan, number, id,
                                               text);
    });
}

// What has come in one turn is told once.
void LessonPrivate::afterTurn()
{
    const QPointer<Lesson> self(q);
    roster->flush();
    if (!self)
        return;
    const QSet<Poll*> answered = std::exchange(answeredPolls, {});
    for (Poll* one : answered) {
        const QPointer<Poll> guard(one);
        one->flush();
        if (self && guard == poll)
            roster->tellAnswers();
        if (self && guard)
            Q_EMIT q->answersChanged(guard);
        if (!self)
            return;
    }
    if (assessment)
        assessment->flush();
}

// Polls.

Poll* LessonPrivate::addPoll(const Question& question)
{
    const QPointer<Lesson> self(q);
    if (poll)
        poll->stop();
    if (!self)
        return nullptr;
    auto* const added = new Poll(polls.size() + 1, question, roster, q);
    polls.append(added);
    pollsById.insert(added->id(), added);
    poll = added;
    roster->setPoll(added);
    cardPng.clear(); // the question takes the place of the card and of the text
    cardUrl.clear();
    isPollReady = false;
    ++cardSerial;
    const bool wasLocked = std::exchange(isLocked, false);
    withPicture(question.picture,
                [this, question, id = added->id()](const QByteArray& png, const QString& url) {
                    if (!poll || poll->id() != id || !poll->isRunning())
                        return;
                    sentQuestion = question;
                    sentQuestion.picture = png;
                    if (!url.isEmpty())
                        sentQuestion.pictureUrl = url;
                    isPollReady = true;
                    send([id, sent = sentQuestion, isPaused = poll->isPaused()](PresenterCollab* collab) {
                        LessonMessages::sendPoll(collab, QString(), sent, id);
                        if (isPaused)
                            LessonMessages::sendPause(collab, QString(), id, true);
                    });
                });
    if (wasLocked)
        Q_EMIT q->lockedChanged();
    if (self)
        Q_EMIT q->pollChanged();
    return self ? added : nullptr;
}

void LessonPrivate::setPaused(bool paused)
{
    const bool isPoll = poll && poll->isRunning();
    if (!isPoll && (!assessment || !assessment->isRunning()))
        return;
    const QString id = isPoll ? poll->id() : assessment->token();
    if ((isPoll ? poll->isPaused() : assessment->isPaused()) == paused)
        return;
    if (!isPoll || isPollReady)
        send([=](PresenterCollab* collab) { LessonMessages::sendPause(collab, QString(), id, paused); });
    const QPointer<Lesson> self(q);
    if (isPoll)
        poll->setPaused(paused);
    else
        assessment->setPaused(paused);
    if (self && isPoll)
        Q_EMIT q->pollChanged();
    else if (self)
        Q_EMIT q->assessmentChanged();
}

// Pictures.

// Small ones travel in the message; others are stored at the service, from which devices load them. Where
// that fails, they travel all the same.
void LessonPrivate::withPicture(const QByteArray& png,
                                const std::function<void(const QByteArray& png, const QString& url)>& then)
{
    const QByteArray hash = QCryptographicHash::hash(png, QCryptographicHash::Sha1);
    if (png.size() <= largestInline) {
        then(png, QString());
        return;
    }
    if (uploaded.contains(hash)) {
        then(QByteArray(), uploaded.value(hash));
        return;
    }
    const int ticketOfUpload = ++lastTicket;
    uploads.insert(ticketOfUpload, {png, then});
    worker->tell([png, ticketOfUpload](LessonWorker* at) { at->upload(ticketOfUpload, png); });
    tellBusy();
}

void LessonPrivate::onUploaded(int ticketOfUpload, const QString& url)
{
    if (!uploads.contains(ticketOfUpload)) // cancelled
        return;
    const QPointer<Lesson> self(q);
    const Upload upload = uploads.take(ticketOfUpload);
    if (!url.isEmpty())
        uploaded.insert(QCryptographicHash::hash(upload.png, QCryptographicHash::Sha1), url);
    upload.then(url.isEmpty() ? upload.png : QByteArray(), url);
    if (self)
        tellBusy();
}

void LessonPrivate::show(const QByteArray& png, const QString& url, int number)
{
    if (!isWanted()) {
        refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "No lesson is open."));
        return;
    }
    if (png.size() > largestPicture) {
        fail(LessonError::make(LessonError::TooLarge));
        return;
    }
    withPicture(
        png, [this, url, number, serial = ++cardSerial](const QByteArray& bytes, const QString& uploadedUrl) {
            if (serial != cardSerial) // something else has been shown since
                return;
            cardPng = bytes;
            cardUrl = uploadedUrl.isEmpty() ? url : uploadedUrl;
            send([bytes, cardUrl = cardUrl](PresenterCollab* collab) {
                LessonMessages::sendCard(collab, QString(), bytes, cardUrl);
            });
            Q_EMIT q->cardShown(number);
        });
}

void LessonPrivate::onProgress(int ticketOfOperation, double next)
{
    if (ticketOfOperation != ticket || state == Lesson::Live || progress == next)
        return;
    progress = next;
    Q_EMIT q->busyChanged();
}

// The remote control.

void LessonPrivate::tellRemote()
{
    send([id = LessonText::escaped(lessonId), name = LessonText::escaped(lessonName),
          current = deck->current(), cards = deck->rowCount()](PresenterCollab* collab) {
        collab->sendPresenterIsActiveToRemote();
        collab->sendCurrentLessonToRemote(id, name);
        collab->sendCurrentCardToRemote(current, cards);
    });
}

void LessonPrivate::onRemote(const QString& type, const QVariant& data)
{
    const auto command = remoteCommands().constFind(type);
    if (command == remoteCommands().constEnd())
        return;
    const QPointer<Lesson> self(q);
    if (!std::exchange(isRemotePresent, true))
        Q_EMIT q->remotePresentChanged();
    if (!self)
        return;
    const bool obeyed = !takenOver.contains(*command) && obey(*command, data);
    if (self)
        Q_EMIT q->remoteCommand(*command, obeyed, data);
}

// Its answer to what changes nothing is where the lesson stands.
bool LessonPrivate::obey(Lesson::RemoteCommand command, const QVariant& data)
{
    const bool isSomething = (poll && poll->isRunning()) || (assessment && assessment->isRunning());
    switch (command) {
    case Lesson::AskPresence:
    case Lesson::AskLesson:
    case Lesson::AskCards:
        tellRemote();
        return true;
    case Lesson::Pause:
    case Lesson::Resume:
        setPaused(command == Lesson::Pause);
        return isSomething;
    case Lesson::Lock:
    case Lesson::Unlock:
        q->setLocked(command == Lesson::Lock);
        return true;
    case Lesson::NextCard:
    case Lesson::PreviousCard:
        if (deck->setCurrent(deck->current() + (command == Lesson::NextCard ? 1 : -1)))
            return true;
        tellRemote();
        return false;
    case Lesson::ShowCard:
        if (deck->current() > 0)
            q->showCard();
        else
            tellRemote();
        return deck->current() > 0;
    case Lesson::AddCard:
        return addRemoteCard(data);
    case Lesson::EndLesson:
        q->end();
        return true;
    }
    return false;
}

// The picture joins the lesson as its last card, which becomes the current one; it is shown when that is
// asked for.
bool LessonPrivate::addRemoteCard(const QVariant& data)
{
    const QVariantMap map = data.toMap();
    const QString name = map.value(QStringLiteral("name")).toString();
    if (!deck->add(name.trimmed().isEmpty() ? Lesson::tr("Picture") : name,
                   map.value(QStringLiteral("url"), data).toString())) {
        tellRemote();
        return false;
    }
    deck->setCurrent(deck->rowCount());
    return true;
}

void LessonPrivate::onRemoteGone()
{
    if (std::exchange(isRemotePresent, false))
        Q_EMIT q->remotePresentChanged();
}

void LessonPrivate::onMessage(const QString& type, const QString& from, const QVariant& data)
{
    Q_EMIT q->messageReceived(type, from, data);
}

} // namespace Calyx
