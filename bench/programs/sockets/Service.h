#pragma once

#include <QMutex>
#include <QString>
#include <QThread>
#include <QWaitCondition>

/// An HTTP server on loopback, on a thread of its own, that answers every request with an empty JSON object.
class Service : public QThread
{
public:
    Service();
    ~Service() override;

    QString url() const;

protected:
    void run() override;

private:
    QMutex m_mutex;
    QWaitCondition m_changed;
    quint16 m_port = 0;
};
