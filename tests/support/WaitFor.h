#pragma once

#include <QCoreApplication>
#include <QTimer>

/// Processes events until \p condition holds; false when it does not within \p msecs. As QTest::qWaitFor(),
/// but looks again after every event instead of every 10 ms.
template<typename Condition>
[[nodiscard]] bool waitFor(Condition condition, int msecs = 20000)
{
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(msecs);
    while (!condition()) {
        if (!limit.isActive())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

/// What QCoreApplication::quit() leaves behind lasts until the application runs again: it does.
inline void forgetQuit()
{
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}
