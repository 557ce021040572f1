#pragma once

#include "text/Style.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <QTimer>

class Lesson;
class Screen;

/// Tells what happens in the lesson. Joins that come together are one line, and so are goodbyes and late
/// answers.
class Announcer : public QObject
{
    Q_OBJECT

public:
    Announcer(Lesson& lesson, Screen& screen);
    ~Announcer() override;

private:
    void collect(int kind, const QString& name);
    void flush();

    Lesson& m_lesson;
    Screen& m_screen;
    int m_kind = 0;
    QStringList m_names;
    int m_here = 0;
    QTimer m_soon;         // runs anew with each
    QElapsedTimer m_first; // since the first of them
};
