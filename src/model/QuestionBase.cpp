#include "model/QuestionBase.h"

#include "transport/RANDSTRING.h"

namespace Calyx {

namespace {

constexpr int idLength = 8;
// The devices take this number of retries for "answered before".
constexpr int answeredBefore = 99;

} // namespace

QuestionBase::QuestionBase(QObject* parent)
    : QObject(parent)
    , m_id(RANDSTRING::Generate(idLength))
    , m_feedBack(new QuestionFeedback(this))
    , m_card(new QObject(this))
{
    qRegisterMetaType<QuestionFeedback*>("Calyx::QuestionFeedback*");
}

void QuestionBase::configurePriorAnswer()
{
    setFeedBackProperty("numberOfRetriesRemaining", answeredBefore);
}

QString QuestionBase::getType() const
{
    return m_type;
}

void QuestionBase::inferOrdinalType() {}

void QuestionBase::setPriorAnswer(QString answer)
{
    setFeedBackProperty("answer", answer);
    configurePriorAnswer();
}

void QuestionBase::setFeedBackProperty(const char* name, const QVariant& value)
{
    if (m_feedBack)
        m_feedBack->setProperty(name, value);
}

} // namespace Calyx
