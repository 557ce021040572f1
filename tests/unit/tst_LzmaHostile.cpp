// Blocks as they must not be: the codec refuses them, or reads them for what they are, and never more.

#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/Lzma>

#include <QObject>
#include <QTest>
#include <QtEndian>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

using Buffer = std::unique_ptr<unsigned char, decltype(&std::free)>;

// "Hello, hello, hello, hello!", with an end marker and without one.
const char MARKED[] = "5d004000001b000000000000000024194986e7d63b918b7800b3ca99bbfffff9004000";
const char UNMARKED[] = "5d004000001b000000000000000024194986e7d63b918b7800b3bbb68000";
const char HELLO[] = "Hello, hello, hello, hello!";
constexpr int HEADER = 13;

QByteArray marked()
{
    return QByteArray::fromHex(MARKED);
}

QByteArray unmarked()
{
    return QByteArray::fromHex(UNMARKED);
}

QByteArray withSize(QByteArray block, quint64 size)
{
    qToLittleEndian(size, block.data() + 5);
    return block;
}

QByteArray withDictionary(QByteArray block, quint32 size)
{
    qToLittleEndian(size, block.data() + 1);
    return block;
}

QString decimalList(const QByteArray& block)
{
    QStringList numbers;
    for (const char byte : block)
        numbers.append(QString::number(static_cast<unsigned char>(byte)));
    return numbers.join(QLatin1Char(','));
}

QList<QVariant> numbers(const QByteArray& block)
{
    QList<QVariant> list;
    for (const char byte : block)
        list.append(int(static_cast<unsigned char>(byte)));
    return list;
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

const QString BEFORE = QStringLiteral("before");

// What each of the text operations makes of a block; "before" where it refuses and keeps its hands off.
QStringList decodeText(QByteArray block)
{
    QString fromRaw = BEFORE;
    QString fromList = BEFORE;
    QString fromNumbers = BEFORE;
    QString fromBase64 = BEFORE;
    QStringList results;
    auto* bytes = reinterpret_cast<unsigned char*>(block.data());
    if (!Lzma::decompress(bytes, static_cast<size_t>(block.size()), &fromRaw))
        results.append(fromRaw);
    if (!Lzma::decompress(decimalList(block), &fromList))
        results.append(fromList);
    if (!Lzma::decompress(numbers(block), &fromNumbers))
        results.append(fromNumbers);
    if (!Lzma::decompress64(QString::fromLatin1(block.toBase64()), &fromBase64))
        results.append(fromBase64);
    if (results.isEmpty())
        return {fromRaw, fromList, fromNumbers, fromBase64};
    return results;
}

bool refusedByAll(const QByteArray& block)
{
    const RawResult raw = decodeRaw(block);
    return !raw.ok && !raw.touched && decodeText(block) == QStringList({BEFORE, BEFORE, BEFORE, BEFORE});
}

// Refused by all operations, or read alike by all; never half.
bool consistent(const QByteArray& block)
{
    const RawResult raw = decodeRaw(block);
    if (!raw.ok)
        return refusedByAll(block);
    const QString text = QString::fromUtf8(raw.bytes.constData());
    return raw.touched && decodeText(block) == QStringList({text, text, text, text});
}

} // namespace

class tst_LzmaHostile : public QObject
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

    void sampleBlocksAreSound()
    {
        const QString hello = QString::fromLatin1(HELLO);
        QCOMPARE(decodeText(marked()), QStringList({hello, hello, hello, hello}));
        QCOMPARE(decodeText(unmarked()), QStringList({hello, hello, hello, hello}));
        QCOMPARE(decodeRaw(marked()).bytes, QByteArray(HELLO));
    }

    void blockShorterThanFourteenBytesFails_data()
    {
        columns<QByteArray>();
        // A header alone: its size field may lie anywhere, 0 included.
        const QByteArray whole = withSize(marked(), 0);
        for (int length = 1; length <= HEADER; ++length)
            QTest::addRow("%d bytes", length) << whole.left(length);
    }

    void blockShorterThanFourteenBytesFails()
    {
        const auto [block] = row<QByteArray>();
        QVERIFY(refusedByAll(block));
    }

    void emptyInputFails()
    {
        QVERIFY(refusedByAll(QByteArray()));
        QString out = BEFORE;
        QVERIFY(!Lzma::decompress(static_cast<unsigned char*>(nullptr), 0, &out));
        QVERIFY(!Lzma::decompress(QString(), &out));
        QVERIFY(!Lzma::decompress(QStringLiteral("[]"), &out));
        QVERIFY(!Lzma::decompress(QList<QVariant>(), &out));
        QVERIFY(!Lzma::decompress64(QString(), &out));
        QCOMPARE(out, BEFORE);
    }

    void textThatIsNoBlockFails_data()
    {
        rows<QString>({
            {"number", "5"},
            {"three numbers", "[93,0,0]"},
            {"thirteen numbers", "[93,0,64,0,0,0,0,0,0,0,0,0,0]"},
            {"fourteen zeros", "[0,0,0,0,0,0,0,0,0,0,0,0,0,0]"},
            {"seventeen empty parts", QString(16, QLatin1Char(','))},
            {"brackets", "[[[]]]"},
            {"words", QStringLiteral("The quick brown fox jumps over the lazy dog, twice or more.")},
            {"JSON", R"({"answer":"A","responseTime":1200,"pollId":"p-1"})"},
            {"no base64 at all", "!!!!....!!!!...."},
            {"outside ASCII", QString::fromUtf8(u8"日本語日本語日本語日本語日本語")},
            {"padding", QString(64, QLatin1Char('='))},
        });
    }

    void textThatIsNoBlockFails()
    {
        const auto [text] = row<QString>();
        QString out = BEFORE;
        QVERIFY(!Lzma::decompress64(text, &out));
        QVERIFY(!Lzma::decompress(text, &out));
        QCOMPARE(out, BEFORE);
    }

    void eighteenEmptyPartsAreAnEmptyText()
    {
        // As zeros they are a header that claims 0 bytes and the shortest stream there is.
        QString out = BEFORE;
        QVERIFY(Lzma::decompress(QString(17, QLatin1Char(',')), &out));
        QCOMPARE(out, QString());
        QCOMPARE(decodeText(QByteArray(18, '\0')), QStringList({QString(), QString(), QString(), QString()}));
        QVERIFY(refusedByAll(QByteArray(17, '\0')));
    }

    void blockCutAnywhereFails_data()
    {
        columns<QByteArray>();

        QString base64;
        QTest::newRow("with end marker") << marked();
        QVERIFY(Lzma::compress64(QString(), &base64));
        QTest::newRow("empty text") << QByteArray::fromBase64(base64.toLatin1());
        const QString letters = QString::fromLatin1(QByteArray(1200, 'q').toBase64() + marked().toHex());
        QVERIFY(Lzma::compress64(letters, &base64));
        QTest::newRow("longer text") << QByteArray::fromBase64(base64.toLatin1());
    }

    void blockCutAnywhereFails()
    {
        const auto [block] = row<QByteArray>();
        QVERIFY(!refusedByAll(block));
        for (int length = 0; length < block.size(); ++length)
            QVERIFY2(refusedByAll(block.left(length)), qPrintable(QString::number(length)));
    }

    void bytesBehindTheEndMarkerAreNotRead()
    {
        const QString hello = QString::fromLatin1(HELLO);
        QCOMPARE(decodeText(marked() + "more"), QStringList({hello, hello, hello, hello}));
    }

    void sizeFieldThatLies_data()
    {
        columns<QByteArray, bool>();

        const auto exact = static_cast<quint64>(qstrlen(HELLO));
        QTest::newRow("marker, one too small") << withSize(marked(), exact - 1) << false;
        QTest::newRow("marker, 1") << withSize(marked(), 1) << false;
        QTest::newRow("marker, 0") << withSize(marked(), 0) << false;
        QTest::newRow("marker, one too large") << withSize(marked(), exact + 1) << true;
        QTest::newRow("marker, 100 MiB") << withSize(marked(), 100U << 20U) << true;
        QTest::newRow("marker, 2 GiB - 1") << withSize(marked(), 0x7FFFFFFFU) << true;
        // Only the low half of the field counts.
        QTest::newRow("marker, exact below a large upper half")
            << withSize(marked(), (quint64(77) << 32U) + exact) << true;
        QTest::newRow("marker, too small below a large upper half")
            << withSize(marked(), (quint64(77) << 32U) + 5) << false;
        QTest::newRow("marker, exact below a negative upper half")
            << withSize(marked(), (quint64(0xFFFFFFFFU) << 32U) + exact) << true;
        QTest::newRow("no marker, exact") << unmarked() << true;
        QTest::newRow("no marker, one too small") << withSize(unmarked(), exact - 1) << false;
        QTest::newRow("no marker, 0") << withSize(unmarked(), 0) << false;
        QTest::newRow("no marker, one too large") << withSize(unmarked(), exact + 1) << false;
        QTest::newRow("no marker, 2 GiB - 1") << withSize(unmarked(), 0x7FFFFFFFU) << false;
    }

    void sizeFieldThatLies()
    {
        const auto [block, passes] = row<QByteArray, bool>();
        if (!passes) {
            QVERIFY(refusedByAll(block));
            return;
        }
        const QString hello = QString::fromLatin1(HELLO);
        QCOMPARE(decodeText(block), QStringList({hello, hello, hello, hello}));
        QCOMPARE(decodeRaw(block).bytes, QByteArray(HELLO));
    }

    void negativeSizeFails_data()
    {
        rows<quint64>({
            {"-1, the unknown size of other encoders", ~quint64(0)},
            {"-1 in the low half", quint64(0xFFFFFFFFU)},
            {"-27", static_cast<quint64>(-27)},
            {"smallest", quint64(0x80000000U)},
            {"smallest below an upper half", (quint64(5) << 32U) + 0x80000000U},
        });
    }

    void negativeSizeFails()
    {
        const auto [size] = row<quint64>();
        QVERIFY(refusedByAll(withSize(marked(), size)));
        QVERIFY(refusedByAll(withSize(unmarked(), size)));
    }

    void claimedDictionaryIsOnlyAClaim_data()
    {
        columns<quint32>();
        for (const quint32 size : {0U, 1U, 4095U, 1U << 16U, 1U << 30U, 0x80000000U, 0xFFFFFFFFU})
            QTest::addRow("%u", size) << size;
    }

    void claimedDictionaryIsOnlyAClaim()
    {
        const auto [dictionary] = row<quint32>();
        const QString hello = QString::fromLatin1(HELLO);
        QCOMPARE(decodeText(withDictionary(marked(), dictionary)), QStringList({hello, hello, hello, hello}));
        QCOMPARE(decodeText(withDictionary(unmarked(), dictionary)),
                 QStringList({hello, hello, hello, hello}));
    }

    void propertyByteOutOfRangeFails_data()
    {
        columns<int>();
        // 9 * 5 * 5 values are defined.
        for (int properties = 225; properties <= 255; ++properties)
            QTest::addRow("%d", properties) << properties;
    }

    void propertyByteOutOfRangeFails()
    {
        const auto [properties] = row<int>();
        QByteArray block = marked();
        block[0] = static_cast<char>(properties);
        QVERIFY(refusedByAll(block));
    }

    void anyPropertyByteIsReadOrRefused()
    {
        for (int properties = 0; properties < 225; ++properties) {
            QByteArray block = marked();
            block[0] = static_cast<char>(properties);
            QVERIFY2(consistent(block), qPrintable(QString::number(properties)));
        }
    }

    void streamThatDoesNotBeginWithZeroFails()
    {
        for (int first = 1; first <= 255; ++first) {
            QByteArray block = marked();
            block[HEADER] = static_cast<char>(first);
            QVERIFY2(refusedByAll(block), qPrintable(QString::number(first)));
        }
    }

    void anyFlippedBitIsReadOrRefused_data()
    {
        columns<QByteArray>();
        QTest::newRow("with end marker") << marked();
        QTest::newRow("without end marker") << unmarked();
        QString base64;
        QVERIFY(Lzma::compress64(QString::fromUtf8(u8R"({"answer":"Zürich 日本 😀","n":[1,2,3]})").repeated(5),
                                 &base64));
        QTest::newRow("longer text") << QByteArray::fromBase64(base64.toLatin1());
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

    void noiseIsReadOrRefused()
    {
        quint32 state = 99;
        for (int round = 0; round < 600; ++round) {
            QByteArray block(14 + round % 200, '\0');
            for (char& byte : block) {
                state = state * 1664525U + 1013904223U;
                byte = static_cast<char>(state >> 24U);
            }
            block[0] = static_cast<char>(static_cast<unsigned char>(block.at(0)) % 225);
            block[8] = static_cast<char>(block.at(8) & 0x7F);
            block[HEADER] = 0;
            QVERIFY2(consistent(block), block.toHex().constData());
        }
    }

private:
    std::unique_ptr<LogRecorder> m_log;
};

QTEST_GUILESS_MAIN(tst_LzmaHostile)
#include "tst_LzmaHostile.moc"
