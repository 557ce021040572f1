#pragma once

#include "Classroom.h"

#include <QMainWindow>
#include <QThread>

class LessonPage;
class LoginPage;
class Notice;
class RemoteControl;
class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;

/// The desk's window: brings the pages and the classroom, which is on another thread, together.
class DeskWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit DeskWindow(const QString& server = QString());
    /// Ends the lesson and logs out, which can take the service's time; the window is gone by then.
    ~DeskWindow() override;

private:
    void layOut();
    void connectPages();
    void connectClassroom();
    /// Has the classroom do \p operation, and goes on.
    template<typename Operation>
    void tell(Operation operation);
    /// The same for what can take its time and ends with finished(); shows \p what meanwhile.
    template<typename Operation>
    void begin(const QString& what, Operation operation);
    void setBusy(const QString& what);
    void onStage(Classroom::Stage stage, const QString& code);
    void endLesson();
    void onFinished();
    void connectRemote();

    QThread m_thread;
    Classroom* m_classroom;
    Classroom::Stage m_stage = Classroom::LoggedOut;
    LoginPage* m_login;
    LessonPage* m_lesson;
    RemoteControl* m_remote;
    QStackedWidget* m_pages;
    Notice* m_notice;
    QLabel* m_message;
    QProgressBar* m_progress;
    QPushButton* m_cancel;
};
