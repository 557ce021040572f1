#include "lesson/LessonPrivate.h"

#include "collab/PresenterCollab.h"

#include <utility>

namespace Calyx {

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

} // namespace Calyx
