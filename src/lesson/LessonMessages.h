#pragma once

#include "lesson/Assessment.h"
#include "lesson/Question.h"

#include <QDateTime>
#include <QString>
#include <QVariantMap>

class PresenterCollab;

namespace Calyx {

/// What the class should see, for a device or for all.
struct Wanted
{
    // A poll; none where its id is empty.
    Question question;
    QString pollId;
    bool isPollPaused = false;
    QDateTime pollStopsAt; // invalid: nobody knows
    // A card; none where both are empty.
    QByteArray cardPng;
    QString cardUrl;
    bool isLocked = false;
    // An assessment; none where its token is empty.
    AssessmentPlan assessment;
    QString assessmentToken;
    int firstQuestion = 1;
    bool isAssessmentPaused = false;

    bool isNothing() const
    {
        return pollId.isEmpty() && cardPng.isEmpty() && cardUrl.isEmpty() && !isLocked &&
               assessmentToken.isEmpty();
    }
};

/// The lesson's messages on the channel, on the channel's thread. An address is as PresenterCollab takes it;
/// empty: the whole session.
namespace LessonMessages {

/// The address of a device.
QString addressOf(const QString& deviceId);
/// Whether a poll of \p question goes out as the poll document of its kind: a word seed or a creative poll
/// without words of the teacher's.
bool isDocument(const Question& question);

/// Brings \p address to what is wanted.
void bring(PresenterCollab* collab, const QString& address, const Wanted& wanted);
/// Brings everybody who has seen \p before to what is wanted \p now.
void bringNews(PresenterCollab* collab, const Wanted& before, const Wanted& now);
/// The poll with its pause and its countdown, as a question or as a document.
void sendPoll(PresenterCollab* collab, const QString& address, const Wanted& wanted);
/// How long the poll runs on. Devices that do not know the message are told by the stop alone.
void sendCountdown(PresenterCollab* collab, const QString& address, const QString& id,
                   const QDateTime& until);
void sendPause(PresenterCollab* collab, const QString& address, const QString& id, bool isPaused);
void sendPollStop(PresenterCollab* collab, const QString& id);
void sendCard(PresenterCollab* collab, const QString& address, const QByteArray& png, const QString& url);
/// There is no message that takes a text away: another takes its place.
void sendLock(PresenterCollab* collab, const QString& address, bool isLocked);
void sendText(PresenterCollab* collab, const QString& address, const QString& text, bool isDismissible);
/// A text with whatever devices know besides: the data of a "dialogShow".
void sendDialog(PresenterCollab* collab, const QString& address, const QVariantMap& data);
void sendReview(PresenterCollab* collab, const QString& address, const QString& text);
void sendAssessment(PresenterCollab* collab, const QString& address, const AssessmentPlan& plan,
                    const QString& token, int firstQuestion = 1);
void sendAssessmentStop(PresenterCollab* collab, const QString& token);
/// A device's question with the number \p number; \p before is what it has answered already, null for
/// nothing.
void sendAssessmentQuestion(PresenterCollab* collab, const QString& address, const AssessmentPlan& plan,
                            int number, const QString& id, const QString& before);

} // namespace LessonMessages

} // namespace Calyx
