// What a transport delivers. The input: frames, separated by zero bytes.

#include "JsonReader.h"
#include "support/Fuzz.h"
#include "transport/SockJSConnector.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

class Connector : public SockJSConnector
{
public:
    Connector()
    {
        connect(this, &SockJSConnector::connected, this, [this] { ++opened; });
        connect(this, &SockJSConnector::sockJSMessage, this, [this](const QString&) { ++messages; });
    }
    using SockJSConnector::onTextMessageReceived;

    int opened = 0;
    int messages = 0;
};

int expectedMessages(const QString& frame)
{
    if (!frame.startsWith(QLatin1Char('a')))
        return 0;
    const QJsonDocument document = JsonReader::read(frame.mid(1));
    return document.isArray() ? document.array().size() : 0;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Connector connector;
    const QList<QByteArray> frames = Fuzz::bytes(data, size).split('\0');
    bool hasOpened = false;
    for (const QByteArray& bytes : frames) {
        const QString frame = QString::fromUtf8(bytes);
        hasOpened = hasOpened || frame == QLatin1String("o");
        const int before = connector.messages;
        connector.onTextMessageReceived(frame);
        Fuzz::require(connector.messages - before == expectedMessages(frame), "one message for each element");
        Fuzz::require(connector.opened == (hasOpened ? 1 : 0), "one opening for the first open frame");
        Fuzz::require(connector.isConnected() == hasOpened, "open after the open frame");
    }
    connector.onTextMessageReceived(QStringLiteral("a[\"valid\"]"));
    connector.sendMessage(QString::fromUtf8(Fuzz::bytes(data, size)), false);
    return 0;
}
