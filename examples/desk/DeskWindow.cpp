#include "DeskWindow.h"

#include "CardDeck.h"
#include "LearnerList.h"
#include "LessonPage.h"
#include "LoginPage.h"
#include "Notice.h"
#include "PollPanel.h"
#include "RemoteControl.h"
#include "Theme.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>

#include <functional>

DeskWindow::DeskWindow(const QString& server)
    : m_classroom(new Classroom)
    , m_login(new LoginPage(server))
    , m_lesson(new LessonPage)
    , m_remote(new RemoteControl(this, m_lesson->cards(), m_lesson->poll()))
{
    layOut();
    connectPages();
    connectClassroom();
    connectRemote();
    m_classroom->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_classroom, &QObject::deleteLater);
    m_thread.start();
    m_login->takeFocus();
}

DeskWindow::~DeskWindow()
{
    m_classroom->disconnect(this);
    tell(&Classroom::shutDown);
    m_thread.wait();
}

void DeskWindow::layOut()
{
    setWindowTitle(QStringLiteral("Desk"));
    resize(1180, 720);
    m_notice = new Notice;
    m_pages = new QStackedWidget;
    m_pages->addWidget(m_login);
    m_pages->addWidget(m_lesson);
    auto* content = new QWidget;
    auto* box = new QVBoxLayout(content);
    box->setContentsMargins(16, 16, 16, 0);
    box->setSpacing(12);
    box->addWidget(m_notice);
    box->addWidget(m_pages, 1);
    setCentralWidget(content);

    m_progress = new QProgressBar;
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    m_progress->setFixedSize(160, 12);
    Theme::describe(m_progress, QStringLiteral("Progress"), QString());
    m_cancel = Theme::button(QStringLiteral("&Cancel"), QStringLiteral("Do not wait any longer"));
    statusBar()->setSizeGripEnabled(false);
    statusBar()->setContentsMargins(10, 2, 10, 6);
    m_message = Theme::caption(QString());
    statusBar()->addWidget(m_message, 1);
    statusBar()->addPermanentWidget(m_progress);
    statusBar()->addPermanentWidget(m_cancel);
    setBusy(QString());
}

template<typename Operation>
void DeskWindow::tell(Operation operation)
{
    Classroom* const classroom = m_classroom;
    QMetaObject::invokeMethod(
        classroom, [classroom, operation] { std::invoke(operation, classroom); }, Qt::QueuedConnection);
}

template<typename Operation>
void DeskWindow::begin(const QString& what, Operation operation)
{
    m_notice->hide();
    setBusy(what);
    tell(operation);
}

void DeskWindow::setBusy(const QString& what)
{
    m_progress->setVisible(!what.isEmpty());
    m_progress->setAccessibleDescription(what);
    m_cancel->setVisible(!what.isEmpty());
    m_message->setText(what);
    m_login->setBusy(what);
    m_lesson->setBusy(what);
    if (!what.isEmpty())
        m_cancel->setFocus();
}

void DeskWindow::connectPages()
{
    connect(m_login, &LoginPage::logIn, this,
            [this](const QString& server, const QString& user, const QString& password) {
                begin(QStringLiteral("Logging in to %1\u2026").arg(server),
                      [=](Classroom* classroom) { classroom->logIn(server, user, password); });
            });
    connect(m_lesson, &LessonPage::startLesson, this,
            [this] { begin(QStringLiteral("Starting the lesson\u2026"), &Classroom::startLesson); });
    connect(m_lesson, &LessonPage::reconnect, this,
            [this] { begin(QStringLiteral("Reconnecting\u2026"), &Classroom::reconnect); });
    connect(m_lesson, &LessonPage::endLesson, this, &DeskWindow::endLesson);
    connect(m_lesson, &LessonPage::logOut, this,
            [this] { begin(QStringLiteral("Logging out\u2026"), &Classroom::logOut); });
    PollPanel* const poll = m_lesson->poll();
    connect(poll, &PollPanel::start, this, [this](const PollKind& kind, int options) {
        tell([=](Classroom* classroom) { classroom->startPoll(kind, options); });
    });
    connect(poll, &PollPanel::pause, this,
            [this](bool isToPause) { tell([=](Classroom* classroom) { classroom->setPaused(isToPause); }); });
    connect(poll, &PollPanel::stop, this, [this] { tell(&Classroom::stopPoll); });
    CardDeck* const cards = m_lesson->cards();
    connect(cards, &CardDeck::cardToShow, this, [this](const QByteArray& png) {
        m_message->setText(QStringLiteral("Showing the card\u2026"));
        tell([=](Classroom* classroom) { classroom->showCard(png); });
    });
    connect(cards, &CardDeck::refused, this, [this](const QString& name, const QString& reason) {
        m_notice->show({name + QStringLiteral(" cannot be a card"), QString(), reason});
    });
    connect(m_cancel, &QPushButton::clicked, this, [this] { tell(&Classroom::giveUp); });
}

void DeskWindow::connectClassroom()
{
    PollPanel* const poll = m_lesson->poll();
    connect(m_classroom, &Classroom::finished, this, &DeskWindow::onFinished);
    connect(m_classroom, &Classroom::failed, m_notice, &Notice::show);
    connect(m_classroom, &Classroom::stageChanged, this, &DeskWindow::onStage);
    connect(m_classroom, &Classroom::learnerJoined, m_lesson->learners(), &LearnerList::join);
    connect(m_classroom, &Classroom::learnerLeft, m_lesson->learners(), &LearnerList::leave);
    connect(m_classroom, &Classroom::pollStarted, poll, &PollPanel::onStarted);
    connect(m_classroom, &Classroom::pollStopped, poll, &PollPanel::onStopped);
    connect(m_classroom, &Classroom::pollPaused, poll, &PollPanel::onPaused);
    connect(m_classroom, &Classroom::answered, poll, &PollPanel::onAnswer);
    connect(m_classroom, &Classroom::cardShown, this,
            [this] { m_message->setText(QStringLiteral("The learners have the card.")); });
}

void DeskWindow::endLesson()
{
    begin(QStringLiteral("Ending the lesson\u2026"), &Classroom::stopLesson);
}

void DeskWindow::onFinished()
{
    setBusy(QString());
    if (m_stage == Classroom::LoggedOut)
        m_login->takeFocus();
    else
        m_lesson->takeFocus();
}

void DeskWindow::onStage(Classroom::Stage stage, const QString& code)
{
    m_stage = stage;
    if (stage == Classroom::Ready)
        m_login->forgetPassword();
    if (stage == Classroom::Lost)
        m_notice->show({QStringLiteral("The connection to the lesson is lost"), QString(),
                        QStringLiteral("The lesson goes on without you: reconnect to take it up again.")});
    m_pages->setCurrentIndex(stage == Classroom::LoggedOut ? 0 : 1);
    m_lesson->setStage(stage, code);
}

void DeskWindow::connectRemote()
{
    connect(m_classroom, &Classroom::remoteCommand, m_remote, &RemoteControl::obey);
    connect(m_classroom, &Classroom::remoteLeft, this,
            [this] { m_lesson->showRemote(QStringLiteral("It has left.")); });
    connect(m_remote, &RemoteControl::heard, this, [this](const QString& words) {
        m_lesson->showRemote(QStringLiteral("Its last command: ") + words);
    });
    connect(m_remote, &RemoteControl::wantsToEndTheLesson, this, &DeskWindow::endLesson);
    connect(m_remote, &RemoteControl::wantsToLock, this,
            [this](bool isToLock) { tell([=](Classroom* classroom) { classroom->setLocked(isToLock); }); });
    connect(m_remote, &RemoteControl::replies, this, [this](const RemoteControl::Reply& reply) {
        tell([=](Classroom* classroom) {
            if (classroom->live())
                reply(classroom->live());
        });
    });
}
