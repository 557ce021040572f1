// One inbound message, as it comes out of a SockJS frame: the input is its text.

#include "JsonReader.h"
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
        connect(this, &Base::learnerPollResponse, this, &Handler::count);
        connect(this, &Base::learnerJoin, this, &Handler::count);
        connect(this, &Base::learnerUnregister, this, &Handler::count);
        connect(this, &Base::controllerRegister, this, &Handler::count);
        connect(this, &Base::remoteControl, this, &Handler::count);
        connect(this, &Base::unhandledMessage, this, &Handler::count);
        connect(this, &Base::learnerGetQuestion, this, &Handler::count);
    }
    using CollaborationMessageHandler::onHandleMessage;

    int signalCount = 0;

private:
    void count() { ++signalCount; }
};

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString message = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    Handler handler;
    handler.onHandleMessage(message);
    Fuzz::require(handler.signalCount <= 1, "a message gives one signal at most");

    const QVariant document = JsonReader::read(message).toVariant();
    const QVariantMap body = document.toMap().value(QStringLiteral("body")).toMap();
    if (body.isEmpty())
        Fuzz::require(handler.signalCount == 0, "no body, no signal");
    else
        handler.getDataValue(body);

    const int before = handler.signalCount;
    handler.onHandleMessage(QStringLiteral(R"({"body":{"action":"unregister","client":{"type":"user"}}})"));
    Fuzz::require(handler.signalCount == before + 1, "the next message is handled");
    return 0;
}
