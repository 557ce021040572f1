#pragma once

#include "Classroom.h"
#include "PollBar.h"

#include <QTimer>
#include <QWidget>

class AnswerChart;
class CardDeck;
class LearnerList;
class QLabel;
class QPushButton;

/// The lesson: its code, the learners, the poll and its answers, the cards.
class LessonPage : public QWidget
{
    Q_OBJECT

public:
    LessonPage();

    CardDeck* cards() const { return m_cards; }
    LearnerList* learners() const { return m_learners; }
    void setStage(Classroom::Stage stage, const QString& code);
    /// Closed for what needs the service while \p busyWith is not empty.
    void setBusy(const QString& busyWith);
    void takeFocus();

    void join(const QString& deviceId, const QString& name, const QString& deviceType);
    void leave(const QString& deviceId);
    void onPollStarted(const QString& answerId);
    void onPollPaused(bool isPaused);
    void onPollStopped();
    void onAnswer(const QString& deviceId, const QString& answerId, const QString& answer);
    /// As the button does, where that can be pressed.
    void pressPause(bool pauses);
    void showRemote(const QString& text);

Q_SIGNALS:
    void startLesson();
    void reconnect();
    void endLesson();
    void logOut();
    void startPoll(const PollKind& kind, int options);
    void pausePoll(bool isToPause);
    void stopPoll();

private:
    QWidget* makeHeader();
    QWidget* makePoll();
    QWidget* makeLearners();
    QWidget* makeCards();
    void refresh();
    void showAnswers();
    void showAnswersSoon();

    Classroom::Stage m_stage = Classroom::Ready;
    QString m_busyWith;
    PollBar::State m_pollState = PollBar::NoPoll;
    PollKind m_kind;
    Tally m_tally;
    QString m_answerId;
    QTimer m_chartTimer;
    QLabel* m_code;
    QLabel* m_codeHint;
    QLabel* m_state;
    QLabel* m_question;
    QLabel* m_count;
    QLabel* m_remote;
    QPushButton* m_start;
    QPushButton* m_end;
    QPushButton* m_logOut;
    PollBar* m_poll;
    AnswerChart* m_chart;
    LearnerList* m_learners;
    CardDeck* m_cards;
};
