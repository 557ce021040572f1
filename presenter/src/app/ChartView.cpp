#include "app/ChartView.h"

#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Chart.h"

ChartView::ChartView(Lesson& lesson, Screen& screen) : m_lesson(lesson), m_screen(screen)
{
    constexpr int together = 80; // ms
    constexpr int second = 1000;
    m_soon.setSingleShot(true);
    m_soon.setInterval(together);
    m_clock.setInterval(second);
    connect(&m_soon, &QTimer::timeout, this, &ChartView::draw);
    connect(&m_clock, &QTimer::timeout, this, &ChartView::draw);
    connect(&lesson, &Lesson::changed, this, [this] {
        if (!m_soon.isActive())
            m_soon.start();
    });
}

void ChartView::draw()
{
    constexpr int rowsLeftFree = 4; // for the prompt and what has just happened
    constexpr int leastLines = 3;
    constexpr int mostLines = 16;
    const PollBoard& board = m_lesson.board();
    const AssessmentDesk& desk = m_lesson.desk();
    if (!m_screen.isLive() || !(board.isRunning() || desk.isRunning())) {
        m_clock.stop();
        m_screen.setLiveLines({});
        return;
    }
    if (!m_clock.isActive())
        m_clock.start();
    const int room = qBound(leastLines, m_screen.style().rows - rowsLeftFree, mostLines);
    const ChartData data = board.isRunning() ? board.last()->chart(m_lesson.roster()) : desk.progress();
    m_screen.setLiveLines(Chart::lines(data, m_screen.style(), room));
}
