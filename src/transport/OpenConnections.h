#pragma once

#include <QHash>
#include <QObject>
#include <QSet>

class QNetworkAccessManager;

/// The TCP connections that Qt's HTTP stack makes for one manager, which gives no access to its sockets.
///
/// They are found among the process's descriptors, as those that have come with a request. Nothing is looked
/// for while those that were found are there. Where the system does not list a process's descriptors
/// (Windows) none is found.
class OpenConnections : public QObject
{
    Q_OBJECT

public:
    /// Those of \p manager, which owns them.
    static OpenConnections* of(QNetworkAccessManager* manager);

    /// Whether those that were found last are still there.
    bool isKept() const;

    /// To be called before each request.
    void beginRequest();

    /// To be called after it. Whether it may have made a connection.
    bool endRequest();

    /// Switches Nagle's algorithm off on each connection that has been made since and ends at one of \p
    /// ports.
    void sendAtOnce(const QSet<int>& ports);

private:
    using QObject::QObject;
    void listSockets();

    QSet<quint64> m_before;     // sockets, by the numbers that the system gives them, not used again soon
    QHash<int, quint64> m_kept; // by their descriptors
    int m_running = 0;
    bool m_overlap = false; // requests at the same time have a connection each
};
