#include "support/HttpServer.h"
#include "support/Recordings.h"
#include "support/Rows.h"
#include "transport/HttpResponseParser.h"

#include <QStringList>
#include <QtTest>

using Event = HttpResponseParser::Event;
using namespace HttpText;

namespace {

QString describe(const Event& event)
{
    switch (event.type) {
    case Event::Header: {
        QString text = QStringLiteral("header");
        for (auto header = event.headers.cbegin(); header != event.headers.cend(); ++header)
            text += QStringLiteral(" %1:%2").arg(header.key(), header.value());
        return text;
    }
    case Event::Message:
        return (event.ends ? QStringLiteral("last %1") : QStringLiteral("frame %1")).arg(event.text);
    case Event::Empty:
        return QStringLiteral("empty");
    case Event::Broken:
        return QStringLiteral("broken");
    case Event::ChunkContinued:
    case Event::Incomplete:
        break;
    }
    return QString();
}

// Everything that the parser has to say so far. How a chunk's line break came is nobody's business.
QStringList drain(HttpResponseParser* parser)
{
    QStringList events;
    for (;;) {
        const Event event = parser->next();
        if (event.type == Event::Incomplete)
            return events;
        if (event.type != Event::ChunkContinued)
            events.append(describe(event));
    }
}

// What has come out of a parser so far, and the parser, to go on from there.
struct Parsing
{
    explicit Parsing(bool streaming) { parser.setStreaming(streaming); }
    Parsing& add(const QByteArray& piece)
    {
        parser.add(piece);
        events += drain(&parser);
        return *this;
    }
    Parsing& close()
    {
        parser.endUnbounded();
        events += drain(&parser);
        return *this;
    }

    HttpResponseParser parser;
    QStringList events;
};

// Where to split: everywhere, but among the equal bytes that begin a stream at every 64th.
QList<int> splitsOf(const QByteArray& bytes)
{
    QList<int> splits;
    for (int i = 0; i < bytes.size(); ++i) {
        if (i % 64 == 0 || bytes.mid(qMax(0, i - 2), 4) != "hhhh")
            splits.append(i);
    }
    return splits;
}

// The frames of recorded answers, from what describe() says of them.
QStringList framesIn(const QStringList& events)
{
    QStringList frames;
    for (const QString& event : events) {
        if (event.startsWith(QLatin1String("frame ")) || event.startsWith(QLatin1String("last ")))
            frames.append(event.section(QLatin1Char(' '), 1));
    }
    return frames;
}

QByteArray head(const QByteArray& lines)
{
    return "HTTP/1.1 200 OK\r\n" + lines + "\r\n";
}

} // namespace

class tst_HttpResponseParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordedAnswersHoldWhatWasSent_data()
    {
        columns<QString>();
        for (const Recordings::Answer& answer : Recordings::all())
            QTest::newRow(qPrintable(answer.name)) << answer.name;
    }
    // Each piece with its last byte, and not before.
    void recordedAnswersHoldWhatWasSent()
    {
        const Recordings::Answer answer = Recordings::named(std::get<0>(row<QString>()));
        const QList<int> ends = answer.ends();
        QCOMPARE(ends.size(), answer.isStream() ? answer.contents.size() : 1);
        Parsing parsing(answer.isStream());
        for (int i = 0; i < answer.bytes.size(); ++i) {
            parsing.add(answer.bytes.mid(i, 1));
            const auto due = std::count_if(ends.begin(), ends.end(), [i](int end) { return end <= i + 1; });
            QVERIFY2(framesIn(parsing.events).size() == due, qPrintable(QString::number(i)));
        }
        QCOMPARE(Recordings::contents(framesIn(parsing.events)), answer.contents);
        QCOMPARE(parsing.events.filter(QRegularExpression(QStringLiteral("^header "))).size(), 1);
        QVERIFY(parsing.parser.isBetweenResponses());
    }

    void answersHoweverTheyCome_data()
    {
        columns<QByteArray, bool, bool, QStringList>();
        for (const Recordings::Answer& answer : Recordings::all())
            QTest::newRow(qPrintable(answer.name)) << answer.bytes << answer.isStream() << false
                                                   << Parsing(answer.isStream()).add(answer.bytes).events;
        const QString inChunks = QStringLiteral("header Transfer-Encoding: chunked");
        const auto length = [](int size) { return QStringLiteral("header Content-Length: %1").arg(size); };
        const auto row = [](const char* name, const QByteArray& bytes, const QStringList& expected,
                            bool streaming = false, bool closed = false) {
            QTest::newRow(name) << bytes << streaming << closed << expected;
        };
        row("npm sockjs: one chunk",
            "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\no\n\r\n0\r\n\r\n",
            {inChunks, "last o"});
        row("sockjs-go: with a length", head("Content-Length: 2\r\n") + "o\n", {length(2), "last o"});
        row("names with a NUL and other letters",
            head(QByteArray("A\0B-\xc6\x9b: c\r\ncontent-length: 2\r\n", 30)) + "o\n",
            {QStringLiteral("header A%1b-\u019b: c Content-Length: 2").arg(QChar()), "last o"});
        row("names in lower case", head("content-length: 2\r\nset-cookie: a=1\r\n") + "o\n",
            {"header Content-Length: 2 Set-Cookie: a=1", "last o"});
        row("names in upper case", head("CONTENT-LENGTH: 2\r\n") + "o\n", {length(2), "last o"});
        row("names with blanks around", head(" Content-Length : 2\r\n") + "o\n", {length(2), "last o"});
        row("no blank after the colon", head("Content-Length:2\r\n") + "o\n",
            {"header Content-Length:2", "last o"});
        row("lines without colon, and with one in front",
            head("nothing\r\n: x\r\nA: b\r\nContent-Length: 1\r\n") + "h",
            {"header A: b Content-Length: 1", "last h"});
        row("a later line replaces an earlier one", head("A: 1\r\nA: 2\r\nContent-Length: 1\r\n") + "h",
            {"header A: 2 Content-Length: 1", "last h"});
        row("every cookie is kept", head("Set-Cookie: a=1\r\nSet-Cookie: b=2\r\nContent-Length: 1\r\n") + "h",
            {"header Content-Length: 1 Set-Cookie: a=1\n b=2", "last h"});
        row("line breaks without CR", "HTTP/1.1 200 OK\nContent-Length: 2\n\no\n", {length(2), "last o"});
        row("status 404", "HTTP/1.1 404 Not Found\r\nContent-Length: 5\r\n\r\nwhat?",
            {length(5), "last what?"});
        row("status 204 has no body", "HTTP/1.1 204 No Content\r\nA: b\r\n\r\n" + plain("o\n"),
            {"header A: b", "empty", length(2), "last o"});
        row("100 announces the real answer", "HTTP/1.1 100 Continue\r\n\r\n" + plain("o\n"),
            {length(2), "last o"});
        row("length 0", plain(""), {length(0), "empty"});
        row("an empty chunked body", chunkedHead() + endChunk(), {inChunks, "empty"});
        row("garbage before", "garbage\r\nHTTX\r\n" + plain("o\n"), {length(2), "last o"});
        row("two answers", plain("o\n") + chunked("h\n"), {length(2), "last o", inChunks, "last h"});
        row("one trailing newline is dropped", plain("a\n\n"), {length(3), "last a\n"});
        row("HTTP/ inside a body", plain("a[\"HTTP/1.1 200 OK\"]\n"),
            {length(21), "last a[\"HTTP/1.1 200 OK\"]"});
        row("HTTP/ inside a chunk", chunked("a[\"HTTP/1.1 200 OK\\r\\n\"]\n"),
            {inChunks, "last a[\"HTTP/1.1 200 OK\\r\\n\"]"});
        row("several chunks are one message", chunkedHead() + chunk("ab") + chunk("cde\n") + endChunk(),
            {inChunks, "last abcde"});
        row("an empty line between chunks", chunkedHead() + chunk("ab") + "\r\n" + chunk("cd\n") + endChunk(),
            {inChunks, "last abcd"});
        row("two empty lines end the body", chunkedHead() + chunk("ab") + "\r\n\r\n", {inChunks, "last ab"});
        row("newlines inside a polled body stay", chunked("a\nb\n"), {inChunks, "last a\nb"});
        row("text outside ASCII", plain(QStringLiteral("a[\"äß€😀\"]\n").toUtf8()),
            {length(17), QStringLiteral("last a[\"äß€😀\"]")});
        row("a character in two chunks", chunkedHead() + chunk("a\xe2\x82") + chunk("\xac!") + endChunk(),
            {inChunks, QStringLiteral("last a€!")});
        row("a NUL in the body", plain(QByteArray("a\0b", 3)),
            {length(3), QStringLiteral("last ") + QString(QLatin1String("a\0b", 3))});
        row("chunk sizes in capitals and with an extension",
            chunkedHead() + "A;x=y\r\n0123456789\r\n0\r\n\r\n", {inChunks, "last 0123456789"});
        row("a first chunk of one byte ends the body", chunkedHead() + chunk("x"), {inChunks, "empty"});
        row("a chunk of one byte ends the body", chunkedHead() + chunk("ab") + chunk("x"),
            {inChunks, "last ab"});
        row("a chunk size that is no number ends the body", chunkedHead() + chunk("ab") + "what\r\n",
            {inChunks, "last ab"});
        row("a negative chunk size ends the body", chunkedHead() + chunk("ab") + "-5\r\n",
            {inChunks, "last ab"});
        row("chunks count, not the length",
            head("Content-Length: 1\r\nTransfer-Encoding: gzip, chunked\r\n") + chunk("ab\n") + endChunk(),
            {"header Content-Length: 1 Transfer-Encoding: gzip, chunked", "last ab"});
        row("neither length nor chunks, up to its newline", head("A: b\r\n") + "o\n",
            {"header A: b", "last o"});
        row("neither length nor chunks, up to the end", head("A: b\r\n") + "o", {"header A: b", "last o"},
            false, true);
        row("neither length nor chunks, and nothing", head("A: b\r\n"), {"header A: b", "empty"}, false,
            true);
        row("a length of text", head("Content-Length: two\r\n") + "o\n",
            {"header Content-Length: two", "last o"});
        row("a length of -1", head("Content-Length: -1\r\n") + "o\n",
            {"header Content-Length: -1", "last o"});
        row("only half an answer", chunkedHead() + "5\r\nab", {inChunks}, false, true);
        row("a stream", chunkedHead() + chunk("hhh\n") + chunk("o\n") + chunk("a[\"x\"]\n") + endChunk(),
            {inChunks, "frame hhh", "frame o", "frame a[\"x\"]", "empty"}, true);
        row("a stream with chunks cut anew",
            chunkedHead() + chunk("o\na[\"") + chunk("x") + chunk("\"]\nh") + chunk("\n") + endChunk(),
            {inChunks, "frame o", "frame a[\"x\"]", "frame h", "empty"}, true);
        row("a chunk size that is no number ends a stream", chunkedHead() + chunk("o\n") + "what\r\n",
            {inChunks, "frame o", "empty"}, true);
        row("a stream whose last frame has no newline", chunkedHead() + chunk("o\nh") + endChunk(),
            {inChunks, "frame o", "last h"}, true);
        row("a stream with a length", plain("o\nh\n"), {length(4), "frame o", "frame h", "empty"}, true);
        row("a stream with neither", head("A: b\r\n") + "o\nh\na",
            {"header A: b", "frame o", "frame h", "last a"}, true, true);
    }
    // Whole, split into two and into three, byte by byte, and with the same answer right behind where its end
    // is known.
    void answersHoweverTheyCome()
    {
        const auto [bytes, streaming, closed, expected] = row<QByteArray, bool, bool, QStringList>();
        Parsing slow(streaming);
        bool isBounded = !closed;
        for (const char byte : bytes) {
            slow.add(QByteArray(1, byte));
            isBounded = isBounded && !slow.parser.isUnbounded();
        }
        QCOMPARE((closed ? slow.close() : slow).events, expected);
        const QList<int> splits = splitsOf(bytes);
        for (int i = 0; i < splits.size(); ++i) {
            const int first = splits.at(i);
            const Parsing begun = Parsing(streaming).add(bytes.left(first));
            // The pairs grow with the square: of a long answer only some.
            for (int j = i; j<splits.size(); j += bytes.size()> 1000 ? 47 : 1) {
                const int second = splits.at(j);
                Parsing parsing = begun;
                parsing.add(bytes.mid(first, second - first)).add(bytes.mid(second));
                if ((closed ? parsing.close() : parsing).events != expected)
                    QFAIL(qPrintable(QStringLiteral("split at %1 and %2: ").arg(first).arg(second) +
                                     parsing.events.join(QLatin1Char('|'))));
            }
            if (isBounded)
                QCOMPARE(
                    Parsing(begun).add(bytes.mid(first) + bytes.left(first)).add(bytes.mid(first)).events,
                    expected + expected);
        }
    }

    void headerValues()
    {
        HttpResponseParser parser;
        parser.add(head("Content-Length: 5\r\nConnection: Close\r\n"));
        Event event = parser.next();
        QCOMPARE(event.type, Event::Header);
        QCOMPARE(event.contentLength, 5);
        QVERIFY(!event.chunked);
        QVERIFY(event.closes);
        parser.reset();
        parser.add(chunkedHead("Connection: keep-alive\r\n"));
        event = parser.next();
        QCOMPARE(event.contentLength, 0);
        QVERIFY(event.chunked);
        QVERIFY(!event.closes);
    }

    void endChunkTellsTheSizeOfTheText()
    {
        HttpResponseParser parser;
        parser.add(chunked(QStringLiteral("ä€\n").toUtf8()));
        QCOMPARE(parser.next().type, Event::Header);
        const Event event = parser.next();
        QCOMPARE(event.type, Event::Message);
        QCOMPARE(event.endChunkSize, 3);
        QVERIFY(event.ends);
        parser.add(plain("o\n"));
        QCOMPARE(parser.next().type, Event::Header);
        QCOMPARE(parser.next().endChunkSize, -1);
    }

    void lateLineBreakAfterAChunkIsTold()
    {
        HttpResponseParser parser;
        parser.add(chunkedHead() + "2\r\nab");
        QCOMPARE(parser.next().type, Event::Header);
        QCOMPARE(parser.next().type, Event::Incomplete);
        parser.add("\r\n0\r\n\r\n");
        QCOMPARE(parser.next().type, Event::ChunkContinued);
        QCOMPARE(parser.next().text, QStringLiteral("ab"));
    }

    void nothingIsPendingBetweenPieces()
    {
        HttpResponseParser parser;
        for (const QByteArray& piece : {chunkedHead(), QByteArray("5\r\n"), QByteArray("abcde"),
                                        QByteArray("\r\n"), QByteArray("0\r\n"), QByteArray("\r\n")}) {
            parser.add(piece);
            drain(&parser);
            QVERIFY2(!parser.hasPending(), piece.constData());
        }
    }

    void halfAPieceIsPending()
    {
        for (const QByteArray& bytes :
             {QByteArray("HT"), QByteArray("garbage"), QByteArray("HTTP/1.1 200 OK\r\nA"),
              chunkedHead() + "5", chunkedHead() + "5\r\nabcd", head("Content-Length: 5\r\n") + "abcd",
              head("") + "abcd"}) {
            HttpResponseParser parser;
            parser.add(bytes);
            drain(&parser);
            QVERIFY2(parser.hasPending(), bytes.constData());
            QVERIFY(bytes.endsWith(parser.pending()));
        }
    }

    void leftoversAreNotAnAnswer()
    {
        HttpResponseParser parser;
        QVERIFY(parser.isBetweenResponses());
        parser.add(chunkedHead());
        QCOMPARE(parser.next().type, Event::Header);
        QVERIFY(!parser.isBetweenResponses());
        parser.add(chunk("ab") + chunk("x") + "0\r\nTrailer: x\r\n\r\n");
        QCOMPARE(drain(&parser), QStringList("last ab"));
        QVERIFY(parser.isBetweenResponses());
        parser.add("HTTP/1.1 408");
        QCOMPARE(drain(&parser), QStringList());
        QVERIFY(!parser.isBetweenResponses());
    }

    void endOfConnectionEndsOnlyAnUnboundedBody()
    {
        HttpResponseParser parser;
        parser.add(head("Content-Length: 5\r\n") + "abcd");
        drain(&parser);
        QVERIFY(!parser.isUnbounded());
        parser.endUnbounded();
        QCOMPARE(drain(&parser), QStringList());
        parser.reset();
        parser.add(head("") + "abcd");
        drain(&parser);
        QVERIFY(parser.isUnbounded());
        parser.endUnbounded();
        QCOMPARE(drain(&parser), QStringList("last abcd"));
        QVERIFY(!parser.isUnbounded());
    }

    void overruns_data()
    {
        columns<QByteArray>();
        const QByteArray tooMany(HttpResponseParser::MaxHeadSize + 1, 'x');
        QTest::newRow("garbage") << tooMany;
        QTest::newRow("header without end") << "HTTP/1.1 200 OK\r\nA: " + tooMany;
        QTest::newRow("header with end") << head("A: " + tooMany + "\r\n");
        QTest::newRow("chunk size line") << chunkedHead() + tooMany;
        QTest::newRow("chunk size line with end") << chunkedHead() + tooMany + "\r\n";
        QTest::newRow("chunk of 2^64-1") << chunkedHead() + "ffffffffffffffff\r\nab";
        QTest::newRow("chunk of 0x and 2^64-1") << chunkedHead() + "0xffffffffffffffff\r\nab";
        QTest::newRow("chunk beyond 64 bits") << chunkedHead() + "0123456789abcdefABCDEF\r\nab";
        QTest::newRow("chunk beyond the limit") << chunkedHead() + "10000001\r\nab";
        QTest::newRow("chunks beyond the limit") << chunkedHead() + chunk("ab") + "fffffff\r\nab";
        QTest::newRow("length of 2^63") << head("Content-Length: 9223372036854775808\r\n") + "ab";
        QTest::newRow("length beyond 64 bits") << head("Content-Length: 99999999999999999999999\r\n") + "ab";
        QTest::newRow("length beyond the limit") << head("Content-Length: 268435457\r\n") + "ab";
    }
    void overruns()
    {
        const auto [bytes] = row<QByteArray>();
        HttpResponseParser parser;
        parser.add(bytes);
        QStringList events = drain(&parser);
        QCOMPARE(events.takeLast(), QStringLiteral("broken"));
        QVERIFY(!events.contains(QStringLiteral("broken")));
        QVERIFY(!parser.hasPending());
        parser.add(plain("o\n"));
        QCOMPARE(drain(&parser), QStringList());
        QVERIFY(!parser.hasPending());
        parser.reset();
        parser.add(plain("o\n"));
        QCOMPARE(drain(&parser).value(1), QStringLiteral("last o"));
    }

    void largestHeaderIsTaken()
    {
        const QByteArray begin = "HTTP/1.1 200 OK\r\nContent-Length: 1\r\nA: ";
        const QByteArray end = "\r\n\r\n";
        const QByteArray value(HttpResponseParser::MaxHeadSize - begin.size() - end.size(), 'x');
        HttpResponseParser parser;
        parser.add(begin + value + end + "h");
        QCOMPARE(parser.next().headers.value("A").size(), value.size() + 1);
        QCOMPARE(parser.next().text, QStringLiteral("h"));
    }

    void largestLengthIsAwaited()
    {
        HttpResponseParser parser;
        parser.add(head("Content-Length: 67108864\r\n") + "ab");
        QCOMPARE(parser.next().contentLength, HttpResponseParser::MaxBodySize);
        QCOMPARE(parser.next().type, Event::Incomplete);
        QCOMPARE(parser.pending(), QByteArray("ab"));
    }

    void endlessHeaderTakesNoMemory()
    {
        HttpResponseParser parser;
        parser.add("HTTP/1.1 200 OK\r\n");
        const QByteArray line = "A: " + QByteArray(1021, 'x') + "\r\n";
        QStringList events;
        for (int i = 0; i < 100 * 1024; ++i) {
            parser.add(line);
            events += drain(&parser);
            QVERIFY(parser.pending().size() <= HttpResponseParser::MaxHeadSize);
        }
        QCOMPARE(events, QStringList("broken"));
    }

    void endlessFrameOfAStreamIsBroken()
    {
        HttpResponseParser parser;
        parser.setStreaming(true);
        parser.add(chunkedHead());
        QCOMPARE(parser.next().type, Event::Header);
        const QByteArray piece = chunk(QByteArray(4 * 1024 * 1024, 'a'));
        Event event;
        int pieces = 0;
        while (event.type == Event::Incomplete && pieces < 100) {
            parser.add(piece);
            ++pieces;
            event = parser.next();
        }
        QCOMPARE(event.type, Event::Broken);
        QCOMPARE(pieces, 17);
    }

    // In time that grows with the bytes only: a copy of the rest for each frame would take minutes here.
    void streamOfManySmallFramesIsReadInOneGo()
    {
        HttpResponseParser parser;
        parser.setStreaming(true);
        QByteArray bytes = chunkedHead();
        constexpr int frames = 500000;
        for (int i = 0; i < frames; ++i)
            bytes += chunk("h\n");
        parser.add(bytes + endChunk());
        QCOMPARE(parser.next().type, Event::Header);
        int seen = 0;
        while (parser.next().type == Event::Message)
            ++seen;
        QCOMPARE(seen, frames);
    }
};

QTEST_APPLESS_MAIN(tst_HttpResponseParser)
#include "tst_HttpResponseParser.moc"
