#pragma once

#include "support/WaitFor.h"

#include <CalyxClient/SockJSConnector>

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>

/// Runs \p open, which opens \p connector. False, with a warning, when that has not come back after some
/// seconds: then the connector is closed, if it is still there.
inline bool comesBack(const QPointer<SockJSConnector>& connector, const std::function<void()>& open)
{
    bool late = false;
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, &guard, [&] {
        late = true;
        if (connector)
            connector->close();
    });
    guard.start(30000);
    open();
    if (late)
        qWarning("open() did not come back.");
    return !late;
}

/// Opens a connector without waiting for ever, and writes down what it emits: "connected", "message TEXT",
/// "closed true", "closed false", "error", in order.
class ConnectorProbe : public QObject
{
public:
    explicit ConnectorProbe(SockJSConnector* connector) : m_connector(connector)
    {
        connect(connector, &SockJSConnector::connected, this, [this] { m_events.append("connected"); });
        connect(connector, &SockJSConnector::sockJSMessage, this,
                [this](const QString& message) { m_events.append("message " + message); });
        connect(connector, &SockJSConnector::closed, this, [this](bool forInactivity) {
            m_events.append(forInactivity ? "closed true" : "closed false");
        });
        connect(connector, &SockJSConnector::error, this, [this] { m_events.append("error"); });
    }

    /// Opens with \p protocols. False, with a warning, when open() has not come back after some seconds or
    /// has answered true. The connector may be deleted meanwhile.
    bool open(const QUrl& url, const QList<SockJSConnector::PROTOCOL_TYPE>& protocols)
    {
        bool answer = false;
        const bool inTime = comesBack(m_connector, [&] { answer = m_connector->open(url, protocols); });
        if (answer)
            qWarning("open() answered true.");
        return inTime && !answer;
    }

    /// open(), then waits until the session is open.
    bool openSession(const QUrl& url, const QList<SockJSConnector::PROTOCOL_TYPE>& protocols)
    {
        return open(url, protocols) && waitFor([this] { return m_connector && m_connector->isConnected(); });
    }

    QStringList events() const { return m_events; }
    int count(const QString& event) const { return m_events.count(event); }
    bool hasClosed() const { return count("closed false") > 0; }
    /// The texts of the messages.
    QStringList messages() const
    {
        const QString prefix = "message ";
        QStringList texts;
        for (const auto& event : m_events) {
            if (event.startsWith(prefix))
                texts.append(event.mid(prefix.size()));
        }
        return texts;
    }

private:
    QPointer<SockJSConnector> m_connector;
    QStringList m_events;
};
