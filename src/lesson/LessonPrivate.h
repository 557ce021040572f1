#pragma once

#include "lesson/Inbox.h"
#include "lesson/Lesson.h"
#include "lesson/LessonContent.h"
#include "lesson/LessonJournal.h"
#include "lesson/LessonWorker.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QMap>
#include <QPointer>
#include <QSet>
#include <QThread>
#include <QTimer>

namespace Calyx {

/// What is behind a Lesson, on its thread: the state, and what the network is asked for.
///
/// Whatever emits can be the end of the lesson: functions that do return whether it is still there, where
/// more is to come.
struct LessonPrivate : public LessonListener
{
    explicit LessonPrivate(Lesson* lesson);
    ~LessonPrivate() override;

    // The state.
    bool setState(Lesson::State next);
    void tellChanges();
    void tellBusy();
    bool fail(const LessonError& error);
    /// Calls each of \p emits, which end in slots of the host's, while the lesson is there; whether it still
    /// is.
    template<typename... Emit>
    bool whileThere(const Emit&... emits)
    {
        const QPointer<Lesson> self(q);
        ((self ? emits() : void()), ...);
        return self;
    }
    bool refuse(const char* text);
    void beginLogIn(const Login& login);
    void beginStart();
    void startIfWanted();
    bool meet(const Opening& opening, QStringList* newcomers);
    void beginToLive(const Opening& opening);
    bool takeUp(const QString& fileName);
    bool tellTakenUp();
    void beginEnd(bool andLogOut);
    void tryAgain();
    void waitForAttempt();
    void waitForStop();
    void attempt();
    void giveUp();
    /// The session is over, here at least. Whether the operation at work goes on: no slot has deleted the
    /// lesson or begun another one.
    bool finishSession();
    /// Forgets what the session before has left.
    void clearSession();
    bool isWanted() const { return !isFinishing && (wantsLive || isOpen()); }
    bool isOpen() const { return state == Lesson::Starting || hasSession(); }
    bool hasSession() const { return state == Lesson::Live || state == Lesson::Reconnecting; }

    // The class.
    void bring(const QStringList& devices);
    void takeForShown(const Wanted& now);
    void bringBack(const QStringList& newcomers);
    void send(const std::function<void(PresenterCollab*)>& work);
    void confirm();
    void bringAssessmentBack(const QSet<QString>& newcomers);
    /// Calls \p then at once or later. The caller tells that the lesson is busy.
    void withPicture(const QByteArray& png,
                     const std::function<void(const QByteArray& png, const QString& url)>& then);
    bool isTooLarge(const QByteArray& png);
    bool mayAsk(const QVector<Question>& questions, const QString& fault);
    Poll* addPoll(const Question& question);
    void sendPoll(const Question& question, const QByteArray& png, const QString& url);
    void stopPoll(int seconds);
    void showResults(const Poll& poll);
    void setPaused(bool paused);
    void show(const QByteArray& png, const QString& url, int number);
    void tellRemote();
    bool obey(Lesson::RemoteCommand command, const QVariant& data);
    bool addRemoteCard(const QVariant& data);
    bool come(const Learner& learner, const QDateTime& at);
    void welcome(const Learner& learner);
    void see(const QString& deviceId);
    void afterTurn();

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
    LessonContent content;
    LessonJournal journal; // of this session
    Inbox inbox;
    LessonWorker* worker; // lives on the thread, and goes with it
    QThread* thread;

    Lesson::State state = Lesson::LoggedOut;
    QUrl server;
    QString user;
    QString joinCode;
    QString joinAddress;
    QString lessonId = QStringLiteral("lesson");
    ChannelSettings channel;
    LessonJournal::TakenUp takenUp; // until it is open again
    bool reconnects = true;
    bool bringsBack = true;
    bool wantsLive = false; // a session, as soon as the login is there
    bool isLoggingOut = false;
    bool isBringing = false;  // the channel is there, and nobody has heard of it
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

    Deck* deck;
    QSet<QString> answeredPolls; // their ids, in this turn
    QTimer stopTimer;            // of a poll that counts down
    QDeadlineTimer stopAt;
    Wanted shown;           // what the class has in front of it, as far as the bus has confirmed it
    QMap<int, Wanted> sent; // what it will have when confirm() is answered, by serial number
    QTimer confirmation;
    int lastSerial = 0;
    QHash<QString, int> atQuestion; // of the assessment: what each device has asked for last
    int cardSerial = 0;             // counts what takes a card's place
    bool isRemotePresent = false;
    QSet<Lesson::RemoteCommand> takenOver;
};

} // namespace Calyx
