#include "compression/LzmaBlock.h"

#include <LzmaEnc.h>

#include <QRandomGenerator>
#include <QTest>
#include <QtEndian>

#include <malloc.h>

#include <thread>

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

/// What the coders keep from one block to the next of a thread: nobody can tell. Blocks themselves are in
/// tst_Lzma.
class tst_LzmaBlock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereIsRoomForOneMoreByte()
    {
        constexpr int full = 24; // the allocator has no byte to spare behind so many
        const QByteArray block = encoded(QByteArray(full, 'x'));
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
            std::thread([&] { afresh = encoded(bytes); }).join();
            QVERIFY(!afresh.isEmpty());
            QCOMPARE(encoded(bytes), afresh);
        }
    }
};

QTEST_APPLESS_MAIN(tst_LzmaBlock)
#include "tst_LzmaBlock.moc"
