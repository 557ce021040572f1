#pragma once

#include "lesson/PollKinds.h"

#include <QString>
#include <QStringList>

/// What is right as an answer to a question: an answer, or several of which each is right. A key that was not
/// given finds nothing right.
class AnswerKey
{
public:
    AnswerKey() = default;
    /// \p text holds the right answers, divided by "|". Options are named by their ids or texts, in any order
    /// except of a sort; numbers are compared as numbers, words without regard to case.
    AnswerKey(const PollPlan& plan, const QString& text);

    bool isGiven() const { return !m_right.isEmpty(); }
    /// What is wrong with the text; empty when nothing is.
    QString fault() const { return m_fault; }
    bool isRight(const QString& answer) const { return m_right.contains(form(answer)); }
    /// How many options the first of the right answers has.
    int optionCount() const;

private:
    QString form(const QString& answer) const;
    QString faultIn(const QString& text) const;

    PollPlan m_plan;
    Tally m_reader; // of answers that name options
    QStringList m_right;
    QString m_first;
    QString m_fault;
};
