// The answers of a raw connection, split anywhere. The input's first byte: 's' for a streaming transport,
// anything else for polling. The next four are the sizes of the pieces, in turn (0 stands for 256), the rest
// is what the peer sends.

#include "support/Fuzz.h"
#include "transport/HttpResponseParser.h"

#include <QStringList>

namespace {

using Event = HttpResponseParser::Event;

constexpr size_t pieceSizes = 4;
constexpr size_t settings = 1 + pieceSizes;

struct Outcome
{
    QStringList events;
    // Where neither chunks nor a length bound a body, and no newline a frame, it ends with what has come so
    // far: then the pieces make a difference, and they should.
    bool dependsOnPieces = false;
};

QString describe(const Event& event)
{
    QStringList parts{QString::number(event.type),          event.text,
                      QString::number(event.ends),          QString::number(event.chunked),
                      QString::number(event.contentLength), QString::number(event.closes)};
    for (auto header = event.headers.cbegin(); header != event.headers.cend(); ++header)
        parts.append(header.key() + QLatin1Char(':') + header.value());
    return parts.join(QLatin1Char('|'));
}

void drain(HttpResponseParser* parser, bool streaming, Outcome* outcome)
{
    for (;;) {
        const Event event = parser->next();
        outcome->dependsOnPieces = outcome->dependsOnPieces || (parser->isUnbounded() && !streaming);
        if (event.type == Event::Incomplete)
            return;
        if (event.type == Event::Broken)
            Fuzz::require(!parser->hasPending(), "a broken connection holds no bytes");
        if (event.type != Event::ChunkContinued) // told or not, as the pieces fall
            outcome->events.append(describe(event));
    }
}

Outcome parse(const QByteArray& bytes, bool streaming, const uint8_t* sizes)
{
    HttpResponseParser parser;
    parser.setStreaming(streaming);
    Outcome outcome;
    int position = 0;
    for (size_t turn = 0; position < bytes.size(); ++turn) {
        const int size = sizes ? (sizes[turn % pieceSizes] ? sizes[turn % pieceSizes] : 256) : bytes.size();
        parser.add(bytes.mid(position, size));
        drain(&parser, streaming, &outcome);
        position += size;
    }
    Fuzz::require(parser.pending().size() <= bytes.size(), "no more is pending than has come");
    parser.endUnbounded();
    drain(&parser, streaming, &outcome);
    Fuzz::require(!parser.isUnbounded() || streaming, "silence ends an unbounded body");
    parser.reset();
    Fuzz::require(parser.isBetweenResponses() && !parser.hasPending(), "a reset forgets everything");
    return outcome;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size <= settings)
        return 0;
    const bool streaming = data[0] == 's';
    const QByteArray bytes = Fuzz::bytes(data + settings, size - settings);
    const Outcome whole = parse(bytes, streaming, nullptr);
    const Outcome split = parse(bytes, streaming, data + 1);
    if (!whole.dependsOnPieces && !split.dependsOnPieces)
        Fuzz::require(whole.events == split.events, "however it is split, the same comes out");
    return 0;
}
