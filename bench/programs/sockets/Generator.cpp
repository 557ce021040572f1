#include "sockets/Generator.h"

#include "workloads/Answers.h"

#include <QCryptographicHash>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtEndian>

#include <ctime>

namespace {

// One unmasked WebSocket text frame, as servers send them.
QByteArray webSocketFrame(const QByteArray& text)
{
    constexpr int longestShort = 125;
    QByteArray frame("\x81");
    if (text.size() <= longestShort) {
        frame += char(text.size());
    } else {
        frame += char(longestShort + 1);
        const quint16 size = qToBigEndian(quint16(text.size()));
        frame.append(reinterpret_cast<const char*>(&size), sizeof(size));
    }
    return frame + text;
}

QByteArray acceptKey(const QByteArray& request)
{
    const QByteArray name = "Sec-WebSocket-Key: ";
    const int begin = request.indexOf(name) + name.size();
    const QByteArray key = request.mid(begin, request.indexOf('\r', begin) - begin);
    return QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11", QCryptographicHash::Sha1)
        .toBase64();
}

} // namespace

Generator::Generator()
{
    for (int i = 0; i < batch; ++i)
        m_answers += webSocketFrame(Answers::frame(Answers::message(i)).toUtf8());
    start();
    QMutexLocker lock(&m_mutex);
    while (m_port == 0)
        m_changed.wait(&m_mutex);
}

Generator::~Generator()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_stopped = true;
    }
    m_changed.wakeAll();
    wait();
}

QUrl Generator::url() const
{
    return QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(m_port));
}

void Generator::prepare(const QString& pollId, int devices)
{
    QByteArray answers;
    for (int i = 0; i < devices; ++i)
        answers += webSocketFrame(Answers::frame(Answers::message(i, pollId)).toUtf8());
    const QMutexLocker lock(&m_mutex);
    m_answers = answers;
}

void Generator::send()
{
    {
        const QMutexLocker lock(&m_mutex);
        ++m_orders;
    }
    m_changed.wakeAll();
}

void Generator::run()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    {
        const QMutexLocker lock(&m_mutex);
        m_port = server.serverPort();
    }
    m_changed.wakeAll();
    server.waitForNewConnection(-1);
    QTcpSocket* socket = server.nextPendingConnection();
    if (!upgrade(*socket))
        return;
    while (waitForOrder()) {
        socket->write(m_answers);
        while (socket->bytesToWrite() > 0 && socket->waitForBytesWritten(-1)) {
        }
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        m_cpuTime = double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
    }
}

bool Generator::upgrade(QTcpSocket& socket)
{
    QByteArray request;
    while (!request.contains("\r\n\r\n")) {
        if (!socket.waitForReadyRead(-1))
            return false;
        request += socket.readAll();
    }
    socket.write("HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                 "Sec-WebSocket-Accept: " +
                 acceptKey(request) + "\r\n\r\n" + webSocketFrame("o"));
    return socket.waitForBytesWritten(-1);
}

bool Generator::waitForOrder()
{
    QMutexLocker lock(&m_mutex);
    while (m_orders == 0 && !m_stopped)
        m_changed.wait(&m_mutex);
    --m_orders;
    return !m_stopped;
}
