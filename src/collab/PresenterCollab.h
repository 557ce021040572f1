#pragma once

#include "calyxclient_export.h"
#include "model/Learner.h"
#include "model/OrdinalType.h"
#include "model/PollType.h"
#include "model/RemoteControlMessage.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariant>

class CollaborationMessageHandler;
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
    // The spellings by which hosts connect to the signals.
    using Learner = Calyx::Learner;
    using RemoteControlMessage = Calyx::RemoteControlMessage;

    /// \p userToken is the presenter's own: the sender of all that goes out.
    PresenterCollab(QObject* parent, QString serverUrl, QString sessionCode, QString sessionToken,
                    QString userToken);

    QString serverUrl() const { return m_serverUrl; }
    QString sessionCode() const { return m_sessionCode; }
    QString sessionToken() const { return m_sessionToken; }
    QString userToken() const { return m_userToken; }
    /// The id of the poll last started; empty before the first and after stopPoll().
    QString currentPollId() const { return m_currentPollId; }
    /// The id under which the answers to the question last sent come back; empty before the first question
    /// and after a poll that went out as a document (word seed, creative), whose answers carry
    /// currentPollId().
    QString currentQuestionId() const { return m_currentQuestionId; }
    /// Whether the channel is open: messages go out and come in.
    bool isConnected() const;
    /// The dispatcher of inbound messages; never null, owned by this object.
    CollaborationMessageHandler* messageHandler() const { return m_handler; }
    /// The connection; never null, owned by this object.
    SockJSConnector* connector() const { return m_connector; }

    /// Opens the channel, with the default transports or with those named. Blocks as SockJSConnector::open()
    /// does; that the channel is open shows in isConnected().
    void open();
    void open(QStringList protocols);
    /// Tells the session goodbye and closes the channel; connectionClosed(false) follows if it was open. A
    /// channel that is still coming up is closed as soon as it is up.
    void close();

    /// Publishes \p message as a JSON object, after setting its sender and compressing its data. Stays the
    /// caller's.
    void publishMessage(QString address, Calyx::CalyxCollabMessage* message);
    /// Publishes \p data, a JSON text, compressed, to the whole session.
    void publishMessage(QString type, QString data);
    /// Publishes \p data, a JSON text, compressed, to \p address.
    void publishMessage(QString address, QString type, QString data);
    /// Same as publishMessage(address, type, data).
    void publishMessage64(QString address, QString type, QString data);
    /// Tells one learner's device to leave. learnerUnregister() follows at once, sent or not.
    void removeLearner(QString deviceId);
    /// Sends a ping, which does not count as activity. Every minute by itself while the channel is open.
    void sendPing();

    /// Starts a poll under a new id; a running one is not stopped. \p extra: the number of correct options of
    /// a multiple choice. \p optionCount: for a number, the number of decimals. A card image that has been
    /// set goes along.
    void startPoll(Calyx::PollType::POLL_TYPE pollType, Calyx::OrdinalType::ORDINAL_TYPE ordinalType,
                   int optionCount, int extra);
    /// The question that startPoll() sends, owned by this object; null for kinds that have no question class.
    Calyx::QuestionBase* createPollQuestion(Calyx::PollType::POLL_TYPE pollType,
                                            Calyx::OrdinalType::ORDINAL_TYPE ordinalType, int optionCount,
                                            int extra);
    /// Stops the current poll and forgets its id and the card image.
    void stopPoll();
    void pausePoll();
    void resumePoll();

    /// Sends \p question, which stays the caller's, as "questionStart" to \p address or to the whole session.
    void sendQuestion(QString address, Calyx::QuestionBase* question);
    void sendQuestion(Calyx::QuestionBase* question);

    /// The picture for the next card or poll: PNG bytes, or a reference (a URL) that devices can load. Bytes
    /// win.
    void setCardImage(const QByteArray& png);
    void setCardImageRef(const QString& reference);
    /// The picture as a URL: a data URI for bytes, else the reference, wrapped in `url('...')` if \p
    /// asCssUrl; an empty string when neither was set.
    QString getCardImageRef(bool asCssUrl);
    void clearCardImage();
    /// Shows the picture as a card on the learners' devices and forgets it. With \p checkHeavy, one of more
    /// than 524288 characters is announced with sendHeavy().
    void showImageCard(bool checkHeavy);
    /// Tells the learners' devices that something large is coming.
    void sendHeavy();

    /// Tell the remote control what is shown.
    void sendCurrentLessonToRemote(QString lessonId, QString name);
    void sendPresenterIsActiveToRemote();
    void sendCurrentCardToRemote(int currentCard, int totalCards);

Q_SIGNALS:
    /// The channel has closed. \p bClosedForInactivity: because nothing but pings was sent for over an hour.
    void connectionClosed(bool bClosedForInactivity);
    /// An answer. \p pollId: currentQuestionId() or currentPollId(). \p responseTime: milliseconds for a poll
    /// document, whole seconds for a question. See CollaborationMessageHandler::learnerPollResponse() for \p
    /// answer.
    void learnerPollResponse(QString deviceId, QString pollId, int responseTime, QString answer);
    void learnerJoin(Learner learner);
    void learnerUnregister(QString deviceId);
    void controllerRegister(bool isRegister);
    void remoteControl(RemoteControlMessage signal);
    /// A message of a type that the library does not know: its body and its decoded data.
    void unhandledMessage(QVariantMap jsonMessage, QVariant data);

protected Q_SLOTS:
    void onConnected();
    void onClosed(bool bClosedForInactivity);
    void onPingTimer();

private:
    QString resolve(const QString& address) const;
    QString below(const char* suffix) const;
    // Poll documents are for the kinds that have no question class.
    void publishPollDocument(Calyx::PollType::POLL_TYPE pollType,
                             Calyx::OrdinalType::ORDINAL_TYPE ordinalType, int optionCount);

    QTimer m_pingTimer;
    QString m_serverUrl;
    QString m_sessionCode;
    QString m_sessionToken;
    QString m_userToken;
    QString m_currentPollId;
    QByteArray m_cardImage;
    QString m_cardImageRef; // null until it is assigned
    SockJSConnector* m_connector;
    CollaborationMessageHandler* m_handler;
    QString m_currentQuestionId;
    bool m_closeRequested = false;
};
