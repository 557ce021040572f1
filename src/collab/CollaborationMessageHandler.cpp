#include "collab/CollaborationMessageHandler.h"

#include "Diagnostics.h"
#include "JsonReader.h"
#include "collab/PayloadDecoder.h"

namespace {

QString text(const QVariantMap& map, const char* key)
{
    return map.value(QLatin1String(key)).toString();
}

// A value as text that ends at its first zero byte.
QString textUpToNul(const QVariant& value)
{
    return QString::fromUtf8(value.toByteArray().constData());
}

QString pickedOrTyped(const QVariantMap& blob)
{
    const QVariant pick = blob.value(QStringLiteral("pick"));
    if (!pick.canConvert<QVariantList>())
        return textUpToNul(blob.value(QStringLiteral("input")));
    QStringList picks;
    const QVariantList list = pick.toList();
    for (const QVariant& element : list)
        picks.append(textUpToNul(element));
    return picks.join(QLatin1Char(','));
}

} // namespace

CollaborationMessageHandler::CollaborationMessageHandler(QObject* parent) : QObject(parent)
{
    Calyx::registerLearner();
    Calyx::registerRemoteControlMessage();

    // "register" stays out on purpose: devices tell of themselves with "join".
    m_actions.insert(QStringLiteral("unregister"), &CollaborationMessageHandler::actionUnregister);

    m_dataTypes.insert(QStringLiteral("join"), &CollaborationMessageHandler::dataJoin);
    m_dataTypes.insert(QStringLiteral("pollResponse"), &CollaborationMessageHandler::dataPollResponse);
    m_dataTypes.insert(QStringLiteral("questionResponse"),
                       &CollaborationMessageHandler::dataQuestionResponse);
    m_dataTypes.insert(QStringLiteral("questionGet"), &CollaborationMessageHandler::dataGetQuestion);
    static const char* const remoteCommands[] = {
        "stopSession",     "requestLessonInfo", "requestLesson", "presenterActive", "pause",
        "resume",          "lockAll",           "unlockAll",     "nextCard",        "previousCard",
        "pushCurrentCard", "stopSession",       "addImageCard"};
    for (const char* command : remoteCommands)
        m_dataTypes.insert(QLatin1String(command), &CollaborationMessageHandler::dataRemote);
}

void CollaborationMessageHandler::onHandleMessage(QString message)
{
    qCDebug(diagnostics) << "[MessageHandler]" << message << "\n";
    QJsonParseError error;
    const QJsonDocument document = JsonReader::read(message, &error);
    if (error.error != QJsonParseError::NoError)
        return;
    const QVariantMap body = document.toVariant().toMap().value(QStringLiteral("body")).toMap();

    const QString action = text(body, "action");
    if (!action.isNull()) {
        handleAction(action, body);
        return;
    }
    const QString type = text(body, "type");
    if (!type.isNull())
        handleData(type, body);
}

void CollaborationMessageHandler::handleAction(const QString& action, const QVariantMap& body)
{
    qCDebug(diagnostics) << "[MessageHandler.ACTION]" << action;
    if (const ActionHandler handler = m_actions.value(action))
        (this->*handler)(body);
}

void CollaborationMessageHandler::handleData(const QString& type, const QVariantMap& body)
{
    qCDebug(diagnostics) << "[MessageHandler.TYPE]" << type;
    const QVariant data = getDataValue(body);
    if (const DataHandler handler = m_dataTypes.value(type))
        (this->*handler)(body, data);
    else
        Q_EMIT unhandledMessage(body, data);
}

QVariant CollaborationMessageHandler::getDataValue(QVariantMap body)
{
    return PayloadDecoder::decode(body.value(QStringLiteral("data")));
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
    const QString from = text(body, "from");
    const QVariantMap payload = data.toMap();
    qCDebug(diagnostics) << "JOIN" << from;
    Q_EMIT learnerJoin(Learner(from, text(payload, "userName"), text(payload, "deviceType")));
}

void CollaborationMessageHandler::dataPollResponse(QVariantMap body, QVariant data)
{
    const QString deviceId = text(body, "from");
    const QVariantMap payload = data.toMap();
    const QString answer = pickedOrTyped(payload.value(QStringLiteral("blob")).toMap());
    qCDebug(diagnostics) << "POLL_RESPONSE" << deviceId << ":" << answer;
    Q_EMIT learnerPollResponse(deviceId, text(payload, "pollId"),
                               payload.value(QStringLiteral("responseTime")).toInt(), answer);
}

void CollaborationMessageHandler::dataQuestionResponse(QVariantMap body, QVariant data)
{
    constexpr int millisecondsPerSecond = 1000;
    const QString deviceId = text(body, "from");
    const QVariantMap payload = data.toMap();
    const int responseTime = payload.value(QStringLiteral("responseTime")).toInt() / millisecondsPerSecond;
    QString answer = text(payload, "answer");
    const QVariantList options = payload.value(QStringLiteral("optionAnswers")).toList();
    for (const QVariant& option : options)
        answer += text(option.toMap(), "activityOptionId");
    qCDebug(diagnostics) << "[DEBUG] RECEIVED RESPONSE FROM DEVICE " << deviceId << " of value: " << answer;
    Q_EMIT learnerPollResponse(deviceId, text(payload, "questionId"), responseTime, answer);
}

void CollaborationMessageHandler::dataGetQuestion(QVariantMap body, QVariant data)
{
    const QString id = text(body, "from");
    const int questionNumber = data.toMap().value(QStringLiteral("questionNumber")).toInt();
    qCDebug(diagnostics) << "Learner " << id << " requesting question " << questionNumber;
    Q_EMIT learnerGetQuestion(id, questionNumber);
}

void CollaborationMessageHandler::dataRemote(QVariantMap body, QVariant data)
{
    Q_EMIT remoteControl(RemoteControlMessage(text(body, "from"), text(body, "type"), data));
}
