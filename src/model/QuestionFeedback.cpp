#include "model/QuestionFeedback.h"

namespace Calyx {

QuestionFeedback::QuestionFeedback(QObject* parent) : QObject(parent) {}

void QuestionFeedback::setshowFeedback(bool showFeedback)
{
    m_showFeedback = showFeedback;
}

void QuestionFeedback::setshowCorrectAnswer(bool showCorrectAnswer)
{
    m_showCorrectAnswer = showCorrectAnswer;
}

void QuestionFeedback::setcorrectAnswer(QVariant correctAnswer)
{
    m_correctAnswer = correctAnswer;
}

void QuestionFeedback::setactivityScoreStatus(QVariant activityScoreStatus)
{
    m_activityScoreStatus = activityScoreStatus;
}

void QuestionFeedback::setactivityResponseStatus(QVariant activityResponseStatus)
{
    m_activityResponseStatus = activityResponseStatus;
}

void QuestionFeedback::setcorrectOptions(QVariantList correctOptions)
{
    m_correctOptions = correctOptions;
}

void QuestionFeedback::setallowResubmit(bool allowResubmit)
{
    m_allowResubmit = allowResubmit;
}

void QuestionFeedback::setcorrectFeedback(QVariant correctFeedback)
{
    m_correctFeedback = correctFeedback;
}

void QuestionFeedback::setinCorrectFeedback(QVariant inCorrectFeedback)
{
    m_inCorrectFeedback = inCorrectFeedback;
}

void QuestionFeedback::setanswer(QVariant answer)
{
    m_answer = answer;
}

void QuestionFeedback::setjsonAnswer(QVariant jsonAnswer)
{
    m_jsonAnswer = jsonAnswer;
}

void QuestionFeedback::setoptionAnswers(QVariantList optionAnswers)
{
    m_optionAnswers = optionAnswers;
}

void QuestionFeedback::setoptionFeedbacks(QVariantList optionFeedbacks)
{
    m_optionFeedbacks = optionFeedbacks;
}

void QuestionFeedback::setnumberOfRetries(int numberOfRetries)
{
    m_numberOfRetries = numberOfRetries;
}

void QuestionFeedback::setnumberOfRetriesRemaining(int numberOfRetriesRemaining)
{
    m_numberOfRetriesRemaining = numberOfRetriesRemaining;
}

void QuestionFeedback::setremainingTime(QVariant remainingTime)
{
    m_remainingTime = remainingTime;
}

} // namespace Calyx
