#pragma once

#include "lesson/Journal.h"
#include "lesson/LessonContent.h"
#include "lesson/LessonWorker.h"

#include <QObject>
#include <QVariantMap>

namespace Calyx {

/// What of a lesson is written into its Journal, and how that becomes a lesson's content again.
///
/// While no file is open, nothing is written. What learners do is written at the next flush(), what the host
/// does at once.
class LessonJournal : public QObject
{
    Q_OBJECT

public:
    using Events = QVector<QJsonObject>;

    /// What is there to take up.
    struct TakenUp
    {
        OpenSession session;
        QDateTime until; ///< its last event
    };

    /// Writes down who comes and goes in \p content, whose models are there longer.
    explicit LessonJournal(LessonContent* content);

    /// The events of the session in \p fileName; none where it holds none that could be taken up.
    static Events read(const QString& fileName);
    static TakenUp find(const Events& events);
    /// Such a session for people: Lesson::journalOf().
    static QVariantMap describe(const Events& events);

    /// The file from the next begin() on; none where it is empty.
    void setFileName(const QString& fileName) { m_fileName = fileName; }
    /// Begins the file anew.
    void begin();
    /// Puts \p events, of \p fileName, into the content, which has to be empty; goOn() writes on there, what
    /// has happened meanwhile first. A view of a model's can be the end of the lesson.
    void takeUp(const QString& fileName, const Events& events);
    void goOn();
    void flush();
    void close() { m_journal.close(); }

    void noteSession(const OpenSession& session, const QString& server);
    void notePoll(const Poll* added);
    /// The running poll has gone out.
    void noteSent();
    void notePollsCleared();
    void noteAssessment(const Assessment* added);
    /// \p time is that of the wire.
    void noteAnswer(const QString& id, const PollAnswer& answer, int time);
    void noteCard();
    void noteLock();
    /// The session is not to be taken up.
    void noteEnd();

Q_SIGNALS:
    /// \p fileName cannot be written.
    void failed(const QString& fileName);

private:
    void record(const QJsonObject& event);
    void watch();
    void watch(const Poll* added);
    void watch(const Assessment* added);
    void replay(const QJsonObject& event);
    void replayJoined(const QJsonObject& event);
    void replayLeft(const QJsonObject& event);
    void replayPoll(const QJsonObject& event);
    void replaySent(const QJsonObject& event);
    void replayCleared(const QJsonObject& event);
    void replayAssessment(const QJsonObject& event);
    void replayEntered(const QJsonObject& event);
    void replayState(const QJsonObject& event);
    void replayAnswer(const QJsonObject& event);
    void replayCard(const QJsonObject& event);
    void replayLock(const QJsonObject& event);

    Journal m_journal;
    QString m_fileName;
    LessonContent* m_content;
};

} // namespace Calyx
