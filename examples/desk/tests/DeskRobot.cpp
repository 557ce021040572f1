#include "DeskRobot.h"

#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

namespace {

constexpr int limit = 30000; // ms

} // namespace

DeskRobot::DeskRobot(const QString& server) : m_window(std::make_unique<DeskWindow>(server)) {}

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
    const QList<QLabel*> labels = m_window->findChildren<QLabel*>();
    for (const QLabel* label : labels) {
        if (label->isVisible())
            texts.append(label->text());
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
    return QRegularExpression(QStringLiteral("^\\d{6}$"), QRegularExpression::MultilineOption)
        .match(text())
        .captured();
}
