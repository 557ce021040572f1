#include "lesson/LessonPrivate.h"

#include "collab/PresenterCollab.h"

namespace Calyx {

void LessonPrivate::send(const std::function<void(PresenterCollab*)>& work)
{
    if (state != Lesson::Live)
        return;
    worker->tell([work](LessonWorker* at) { at->send(work); });
    if (!confirmation.isActive())
        confirmation.start(0); // once for all that are sent together
}

// What is sent into a line that is dead already is lost without a word.
void LessonPrivate::confirm()
{
    constexpr int most = 100;
    if (state != Lesson::Live)
        return;
    sent.insert(++lastSerial, wanted());
    if (sent.size() > most)
        sent.erase(sent.begin());
    worker->tell([serial = lastSerial](LessonWorker* at) { at->confirm(serial); });
}

Wanted LessonPrivate::wanted() const
{
    Wanted wanted;
    if (poll && poll->isRunning() && isPollReady) {
        wanted.question = sentQuestion;
        wanted.pollId = poll->id();
        wanted.isPollPaused = poll->isPaused();
        wanted.pollStopsAt = poll->stopsAt();
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

// What somebody has answered or gone on with was there, whether the bus has confirmed it or not.
void LessonPrivate::takeForShown(const Wanted& now)
{
    if (!now.pollId.isEmpty() && now.pollId != shown.pollId && poll->answered() > 0) {
        shown.pollId = now.pollId;
        shown.isPollPaused = false;
        shown.pollStopsAt = {};
    }
    if (!now.assessmentToken.isEmpty() && now.assessmentToken != shown.assessmentToken &&
        !atQuestion.isEmpty()) {
        shown.assessmentToken = now.assessmentToken;
        shown.isAssessmentPaused = false;
    }
}

// The learners have had the lesson in front of them all the while: they get what has changed, and who has not
// answered gets the question again. Who has come meanwhile gets everything.
void LessonPrivate::bringBack(const QStringList& newcomers)
{
    const Wanted now = wanted();
    Wanted news = now;
    takeForShown(now);
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
        if (isSamePoll && now.pollStopsAt != before.pollStopsAt)
            LessonMessages::sendCountdown(collab, QString(), now.pollId, now.pollStopsAt);
        if (isSameAssessment && now.isAssessmentPaused != before.isAssessmentPaused)
            LessonMessages::sendPause(collab, QString(), now.assessmentToken, now.isAssessmentPaused);
        if (before.isLocked && !now.isLocked)
            LessonMessages::sendLock(collab, QString(), false);
    });
    bring(newcomers);
    if (isSameAssessment)
        bringAssessmentBack(newcomers);
    if (!isSamePoll || now.pollId.isEmpty())
        return;
    QStringList missing = poll->missing();
    for (const QString& deviceId : newcomers)
        missing.removeOne(deviceId);
    send([now, devices = missing](PresenterCollab* collab) {
        for (const QString& deviceId : devices)
            LessonMessages::sendPoll(collab, LessonMessages::addressOf(deviceId), now);
    });
}

// An answer, or the request for the next question, may have met nobody: a device that gets the question again
// sends both again.
void LessonPrivate::bringAssessmentBack(const QStringList& newcomers)
{
    if (!assessment || !assessment->isRunning())
        return;
    Wanted only;
    only.assessment = assessment->plan();
    only.assessmentToken = assessment->token();
    only.isAssessmentPaused = assessment->isPaused();
    const QStringList unfinished = assessment->unfinished();
    for (const QString& deviceId : unfinished) {
        if (newcomers.contains(deviceId))
            continue;
        if (atQuestion.contains(deviceId))
            onQuestionWanted(deviceId, atQuestion.value(deviceId));
        else
            send([deviceId, one = wantedBy(deviceId, only)](PresenterCollab* collab) {
                LessonMessages::bring(collab, LessonMessages::addressOf(deviceId), one);
            });
    }
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
    if (self)
        bring({learner.deviceId});
}

// Whoever answers is here, whether his joining was heard or not: the roster and the counts agree.
void LessonPrivate::see(const QString& deviceId)
{
    if (hasSession() && roster->see(deviceId))
        Q_EMIT roster->joined(deviceId);
}

// A learner speaks for himself only.
void LessonPrivate::onLeave(const QString& deviceId, const QString& by)
{
    if (by != deviceId && roster->contains(by))
        return;
    if (roster->leave(deviceId))
        Q_EMIT roster->left(deviceId);
}

void LessonPrivate::onAnswer(const QString& deviceId, const QString& id, int time, const QString& answer)
{
    const QPointer<Lesson> self(q);
    if (deviceId.isEmpty())
        return;
    const QPointer<Poll> answered(pollsById.value(id));
    if (answered) {
        see(deviceId);
        if (self && answered && answered->add(deviceId, answer, time)) {
            noteAnswer(id, answered->answerOf(deviceId), time);
            answeredPolls.insert(answered);
        }
        return;
    }
    for (Assessment* one : qAsConst(assessments)) {
        const int number = one->numberOf(id);
        const QPointer<Assessment> guard(one);
        if (number > 0 && one->add(deviceId, number, answer, time)) {
            if (guard)
                noteAnswer(id, one->answer(deviceId, number), time);
            return;
        }
    }
    onMessage(QStringLiteral("questionResponse"), deviceId,
              QVariantMap{{QStringLiteral("questionId"), id}, {QStringLiteral("answer"), answer}});
}

void LessonPrivate::onQuestionWanted(const QString& deviceId, int number)
{
    const bool isRunning = assessment && assessment->isRunning();
    const QPointer<Lesson> self(q);
    if (isRunning && assessment->isForAll())
        assessment->enter(deviceId);
    if (!self)
        return;
    if (!isRunning || !assessment->takesPart(deviceId) || number < 0 ||
        number > assessment->questionCount()) {
        onMessage(QStringLiteral("questionGet"), deviceId, number);
        return;
    }
    number = qMax(number, 1); // a device that names none wants the first
    atQuestion.insert(deviceId, number);
    const PollAnswer before = assessment->answer(deviceId, number);
    const QString text = before.mark == PollAnswer::NoAnswer ? QString() : before.text;
    send([=, plan = assessment->plan(), id = assessment->questionId(number)](PresenterCollab* collab) {
        LessonMessages::sendAssessmentQuestion(collab, LessonMessages::addressOf(deviceId), plan, number, id,
                                               text);
    });
}

void LessonPrivate::onMessage(const QString& type, const QString& from, const QVariant& data)
{
    Q_EMIT q->messageReceived(type, from, data);
}

} // namespace Calyx
