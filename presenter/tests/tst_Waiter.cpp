#include "commands/Waiter.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

namespace {

constexpr int longTime = 60000; // ms; nothing here should take it

} // namespace

class tst_Waiter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsTrueIsNotWaitedFor()
    {
        Waiter waiter;
        QCOMPARE(waiter.until([] { return true; }, 0), Waiter::Met);
    }

    void aPokeAsksAgain()
    {
        Waiter waiter;
        int asked = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, &waiter, &Waiter::poke);
        timer.start(0);
        QCOMPARE(waiter.until([&] { return ++asked == 4; }, longTime), Waiter::Met);
        QVERIFY(!waiter.isWaiting());
    }

    void theTimeRunsOut()
    {
        Waiter waiter;
        QCOMPARE(waiter.until([] { return false; }, 1), Waiter::TimedOut);
        QVERIFY(waiter.pause(1));
    }

    void aPauseTakesItsTime()
    {
        constexpr int msecs = 30;
        Waiter waiter;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(waiter.pause(msecs));
        QVERIFY(clock.elapsed() >= msecs);
    }

    void anInterruptionEndsOneWait()
    {
        Waiter waiter;
        waiter.interrupt(); // of nothing
        QTimer::singleShot(0, &waiter, &Waiter::interrupt);
        QCOMPARE(waiter.until([] { return false; }, longTime), Waiter::Interrupted);
        QVERIFY(waiter.pause(1));
    }

    void aShutDownEndsAllWaits()
    {
        Waiter waiter;
        QTimer::singleShot(0, &waiter, &Waiter::shutDown);
        QVERIFY(!waiter.pause(longTime));
        QVERIFY(!waiter.pause(longTime));
        QCOMPARE(waiter.until([] { return true; }, longTime), Waiter::Met);
    }

    void aWaitWithinAWaitEndsAtOnce()
    {
        Waiter waiter;
        Waiter::Result inner = Waiter::Met;
        QTimer::singleShot(0, &waiter, [&] {
            inner = waiter.until([] { return false; }, longTime);
            waiter.interrupt();
        });
        QCOMPARE(waiter.until([] { return false; }, longTime), Waiter::Interrupted);
        QCOMPARE(inner, Waiter::Interrupted);
    }
};

QTEST_GUILESS_MAIN(tst_Waiter)
#include "tst_Waiter.moc"
