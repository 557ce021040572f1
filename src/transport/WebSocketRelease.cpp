#include "transport/WebSocketRelease.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>
#include <QWebSocket>

namespace {

constexpr int longestFarewell = 5000; // ms

}

bool willRunEvents(const QObject* object)
{
    const QCoreApplication* const application = QCoreApplication::instance();
    const QThread* const thread = object->thread();
    return application && (thread == application->thread() || thread->loopLevel() > 0);
}

void releaseWebSocket(QWebSocket* socket)
{
    // First of all: QWebSocket's destructor emits `disconnected`, and abort() does.
    socket->disconnect();
    if (!willRunEvents(socket)) {
        if (QCoreApplication::instance()) {
            socket->close(QWebSocketProtocol::CloseCodeGoingAway);
            socket->flush();
        }
        delete socket;
        return;
    }
    if (socket->state() != QAbstractSocket::ConnectedState) {
        socket->abort();
        socket->deleteLater();
        return;
    }
    // Until the peer has read everything the socket belongs to nobody else; the application's end takes it
    // along.
    QCoreApplication* const application = QCoreApplication::instance();
    if (application->thread() == socket->thread())
        socket->setParent(application);
    else
        QObject::connect(socket->thread(), &QThread::finished, socket, &QObject::deleteLater);
    QObject::connect(socket, &QWebSocket::disconnected, socket, &QObject::deleteLater);
    QTimer::singleShot(longestFarewell, socket, [socket] { socket->abort(); });
    socket->close(QWebSocketProtocol::CloseCodeGoingAway);
}
