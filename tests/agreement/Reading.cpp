// What comes in from outside: one function for each kind of case.
#include "agreement/Cases.h"
#include "agreement/Text.h"

#include "base/JsonReader.h"
#include "client/GzipInflate.h"
#include "collab/CollaborationMessageHandler.h"
#include "collab/PayloadDecoder.h"
#include "compression/Lzma.h"
#include "model/JsonSerializer.h"
#include "transport/HttpResponseParser.h"
#include "transport/SockJSFrame.h"

namespace {

class Handler : public CollaborationMessageHandler
{
public:
    explicit Handler(QStringList* out)
    {
        using Base = CollaborationMessageHandler;
        const auto tell = [out](const char* signal, const QVariantList& arguments) {
            out->append(QLatin1String(signal) + textOf(arguments));
        };
        connect(this, &Base::learnerPollResponse, this,
                [tell](const QString& device, const QString& poll, int time, const QString& answer) {
                    tell("learnerPollResponse", {device, poll, time, answer});
                });
        connect(this, &Base::learnerJoin, this, [tell](const Learner& learner) {
            tell("learnerJoin", {learner.deviceId, learner.userName, learner.deviceType});
        });
        connect(this, &Base::learnerGetQuestion, this, [tell](const QString& id, int number) {
            tell("learnerGetQuestion", {id, number});
        });
        connect(this, &Base::learnerUnregister, this,
                [tell](const QString& id) { tell("learnerUnregister", {id}); });
        connect(this, &Base::controllerRegister, this,
                [tell](bool isRegister) { tell("controllerRegister", {isRegister}); });
        connect(this, &Base::remoteControl, this, [tell](const RemoteControlMessage& command) {
            tell("remoteControl", {command.from, command.type, command.data});
        });
        connect(this, &Base::unhandledMessage, this, [tell](const QVariantMap& body, const QVariant& data) {
            tell("unhandledMessage", {body, data});
        });
    }
    using CollaborationMessageHandler::onHandleMessage;
};

QString textOf(const HttpResponseParser::Event& event)
{
    QStringList headers;
    for (auto header = event.headers.cbegin(); header != event.headers.cend(); ++header)
        headers.append(header.key() + QLatin1Char(':') + header.value());
    return textOf(QVariantList{event.type, event.text, event.ends, event.chunked, event.contentLength,
                               event.closes, event.endChunkSize, headers});
}

void drain(HttpResponseParser* parser, QStringList* out)
{
    for (;;) {
        const auto event = parser->next();
        if (event.type == HttpResponseParser::Event::Incomplete)
            return;
        out->append(textOf(event));
    }
}

} // namespace

void Cases::message(const QByteArray& input, QStringList* out)
{
    Handler(out).onHandleMessage(QString::fromUtf8(input.constData(), int(input.size())));
}

void Cases::frame(const QByteArray& input, QStringList* out)
{
    const QString text = QString::fromUtf8(input.constData(), int(input.size()));
    out->append(textOf(SockJSFrame::messages(text)));
    out->append(textOf(SockJSFrame::encode(text)));
}

// The first byte says which transport it is, the next four how the rest falls into pieces.
void Cases::http(const QByteArray& input, QStringList* out)
{
    constexpr int settings = 5;
    HttpResponseParser parser;
    parser.setStreaming(input.startsWith('s'));
    int turn = 0;
    for (int at = settings; at < int(input.size());) {
        const int size = 1 + static_cast<unsigned char>(input.at(1 + turn++ % (settings - 1)));
        parser.add(input.mid(at, size));
        at += size;
        drain(&parser, out);
    }
    parser.endUnbounded();
    drain(&parser, out);
    out->append(textOf(parser.pending()));
}

void Cases::gzip(const QByteArray& input, QStringList* out)
{
    out->append(textOf(gUncompress(input)));
}

// The first byte says what the rest is: a text, chunks, or any JSON.
void Cases::payload(const QByteArray& input, QStringList* out)
{
    const QByteArray rest = input.mid(1);
    QVariant data = QString::fromUtf8(rest.constData(), int(rest.size()));
    if (input.startsWith('c'))
        data =
            QVariant(QString::fromUtf8(rest.constData(), int(rest.size())).split(QLatin1Char('\n'))).toList();
    else if (input.startsWith('j'))
        data = JsonReader::read(rest).toVariant();
    out->append(textOf(PayloadDecoder::decode(data)));
}

void Cases::block(const QByteArray& input, QStringList* out)
{
    for (const bool isText : {true, false}) {
        QString text;
        const bool isBlock =
            isText ? Lzma::decompress64(QString::fromLatin1(input.toBase64()), &text)
                   : Lzma::decompress(QString::fromLatin1(input.constData(), int(input.size())), &text);
        out->append(textOf(QVariantList{isBlock, text}));
    }
    QString again;
    Lzma::compress64(QString::fromUtf8(input.constData(), int(input.size())), &again);
    out->append(textOf(again));
}

void Cases::json(const QByteArray& input, QStringList* out)
{
    const QJsonDocument document = JsonReader::read(QString::fromUtf8(input.constData(), int(input.size())));
    out->append(textOf(document.toVariant()));
    out->append(textOf(Calyx::JsonSerializer::serializeToJson(document.toVariant().toMap())));
}
