#pragma once

#include "lesson/Poll.h"

#include <QList>

/// The polls of the lesson, in the order in which they were put.
class PollBoard
{
public:
    enum Verdict { Counted, TooLate, UnknownPoll };

    void start(const PollPlan& plan, const QString& answerId);
    void stop(const Roster& roster);

    /// Counts an answer for the running poll; none other's count changes.
    Verdict addAnswer(const QString& deviceId, const QString& answerId, const QString& answer);

    bool isRunning() const { return !m_polls.isEmpty() && m_polls.last().isRunning(); }
    /// The poll put last, running or not; null before the first.
    const Poll* last() const { return m_polls.isEmpty() ? nullptr : &m_polls.last(); }
    void setPaused(bool paused);

    const QList<Poll>& polls() const { return m_polls; }
    int answers() const;
    /// Answers that came for a poll that was over.
    int lateAnswers() const { return m_late; }

private:
    QList<Poll> m_polls;
    int m_late = 0;
};
