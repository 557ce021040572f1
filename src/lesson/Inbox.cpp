#include "lesson/Inbox.h"

#include <QElapsedTimer>
#include <QPointer>

#include <utility>

namespace Calyx {

void Inbox::Slot::put(Task task)
{
    const QMutexLocker locker(&m_mutex);
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
    const QMutexLocker locker(&m_slot->m_mutex);
    m_slot->m_inbox = nullptr;
}

bool Inbox::takeTask(Task* task)
{
    const QMutexLocker locker(&m_slot->m_mutex);
    m_slot->m_isTold = !m_slot->m_tasks.empty();
    if (!m_slot->m_isTold)
        return false;
    *task = std::move(m_slot->m_tasks.front());
    m_slot->m_tasks.pop_front();
    return true;
}

void Inbox::turn()
{
    constexpr int longestTurn = 2;    // ms
    const QPointer<Inbox> self(this); // a task may call slots of the host's
    // By a timer: what is posted now would belong to this turn of the loop. From now on: a slot may run a
    // loop of its own.
    m_next.start(0);
    QElapsedTimer clock;
    clock.start();
    Task task;
    while (clock.elapsed() < longestTurn) {
        if (!takeTask(&task)) {
            m_next.stop();
            break;
        }
        task();
        if (!self)
            return;
    }
    Q_EMIT turned();
}

} // namespace Calyx
