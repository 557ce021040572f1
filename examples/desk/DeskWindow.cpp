#include "DeskWindow.h"

#include "Cards.h"
#include "Learners.h"
#include "Polls.h"

#include <qrencode.h>

using Calyx::Lesson;

// Most colours are the system's, be they dark or light.
static const char look[] = R"(
QGroupBox { font-weight: bold; background: palette(base); border: 1px solid palette(mid); border-radius: 6px; margin-top: 22px; padding: 8px; }
QGroupBox > * { font-weight: normal; }
QGroupBox::title { subcontrol-origin: margin; left: 2px; }
QAbstractItemView { border: 0; background: palette(base); }
#code { font-size: 22pt; font-weight: bold; }
#notice { padding: 8px; background: #fdf1f0; border: 1px solid #e3b0ab; border-radius: 6px; }
#notice QLabel { color: #6d1f18; }
)";

static QPixmap qrCode(const QString& text, int side)
{
    constexpr int margin = 4; // modules, without which readers do not find it
    QRcode* const code = QRcode_encodeString(text.toUtf8().constData(), 0, QR_ECLEVEL_M, QR_MODE_8, 1);
    if (!code)
        return {};
    const int width = code->width;
    QImage image(width + 2 * margin, width + 2 * margin, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int i = 0; i < width * width; ++i) {
        if (code->data[i] & 1)
            image.setPixelColor(margin + i % width, margin + i / width, Qt::black);
    }
    QRcode_free(code);
    return QPixmap::fromImage(image.scaled(side, side));
}

namespace {

class DeskWindow : public QMainWindow
{
    Q_DECLARE_TR_FUNCTIONS(DeskWindow)

public:
    explicit DeskWindow(const QUrl& server)
    {
        m_server->setText(server.toString());
        m_lesson.setName(QStringLiteral("desk"), tr("Lesson at the desk"));
        setWindowTitle(tr("Desk"));
        setStyleSheet(QLatin1String(look));
        resize(1180, 760);
        m_pages->addWidget(makeLogin());
        m_pages->addWidget(makeLesson());
        setContentsMargins(12, 12, 12, 4);
        setCentralWidget(arrange(new QWidget, QBoxLayout::TopToBottom, {m_lost, m_notice, m_pages}));
        m_progress->setMaximumWidth(160);
        statusBar()->addPermanentWidget(m_progress);
        statusBar()->addPermanentWidget(m_cancel);
        for (const auto change : {&Lesson::stateChanged, &Lesson::pollChanged, &Lesson::assessmentChanged})
            connect(&m_lesson, change, this, &DeskWindow::refresh);
        connect(&m_lesson, &Lesson::busyChanged, this, &DeskWindow::refreshBusy);
        connect(&m_lesson, &Lesson::secondsToAttemptChanged, this, &DeskWindow::tellAttempt);
        connect(&m_lesson, &Lesson::remoteCommand, this, [this](Lesson::RemoteCommand command, bool obeyed) {
            const QString text =
                obeyed ? tr("Its last command: %1") : tr("It wanted what could not be done: %1");
            m_remote->setText(text.arg(Lesson::commandName(command)));
        });
        // [failed]
        connect(&m_lesson, &Lesson::failed, this, [this](const Calyx::LessonError& error) {
            if (error.kind != Calyx::LessonError::Cancelled) // that is no news
                tell(error.text + QLatin1Char('\n') + error.advice);
        });
        // [failed]
        refreshBusy();
    }

protected:
    /// Asks first, while learners are in the lesson.
    void closeEvent(QCloseEvent* event) override { event->setAccepted(mayEnd(tr("Close the desk"))); }

private:
    static QWidget* notice(QLabel* text, QPushButton* press)
    {
        auto* frame = arrange(new QFrame, QBoxLayout::LeftToRight, {text, press});
        frame->setObjectName(QStringLiteral("notice"));
        text->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        frame->hide();
        return frame;
    }
    QWidget* makeLogin()
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
        auto* page = new QWidget;
        (new QGridLayout(page))->addWidget(box, 0, 0, Qt::AlignCenter);
        return page;
    }
    QWidget* makeLesson()
    {
        m_code->setObjectName(QStringLiteral("code"));
        m_code->setWordWrap(false);
        m_address->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        auto* cards = new Cards(&m_lesson, [this](const QString& text) { tell(text); });
        auto* remote = arrange(new QGroupBox(tr("Remote control")), QBoxLayout::TopToBottom, {m_remote});
        auto* columns = new QSplitter;
        columns->addWidget(new Learners(&m_lesson));
        columns->addWidget(m_polls);
        columns->addWidget(arrange(new QWidget, QBoxLayout::TopToBottom, {cards, remote}));
        columns->setStretchFactor(1, 1);
        columns->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        auto* header = across({m_qrCode, m_code, m_address, m_start, m_end, m_summary, m_save, m_logOut});
        return arrange(new QWidget, QBoxLayout::TopToBottom, {header, columns});
    }
    void refreshLogin()
    {
        QLineEdit* missing = nullptr;
        for (QLineEdit* edit : {m_password, m_user, m_server}) {
            if (edit->text().trimmed().isEmpty())
                missing = edit;
        }
        m_pages->widget(0)->setFocusProxy(missing ? missing : m_password);
        allow(m_logIn,
              {{m_lesson.isBusy(), tr("The service is being asked.")},
               {missing != nullptr, tr("Fill in the service, your user name and your password first.")}});
    }
    void refresh()
    {
        const Lesson::State state = m_lesson.state();
        const QString code = m_lesson.joinCode();
        const bool isOpen = !code.isEmpty();
        const bool isEmpty = m_lesson.polls().isEmpty() && m_lesson.assessments().isEmpty();
        allow(m_start,
              {{isOpen, tr("The lesson is open.")}, {m_lesson.isBusy(), tr("The service is being asked.")}});
        allow(m_end, {{!isOpen, tr("No lesson is open.")}});
        for (QPushButton* button : {m_summary, m_save})
            allow(button, {{isEmpty, tr("Nothing has been asked yet.")}});
        m_code->setText(code.left(3) + QLatin1Char(' ') + code.mid(3));
        m_address->setText(
            isOpen ? tr("Learners join at %1 with this code.").arg(m_lesson.joinAddress().toDisplayString())
                   : tr("Start a lesson, and learners can join."));
        m_qrCode->setVisible(isOpen);
        m_qrCode->setPixmap(qrCode(m_lesson.joinLink().toString(), 96));
        m_pages->widget(1)->setFocusProxy(isOpen ? m_polls : static_cast<QWidget*>(m_start));
        if (state == Lesson::LoggedIn)
            m_password->clear();
        if (state == Lesson::LoggingIn || state == Lesson::Starting)
            m_notice->hide();
        refreshLogin();
        tellAttempt();
        m_pages->setCurrentIndex(int(state != Lesson::LoggedOut && state != Lesson::LoggingIn));
    }
    void refreshBusy()
    {
        constexpr int percent = 100;
        m_progress->setRange(0, m_lesson.progress() < 0 ? 0 : percent);
        m_progress->setValue(qRound(m_lesson.progress() * percent));
        m_progress->setVisible(m_lesson.isBusy());
        m_cancel->setVisible(m_lesson.isBusy());
        refresh();
        // By Tab a field's text is selected: one types over a wrong password.
        (m_lesson.isBusy() ? m_cancel : m_pages->currentWidget())->setFocus(Qt::TabFocusReason);
    }
    // [attempt]
    void tellAttempt()
    {
        const int seconds = m_lesson.secondsToAttempt();
        const QString when =
            seconds > 0 ? tr("Trying again in %1 s.").arg(seconds) : tr("Trying again\u2026");
        m_lostText->setText(
            tr("The connection is lost. %1 What you do meanwhile is done when it is back.").arg(when));
        m_lost->setVisible(m_lesson.state() == Lesson::Reconnecting);
    }
    // [attempt]
    void tell(const QString& text)
    {
        m_noticeText->setText(text.trimmed());
        m_notice->show();
        QAccessibleEvent alert(m_noticeText, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
    bool mayEnd(const QString& what)
    {
        const int count = m_lesson.roster()->presentCount();
        if (m_lesson.joinCode().isEmpty() || count == 0)
            return true;
        QMessageBox box(QMessageBox::Question, what,
                        tr("A lesson with %n learners is open. It ends for everybody.", nullptr, count),
                        QMessageBox::Cancel, this);
        const QAbstractButton* yes = box.addButton(what, QMessageBox::AcceptRole);
        box.exec();
        return box.clickedButton() == yes;
    }
    void summarize()
    {
        QDialog dialog(this);
        dialog.setWindowTitle(tr("Summary"));
        dialog.resize(720, 420);
        auto* table = made<QTreeWidget>(tr("Each poll and assessment"), tr("Summary"));
        table->setHeaderLabels({tr("Asked"), tr("Answered"), tr("Right"), tr("Most frequent answer")});
        table->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        table->header()->setStretchLastSection(false);
        const QString of = tr("%1 of %2");
        for (const Calyx::Poll* poll : m_lesson.polls())
            new QTreeWidgetItem(
                table, {poll->title(), of.arg(poll->answered()).arg(poll->expected()),
                        poll->question().isMarked() ? QString::number(poll->rightAnswers()) : QString(),
                        poll->results()->mostFrequent().title()});
        for (const Calyx::Assessment* one : m_lesson.assessments())
            new QTreeWidgetItem(table, {one->title(), of.arg(one->finished()).arg(one->expected())});
        const int people = m_lesson.roster()->rowCount();
        arrange(&dialog, QBoxLayout::TopToBottom,
                {plainLabel(tr("Learners who took part: %1").arg(people)), table});
        dialog.layout()->setContentsMargins(12, 12, 12, 12);
        dialog.exec();
    }
    // [save]
    void save()
    {
        const QString name = QFileDialog::getSaveFileName(this, tr("Save the results"), tr("results.csv"),
                                                          tr("Results (*.csv *.json)"));
        if (!name.isEmpty())
            m_lesson.save(name);
    }
    // [save]

    Lesson m_lesson;
    QLineEdit* m_server = made<QLineEdit>(tr("The address of the classroom service"));
    QLineEdit* m_user = made<QLineEdit>(tr("Your name at the service"));
    QLineEdit* m_password = made<QLineEdit>(tr("Your password there"));
    // [log-in]
    QPushButton* m_logIn = button(tr("&Log in"), tr("Log in to the service"), [this] {
        m_lesson.setServer(QUrl(m_server->text().trimmed()));
        m_lesson.logIn(m_user->text(), m_password->text());
    });
    QPushButton* m_start = button(tr("Start &lesson"), tr("Open the lesson, so that learners can join"),
                                  [this] { m_lesson.start(); });
    // [log-in]
    QLabel* m_qrCode = new QLabel;
    QLabel* m_code = plainLabel();
    QLabel* m_address = plainLabel();
    QPushButton* m_end = button(tr("&End lesson"), tr("End the lesson for everybody"),
                                [this] { mayEnd(tr("End the lesson")) ? m_lesson.end() : void(); });
    QPushButton* m_summary =
        button(tr("Summar&y\u2026"), tr("How polls and assessments came out"), [this] { summarize(); });
    QPushButton* m_save =
        button(tr("Save &results\u2026"), tr("Write who answered what to a file"), [this] { save(); });
    QPushButton* m_logOut = button(tr("Log &out"), tr("End what is open and log out"),
                                   [this] { mayEnd(tr("Log out")) ? m_lesson.logOut() : void(); });
    Polls* m_polls = new Polls(&m_lesson);
    QLabel* m_remote = plainLabel(tr("It can join with the lesson\u2019s code."));

    QStackedWidget* m_pages = new QStackedWidget;
    QLabel* m_noticeText = plainLabel();
    QLabel* m_lostText = plainLabel();
    QWidget* m_notice =
        notice(m_noticeText, button(tr("&Dismiss"), tr("Close this message"), [this] { m_notice->hide(); }));
    QWidget* m_lost = notice(m_lostText, button(tr("Try &now"), tr("Try to open the channel at once"),
                                                [this] { m_lesson.retryNow(); }));
    QProgressBar* m_progress = made<QProgressBar>(tr("How far it is"), tr("Progress"));
    QPushButton* m_cancel =
        button(tr("&Cancel"), tr("Do not wait any longer"), [this] { m_lesson.cancel(); });
};

} // namespace

std::unique_ptr<QMainWindow> makeDesk(const QUrl& server)
{
    return std::make_unique<DeskWindow>(server);
}
