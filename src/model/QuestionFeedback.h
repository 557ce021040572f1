#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QObject>
#include <QVariant>

namespace Calyx {

/// Answer and feedback state of a question. Each getter is a Qt property and a key of the JSON; an invalid
/// value is written as null. The learners' devices carry it out.
class CALYXCLIENT_EXPORT QuestionFeedback : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool showFeedback READ showFeedback WRITE setshowFeedback)
    Q_PROPERTY(bool showCorrectAnswer READ showCorrectAnswer WRITE setshowCorrectAnswer)
    Q_PROPERTY(QVariant correctAnswer READ correctAnswer WRITE setcorrectAnswer)
    Q_PROPERTY(QVariant activityScoreStatus READ activityScoreStatus WRITE setactivityScoreStatus)
    Q_PROPERTY(QVariant activityResponseStatus READ activityResponseStatus WRITE setactivityResponseStatus)
    Q_PROPERTY(QVariantList correctOptions READ correctOptions WRITE setcorrectOptions)
    Q_PROPERTY(bool allowResubmit READ allowResubmit WRITE setallowResubmit)
    Q_PROPERTY(QVariant correctFeedback READ correctFeedback WRITE setcorrectFeedback)
    Q_PROPERTY(QVariant inCorrectFeedback READ inCorrectFeedback WRITE setinCorrectFeedback)
    Q_PROPERTY(QVariant answer READ answer WRITE setanswer)
    Q_PROPERTY(QVariant jsonAnswer READ jsonAnswer WRITE setjsonAnswer)
    Q_PROPERTY(QVariantList optionAnswers READ optionAnswers WRITE setoptionAnswers)
    Q_PROPERTY(QVariantList optionFeedbacks READ optionFeedbacks WRITE setoptionFeedbacks)
    Q_PROPERTY(int numberOfRetries READ numberOfRetries WRITE setnumberOfRetries)
    Q_PROPERTY(int numberOfRetriesRemaining READ numberOfRetriesRemaining WRITE setnumberOfRetriesRemaining)
    Q_PROPERTY(QVariant remainingTime READ remainingTime WRITE setremainingTime)

public:
    /// The state of a question that nobody has answered.
    explicit QuestionFeedback(QObject* parent = nullptr);

    /// Whether the learner reads correctFeedback() or inCorrectFeedback(); false at first.
    bool showFeedback() const { return m_showFeedback; }
    /// Whether the learner sees the right answer; false at first.
    bool showCorrectAnswer() const { return m_showCorrectAnswer; }
    /// The right answer to a question without options; invalid at first.
    QVariant correctAnswer() const { return m_correctAnswer; }
    /// How the answer was scored, in the service's own words; invalid at first.
    QVariant activityScoreStatus() const { return m_activityScoreStatus; }
    /// How far the answer has come, in the service's own words; invalid at first.
    QVariant activityResponseStatus() const { return m_activityResponseStatus; }
    /// The right options, sent as they are: their form is for the devices to say. Empty at first.
    QVariantList correctOptions() const { return m_correctOptions; }
    /// Learners may resubmit unless told otherwise.
    bool allowResubmit() const { return m_allowResubmit; }
    /// What the learner reads after a right answer; invalid at first.
    QVariant correctFeedback() const { return m_correctFeedback; }
    /// What the learner reads after a wrong answer; invalid at first.
    QVariant inCorrectFeedback() const { return m_inCorrectFeedback; }
    /// The answer given before to a question without options; invalid at first.
    QVariant answer() const { return m_answer; }
    /// The answer given before where it is more than a text; invalid at first.
    QVariant jsonAnswer() const { return m_jsonAnswer; }
    /// The options answered before: maps that hold "activityOptionId".
    QVariantList optionAnswers() const { return m_optionAnswers; }
    /// What the learner reads about each option; empty at first.
    QVariantList optionFeedbacks() const { return m_optionFeedbacks; }
    /// How often the learner may try again; 0 at first.
    int numberOfRetries() const { return m_numberOfRetries; }
    /// 99 tells the device that the question was answered before.
    int numberOfRetriesRemaining() const { return m_numberOfRetriesRemaining; }
    /// The time that is left for the answer; invalid at first, for no limit.
    QVariant remainingTime() const { return m_remainingTime; }

public Q_SLOTS:
    ///@{
    /// Stores the value unchanged; emits nothing. The getter of the same name tells what it means.
    void setshowFeedback(bool showFeedback) { m_showFeedback = showFeedback; }
    void setshowCorrectAnswer(bool showCorrectAnswer) { m_showCorrectAnswer = showCorrectAnswer; }
    void setcorrectAnswer(QVariant correctAnswer) { m_correctAnswer = correctAnswer; }
    void setactivityScoreStatus(QVariant activityScoreStatus) { m_activityScoreStatus = activityScoreStatus; }
    void setactivityResponseStatus(QVariant activityResponseStatus)
    {
        m_activityResponseStatus = activityResponseStatus;
    }
    void setcorrectOptions(QVariantList correctOptions) { m_correctOptions = correctOptions; }
    void setallowResubmit(bool allowResubmit) { m_allowResubmit = allowResubmit; }
    void setcorrectFeedback(QVariant correctFeedback) { m_correctFeedback = correctFeedback; }
    void setinCorrectFeedback(QVariant inCorrectFeedback) { m_inCorrectFeedback = inCorrectFeedback; }
    void setanswer(QVariant answer) { m_answer = answer; }
    void setjsonAnswer(QVariant jsonAnswer) { m_jsonAnswer = jsonAnswer; }
    void setoptionAnswers(QVariantList optionAnswers) { m_optionAnswers = optionAnswers; }
    void setoptionFeedbacks(QVariantList optionFeedbacks) { m_optionFeedbacks = optionFeedbacks; }
    void setnumberOfRetries(int numberOfRetries) { m_numberOfRetries = numberOfRetries; }
    void setnumberOfRetriesRemaining(int numberOfRetriesRemaining)
    {
        m_numberOfRetriesRemaining = numberOfRetriesRemaining;
    }
    void setremainingTime(QVariant remainingTime) { m_remainingTime = remainingTime; }
    ///@}

private:
    bool m_showFeedback = false;
    bool m_showCorrectAnswer = false;
    QVariant m_correctAnswer;
    QVariant m_activityScoreStatus;
    QVariant m_activityResponseStatus;
    QVariantList m_correctOptions;
    bool m_allowResubmit = true;
    QVariant m_correctFeedback;
    QVariant m_inCorrectFeedback;
    QVariant m_answer;
    QVariant m_jsonAnswer;
    QVariantList m_optionAnswers;
    QVariantList m_optionFeedbacks;
    int m_numberOfRetries = 0;
    int m_numberOfRetriesRemaining = 0;
    QVariant m_remainingTime;
};

} // namespace Calyx
