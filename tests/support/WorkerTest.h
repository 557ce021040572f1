#pragma once

#include "support/ScriptedHttpServer.h"
#include "support/WorkerRun.h"

#include <QCoreApplication>
#include <QNetworkProxy>
#include <QObject>

#include <memory>

/// Base of the worker's tests: each function gets a new server and a worker that has not been started.
class WorkerTest : public QObject
{
    Q_OBJECT

protected:
    using Server = ScriptedHttpServer;

    /// Starts the worker, and queues so many requests for \p path.
    bool start(int requests = 0, const QString& path = QStringLiteral("/p/xhr"))
    {
        bool good = m_run->start();
        while (good && requests-- > 0)
            good = m_run->queue(path);
        return good;
    }

    /// Longer than the worker's idle wait and its stall limit together, in ms.
    static constexpr int patience = 8000;

    std::unique_ptr<Server> m_server;
    std::unique_ptr<WorkerRun> m_run;

private Q_SLOTS:
    void initTestCase() { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); }

    void init()
    {
        m_server = std::make_unique<Server>();
        m_run = std::make_unique<WorkerRun>(m_server->port());
    }

    void cleanup()
    {
        m_run.reset();
        m_server.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};
