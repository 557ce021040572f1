#include "DeskWindow.h"

#include "CardDeck.h"
#include "LearnerList.h"
#include "LessonPage.h"
#include "LoginPage.h"
#include "Notice.h"
#include "Theme.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>

DeskWindow::DeskWindow(const QString& server)
    : m_classroom(new Classroom), m_login(new LoginPage(server)), m_lesson(new LessonPage)
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
    tell([](Classroom* classroom) { classroom->shutDown(); });
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
    m_progress->hide();
    m_cancel->hide();
}

template<typename Operation>
void DeskWindow::tell(Operation operation)
{
    Classroom* const classroom = m_classroom;
    QMetaObject::invokeMethod(
        classroom, [classroom, operation] { operation(classroom); }, Qt::QueuedConnection);
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
    connect(m_lesson, &LessonPage::startLesson, this, [this] {
        begin(QStringLiteral("Starting the lesson\u2026"),
              [](Classroom* classroom) { classroom->startLesson(); });
    });
    connect(m_lesson, &LessonPage::reconnect, this, [this] {
        begin(QStringLiteral("Reconnecting\u2026"), [](Classroom* classroom) { classroom->reconnect(); });
    });
    connect(m_lesson, &LessonPage::endLesson, this, [this] {
        begin(QStringLiteral("Ending the lesson\u2026"),
              [](Classroom* classroom) { classroom->stopLesson(); });
    });
    connect(m_lesson, &LessonPage::logOut, this, [this] {
        begin(QStringLiteral("Logging out\u2026"), [](Classroom* classroom) { classroom->logOut(); });
    });
    connect(m_lesson, &LessonPage::startPoll, this, [this](const PollKind& kind, int options) {
        tell([=](Classroom* classroom) { classroom->startPoll(kind, options); });
    });
    connect(m_lesson, &LessonPage::pausePoll, this,
            [this](bool isToPause) { tell([=](Classroom* classroom) { classroom->setPaused(isToPause); }); });
    connect(m_lesson, &LessonPage::stopPoll, this,
            [this] { tell([](Classroom* classroom) { classroom->stopPoll(); }); });
    CardDeck* const cards = m_lesson->cards();
    connect(cards, &CardDeck::cardToShow, this, [this](const QByteArray& png) {
        m_message->setText(QStringLiteral("Showing the card\u2026"));
        tell([=](Classroom* classroom) { classroom->showCard(png); });
    });
    connect(cards, &CardDeck::changed, this, &DeskWindow::tellCardToRemote);
    connect(cards, &CardDeck::refused, this, [this](const QString& name, const QString& reason) {
        m_notice->show({name + QStringLiteral(" cannot be a card"), QString(), reason});
    });
    connect(m_cancel, &QPushButton::clicked, this,
            [this] { tell([](Classroom* classroom) { classroom->giveUp(); }); });
}

void DeskWindow::connectClassroom()
{
    connect(m_classroom, &Classroom::finished, this, &DeskWindow::onFinished);
    connect(m_classroom, &Classroom::failed, m_notice, &Notice::show);
    connect(m_classroom, &Classroom::stageChanged, this, &DeskWindow::onStage);
    connect(m_classroom, &Classroom::learnerJoined, m_lesson, &LessonPage::join);
    connect(m_classroom, &Classroom::learnerLeft, m_lesson, &LessonPage::leave);
    connect(m_classroom, &Classroom::pollStarted, m_lesson, &LessonPage::onPollStarted);
    connect(m_classroom, &Classroom::pollStopped, m_lesson, &LessonPage::onPollStopped);
    connect(m_classroom, &Classroom::pollPaused, m_lesson, &LessonPage::onPollPaused);
    connect(m_classroom, &Classroom::answered, m_lesson, &LessonPage::onAnswer);
    connect(m_classroom, &Classroom::cardShown, this,
            [this] { m_message->setText(QStringLiteral("The learners have the card.")); });
    connect(m_classroom, &Classroom::remoteCommand, this, &DeskWindow::onRemoteCommand);
    connect(m_classroom, &Classroom::remoteLeft, this,
            [this] { m_lesson->showRemote(QStringLiteral("It has left.")); });
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
    if (stage == Classroom::LoggedOut)
        m_pages->setCurrentWidget(m_login);
    else
        m_pages->setCurrentWidget(m_lesson);
    m_lesson->setStage(stage, code);
}

// Learners' devices cannot be locked but by pausing what they are asked.
void DeskWindow::connectRemote()
{
    CardDeck* const cards = m_lesson->cards();
    const auto toPause = [this](const QVariantMap&) { m_lesson->pressPause(true); };
    const auto toResume = [this](const QVariantMap&) { m_lesson->pressPause(false); };
    const auto toCards = [cards](void (CardDeck::*operation)()) {
        return [cards, operation](const QVariantMap&) { (cards->*operation)(); };
    };
    const auto toTell = [this](auto operation) { return [=](const QVariantMap&) { tell(operation); }; };
    m_commands = {
        {QStringLiteral("pause"), {QStringLiteral("Pause"), toPause}},
        {QStringLiteral("resume"), {QStringLiteral("Resume"), toResume}},
        {QStringLiteral("lockAll"), {QStringLiteral("Lock all"), toPause}},
        {QStringLiteral("unlockAll"), {QStringLiteral("Unlock all"), toResume}},
        {QStringLiteral("nextCard"), {QStringLiteral("Next card"), toCards(&CardDeck::next)}},
        {QStringLiteral("previousCard"), {QStringLiteral("Previous card"), toCards(&CardDeck::previous)}},
        {QStringLiteral("pushCurrentCard"),
         {QStringLiteral("Show the card"), toCards(&CardDeck::showToLearners)}},
        {QStringLiteral("addImageCard"),
         {QStringLiteral("Add a picture"),
          [cards](const QVariantMap& picture) {
              cards->addDataUri(picture.value(QStringLiteral("name")).toString(),
                                picture.value(QStringLiteral("url")).toString());
          }}},
        {QStringLiteral("presenterActive"), {QStringLiteral("Here"), toTell([](Classroom* classroom) {
                                                 classroom->tellRemoteThatWeAreHere();
                                             })}},
        {QStringLiteral("requestLessonInfo"), {QStringLiteral("Here"), toTell([](Classroom* classroom) {
                                                   classroom->tellLessonToRemote(
                                                       QStringLiteral("Lesson at the desk"));
                                               })}},
        {QStringLiteral("requestLesson"),
         {QStringLiteral("Here"), [this](const QVariantMap&) { tellCardToRemote(); }}},
        {QStringLiteral("stopSession"),
         {QStringLiteral("End the lesson"), [this](const QVariantMap&) { Q_EMIT m_lesson->endLesson(); }}}};
}

void DeskWindow::onRemoteCommand(const QString& command, const QVariant& details)
{
    const auto known = m_commands.constFind(command);
    if (known == m_commands.constEnd())
        return;
    m_lesson->showRemote(QStringLiteral("Its last command: ") + known->words);
    known->run(details.toMap());
}

void DeskWindow::tellCardToRemote()
{
    const int card = m_lesson->cards()->current();
    const int cards = m_lesson->cards()->count();
    tell([=](Classroom* classroom) { classroom->tellCardToRemote(card, cards); });
}
