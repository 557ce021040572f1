#pragma once

#include "lesson/LessonMessages.h"
#include "lesson/Poll.h"
#include "lesson/Roster.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QPointer>

namespace Calyx {

/// What a lesson has collected, and what its class is to have in front of it. Sends nothing, and tells
/// nothing but what the models tell.
struct LessonContent
{
    /// The models belong to \p of.
    explicit LessonContent(QObject* of);

    /// Whether a poll runs.
    bool isAsked() const { return poll && poll->isRunning(); }
    /// Whether an assessment does.
    bool isAssessed() const { return assessment && assessment->isRunning(); }

    /// Has \p added as the poll, not sent yet, which takes the place of the card and of the lock.
    void add(Poll* added);
    void add(Assessment* added);
    /// The running poll goes to the devices as \p question.
    void setSent(const Question& question);
    void removeStoppedPolls();
    /// Forgets polls and assessments; whether there were any. The roster stays.
    bool clear();

    /// What everybody is to see.
    Wanted wanted() const;
    /// What a device is to see, of \p all.
    Wanted wantedBy(const QString& deviceId, const Wanted& all) const;

    QObject* owner; // of the models
    QString lessonName = QStringLiteral("Lesson");
    QString teacher; // whose lesson it is, whoever logs in later
    QDateTime startedAt;
    Roster* roster;
    QList<Poll*> polls;
    QHash<QString, Poll*> pollsById;
    int lastNumber = 0;       // of a poll: those that are cleared count, too
    QPointer<Poll> poll;      // the last one
    Question sentQuestion;    // the running poll's, as devices get it
    bool isPollReady = false; // that is known: its picture is uploaded
    QList<Assessment*> assessments;
    QPointer<Assessment> assessment; // the last one
    QByteArray cardPng;
    QString cardUrl;
    bool isLocked = false;
};

} // namespace Calyx
