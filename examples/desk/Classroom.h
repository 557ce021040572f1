#pragma once

#include "Tally.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>

#include <QElapsedTimer>
#include <QPointer>
#include <QThread>

#include <ctime>
#include <functional>
#include <memory>

/// The library's side of the desk, on a thread of its own.
///
/// An operation of the library waits for the service, up to 10 seconds and without user input, and the window
/// must not. So the window has tell() and begin() run the operations on the classroom's thread, and connects
/// to the signals.
class Classroom : public QObject
{
    Q_OBJECT

public:
    /// Ready: logged in, no lesson. Live: a lesson whose channel is open. Lost: one whose channel has closed.
    enum Stage { LoggedOut, Ready, Live, Lost };
    Q_ENUM(Stage)

    Classroom();
    /// Ends what is open, which can take the service's time.
    ~Classroom() override;

    // For the window's thread: these go on at once.

    /// Has the classroom do \p work on its thread.
    void tell(const std::function<void(Classroom*)>& work);
    /// The same with the channel of the lesson; nothing is done while none is open.
    void tellChannel(const std::function<void(PresenterCollab*)>& work);
    /// The same with what can take its time: busy(\p what) comes before it and busy(QString()) after it.
    void begin(const QString& what, const std::function<void(Classroom*)>& work);

    // For the classroom's thread.

    void logIn(const QString& server, const QString& user, const QString& password);
    void logOut();
    /// Starts a lesson, or opens the channel of a lost one again.
    void openLesson();
    void stopLesson();
    /// Drops the client, also while it waits: the operation that waits then returns.
    void giveUp();
    void startPoll(const PollKind& kind, int options);

Q_SIGNALS:
    void busy(const QString& what);
    void failed(const QString& what, const QString& advice);
    void news(const QString& text);
    void stageChanged(Classroom::Stage stage, const QString& sessionCode);
    /// There is a new channel: the time to connect to its signals. Emitted on the classroom's thread, so that
    /// none is missed: take a direct connection.
    void channelMade(PresenterCollab* channel);
    /// Learners who are here, but have not been heard to join.
    void learnerFound(const Calyx::Learner& learner);
    /// Its answers come with \p answerId.
    void pollStarted(const QString& answerId);

private:
    void setStage(Stage stage);
    void explain(const QString& what);
    bool startSession();
    bool openChannel();
    void findEarlyLearners();

    QThread m_thread;
    std::unique_ptr<PresenterClient> m_client;
    QPointer<PresenterCollab> m_collab; // the client's
    QElapsedTimer m_clock;              // since the operation has begun
    std::time_t m_lastPoll = 0;
    Stage m_stage = LoggedOut;
};
