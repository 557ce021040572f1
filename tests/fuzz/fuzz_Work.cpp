// What frames cost for each byte, those that come out of blocks included: none may take a host much longer
// than harmless ones of the same length. The input's first line says what its other lines make:
//   f  a frame each                d  the data of a message
//   p  the text of a block, as a payload; q, j, u the same in messages of other types
//   c  the text of a block each, as chunks
// Each of these lines is a text that stands there 2^n times; n is what its first letter is above '0'.

#include "compression/Lzma.h"
#include "support/Fuzz.h"

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <LzmaDec.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>

#include <algorithm>
#include <ctime>

namespace {

constexpr int most = 1 << 20;        // characters
constexpr double mostTimes = 20;     // as long as harmless ones
constexpr qint64 fewestBytes = 2000; // shorter ones count as so long: each message has its price
constexpr int rounds = 5;

qint64 decoded = 0;

struct Frames
{
    QStringList texts;
    qint64 size = 0; // in characters, and what a WebSocket puts before them

    void append(const QString& frame)
    {
        texts.append(frame);
        size += 2 + frame.size();
    }
};

struct Line
{
    QString text;
    int times;
};

QList<Line> linesOf(const QByteArray& input)
{
    QList<Line> lines;
    qint64 size = 0;
    for (const QByteArray& line : input.split('\n')) {
        const int times = line.isEmpty() ? 0 : 1 << (static_cast<unsigned char>(line.at(0) - '0') % 20);
        size += qint64(times) * line.size();
        if (size > most)
            break;
        lines.append({QString::fromUtf8(line.mid(1)), times});
    }
    return lines;
}

QString whole(const QList<Line>& lines)
{
    QString text;
    for (const Line& line : lines)
        text += line.text.repeated(line.times);
    return text;
}

QString block(const QString& text)
{
    QString base64;
    Fuzz::require(Lzma::compress64(text, &base64), "every text is compressed");
    return base64;
}

QString json(const QString& text)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact));
}

Frames message(const char* type, const QString& data)
{
    Frames frames;
    frames.append(QLatin1Char('a') + json(QStringLiteral(R"({"body":{"from":"d","type":"%1","data":%2}})")
                                              .arg(QLatin1String(type), data)));
    return frames;
}

Frames payload(const char* type, const QString& text)
{
    return message(type, json(block(text)));
}

Frames chunks(const QList<Line>& lines)
{
    QStringList list;
    for (const Line& line : lines) {
        const QString chunk = QLatin1Char('"') + block(line.text) + QLatin1Char('"');
        for (int i = 0; i < line.times && list.size() < most / 500; ++i)
            list.append(chunk);
    }
    return message("pollResponse", QLatin1Char('[') + list.join(QLatin1Char(',')) + QLatin1Char(']'));
}

Frames separate(const QList<Line>& lines)
{
    Frames frames;
    for (const Line& line : lines) {
        for (int i = 0; i < line.times && frames.size < most; ++i)
            frames.append(line.text);
    }
    return frames;
}

Frames framesOf(char kind, const QList<Line>& lines)
{
    switch (kind) {
    case 'f':
        return separate(lines);
    case 'd':
        return message("pollResponse", whole(lines));
    case 'p':
        return payload("pollResponse", whole(lines));
    case 'q':
        return payload("questionResponse", whole(lines));
    case 'j':
        return payload("join", whole(lines));
    case 'u':
        return payload("chat", whole(lines));
    case 'c':
        return chunks(lines);
    default:
        return {};
    }
}

// A collaboration that is fed as transports feed it.
void feed(const Frames& frames)
{
    static PresenterCollab collab(nullptr, QStringLiteral("http://127.0.0.1"), QStringLiteral("123456"),
                                  QStringLiteral("session"), QStringLiteral("user"));
    struct Slots : SockJSConnector
    {
        static void (SockJSConnector::*text())(QString) { return &Slots::onTextMessageReceived; }
    };
    for (const QString& frame : frames.texts)
        (collab.connector()->*Slots::text())(frame);
}

double cpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

double secondsOf(const Frames& frames)
{
    const double begin = cpuSeconds();
    feed(frames);
    return cpuSeconds() - begin;
}

qint64 bytesOf(const Frames& frames)
{
    decoded = 0;
    feed(frames);
    return frames.size + decoded;
}

Frames harmless(qint64 bytes)
{
    const Frames answer = payload(
        "pollResponse", QStringLiteral(R"({"pollId":"0b6c7e0e","responseTime":2500,"blob":{"pick":["B"]}})"));
    const qint64 each = bytesOf(answer);
    Frames frames;
    for (qint64 i = 0; i * each < bytes; ++i)
        frames.append(answer.texts.first());
    return frames;
}

double harmlessSecondsForAByte()
{
    const qint64 bytes = 100 * fewestBytes;
    const Frames frames = harmless(bytes);
    double best = secondsOf(frames);
    for (int i = 0; i < rounds; ++i)
        best = std::min(best, secondsOf(frames));
    return best / double(bytes);
}

// The processor is not ours alone: what seems to take too long is tried again, in turn with harmless frames,
// and the shortest of each count.
bool takesTooLong(const Frames& frames, qint64 bytes)
{
    const Frames others = harmless(bytes);
    double ours = secondsOf(frames);
    double theirs = secondsOf(others);
    for (int i = 1; i < rounds && ours > theirs * mostTimes; ++i) {
        ours = std::min(ours, secondsOf(frames));
        theirs = std::min(theirs, secondsOf(others));
    }
    return ours > theirs * mostTimes;
}

} // namespace

// What a block holds is counted, whether it is a good one or not.
extern "C" SRes __real_LzmaDec_DecodeToDic(CLzmaDec* state, SizeT limit, const Byte* source, SizeT* size,
                                           ELzmaFinishMode mode, ELzmaStatus* status);
extern "C" SRes __wrap_LzmaDec_DecodeToDic(CLzmaDec* state, SizeT limit, const Byte* source, SizeT* size,
                                           ELzmaFinishMode mode, ELzmaStatus* status)
{
    const SizeT begin = state->dicPos;
    const SRes result = __real_LzmaDec_DecodeToDic(state, limit, source, size, mode, status);
    decoded += qint64(state->dicPos - begin);
    return result;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const double forAByte = [] {
        QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
        return harmlessSecondsForAByte();
    }();
    const QByteArray input = Fuzz::bytes(data, size);
    const int firstLine = input.indexOf('\n');
    if (firstLine != 1)
        return -1;
    const Frames frames = framesOf(input.at(0), linesOf(input.mid(firstLine + 1)));
    const qint64 bytes = std::max(bytesOf(frames), fewestBytes);
    if (secondsOf(frames) > forAByte * double(bytes) * mostTimes / 2)
        Fuzz::require(!takesTooLong(frames, bytes), "no byte takes much longer than a harmless one");
    return 0;
}
