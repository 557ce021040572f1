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

void QuestionBase::setID(QString value)
{
    m_id = value;
}

void QuestionBase::setquestionSetMode(QString questionSetMode)
{
    m_questionSetMode = questionSetMode;
}

void QuestionBase::setquestionNumber(int questionNumber)
{
    m_questionNumber = questionNumber;
}

void QuestionBase::setType(QString type)
{
    m_type = type;
}

void QuestionBase::setactivityType(QVariantMap activityType)
{
    m_activityType = activityType;
}

void QuestionBase::setfeedBack(QObject* feedBack)
{
    m_feedBack = feedBack;
}

void QuestionBase::setfeedBack(Calyx::QuestionFeedback* feedBack)
{
    m_feedBack = feedBack;
}

void QuestionBase::setinstructions(QString instructions)
{
    m_instructions = instructions;
}

void QuestionBase::setpassage(QString passage)
{
    m_passage = passage;
}

void QuestionBase::setcard(QObject* card)
{
    m_card = card;
}

void QuestionBase::sethint(QString hint)
{
    m_hint = hint;
}

void QuestionBase::setmath(bool math)
{
    m_math = math;
}

void QuestionBase::sethasNext(bool hasNext)
{
    m_hasNext = hasNext;
}

void QuestionBase::setnavigable(bool navigable)
{
    m_navigable = navigable;
}

void QuestionBase::setFeedBackProperty(const char* name, const QVariant& value)
{
    if (m_feedBack)
        m_feedBack->setProperty(name, value);
}

} // namespace Calyx
