#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/lesson/Assessment.h>
#include <CalyxClient/lesson/Deck.h>
#include <CalyxClient/lesson/LessonError.h>
#include <CalyxClient/lesson/Poll.h>
#include <CalyxClient/lesson/Roster.h>

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QLocale>
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include <functional>
#include <memory>

class PresenterClient;
class PresenterCollab;
class QTranslator;

namespace Calyx {

struct LessonPrivate;

/// A teacher's lesson: what a host is written on.
///
/// Lives on the thread that makes it, which needs an event loop. **No operation blocks, and none nests an
/// event loop**: each returns at once, what can fail tells so by failed(). What the network is asked for runs
/// on a thread of the lesson's own.
///
/// An operation that has to wait for another one waits: start() may follow logIn() at once, ask() may follow
/// start(). What the class should see (the running poll and whether it is paused, the card, the lock, the
/// assessment) is kept, and brought to each device: to those who join late or come back, and to all when the
/// channel is open (again). So a host may ask, pause and stop while the lesson reconnects.
///
/// Deleting it is allowed in any state and from any slot. It takes 2 s at the most, in which the class is
/// told goodbye where it can be. After the application object is gone nobody is told, and its thread is left.
class CALYXCLIENT_EXPORT Lesson : public QObject
{
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(QUrl server READ server WRITE setServer NOTIFY serverChanged)
    Q_PROPERTY(QString user READ user NOTIFY stateChanged)
    Q_PROPERTY(QString joinCode READ joinCode NOTIFY stateChanged)
    Q_PROPERTY(QUrl joinAddress READ joinAddress NOTIFY stateChanged)
    Q_PROPERTY(QUrl joinLink READ joinLink NOTIFY stateChanged)
    Q_PROPERTY(QString joinHint READ joinHint NOTIFY stateChanged)
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)
    Q_PROPERTY(double progress READ progress NOTIFY busyChanged)
    Q_PROPERTY(QDateTime nextAttempt READ nextAttempt NOTIFY nextAttemptChanged)
    Q_PROPERTY(int secondsToAttempt READ secondsToAttempt NOTIFY secondsToAttemptChanged)
    Q_PROPERTY(QString attemptText READ attemptText NOTIFY secondsToAttemptChanged)
    Q_PROPERTY(Calyx::Roster* roster READ roster CONSTANT)
    Q_PROPERTY(Calyx::Deck* deck READ deck CONSTANT)
    Q_PROPERTY(Calyx::Poll* poll READ poll NOTIFY pollChanged)
    Q_PROPERTY(QList<QObject*> polls READ pollObjects NOTIFY pollChanged)
    Q_PROPERTY(Calyx::Assessment* assessment READ assessment NOTIFY assessmentChanged)
    Q_PROPERTY(QList<QObject*> assessments READ assessmentObjects NOTIFY assessmentChanged)
    Q_PROPERTY(bool locked READ isLocked WRITE setLocked NOTIFY lockedChanged)
    Q_PROPERTY(bool remotePresent READ isRemotePresent NOTIFY remotePresentChanged)

public:
    /// Where the lesson is. Each change is told once, in order.
    enum State {
        LoggedOut,    ///< nobody is logged in
        LoggingIn,    ///< the service is being asked
        LoggedIn,     ///< logged in, no session
        Starting,     ///< a session is being opened
        Live,         ///< learners can join, and what is asked reaches them
        Reconnecting, ///< the channel is lost, and the lesson is finding its way back
        Ending        ///< the session, or the login, is being ended
    };
    Q_ENUM(State)

    /// What a remote control can ask for.
    enum RemoteCommand {
        AskPresence,  ///< whether a presenter is there
        AskLesson,    ///< which lesson it is
        AskCards,     ///< which cards it has, and which one is current
        Pause,        ///< hold the poll or assessment
        Resume,       ///< let it go on
        Lock,         ///< have the class look up
        Unlock,       ///< let it go on
        NextCard,     ///< go to the next card
        PreviousCard, ///< go to the card before
        ShowCard,     ///< show the current card to the class
        AddCard,      ///< add the picture that came with it
        EndLesson     ///< end the session
    };
    Q_ENUM(RemoteCommand)

    /// A lesson at \p server, the base address of the classroom service; "https://" is put before one
    /// without a scheme. Sends nothing.
    explicit Lesson(const QUrl& server = QUrl(), QObject* parent = nullptr);
    ~Lesson() override;

    /// Where the lesson is.
    State state() const;
    /// The base address of the service, as the host gave it.
    QUrl server() const;
    /// Another service. Refused (BadInput) unless the state is LoggedOut.
    void setServer(const QUrl& server);
    /// The same for what people type. In QML, where the property would take an address without a scheme for
    /// one beside the document.
    Q_INVOKABLE void setServer(const QString& address);
    /// Who is logged in, as the host named him; empty when nobody is.
    QString user() const;
    /// The code by which learners join; empty without a session.
    QString joinCode() const;
    /// The address at which the service offers learners to join, for them to open in a browser; empty
    /// without a session. The code is the host's to add, in the way that its service wants. Where server()
    /// names all addresses of this machine ("0.0.0.0"), it is one of those.
    QUrl joinAddress() const;
    /// The same with the code as its query ("?code=123456"), as a link or a QR code has it: at a service that
    /// knows that, learners need not type the code.
    QUrl joinLink() const;
    /// What learners at other machines need before they can join at joinAddress(), a sentence for people,
    /// translated: where it is loopback's, how the service has to be started, and with which address of this
    /// machine. Empty where they need nothing, and without a session.
    QString joinHint() const;
    /// A join code as people read it, in groups of three: "559 335".
    Q_INVOKABLE static QString grouped(const QString& code);
    /// Whether something is going on that takes long, and that cancel() ends: logging in, opening or ending a
    /// session, sending a picture.
    bool isBusy() const;
    /// How far that is, 0 to 1; -1 when nobody knows.
    double progress() const;
    /// When a lesson that is Reconnecting tries again; invalid while it tries, and in every other state.
    QDateTime nextAttempt() const;
    /// How many seconds that is ahead, for people; 0 where it is now or nextAttempt() is invalid.
    int secondsToAttempt() const;
    /// What a Reconnecting lesson tells people, translated: "The connection is lost. Trying again in 3 s.";
    /// empty in every other state.
    QString attemptText() const;
    /// What the remote control is told as the lesson's id and name; "lesson" and "Lesson" at first.
    Q_INVOKABLE void setName(const QString& id, const QString& name);
    /// The transports to use ("websocket", "xhr-streaming", "xhr-polling") from the next start() or
    /// reconnection, instead of those that the service prescribes; an empty list sets none.
    Q_INVOKABLE void setTransports(const QStringList& transports);
    /// How many milliseconds a transport may take to open before the next one is tried, from the next
    /// start(); 10,000 at first, 0 for no limit.
    Q_INVOKABLE void setOpenLimit(int msecs);
    /// Whether a far end that is frozen or has vanished counts as lost, from the next start() or
    /// reconnection; true at first: a message that the lesson sends to itself every few seconds has to come
    /// back. Without it only a channel that is closed is lost.
    Q_INVOKABLE void setNoticesLoss(bool notices);
    /// Whether a channel that is lost is opened again by itself; true at first. Without it a lost lesson
    /// stays Reconnecting until a retryNow() goes well; failed() tells of one that does not. Set to true
    /// again, a lost lesson tries at once.
    Q_INVOKABLE void setReconnects(bool reconnects);
    /// Whether the class is brought to what is wanted when a lost lesson is Live again; true at first.
    /// Without it nothing is sent then, and what was done meanwhile reaches nobody: the host does what it
    /// wants instead.
    Q_INVOKABLE void setBringsBack(bool brings);

    /// Writes a journal of each session from the next start() into \p fileName, to which takeUp() goes back
    /// after a crash: every event as a line of JSON when it has happened, names and answers included,
    /// readable for its owner only. Each start() begins it anew, and keeps what it held under its name and
    /// "~". Empty, as at first: no journal. One that cannot be written is told by failed() with BadInput, and
    /// the lesson goes on without it.
    Q_INVOKABLE void setJournal(const QString& fileName);
    /// What the journal \p fileName says of the session that takeUp() would take up: "code", "lesson",
    /// "teacher", "server" and "at", when it began; empty where it holds none, and for one that was ended.
    /// Reads the file.
    Q_INVOKABLE static QVariantMap journalOf(const QString& fileName);

    /// Loads this layer's texts (errors, the names of commands and of kinds of question, what learners are
    /// told) in the first of \p locale's languages that there is, German and French, into \p translator. The
    /// host installs that, if it wants; without it all is English. False, and nothing is loaded, where
    /// English comes first, and where the library was built without other languages.
    static bool loadTranslation(QTranslator* translator, const QLocale& locale = QLocale());
    /// Installs this layer's texts and Qt's own (the buttons of dialogs), as far as there are any in \p
    /// locale's languages, for as long as the application object lives, which there has to be: after the
    /// host's own texts or before. loadTranslation() is for a host that changes its language.
    static void installTranslations(const QLocale& locale = QLocale());

    // Login and session.

    /// Logs in. A login before is ended. A text that holds control characters is refused (BadInput).
    Q_INVOKABLE void logIn(const QString& user, const QString& password);
    /// Logs in by a token that this device got before (PresenterClient::doGetAccessToken(), by onClient()).
    Q_INVOKABLE void logInWithToken(const QString& user, const QString& deviceId, const QString& token);
    /// Logs in with the \p code that the OAuth \p provider has given. When the service wants a new user to
    /// register first, registrationNeeded() follows, and the login fails (Refused); call again with the data
    /// completed.
    Q_INVOKABLE void logInWithOAuth(const QString& provider, const QString& code,
                                    const QString& registration = QString());
    /// Ends the session, if there is one, and logs out. failed() when the service cannot be told; it is over
    /// here all the same.
    Q_INVOKABLE void logOut();
    /// Opens a session: Starting, then Live, or LoggedIn after failed(). While logging in or ending, it waits
    /// for that. Does nothing where a session is open already; refused (BadInput) when nobody logs in.
    Q_INVOKABLE void start();
    /// Takes up the session of the journal \p fileName, whose host has ended without a word: in the place of
    /// start(), by the same teacher. What was collected is there when this returns; then Starting, and Live
    /// with those who are still in the session, the poll and the assessment running on, and the journal
    /// written on. SessionGone where the service does not know it any more, and any other error leaves what
    /// was collected, too: the state is LoggedIn, and the session, where there is one, goes on without a
    /// host. Refused (BadInput) in a session, when nobody logs in, and where the file holds no session. Reads
    /// the file, and so can take its time.
    Q_INVOKABLE void takeUp(const QString& fileName);
    /// Ends the session for everybody: Ending, then LoggedIn. What was collected stays until the next
    /// start(). Refused (BadInput) without a session.
    Q_INVOKABLE void end();
    /// Ends what isBusy() is about within 100 ms; failed() tells Cancelled. A login falls back to LoggedOut,
    /// an opening to LoggedIn; a picture is not shown. While Reconnecting it gives the session up: LoggedIn.
    Q_INVOKABLE void cancel();
    /// A lesson that is Reconnecting tries at once.
    Q_INVOKABLE void retryNow();

    // Polls.

    /// Puts \p question to the class, in the place of what runs. The poll belongs to the lesson. Null, and
    /// failed() with BadInput, when there is no session or none is being opened, or the question has a
    /// fault(). Takes the lock and the card away.
    Calyx::Poll* ask(const Calyx::Question& question);
    /// The same for a question without words.
    Calyx::Poll* ask(Calyx::PollType::POLL_TYPE type, Calyx::OrdinalType::ORDINAL_TYPE ordinal,
                     int optionCount);
    /// The same from what Question::fromMap() takes.
    Q_INVOKABLE Calyx::Poll* ask(const QVariantMap& question);
    /// Holds the running poll, else the assessment, on the devices. Nothing where nothing runs.
    Q_INVOKABLE void pause();
    /// Lets it go on.
    Q_INVOKABLE void resume();
    /// Stops the running poll: now, or in this many \p seconds, which the devices count down (a day at the
    /// most; Poll::stopsAt() tells; a later call sets another time). Answers that come later count for it and
    /// are marked late. Nothing where none runs.
    Q_INVOKABLE void stop(int seconds = 0);
    /// The poll put last, running or not; null before the first.
    Poll* poll() const;
    /// All polls of the session, in their order. As a property, for QML, a list of objects that are each a
    /// Poll: polls.length, polls[0].title, the model of a view.
    QList<Poll*> polls() const;
    /// Deletes the polls that are over.
    Q_INVOKABLE void clearPolls();
    /// Tells each learner who is here how \p poll came out, as a text that can be dismissed: whether his
    /// answer is right, what is, and how often the most frequent answers were given, which devices that know
    /// how show as bars. Null: poll(). Sent once, to those who are here now.
    Q_INVOKABLE void showResults(Calyx::Poll* poll = nullptr);

    // Assessment.

    /// Starts an assessment for everybody, or for \p devices only, in the place of one that runs. Belongs to
    /// the lesson. Null and failed() as with ask().
    Calyx::Assessment* startAssessment(const Calyx::AssessmentPlan& plan, const QStringList& devices = {});
    /// The same from what AssessmentPlan::fromMap() takes.
    Q_INVOKABLE Calyx::Assessment* startAssessment(const QVariantMap& plan, const QStringList& devices = {});
    /// Another device begins the assessment that was started for certain ones.
    Q_INVOKABLE void admit(const QString& deviceId);
    /// Stops it. Answers that come later do not count. Nothing where none runs.
    Q_INVOKABLE void stopAssessment();
    /// The assessment started last, running or not; null before the first.
    Assessment* assessment() const;
    /// All assessments of the session, in their order. As a property a list as that of polls().
    QList<Assessment*> assessments() const;

    // Cards and texts.

    /// The lesson's pictures.
    Deck* deck() const;
    /// Adds a card with a PNG picture at the end of the deck, and goes to it. False, and failed() with
    /// BadInput, for what Deck::add() does not take: a host hands on what it has made of a file.
    bool addCard(const QString& name, const QByteArray& png);
    /// Shows the card with this \p number to the class, which makes it the current one; 0: the current one.
    /// Bytes of more than 64 KiB are uploaded first, once for each card, which takes its time (busy).
    /// Failed() with BadInput for a card that there is not, or without a session.
    Q_INVOKABLE void showCard(int number = 0);
    /// Shows a picture that is not of the deck.
    void showPicture(const QByteArray& png);
    /// The same for one that devices load from \p url: an address on the web, one that begins at the
    /// service's, or a data URI.
    Q_INVOKABLE void showPictureAt(const QString& url);
    /// Whether the class is to look up.
    bool isLocked() const;
    /// Covers the devices with a text that cannot be dismissed, or takes it away. A poll that starts takes it
    /// away, too.
    void setLocked(bool locked);
    /// Shows \p text on a device, or, with an empty \p deviceId, on all that are here now.
    Q_INVOKABLE void showText(const QString& text, const QString& deviceId = QString(),
                              bool isDismissible = true);
    /// Leads the review of the questions of an assessment on a device, or on all, with \p text.
    Q_INVOKABLE void showReview(const QString& text, const QString& deviceId = QString());

    // People.

    /// Who takes part.
    Roster* roster() const;
    /// Sends a learner's device away. It can join again.
    Q_INVOKABLE void remove(const QString& deviceId);
    /// What \p command is called, for people: "Next card", translated.
    Q_INVOKABLE static QString commandName(Calyx::Lesson::RemoteCommand command);
    /// Whether a remote control has been heard and has not gone.
    bool isRemotePresent() const;
    /// Whether the lesson obeys \p command by itself; true for all at first. A host that takes one over
    /// carries it out when remoteCommand() tells it.
    Q_INVOKABLE void setObeys(Calyx::Lesson::RemoteCommand command, bool obeys);
    /// The command's name on the wire, for example "nextCard".
    Q_INVOKABLE static QString nameOf(Calyx::Lesson::RemoteCommand command);

    // Afterwards. What names learners, questions and answers is as the class saw it; the titles of columns,
    // marks and the names of JSON are the same in every language.

    /// The whole lesson: who was here and when, every question, every answer, the marks.
    Q_INVOKABLE QJsonObject report() const;
    /// The same for a spreadsheet: a line for each answer of each learner to each question.
    Q_INVOKABLE QString toCsv() const;
    /// Writes report(), or toCsv() where \p fileName ends in ".csv", whole or not at all. False, and failed()
    /// with BadInput, when the file cannot be written. This writes a file, and so can take its time.
    Q_INVOKABLE bool save(const QString& fileName);

    // Down to the wire.

    /// Runs \p work on the lesson's own thread with the channel, now or when it is open next, for what the
    /// lesson does not cover. Not with a channel that closes before; \p work must keep neither the channel
    /// nor what belongs to the host's thread.
    void onChannel(std::function<void(PresenterCollab*)> work);
    /// The same with the service's client, in turn with the lesson's own requests: its operations may block.
    /// With a client that is not logged in where nobody is; what it has got to know there, a password that
    /// stands before the service for example, holds for the next login. A session that \p work creates and
    /// does not start is the one that the next start() opens.
    void onClient(std::function<void(PresenterClient*)> work);

Q_SIGNALS:
    /// state() has changed; joinCode() and user() with it.
    void stateChanged();
    /// Something that was asked for is not done, or something has happened that nobody asked for.
    void failed(const Calyx::LessonError& error);
    /// isBusy() or progress() has changed.
    void busyChanged();
    /// nextAttempt() has changed.
    void nextAttemptChanged();
    /// secondsToAttempt() and attemptText() have changed: with state(), with nextAttempt(), and each second
    /// until then.
    void secondsToAttemptChanged();
    /// server() has changed.
    void serverChanged();
    /// There is another poll(), or it was paused, resumed or stopped, or is about to stop.
    void pollChanged();
    /// Answers have come, once for all that came together, to \p poll.
    void answersChanged(Calyx::Poll* poll);
    /// There is another assessment(), or it was paused, resumed or stopped.
    void assessmentChanged();
    /// isLocked() has changed.
    void lockedChanged();
    /// A picture has been shown to the class: card \p number of the deck; 0 for one that is not of it.
    void cardShown(int number);
    /// isRemotePresent() has changed.
    void remotePresentChanged();
    /// What the lesson, its poll(), roster() and deck() tell of themselves has changed: for a window that
    /// shows all anew. Comes with each of the signals above but failed() and cardShown(), and with theirs.
    void changed();
    /// The remote control has asked for something. \p obeyed: the lesson has done it, which a host that has
    /// taken it over by setObeys() does instead; also false when it could not be done. \p data came with it,
    /// from outside.
    void remoteCommand(Calyx::Lesson::RemoteCommand command, bool obeyed, const QVariant& data);
    /// The service wants \p data (JSON) completed before an OAuth login.
    void registrationNeeded(const QString& data);
    /// A message has come that the lesson does nothing about: its type, its sender, its decoded data. One
    /// that the library does not know; a command for a remote control's by a device that is none; an answer
    /// ("questionResponse") that does not count, or the wish for a question ("questionGet") that is not
    /// given.
    void messageReceived(const QString& type, const QString& from, const QVariant& data);

private:
    QList<QObject*> pollObjects() const;
    QList<QObject*> assessmentObjects() const;

    friend struct LessonPrivate;
    std::unique_ptr<LessonPrivate> d;
};

} // namespace Calyx
