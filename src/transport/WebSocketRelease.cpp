#include "transport/WebSocketRelease.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>
#include <QWebSocket>

namespace {

constexpr int longestFarewell = 5000; // ms

}

void releaseWebSocket(QWebSocket* socket)
{
    // First of all: QWebSocket's destructor emits `disconnected`, and abort() does.
    socket->disconnect();
    QCoreApplication* application = QCoreApplication::instance();
    if (!application) { // nobody will run an event loop any more
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
    if (application->thread() == socket->thread())
        socket->setParent(application);
    QObject::connect(socket, &QWebSocket::disconnected, socket, &QObject::deleteLater);
    QTimer::singleShot(longestFarewell, socket, [socket] { socket->abort(); });
    socket->close(QWebSocketProtocol::CloseCodeGoingAway);
}
