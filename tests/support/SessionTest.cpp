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

QVariantMap SessionTest::startedQuestion(Calyx::PollType::POLL_TYPE type,
                                         Calyx::OrdinalType::ORDINAL_TYPE ordinal, int count, int extra)
{
    collab()->startPoll(type, ordinal, count, extra);
    const auto publish = m_session->nextPublish();
    return publish.type == QLatin1String("questionStart") ? publish.map() : QVariantMap();
}
