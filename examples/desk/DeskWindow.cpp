#include "DeskWindow.h"

#include "LessonPage.h"

// Most colours are the system's, be they dark or light.
static const char look[] = R"(
QGroupBox { font-weight: bold; background: palette(base); border: 1px solid palette(mid); border-radius: 6px; margin-top: 22px; padding: 8px; }
QGroupBox > * { font-weight: normal; }
QGroupBox::title { subcontrol-origin: margin; left: 2px; }
QGroupBox QListWidget, QGroupBox QGraphicsView { border: 0; background: palette(base); }
#notice { padding: 8px; background: #fdf1f0; border: 1px solid #e3b0ab; border-radius: 6px; }
#notice QLabel { color: #6d1f18; }
)";

DeskWindow::DeskWindow(const QString& server) : m_lesson(new LessonPage(&m_classroom))
{
    setWindowTitle(tr("Desk"));
    setStyleSheet(QLatin1String(look));
    resize(1180, 720);
    m_server->setText(server);
    m_pages->addWidget(makeLogin());
    m_pages->addWidget(m_lesson);
    auto* close = button(tr("&Dismiss"), tr("Close this message"));
    arrange(m_notice, QBoxLayout::LeftToRight, {m_noticeText, close});
    m_notice->setObjectName(QStringLiteral("notice"));
    m_notice->hide();
    m_noticeText->setWordWrap(true);
    m_noticeText->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setContentsMargins(12, 12, 12, 4);
    setCentralWidget(arrange(new QWidget, QBoxLayout::TopToBottom, {m_notice, m_pages}));
    m_progress->setRange(0, 0); // nobody knows how long it takes
    m_progress->setMaximumWidth(160);
    m_progress->setAccessibleName(tr("Progress"));
    statusBar()->addPermanentWidget(m_progress);
    statusBar()->addPermanentWidget(m_cancel);

    connect(close, &QPushButton::clicked, m_notice, &QWidget::hide);
    connect(m_cancel, &QPushButton::clicked, &m_classroom, &Classroom::giveUp);
    connect(&m_classroom, &Classroom::busy, this, &DeskWindow::setBusy);
    connect(&m_classroom, &Classroom::failed, this, &DeskWindow::showFailure);
    connect(&m_classroom, &Classroom::news, this,
            [this](const QString& text) { statusBar()->showMessage(text); });
    connect(&m_classroom, &Classroom::stageChanged, this, &DeskWindow::setStage);
    setBusy(QString());
}

QWidget* DeskWindow::makeLogin()
{
    auto* box = new QGroupBox(tr("Log in to your classroom"));
    auto* form = new QFormLayout(box);
    form->addRow(tr("&Service"), m_server);
    form->addRow(tr("&User name"), m_user);
    form->addRow(tr("&Password"), m_password);
    form->addRow(m_logIn);
    box->setMinimumWidth(400);
    m_server->setPlaceholderText(QStringLiteral("https://classroom.example"));
    m_password->setEchoMode(QLineEdit::Password);
    for (QLineEdit* edit : {m_server, m_user, m_password}) {
        connect(edit, &QLineEdit::textChanged, this, &DeskWindow::refreshLogin);
        connect(edit, &QLineEdit::returnPressed, m_logIn, &QPushButton::click);
    }
    connect(m_logIn, &QPushButton::clicked, this, &DeskWindow::logIn);
    auto* page = new QWidget;
    (new QGridLayout(page))->addWidget(box, 0, 0, Qt::AlignCenter);
    return page;
}

void DeskWindow::logIn()
{
    QString server = m_server->text().trimmed();
    if (!server.contains(QLatin1String("://"))) // people leave that out
        server.prepend(QLatin1String("https://"));
    m_classroom.begin(tr("Logging in to %1\u2026").arg(server),
                      [server, user = m_user->text(), password = m_password->text()](Classroom* classroom) {
                          classroom->logIn(server, user, password);
                      });
}

void DeskWindow::refreshLogin()
{
    QLineEdit* missing = nullptr;
    for (QLineEdit* edit : {m_password, m_user, m_server}) {
        if (edit->text().trimmed().isEmpty())
            missing = edit;
    }
    m_pages->widget(0)->setFocusProxy(missing ? missing : m_password);
    allow(m_logIn,
          {m_busy, missing ? tr("Fill in the service, your user name and your password first.") : QString()});
}

void DeskWindow::showFailure(const QString& what, const QString& advice)
{
    m_noticeText->setText(tr("<b>%1</b>%2").arg(what.toHtmlEscaped(), Qt::convertFromPlainText(advice)));
    m_notice->show();
    QAccessibleEvent alert(m_noticeText, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void DeskWindow::setStage(Classroom::Stage stage)
{
    m_pages->setCurrentIndex(stage == Classroom::LoggedOut ? 0 : 1);
    if (stage == Classroom::Ready)
        m_password->clear();
    if (stage == Classroom::Lost)
        showFailure(tr("The connection to the lesson is lost"),
                    tr("The lesson goes on without you: reconnect to take it up again."));
}

void DeskWindow::setBusy(const QString& what)
{
    const bool isBusy = !what.isEmpty();
    m_busy = what;
    statusBar()->showMessage(what);
    m_progress->setVisible(isBusy);
    m_cancel->setVisible(isBusy);
    refreshLogin();
    if (isBusy)
        m_notice->hide();
    // By Tab a field's text is selected: one types over a wrong password.
    (isBusy ? m_cancel : m_pages->currentWidget())->setFocus(Qt::TabFocusReason);
}
