#include "lesson/LessonPrivate.h"

#include "collab/PresenterCollab.h"

#include <algorithm>

namespace Calyx {

namespace {

// What is right in the words of the devices.
QString rightOf(const Question& question)
{
    const QStringList ids = question.optionIds();
    const QStringList labels = question.optionLabels();
    QStringList all;
    for (const QString& answer : question.right) {
        QStringList names;
        const QStringList picks = question.picksOf(answer);
        for (const QString& pick : picks)
            names.append(question.options.value(ids.indexOf(pick), labels.at(ids.indexOf(pick))));
        all.append(names.isEmpty() ? answer : names.join(QStringLiteral(", ")));
    }
    return all.join(Lesson::tr(" or "));
}

// "Your answer is right." "B: 12, A: 3", and the same for devices that draw it.
QVariantMap outcomeOf(const Poll& poll, PollAnswer::Mark mark)
{
    constexpr int mostRows = 8;
    const bool isRight = mark == PollAnswer::Right;
    QStringList lines;
    if (isRight || mark == PollAnswer::Wrong)
        lines.append(isRight ? Lesson::tr("Your answer is right.") : Lesson::tr("Your answer is not right."));
    if (poll.question().isMarked() && !isRight)
        lines.append(Lesson::tr("Right is: %1.").arg(rightOf(poll.question())));
    const QString verdict = lines.join(QLatin1Char('\n'));
    QStringList counts;
    QVariantList bars;
    const QVector<PollResults::Row> rows = poll.results()->rows(mostRows);
    for (const PollResults::Row& row : rows) {
        counts.append(QStringLiteral("%1: %2").arg(row.title(), QString::number(row.count)));
        bars.append(QVariantMap{{QStringLiteral("title"), row.title()},
                                {QStringLiteral("count"), row.count},
                                {QStringLiteral("isCorrect"), row.isCorrect}});
    }
    lines.append(counts.join(QStringLiteral(", ")));
    return {{QStringLiteral("text"), lines.join(QLatin1Char('\n'))},
            {QStringLiteral("isDismissible"), true},
            {QStringLiteral("results"),
             QVariantMap{{QStringLiteral("text"), verdict}, {QStringLiteral("bars"), bars}}}};
}

} // namespace

// Whether these questions may be put; where they may not, failed() has told why.
bool LessonPrivate::mayAsk(const QVector<Question>& questions, const QString& fault)
{
    if (!fault.isEmpty())
        fail(LessonError::make(LessonError::BadInput, QString(), fault));
    else if (!isWanted())
        refuse(QT_TRANSLATE_NOOP("Calyx::Lesson", "No lesson is open."));
    else
        return std::none_of(questions.cbegin(), questions.cend(),
                            [this](const Question& one) { return isTooLarge(one.picture); });
    return false;
}

// A slot that hears of the poll may ask for the next one: all is done before the first slot is called.
Poll* LessonPrivate::addPoll(const Question& question)
{
    const QPointer<Poll> before = content.poll;
    const QPointer<Poll> added = new Poll(content.lastNumber + 1, question, content.roster, q);
    const Wanted wantedBefore = content.wanted();
    content.add(added);
    stopTimer.stop();
    journal.notePoll(added);
    ++cardSerial;
    withPicture(question.picture, [this, question, added](const QByteArray& png, const QString& url) {
        if (added && added == content.poll && added->isRunning())
            sendPoll(question, png, url);
    });
    if (!content.isPollReady) // and may never be, where its picture is given up
        send([=, now = content.wanted()](PresenterCollab* collab) {
            LessonMessages::bringNews(collab, wantedBefore, now);
        });
    whileThere([&] { before ? before->stop() : void(); }, [this] { content.roster->tellAnswers(); },
               [this] { tellBusy(); }, [&] { wantedBefore.isLocked ? q->lockedChanged() : void(); },
               [this] { Q_EMIT q->pollChanged(); });
    return added;
}

void LessonPrivate::sendPoll(const Question& question, const QByteArray& png, const QString& url)
{
    Question prepared = question;
    prepared.picture = png;
    if (!url.isEmpty())
        prepared.pictureUrl = url;
    content.setSent(prepared);
    journal.noteSent();
    send([wanted = content.wanted()](PresenterCollab* collab) {
        LessonMessages::sendPoll(collab, QString(), wanted);
    });
}

void LessonPrivate::stopPoll(int seconds)
{
    constexpr int second = 1000;
    constexpr int longest = 24 * 60 * 60;
    const int left = qBound(0, seconds, longest) * second;
    const QDateTime until = QDateTime::currentDateTime().addMSecs(left);
    if (content.isPollReady)
        send([id = content.poll->id(), until, left](PresenterCollab* collab) {
            left > 0 ? LessonMessages::sendCountdown(collab, QString(), id, until)
                     : LessonMessages::sendPollStop(collab, id);
        });
    stopAt.setRemainingTime(left);
    left > 0 ? stopTimer.start(second) : stopTimer.stop();
    const QPointer<Lesson> self(q);
    left > 0 ? content.poll->setStopsAt(until) : content.poll->stop();
    if (self)
        Q_EMIT q->pollChanged();
}

// There are three texts at the most, however large the class is: for those whose answer is right, for those
// whose answer is not, and for those who have not answered.
void LessonPrivate::showResults(const Poll& of)
{
    QMap<PollAnswer::Mark, QStringList> devices;
    if (of.question().isMarked()) {
        const QStringList present = content.roster->present();
        for (const QString& deviceId : present)
            devices[of.answerOf(deviceId).mark].append(LessonMessages::addressOf(deviceId));
    } else {
        devices[PollAnswer::Unmarked].append(QString());
    }
    for (auto some = devices.cbegin(); some != devices.cend(); ++some) {
        send([addresses = *some, outcome = outcomeOf(of, some.key())](PresenterCollab* collab) {
            for (const QString& address : addresses)
                LessonMessages::sendDialog(collab, address, outcome);
        });
    }
}

void LessonPrivate::setPaused(bool paused)
{
    const bool isPoll = content.isAsked();
    if (!isPoll && !content.isAssessed())
        return;
    const QString id = isPoll ? content.poll->id() : content.assessment->token();
    if ((isPoll ? content.poll->isPaused() : content.assessment->isPaused()) == paused)
        return;
    if (!isPoll || content.isPollReady)
        send([=](PresenterCollab* collab) { LessonMessages::sendPause(collab, QString(), id, paused); });
    const QPointer<Lesson> self(q);
    if (isPoll)
        content.poll->setPaused(paused);
    else
        content.assessment->setPaused(paused);
    if (self && isPoll)
        Q_EMIT q->pollChanged();
    else if (self)
        Q_EMIT q->assessmentChanged();
}

} // namespace Calyx
