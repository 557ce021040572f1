#pragma once

#include "DeskWindow.h"

#include <QAccessible>
#include <QTest>
#include <QWidget>

/// A person at the desk, who finds the controls by the names that a screen reader tells.
class DeskRobot
{
public:
    explicit DeskRobot(const QString& server = QString());

    QMainWindow& window() { return *m_window; }
    /// Shows the window and waits until it has the keyboard.
    bool show();
    /// Closes the window as the window manager does, and ends what belongs to it.
    void close();

    /// What a screen reader is told of \p control.
    static QString told(QWidget* control, QAccessible::Text what);
    /// The visible control called \p name; null when there is none.
    template<typename Control = QWidget>
    Control* find(const char* name) const
    {
        const QList<Control*> controls = m_window->findChildren<Control*>();
        for (Control* control : controls) {
            if (control->isVisible() && !isForAnother(control) &&
                told(control, QAccessible::Name) == QString::fromUtf8(name))
                return control;
        }
        return nullptr;
    }
    /// Waits until the control is there and enabled. False when that does not come.
    bool awaits(const char* name) const;
    /// Clicks it as soon as it is enabled.
    bool click(const char* name);
    void type(const char* name, const QString& text);
    /// Alt and the letter.
    void press(Qt::Key key);

    /// All that the visible labels and headings say.
    QString text() const;
    bool reads(const QString& text) const;

    bool logIn(const QString& password = QStringLiteral("chalk"));
    /// The code of the lesson that was started; null when none was.
    QString startLesson();

private:
    /// Whether it is the label of a control, and so has that one's name.
    static bool isForAnother(const QWidget* widget);

    std::unique_ptr<QMainWindow> m_window;
};
