#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/lesson/PollAnswer.h>
#include <CalyxClient/lesson/PollResults.h>
#include <CalyxClient/lesson/Question.h>

#include <QDateTime>
#include <QJsonObject>
#include <QObject>
#include <QVector>

#include <memory>

namespace Calyx {

class Roster;

/// One question that was put to the class, and what came back: the last answer of each device.
///
/// Lesson::ask() makes it and owns it; it goes with the lesson or by Lesson::clearPolls(). Lives on the
/// lesson's thread. To pause or stop it, ask the lesson: only one poll runs at a time.
class CALYXCLIENT_EXPORT Poll : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString id READ id CONSTANT)
    Q_PROPERTY(int number READ number CONSTANT)
    Q_PROPERTY(Calyx::Question question READ question CONSTANT)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(bool running READ isRunning NOTIFY stateChanged)
    Q_PROPERTY(bool paused READ isPaused NOTIFY stateChanged)
    Q_PROPERTY(QDateTime startedAt READ startedAt CONSTANT)
    Q_PROPERTY(QDateTime stopsAt READ stopsAt NOTIFY stateChanged)
    Q_PROPERTY(Calyx::PollResults* results READ results CONSTANT)
    Q_PROPERTY(int answered READ answered NOTIFY answersChanged)
    Q_PROPERTY(int expected READ expected NOTIFY expectedChanged)

public:
    ~Poll() override;

    /// The id under which its answers come back. It never repeats.
    QString id() const;
    /// Its place in the lesson, from 1.
    int number() const;
    /// What is asked.
    Question question() const;
    /// The question's text, else the name of its kind.
    QString title() const;
    /// How it stands, a line for people, translated: "Which gas? (paused): 3 of 5 answered". It changes with
    /// stateChanged() and answersChanged(), and with those who are here.
    Q_INVOKABLE QString statusText() const;
    /// Whether it has not been stopped yet.
    bool isRunning() const;
    /// Whether it runs and the devices hold it.
    bool isPaused() const;
    /// When it was asked for.
    QDateTime startedAt() const;
    /// When it stops by itself, after Lesson::stop() with seconds; invalid before that, and once it is
    /// stopped.
    QDateTime stopsAt() const;
    /// Milliseconds that it has run, pauses included, or has run until it was stopped.
    Q_INVOKABLE qint64 elapsed() const;
    /// The counts, a model for views. Owned by the poll.
    PollResults* results() const;
    /// How many devices have answered.
    int answered() const;
    /// How many have answered or, being here, still could; once it is stopped, those at that moment and late
    /// ones.
    int expected() const;
    /// How many of them are right.
    int rightAnswers() const;
    /// Whether the device has answered.
    Q_INVOKABLE bool hasAnswered(const QString& deviceId) const;
    /// The device's answer; one whose mark is PollAnswer::NoAnswer when there is none.
    Q_INVOKABLE Calyx::PollAnswer answerOf(const QString& deviceId) const;
    /// One for each device that has answered, in the order of their first answers.
    QVector<PollAnswer> answers() const;
    /// The devices present that have not answered, in the roster's order; empty once it is stopped.
    Q_INVOKABLE QStringList missing() const;
    /// A line for each answer, under a line of titles: RFC 4180, texts that a spreadsheet would take for a
    /// formula quoted by an apostrophe.
    Q_INVOKABLE QString toCsv() const;
    /// The question, when it was asked, the counts and every answer.
    QJsonObject toJson() const;

Q_SIGNALS:
    /// Paused, resumed or stopped, or stopsAt() has changed.
    void stateChanged();
    /// Answers have come, once for all that came together; results() tells its own changes before.
    void answersChanged();
    /// expected() may have changed: answers have come, or learners have come or gone.
    void expectedChanged();

private:
    friend class Lesson;
    friend class LessonJournal;
    friend struct LessonContent;
    friend struct LessonPrivate;
    Poll(int number, const Question& question, const Roster* roster, QObject* parent);
    bool isDocument() const;
    // In UTC: the local time would be looked up for each answer.
    bool add(const QString& deviceId, const QString& text, int time,
             const QDateTime& at = QDateTime::currentDateTimeUtc());
    void setPaused(bool paused);
    void setStopsAt(const QDateTime& stopsAt);
    void stop(const QDateTime& at = QDateTime());
    void flush();
    // As it was, from a journal.
    void restore(const QString& id, const QDateTime& startedAt);
    void restoreState(bool isRunning, bool isPaused, qint64 lasted, const QDateTime& stopsAt);

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Calyx
