#pragma once

#include <QObject>
#include <QTimer>

class Lesson;
class Screen;

/// Keeps the chart of the poll that runs in the screen's live block.
class ChartView : public QObject
{
    Q_OBJECT

public:
    ChartView(Lesson& lesson, Screen& screen);

private:
    void draw();

    Lesson& m_lesson;
    Screen& m_screen;
    QTimer m_soon;  // answers that come together are drawn together
    QTimer m_clock; // the time that the chart shows
};
