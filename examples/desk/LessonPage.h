#pragma once

#include "AnswerChart.h"
#include "CardDeck.h"

/// The lesson: its code, the learners, the poll and its answers, the cards, the remote control.
class LessonPage : public QWidget
{
    Q_OBJECT

public:
    explicit LessonPage(Classroom* classroom);

private:
    enum PollState { NoPoll, Running, Paused };

    void layOut();
    void connectClassroom();
    void setStage(Classroom::Stage stage, const QString& code);
    void join(const Calyx::Learner& learner);
    void chooseKind(int index);
    void startPoll();
    void count(const QString& deviceId, const QString& answerId, int time, const QString& answer);
    void refresh();
    void showLock(const QString& deviceId);
    void obey(const QString& type, const QVariantMap& details);

    Classroom* m_classroom;
    Classroom::Stage m_stage = Classroom::LoggedOut;
    QString m_code;
    QString m_busy; // with what
    bool m_isLocked = false;
    PollState m_poll = NoPoll;
    QString m_answerId; // of the answers that count
    QString m_question; // what they answer
    Tally m_tally;
    QTimer m_redraw;
    QHash<QString, QListWidgetItem*> m_learners; // by device id

    QLabel* m_state = new QLabel;
    QPushButton* m_start = button(QString(), tr("Open the lesson, so that learners can join"));
    QPushButton* m_end = button(tr("&End lesson"), tr("End the lesson for everybody"));
    QPushButton* m_logOut = button(tr("Log &out"), tr("End what is open and log out"));
    QGroupBox* m_learnerBox = new QGroupBox;
    QListWidget* m_learnerList =
        described(new QListWidget, tr("Who is here; a tick shows who has answered the poll"));
    QComboBox* m_kind = described(new QComboBox, tr("What the learners are asked for"));
    QSpinBox* m_options = described(new QSpinBox, tr("How many options the learners choose from"));
    QPushButton* m_ask = button(tr("Start &poll"), tr("Ask the learners"));
    QPushButton* m_pause = button(tr("Pa&use"), tr("Let nobody answer for the time being, or go on"));
    QPushButton* m_stop = button(tr("S&top poll"), tr("Take no more answers"));
    QLabel* m_answers = new QLabel;
    QtCharts::QChartView* m_chart = new QtCharts::QChartView;
    CardDeck* m_cards;
    QLabel* m_remote = new QLabel(tr("It can join with the lesson\u2019s code."));
};
