#pragma once

#include "lesson/AnswerKey.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

/// A question of an assessment.
struct AssessmentItem
{
    PollPlan plan;
    QString text;
    /// What the options say; empty when they have labels only.
    QStringList choices;
    AnswerKey key;
    /// Under which its answers come back.
    QString id;
};

/// What is asked in an assessment, and what learners may do in it.
struct AssessmentPlan
{
    QVector<AssessmentItem> items;
    QString title;
    int seconds = 0; ///< the time allowed; 0 is no limit
    bool maySkip = false;
    bool mayNavigate = false;
    bool mayResubmit = true;
    bool showsSummary = false;
};

/// The answers in an assessment, by learner and by question. Questions are numbered from 1.
class AssessmentSheet
{
public:
    enum Mark { NoAnswer, Unmarked, Wrong, Right };

    explicit AssessmentSheet(const AssessmentPlan& plan) : m_plan(plan) {}

    const AssessmentPlan& plan() const { return m_plan; }
    int questions() const { return m_plan.items.size(); }
    /// The question of that id; 0 when there is none.
    int numberOf(const QString& itemId) const;

    /// The learner takes part from now on; \p name stays when he has gone.
    void enter(const QString& deviceId, const QString& name);
    bool takesPart(const QString& deviceId) const { return m_names.contains(deviceId); }
    /// In the order in which they came.
    QStringList participants() const { return m_order; }
    QString name(const QString& deviceId) const { return m_names.value(deviceId); }

    /// False when the answer does not count: from nobody who takes part, or a second one where only the first
    /// counts.
    bool addAnswer(const QString& deviceId, int number, const QString& answer);

    bool hasAnswered(const QString& deviceId, int number) const;
    QString answer(const QString& deviceId, int number) const;
    Mark mark(const QString& deviceId, int number) const;
    bool isFinished(const QString& deviceId) const;

    /// Of one learner.
    int rightAnswers(const QString& deviceId) const;
    /// Of one question.
    int answers(int number) const;
    int rightAnswers(int number) const;
    /// Questions that have a right answer.
    int markedQuestions() const;

private:
    AssessmentPlan m_plan;
    QStringList m_order;
    QHash<QString, QString> m_names;               // by device id
    QHash<QString, QHash<int, QString>> m_answers; // by device id, then by number
};
