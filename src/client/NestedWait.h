#pragma once

#include <QEventLoop>
#include <QObject>
#include <QPointer>
#include <QTimer>

/// The one place where an operation of the client waits: a nested event loop that leaves user input alone.
namespace NestedWait {

enum Outcome {
    Finished, ///< the condition has held
    TimedOut, ///< it has not, and the time is over or the application is quitting
    OwnerGone ///< the owner has been destroyed by something that the loop processed: touch nothing of it
};

/// Waits until \p isFinished, asked each time that \p owner emits \p signal, has been true once, but for \p
/// msecs at most.
template<typename Owner, typename Signal, typename Condition>
Outcome run(Owner* owner, Signal signal, Condition isFinished, int msecs)
{
    const QPointer<Owner> guard(owner);
    bool finished = false;
    QEventLoop loop;
    QObject::connect(owner, signal, &loop, [&] {
        finished = finished || isFinished();
        if (finished)
            loop.quit();
    });
    QObject::connect(owner, &QObject::destroyed, &loop, &QEventLoop::quit);
    QTimer limit; // ends with the wait: a QTimer::singleShot() would live on until its time has come
    limit.setTimerType(Qt::PreciseTimer);
    QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    limit.start(msecs);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (!guard)
        return OwnerGone;
    return finished ? Finished : TimedOut;
}

} // namespace NestedWait
