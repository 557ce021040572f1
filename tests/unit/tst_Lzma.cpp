// The codec's texts and blocks: what comes back, in which carrier, and what is refused. A bad block is read
// for what it is, and never more. Of what the coders keep from one block to the next of a thread, nobody can
// tell.

#include "compression/LzmaBlock.h"
#include "support/LogRecorder.h"
#include "support/LzmaBlocks.h"
#include "support/Rows.h"

#include <CalyxClient/Lzma>

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>
#include <QtEndian>
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif

#include <LzmaEnc.h>

#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <memory>
#include <thread>
#include <vector>

Q_DECLARE_METATYPE(QList<QVariant>)

using namespace LzmaBlocks;

namespace {

// Allocated by the codec, released as it says: with free().
using Buffer = std::unique_ptr<unsigned char, decltype(&std::free)>;

const unsigned char* bytesOf(const QByteArray& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

// Empty when it fails: no block is.
QByteArray blockOf(const QByteArray& bytes)
{
    unsigned char* dest = nullptr;
    size_t length = 0;
    if (!Lzma::compress(bytesOf(bytes), static_cast<size_t>(bytes.size()), &dest, &length))
        return {};
    const Buffer buffer(dest, &std::free);
    return QByteArray(reinterpret_cast<const char*>(dest), static_cast<int>(length));
}

QString decimalList(const QByteArray& block)
{
    QStringList numbers;
    for (const char byte : block)
        numbers.append(QString::number(static_cast<unsigned char>(byte)));
    return '[' + numbers.join(',') + ']';
}

QStringList fourTimes(const QString& text)
{
    return {text, text, text, text};
}

// Decoded from memory of exactly the block's size, so that a sanitizer sees a read beyond it.
struct RawResult
{
    bool ok = false;
    QByteArray bytes;
    bool touched = false;
};

RawResult decodeRaw(const QByteArray& block)
{
    const auto length = static_cast<size_t>(block.size());
    const auto exact = std::make_unique<unsigned char[]>(length);
    std::memcpy(exact.get(), block.constData(), length);

    unsigned char before = 0;
    unsigned char* dest = &before;
    RawResult result;
    result.ok = Lzma::decompress(exact.get(), length, &dest);
    result.touched = dest != &before;
    if (result.ok && result.touched) {
        const Buffer buffer(dest, &std::free);
        result.bytes = QByteArray(reinterpret_cast<const char*>(dest));
    }
    return result;
}

const QString BEFORE = "before";

// What each of the text operations makes of a block; "before" where it refuses and keeps its hands off.
QStringList decodeText(QByteArray block)
{
    QString texts[] = {BEFORE, BEFORE, BEFORE, BEFORE};
    auto* bytes = reinterpret_cast<unsigned char*>(block.data());
    const bool isRead[] = {Lzma::decompress(bytes, static_cast<size_t>(block.size()), &texts[0]),
                           Lzma::decompress(decimalList(block), &texts[1]),
                           Lzma::decompress(numbers(block), &texts[2]),
                           Lzma::decompress64(QString::fromLatin1(block.toBase64()), &texts[3])};
    QStringList read;
    QStringList refused;
    for (int i = 0; i < 4; ++i)
        (isRead[i] ? read : refused).append(texts[i]);
    return refused.isEmpty() ? read : refused;
}

bool refusedByAll(const QByteArray& block)
{
    const RawResult raw = decodeRaw(block);
    return !raw.ok && !raw.touched && decodeText(block) == fourTimes(BEFORE);
}

// Refused by all operations, or read alike by all; never half.
bool consistent(const QByteArray& block)
{
    const RawResult raw = decodeRaw(block);
    if (!raw.ok)
        return refusedByAll(block);
    const QString text = QString::fromUtf8(raw.bytes.constData());
    return raw.touched && decodeText(block) == fourTimes(text);
}

QByteArray pattern(const QString& kind, int size)
{
    QByteArray bytes(size, '\0');
    if (kind == QLatin1String("zeros"))
        return bytes;
    const QByteArray words = "{\"question\":\"Which of these is a prime?\"},";
    quint32 state = 12345;
    for (int i = 0; i < size; ++i) {
        state = state * 1664525U + 1013904223U;
        bytes[i] =
            kind == QLatin1String("noise") ? static_cast<char>(state >> 24U) : words.at(i % words.size());
    }
    return bytes;
}

QString allPlaneZero()
{
    QString text;
    for (uint unit = 1; unit < 0xFFFE; ++unit) {
        // Surrogates are no characters, and a byte-order mark is one only in the middle of a text.
        if (!QChar(unit).isSurrogate())
            text.append(QChar(unit));
    }
    return text;
}

QString someAboveThePlane()
{
    QString text;
    for (uint point = 0x10000; point < 0x110000; point += 0x101) {
        text.append(QChar(QChar::highSurrogate(point)));
        text.append(QChar(QChar::lowSurrogate(point)));
    }
    return text;
}

QByteArray decoded(const QByteArray& block)
{
    LzmaBlock::Buffer text;
    if (!LzmaBlock::decode(bytesOf(block), size_t(block.size()), &text))
        return {};
    return {reinterpret_cast<const char*>(text.bytes.get()), int(text.size)};
}

ISzAlloc heap = {[](void*, size_t size) { return std::malloc(size); },
                 [](void*, void* address) { std::free(address); }};

// Of an encoder with other settings than ours.
QByteArray encodedWith(const QByteArray& bytes, int lc, int lp, int pb)
{
    CLzmaEncProps props;
    LzmaEncProps_Init(&props);
    props.dictSize = 1 << 16;
    props.lc = lc;
    props.lp = lp;
    props.pb = pb;
    QByteArray block(13 + 2 * bytes.size() + 128, '\0');
    auto* out = reinterpret_cast<unsigned char*>(block.data());
    qToLittleEndian<quint64>(quint64(bytes.size()), out + 5);
    SizeT size = SizeT(block.size() - 13);
    SizeT propsSize = 5;
    constexpr int writeEndMark = 1;
    const SRes result = LzmaEncode(out + 13, &size, bytesOf(bytes), SizeT(bytes.size()), &props, out,
                                   &propsSize, writeEndMark, nullptr, &heap, &heap);
    block.truncate(13 + int(size));
    return result == SZ_OK ? block : QByteArray();
}

// Words and noise, so that there are literals of every kind, and matches.
QByteArray mixedBytes(QRandomGenerator& random, int size)
{
    QByteArray bytes;
    while (bytes.size() < size)
        bytes += random.bounded(2) ? QByteArray("a word that comes again ")
                                   : QByteArray(1, char(random.generate()));
    return bytes;
}

} // namespace

class tst_Lzma : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }

    void cleanup()
    {
        // The codec never logs, and a bad block is no reason.
        const QStringList lines = m_log->debug() + m_log->warnings();
        m_log.reset();
        QCOMPARE(lines, QStringList());
    }

    void everyCarrierGivesTheTextBack_data()
    {
        rows<QString>({
            {"empty", QStringLiteral("")},
            {"one letter", QStringLiteral("a")},
            {"empty JSON string", QStringLiteral("\"\"")},
            {"JSON", QStringLiteral(R"({"answer":"A,C","blob":{"pick":["A","C"]}})")},
            {"line breaks and blanks", QStringLiteral(" \t first\r\nsecond\n\n ")},
            {"control characters", QStringLiteral("\x01\x02\x7f\x1b[0m")},
            {"Latin", QString::fromUtf8(u8"Größe, naïve, Ærø, señor")},
            {"Greek, Cyrillic, Arabic, Chinese", QString::fromUtf8(u8"λόγος Привет سلام 日本語 中文")},
            {"combining", QString::fromUtf8(u8"e\u0301 a\u0308")},
            {"above the basic plane", QString::fromUtf8(u8"😀 𝒳 𐍈 👩‍🏫")},
            {"every character of the basic plane", allPlaneZero()},
            {"characters of all other planes", someAboveThePlane()},
            {"all alike, 1 Mi characters", QString(1 << 20, QLatin1Char('x'))},
            {"noise, 1 Mi characters", QString::fromLatin1(pattern("noise", 1 << 20).toBase64())},
        });
    }
    void everyCarrierGivesTheTextBack()
    {
        const auto [text] = row<QString>();
        const QByteArray block = blockOf(text);
        QCOMPARE(decodeText(block), fourTimes(text));
        QString list;
        QVERIFY(Lzma::compress(text, &list));
        QCOMPARE(list, decimalList(block));
        QCOMPARE(block, blockOf(text.toUtf8()));
    }

    void rawBytesComeBackWithANulBehindTheLast_data()
    {
        columns<QString, int>();
        for (const char* kind : {"zeros", "noise", "words"}) {
            for (const int size : {0, 1, 13, 14, 255, 256, 4095, 4096, 4097, 65536, 8 << 20})
                QTest::addRow("%d of %s", size, kind) << QString(kind) << size;
        }
    }
    void rawBytesComeBackWithANulBehindTheLast()
    {
        const auto [kind, size] = row<QString, int>();
        const QByteArray bytes = pattern(kind, size);
        const QByteArray block = blockOf(bytes);
        // What the encoder may use at most, and the header.
        QVERIFY(block.size() <= size + size / 3 + 128 + HEADER);
        unsigned char* dest = nullptr;
        QVERIFY(Lzma::decompress(bytesOf(block), static_cast<size_t>(block.size()), &dest));
        const Buffer buffer(dest, &std::free);
        QVERIFY(dest);
        QVERIFY(std::memcmp(dest, bytes.constData(), static_cast<size_t>(size)) == 0);
        QCOMPARE(int(dest[size]), 0);
    }

    void headerOfABlock()
    {
        for (const int size : {0, 1, 255, 256, 70000, 3 << 20}) {
            const QByteArray block = blockOf(QByteArray(size, 'x'));
            QVERIFY2(block.size() > HEADER, qPrintable(QString::number(size)));
            // 3 literal context bits, no literal position bits, 2 position bits: (2 * 5 + 0) * 9 + 3.
            QCOMPARE(int(static_cast<unsigned char>(block.at(0))), 93);
            // The encoder's own choice for its fastest level.
            QCOMPARE(qFromLittleEndian<quint32>(block.constData() + 1), 16384U);
            QCOMPARE(qFromLittleEndian<quint64>(block.constData() + 5), static_cast<quint64>(size));
            // Every stream begins with a zero byte.
            QCOMPARE(int(block.at(HEADER)), 0);
        }
    }

    void base64IsStandardPaddedAndUnbroken()
    {
        QString base64;
        QVERIFY(Lzma::compress64(QString::fromLatin1(pattern("noise", 5000).toHex()), &base64));
        const QRegularExpression standard("^[A-Za-z0-9+/]+={0,2}$");
        QVERIFY(standard.match(base64).hasMatch());
        QCOMPARE(base64.size() % 4, 0);
        QVERIFY(base64.contains('+') && base64.contains('/'));
    }

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // later, a locale has no say
    void textIsUtf8WhateverTheLocale()
    {
        QTextCodec* before = QTextCodec::codecForLocale();
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO 8859-1"));
        const QByteArray text(u8"ä€😀");
        const QByteArray block = blockOf(QString::fromUtf8(text));
        const QStringList decoded = decodeText(block);
        QTextCodec::setCodecForLocale(before);
        QCOMPARE(block, blockOf(text));
        QCOMPARE(decoded, fourTimes(text));
    }

#endif

    void textOfBytes_data()
    {
        rows<QByteArray, QString>({
            {"NUL ends it", QByteArray("ab\0cd", 5), "ab"},
            {"NUL first", QByteArray("\0abc", 4), ""},
            {"NUL last", QByteArray("abc\0", 4), "abc"},
            {"NUL before what is not ASCII", QByteArray("abc\0\xff", 5), "abc"},
            {"no UTF-8", "a\xff\xc3(b", QString::fromUtf8("a\xff\xc3(b")},
            {"Latin-1", "a\xe4z", u8"a\ufffdz"},
            {"cut", "a\xe6\xbc", u8"a\ufffd\ufffd"},
            {"mark of the byte order", "\xef\xbb\xbfz", "z"},
        });
    }
    void textOfBytes()
    {
        const auto [bytes, text] = row<QByteArray, QString>();
        QCOMPARE(decodeText(blockOf(bytes)), fourTimes(text));
    }

    void blocksOfOtherEncodersAreRead()
    {
        const QString json = u8R"({"answer":"Zürich 日本 😀","n":[1,2,3]})";
        QCOMPARE(decodeText(QByteArray::fromHex("d0001000002c00000000000000003d888826e399dcca72110b2cb051d3ef"
                                                "bb3787114639a3a608af1f7a05a1f3cae0e89061a197d2c457538cb791ed"
                                                "74ebfaf49bf5ffff33660000")),
                 fourTimes(json));
        // Without an end marker.
        QCOMPARE(decodeText(QByteArray::fromHex("5d0040000000000000000000000000000000")),
                 fourTimes(QString()));
    }

    void base64IsReadLeniently()
    {
        const QString clean = QString::fromLatin1(blockOf(QStringLiteral("skips")).toBase64());
        QVERIFY(clean.endsWith('='));
        for (const QString inside : {"", "\r\n", "!*-_,\"", u8"ä日😀"}) {
            QString base64 = clean;
            base64.insert(clean.size() / 2, inside).prepend(inside).append(inside);
            QString back;
            QVERIFY2(Lzma::decompress64(base64, &back), qPrintable(base64));
            QCOMPARE(back, QStringLiteral("skips"));
            QVERIFY(Lzma::decompress64(base64.remove('='), &back));
            QCOMPARE(back, QStringLiteral("skips"));
        }
    }

    void decimalListIsReadLeniently_data()
    {
        rows<QString>({
            {"clean", "[93,0,64,0,%1]"},
            {"no brackets", "93,0,64,0,%1"},
            {"brackets anywhere", "[[9]3,[0],64]],0,%1["},
            {"words are zeros", "[93,zero,64,null,%1]"},
            {"empty parts are zeros", "[93,,64,,%1]"},
            {"fractions are zeros", "[93,1.5,64,2e3,%1]"},
            // 93 and 64, and 2 or 3 to the 32nd
            {"numbers beyond 32 bits", "[4294967389,0,12884901952,-4294967296,%1]"},
            {"numbers beyond 64 bits are zeros", "[93,99999999999999999999,64,0,%1]"},
            {"negative numbers", "[-163,-256,-192,0,%1]"},
            {"numbers above 255", "[349,256,65600,512,%1]"},
        });
    }
    void decimalListIsReadLeniently()
    {
        // %1: the tail of the block of "a", whose fourth byte is a zero.
        const auto [list] = row<QString>();
        QString back;
        QVERIFY(Lzma::decompress(list.arg("0,1,0,0,0,0,0,0,0,0,48,193,251,255,255,255,224,0,0,0"), &back));
        QCOMPARE(back, QStringLiteral("a"));
    }

    void listOfNumbersIsReadLeniently_data()
    {
        rows<QList<QVariant>>({
            {"int", QList<QVariant>{93, 0, 64, 0}},
            {"64 bits", QList<QVariant>{qlonglong(93), qlonglong(0), qulonglong(64), qlonglong(0)}},
            {"double", QList<QVariant>{93.0, 0.0, 64.0, 0.0}},
            {"signed bytes", QList<QVariant>{-163, -256, -192, 0}},
            {"above 255", QList<QVariant>{349, 256, 65600, 512}},
            {"beyond 32 bits", QList<QVariant>{Q_INT64_C(4294967389), 4294967296.0, 64, 0}},
            {"texts of numbers", QList<QVariant>{"93", "0", "64", "0"}},
            {"what is no number is zero", QList<QVariant>{93, "zero", 64, QVariant::fromValue(nullptr)}},
            {"maps, lists and nothing are zero", QList<QVariant>{93, QVariantMap(), 64, QVariantList()}},
            {"truth is one or zero", QList<QVariant>{93, false, 64, QVariant()}},
        });
    }
    void listOfNumbersIsReadLeniently()
    {
        const auto [start] = row<QList<QVariant>>();
        // The block of "a", with bytes above 127 written as signed ones.
        const QList<QVariant> tail{0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 48, -63, -5, -1, -1, -1, -32, 0, 0, 0};
        QString back;
        QVERIFY(Lzma::decompress(start + tail, &back));
        QCOMPARE(back, QStringLiteral("a"));
    }

    void worksOnSeveralThreadsAtOnce()
    {
        const QString text = QString::fromLatin1(pattern("words", 20000));
        std::vector<int> good(4);
        std::vector<std::thread> threads;
        for (int& count : good) {
            threads.emplace_back([&text, &count] {
                for (int i = 0; i < 20; ++i) {
                    QString base64;
                    QString back;
                    count +=
                        Lzma::compress64(text, &base64) && Lzma::decompress64(base64, &back) && back == text;
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(good, std::vector<int>(4, 20));
    }

    void blockShorterThanFourteenBytesFails()
    {
        // A header alone: its size field may lie anywhere, 0 included.
        const QByteArray whole = withSize(marked(), 0);
        for (int length = 0; length <= HEADER; ++length)
            QVERIFY2(refusedByAll(whole.left(length)), qPrintable(QString::number(length)));
        QString out = BEFORE;
        QVERIFY(!Lzma::decompress(static_cast<unsigned char*>(nullptr), 0, &out));
        QVERIFY(!Lzma::decompress("[]", &out));
        QCOMPARE(out, BEFORE);
    }

    void textThatIsNoBlockFails()
    {
        for (const QString text :
             {"5", "[93,0,0]", "[93,0,64,0,0,0,0,0,0,0,0,0,0]", "[0,0,0,0,0,0,0,0,0,0,0,0,0,0]",
              ",,,,,,,,,,,,,,,,", "[[[]]]", "The quick brown fox jumps over the lazy dog, twice or more.",
              R"({"answer":"A","responseTime":1200,"pollId":"p-1"})", "!!!!....!!!!....",
              u8"日本語日本語日本語日本語日本語",
              "================================================================"}) {
            QString out = BEFORE;
            QVERIFY2(!Lzma::decompress64(text, &out), qPrintable(text));
            QVERIFY2(!Lzma::decompress(text, &out), qPrintable(text));
            QCOMPARE(out, BEFORE);
        }
    }

    void eighteenEmptyPartsAreAnEmptyText()
    {
        // As zeros they are a header that claims 0 bytes and the shortest stream there is.
        QString out = BEFORE;
        QVERIFY(Lzma::decompress(QString(17, QLatin1Char(',')), &out));
        QCOMPARE(out, QString());
        QCOMPARE(decodeText(QByteArray(18, '\0')), fourTimes(QString()));
        QVERIFY(refusedByAll(QByteArray(17, '\0')));
    }

    void blockCutAnywhereFails_data()
    {
        const QString letters = QString::fromLatin1(QByteArray(1200, 'q').toBase64() + marked().toHex());
        rows<QByteArray>({
            {"with end marker", marked()},
            {"empty text", blockOf(QString())},
            {"longer text", blockOf(letters)},
        });
    }
    void blockCutAnywhereFails()
    {
        const auto [block] = row<QByteArray>();
        QVERIFY(!refusedByAll(block));
        for (int length = 0; length < block.size(); ++length)
            QVERIFY2(refusedByAll(block.left(length)), qPrintable(QString::number(length)));
    }

    void sizeFieldThatLies_data()
    {
        const auto exact = static_cast<quint64>(qstrlen(HELLO));
        rows<QByteArray, bool>({
            {"marker, one too small", withSize(marked(), exact - 1), false},
            {"marker, 1", withSize(marked(), 1), false},
            {"marker, 0", withSize(marked(), 0), false},
            {"marker, one too large", withSize(marked(), exact + 1), true},
            {"marker, 100 MiB", withSize(marked(), 100U << 20U), true},
            {"marker, 2 GiB - 1", withSize(marked(), 0x7FFFFFFFU), true},
            // Only the low half of the field counts.
            {"marker, exact below a large upper half", withSize(marked(), (quint64(77) << 32U) + exact),
             true},
            {"marker, too small below a large upper half", withSize(marked(), (quint64(77) << 32U) + 5),
             false},
            {"marker, exact below a negative upper half",
             withSize(marked(), (quint64(0xFFFFFFFFU) << 32U) + exact), true},
            {"marker of our own, too large", withSize(blockOf(QString(HELLO)), 100), true},
            {"marker, and bytes behind it", marked() + "more", true},
            {"no marker, exact", unmarked(), true},
            {"no marker, one too small", withSize(unmarked(), exact - 1), false},
            {"no marker, 0", withSize(unmarked(), 0), false},
            {"no marker, one too large", withSize(unmarked(), exact + 1), false},
            {"no marker, 2 GiB - 1", withSize(unmarked(), 0x7FFFFFFFU), false},
        });
    }
    void sizeFieldThatLies()
    {
        const auto [block, passes] = row<QByteArray, bool>();
        if (!passes) {
            QVERIFY(refusedByAll(block));
            return;
        }
        QCOMPARE(decodeText(block), fourTimes(HELLO));
        QCOMPARE(decodeRaw(block).bytes, QByteArray(HELLO));
    }

    void negativeSizeFails()
    {
        // The first is the unknown size of other encoders; the upper half does not count.
        for (const quint64 size : {~quint64(0), quint64(0xFFFFFFFFU), quint64(-27), quint64(0x80000000U),
                                   (quint64(5) << 32U) + 0x80000000U}) {
            QVERIFY2(refusedByAll(withSize(marked(), size)), qPrintable(QString::number(size)));
            QVERIFY2(refusedByAll(withSize(unmarked(), size)), qPrintable(QString::number(size)));
        }
    }

    void anyFlippedBitIsReadOrRefused_data()
    {
        const QString longer = QString::fromUtf8(u8R"({"answer":"Zürich 日本 😀","n":[1,2,3]})").repeated(5);
        rows<QByteArray>({
            {"with end marker", marked()},
            {"without end marker", unmarked()},
            {"longer text", blockOf(longer)},
        });
    }
    void anyFlippedBitIsReadOrRefused()
    {
        const auto [block] = row<QByteArray>();
        int refused = 0;
        for (int bit = 0; bit < block.size() * 8; ++bit) {
            QByteArray flipped = block;
            flipped[bit / 8] = static_cast<char>(flipped.at(bit / 8) ^ (1 << (bit % 8)));
            QVERIFY2(consistent(flipped), qPrintable(QString::number(bit)));
            refused += !decodeRaw(flipped).ok;
        }
        // There is no checksum, but a broken end shows.
        QVERIFY2(refused > block.size(), qPrintable(QString::number(refused)));
    }

    void everyPropertyByteAndEveryFirstOfAStreamIsReadOrRefused()
    {
        for (int properties = 0; properties <= 255; ++properties) {
            QByteArray block = marked();
            block[0] = static_cast<char>(properties);
            // 9 * 5 * 5 values are defined.
            QVERIFY2(properties < 225 ? consistent(block) : refusedByAll(block),
                     qPrintable(QString::number(properties)));
            block = marked();
            block[HEADER] = static_cast<char>(properties); // a stream begins with a zero
            QCOMPARE(refusedByAll(block), properties != 0);
        }
    }

    void thereIsRoomForOneMoreByte()
    {
        constexpr int full = 24; // the allocator has no byte to spare behind so many
        const QByteArray block = blockOf(QByteArray(full, 'x'));
        LzmaBlock::Buffer text;
        QVERIFY(LzmaBlock::decode(bytesOf(block), size_t(block.size()), &text));
        QCOMPARE(text.size, size_t(full));
        QVERIFY(malloc_usable_size(text.bytes.get()) > text.size);
    }

    // The decoder's tables are kept from block to block, and set back where a block has changed them.
    void blocksOfAllContextsAreTaken()
    {
        QRandomGenerator random(5);
        for (int i = 0; i < 9 * 5 * 5 * 4; ++i) {
            const QByteArray bytes = mixedBytes(random, random.bounded(random.bounded(2) ? 100 : 4000));
            const QByteArray block = encodedWith(bytes, i % 9, i / 9 % 5, i / 45 % 5);
            QVERIFY(!block.isEmpty());
            QCOMPARE(decoded(block), bytes);
            QByteArray broken = block;
            const int at = 14 + random.bounded(block.size() - 14);
            broken[at] = char(~broken.at(at));
            decoded(broken); // whatever it is
            QCOMPARE(decoded(block), bytes);
        }
    }

    // So are the encoder's.
    void blocksDoNotDependOnThoseBefore()
    {
        QRandomGenerator random(7);
        for (int i = 0; i < 200; ++i) {
            const QByteArray bytes = mixedBytes(random, random.bounded(random.bounded(2) ? 200 : 60000));
            QByteArray afresh; // by a thread that has compressed nothing before
            std::thread([&] { afresh = blockOf(bytes); }).join();
            QVERIFY(!afresh.isEmpty());
            QCOMPARE(blockOf(bytes), afresh);
        }
    }

private:
    std::unique_ptr<LogRecorder> m_log;
};

QTEST_GUILESS_MAIN(tst_Lzma)
#include "tst_Lzma.moc"
