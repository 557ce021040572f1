#pragma once

#include <QStringList>
#include <QThread>
#include <QUrl>

#include <QMutex>
#include <QWaitCondition>

class QWebSocketServer;

/// A WebSocket server on loopback, on a thread of its own, that opens SockJS sessions and reads what comes.
/// It keeps the texts of the first few messages.
class Drain : public QThread
{
public:
    Drain();
    ~Drain() override;

    QUrl url() const;
    /// Message \p index, once it has come.
    QString message(int index);
    bool hasMessage(int index);

protected:
    void run() override;

private:
    void serve(QWebSocketServer& server);
    void take(const QString& text);

    static constexpr int kept = 8;

    QMutex m_mutex;
    QWaitCondition m_changed;
    quint16 m_port = 0;
    QStringList m_messages;
};
