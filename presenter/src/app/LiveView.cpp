#include "app/LiveView.h"

#include "app/Runner.h"
#include "commands/Waiter.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Chart.h"
#include "text/Text.h"

namespace {

constexpr int second = 1000; // ms

} // namespace

LiveView::LiveView(Lesson& lesson, Screen& screen, const Runner& runner, const Waiter& waiter)
    : m_lesson(lesson), m_screen(screen), m_runner(runner), m_waiter(waiter)
{
    constexpr int together = 80; // ms
    m_soon.setSingleShot(true);
    m_soon.setInterval(together);
    m_clock.setInterval(second);
    connect(&m_soon, &QTimer::timeout, this, &LiveView::draw);
    connect(&m_clock, &QTimer::timeout, this, &LiveView::draw);
    connect(&lesson, &Lesson::changed, this, [this] {
        if (!m_soon.isActive())
            m_soon.start();
    });
}

void LiveView::showWork(bool shows)
{
    m_showsWork = shows;
    draw();
}

void LiveView::draw()
{
    QStringList lines = m_screen.isLive() ? chart() : QStringList();
    if (m_showsWork && m_screen.isLive())
        lines.append(work());
    if (lines.isEmpty())
        m_clock.stop();
    else if (!m_clock.isActive())
        m_clock.start();
    m_screen.setLiveLines(lines);
}

QStringList LiveView::chart() const
{
    constexpr int rowsLeftFree = 4; // for the prompt and what has just happened
    constexpr int leastLines = 3;
    const PollBoard& board = m_lesson.board();
    const AssessmentDesk& desk = m_lesson.desk();
    if (!board.isRunning() && !desk.isRunning())
        return {};
    const ChartData data = board.isRunning() ? board.last()->chart(m_lesson.roster()) : desk.progress();
    return Chart::lines(data, m_screen.style(), qMax(leastLines, m_screen.style().rows - rowsLeftFree));
}

// "Waiting: 3 of 5 learners are here, 0:12. Ctrl-C gives up."
QString LiveView::work() const
{
    const Style& style = m_screen.style();
    const QString waited = m_waiter.description();
    const QString what = waited.isEmpty() ? QStringLiteral("At work: %1").arg(m_runner.current())
                                          : QStringLiteral("Waiting: %1").arg(waited);
    const QString end = QStringLiteral("  %1  Ctrl-C gives up")
                            .arg(Text::duration(static_cast<int>(m_runner.elapsed() / second)));
    const QString start = Text::elide(what, style.columns - 1 - Text::width(end), style.unicode);
    return style.paint(Ink::Strong, start + end);
}
