#pragma once

#include "text/Style.h"

#include <CalyxClient/Lesson>

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>

class Notebook;
class Screen;

/// Tells what happens in the lesson. Joins that come together are one line, and so are goodbyes and late
/// answers.
class Announcer : public QObject
{
    Q_OBJECT

public:
    Announcer(Calyx::Lesson& lesson, const Notebook& notes, Screen& screen);
    ~Announcer() override;

Q_SIGNALS:
    /// The remote control asks to end the session.
    void stopRequested();

private:
    enum Happening { Joined, Left, AnsweredLate };

    void collect(Happening happening, const QString& deviceId);
    void flush();
    void tell(const QString& text, Ink ink = Ink::Plain);
    void tellState();
    void tellAttempt();
    void tellAnswers(const Calyx::Poll* poll);
    void tellAssessment();
    void tellFinished();
    void tellCommand(Calyx::Lesson::RemoteCommand command, bool isObeyed, const QVariant& data);
    void tellRefusal(const QString& command, const QString& learner);
    void tellMessage(const QString& type, const QString& from, const QVariant& data);

    Calyx::Lesson& m_lesson;
    const Notebook& m_notes;
    Screen& m_screen;
    Happening m_happening = Joined;
    QStringList m_names;
    int m_here = 0;
    QTimer m_soon;         // runs anew with each
    QElapsedTimer m_first; // since the first of them
    bool m_isLost = false;
    QSet<QString> m_told; // polls and assessments with the devices that were told of
};
