#include "model/AssessmentOptions.h"

namespace Calyx {

AssessmentOptions::AssessmentOptions(QObject* parent) : QObject(parent)
{
    m_assessmentSectionConfigurations = {{QStringLiteral("leveled"), false}};
}

void AssessmentOptions::setassessmentToken(QString assessmentToken)
{
    m_assessmentToken = assessmentToken;
}

void AssessmentOptions::setallowSkipQuestion(bool allowSkipQuestion)
{
    m_allowSkipQuestion = allowSkipQuestion;
}

void AssessmentOptions::setallowNavigateQuestionSet(bool allowNavigateQuestionSet)
{
    m_allowNavigateQuestionSet = allowNavigateQuestionSet;
}

void AssessmentOptions::setallowResubmitResponse(bool allowResubmitResponse)
{
    m_allowResubmitResponse = allowResubmitResponse;
}

void AssessmentOptions::setshowSummaryOnAssessmentCompletion(bool showSummaryOnAssessmentCompletion)
{
    m_showSummaryOnAssessmentCompletion = showSummaryOnAssessmentCompletion;
}

void AssessmentOptions::setshowAnswerOnIncorrectResponse(bool showAnswerOnIncorrectResponse)
{
    m_showAnswerOnIncorrectResponse = showAnswerOnIncorrectResponse;
}

void AssessmentOptions::setshowFeedback(bool showFeedback)
{
    m_showFeedback = showFeedback;
}

void AssessmentOptions::setquestionCount(int questionCount)
{
    m_questionCount = questionCount;
}

void AssessmentOptions::setstartingQuestionNumber(int questionNumber)
{
    m_startingQuestionNumber = questionNumber;
}

void AssessmentOptions::setallowedTime(int allowedTime)
{
    m_allowedTime = allowedTime;
}

void AssessmentOptions::setcurrentAssessmentSectionId(QString currentAssessmentSectionId)
{
    m_currentAssessmentSectionId = currentAssessmentSectionId;
}

void AssessmentOptions::settitle(QString title)
{
    m_title = title;
}

void AssessmentOptions::setdescription(QString description)
{
    m_description = description;
}

void AssessmentOptions::setscored(bool scored)
{
    m_scored = scored;
}

void AssessmentOptions::setassessmentSectionConfigurations(QVariantMap assessmentSectionConfigurations)
{
    m_assessmentSectionConfigurations = assessmentSectionConfigurations;
}

} // namespace Calyx
