// One inbound message, as it comes out of a SockJS frame: the input is its text.

#include "base/JsonReader.h"
#include "collab/CollaborationMessageHandler.h"
#include "support/Fuzz.h"

#include <QJsonDocument>

namespace {

class Handler : public CollaborationMessageHandler
{
public:
    Handler()
    {
        using Base = CollaborationMessageHandler;
        connect(this, &Base::learnerPollResponse, this,
                [this](const QString& device, const QString& poll, int time, const QString& answer) {
                    heard.append({device, poll, time, answer});
                });
        connect(this, &Base::learnerJoin, this, [this](const Learner& learner) {
            heard.append({learner.deviceId, learner.userName, learner.deviceType});
        });
        connect(this, &Base::learnerGetQuestion, this, [this](const QString& id, int number) {
            heard.append({id, number});
        });
        connect(this, &Base::learnerUnregister, this, [this](const QString& id) { heard.append({id}); });
        connect(this, &Base::controllerRegister, this,
                [this](bool isRegister) { heard.append({isRegister}); });
        connect(this, &Base::remoteControl, this, [this](const RemoteControlMessage& command) {
            heard.append({command.from, command.type, command.data});
        });
        connect(this, &Base::unhandledMessage, this, [this](const QVariantMap& body, const QVariant& data) {
            heard.append({body, data});
        });
    }
    using CollaborationMessageHandler::onHandleMessage;

    QList<QVariantList> heard; // the arguments of each signal
};

// The same, from variants.
void handle(Handler* handler, const QVariantMap& body)
{
    const QString action = body.value(QStringLiteral("action")).toString();
    const QString type = body.value(QStringLiteral("type")).toString();
    const QVariant data = handler->getDataValue(body);
    if (action == QLatin1String("unregister"))
        handler->actionUnregister(body);
    else if (!action.isNull() || type.isNull())
        return;
    else if (type == QLatin1String("join"))
        handler->dataJoin(body, data);
    else if (type == QLatin1String("pollResponse"))
        handler->dataPollResponse(body, data);
    else if (type == QLatin1String("questionResponse"))
        handler->dataQuestionResponse(body, data);
    else if (type == QLatin1String("questionGet"))
        handler->dataGetQuestion(body, data);
    else if (type == QLatin1String("stopSession") || type == QLatin1String("addImageCard"))
        handler->dataRemote(body, data);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString message = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    Handler handler;
    handler.onHandleMessage(message);
    Fuzz::require(handler.heard.size() <= 1, "a message gives one signal at most");

    const QVariant document = JsonReader::read(message).toVariant();
    Handler fromVariants;
    handle(&fromVariants, document.toMap().value(QStringLiteral("body")).toMap());
    Fuzz::require(fromVariants.heard.isEmpty() || handler.heard == fromVariants.heard,
                  "what is said is what variants say");

    handler.heard.clear();
    handler.onHandleMessage(QStringLiteral(R"({"body":{"action":"unregister","client":{"type":"user"}}})"));
    Fuzz::require(handler.heard.size() == 1, "the next message is handled");
    return 0;
}
