#include "transport/TransportThread.h"

#include "base/Diagnostics.h"

#include <QCoreApplication>
#include <QList>
#include <QMutex>
#include <QPointer>

#include <utility>

namespace {

struct Registry
{
    QMutex mutex; // guards the threads
    QList<TransportThread*> threads;
    QList<QPointer<QObject>> ownerless;
};

// Never freed: a host may end the process before it ends its connectors.
Registry& registry()
{
    static auto* instance = new Registry;
    return *instance;
}

// Ends those that were begun on \p begunOn; all of them where that is null.
void endThreads(const QThread* begunOn)
{
    const QMutexLocker lock(&registry().mutex);
    for (TransportThread* thread : std::as_const(registry().threads)) {
        if (!begunOn || thread->thread() == begunOn)
            thread->end();
    }
}

void onApplicationEnd()
{
    while (!registry().ownerless.isEmpty())
        delete registry().ownerless.takeLast();
    endThreads(QThread::currentThread());
}

// A host may also call exit() and leave the application object where it is.
struct AtExit
{
    AtExit() = default;
    ~AtExit() { endThreads(nullptr); }
    Q_DISABLE_COPY(AtExit)
};

} // namespace

TransportThread::TransportThread()
{
    diagnostics(); // goes later than what is made after it, and the threads use it to their end
    static const AtExit ends;
    qRemovePostRoutine(onApplicationEnd);
    qAddPostRoutine(onApplicationEnd);
    const QMutexLocker lock(&registry().mutex);
    registry().threads.append(this);
}

TransportThread::~TransportThread()
{
    {
        const QMutexLocker lock(&registry().mutex);
        registry().threads.removeOne(this);
    }
    end();
}

void TransportThread::end()
{
    quit();
    wait();
}

void TransportThread::deleteWithApplication(QObject* transport)
{
    QList<QPointer<QObject>>& ownerless = registry().ownerless;
    ownerless.removeAll(nullptr); // those that have gone
    ownerless.append(transport);
}
