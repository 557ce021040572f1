#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/Learner.h>
#include <CalyxClient/model/RemoteControlMessage.h>

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

class QJsonObject;

namespace PayloadDecoder {
struct Payload;
}

/// Turns each inbound event-bus frame into one signal.
///
/// Reads leniently: a missing key is an empty string, zero or an empty map. All signals are emitted
/// synchronously from onHandleMessage(), on its thread; any slot may delete the handler.
class CALYXCLIENT_EXPORT CollaborationMessageHandler : public QObject
{
    Q_OBJECT

public:
    ///@{
    /// The spelling by which hosts connect to the signals.
    using Learner = Calyx::Learner;
    using RemoteControlMessage = Calyx::RemoteControlMessage;
    ///@}

    /// One belongs to each PresenterCollab.
    explicit CollaborationMessageHandler(QObject* parent = nullptr);

    /// The decoded "data" of \p body: a map, a list, a string, bytes, or an invalid value when there is none
    /// or it cannot be decoded.
    QVariant getDataValue(QVariantMap body);

    /// A controller has come: controllerRegister(true). Not reached by inbound messages.
    void actionRegister(QVariantMap body);
    /// A learner or a controller has gone: learnerUnregister() or controllerRegister(false).
    void actionUnregister(QVariantMap body);

    /// "join": learnerJoin() from the body's "from" and the data's "userName" and "deviceType".
    void dataJoin(QVariantMap body, QVariant data);
    /// "pollResponse": learnerPollResponse() from "pollId", "responseTime" and "blob", of which a list "pick"
    /// counts, else "input".
    void dataPollResponse(QVariantMap body, QVariant data);
    /// "questionResponse": learnerPollResponse() from "questionId", "responseTime", "answer" and
    /// "optionAnswers".
    void dataQuestionResponse(QVariantMap body, QVariant data);
    /// "questionGet": learnerGetQuestion() from "questionNumber".
    void dataGetQuestion(QVariantMap body, QVariant data);
    /// A command of the remote control: remoteControl() with the body's "from" and "type".
    void dataRemote(QVariantMap body, QVariant data);

Q_SIGNALS:
    /// An answer to a poll (\p pollId is the poll's id, \p responseTime in milliseconds as sent) or to a
    /// question (the question's id, whole seconds). \p answer: several picks of a poll are joined with ",",
    /// the option ids of a question are joined without anything.
    void learnerPollResponse(QString deviceId, QString pollId, int responseTime, QString answer);
    /// A learner's device has joined.
    void learnerJoin(Learner learner);
    /// A learner's device has left.
    void learnerUnregister(QString deviceId);
    /// The remote control has come (never by an inbound message) or gone.
    void controllerRegister(bool isRegister);
    /// A command of the remote control.
    void remoteControl(RemoteControlMessage Signal);
    /// A message of a type that this class does not know: its body, and its decoded data as getDataValue()
    /// gives it.
    void unhandledMessage(QVariantMap jsonMessage, QVariant data);
    /// A learner asks for question \p questionId (a number, 0 when the message named none) of an assessment.
    void learnerGetQuestion(QString id, int questionId);

protected Q_SLOTS:
    /// Takes one frame: its body's "action" counts first, else its "type". Emits one signal at most. What is
    /// no JSON, an unknown action, and a body with neither are dropped, with a debug line at most.
    void onHandleMessage(QString message);

private:
    using ActionHandler = void (CollaborationMessageHandler::*)(const QJsonObject&);
    using Payload = PayloadDecoder::Payload;
    using DataHandler = void (CollaborationMessageHandler::*)(const QJsonObject&, const Payload&);

    void handleAction(const QString& action, const QJsonObject& body);
    void handleData(const QString& type, const QJsonObject& body);

    void onUnregister(const QJsonObject& body);
    void onJoin(const QJsonObject& body, const Payload& payload);
    void onPollResponse(const QJsonObject& body, const Payload& payload);
    void onQuestionResponse(const QJsonObject& body, const Payload& payload);
    void onGetQuestion(const QJsonObject& body, const Payload& payload);
    void onRemote(const QJsonObject& body, const Payload& payload);

    QMap<QString, ActionHandler> m_actions;
    QMap<QString, DataHandler> m_dataTypes;
};
