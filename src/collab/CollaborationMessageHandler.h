#pragma once

#include "calyxclient_export.h"
#include "model/Learner.h"
#include "model/RemoteControlMessage.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

/// Turns each inbound event-bus frame into one signal.
///
/// Reads leniently: a missing key is an empty string, zero or an empty map. All signals are emitted
/// synchronously from onHandleMessage(), on its thread; any slot may delete the handler.
class CALYXCLIENT_EXPORT CollaborationMessageHandler : public QObject
{
    Q_OBJECT

public:
    // The spellings by which hosts connect to the signals.
    using Learner = Calyx::Learner;
    using RemoteControlMessage = Calyx::RemoteControlMessage;

    explicit CollaborationMessageHandler(QObject* parent = nullptr);

    /// The decoded "data" of \p body: a map, a list, a string, bytes, or an invalid value when there is none
    /// or it cannot be decoded.
    QVariant getDataValue(QVariantMap body);

    /// A controller has come: controllerRegister(true). Not reached by inbound messages.
    void actionRegister(QVariantMap body);
    /// A learner or a controller has gone: learnerUnregister() or controllerRegister(false).
    void actionUnregister(QVariantMap body);

    void dataJoin(QVariantMap body, QVariant data);
    void dataPollResponse(QVariantMap body, QVariant data);
    void dataQuestionResponse(QVariantMap body, QVariant data);
    void dataGetQuestion(QVariantMap body, QVariant data);
    void dataRemote(QVariantMap body, QVariant data);

Q_SIGNALS:
    /// An answer to a poll (\p pollId is the poll's id, \p responseTime in milliseconds as sent) or to a
    /// question (the question's id, whole seconds). \p answer: several picks of a poll are joined with ",",
    /// the option ids of a question are joined without anything.
    void learnerPollResponse(QString deviceId, QString pollId, int responseTime, QString answer);
    void learnerJoin(Learner learner);
    void learnerUnregister(QString deviceId);
    void controllerRegister(bool isRegister);
    void remoteControl(RemoteControlMessage Signal);
    /// A message of a type that this class does not know: its body, and its decoded data as getDataValue()
    /// gives it.
    void unhandledMessage(QVariantMap jsonMessage, QVariant data);
    /// A learner asks for question \p questionId (a number, 0 when the message named none) of an assessment.
    void learnerGetQuestion(QString id, int questionId);

protected Q_SLOTS:
    void onHandleMessage(QString message);

private:
    using ActionHandler = void (CollaborationMessageHandler::*)(QVariantMap);
    using DataHandler = void (CollaborationMessageHandler::*)(QVariantMap, QVariant);

    void handleAction(const QString& action, const QVariantMap& body);
    void handleData(const QString& type, const QVariantMap& body);

    QMap<QString, ActionHandler> m_actions;
    QMap<QString, DataHandler> m_dataTypes;
};
