#include "faults/support/Recordings.h"
#include "transport/HttpResponseParser.h"

#include <QtTest>

using Event = HttpResponseParser::Event;
using Recordings::Answer;

namespace {

// What has come out of a parser so far.
struct Result
{
    int headers = 0;
    int ends = 0;
    bool broken = false;
    QStringList frames;

    bool operator==(const Result& other) const
    {
        return headers == other.headers && ends == other.ends && broken == other.broken &&
               frames == other.frames;
    }
};

void feed(HttpResponseParser* parser, const QByteArray& bytes, Result* result)
{
    parser->add(bytes);
    for (;;) {
        const Event event = parser->next();
        if (event.type == Event::Incomplete)
            return;
        result->headers += event.type == Event::Header ? 1 : 0;
        result->ends += event.ends ? 1 : 0;
        result->broken = result->broken || event.type == Event::Broken;
        if (event.type == Event::Message)
            result->frames.append(event.text);
    }
}

Result whole(const Answer& answer)
{
    HttpResponseParser parser;
    parser.setStreaming(answer.isStream());
    Result result;
    feed(&parser, answer.bytes, &result);
    return result;
}

// Splits at \p first and at every byte behind it. The number of the second byte at which something else comes
// out than \p expected; -1 when there is none.
int splitTwice(const Answer& answer, int first, const Result& expected)
{
    HttpResponseParser begun;
    begun.setStreaming(answer.isStream());
    Result soFar;
    feed(&begun, answer.bytes.left(first), &soFar);
    for (int second = first + 1; second < answer.bytes.size(); ++second) {
        HttpResponseParser parser = begun;
        Result result = soFar;
        feed(&parser, answer.bytes.mid(first, second - first), &result);
        feed(&parser, answer.bytes.mid(second), &result);
        if (!(result == expected))
            return second;
    }
    return -1;
}

} // namespace

/// The parser alone, in memory, with the recorded answers split at every byte and at every pair of bytes.
class TestRecordedBytes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyServerIsThere()
    {
        QStringList servers;
        for (const Answer& answer : Recordings::all())
            servers.append(answer.name.section(QLatin1Char('-'), 0, -2));
        for (const char* server :
             {"sockjs", "sockjs-go", "haproxy", "haproxy-closing", "nginx", "nginx-streaming"})
            QVERIFY2(servers.count(QLatin1String(server)) >= 3, server);
    }

    void comeOutWhole_data() { Recordings::addRows(); }

    void comeOutWhole()
    {
        const Answer& answer = Recordings::ofRow();
        const Result result = whole(answer);
        QCOMPARE(Recordings::contents(result.frames), answer.contents);
        QCOMPARE(result.headers, 1);
        QCOMPARE(result.ends, 1);
        QVERIFY(!result.broken);
    }

    void splitAtEveryByte_data() { Recordings::addRows(); }

    void splitAtEveryByte()
    {
        const Answer& answer = Recordings::ofRow();
        const Result expected = whole(answer);
        for (int i = 1; i < answer.bytes.size(); ++i) {
            HttpResponseParser parser;
            parser.setStreaming(answer.isStream());
            Result result;
            feed(&parser, answer.bytes.left(i), &result);
            feed(&parser, answer.bytes.mid(i), &result);
            QVERIFY2(result == expected, qPrintable(QStringLiteral("split at %1").arg(i)));
        }
    }

    // All polled answers, and the longest stream: the pairs of bytes grow with the square.
    void splitAtEveryPairOfBytes_data()
    {
        Recordings::addRows([](const Answer& answer) {
            return !answer.isStream() || answer.name == Recordings::longest().name;
        });
    }

    void splitAtEveryPairOfBytes()
    {
        const Answer& answer = Recordings::ofRow();
        const Result expected = whole(answer);
        for (int first = 1; first < answer.bytes.size(); ++first) {
            const int second = splitTwice(answer, first, expected);
            QVERIFY2(second < 0, qPrintable(QStringLiteral("split at %1 and %2").arg(first).arg(second)));
        }
    }

    void byteByByte_data() { Recordings::addRows(); }

    void byteByByte()
    {
        const Answer& answer = Recordings::ofRow();
        HttpResponseParser parser;
        parser.setStreaming(answer.isStream());
        Result result;
        for (const char byte : answer.bytes)
            feed(&parser, QByteArray(1, byte), &result);
        QVERIFY(result == whole(answer));
        QVERIFY(!parser.hasPending());
    }

    void nothingComesBeforeItsLastByte_data() { Recordings::addRows(); }

    void nothingComesBeforeItsLastByte()
    {
        const Answer& answer = Recordings::ofRow();
        const QList<int> ends = answer.ends();
        QCOMPARE(ends.size(), answer.isStream() ? answer.contents.size() : 1);
        HttpResponseParser parser;
        parser.setStreaming(answer.isStream());
        Result result;
        for (int i = 0; i < answer.bytes.size(); ++i) {
            feed(&parser, answer.bytes.mid(i, 1), &result);
            const auto due = std::count_if(ends.begin(), ends.end(), [i](int end) { return end <= i + 1; });
            QVERIFY2(result.frames.size() == due, qPrintable(QStringLiteral("after byte %1").arg(i)));
        }
    }

    void twoAnswersSplitAtEveryByte_data() { Recordings::addRows(); }

    // An answer leaves nothing behind that the next one could stumble over.
    void twoAnswersSplitAtEveryByte()
    {
        const Answer& answer = Recordings::ofRow();
        const QByteArray bytes = answer.bytes + answer.bytes;
        const Result one = whole(answer);
        for (int i = 1; i < bytes.size(); ++i) {
            HttpResponseParser parser;
            parser.setStreaming(answer.isStream());
            Result result;
            feed(&parser, bytes.left(i), &result);
            feed(&parser, bytes.mid(i), &result);
            QVERIFY2(result.frames == one.frames + one.frames,
                     qPrintable(QStringLiteral("split at %1").arg(i)));
            QCOMPARE(result.headers, 2);
            QCOMPARE(result.ends, 2);
        }
    }
};

QTEST_APPLESS_MAIN(TestRecordedBytes)
#include "tst_RecordedBytes.moc"
