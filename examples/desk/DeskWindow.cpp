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
    const int width = code ? code->width : 0;
    QImage image(width + 2 * margin, width + 2 * margin, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int i = 0; i < width * width; ++i)
        image.setPixel(margin + i % width, margin + i / width, code->data[i] & 1 ? 0 : 0xffffff);
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
        m_notice->setObjectName(QStringLiteral("notice"));
        m_noticeText->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        setCentralWidget(arrange(new QWidget, QBoxLayout::TopToBottom, {m_notice, m_pages}));
        m_progress->setMaximumWidth(160);
        statusBar()->addPermanentWidget(m_progress);
        statusBar()->addPermanentWidget(m_cancel);
        connect(&m_lesson, &Lesson::changed, this, &DeskWindow::refresh);
        connect(&m_lesson, &Lesson::stateChanged, this, &DeskWindow::onState);
        connect(&m_lesson, &Lesson::busyChanged, this, &DeskWindow::moveFocus);
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
        onState();
        refresh();
        moveFocus();
    }

protected:
    /// Asks first, while learners are in the lesson.
    void closeEvent(QCloseEvent* event) override { event->setAccepted(mayEnd(tr("Close the desk"))); }

private:
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
            connect(edit, &QLineEdit::textChanged, this, &DeskWindow::refresh);
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
        auto* remote = arrange(new QGroupBox(tr("Remote control")), QBoxLayout::TopToBottom, {m_remote});
        auto* columns = new QSplitter;
        columns->addWidget(new Learners(&m_lesson));
        columns->addWidget(m_polls);
        columns->addWidget(arrange(new QWidget, QBoxLayout::TopToBottom, {new Cards(&m_lesson), remote}));
        columns->setStretchFactor(1, 1);
        columns->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        auto* header = across({m_qrCode, m_code, m_address, m_start, m_end, m_summary, m_save, m_logOut});
        return arrange(new QWidget, QBoxLayout::TopToBottom, {header, columns});
    }
    void onState()
    {
        const QString address = m_lesson.joinAddress().toDisplayString();
        m_code->setText(Lesson::grouped(m_lesson.joinCode()));
        m_address->setText(address.isEmpty() ? tr("Start a lesson, and learners can join.")
                                             : tr("Learners join at %1 with this code.").arg(address) +
                                                   QLatin1Char('\n') + m_lesson.joinHint());
        m_qrCode->setPixmap(qrCode(m_lesson.joinLink().toString(), 96));
        m_qrCode->setHidden(address.isEmpty());
        if (m_lesson.state() == Lesson::LoggedIn)
            m_password->clear();
        if (m_lesson.state() == Lesson::LoggingIn || m_lesson.state() == Lesson::Starting)
            tell(QString());
    }
    void refresh()
    {
        const bool isOpen = !m_lesson.joinCode().isEmpty();
        const bool isEmpty = m_lesson.polls().isEmpty() && m_lesson.assessments().isEmpty();
        const QPair<bool, QString> isBusy(m_lesson.isBusy(), tr("The service is being asked."));
        QLineEdit* missing = nullptr;
        for (QLineEdit* edit : {m_password, m_user, m_server}) {
            if (edit->text().trimmed().isEmpty())
                missing = edit;
        }
        allow(m_logIn,
              {isBusy,
               {missing != nullptr, tr("Fill in the service, your user name and your password first.")}});
        allow(m_start, {{isOpen, tr("The lesson is open.")}, isBusy});
        allow(m_end, {{!isOpen, tr("No lesson is open.")}});
        for (QPushButton* button : {m_summary, m_save})
            allow(button, {{isEmpty, tr("Nothing has been asked yet.")}});
        m_progress->setRange(0, m_lesson.progress() < 0 ? 0 : 100);
        m_progress->setValue(qRound(m_lesson.progress() * 100));
        m_progress->setVisible(m_lesson.isBusy());
        m_cancel->setVisible(m_lesson.isBusy());
        m_pages->widget(0)->setFocusProxy(missing ? missing : m_password);
        m_pages->widget(1)->setFocusProxy(isOpen ? m_polls : static_cast<QWidget*>(m_start));
        m_pages->setCurrentIndex(
            int(m_lesson.state() != Lesson::LoggedOut && m_lesson.state() != Lesson::LoggingIn));
        refreshNotice();
    }
    // [attempt]
    void refreshNotice()
    {
        const QString lost = m_lesson.attemptText();
        QStringList texts(m_trouble);
        if (!lost.isEmpty())
            texts.prepend(lost + QLatin1Char(' ') + tr("What you do meanwhile is done when it is back."));
        m_noticeText->setText(texts.join(QLatin1Char('\n')).trimmed());
        m_retry->setHidden(lost.isEmpty());
        m_dismiss->setHidden(m_trouble.isEmpty());
        m_notice->setHidden(m_noticeText->text().isEmpty());
    }
    // [attempt]
    // By Tab a field's text is selected: one types over a wrong password.
    void moveFocus()
    {
        (m_lesson.isBusy() ? m_cancel : m_pages->currentWidget())->setFocus(Qt::TabFocusReason);
    }
    void tell(const QString& trouble)
    {
        m_trouble = trouble.trimmed();
        refreshNotice();
        if (trouble.isEmpty())
            return;
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
    // [save]
    QPushButton* m_save = button(tr("Save &results\u2026"), tr("Write who answered what to a file"), [this] {
        const QString name = QFileDialog::getSaveFileName(this, tr("Save the results"), tr("results.csv"),
                                                          tr("Results (*.csv *.json)"));
        if (!name.isEmpty())
            m_lesson.save(name);
    });
    // [save]
    QPushButton* m_logOut = button(tr("Log &out"), tr("End what is open and log out"),
                                   [this] { mayEnd(tr("Log out")) ? m_lesson.logOut() : void(); });
    Polls* m_polls = new Polls(&m_lesson);
    QLabel* m_remote = plainLabel(tr("It can join with the lesson\u2019s code."));

    QStackedWidget* m_pages = new QStackedWidget;
    QString m_trouble;
    QLabel* m_noticeText = plainLabel();
    QPushButton* m_retry =
        button(tr("Try &now"), tr("Try to open the channel at once"), [this] { m_lesson.retryNow(); });
    QPushButton* m_dismiss = button(tr("&Dismiss"), tr("Close this message"), [this] { tell(QString()); });
    QWidget* m_notice = arrange(new QFrame, QBoxLayout::LeftToRight, {m_noticeText, m_retry, m_dismiss});
    QProgressBar* m_progress = made<QProgressBar>(tr("How far it is"), tr("Progress"));
    QPushButton* m_cancel =
        button(tr("&Cancel"), tr("Do not wait any longer"), [this] { m_lesson.cancel(); });
};

} // namespace

std::unique_ptr<QMainWindow> makeDesk(const QUrl& server)
{
    return std::make_unique<DeskWindow>(server);
}
