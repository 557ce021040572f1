#include "workloads/Drain.h"

#include <QHostAddress>
#include <QWebSocket>
#include <QWebSocketServer>

Drain::Drain()
{
    start();
    QMutexLocker lock(&m_mutex);
    while (m_port == 0)
        m_changed.wait(&m_mutex);
}

Drain::~Drain()
{
    quit();
    wait();
}

QUrl Drain::url() const
{
    return QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(m_port));
}

QString Drain::message(int index)
{
    QMutexLocker lock(&m_mutex);
    while (m_messages.size() <= index)
        m_changed.wait(&m_mutex);
    return m_messages.at(index);
}

void Drain::run()
{
    QWebSocketServer server(QStringLiteral("drain"), QWebSocketServer::NonSecureMode);
    serve(server);
    server.listen(QHostAddress::LocalHost);
    {
        const QMutexLocker lock(&m_mutex);
        m_port = server.serverPort();
    }
    m_changed.wakeAll();
    exec();
}

void Drain::serve(QWebSocketServer& server)
{
    QObject::connect(&server, &QWebSocketServer::newConnection, &server, [this, &server] {
        QWebSocket* socket = server.nextPendingConnection();
        socket->setParent(&server);
        QObject::connect(socket, &QWebSocket::textMessageReceived, socket,
                         [this](const QString& text) { take(text); });
        socket->sendTextMessage(QStringLiteral("o"));
    });
}

void Drain::take(const QString& text)
{
    const QMutexLocker lock(&m_mutex);
    if (m_messages.size() >= kept)
        return;
    m_messages.append(text);
    m_changed.wakeAll();
}

bool Drain::hasMessage(int index)
{
    const QMutexLocker lock(&m_mutex);
    return m_messages.size() > index;
}
