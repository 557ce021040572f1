#pragma once

#include <CalyxClient/Lesson>

#include <QObject>

#include <functional>

/// What the console keeps of a lesson beside the lesson itself, and the one signal for whatever waits or
/// draws.
class Notebook : public QObject
{
    Q_OBJECT

public:
    /// An OAuth login that waits for its registration.
    struct Registration
    {
        QString provider;
        QString code;
        QString data; ///< as the service sent it
    };

    explicit Notebook(Calyx::Lesson& lesson);

    /// The questions of the next assessment. They stay for another one, until a new set is begun.
    void write(const Calyx::Question& question);
    const QVector<Calyx::Question>& written() const { return m_written; }
    void useWritten() { m_isUsed = true; }

    /// What the remote control gets to know of the lesson.
    void setName(const QString& id, const QString& name);
    QString lessonId() const { return m_lessonId; }
    QString lessonName() const { return m_lessonName; }

    /// Pictures that were shown.
    int cards() const { return m_cards; }

    Registration registration;
    /// The one that the service gave last.
    QString deviceToken;
    /// Logs in as the last time; empty before the first.
    std::function<void()> logInAgain;
    /// Where the lesson writes its journal; empty: nowhere.
    QString journal;
    /// Of a session that is created and not started.
    QString createdCode;
    /// The channel was closed by us, and is to stay closed.
    bool isDisconnected = false;
    /// The service does not know the session any more.
    bool isSessionGone = false;
    /// The summary holds all that there is.
    bool isSummaryShown = false;

Q_SIGNALS:
    /// Something that a wait or a chart depends on.
    void changed();

private:
    void onState();
    void onAssessment();

    Calyx::Lesson& m_lesson;
    QVector<Calyx::Question> m_written;
    bool m_isUsed = false;
    QString m_lessonId;
    QString m_lessonName;
    int m_cards = 0;
};
