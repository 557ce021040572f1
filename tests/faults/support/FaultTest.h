#pragma once

#include "faults/support/Bounds.h"
#include "support/ConnectorProbe.h"
#include "support/LogRecorder.h"
#include "support/ProcessResources.h"
#include "support/ScriptedHttpServer.h"

#include <CalyxClient/SockJSConnector>

#include <QNetworkProxy>
#include <QTest>

#include <memory>
#include <vector>

/// A session over an XHR transport to whose second receive request a server does something wrong; the first
/// one opens the session, and the third one brings the message "after".
class FaultSession
{
public:
    struct Fault
    {
        QString name;
        ScriptedHttpServer::Script script;
        QStringList messages = {};
        bool asksAgain = true; ///< otherwise the answer just goes on
        bool endsSession = false;
    };

    FaultSession(const Fault& fault, bool streaming)
        : m_fault(fault), m_streaming(streaming), m_probe(&m_connector)
    {
        const QByteArray path = streaming ? "/xhr_streaming" : "/xhr";
        const QByteArray after = "a[\"after\"]";
        m_server.answer(path, good(streaming, "o"));
        m_server.answer(path, fault.script);
        m_server.answer(path, streaming ? stream(after) : good(false, after));
    }

    bool open()
    {
        const auto transport = m_streaming ? SockJSConnector::XHR_STREAMING : SockJSConnector::XHR_POLLING;
        const QString url = QStringLiteral("http://127.0.0.1:%1").arg(m_server.port());
        return m_probe.openSession(QUrl(url), {transport});
    }
    /// Whether everything has come that has to come.
    bool isThrough() const { return m_probe.events().size() >= expected().size(); }
    /// What has come, against what had to; empty when they are the same.
    QString verdict() const
    {
        if (m_probe.events() == expected() && m_connector.isConnected() != m_fault.endsSession)
            return QString();
        return QStringLiteral("%1: %2 instead of %3")
            .arg(name(), m_probe.events().join(QLatin1Char('|')), expected().join(QLatin1Char('|')));
    }
    /// Milliseconds between the first and the last request.
    qint64 duration() const
    {
        const auto requests = m_server.requests();
        return requests.last().msecs - requests.first().msecs;
    }

    QString name() const { return m_fault.name; }
    ScriptedHttpServer* server() { return &m_server; }
    /// Whether the end of the channel, which is closed now or has ended already, is told once.
    bool closesOnce()
    {
        m_connector.close();
        return waitFor([this] { return m_probe.hasClosed(); }) && m_probe.count("closed false") == 1;
    }

    /// A good answer with this frame.
    static QByteArray good(bool streaming, const QByteArray& frame)
    {
        return streaming ? stream(frame) + HttpText::endChunk() : HttpText::chunked(frame + '\n');
    }

private:
    static QByteArray stream(const QByteArray& frame)
    {
        return HttpText::chunkedHead() + HttpText::chunk(HttpText::prelude()) + HttpText::chunk(frame + '\n');
    }

    QStringList expected() const
    {
        QStringList events{"connected"};
        for (const QString& message : m_fault.messages)
            events.append("message " + message);
        if (m_fault.endsSession)
            events.append("closed false");
        else if (m_fault.asksAgain)
            events.append("message after");
        return events;
    }

    Fault m_fault;
    bool m_streaming;
    ScriptedHttpServer m_server;
    SockJSConnector m_connector;
    ConnectorProbe m_probe;
};

/// Base of the tests in which sessions have a fault each, all at the same time, because each may cost some
/// seconds.
class FaultTest : public QObject
{
protected:
    void begin()
    {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        m_before = std::make_unique<ProcessResources::Snapshot>([] {
            FaultSession session({"none", {HttpScript::send(FaultSession::good(false, "h"))}}, false);
            QVERIFY(session.open());
            QVERIFY(waitFor([&] { return session.isThrough(); }));
        });
    }
    void setUp() { m_log = std::make_unique<LogRecorder>(); }
    void tearDown()
    {
        m_sessions.clear();
        QCOMPARE(m_before->waitForSurplusToGo(), QString());
        QCOMPARE(m_log->warnings(), QStringList());
        m_log.reset();
    }

    void open(const FaultSession::Fault& fault, bool streaming)
    {
        m_sessions.push_back(std::make_unique<FaultSession>(fault, streaming));
        QVERIFY2(m_sessions.back()->open(), qPrintable(fault.name));
    }
    void verifyThrough(int limit = Bounds::recovery)
    {
        for (const auto& session : m_sessions) {
            const bool through = waitFor([&] { return session->isThrough(); }, limit);
            QVERIFY2(through && session->verdict().isEmpty(), qPrintable(session->verdict()));
            QVERIFY2(session->duration() <= limit, qPrintable(session->name()));
        }
        for (const auto& session : m_sessions)
            QVERIFY2(session->closesOnce(), qPrintable(session->name()));
    }

    std::vector<std::unique_ptr<FaultSession>> m_sessions;
    std::unique_ptr<LogRecorder> m_log;

private:
    std::unique_ptr<ProcessResources::Snapshot> m_before;
};
