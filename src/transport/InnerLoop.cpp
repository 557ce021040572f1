#include "transport/InnerLoop.h"

#include <QCoreApplication>
#include <QThread>

namespace {

// Other threads that are told to quit are to end, whether their event loop runs or not.
bool isApplicationOutsideExec()
{
    const QCoreApplication* application = QCoreApplication::instance();
    const QThread* thread = QThread::currentThread();
    return application && application->thread() == thread && thread->loopLevel() == 0;
}

} // namespace

bool InnerLoop::run()
{
    bool hasRun = false;
    QObject context;
    QMetaObject::invokeMethod(
        &context, [&hasRun] { hasRun = true; }, Qt::QueuedConnection);
    if (!m_hasQuit)
        m_loop.exec(m_flags);
    if (m_hasQuit || hasRun || !isApplicationOutsideExec())
        return m_hasQuit;
    // QCoreApplication::quit() was called while nothing ran that it could end. It is without effect then, but
    // Qt has each loop return at once until the application runs.
    while (!m_hasQuit)
        m_loop.processEvents(m_flags | QEventLoop::WaitForMoreEvents);
    return true;
}

void InnerLoop::quit()
{
    m_hasQuit = true;
    m_loop.quit();
}
