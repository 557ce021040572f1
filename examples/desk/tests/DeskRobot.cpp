#include "DeskRobot.h"

#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

namespace {

constexpr int limit = 30000; // ms

} // namespace

DeskRobot::DeskRobot(const QString& server) : m_window(makeDesk(QUrl(server))) {}

bool DeskRobot::show()
{
    m_window->show();
    m_window->activateWindow();
    return QTest::qWaitForWindowActive(m_window.get());
}

void DeskRobot::close()
{
    m_window->close();
    m_window.reset();
}

// A combo box tells its value for its name, unless it has been given one.
QString DeskRobot::told(QWidget* control, QAccessible::Text what)
{
    if (what == QAccessible::Name && !control->accessibleName().isEmpty())
        return control->accessibleName();
    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(control);
    return told ? told->text(what) : QString();
}

bool DeskRobot::isForAnother(const QWidget* widget)
{
    const auto* label = qobject_cast<const QLabel*>(widget);
    return label && label->buddy();
}

bool DeskRobot::awaits(const char* name) const
{
    return QTest::qWaitFor(
        [&] {
            const QWidget* control = find(name);
            return control && control->isEnabled();
        },
        limit);
}

bool DeskRobot::click(const char* name)
{
    if (!awaits(name))
        return false;
    QTest::mouseClick(find(name), Qt::LeftButton);
    return true;
}

void DeskRobot::type(const char* name, const QString& text)
{
    auto* edit = find<QLineEdit>(name);
    edit->clear();
    QTest::keyClicks(edit, text);
}

void DeskRobot::press(Qt::Key key)
{
    QTest::keyClick(m_window.get(), key, Qt::AltModifier);
}

QString DeskRobot::text() const
{
    QStringList texts;
    const QList<QWidget*> widgets = m_window->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        if (widget->isVisible() && (widget->inherits("QLabel") || widget->inherits("QGroupBox")))
            texts.append(told(widget, QAccessible::Name));
    }
    return texts.join(QLatin1Char('\n'));
}

bool DeskRobot::reads(const QString& wanted) const
{
    return QTest::qWaitFor([&] { return text().contains(wanted); }, limit);
}

bool DeskRobot::logIn(const QString& password)
{
    if (!show())
        return false;
    type("User name", QStringLiteral("teacher"));
    type("Password", password);
    return click("Log in");
}

QString DeskRobot::startLesson()
{
    if (!logIn() || !click("Start lesson") || !awaits("Start poll"))
        return QString();
    return QRegularExpression(QStringLiteral("\\b\\d{3} \\d{3}\\b"))
        .match(text())
        .captured()
        .remove(QLatin1Char(' '));
}
