#include "lesson/Poll.h"

#include "lesson/Roster.h"

Poll::Poll(int number, const PollPlan& plan, const QString& answerId)
    : m_number(number), m_plan(plan), m_answerId(answerId), m_tally(PollKinds::tally(plan))
{
    m_clock.start();
}

void Poll::stop(const Roster& roster)
{
    if (!m_running)
        return;
    m_expectedAtStop = expected(roster);
    m_lasted = m_clock.elapsed();
    m_running = false;
    m_paused = false;
}

int Poll::expected(const Roster& roster) const
{
    return m_running ? m_tally.answered() + missing(roster).size() : m_expectedAtStop;
}

QStringList Poll::missing(const Roster& roster) const
{
    QStringList names;
    const QStringList present = roster.presentIds();
    for (const QString& deviceId : present) {
        if (!m_tally.hasAnswered(deviceId))
            names.append(roster.name(deviceId));
    }
    return names;
}

ChartData Poll::chart(const Roster& roster) const
{
    constexpr int second = 1000;
    ChartData data;
    data.title = QStringLiteral("Poll %1: %2").arg(m_number).arg(PollKinds::description(m_plan));
    data.bars = m_tally.bars();
    data.answered = m_tally.answered();
    data.expected = expected(roster);
    data.seconds = static_cast<int>((m_running ? m_clock.elapsed() : m_lasted) / second);
    data.isPaused = m_paused;
    return data;
}
