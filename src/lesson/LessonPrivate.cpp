#include "lesson/LessonPrivate.h"

#include <utility>

namespace Calyx {

namespace {

constexpr int goodbyeLimit = 1200; // ms
constexpr int endLimit = 2000;     // ms

} // namespace

LessonPrivate::LessonPrivate(Lesson* lesson)
    : q(lesson)
    , content(lesson)
    , journal(&content)
    , inbox(nullptr)
    , worker(new LessonWorker(inbox.slot(), this))
    , thread(new QThread)
    , deck(new Deck(lesson))
{
    worker->moveToThread(thread);
    QObject::connect(thread, &QThread::finished, worker, &QObject::deleteLater);
    thread->setObjectName(QStringLiteral("lesson"));
    QObject::connect(&inbox, &Inbox::turned, q, [this] { afterTurn(); });
    retry.setSingleShot(true);
    QObject::connect(&retry, &QTimer::timeout, q, [this] { waitForAttempt(); });
    tellChanges();
    confirmation.setSingleShot(true);
    QObject::connect(&confirmation, &QTimer::timeout, q, [this] { confirm(); });
    stopTimer.setSingleShot(true);
    stopTimer.setTimerType(Qt::PreciseTimer); // never early
    QObject::connect(&stopTimer, &QTimer::timeout, q, [this] { waitForStop(); });
    QObject::connect(deck, &Deck::changed, q, [this] { tellRemote(); });
    QObject::connect(q, &Lesson::cardShown, &journal, &LessonJournal::noteCard);
    QObject::connect(q, &Lesson::lockedChanged, &journal, &LessonJournal::noteLock);
    const auto tellFailed = [this](const QString& name) {
        fail(LessonError::make(LessonError::BadInput, name,
                               Lesson::tr("The journal %1 cannot be written.").arg(name)));
    };
    // Queued, so that nobody who has something written hears of it before he is through with what he does.
    QObject::connect(&journal, &LessonJournal::failed, q, tellFailed, Qt::QueuedConnection);
}

// Lesson::changed() comes with each of the others, for a host that shows all anew.
void LessonPrivate::tellChanges()
{
    for (const auto change : {&Lesson::stateChanged, &Lesson::nextAttemptChanged})
        QObject::connect(q, change, q, &Lesson::secondsToAttemptChanged);
    for (const auto change : {&Lesson::busyChanged, &Lesson::secondsToAttemptChanged, &Lesson::serverChanged,
                              &Lesson::pollChanged, &Lesson::assessmentChanged, &Lesson::lockedChanged,
                              &Lesson::remotePresentChanged})
        QObject::connect(q, change, q, &Lesson::changed);
    QObject::connect(q, &Lesson::answersChanged, q, &Lesson::changed);
    QObject::connect(content.roster, &Roster::changed, q, &Lesson::changed);
    QObject::connect(deck, &Deck::changed, q, &Lesson::changed);
}

// A thread that is in a call that cannot be interrupted is left: it comes to its end by itself.
LessonPrivate::~LessonPrivate()
{
    if (!thread->isRunning()) {
        delete worker;
        delete thread;
        return;
    }
    journal.noteEnd(); // the session is told goodbye, and is nobody's to take up
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
    wantsLive = wantsLive && next != Lesson::LoggedOut; // as a slot may have asked meanwhile
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

// What has come in one turn is told once.
void LessonPrivate::afterTurn()
{
    const QPointer<Lesson> self(q);
    journal.flush();
    content.roster->flush();
    if (!self)
        return;
    const QSet<QString> answered = std::exchange(answeredPolls, {});
    for (const QString& id : answered) {
        const QPointer<Poll> one(content.pollsById.value(id));
        if (!one)
            continue;
        one->flush();
        if (self && one == content.poll)
            content.roster->tellAnswers();
        if (self && one)
            Q_EMIT q->answersChanged(one);
        if (!self)
            return;
    }
    if (content.assessment)
        content.assessment->flush();
}

} // namespace Calyx
