#include "support/SessionTest.h"

void SessionTest::init()
{
    m_session = std::make_unique<LiveSession>();
}

void SessionTest::cleanup()
{
    m_session.reset();
}

int SessionTest::dropped() const
{
    return log().debug(LiveSession::notConnected()).size();
}

SessionTest::Publish SessionTest::nextPublish(const char* address, const char* type)
{
    const Publish publish = m_session->nextPublish();
    const QString expected = LiveSession::compressedFrame(address, "teacher-7", type, publish.base64);
    if (publish.text == expected)
        return publish;
    qWarning("This was sent: %s", qPrintable(publish.text.left(200)));
    return Publish();
}

QVariantMap SessionTest::startedQuestion(Calyx::PollType::POLL_TYPE type,
                                         Calyx::OrdinalType::ORDINAL_TYPE ordinal, int count, int extra)
{
    collab()->startPoll(type, ordinal, count, extra);
    const auto publish = m_session->nextPublish();
    return publish.type == QLatin1String("questionStart") ? publish.map() : QVariantMap();
}
