#include "collab/CollaborationMessageHandler.h"

#include "base/Diagnostics.h"
#include "base/JsonReader.h"
#include "collab/PayloadDecoder.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

// Messages are read as they were parsed, without turning them into variants first; what hosts hand over
// consists of variants. The same functions read both.

QVariant leaf(const QVariantMap& map, const char* key)
{
    return map.value(QLatin1String(key));
}

QVariant leaf(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toVariant();
}

QString text(const QVariantMap& map, const char* key)
{
    return leaf(map, key).toString();
}

QString text(const QJsonObject& object, const char* key)
{
    const QJsonValue value = object.value(QLatin1String(key));
    return value.isString() ? value.toString() : value.toVariant().toString();
}

QVariantMap child(const QVariantMap& map, const char* key)
{
    return leaf(map, key).toMap();
}

QJsonObject child(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toObject();
}

// A value as text that ends at its first zero byte.
QString textUpToNul(const QVariant& value)
{
    return QString::fromUtf8(value.toByteArray().constData());
}

QString textUpToNul(const QJsonValue& value)
{
    return textUpToNul(value.toVariant());
}

template<typename List>
QString joined(const List& picks)
{
    QString text;
    bool isFirst = true;
    for (const auto& pick : picks) {
        if (!isFirst)
            text += QLatin1Char(',');
        text += textUpToNul(pick);
        isFirst = false;
    }
    return text;
}

QString pickedOrTyped(const QVariantMap& blob)
{
    const QVariant pick = leaf(blob, "pick");
    return pick.canConvert<QVariantList>() ? joined(pick.toList()) : textUpToNul(leaf(blob, "input"));
}

QString pickedOrTyped(const QJsonObject& blob)
{
    const QJsonValue pick = blob.value(QLatin1String("pick"));
    return pick.isArray() ? joined(pick.toArray()) : pickedOrTyped(blob.toVariantMap());
}

} // namespace

CollaborationMessageHandler::CollaborationMessageHandler(QObject* parent) : QObject(parent)
{
    Calyx::registerLearner();
    Calyx::registerRemoteControlMessage();

    // "register" stays out on purpose: devices tell of themselves with "join".
    m_actions.insert(QStringLiteral("unregister"), &CollaborationMessageHandler::actionUnregister);

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
        (this->*handler)(body.toVariantMap());
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
    return PayloadDecoder::decode(leaf(body, "data"));
}

void CollaborationMessageHandler::actionRegister(QVariantMap body)
{
    const QVariantMap client = body.value(QStringLiteral("client")).toMap();
    if (text(client, "type") == QLatin1String("controller")) {
        qCDebug(diagnostics) << "REGISTER CONTROLLER" << text(client, "token");
        Q_EMIT controllerRegister(true);
    }
}

void CollaborationMessageHandler::actionUnregister(QVariantMap body)
{
    const QVariantMap client = body.value(QStringLiteral("client")).toMap();
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
    tellJoin(body, data.toMap());
}

void CollaborationMessageHandler::onJoin(const QJsonObject& body, const Payload& payload)
{
    tellJoin(body, payload.object());
}

template<typename Map>
void CollaborationMessageHandler::tellJoin(const Map& body, const Map& payload)
{
    const QString from = text(body, "from");
    qCDebug(diagnostics) << "JOIN" << from;
    Q_EMIT learnerJoin(Learner(from, text(payload, "userName"), text(payload, "deviceType")));
}

void CollaborationMessageHandler::dataPollResponse(QVariantMap body, QVariant data)
{
    tellPollResponse(body, data.toMap());
}

void CollaborationMessageHandler::onPollResponse(const QJsonObject& body, const Payload& payload)
{
    tellPollResponse(body, payload.object());
}

template<typename Map>
void CollaborationMessageHandler::tellPollResponse(const Map& body, const Map& payload)
{
    const QString deviceId = text(body, "from");
    const QString answer = pickedOrTyped(child(payload, "blob"));
    qCDebug(diagnostics) << "POLL_RESPONSE" << deviceId << ":" << answer;
    Q_EMIT learnerPollResponse(deviceId, text(payload, "pollId"), leaf(payload, "responseTime").toInt(),
                               answer);
}

void CollaborationMessageHandler::dataQuestionResponse(QVariantMap body, QVariant data)
{
    tellQuestionResponse(body, data.toMap());
}

void CollaborationMessageHandler::onQuestionResponse(const QJsonObject& body, const Payload& payload)
{
    tellQuestionResponse(body, payload.object());
}

template<typename Map>
void CollaborationMessageHandler::tellQuestionResponse(const Map& body, const Map& payload)
{
    constexpr int millisecondsPerSecond = 1000;
    const QString deviceId = text(body, "from");
    const int responseTime = leaf(payload, "responseTime").toInt() / millisecondsPerSecond;
    QString answer = text(payload, "answer");
    const QVariantList options = leaf(payload, "optionAnswers").toList();
    for (const QVariant& option : options)
        answer += text(option.toMap(), "activityOptionId");
    qCDebug(diagnostics) << "[DEBUG] RECEIVED RESPONSE FROM DEVICE " << deviceId << " of value: " << answer;
    Q_EMIT learnerPollResponse(deviceId, text(payload, "questionId"), responseTime, answer);
}

void CollaborationMessageHandler::dataGetQuestion(QVariantMap body, QVariant data)
{
    tellGetQuestion(body, data.toMap());
}

void CollaborationMessageHandler::onGetQuestion(const QJsonObject& body, const Payload& payload)
{
    tellGetQuestion(body, payload.object());
}

template<typename Map>
void CollaborationMessageHandler::tellGetQuestion(const Map& body, const Map& payload)
{
    const QString id = text(body, "from");
    const int questionNumber = leaf(payload, "questionNumber").toInt();
    qCDebug(diagnostics) << "Learner " << id << " requesting question " << questionNumber;
    Q_EMIT learnerGetQuestion(id, questionNumber);
}

void CollaborationMessageHandler::dataRemote(QVariantMap body, QVariant data)
{
    Q_EMIT remoteControl(RemoteControlMessage(text(body, "from"), text(body, "type"), data));
}

void CollaborationMessageHandler::onRemote(const QJsonObject& body, const Payload& payload)
{
    Q_EMIT remoteControl(RemoteControlMessage(text(body, "from"), text(body, "type"), payload.value()));
}
