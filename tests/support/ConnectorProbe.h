#pragma once

#include "transport/SockJSConnector.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

/// Opens a connector without waiting for ever, and writes down what it emits: "connected", "message TEXT",
/// "closed true", "closed false", "error", in order.
class ConnectorProbe : public QObject
{
    Q_OBJECT

public:
    explicit ConnectorProbe(SockJSConnector* connector);

    /// Opens with \p protocols. False, with a warning, when open() has not come back after some seconds or
    /// has answered true. The connector may be deleted meanwhile.
    bool open(const QUrl& url, const QList<SockJSConnector::PROTOCOL_TYPE>& protocols);
    /// open(), then waits until the session is open.
    bool openSession(const QUrl& url, const QList<SockJSConnector::PROTOCOL_TYPE>& protocols);

    QStringList events() const { return m_events; }
    int count(const QString& event) const { return m_events.count(event); }
    bool hasClosed() const { return count(QStringLiteral("closed false")) > 0; }
    /// The texts of the messages.
    QStringList messages() const;

private:
    QPointer<SockJSConnector> m_connector;
    QStringList m_events;
};
