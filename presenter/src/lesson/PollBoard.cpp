#include "lesson/PollBoard.h"

#include <algorithm>

void PollBoard::start(const PollPlan& plan, const QString& answerId)
{
    m_polls.append(Poll(m_polls.size() + 1, plan, answerId));
}

void PollBoard::stop(const Roster& roster)
{
    if (isRunning())
        m_polls.last().stop(roster);
}

PollBoard::Verdict PollBoard::addAnswer(const QString& deviceId, const QString& answerId,
                                        const QString& answer)
{
    if (isRunning() && m_polls.last().answerId() == answerId) {
        m_polls.last().addAnswer(deviceId, answer);
        return Counted;
    }
    const bool isKnown = std::any_of(m_polls.constBegin(), m_polls.constEnd(),
                                     [&](const Poll& poll) { return poll.answerId() == answerId; });
    if (!isKnown)
        return UnknownPoll;
    ++m_late;
    return TooLate;
}

void PollBoard::setPaused(bool paused)
{
    if (isRunning())
        m_polls.last().setPaused(paused);
}

int PollBoard::answers() const
{
    int answers = 0;
    for (const Poll& poll : m_polls)
        answers += poll.tally().answered();
    return answers;
}
