#pragma once

#include "lesson/Inbox.h"
#include "lesson/Journal.h"
#include "lesson/Lesson.h"
#include "lesson/LessonMessages.h"
#include "lesson/LessonWorker.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QMap>
#include <QPointer>
#include <QSet>
#include <QThread>
#include <QTimer>

namespace Calyx {

/// What is behind a Lesson, on its thread: the state, what is wanted, what was collected.
///
/// Whatever emits can be the end of the lesson: functions that do return whether it is still there, where
/// more is to come.
struct LessonPrivate : public LessonListener
{
    explicit LessonPrivate(Lesson* lesson);
    ~LessonPrivate() override;

    // The state.
    bool setState(Lesson::State next);
    void tellBusy();
    bool fail(const LessonError& error);
    /// Calls each of \p emits, which end in slots of the host's, while the lesson is there; whether it still
    /// is.
    template<typename... Emit>
    bool tell(const Emit&... emits)
    {
        const QPointer<Lesson> self(q);
        ((self ? emits() : void()), ...);
        return self;
    }
    bool refuse(const char* text);
    void beginLogIn(const Login& login);
    void beginStart();
    void beginToLive(const Opening& opening);
    void beginEnd(bool andLogOut);
    void tryAgain();
    void waitForAttempt();
    void attempt();
    void giveUp();
    /// The session is over, here at least.
    void finishSession();
    /// Forgets what the session before has left.
    void clearSession();
    bool isWanted() const { return !isFinishing && (wantsLive || state == Lesson::Starting || hasSession()); }
    bool hasSession() const { return state == Lesson::Live || state == Lesson::Reconnecting; }

    // The class.
    Wanted wanted() const;
    Wanted wantedBy(const QString& deviceId, const Wanted& all) const;
    void bring(const QStringList& devices);
    void takeForShown(const Wanted& now);
    void bringBack(const QStringList& newcomers);
    void send(const std::function<void(PresenterCollab*)>& work);
    void confirm();
    void bringAssessmentBack(const QStringList& newcomers);
    /// Calls \p then at once or later. The caller tells that the lesson is busy.
    void withPicture(const QByteArray& png,
                     const std::function<void(const QByteArray& png, const QString& url)>& then);
    Poll* addPoll(const Question& question);
    void sendPoll(const Question& question, const QByteArray& png, const QString& url);
    void removeStoppedPolls();
    void stopPoll(int seconds);
    void showResults(const Poll& poll);
    void setPaused(bool paused);
    void show(const QByteArray& png, const QString& url, int number);
    void tellRemote();
    bool obey(Lesson::RemoteCommand command, const QVariant& data);
    bool addRemoteCard(const QVariant& data);
    void welcome(const Learner& learner);
    void see(const QString& deviceId);
    void afterTurn();

    // The journal.
    void beginJournal();
    void flushJournal();
    void failJournal(const QString& name);
    void note(const QJsonObject& event);
    void record(const QJsonObject& event);
    void observe();
    void observe(const Poll* added);
    void observe(const Assessment* added);
    void watch(const Poll* added);
    void watch(const Assessment* added);
    void noteSession(const QString& token);
    void noteSent();
    void noteAnswer(const QString& id, const PollAnswer& answer, int time);
    void replay(const QVector<QJsonObject>& events);
    void replaySession(const QJsonObject& event);
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
    void replayLocked(const QJsonObject& event);
    bool takeUp(const QString& fileName);
    bool tellTakenUp();

    // From the worker.
    void onLoggedIn(int ticket, const LessonError& error, const QString& registration) override;
    void onOpened(int ticket, const Opening& opening) override;
    void onNotOpened(int ticket, const LessonError& error) override;
    void onConfirmed(int serial) override;
    void onLost() override;
    void onEnded(int ticket, const LessonError& error) override;
    void onUploaded(int ticket, const QString& url) override;
    void onProgress(int ticket, double progress) override;
    void onJoin(const Learner& learner) override;
    void onLeave(const QString& deviceId, const QString& by) override;
    void onAnswer(const QString& deviceId, const QString& id, int time, const QString& answer) override;
    void onQuestionWanted(const QString& deviceId, int number) override;
    void onRemote(const QString& type, const QVariant& data) override;
    void onRemoteGone(const QString& by) override;
    void onMessage(const QString& type, const QString& from, const QVariant& data) override;

    struct Upload
    {
        QByteArray png;
        std::function<void(const QByteArray& png, const QString& url)> then;
    };

    Lesson* q;
    Inbox inbox;
    LessonWorker* worker; // lives on the thread, and goes with it
    QThread* thread;

    Lesson::State state = Lesson::LoggedOut;
    QUrl server;
    QString user;
    QString joinCode;
    QString joinAddress;
    QString lessonId = QStringLiteral("lesson");
    QString lessonName = QStringLiteral("Lesson");
    QStringList transports;
    int openLimit = 10000; // ms
    QDateTime startedAt;
    QString journalName;   // from the next session on; empty for none
    Journal journal;       // of this session
    OpenSession takenUp;   // from a journal, until it is open again
    QDateTime takenUpFrom; // its last event
    bool reconnects = true;
    bool wantsLive = false; // a session, as soon as the login is there
    bool isLoggingOut = false;
    bool isFinishing = false; // slots that hear of it can ask for nothing more
    bool wasBusy = false;
    double progress = -1;
    int lastTicket = 0;
    int ticket = 0; // of the operation that the state is about
    int attempts = 0;
    QTimer retry;
    QDateTime nextAttempt;
    QDeadlineTimer retryAt;
    QHash<int, Upload> uploads;          // by ticket
    QHash<QByteArray, QString> uploaded; // addresses by picture

    Roster* roster;
    Deck* deck;
    QList<Poll*> polls;
    QHash<QString, Poll*> pollsById;
    QList<Assessment*> assessments;
    QPointer<Poll> poll;
    QPointer<Assessment> assessment;
    QSet<Poll*> answeredPolls; // in this turn
    Question sentQuestion;     // the running poll's, as devices get it
    bool isPollReady = false;  // its picture is uploaded
    QTimer stopTimer;          // of a poll that counts down
    Wanted shown;              // what the class has in front of it, as far as the bus has confirmed it
    QMap<int, Wanted> sent;    // what it will have when confirm() is answered, by serial number
    QTimer confirmation;
    int lastSerial = 0;
    QHash<QString, int> atQuestion; // of the assessment: what each device has asked for last
    QByteArray cardPng;
    QString cardUrl;
    int cardSerial = 0; // counts what takes a card's place
    bool isLocked = false;
    bool isRemotePresent = false;
    QSet<Lesson::RemoteCommand> takenOver;
};

} // namespace Calyx
