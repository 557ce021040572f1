#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/Learner.h>
#include <CalyxClient/model/OrdinalType.h>
#include <CalyxClient/model/PollType.h>
#include <CalyxClient/model/RemoteControlMessage.h>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

class CollaborationMessageHandler;
class PresenterCollabPrivate;
class SockJSConnector;

namespace Calyx {
class CalyxCollabMessage;
class QuestionBase;
} // namespace Calyx

/// The live channel of one classroom session: polls, questions, cards and presenter state go out, answers,
/// joins, departures and remote-control commands come in.
///
/// PresenterClient::startWebsocket() makes one and opens it. Everything happens on the thread that made it.
/// Nothing is queued: what is published while the channel is closed is lost, without a sign to the caller. An
/// address that begins with "." is below the session token (".learner", ".controller", ".user." and a device
/// id); any other is used as it is. Any operation, close() and deletion included, may be called from any slot
/// connected to any signal.
class CALYXCLIENT_EXPORT PresenterCollab : public QObject
{
    Q_OBJECT

public:
    ///@{
    /// The spelling by which hosts connect to the signals.
    using Learner = Calyx::Learner;
    using RemoteControlMessage = Calyx::RemoteControlMessage;
    ///@}

    /// A channel that is not open yet. \p userToken is the presenter's own: the sender of all that goes out.
    /// PresenterClient::startWebsocket() gives what the service has said; a host has no need to call this.
    PresenterCollab(QObject* parent, QString serverUrl, QString sessionCode, QString sessionToken,
                    QString userToken);
    /// Emits nothing any more. What was published still goes out; no goodbye is said.
    ~PresenterCollab() override;

    /// The address of the channel's server, as the service gave it.
    QString serverUrl() const;
    /// The code by which learners join.
    QString sessionCode() const;
    /// The session's token: the root of all its addresses.
    QString sessionToken() const;
    /// The presenter's own token: the sender of all that goes out, and the end of the presenter's address.
    QString userToken() const;
    /// The id of the poll last started; empty before the first and after stopPoll().
    QString currentPollId() const;
    /// The id under which the answers to the question last sent come back; empty before the first question
    /// and after a poll that went out as a document (word seed, creative), whose answers carry
    /// currentPollId().
    QString currentQuestionId() const;
    /// Whether the channel is open: messages go out and come in.
    bool isConnected() const;
    /// The dispatcher of inbound messages; never null, owned by this object.
    CollaborationMessageHandler* messageHandler() const;
    /// The connection; never null, owned by this object.
    SockJSConnector* connector() const;

    ///@{
    /// Opens the channel, with the default transports or with those named, unknown names left out. Blocks as
    /// SockJSConnector::open() does. That the channel is open shows in isConnected() and in
    /// SockJSConnector::connected(); that it cannot be opened shows in nothing else. Once open, registers the
    /// session's, the presenters' and the presenter's address, in this order. May be called again after
    /// connectionClosed().
    void open();
    void open(QStringList protocols);
    ///@}
    /// Tells the session goodbye and closes the channel; connectionClosed(false) follows if it was open. A
    /// channel that is still coming up is closed as soon as it is up.
    void close();

    /// Publishes \p message as a JSON object to \p address, after setting its sender and compressing its
    /// data. Stays the caller's. A null \p message is nothing to publish.
    void publishMessage(QString address, Calyx::CalyxCollabMessage* message);
    /// Publishes \p data, a JSON text, compressed, to the whole session.
    void publishMessage(QString type, QString data);
    /// Publishes \p data, a JSON text, compressed, to \p address.
    void publishMessage(QString address, QString type, QString data);
    /// Same as publishMessage(address, type, data).
    void publishMessage64(QString address, QString type, QString data);
    /// Tells one learner's device to leave. learnerUnregister() follows at once, sent or not.
    void removeLearner(QString deviceId);
    /// Sends a "ping" frame, which does not count as activity. Every minute by itself while the channel is
    /// open.
    void sendPing();

    /// Starts a poll under a new id; a running one is not stopped. Publishes "questionStart", or, for the
    /// kinds without a question class (word seed, creative), the ready-made document "poll", to the whole
    /// session. \p ordinalType and \p optionCount make the options; \p optionCount below 1 makes none. \p
    /// extra: the number of correct options of a multiple choice. \p optionCount: for a number, the number of
    /// decimals. A card image that has been set goes along.
    void startPoll(Calyx::PollType::POLL_TYPE pollType, Calyx::OrdinalType::ORDINAL_TYPE ordinalType,
                   int optionCount, int extra);
    /// The question that startPoll() would send, owned by this object until it or the caller deletes it; null
    /// for kinds that have no question class. Sends nothing.
    Calyx::QuestionBase* createPollQuestion(Calyx::PollType::POLL_TYPE pollType,
                                            Calyx::OrdinalType::ORDINAL_TYPE ordinalType, int optionCount,
                                            int extra);
    /// Stops the current poll ("pollStop") and forgets its id and the card image, also when the channel is
    /// closed.
    void stopPoll();
    ///@{
    /// Holds the current poll on the learners' devices ("pause"), or lets it go on ("resume"). Answers that
    /// come meanwhile are reported all the same.
    void pausePoll();
    void resumePoll();
    ///@}

    ///@{
    /// Sends \p question, which stays the caller's, as "questionStart" to \p address or to the whole session.
    /// Fills in its activityType and sets currentQuestionId(). A null \p question is nothing to send.
    void sendQuestion(QString address, Calyx::QuestionBase* question);
    void sendQuestion(Calyx::QuestionBase* question);
    ///@}

    ///@{
    /// The picture for the next card or poll: PNG bytes, or a reference (a URL) that devices can load. Bytes
    /// win over a reference; empty bytes are none. Sends nothing.
    void setCardImage(const QByteArray& png);
    void setCardImageRef(const QString& reference);
    ///@}
    /// The picture as a URL: a data URI for bytes, else the reference, wrapped in `url('...')` if \p
    /// asCssUrl; an empty string when neither was set.
    QString getCardImageRef(bool asCssUrl);
    /// Forgets the picture.
    void clearCardImage();
    /// Shows the picture as a card on the learners' devices ("showCard" to ".learner") and forgets it.
    /// Without one, an empty card. With \p checkHeavy, one of more than 524288 characters is announced with
    /// sendHeavy().
    void showImageCard(bool checkHeavy);
    /// Tells the learners' devices that something large is coming ("heavy" to ".learner").
    void sendHeavy();

    /// Tells the remote control which lesson is open ("currentLesson" to ".controller").
    void sendCurrentLessonToRemote(QString lessonId, QString name);
    /// Tells the remote control that the presenter is there ("presenterIsActive" to ".controller").
    void sendPresenterIsActiveToRemote();
    /// Tells the remote control which card is shown, counted from 1, and how many there are ("currentCard" to
    /// ".controller").
    void sendCurrentCardToRemote(int currentCard, int totalCards);

Q_SIGNALS:
    /// The channel has closed: after close(), because the server or the network has ended it, or (\p
    /// bClosedForInactivity) because nothing but pings was sent for over an hour. Once for each channel that
    /// was up, and nothing else follows it; open() on an open channel drops that without a word. It is not
    /// opened again by itself.
    void connectionClosed(bool bClosedForInactivity);
    /// An answer. \p pollId: currentQuestionId() or currentPollId(). \p responseTime: milliseconds for a poll
    /// document, whole seconds for a question. See CollaborationMessageHandler::learnerPollResponse() for \p
    /// answer.
    void learnerPollResponse(QString deviceId, QString pollId, int responseTime, QString answer);
    /// A learner's device has joined. One that joined before the channel was open is not heard:
    /// PresenterClient::doGetLearners() lists it.
    void learnerJoin(Learner learner);
    /// A learner's device has left, or removeLearner() was called for it.
    void learnerUnregister(QString deviceId);
    /// The remote control has gone: always false. That it has come shows in its first remoteControl().
    void controllerRegister(bool isRegister);
    /// A command of the remote control. The library carries out none of them. The bus also brings back what
    /// this presenter publishes to the whole session ("pause", "resume"): \p signal is then from userToken().
    void remoteControl(RemoteControlMessage signal);
    /// A message of a type that the library does not know: its body and its decoded data. What this presenter
    /// publishes to the whole session ("questionStart", "pollStop") comes back this way, from userToken().
    void unhandledMessage(QVariantMap jsonMessage, QVariant data);

protected Q_SLOTS:
    /// The connection is open: registers the addresses and starts the ping.
    void onConnected();
    /// The connection has ended: connectionClosed().
    void onClosed(bool bClosedForInactivity);
    /// sendPing().
    void onPingTimer();

private:
    const std::unique_ptr<PresenterCollabPrivate> d;
};
