#pragma once

#include "support/LiveSession.h"

#include <QObject>

#include <memory>

/// Base of the session's tests: each function gets a new session, with its own event bus and log.
class SessionTest : public QObject
{
    Q_OBJECT

protected:
    using Server = FakeSockJSServer;
    using Publish = LiveSession::Publish;

    PresenterCollab* collab() const { return m_session->collab(); }
    Server& server() const { return m_session->server(); }
    LogRecorder& log() const { return m_session->log(); }
    /// Number of compressed publishes that were dropped.
    int dropped() const { return log().debug(LiveSession::notConnected()).size(); }
    /// The next publish, when it is a compressed one of this type to this address, word for word.
    Publish nextPublish(const char* address, const char* type)
    {
        const Publish publish = m_session->nextPublish();
        const QString expected = LiveSession::compressedFrame(address, "teacher-7", type, publish.base64);
        if (publish.text == expected)
            return publish;
        qWarning("This was sent: %s", qPrintable(publish.text.left(200)));
        return Publish();
    }
    /// Starts a poll and returns the question that reaches the event bus; empty when something else does.
    QVariantMap startedQuestion(Calyx::PollType::POLL_TYPE type, Calyx::OrdinalType::ORDINAL_TYPE ordinal,
                                int count, int extra = 0)
    {
        collab()->startPoll(type, ordinal, count, extra);
        const auto publish = m_session->nextPublish();
        return publish.type == QLatin1String("questionStart") ? publish.map() : QVariantMap();
    }

    std::unique_ptr<LiveSession> m_session;

private Q_SLOTS:
    void init() { m_session = std::make_unique<LiveSession>(); }
    void cleanup() { m_session.reset(); }
};
