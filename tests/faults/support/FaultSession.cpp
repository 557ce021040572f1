#include "faults/support/FaultSession.h"

using HttpText::chunk;
using HttpText::chunked;
using HttpText::chunkedHead;
using HttpText::endChunk;
using Server = ScriptedHttpServer;

namespace {

const QByteArray after = "a[\"after\"]";
const QString afterEvent = QStringLiteral("message after");

QByteArray stream(const QByteArray& frame)
{
    return chunkedHead() + chunk(HttpText::prelude()) + chunk(frame + '\n');
}

} // namespace

QByteArray FaultSession::good(bool streaming, const QByteArray& frame)
{
    return streaming ? stream(frame) + endChunk() : chunked(frame + '\n');
}

FaultSession::FaultSession(const Fault& fault, bool streaming)
    : m_fault(fault), m_streaming(streaming), m_probe(&m_connector)
{
    const QByteArray path = streaming ? "/xhr_streaming" : "/xhr";
    m_server.answer(path, good(streaming, "o"));
    m_server.answer(path, fault.script);
    m_server.answer(path, streaming ? stream(after) : good(false, after));
}

bool FaultSession::open()
{
    const auto transport = m_streaming ? SockJSConnector::XHR_STREAMING : SockJSConnector::XHR_POLLING;
    const QString url = QStringLiteral("http://127.0.0.1:%1").arg(m_server.port());
    return m_probe.openSession(QUrl(url), {transport});
}

QStringList FaultSession::expected() const
{
    QStringList events{QStringLiteral("connected")};
    for (const QString& message : m_fault.messages)
        events.append(QStringLiteral("message ") + message);
    if (m_fault.endsSession)
        events.append(QStringLiteral("closed false"));
    else if (m_fault.asksAgain)
        events.append(afterEvent);
    return events;
}

bool FaultSession::isThrough() const
{
    return m_probe.events().size() >= expected().size();
}

QString FaultSession::verdict() const
{
    if (m_probe.events() == expected() && m_connector.isConnected() != m_fault.endsSession)
        return QString();
    return QStringLiteral("%1: %2 instead of %3")
        .arg(name(), m_probe.events().join(QLatin1Char('|')), expected().join(QLatin1Char('|')));
}

qint64 FaultSession::duration() const
{
    const QList<Server::Request> requests = m_server.requests();
    return requests.last().msecs - requests.first().msecs;
}
