#include "LoginPage.h"

#include "Theme.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QLineEdit* field(QFormLayout* form, const QString& label, const QString& placeholder, const QString& tip)
{
    auto* edit = new QLineEdit;
    edit->setPlaceholderText(placeholder);
    edit->setMinimumHeight(32);
    edit->setTextMargins(4, 0, 4, 0);
    Theme::describe(edit, QString(label).remove(QLatin1Char('&')), tip);
    form->addRow(label, edit); // the label becomes its buddy
    return edit;
}

// People leave "https://" out.
QString withScheme(const QString& address)
{
    return address.contains(QLatin1String("://")) ? address : QStringLiteral("https://") + address;
}

} // namespace

LoginPage::LoginPage(const QString& server)
{
    QFrame* panel = Theme::panel();
    panel->setFixedWidth(440);
    auto* box = new QVBoxLayout(panel);
    box->setContentsMargins(32, 28, 32, 28);
    box->setSpacing(6);
    box->addWidget(Theme::heading(QStringLiteral("Log in to your classroom"), 1.5));
    box->addWidget(Theme::caption(QStringLiteral("Use your account at the classroom service.")));
    box->addSpacing(14);

    auto* form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::WrapAllRows);
    form->setVerticalSpacing(8);
    m_server = field(form, QStringLiteral("&Service"), QStringLiteral("https://classroom.example"),
                     QStringLiteral("The address of the classroom service"));
    m_user = field(form, QStringLiteral("&User name"), QString(), QStringLiteral("Your name at the service"));
    m_password = field(form, QStringLiteral("&Password"), QString(), QStringLiteral("Your password there"));
    m_password->setEchoMode(QLineEdit::Password);
    m_server->setText(server);
    box->addLayout(form);
    box->addSpacing(16);

    m_button = Theme::primaryButton(QStringLiteral("&Log in"), QStringLiteral("Log in to the service"));
    m_button->setMinimumHeight(36);
    m_button->setDefault(true);
    box->addWidget(m_button);

    auto* page = new QVBoxLayout(this);
    page->addStretch(2);
    page->addWidget(panel, 0, Qt::AlignHCenter);
    page->addStretch(3);

    for (QLineEdit* edit : {m_server, m_user, m_password}) {
        connect(edit, &QLineEdit::textChanged, this, &LoginPage::refresh);
        connect(edit, &QLineEdit::returnPressed, this, &LoginPage::submit);
    }
    connect(m_button, &QPushButton::clicked, this, &LoginPage::submit);
    refresh();
}

void LoginPage::setBusy(const QString& busyWith)
{
    m_busyWith = busyWith;
    refresh();
}

void LoginPage::takeFocus()
{
    for (QLineEdit* edit : {m_server, m_user, m_password}) {
        if (edit->text().isEmpty()) {
            edit->setFocus();
            return;
        }
    }
    m_password->setFocus();
    m_password->selectAll();
}

void LoginPage::forgetPassword()
{
    m_password->clear();
}

void LoginPage::submit()
{
    if (m_button->isEnabled())
        Q_EMIT logIn(withScheme(m_server->text().trimmed()), m_user->text(), m_password->text());
}

void LoginPage::refresh()
{
    for (QLineEdit* edit : {m_server, m_user, m_password})
        Theme::allow(edit, m_busyWith);
    QString whyNot = m_busyWith;
    if (whyNot.isEmpty() &&
        (m_server->text().trimmed().isEmpty() || m_user->text().isEmpty() || m_password->text().isEmpty()))
        whyNot = QStringLiteral("Fill in the service, your user name and your password first.");
    Theme::allow(m_button, whyNot);
}
