#include "commands/Waiter.h"

#include <QEventLoop>
#include <QTimer>

#include <limits>

Waiter::Result Waiter::until(const std::function<bool()>& condition, qint64 msecs,
                             const Description& description)
{
    if (condition())
        return Met;
    if (m_down || m_loop)
        return Interrupted;
    QEventLoop loop;
    if (msecs >= 0)
        QTimer::singleShot(static_cast<int>(qMin<qint64>(msecs, std::numeric_limits<int>::max())),
                           Qt::PreciseTimer, &loop, [&loop] { loop.exit(TimedOut); });
    m_condition = condition;
    m_description = description;
    m_loop = &loop;
    Q_EMIT begun();
    const auto result = static_cast<Result>(loop.exec());
    m_loop = nullptr;
    m_condition = nullptr;
    m_description = nullptr;
    return result;
}

bool Waiter::pause(int msecs, const Description& description)
{
    return until([] { return false; }, msecs, description) == TimedOut;
}

void Waiter::poke()
{
    if (m_loop && m_condition())
        m_loop->exit(Met);
}

void Waiter::interrupt()
{
    if (m_loop)
        m_loop->exit(Interrupted);
}

void Waiter::shutDown()
{
    m_down = true;
    interrupt();
}
