#pragma once

#include "lesson/AssessmentDesk.h"
#include "lesson/Deck.h"
#include "lesson/PollBoard.h"
#include "lesson/RemoteControl.h"
#include "lesson/Roster.h"
#include "text/Style.h"

#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>

#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QSet>
#include <QTimer>
#include <QVariant>

#include <ctime>

/// The lesson as it stands: the service's client, the live channel, who takes part, the polls so far.
class Lesson : public QObject
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

    enum Happening { Joined, Left, AnsweredLate };

    explicit Lesson(const QString& server);

    PresenterClient& client() { return m_client; }
    /// Null before the first session has gone live.
    PresenterCollab* collab() const { return m_collab; }
    bool isLive() const { return m_collab && m_collab->isConnected(); }
    const Roster& roster() const { return m_roster; }
    PollBoard& board() { return m_board; }
    const PollBoard& board() const { return m_board; }
    AssessmentDesk& desk() { return m_desk; }
    const AssessmentDesk& desk() const { return m_desk; }

    /// From now on, what \p collab receives is this lesson's.
    void adopt(PresenterCollab* collab);
    /// Asks the service who is in the session, and takes its list for the truth.
    void refreshLearners();
    /// Asks it too, for those who joined before the channel was open and were not heard. Who is listed may
    /// not have opened his own channel yet and would miss a poll that goes out now: he counts once he is
    /// heard, or after a while.
    void findEarlyLearners();
    /// Whether the channel will be closed by us, which is no news.
    void expectClose(bool expect = true) { m_expectsClose = expect; }
    /// The session is over, and everybody has left it.
    void forgetSession();

    /// Questions that are made within the same second have the same id, so that a late answer to one would
    /// count for the next. About how many milliseconds until a poll gets an id of its own; 0 when it would
    /// now.
    int msecsToNewId() const;
    void startPoll(const PollPlan& plan);
    void stopPoll();
    void setPaused(bool paused);

    /// Shows \p text to the device \p id or, where that is empty, to all: as a dialog, or as what leads a
    /// review of the questions.
    void showText(const QString& id, const QString& text, bool isDismissible, bool isReview);

    /// What the remote control gets to know of it.
    QString lessonId;
    QString lessonName = QStringLiteral("Lesson");

    RemoteControl& remoteControl() { return m_remoteControl; }
    const Deck& deck() const { return m_deck; }
    void addCard(const Deck::Card& card) { m_deck.add(card); }
    /// False when there is no such card.
    bool goToCard(int number);
    /// Shows the deck's current card to the learners. False when there is none.
    bool showCurrentCard();
    void showPicture(const Picture& picture, const QString& name);

    /// Covers the learners' devices with a text until they are unlocked, or a poll starts.
    void setLocked(bool locked);

    int cards() const { return m_cards; }
    /// The most learners who were here at once.
    int mostLearners() const { return m_mostLearners; }

    Registration registration;
    QString deviceToken; ///< the one that the service gave last

Q_SIGNALS:
    /// Something that a wait or a chart depends on.
    void changed();
    /// Something of which much may come at once: a Happening, and the learner's name.
    void manyHappened(int happening, const QString& name);
    /// Something came from outside.
    void happened(const QString& text, Ink ink);

private:
    bool fetchLearners();
    void join(const Calyx::Learner& learner);
    void onLeave(const QString& deviceId);
    void onAnswer(const QString& deviceId, const QString& answerId, const QString& answer);
    void onController(bool isHere);
    void onRemoteControl(const Calyx::RemoteControlMessage& message);
    void obey(const Calyx::RemoteControlMessage& message);
    QString learnerBehind(const QString& deviceId);
    void onUnhandled(const QVariantMap& body, const QVariant& data);
    void onClosed(bool forInactivity);
    void showLock(const QString& id);
    void tellJoin(const QString& deviceId);
    void tellLeave(const QString& deviceId);

    PresenterClient m_client;
    QPointer<PresenterCollab> m_collab;
    Roster m_roster;
    AssessmentDesk m_desk;
    QList<Calyx::Learner> m_early; // listed, not heard yet
    QTimer m_earlyTimer;
    QQueue<Calyx::RemoteControlMessage> m_asked; // for by the remote control
    QSet<QString> m_others;                      // devices that are no learner's
    PollBoard m_board;
    Deck m_deck;
    RemoteControl m_remoteControl;
    int m_cards = 0;
    int m_mostLearners = 0;
    std::time_t m_lastIdSecond = 0;
    bool m_isLocked = false;
    bool m_expectsClose = false;
};
