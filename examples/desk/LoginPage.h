#pragma once

#include <QWidget>

class QLineEdit;
class QPushButton;

/// Asks for the service's address, a user and a password.
class LoginPage : public QWidget
{
    Q_OBJECT

public:
    explicit LoginPage(const QString& server);

    /// Closed for input while \p busyWith is not empty.
    void setBusy(const QString& busyWith);
    /// Puts the cursor where something is missing, else into the password.
    void takeFocus();
    void forgetPassword();

Q_SIGNALS:
    void logIn(const QString& server, const QString& user, const QString& password);

private:
    void submit();
    void refresh();

    QLineEdit* m_server;
    QLineEdit* m_user;
    QLineEdit* m_password;
    QPushButton* m_button;
    QString m_busyWith;
};
