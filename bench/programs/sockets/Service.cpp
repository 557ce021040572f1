#include "sockets/Service.h"

#include <QTcpServer>
#include <QTcpSocket>

Service::Service(const QHash<QByteArray, QByteArray>& answers) : m_answers(answers)
{
    start();
    QMutexLocker lock(&m_mutex);
    while (m_port == 0)
        m_changed.wait(&m_mutex);
}

Service::~Service()
{
    quit();
    wait();
}

QString Service::url() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(m_port);
}

void Service::restartClock()
{
    m_count = 0;
}

void Service::countAnswer()
{
    if (m_count == 0)
        m_clock.start();
    m_duration = m_clock.nsecsElapsed();
    ++m_count;
}

// Requests of a connection come one at a time; all of them are short.
void Service::receive(QTcpSocket* socket, QByteArray* request)
{
    *request += socket->readAll();
    const int end = request->indexOf("\r\n\r\n");
    if (end < 0)
        return;
    const QByteArray name = "content-length: ";
    const int length = request->toLower().indexOf(name);
    const int size = length < 0 ? 0 : request->mid(length + name.size(), 20).split('\r').first().toInt();
    if (request->size() < end + 4 + size)
        return;
    const bool asksForFrames = request->contains("/xhr HTTP");
    const QByteArray body = m_answers.value(request->split(' ').value(1), "{}");
    request->clear();
    if (asksForFrames)
        return;
    countAnswer();
    socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
                  QByteArray::number(body.size()) + "\r\n\r\n" + body);
}

void Service::run()
{
    QTcpServer server;
    QObject::connect(&server, &QTcpServer::newConnection, &server, [this, &server] {
        QTcpSocket* socket = server.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, socket,
                         [this, socket, request = QByteArray()]() mutable { receive(socket, &request); });
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
    server.listen(QHostAddress::LocalHost);
    {
        const QMutexLocker lock(&m_mutex);
        m_port = server.serverPort();
    }
    m_changed.wakeAll();
    exec();
}
