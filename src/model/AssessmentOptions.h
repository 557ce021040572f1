#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QObject>
#include <QString>
#include <QVariant>

namespace Calyx {

/// The settings of an assessment, and the data of its start message. Each getter is a Qt property and a key
/// of the JSON. The learners' devices carry the settings out; the library checks none.
class CALYXCLIENT_EXPORT AssessmentOptions : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString assessmentToken READ assessmentToken WRITE setassessmentToken)
    Q_PROPERTY(bool allowSkipQuestion READ allowSkipQuestion WRITE setallowSkipQuestion)
    Q_PROPERTY(bool allowNavigateQuestionSet READ allowNavigateQuestionSet WRITE setallowNavigateQuestionSet)
    Q_PROPERTY(bool allowResubmitResponse READ allowResubmitResponse WRITE setallowResubmitResponse)
    Q_PROPERTY(bool showSummaryOnAssessmentCompletion READ showSummaryOnAssessmentCompletion WRITE
                   setshowSummaryOnAssessmentCompletion)
    Q_PROPERTY(bool showAnswerOnIncorrectResponse READ showAnswerOnIncorrectResponse WRITE
                   setshowAnswerOnIncorrectResponse)
    Q_PROPERTY(bool showFeedback READ showFeedback WRITE setshowFeedback)
    Q_PROPERTY(int questionCount READ questionCount WRITE setquestionCount)
    Q_PROPERTY(int startingQuestionNumber READ startingQuestionNumber WRITE setstartingQuestionNumber)
    Q_PROPERTY(int allowedTime READ allowedTime WRITE setallowedTime)
    Q_PROPERTY(QString currentAssessmentSectionId READ currentAssessmentSectionId WRITE
                   setcurrentAssessmentSectionId)
    Q_PROPERTY(QString title READ title WRITE settitle)
    Q_PROPERTY(QString description READ description WRITE setdescription)
    Q_PROPERTY(bool scored READ scored WRITE setscored)
    Q_PROPERTY(QVariantMap assessmentSectionConfigurations READ assessmentSectionConfigurations WRITE
                   setassessmentSectionConfigurations)

public:
    /// The settings that each getter names.
    explicit AssessmentOptions(QObject* parent = nullptr);

    /// Set by PresenterAssessment::start(), whatever it was; empty at first.
    QString assessmentToken() const { return m_assessmentToken; }
    /// Whether a learner may go on without an answer; false at first.
    bool allowSkipQuestion() const { return m_allowSkipQuestion; }
    /// Whether a learner may go back and forth between the questions; false at first.
    bool allowNavigateQuestionSet() const { return m_allowNavigateQuestionSet; }
    /// Whether a learner may change an answer; true at first.
    bool allowResubmitResponse() const { return m_allowResubmitResponse; }
    /// Whether the learner sees a summary at the end; false at first.
    bool showSummaryOnAssessmentCompletion() const { return m_showSummaryOnAssessmentCompletion; }
    /// Whether the learner sees the right answer after a wrong one; false at first.
    bool showAnswerOnIncorrectResponse() const { return m_showAnswerOnIncorrectResponse; }
    /// Whether the learner is told how the answer was; false at first.
    bool showFeedback() const { return m_showFeedback; }
    /// How many questions there are; 1 at first.
    int questionCount() const { return m_questionCount; }
    /// The question to begin with; 0, as at first, for the first one.
    int startingQuestionNumber() const { return m_startingQuestionNumber; }
    /// Seconds for all questions together; 0 at first. Sent as it is: what 0 means is for the devices to say.
    int allowedTime() const { return m_allowedTime; }
    /// The section that the questions belong to; empty at first, for none.
    QString currentAssessmentSectionId() const { return m_currentAssessmentSectionId; }
    /// The title that learners read; empty at first.
    QString title() const { return m_title; }
    /// The description that learners read; empty at first.
    QString description() const { return m_description; }
    /// Whether the answers count towards a score; false at first.
    bool scored() const { return m_scored; }
    /// Settings of the sections; {"leveled": false} at first.
    QVariantMap assessmentSectionConfigurations() const { return m_assessmentSectionConfigurations; }

public Q_SLOTS:
    ///@{
    /// Stores the value unchanged; emits nothing. The getter of the same name tells what it means.
    void setassessmentToken(QString assessmentToken) { m_assessmentToken = assessmentToken; }
    void setallowSkipQuestion(bool allowSkipQuestion) { m_allowSkipQuestion = allowSkipQuestion; }
    void setallowNavigateQuestionSet(bool allowNavigateQuestionSet)
    {
        m_allowNavigateQuestionSet = allowNavigateQuestionSet;
    }
    void setallowResubmitResponse(bool allowResubmitResponse)
    {
        m_allowResubmitResponse = allowResubmitResponse;
    }
    void setshowSummaryOnAssessmentCompletion(bool showSummaryOnAssessmentCompletion)
    {
        m_showSummaryOnAssessmentCompletion = showSummaryOnAssessmentCompletion;
    }
    void setshowAnswerOnIncorrectResponse(bool showAnswerOnIncorrectResponse)
    {
        m_showAnswerOnIncorrectResponse = showAnswerOnIncorrectResponse;
    }
    void setshowFeedback(bool showFeedback) { m_showFeedback = showFeedback; }
    void setquestionCount(int questionCount) { m_questionCount = questionCount; }
    void setstartingQuestionNumber(int questionNumber) { m_startingQuestionNumber = questionNumber; }
    void setallowedTime(int allowedTime) { m_allowedTime = allowedTime; }
    void setcurrentAssessmentSectionId(QString currentAssessmentSectionId)
    {
        m_currentAssessmentSectionId = currentAssessmentSectionId;
    }
    void settitle(QString title) { m_title = title; }
    void setdescription(QString description) { m_description = description; }
    void setscored(bool scored) { m_scored = scored; }
    void setassessmentSectionConfigurations(QVariantMap assessmentSectionConfigurations)
    {
        m_assessmentSectionConfigurations = assessmentSectionConfigurations;
    }
    ///@}

private:
    QString m_assessmentToken = QStringLiteral("");
    bool m_allowSkipQuestion = false;
    bool m_allowNavigateQuestionSet = false;
    bool m_allowResubmitResponse = true;
    bool m_showSummaryOnAssessmentCompletion = false;
    bool m_showAnswerOnIncorrectResponse = false;
    bool m_showFeedback = false;
    int m_questionCount = 1;
    int m_startingQuestionNumber = 0;
    int m_allowedTime = 0;
    QString m_currentAssessmentSectionId = QStringLiteral("");
    QString m_title = QStringLiteral("");
    QString m_description = QStringLiteral("");
    bool m_scored = false;
    QVariantMap m_assessmentSectionConfigurations;
};

} // namespace Calyx
