#pragma once

class QWebSocket;

/// Cuts all connections of \p socket, closes it once what was sent is out, and deletes it then, or after some
/// seconds with a peer that does not read. Safe from inside one of the socket's own signals.
void releaseWebSocket(QWebSocket* socket);
