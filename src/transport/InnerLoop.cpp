#include "transport/InnerLoop.h"

#include <QThread>

bool InnerLoop::run()
{
    bool hasRun = false;
    QObject context;
    QMetaObject::invokeMethod(
        &context, [&hasRun] { hasRun = true; }, Qt::QueuedConnection);
    if (!m_hasQuit)
        m_loop.exec();
    if (m_hasQuit || hasRun || QThread::currentThread()->loopLevel() > 0)
        return m_hasQuit;
    // QCoreApplication::quit() was called while nothing ran that it could end. It is without effect then, but
    // Qt has each loop return at once until the application runs.
    while (!m_hasQuit)
        m_loop.processEvents(QEventLoop::WaitForMoreEvents);
    return true;
}

void InnerLoop::quit()
{
    m_hasQuit = true;
    m_loop.quit();
}
