#pragma once

#include "lesson/PollKinds.h"
#include "lesson/Tally.h"
#include "text/Chart.h"

#include <QElapsedTimer>
#include <QString>

class Roster;

/// One poll of the lesson, running or over.
class Poll
{
public:
    /// \p answerId is the id under which its answers come back.
    Poll(int number, const PollPlan& plan, const QString& answerId);

    int number() const { return m_number; }
    PollPlan plan() const { return m_plan; }
    QString answerId() const { return m_answerId; }
    bool isRunning() const { return m_running; }
    const Tally& tally() const { return m_tally; }

    void addAnswer(const QString& deviceId, const QString& answer) { m_tally.add(deviceId, answer); }
    void setPaused(bool paused) { m_paused = paused; }
    void stop(const Roster& roster);

    /// Learners who have answered or still could.
    int expected(const Roster& roster) const;
    /// Names of the learners present who have not answered.
    QStringList missing(const Roster& roster) const;
    ChartData chart(const Roster& roster) const;

private:
    int m_number;
    PollPlan m_plan;
    QString m_answerId;
    Tally m_tally;
    QElapsedTimer m_clock;
    qint64 m_lasted = 0; // ms, once it is over
    int m_expectedAtStop = 0;
    bool m_running = true;
    bool m_paused = false;
};
