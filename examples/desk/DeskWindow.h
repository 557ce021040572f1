#pragma once

#include "Classroom.h"
#include "Controls.h"

class LessonPage;

/// The desk's window: the page to log in, that of the lesson, what went wrong, and what is going on.
class DeskWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit DeskWindow(const QString& server = QString());

private:
    QWidget* makeLogin();
    void logIn();
    void refreshLogin();
    void showFailure(const QString& what, const QString& advice);
    void setStage(Classroom::Stage stage);
    void setBusy(const QString& what);

    Classroom m_classroom;
    QString m_busy;
    QLineEdit* m_server = described(new QLineEdit, tr("The address of the classroom service"));
    QLineEdit* m_user = described(new QLineEdit, tr("Your name at the service"));
    QLineEdit* m_password = described(new QLineEdit, tr("Your password there"));
    QPushButton* m_logIn = button(tr("&Log in"), tr("Log in to the service"));
    LessonPage* m_lesson;
    QStackedWidget* m_pages = new QStackedWidget;
    QFrame* m_notice = new QFrame;
    QLabel* m_noticeText = new QLabel;
    QProgressBar* m_progress = new QProgressBar;
    QPushButton* m_cancel = button(tr("&Cancel"), tr("Do not wait any longer"));
};
