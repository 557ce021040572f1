#include "transport/RawConnection.h"

#include "transport/InnerLoop.h"

#include <QDeadlineTimer>
#include <QSslSocket>
#include <QTimer>

namespace {

// What nobody reads stays with the far end.
constexpr qint64 readBufferSize = qint64{1} * 1024 * 1024;

} // namespace

RawConnection::RawConnection(QObject* parent, QTcpSocket* socket, const QString& server, int port,
                             bool secure)
    : QObject(parent)
    , m_socket(socket)
    , m_tls(secure ? qobject_cast<QSslSocket*>(socket) : nullptr)
    , m_server(server)
    , m_port(static_cast<quint16>(port))
{
    if (m_socket) {
        m_socket->setReadBufferSize(readBufferSize);
        connect(m_socket, &QTcpSocket::readyRead, this, &RawConnection::wake);
        connect(m_socket, &QTcpSocket::stateChanged, this, &RawConnection::wake);
        // Qt closes a socket whose write fails.
        connect(m_socket, &QTcpSocket::errorOccurred, this, [this] { m_dropped = true; });
    }
    if (m_tls)
        connect(m_tls, &QSslSocket::encrypted, this, &RawConnection::wake);
}

void RawConnection::begin()
{
    if (m_tls)
        m_tls->connectToHostEncrypted(m_server, m_port);
    else
        m_socket->connectToHost(m_server, m_port, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
}

bool RawConnection::connectBlocking(int msecs)
{
    begin();
    if (m_tls)
        return m_tls->waitForEncrypted(msecs);
    return m_socket->waitForConnected(msecs);
}

// The socket's own waits cannot be cut in slices: one that times out gives the connection up.
bool RawConnection::connectWaiting(int msecs, std::atomic<bool>* stop)
{
    const QDeadlineTimer limit(msecs);
    begin();
    while (!*stop && !isReady() && !isUnconnected() && !limit.hasExpired()) {
        if (!wait(static_cast<int>(limit.remainingTime())))
            *stop = true;
    }
    if (!isReady())
        drop();
    m_dropped = !isReady();
    return isReady();
}

void RawConnection::drop()
{
    m_dropped = true;
    m_socket->abort();
}

bool RawConnection::isReady() const
{
    return isConnected() && (!m_tls || m_tls->isEncrypted());
}

bool RawConnection::isConnected() const
{
    return m_socket->state() == QAbstractSocket::ConnectedState;
}

bool RawConnection::isUnconnected() const
{
    return m_socket->state() == QAbstractSocket::UnconnectedState;
}

// A socket that the far end has left is still open, in this sense.
bool RawConnection::isClosed() const
{
    return !m_socket->isOpen() && !m_dropped;
}

bool RawConnection::hasBytes() const
{
    return m_socket->bytesAvailable() > 0;
}

QByteArray RawConnection::readAll()
{
    return m_socket->readAll();
}

void RawConnection::write(const QByteArray& bytes)
{
    m_socket->write(bytes);
    m_socket->flush();
}

bool RawConnection::wait(int msecs)
{
    InnerLoop loop;
    QObject context;
    QTimer::singleShot(msecs, Qt::PreciseTimer, &context, [&loop] { loop.quit(); });
    m_wait = &loop;
    const bool hasEnded = loop.run();
    m_wait = nullptr;
    return hasEnded;
}

void RawConnection::wake()
{
    if (m_wait)
        m_wait->quit();
}
