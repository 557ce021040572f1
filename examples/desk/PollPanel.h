#pragma once

#include "PollBar.h"

#include <QFrame>
#include <QTimer>

class AnswerChart;
class QLabel;

/// The poll and its answers, live.
class PollPanel : public QFrame
{
    Q_OBJECT

public:
    PollPanel();

    /// Why no poll can be put; empty when one can.
    void setWhyNot(const QString& reason);
    void setLearnerCount(int count);
    /// No poll runs any more; with \p forgets, its answers go as well.
    void reset(bool forgets);
    /// As the button that pauses or resumes, where that can be done.
    void press(bool pauses) { m_bar->press(pauses); }

    void onStarted(const QString& answerId);
    void onPaused(bool isPaused);
    void onStopped() { reset(false); }
    void onAnswer(const QString& deviceId, const QString& answerId, const QString& answer);

Q_SIGNALS:
    void start(const PollKind& kind, int options);
    void pause(bool isToPause);
    void stop();
    void started();
    /// The answer of this device counts.
    void counted(const QString& deviceId);

private:
    void setState(PollBar::State state);
    void showAnswers();

    PollBar::State m_state = PollBar::NoPoll;
    QString m_whyNot;
    PollKind m_kind;
    Tally m_tally;
    QString m_answerId;
    int m_learners = 0;
    QTimer m_chartTimer;
    PollBar* m_bar;
    QLabel* m_question;
    QLabel* m_count;
    AnswerChart* m_chart;
};
