// What a transport delivers. The input: frames, separated by zero bytes.

#include "base/JsonReader.h"
#include "support/Fuzz.h"
#include "transport/SockJSConnector.h"
#include "transport/SockJSFrame.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

class Connector : public SockJSConnector
{
public:
    Connector()
    {
        connect(this, &SockJSConnector::connected, this, [this] { ++opened; });
        connect(this, &SockJSConnector::sockJSMessage, this,
                [this](const QString& text) { messages.append(text); });
    }
    using SockJSConnector::onTextMessageReceived;

    int opened = 0;
    QStringList messages;
};

QStringList messagesIn(const QString& frame)
{
    QStringList texts;
    if (!frame.startsWith(QLatin1Char('a')))
        return texts;
    const QVariantList elements = JsonReader::read(frame.mid(1)).toVariant().toList();
    for (const QVariant& element : elements)
        texts.append(element.toString());
    return texts;
}

QString frameOf(const QString& message)
{
    QString frame = QString::fromUtf8(QJsonDocument(QJsonArray{message}).toJson().constData());
    frame.replace(QLatin1String("[ "), QLatin1String("["));
    return frame.replace(QLatin1String(" ]"), QLatin1String("]"));
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
        connector.messages.clear();
        connector.onTextMessageReceived(frame);
        Fuzz::require(connector.messages == messagesIn(frame), "one message for each element, with its text");
        Fuzz::require(connector.opened == (hasOpened ? 1 : 0), "one opening for the first open frame");
        Fuzz::require(connector.isConnected() == hasOpened, "open after the open frame");
    }
    connector.onTextMessageReceived(QStringLiteral("a[\"valid\"]"));
    const QString message = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    Fuzz::require(SockJSFrame::encode(message) == frameOf(message), "a frame is what Qt writes");
    return 0;
}
