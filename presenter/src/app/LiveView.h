#pragma once

#include <QObject>
#include <QTimer>

class Lesson;
class Runner;
class Screen;
class Waiter;

/// Keeps the screen's live block: the chart of the poll that runs, and what is being done while there is no
/// prompt.
class LiveView : public QObject
{
    Q_OBJECT

public:
    LiveView(Lesson& lesson, Screen& screen, const Runner& runner, const Waiter& waiter);

    /// Whether to tell what is being done.
    void showWork(bool shows);

private:
    void draw();
    QStringList chart() const;
    QString work() const;

    Lesson& m_lesson;
    Screen& m_screen;
    const Runner& m_runner;
    const Waiter& m_waiter;
    bool m_showsWork = false;
    QTimer m_soon;  // answers that come together are drawn together
    QTimer m_clock; // the times that are shown
};
