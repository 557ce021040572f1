#pragma once

#include "Cards.h"
#include "Learners.h"
#include "Polls.h"

#include <CalyxClient/Lesson>

/// The desk's window: the page to log in, that of the lesson, what went wrong, and what is going on.
class DeskWindow : public QMainWindow
{
    Q_DECLARE_TR_FUNCTIONS(DeskWindow)
    using Lesson = Calyx::Lesson;

public:
    explicit DeskWindow(const QUrl& server = QUrl());

protected:
    /// Asks first, while learners are in the lesson.
    void closeEvent(QCloseEvent* event) override { event->setAccepted(mayEnd(tr("Close the desk"))); }

private:
    void layOut();
    QWidget* makeLogin();
    QWidget* makeLesson();
    QWidget* notice(QLabel* text, QPushButton* press);
    void refresh();
    void refreshLogin();
    void refreshBusy();
    void tellAttempt();
    void tell(const QString& text);
    void tellCommand(Lesson::RemoteCommand command, bool obeyed);
    bool mayEnd(const QString& what);
    void save();

    Lesson m_lesson;
    QLineEdit* m_server = described(new QLineEdit, tr("The address of the classroom service"));
    QLineEdit* m_user = described(new QLineEdit, tr("Your name at the service"));
    QLineEdit* m_password = described(new QLineEdit, tr("Your password there"));
    QPushButton* m_logIn = button(tr("&Log in"), tr("Log in to the service"));

    QLabel* m_qrCode = new QLabel;
    QLabel* m_code = plainLabel();
    QLabel* m_address = plainLabel();
    QPushButton* m_start = button(tr("Start &lesson"), tr("Open the lesson, so that learners can join"));
    QPushButton* m_end = button(tr("&End lesson"), tr("End the lesson for everybody"));
    QPushButton* m_summary = button(tr("Summar&y\u2026"), tr("How polls and assessments came out"));
    QPushButton* m_save = button(tr("Save &results\u2026"), tr("Write who answered what to a file"));
    QPushButton* m_logOut = button(tr("Log &out"), tr("End what is open and log out"));
    Polls* m_polls = new Polls(&m_lesson);
    QLabel* m_remote = plainLabel(tr("It can join with the lesson\u2019s code."));

    QStackedWidget* m_pages = new QStackedWidget;
    QLabel* m_noticeText = plainLabel();
    QLabel* m_lostText = plainLabel();
    QPushButton* m_dismiss = button(tr("&Dismiss"), tr("Close this message"));
    QPushButton* m_retry = button(tr("Try &now"), tr("Try to open the channel at once"));
    QWidget* m_notice = notice(m_noticeText, m_dismiss);
    QWidget* m_lost = notice(m_lostText, m_retry);
    QTimer m_clock; // while the lesson finds its way back
    QProgressBar* m_progress = described(new QProgressBar, tr("How far it is"), tr("Progress"));
    QPushButton* m_cancel = button(tr("&Cancel"), tr("Do not wait any longer"));
};
