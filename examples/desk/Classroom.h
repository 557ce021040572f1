#pragma once

#include "Failure.h"
#include "PollKinds.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>

#include <QObject>
#include <QPointer>

#include <ctime>
#include <memory>

/// The library's side of the desk.
///
/// It lives on a thread of its own: an operation of the library waits for the service, up to 10 seconds and
/// without user input, and the window must not. Call its operations there; its signals may be connected from
/// anywhere. After an operation that can take its time there comes finished().
class Classroom : public QObject
{
    Q_OBJECT

public:
    enum Stage {
        LoggedOut,
        Ready, ///< logged in, no lesson
        Live,  ///< a lesson whose channel is open
        Lost   ///< a lesson whose channel has closed
    };
    Q_ENUM(Stage)

    Classroom();

    void logIn(const QString& server, const QString& user, const QString& password);
    void logOut();
    void startLesson();
    /// Opens the channel of the lesson again.
    void reconnect();
    void stopLesson();
    /// Drops the client, also while it waits: the operation that waits then returns.
    void giveUp();
    /// Ends what is open, and then the thread.
    void shutDown();

    void startPoll(const PollKind& kind, int options);
    void stopPoll();
    void setPaused(bool paused);
    void showCard(const QByteArray& png);
    /// Covers the learners' devices with a text until they are unlocked, or a poll starts.
    void setLocked(bool locked);
    /// The channel of the lesson; null while it is not open.
    PresenterCollab* live() const { return m_stage == Live ? m_collab.data() : nullptr; }

Q_SIGNALS:
    void stageChanged(Classroom::Stage stage, const QString& sessionCode);
    void failed(const Failure& failure);
    void finished();
    void learnerJoined(const QString& deviceId, const QString& name, const QString& deviceType);
    void learnerLeft(const QString& deviceId);
    /// Its answers come with \p answerId.
    void pollStarted(const QString& answerId);
    void pollStopped();
    void pollPaused(bool isPaused);
    void answered(const QString& deviceId, const QString& answerId, const QString& answer);
    void cardShown();
    void remoteLeft();
    void remoteCommand(const QString& type, const QVariant& data);

private:
    class Attempt;

    void setStage(Stage stage);
    void listen();
    void showLock(const QString& deviceId);
    bool waitForChannel();
    void enterLesson();
    void findEarlyLearners();
    void dropClient();

    std::unique_ptr<PresenterClient> m_client;
    QPointer<PresenterCollab> m_collab; // the client's
    std::time_t m_lastPoll = 0;
    Stage m_stage = LoggedOut;
    bool m_isLocked = false;
};
