#include "lesson/LessonPrivate.h"

#include "collab/PresenterCollab.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Calyx {

void LessonPrivate::send(const std::function<void(PresenterCollab*)>& work)
{
    if (state != Lesson::Live && !isBringing)
        return;
    worker->tell([work](LessonWorker* at) { at->send(work); });
    if (!confirmation.isActive())
        confirmation.start(0); // once for all that are sent together
}

// Keeps what the class should see by now until the bus confirms that it has got it: what is sent on a dead
// connection is lost without a sign.
void LessonPrivate::confirm()
{
    constexpr int most = 100;
    if (state != Lesson::Live)
        return;
    sent.insert(++lastSerial, content.wanted());
    if (sent.size() > most)
        sent.erase(sent.begin());
    worker->tell([serial = lastSerial](LessonWorker* at) { at->confirm(serial); });
}

void LessonPrivate::bring(const QStringList& devices)
{
    const Wanted all = content.wanted();
    if (all.isNothing())
        return;
    for (const QString& deviceId : devices) {
        const Wanted one = content.wantedBy(deviceId, all);
        if (one.isNothing())
            continue;
        send([deviceId, one](PresenterCollab* collab) {
            LessonMessages::bring(collab, LessonMessages::addressOf(deviceId), one);
        });
    }
}

// A poll that somebody has answered has arrived, whether the bus has confirmed it or not, and so has an
// assessment of which somebody has asked for a question.
void LessonPrivate::takeForShown(const Wanted& now)
{
    if (!now.pollId.isEmpty() && now.pollId != shown.pollId && content.poll->answered() > 0) {
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
    const Wanted now = content.wanted();
    takeForShown(now);
    const bool isSamePoll = now.pollId == shown.pollId;
    const bool isSameAssessment = now.assessmentToken == shown.assessmentToken;
    send([=, before = shown](PresenterCollab* collab) { LessonMessages::bringNews(collab, before, now); });
    bring(newcomers);
    const QSet<QString> have(newcomers.cbegin(), newcomers.cend());
    if (isSameAssessment)
        bringAssessmentBack(have);
    if (!isSamePoll || now.pollId.isEmpty())
        return;
    QStringList missing;
    const QStringList all = content.poll->missing();
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(missing),
                 [&](const QString& deviceId) { return !have.contains(deviceId); });
    send([now, devices = missing](PresenterCollab* collab) {
        for (const QString& deviceId : devices)
            LessonMessages::sendPoll(collab, LessonMessages::addressOf(deviceId), now);
    });
}

// An answer, or the request for the next question, may have met nobody: a device that gets the question again
// sends both again.
void LessonPrivate::bringAssessmentBack(const QSet<QString>& newcomers)
{
    if (!content.isAssessed())
        return;
    Wanted only;
    only.assessment = content.assessment->plan();
    only.assessmentToken = content.assessment->token();
    only.isAssessmentPaused = content.assessment->isPaused();
    const QStringList unfinished = content.assessment->unfinished();
    for (const QString& deviceId : unfinished) {
        if (newcomers.contains(deviceId))
            continue;
        if (atQuestion.contains(deviceId))
            onQuestionWanted(deviceId, atQuestion.value(deviceId));
        else
            send([deviceId, one = content.wantedBy(deviceId, only)](PresenterCollab* collab) {
                LessonMessages::bring(collab, LessonMessages::addressOf(deviceId), one);
            });
    }
}

void LessonPrivate::onJoin(const Learner& learner)
{
    if (isOpen()) // else it has been ended meanwhile
        welcome(learner);
}

// Whoever joins gets what the class has in front of it, also a device that was here already: it has opened
// its channel just now.
void LessonPrivate::welcome(const Learner& learner)
{
    const QPointer<Lesson> self(q);
    come(learner, QDateTime::currentDateTime());
    if (self)
        bring({learner.deviceId});
}

// Whoever comes takes part in an assessment for all. Whether he was not here before.
bool LessonPrivate::come(const Learner& learner, const QDateTime& at)
{
    bool isNew = false;
    whileThere([&] { isNew = content.roster->join(learner, at); },
               [&] { isNew ? content.roster->joined(learner.deviceId) : void(); },
               [&] {
                   if (content.isAssessed() && content.assessment->isForAll())
                       content.assessment->enter(learner.deviceId);
               });
    return isNew;
}

// Whoever answers is here, whether his joining was heard or not: the roster and the counts agree.
void LessonPrivate::see(const QString& deviceId)
{
    if (hasSession() && content.roster->see(deviceId))
        Q_EMIT content.roster->joined(deviceId);
}

// A learner speaks for himself only.
void LessonPrivate::onLeave(const QString& deviceId, const QString& by)
{
    if (by != deviceId && content.roster->contains(by))
        return;
    if (content.roster->leave(deviceId))
        Q_EMIT content.roster->left(deviceId);
}

void LessonPrivate::onAnswer(const QString& deviceId, const QString& id, int time, const QString& answer)
{
    const QPointer<Lesson> self(q);
    if (deviceId.isEmpty())
        return;
    const QPointer<Poll> answered(content.pollsById.value(id));
    if (answered) {
        see(deviceId);
        if (self && answered && answered->add(deviceId, answer, time)) {
            journal.noteAnswer(id, answered->answerOf(deviceId), time);
            answeredPolls.insert(id);
        }
        return;
    }
    for (Assessment* one : std::as_const(content.assessments)) {
        const int number = one->numberOf(id);
        const QPointer<Assessment> guard(one);
        if (number > 0 && one->add(deviceId, number, answer, time)) {
            if (guard)
                journal.noteAnswer(id, one->answer(deviceId, number), time);
            return;
        }
    }
    onMessage(QStringLiteral("questionResponse"), deviceId,
              QVariantMap{{QStringLiteral("questionId"), id}, {QStringLiteral("answer"), answer}});
}

void LessonPrivate::onQuestionWanted(const QString& deviceId, int number)
{
    const QPointer<Lesson> self(q);
    if (!deviceId.isEmpty() && content.isAssessed() && content.assessment->isForAll())
        content.assessment->enter(deviceId);
    if (!self)
        return;
    if (!content.isAssessed() || !content.assessment->takesPart(deviceId) || number < 0 ||
        number > content.assessment->questionCount()) {
        onMessage(QStringLiteral("questionGet"), deviceId, number);
        return;
    }
    number = qMax(number, 1); // a device that names none wants the first
    atQuestion.insert(deviceId, number);
    const PollAnswer before = content.assessment->answer(deviceId, number);
    const QString text = before.mark == PollAnswer::NoAnswer ? QString() : before.text;
    send([=, plan = content.assessment->plan(),
          id = content.assessment->questionId(number)](PresenterCollab* collab) {
        LessonMessages::sendAssessmentQuestion(collab, LessonMessages::addressOf(deviceId), plan, number, id,
                                               text);
    });
}

void LessonPrivate::onMessage(const QString& type, const QString& from, const QVariant& data)
{
    Q_EMIT q->messageReceived(type, from, data);
}

} // namespace Calyx
