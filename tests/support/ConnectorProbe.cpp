#include "support/ConnectorProbe.h"

#include "support/WaitFor.h"

#include <QTimer>

ConnectorProbe::ConnectorProbe(SockJSConnector* connector) : m_connector(connector)
{
    connect(connector, &SockJSConnector::connected, this,
            [this] { m_events.append(QStringLiteral("connected")); });
    connect(connector, &SockJSConnector::sockJSMessage, this,
            [this](const QString& message) { m_events.append(QStringLiteral("message ") + message); });
    connect(connector, &SockJSConnector::closed, this, [this](bool forInactivity) {
        m_events.append(forInactivity ? QStringLiteral("closed true") : QStringLiteral("closed false"));
    });
    connect(connector, &SockJSConnector::error, this, [this] { m_events.append(QStringLiteral("error")); });
}

bool ConnectorProbe::open(const QUrl& url, const QList<SockJSConnector::PROTOCOL_TYPE>& protocols)
{
    bool late = false;
    QTimer guard;
    guard.setSingleShot(true);
    connect(&guard, &QTimer::timeout, this, [this, &late] {
        late = true;
        if (m_connector)
            m_connector->close();
    });
    guard.start(30000);
    const bool answer = m_connector->open(url, protocols);
    if (late)
        qWarning("open() did not come back.");
    if (answer)
        qWarning("open() answered true.");
    return !late && !answer;
}

bool ConnectorProbe::openSession(const QUrl& url, const QList<SockJSConnector::PROTOCOL_TYPE>& protocols)
{
    return open(url, protocols) && waitFor([this] { return m_connector && m_connector->isConnected(); });
}

QStringList ConnectorProbe::messages() const
{
    const QString prefix = QStringLiteral("message ");
    QStringList texts;
    for (const auto& event : m_events) {
        if (event.startsWith(prefix))
            texts.append(event.mid(prefix.size()));
    }
    return texts;
}
