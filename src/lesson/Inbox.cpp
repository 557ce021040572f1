#include "lesson/Inbox.h"

#include <QElapsedTimer>
#include <QPointer>

#include <utility>

namespace Calyx {

void Inbox::Slot::put(Task task)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_inbox)
        return;
    m_tasks.push_back(std::move(task));
    if (!std::exchange(m_isTold, true))
        QMetaObject::invokeMethod(m_inbox, "turn", Qt::QueuedConnection);
}

Inbox::Inbox(QObject* parent) : QObject(parent)
{
    m_slot->m_inbox = this;
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &Inbox::turn);
}

Inbox::~Inbox()
{
    const std::lock_guard<std::mutex> lock(m_slot->m_mutex);
    m_slot->m_inbox = nullptr;
}

// After a turn that has found no task at all nobody looks any more: the next task has to tell that it is
// there.
bool Inbox::takeTask(Task* task, bool isFirst)
{
    const std::lock_guard<std::mutex> lock(m_slot->m_mutex);
    m_slot->m_isTold = !m_slot->m_tasks.empty() || !isFirst;
    if (m_slot->m_tasks.empty())
        return false;
    *task = std::move(m_slot->m_tasks.front());
    m_slot->m_tasks.pop_front();
    return true;
}

void Inbox::turn()
{
    constexpr int longestTurn = 2; // ms
    // A host that is woken for each of many tasks spends most of its time on waking up.
    constexpr int pace = 4;           // ms
    const QPointer<Inbox> self(this); // a task may call slots of the host's
    // The next turn is a timer's, as what is posted now would be carried out in this turn of the event loop.
    // The timer runs before the tasks do, as their slots may run event loops of their own.
    m_next.start(0);
    QElapsedTimer clock;
    clock.start();
    Task task;
    for (bool isFirst = true; clock.elapsed() < longestTurn; isFirst = false) {
        if (!takeTask(&task, isFirst)) {
            isFirst ? m_next.stop() : m_next.start(pace);
            break;
        }
        task();
        if (!self)
            return;
    }
    Q_EMIT turned();
}

} // namespace Calyx
