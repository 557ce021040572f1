#pragma once

#include "calyxclient_export.h"

#include <QObject>
#include <QString>
#include <QVariant>

namespace Calyx {

/// The settings of an assessment, and the data of its start message.
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
    explicit AssessmentOptions(QObject* parent = nullptr);

    /// Set by PresenterAssessment::start().
    QString assessmentToken() const { return m_assessmentToken; }
    bool allowSkipQuestion() const { return m_allowSkipQuestion; }
    bool allowNavigateQuestionSet() const { return m_allowNavigateQuestionSet; }
    bool allowResubmitResponse() const { return m_allowResubmitResponse; }
    bool showSummaryOnAssessmentCompletion() const { return m_showSummaryOnAssessmentCompletion; }
    bool showAnswerOnIncorrectResponse() const { return m_showAnswerOnIncorrectResponse; }
    bool showFeedback() const { return m_showFeedback; }
    int questionCount() const { return m_questionCount; }
    int startingQuestionNumber() const { return m_startingQuestionNumber; }
    int allowedTime() const { return m_allowedTime; }
    QString currentAssessmentSectionId() const { return m_currentAssessmentSectionId; }
    QString title() const { return m_title; }
    QString description() const { return m_description; }
    bool scored() const { return m_scored; }
    QVariantMap assessmentSectionConfigurations() const { return m_assessmentSectionConfigurations; }

public Q_SLOTS:
    void setassessmentToken(QString assessmentToken);
    void setallowSkipQuestion(bool allowSkipQuestion);
    void setallowNavigateQuestionSet(bool allowNavigateQuestionSet);
    void setallowResubmitResponse(bool allowResubmitResponse);
    void setshowSummaryOnAssessmentCompletion(bool showSummaryOnAssessmentCompletion);
    void setshowAnswerOnIncorrectResponse(bool showAnswerOnIncorrectResponse);
    void setshowFeedback(bool showFeedback);
    void setquestionCount(int questionCount);
    void setstartingQuestionNumber(int startingQuestionNumber);
    void setallowedTime(int allowedTime);
    void setcurrentAssessmentSectionId(QString currentAssessmentSectionId);
    void settitle(QString title);
    void setdescription(QString description);
    void setscored(bool scored);
    void setassessmentSectionConfigurations(QVariantMap assessmentSectionConfigurations);

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
