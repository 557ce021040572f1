#include "client/NestedWait.h"

#include "support/TimerClock.h"

#include <QtTest>

namespace {

class Owner : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void done();
};

class TimerEvents : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Timer ? 1 : 0;
        return false;
    }
};

constexpr int limit = 10000;

NestedWait::Outcome waitFor(Owner* owner)
{
    return NestedWait::run(
        owner, &Owner::done, [] { return true; }, limit);
}

} // namespace

class tst_NestedWait : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void finishesWithTheSignal()
    {
        Owner owner;
        QMetaObject::invokeMethod(&owner, &Owner::done, Qt::QueuedConnection);
        QCOMPARE(waitFor(&owner), NestedWait::Finished);
    }

    void timesOut()
    {
        Owner owner;
        QMetaObject::invokeMethod(
            &owner, [] { TimerClock::advance(limit + 1); }, Qt::QueuedConnection);
        QCOMPARE(waitFor(&owner), NestedWait::TimedOut);
    }

    // Thousands of short operations within the limit would otherwise have thousands of timers run.
    void aWaitThatHasEndedLeavesNoTimer()
    {
        Owner owner;
        for (int i = 0; i < 10; ++i) {
            QMetaObject::invokeMethod(&owner, &Owner::done, Qt::QueuedConnection);
            QCOMPARE(waitFor(&owner), NestedWait::Finished);
        }
        TimerEvents events;
        QCoreApplication::instance()->installEventFilter(&events);
        TimerClock::advance(limit + 1);
        QCoreApplication::processEvents();
        QCOMPARE(events.count, 0);
    }
};

QTEST_GUILESS_MAIN(tst_NestedWait)
#include "tst_NestedWait.moc"
