#pragma once

#include <QObject>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace Calyx {

/// What another thread hands over to this object's, in order and in turns: a turn takes no more than a few
/// milliseconds, however much has come.
class Inbox : public QObject
{
    Q_OBJECT

public:
    using Task = std::function<void()>;

    /// The end at which tasks are put in, from any thread. Those put in after the inbox has gone are dropped.
    class Slot
    {
    public:
        void put(Task task);

    private:
        friend class Inbox;
        std::mutex m_mutex;
        Inbox* m_inbox = nullptr;
        std::deque<Task> m_tasks;
        bool m_isTold = false;
    };

    explicit Inbox(QObject* parent);
    ~Inbox() override;

    std::shared_ptr<Slot> slot() const { return m_slot; }

Q_SIGNALS:
    /// A turn is over.
    void turned();

private:
    Q_INVOKABLE void turn();
    bool takeTask(Task* task, bool isFirst);

    std::shared_ptr<Slot> m_slot = std::make_shared<Slot>();
    QTimer m_next;
};

} // namespace Calyx
