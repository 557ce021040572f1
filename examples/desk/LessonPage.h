#pragma once

#include "Classroom.h"

#include <QWidget>

class CardDeck;
class LearnerList;
class PollPanel;
class QLabel;
class QPushButton;

/// The lesson: its code, the learners, the poll, the cards.
class LessonPage : public QWidget
{
    Q_OBJECT

public:
    LessonPage();

    LearnerList* learners() const { return m_learners; }
    PollPanel* poll() const { return m_poll; }
    CardDeck* cards() const { return m_cards; }

    void setStage(Classroom::Stage stage, const QString& code);
    /// Closed for what needs the service while \p busyWith is not empty.
    void setBusy(const QString& busyWith);
    void takeFocus();
    void showRemote(const QString& text);

Q_SIGNALS:
    void startLesson();
    void reconnect();
    void endLesson();
    void logOut();

private:
    QWidget* makeHeader();
    QWidget* makeLearners();
    QWidget* makeCards();
    void refresh();

    Classroom::Stage m_stage = Classroom::Ready;
    QString m_busyWith;
    QLabel* m_code;
    QLabel* m_codeHint;
    QLabel* m_state;
    QLabel* m_remote;
    QPushButton* m_start;
    QPushButton* m_end;
    QPushButton* m_logOut;
    LearnerList* m_learners;
    PollPanel* m_poll;
    CardDeck* m_cards;
};
