#include "collab/CollaborationMessageHandler.h"

#include "base/Diagnostics.h"
#include "base/JsonReader.h"
#include "base/JsonVariant.h"
#include "collab/PayloadDecoder.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

using JsonVariant::text;

// Messages are read as they were parsed, without turning them into variants first; the variants that hosts
// hand over are turned into JSON where they come in.

int number(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toVariant().toInt();
}

QJsonObject child(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toObject();
}

// A value as text that ends at its first zero byte.
QString textUpToNul(const QJsonValue& value)
{
    return QString::fromUtf8(value.toVariant().toByteArray().constData());
}

QString joined(const QJsonArray& picks)
{
    QString text;
    for (int i = 0; i < picks.size(); ++i) {
        if (i > 0)
            text += QLatin1Char(',');
        text += textUpToNul(picks.at(i));
    }
    return text;
}

QString pickedOrTyped(const QJsonObject& blob)
{
    const QJsonValue pick = blob.value(QLatin1String("pick"));
    return pick.isArray() ? joined(pick.toArray()) : textUpToNul(blob.value(QLatin1String("input")));
}

QJsonObject objectOf(const QVariant& map)
{
    return JsonVariant::toJson(map).toObject();
}

PayloadDecoder::Payload payloadOf(const QVariant& data)
{
    return {QJsonDocument(objectOf(data)), QVariant()};
}

} // namespace

CollaborationMessageHandler::CollaborationMessageHandler(QObject* parent) : QObject(parent)
{
    Calyx::registerLearner();
    Calyx::registerRemoteControlMessage();

    // "register" stays out on purpose: devices tell of themselves with "join".
    m_actions.insert(QStringLiteral("unregister"), &CollaborationMessageHandler::onUnregister);

    m_dataTypes.insert(QStringLiteral("join"), &CollaborationMessageHandler::onJoin);
    m_dataTypes.insert(QStringLiteral("pollResponse"), &CollaborationMessageHandler::onPollResponse);
    m_dataTypes.insert(QStringLiteral("questionResponse"), &CollaborationMessageHandler::onQuestionResponse);
    m_dataTypes.insert(QStringLiteral("questionGet"), &CollaborationMessageHandler::onGetQuestion);
    static const char* const remoteCommands[] = {
        "stopSession",     "requestLessonInfo", "requestLesson", "presenterActive", "pause",
        "resume",          "lockAll",           "unlockAll",     "nextCard",        "previousCard",
        "pushCurrentCard", "stopSession",       "addImageCard"};
    for (const char* command : remoteCommands)
        m_dataTypes.insert(QLatin1String(command), &CollaborationMessageHandler::onRemote);
}

void CollaborationMessageHandler::onHandleMessage(QString message)
{
    qCDebug(diagnostics) << "[MessageHandler]" << message << "\n";
    QJsonParseError error;
    const QJsonDocument document = JsonReader::read(message, &error);
    if (error.error != QJsonParseError::NoError)
        return;
    const QJsonObject body = child(document.object(), "body");

    const QString action = text(body, "action");
    if (!action.isNull()) {
        handleAction(action, body);
        return;
    }
    const QString type = text(body, "type");
    if (!type.isNull())
        handleData(type, body);
}

void CollaborationMessageHandler::handleAction(const QString& action, const QJsonObject& body)
{
    qCDebug(diagnostics) << "[MessageHandler.ACTION]" << action;
    if (const ActionHandler handler = m_actions.value(action))
        (this->*handler)(body);
}

void CollaborationMessageHandler::handleData(const QString& type, const QJsonObject& body)
{
    qCDebug(diagnostics) << "[MessageHandler.TYPE]" << type;
    const Payload payload = PayloadDecoder::read(body.value(QLatin1String("data")));
    if (const DataHandler handler = m_dataTypes.value(type))
        (this->*handler)(body, payload);
    else
        Q_EMIT unhandledMessage(body.toVariantMap(), payload.value());
}

QVariant CollaborationMessageHandler::getDataValue(QVariantMap body)
{
    return PayloadDecoder::decode(body.value(QStringLiteral("data")));
}

void CollaborationMessageHandler::actionRegister(QVariantMap body)
{
    const QJsonObject client = child(objectOf(body), "client");
    if (text(client, "type") == QLatin1String("controller")) {
        qCDebug(diagnostics) << "REGISTER CONTROLLER" << text(client, "token");
        Q_EMIT controllerRegister(true);
    }
}

void CollaborationMessageHandler::actionUnregister(QVariantMap body)
{
    onUnregister(objectOf(body));
}

void CollaborationMessageHandler::onUnregister(const QJsonObject& body)
{
    const QJsonObject client = child(body, "client");
    const QString token = text(client, "token");
    const QString kind = text(client, "type");
    if (kind == QLatin1String("user")) {
        qCDebug(diagnostics) << "UNREGISTER" << token;
        Q_EMIT learnerUnregister(token);
    } else if (kind == QLatin1String("controller")) {
        qCDebug(diagnostics) << "UNREGISTER CONTROLLER" << token;
        Q_EMIT controllerRegister(false);
    }
}

void CollaborationMessageHandler::dataJoin(QVariantMap body, QVariant data)
{
    onJoin(objectOf(body), payloadOf(data));
}

void CollaborationMessageHandler::onJoin(const QJsonObject& body, const Payload& payload)
{
    const QJsonObject data = payload.object();
    const QString from = text(body, "from");
    qCDebug(diagnostics) << "JOIN" << from;
    Q_EMIT learnerJoin(Learner(from, text(data, "userName"), text(data, "deviceType")));
}

void CollaborationMessageHandler::dataPollResponse(QVariantMap body, QVariant data)
{
    onPollResponse(objectOf(body), payloadOf(data));
}

void CollaborationMessageHandler::onPollResponse(const QJsonObject& body, const Payload& payload)
{
    const QJsonObject data = payload.object();
    const QString deviceId = text(body, "from");
    const QString answer = pickedOrTyped(child(data, "blob"));
    qCDebug(diagnostics) << "POLL_RESPONSE" << deviceId << ":" << answer;
    Q_EMIT learnerPollResponse(deviceId, text(data, "pollId"), number(data, "responseTime"), answer);
}

void CollaborationMessageHandler::dataQuestionResponse(QVariantMap body, QVariant data)
{
    onQuestionResponse(objectOf(body), payloadOf(data));
}

void CollaborationMessageHandler::onQuestionResponse(const QJsonObject& body, const Payload& payload)
{
    constexpr int millisecondsPerSecond = 1000;
    const QJsonObject data = payload.object();
    const QString deviceId = text(body, "from");
    const int responseTime = number(data, "responseTime") / millisecondsPerSecond;
    QString answer = text(data, "answer");
    const QJsonArray options = data.value(QLatin1String("optionAnswers")).toArray();
    for (const QJsonValue& option : options)
        answer += text(option.toObject(), "activityOptionId");
    qCDebug(diagnostics) << "[DEBUG] RECEIVED RESPONSE FROM DEVICE " << deviceId << " of value: " << answer;
    Q_EMIT learnerPollResponse(deviceId, text(data, "questionId"), responseTime, answer);
}

void CollaborationMessageHandler::dataGetQuestion(QVariantMap body, QVariant data)
{
    onGetQuestion(objectOf(body), payloadOf(data));
}

void CollaborationMessageHandler::onGetQuestion(const QJsonObject& body, const Payload& payload)
{
    const QString id = text(body, "from");
    const int questionNumber = number(payload.object(), "questionNumber");
    qCDebug(diagnostics) << "Learner " << id << " requesting question " << questionNumber;
    Q_EMIT learnerGetQuestion(id, questionNumber);
}

void CollaborationMessageHandler::dataRemote(QVariantMap body, QVariant data)
{
    onRemote(objectOf(body), {QJsonDocument(), data});
}

void CollaborationMessageHandler::onRemote(const QJsonObject& body, const Payload& payload)
{
    Q_EMIT remoteControl(RemoteControlMessage(text(body, "from"), text(body, "type"), payload.value()));
}
