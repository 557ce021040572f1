#pragma once

#include "support/ScriptedHttpServer.h"
#include "support/WorkerRun.h"

#include <QCoreApplication>
#include <QNetworkProxy>
#include <QObject>

/// Base of the worker's tests, each of which starts servers and workers of its own.
class WorkerTest : public QObject
{
    Q_OBJECT

protected:
    using Server = ScriptedHttpServer;

    /// Longer than the worker's idle wait and its stall limit together, in ms.
    static constexpr int patience = 8000;

private Q_SLOTS:
    void initTestCase() { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); }
    void cleanup() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
};
