#include "app/LiveView.h"

#include "app/Runner.h"
#include "commands/Waiter.h"
#include "lesson/Charts.h"
#include "lesson/Notebook.h"
#include "terminal/Screen.h"
#include "text/Chart.h"
#include "text/Text.h"
#include "text/Words.h"

#include <CalyxClient/Lesson>

LiveView::LiveView(Calyx::Lesson& lesson, const Notebook& notes, Screen& screen, const Runner& runner,
                   const Waiter& waiter)
    : m_lesson(lesson), m_notes(notes), m_screen(screen), m_runner(runner), m_waiter(waiter)
{
    constexpr int together = 80; // ms
    m_soon.setSingleShot(true);
    m_soon.setInterval(together);
    m_clock.setInterval(Text::msecsPerSecond);
    connect(&m_soon, &QTimer::timeout, this, &LiveView::draw);
    connect(&m_clock, &QTimer::timeout, this, &LiveView::draw);
    const auto drawSoon = [this] {
        if (!m_soon.isActive())
            m_soon.start();
    };
    connect(&notes, &Notebook::changed, this, drawSoon);
    connect(&waiter, &Waiter::begun, this, drawSoon);
}

void LiveView::showWork(bool shows)
{
    m_showsWork = shows;
    draw();
}

void LiveView::draw()
{
    QStringList lines = m_screen.isLive() ? chart() : QStringList();
    if (m_screen.isLive() && m_lesson.state() == Calyx::Lesson::Reconnecting && !m_notes.isDisconnected)
        lines.append(loss());
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
    const Calyx::Poll* const poll = m_lesson.poll();
    const Calyx::Assessment* const assessment = m_lesson.assessment();
    const bool isPoll = poll && poll->isRunning();
    if (!isPoll && !(assessment && assessment->isRunning()))
        return {};
    const ChartData data = isPoll ? Charts::of(*poll) : Charts::of(*assessment);
    return Chart::lines(data, m_screen.style(), qMax(leastLines, m_screen.style().rows - rowsLeftFree));
}

// While a command is at work no line is read.
QString LiveView::loss() const
{
    const int seconds = m_lesson.secondsToAttempt();
    const QString when =
        seconds == 0 || m_showsWork
            ? m_lesson.attemptText()
            : Words::tr("The connection is lost. Trying again in %1 s (r: now).").arg(seconds);
    const Style& style = m_screen.style();
    return style.paint(Ink::Bad, Text::elide(when, style.columns - 1, style.unicode));
}

// "Waiting: 3 of 5 learners are here, 0:12. Ctrl-C gives up."
QString LiveView::work() const
{
    const Style& style = m_screen.style();
    const QString waited = m_waiter.description();
    const QString what = waited.isEmpty() ? Words::tr("At work: %1").arg(m_runner.current())
                                          : Words::tr("Waiting: %1").arg(waited);
    const QString end = Words::tr("  %1  Ctrl-C gives up")
                            .arg(Text::duration(static_cast<int>(m_runner.elapsed() / Text::msecsPerSecond)));
    const QString start = Text::elide(what, style.columns - 1 - Text::width(end), style.unicode);
    return style.paint(Ink::Strong, start + end);
}
