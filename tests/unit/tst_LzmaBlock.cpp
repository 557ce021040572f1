#include "support/Rows.h"

#include "compression/LzmaBlock.h"

#include <LzmaEnc.h>

#include <QRandomGenerator>
#include <QTest>
#include <QtEndian>

#include <malloc.h>

namespace {

const unsigned char* bytesOf(const QByteArray& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

QByteArray copyOf(const LzmaBlock::Buffer& buffer)
{
    return {reinterpret_cast<const char*>(buffer.bytes.get()), int(buffer.size)};
}

// Empty when it fails: no block is.
QByteArray encoded(const QByteArray& bytes)
{
    LzmaBlock::Buffer block;
    return LzmaBlock::encode(bytesOf(bytes), size_t(bytes.size()), &block) ? copyOf(block) : QByteArray();
}

QString encoded64(const QByteArray& bytes)
{
    return QString::fromLatin1(encoded(bytes).toBase64());
}

QByteArray decoded(const QByteArray& block)
{
    LzmaBlock::Buffer text;
    return LzmaBlock::decode(bytesOf(block), size_t(block.size()), &text) ? copyOf(text) : QByteArray();
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

/// Blocks as bytes. What stands in a block, and blocks that lie, are in tst_Lzma, tst_LzmaHostile and
/// tst_LzmaMemory.
class tst_LzmaBlock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesComeBackAsTheyWere_data()
    {
        rows<QByteArray>({
            {"none", ""},
            {"one", "a"},
            {"with NULs", QByteArray("\0a\0", 3)},
            {"not UTF-8", "\xff\xfe\x80"},
            {"more than the first piece of memory", QByteArray("0123456789abcdef").repeated(2000)},
        });
    }

    void bytesComeBackAsTheyWere()
    {
        const auto [bytes] = row<QByteArray>();
        const QByteArray block = encoded(bytes);
        QVERIFY(!block.isEmpty());
        LzmaBlock::Buffer text;
        QVERIFY(LzmaBlock::decode(bytesOf(block), size_t(block.size()), &text));
        QCOMPARE(copyOf(text), bytes);
    }

    void thereIsRoomForOneMoreByte()
    {
        constexpr int full = 24; // the allocator has no byte to spare behind so many
        const QByteArray block = encoded(QByteArray(full, 'x'));
        LzmaBlock::Buffer text;
        QVERIFY(LzmaBlock::decode(bytesOf(block), size_t(block.size()), &text));
        QCOMPARE(text.size, size_t(full));
        QVERIFY(malloc_usable_size(text.bytes.get()) > text.size);
    }

    void base64IsThatOfTheBlock_data() { bytesComeBackAsTheyWere_data(); }

    void base64IsThatOfTheBlock()
    {
        const auto [bytes] = row<QByteArray>();
        QString base64;
        QVERIFY(LzmaBlock::encode64(bytes, &base64));
        QCOMPARE(base64, encoded64(bytes));
    }

    void textEndsAtItsFirstNul_data()
    {
        rows<QByteArray, QByteArray>({
            {"none", "abc", "abc"},
            {"in the middle", QByteArray("abc\0def", 7), "abc"},
            {"at the end", QByteArray("abc\0", 4), "abc"},
            {"at the beginning", QByteArray("\0abc", 4), ""},
            {"before what is not ASCII", QByteArray("abc\0\xff", 5), "abc"},
            {"nothing else", "", ""},
        });
    }

    void textEndsAtItsFirstNul()
    {
        const auto [bytes, text] = row<QByteArray, QByteArray>();
        QByteArray utf8("before");
        QVERIFY(LzmaBlock::decode64(encoded64(bytes), &utf8));
        QCOMPARE(utf8, text);
    }

    void textIsUtf8_data()
    {
        columns<QByteArray, QByteArray>();
        const QByteArray replaced("\xef\xbf\xbd");
        QTest::newRow("two to four bytes") << QByteArray(u8"äb漢😀") << QByteArray(u8"äb漢😀");
        QTest::newRow("Latin-1") << QByteArray("a\xe4z") << 'a' + replaced + 'z';
        QTest::newRow("cut") << QByteArray("a\xe6\xbc") << 'a' + replaced + replaced;
        QTest::newRow("mark of the byte order") << QByteArray("\xef\xbb\xbfz") << QByteArray("z");
    }

    void textIsUtf8()
    {
        const auto [bytes, text] = row<QByteArray, QByteArray>();
        QByteArray utf8;
        QVERIFY(LzmaBlock::decode64(encoded64(bytes), &utf8));
        QCOMPARE(utf8, text);
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

    void failureLeavesTheResultAsItWas_data()
    {
        columns<QByteArray>();
        const QByteArray sound = encoded("a text that is long enough to be cut");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("no block") << QByteArray("a text that is not compressed at all");
        QTest::newRow("header alone") << sound.left(13);
        QTest::newRow("cut in the middle") << sound.left(sound.size() / 2);
    }

    void failureLeavesTheResultAsItWas()
    {
        const auto [block] = row<QByteArray>();
        LzmaBlock::Buffer text;
        QVERIFY(!LzmaBlock::decode(bytesOf(block), size_t(block.size()), &text));
        QVERIFY(!text.bytes);
        QCOMPARE(text.size, size_t(0));

        QByteArray utf8("before");
        QVERIFY(!LzmaBlock::decode64(QString::fromLatin1(block.toBase64()), &utf8));
        QCOMPARE(utf8, QByteArray("before"));
    }

    void foreignCharactersOfBase64AreSkipped()
    {
        QString base64 = encoded64("text");
        base64.insert(5, QStringLiteral("\r\n")).prepend(QLatin1Char(' ')).remove(QLatin1Char('='));
        QByteArray utf8;
        QVERIFY(LzmaBlock::decode64(base64, &utf8));
        QCOMPARE(utf8, QByteArray("text"));
    }
};

QTEST_APPLESS_MAIN(tst_LzmaBlock)
#include "tst_LzmaBlock.moc"
