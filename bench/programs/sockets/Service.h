#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QMutex>
#include <QString>
#include <QThread>
#include <QWaitCondition>

#include <atomic>

class QTcpSocket;

/// An HTTP server on loopback, on a thread of its own, that answers every request with the JSON that is meant
/// for its path, else with an empty object, but for those that ask for frames, which wait.
class Service : public QThread
{
public:
    explicit Service(const QHash<QByteArray, QByteArray>& answers = {});
    ~Service() override;

    QString url() const;
    int port() const { return m_port; }
    /// How many requests have been answered since restartClock().
    int count() const { return m_count; }
    /// From the first of these to the last, in nanoseconds.
    qint64 duration() const { return m_duration; }
    void restartClock();

protected:
    void run() override;

private:
    void receive(QTcpSocket* socket, QByteArray* request);
    void countAnswer();

    QHash<QByteArray, QByteArray> m_answers;
    QMutex m_mutex;
    QWaitCondition m_changed;
    quint16 m_port = 0;
    std::atomic<int> m_count{0};
    std::atomic<qint64> m_duration{0};
    QElapsedTimer m_clock;
};
