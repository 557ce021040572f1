#pragma once

#include <QByteArray>
#include <QMutex>
#include <QThread>
#include <QUrl>
#include <QWaitCondition>

#include <atomic>

class QTcpSocket;

/// A WebSocket server for one client, on loopback and on a thread of its own, that sends prepared poll
/// answers as fast as the socket takes them.
class Generator : public QThread
{
public:
    /// The number of answers that are sent at a time.
    static constexpr int batch = 10000;

    Generator();
    ~Generator() override;

    QUrl url() const;
    /// Sends a batch.
    void send();
    /// What a batch is from the next on: answers to the poll with this id from \p devices devices.
    void prepare(const QString& pollId, int devices);
    /// The CPU time that this thread had taken when its last batch was sent, in seconds.
    double cpuTime() const { return m_cpuTime; }

protected:
    void run() override;

private:
    bool upgrade(QTcpSocket& socket);
    bool waitForOrder();

    QMutex m_mutex;
    QWaitCondition m_changed;
    quint16 m_port = 0;
    int m_orders = 0;
    bool m_stopped = false;
    QByteArray m_answers;
    std::atomic<double> m_cpuTime{0};
};
