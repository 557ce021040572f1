#include "app/Announcer.h"

#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Text.h"

#include <utility>

Announcer::Announcer(Lesson& lesson, Screen& screen) : m_lesson(lesson), m_screen(screen)
{
    constexpr int together = 200; // ms
    m_soon.setSingleShot(true);
    m_soon.setInterval(together);
    connect(&m_soon, &QTimer::timeout, this, &Announcer::flush);
    connect(&lesson, &Lesson::manyHappened, this, &Announcer::collect);
    connect(&lesson, &Lesson::happened, this, [this](const QString& text, Ink ink) {
        flush();
        m_screen.note(text, ink);
    });
}

Announcer::~Announcer()
{
    flush();
}

void Announcer::collect(int kind, const QString& name)
{
    constexpr int longest = 1000; // ms
    if (kind != m_kind)
        flush();
    m_kind = kind;
    m_names.append(name);
    m_here = m_lesson.roster().presentCount();
    if (!m_soon.isActive())
        m_first.start();
    if (!m_soon.isActive() || m_first.elapsed() < longest)
        m_soon.start();
}

// "  + Ann, Bea and 28 more have joined, 30 here"
void Announcer::flush()
{
    constexpr int mostNames = 5;
    const QStringList names = std::exchange(m_names, {});
    m_soon.stop();
    if (names.isEmpty())
        return;
    const QString who = Text::list(names, mostNames);
    const QLatin1String have(names.size() == 1 ? "has" : "have");
    switch (m_kind) {
    case Lesson::Joined:
        m_screen.note(QStringLiteral("  + %1 %2 joined, %3 here").arg(who, have, QString::number(m_here)),
                      Ink::Faint);
        break;
    case Lesson::Left:
        m_screen.note(QStringLiteral("  - %1 %2 left, %3 here").arg(who, have, QString::number(m_here)),
                      Ink::Faint);
        break;
    default:
        m_screen.note(QStringLiteral("  Too late: %1 of %2")
                          .arg(QLatin1String(names.size() == 1 ? "the answer" : "the answers"), who),
                      Ink::Faint);
    }
}
