#pragma once

#include "support/ScriptedHttpServer.h"
#include "transport/SockJSXHRPollingWorker.h"
#include "transport/XHRRequest.h"

#include <QCoreApplication>
#include <QNetworkProxy>
#include <QObject>
#include <QSslSocket>
#include <QStringList>
#include <QThread>

#include <memory>
#include <vector>

/// A worker on a thread of its own with everything that it reports, in order, as text. The reports arrive on
/// the test's thread, from its event loop.
class WorkerRun : public QObject
{
public:
    explicit WorkerRun(quint16 port, bool secure = false)
        : socket(secure ? new QSslSocket : new QTcpSocket)
        , worker(new SockJSXHRPollingWorker(nullptr, socket, QStringLiteral("127.0.0.1"), port, secure, true))
    {
        using Worker = SockJSXHRPollingWorker;
        connect(worker, &Worker::receivedHeadersResponse, this, [this](XHRRequest* request, QStringMap map) {
            note(QStringLiteral("header"), request);
            headers.append(map);
        });
        connect(worker, &Worker::receivedMessageResponse, this, [this](XHRRequest* request, QString message) {
            note(QStringLiteral("message"), request);
            messages.append(message);
        });
        connect(worker, &Worker::receivedEmptyResponse, this,
                [this](XHRRequest* request) { note(QStringLiteral("empty"), request); });
        connect(worker, &Worker::requestLost, this,
                [this](XHRRequest* request) { note(QStringLiteral("lost"), request); });
        connect(worker, &Worker::reconnected, this, [this] {
            reports.append(QStringLiteral("reconnected"));
            ++reconnects;
            if (queueAgain)
                queue();
        });
        connect(worker, &Worker::finished, this, [this] {
            reports.append(QStringLiteral("finished"));
            ++ends;
        });
        connect(worker, &Worker::finished, &thread, &QThread::quit);
        connect(&thread, &QThread::started, worker, &Worker::process);
        connect(&thread, &QThread::finished, socket, &QObject::deleteLater);
        connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    }

    ~WorkerRun() override
    {
        if (!started) {
            delete worker;
            delete socket;
            return;
        }
        if (ends == 0)
            worker->forceClose();
        thread.quit();
        thread.wait();
    }

    /// Connects and starts the thread.
    bool start()
    {
        if (!worker->connectToServer())
            return false;
        startThread();
        return true;
    }

    /// Starts the thread with the socket as it is.
    void startThread()
    {
        worker->moveToThread(&thread);
        socket->moveToThread(&thread);
        started = true;
        thread.start();
    }

    /// Queues a request of its own for \p path.
    bool queue(const QString& path = QStringLiteral("/p/xhr"))
    {
        const QString text =
            QStringLiteral("POST %1 HTTP/1.1\r\nHost: h\r\nContent-Length: 0\r\n\r\n\r\n\r\n").arg(path);
        requests.push_back(std::make_unique<XHRRequest>(path, text));
        return worker->queueRequest(requests.back().get());
    }

    QThread thread;
    QTcpSocket* socket;
    SockJSXHRPollingWorker* worker;
    /// Queue a request of the usual path whenever the connection has been made anew.
    bool queueAgain = false;

    /// "header 0", "message 0", "empty 0", "lost 0" with the number of the request; "reconnected",
    /// "finished".
    QStringList reports;
    QStringList messages;
    QList<QStringMap> headers;
    int reconnects = 0;
    int ends = 0;
    std::vector<std::unique_ptr<XHRRequest>> requests;

private:
    void note(const QString& what, const XHRRequest* request)
    {
        int number = 0;
        while (requests.at(static_cast<size_t>(number)).get() != request)
            ++number;
        reports.append(QStringLiteral("%1 %2").arg(what).arg(number));
    }

    bool started = false;
};

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
