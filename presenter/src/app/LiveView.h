#pragma once

#include <QObject>
#include <QTimer>

class Notebook;
class Runner;
class Screen;
class Waiter;

namespace Calyx {
class Lesson;
} // namespace Calyx

/// Keeps the screen's live block: the chart of the poll that runs, that the connection is lost, and what is
/// being done while there is no prompt.
class LiveView : public QObject
{
    Q_OBJECT

public:
    LiveView(Calyx::Lesson& lesson, const Notebook& notes, Screen& screen, const Runner& runner,
             const Waiter& waiter);

    /// Whether to tell what is being done.
    void showWork(bool shows);

private:
    void draw();
    QStringList chart() const;
    QString loss() const;
    QString work() const;

    Calyx::Lesson& m_lesson;
    const Notebook& m_notes;
    Screen& m_screen;
    const Runner& m_runner;
    const Waiter& m_waiter;
    bool m_showsWork = false;
    QTimer m_soon;  // answers that come together are drawn together
    QTimer m_clock; // the times that are shown
};
