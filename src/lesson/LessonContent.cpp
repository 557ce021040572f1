#include "lesson/LessonContent.h"

#include <utility>

namespace Calyx {

LessonContent::LessonContent(QObject* of) : owner(of), roster(new Roster(of)) {}

void LessonContent::add(Poll* added)
{
    polls.append(added);
    pollsById.insert(added->id(), added);
    poll = added;
    lastNumber = added->number();
    roster->setPoll(added);
    isPollReady = isLocked = false;
    cardPng.clear();
    cardUrl.clear();
}

void LessonContent::add(Assessment* added)
{
    assessments.append(added);
    assessment = added;
}

void LessonContent::setSent(const Question& question)
{
    sentQuestion = question;
    isPollReady = true;
}

void LessonContent::removeStoppedPolls()
{
    const QList<Poll*> all = polls;
    for (Poll* one : all) {
        if (one->isRunning())
            continue;
        polls.removeOne(one);
        pollsById.remove(one->id());
        if (poll == one) {
            poll = nullptr;
            roster->setPoll(nullptr);
        }
        one->deleteLater();
    }
}

// The models go later: this may run inside one of their signals.
bool LessonContent::clear()
{
    const bool wasSomething = !polls.isEmpty() || !assessments.isEmpty();
    pollsById.clear();
    lastNumber = 0;
    poll = nullptr;
    assessment = nullptr;
    roster->setPoll(nullptr);
    for (Poll* one : std::exchange(polls, {}))
        one->deleteLater();
    for (Assessment* one : std::exchange(assessments, {}))
        one->deleteLater();
    return wasSomething;
}

Wanted LessonContent::wanted() const
{
    Wanted wanted;
    if (isAsked() && isPollReady) {
        wanted.question = sentQuestion;
        wanted.pollId = poll->id();
        wanted.isPollPaused = poll->isPaused();
        wanted.pollStopsAt = poll->stopsAt();
    }
    wanted.cardPng = cardPng;
    wanted.cardUrl = cardUrl;
    wanted.isLocked = isLocked;
    if (isAssessed()) {
        wanted.assessment = assessment->plan();
        wanted.assessmentToken = assessment->token();
        wanted.isAssessmentPaused = assessment->isPaused();
    }
    return wanted;
}

// A device goes on with the first question that it has not answered; one that has answered the poll keeps
// that.
Wanted LessonContent::wantedBy(const QString& deviceId, const Wanted& all) const
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

} // namespace Calyx
