#pragma once

#include <QThread>

/// The thread of an XHR transport. It outlives neither the application object nor the process's statics: a
/// host may end either before it ends its connectors.
class TransportThread : public QThread
{
public:
    TransportThread();
    /// Ends the thread.
    ~TransportThread() override;

    /// Makes the event loops of the thread return, and returns when it has ended.
    void end();

    /// Has \p transport deleted, which nobody owns, when the application object goes. For the application's
    /// thread only.
    static void deleteWithApplication(QObject* transport);
};
