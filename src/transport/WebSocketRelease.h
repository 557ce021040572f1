#pragma once

class QObject;
class QWebSocket;

/// Cuts all connections of \p socket, closes it once what was sent is out, and deletes it then, or after some
/// seconds with a peer that does not read. Safe from inside one of the socket's own signals.
void releaseWebSocket(QWebSocket* socket);

/// Whether the thread of \p object runs events, now or later: not at the application's end, nor where a
/// thread of the host's has left its event loop, and only carries out what is posted for deletion before.
bool willRunEvents(const QObject* object);
