#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/Lzma>

#include <QJsonDocument>
#include <QObject>
#include <QRegularExpression>
#include <QTest>
#include <QTextCodec>
#include <QtEndian>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

Q_DECLARE_METATYPE(QList<QVariant>)

namespace {

// Allocated by the codec, released as it says: with free().
using Buffer = std::unique_ptr<unsigned char, decltype(&std::free)>;

QByteArray blockOf(const QByteArray& bytes)
{
    unsigned char* dest = nullptr;
    size_t length = 0;
    const auto* source = reinterpret_cast<const unsigned char*>(bytes.constData());
    if (!Lzma::compress(source, static_cast<size_t>(bytes.size()), &dest, &length))
        return {};
    const Buffer buffer(dest, &std::free);
    return QByteArray(reinterpret_cast<const char*>(dest), static_cast<int>(length));
}

QByteArray blockOf(const QString& text)
{
    QString base64;
    return Lzma::compress64(text, &base64) ? QByteArray::fromBase64(base64.toLatin1()) : QByteArray();
}

QString decimalList(const QByteArray& block)
{
    QStringList numbers;
    for (const char byte : block)
        numbers.append(QString::number(static_cast<unsigned char>(byte)));
    return QLatin1Char('[') + numbers.join(QLatin1Char(',')) + QLatin1Char(']');
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

} // namespace

class tst_Lzma : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }

    void cleanup()
    {
        // The codec never logs.
        const QStringList lines = m_log->debug() + m_log->warnings();
        m_log.reset();
        QCOMPARE(lines, QStringList());
    }

    void base64GivesTheTextBack_data() { texts(); }

    void base64GivesTheTextBack()
    {
        QFETCH(QString, text);
        QString base64;
        QVERIFY(Lzma::compress64(text, &base64));
        QString back = QStringLiteral("before");
        QVERIFY(Lzma::decompress64(base64, &back));
        QCOMPARE(back, text);
    }

    void decimalListGivesTheTextBack_data() { texts(); }

    void decimalListGivesTheTextBack()
    {
        QFETCH(QString, text);
        QString list;
        QVERIFY(Lzma::compress(text, &list));
        QString back = QStringLiteral("before");
        QVERIFY(Lzma::decompress(list, &back));
        QCOMPARE(back, text);
    }

    void listOfNumbersGivesTheTextBack_data() { texts(); }

    void listOfNumbersGivesTheTextBack()
    {
        QFETCH(QString, text);
        QString list;
        QVERIFY(Lzma::compress(text, &list));
        const QVariant parsed = QJsonDocument::fromJson(list.toLatin1()).toVariant();
        QString back = QStringLiteral("before");
        QVERIFY(Lzma::decompress(parsed.toList(), &back));
        QCOMPARE(back, text);
    }

    void rawBlockGivesTheTextBack_data() { texts(); }

    void rawBlockGivesTheTextBack()
    {
        QFETCH(QString, text);
        QByteArray block = blockOf(text);
        QString back = QStringLiteral("before");
        QVERIFY(Lzma::decompress(reinterpret_cast<unsigned char*>(block.data()),
                                 static_cast<size_t>(block.size()), &back));
        QCOMPARE(back, text);
    }

    void rawBytesComeBackWithANulBehindTheLast_data()
    {
        columns<QString, int>();

        const int sizes[] = {0,   1,    2,    3,    12,    13,    14,      255,
                             256, 4095, 4096, 4097, 65535, 65536, 1 << 20, 8 << 20};
        for (const char* kind : {"zeros", "noise", "words"}) {
            for (const int size : sizes)
                QTest::addRow("%d of %s", size, kind) << QString::fromLatin1(kind) << size;
        }
    }

    void rawBytesComeBackWithANulBehindTheLast()
    {
        const auto [kind, size] = row<QString, int>();
        const QByteArray bytes = pattern(kind, size);
        const QByteArray block = blockOf(bytes);
        QVERIFY(block.size() > 13);
        // What the encoder may use at most, and the header.
        QVERIFY(block.size() <= size + size / 3 + 128 + 13);

        unsigned char* dest = nullptr;
        QVERIFY(Lzma::decompress(reinterpret_cast<const unsigned char*>(block.constData()),
                                 static_cast<size_t>(block.size()), &dest));
        const Buffer buffer(dest, &std::free);
        QVERIFY(dest);
        QVERIFY(std::memcmp(dest, bytes.constData(), static_cast<size_t>(size)) == 0);
        QCOMPARE(int(dest[size]), 0);
    }

    void emptyTextYieldsABlockLongerThanItsHeader()
    {
        const QByteArray block = blockOf(QString());
        QVERIFY2(block.size() > 13, qPrintable(QString::number(block.size())));
        QCOMPARE(block, blockOf(QStringLiteral("")));
        QString back = QStringLiteral("before");
        QVERIFY(Lzma::decompress64(QString::fromLatin1(block.toBase64()), &back));
        QCOMPARE(back, QString());
    }

    void headerOfABlock_data()
    {
        rows<QByteArray>({
            {"0", QByteArray()},
            {"1", "x"},
            {"255", QByteArray(255, 'x')},
            {"256", QByteArray(256, 'x')},
            {"70000", QByteArray(70000, 'x')},
            {"3 MiB", QByteArray(3 << 20, 'x')},
        });
    }

    void headerOfABlock()
    {
        const auto [bytes] = row<QByteArray>();
        const QByteArray block = blockOf(bytes);
        QVERIFY(block.size() > 13);
        // 3 literal context bits, no literal position bits, 2 position bits: (2 * 5 + 0) * 9 + 3.
        QCOMPARE(int(static_cast<unsigned char>(block.at(0))), 93);
        // The encoder's own choice for its fastest level.
        QCOMPARE(qFromLittleEndian<quint32>(block.constData() + 1), 16384U);
        QCOMPARE(qFromLittleEndian<quint64>(block.constData() + 5), static_cast<quint64>(bytes.size()));
        // Every stream begins with a zero byte.
        QCOMPARE(int(block.at(13)), 0);
    }

    void blockEndsWithAnEndMarker()
    {
        // With a size that promises more, only a marker can end the stream.
        QByteArray block = blockOf(QStringLiteral("marked"));
        QCOMPARE(int(block.at(5)), 6);
        block[5] = 100;
        QString back;
        QVERIFY(Lzma::decompress64(QString::fromLatin1(block.toBase64()), &back));
        QCOMPARE(back, QStringLiteral("marked"));
    }

    void base64IsStandardPaddedAndUnbroken()
    {
        QString base64;
        QVERIFY(
            Lzma::compress64(QString::fromLatin1(pattern(QStringLiteral("noise"), 5000).toHex()), &base64));
        const QRegularExpression standard(QStringLiteral("^[A-Za-z0-9+/]+={0,2}$"));
        QVERIFY(standard.match(base64).hasMatch());
        QCOMPARE(base64.size() % 4, 0);
        QVERIFY(base64.contains(QLatin1Char('+')) && base64.contains(QLatin1Char('/')));
        QCOMPARE(QString::fromLatin1(QByteArray::fromBase64(base64.toLatin1()).toBase64()), base64);
    }

    void decimalListIsBracketedWithoutBlanks()
    {
        QString list;
        QVERIFY(Lzma::compress(QStringLiteral("a list"), &list));
        QVERIFY(list.startsWith(QLatin1String("[93,0,64,0,0,6,0,0,0,0,0,0,0,0,")));
        const QRegularExpression layout(QStringLiteral("^\\[\\d{1,3}(,\\d{1,3})*\\]$"));
        QVERIFY2(layout.match(list).hasMatch(), qPrintable(list));
        const QStringList numbers = list.mid(1, list.size() - 2).split(QLatin1Char(','));
        for (const QString& number : numbers)
            QVERIFY2(number.toInt() <= 255 && QString::number(number.toInt()) == number, qPrintable(number));
    }

    void bothCarriersHoldTheSameBlock()
    {
        const QString text = QString::fromLatin1(pattern(QStringLiteral("noise"), 3000).toBase64());
        QString list;
        QVERIFY(Lzma::compress(text, &list));
        QCOMPARE(list, decimalList(blockOf(text)));
        QCOMPARE(blockOf(text), blockOf(text.toLatin1()));
    }

    void textIsUtf8WhateverTheLocale()
    {
        QTextCodec* before = QTextCodec::codecForLocale();
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO 8859-1"));
        const QString text = QString::fromUtf8(u8"ä€😀");
        const QByteArray block = blockOf(text);
        QString back;
        const bool decoded = Lzma::decompress64(QString::fromLatin1(block.toBase64()), &back);
        QTextCodec::setCodecForLocale(before);

        QCOMPARE(block, blockOf(QByteArray(u8"ä€😀")));
        QVERIFY(decoded);
        QCOMPARE(back, text);
    }

    void nulInsideATextIsCompressedAndEndsTheDecodedText()
    {
        const QString text = QStringLiteral("ab") + QChar(0) + QStringLiteral("cd");
        const QByteArray block = blockOf(text);
        QCOMPARE(block, blockOf(QByteArray("ab\0cd", 5)));
        QString back;
        QVERIFY(Lzma::decompress64(QString::fromLatin1(block.toBase64()), &back));
        QCOMPARE(back, QStringLiteral("ab"));

        unsigned char* dest = nullptr;
        QVERIFY(Lzma::decompress(reinterpret_cast<const unsigned char*>(block.constData()),
                                 static_cast<size_t>(block.size()), &dest));
        const Buffer buffer(dest, &std::free);
        QVERIFY(std::memcmp(dest, "ab\0cd", 6) == 0);
    }

    void bytesThatAreNotUtf8AreReplaced()
    {
        const QByteArray bytes("a\xff\xc3(b");
        QString back;
        QVERIFY(Lzma::decompress64(QString::fromLatin1(blockOf(bytes).toBase64()), &back));
        QCOMPARE(back, QString::fromUtf8(bytes));
        QVERIFY(back.contains(QChar(QChar::ReplacementCharacter)));
    }

    void blocksOfOtherEncodersAreRead_data()
    {
        columns<QByteArray, QString>();

        const QString json = QString::fromUtf8(u8R"({"answer":"Zürich 日本 😀","n":[1,2,3]})");
        QTest::newRow("lc 3, lp 0, pb 2")
            << QByteArray("5d001000002c00000000000000003d888827243866608ab1976de626"
                          "7ade00e7a93a1a10cd285026d54b80e2a74d9a"
                          "fcde4d516267f8b4af8ec5eb986e4bcd9bfffffbc47000")
            << json;
        QTest::newRow("lc 0, lp 0, pb 0")
            << QByteArray("00001000002c00000000000000003d88cbc4e5b2298b25724c98de7f"
                          "5cdd7617b5cfc644db9031524e6b247b3cba54"
                          "dbccd01b0bc53572bbe8184774a9e2bffffc31e000")
            << json;
        QTest::newRow("lc 1, lp 3, pb 4")
            << QByteArray("d0001000002c00000000000000003d888826e399dcca72110b2cb051"
                          "d3efbb3787114639a3a608af1f7a05a1f3cae0"
                          "e89061a197d2c457538cb791ed74ebfaf49bf5ffff33660000")
            << json;
        QTest::newRow("lc 0, lp 4, pb 4")
            << QByteArray("d8001000002c00000000000000003d888826e399dcca72110e8445a6"
                          "1af0e46933babb9326590c42efb2989ea10195"
                          "fbf88ae0090cf92cf44b13d8383552f203566dffffb4188000")
            << json;
        QTest::newRow("exact size, no end marker")
            << QByteArray("5d004000001b000000000000000024194986e7d63b918b7800b3bbb68000")
            << QStringLiteral("Hello, hello, hello, hello!");
        QTest::newRow("empty, no end marker")
            << QByteArray("5d0040000000000000000000000000000000") << QString();
    }

    void blocksOfOtherEncodersAreRead()
    {
        const auto [hex, text] = row<QByteArray, QString>();
        QByteArray block = QByteArray::fromHex(hex);
        QString back = QStringLiteral("before");
        QVERIFY(Lzma::decompress64(QString::fromLatin1(block.toBase64()), &back));
        QCOMPARE(back, text);
        QVERIFY(Lzma::decompress(decimalList(block), &back));
        QCOMPARE(back, text);
        QVERIFY(Lzma::decompress(reinterpret_cast<unsigned char*>(block.data()),
                                 static_cast<size_t>(block.size()), &back));
        QCOMPARE(back, text);
    }

    void base64IsReadLeniently_data()
    {
        columns<QString>();

        const QString clean = QString::fromLatin1(blockOf(QStringLiteral("skips")).toBase64());
        const QString half = clean.left(clean.size() / 2);
        const QString rest = clean.mid(clean.size() / 2);
        QVERIFY(clean.endsWith(QLatin1Char('=')));
        QTest::newRow("clean") << clean;
        QTest::newRow("blanks around") << QStringLiteral("  ") + clean + QStringLiteral(" \n");
        QTest::newRow("line break inside") << half + QStringLiteral("\r\n") + rest;
        QTest::newRow("other signs inside") << half + QStringLiteral("!*-_,\"") + rest;
        QTest::newRow("characters outside ASCII inside") << half + QString::fromUtf8(u8"ä日😀") + rest;
        QTest::newRow("without padding") << QString(clean).remove(QLatin1Char('='));
    }

    void base64IsReadLeniently()
    {
        const auto [base64] = row<QString>();
        QString back;
        QVERIFY(Lzma::decompress64(base64, &back));
        QCOMPARE(back, QStringLiteral("skips"));
    }

    void decimalListIsReadLeniently_data()
    {
        columns<QString>();

        // The tail of the block of "a", whose fourth byte is a zero.
        const QString tail = QStringLiteral("0,1,0,0,0,0,0,0,0,0,48,193,251,255,255,255,224,0,0,0");
        QTest::newRow("clean") << QStringLiteral("[93,0,64,0,") + tail + QStringLiteral("]");
        QTest::newRow("no brackets") << QStringLiteral("93,0,64,0,") + tail;
        QTest::newRow("brackets anywhere")
            << QStringLiteral("[[9]3,[0],64]],0,") + tail + QStringLiteral("[");
        QTest::newRow("words are zeros") << QStringLiteral("[93,zero,64,null,") + tail + QStringLiteral("]");
        QTest::newRow("empty parts are zeros") << QStringLiteral("[93,,64,,") + tail + QStringLiteral("]");
        QTest::newRow("fractions are zeros")
            << QStringLiteral("[93,1.5,64,2e3,") + tail + QStringLiteral("]");
        QTest::newRow("numbers beyond 32 bits") // 93 and 64, and 2 or 3 to the 32nd
            << QStringLiteral("[4294967389,0,12884901952,-4294967296,") + tail + QStringLiteral("]");
        QTest::newRow("numbers beyond 64 bits are zeros")
            << QStringLiteral("[93,99999999999999999999,64,0,") + tail + QStringLiteral("]");
        QTest::newRow("negative numbers")
            << QStringLiteral("[-163,-256,-192,0,") + tail + QStringLiteral("]");
        QTest::newRow("numbers above 255")
            << QStringLiteral("[349,256,65600,512,") + tail + QStringLiteral("]");
    }

    void decimalListIsReadLeniently()
    {
        const auto [list] = row<QString>();
        QString back;
        QVERIFY(Lzma::decompress(list, &back));
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
            {"texts of numbers", QList<QVariant>{QStringLiteral("93"), QStringLiteral("0"),
                                                 QStringLiteral("64"), QStringLiteral("0")}},
            {"what is no number is zero",
             QList<QVariant>{93, QStringLiteral("zero"), 64, QVariant::fromValue(nullptr)}},
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
        const QString text = QString::fromLatin1(pattern(QStringLiteral("words"), 20000));
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

private:
    void texts()
    {
        QTest::addColumn<QString>("text");

        QTest::newRow("empty") << QStringLiteral("");
        QTest::newRow("one letter") << QStringLiteral("a");
        QTest::newRow("empty JSON string") << QStringLiteral("\"\"");
        QTest::newRow("JSON") << QStringLiteral(R"({"answer":"A,C","blob":{"pick":["A","C"]}})");
        QTest::newRow("line breaks and blanks") << QStringLiteral(" \t first\r\nsecond\n\n ");
        QTest::newRow("control characters") << QStringLiteral("\x01\x02\x7f\x1b[0m");
        QTest::newRow("Latin") << QString::fromUtf8(u8"Größe, naïve, Ærø, señor");
        QTest::newRow("Greek, Cyrillic, Arabic, Chinese")
            << QString::fromUtf8(u8"λόγος Привет سلام 日本語 中文");
        QTest::newRow("combining") << QString::fromUtf8(u8"e\u0301 a\u0308");
        QTest::newRow("above the basic plane") << QString::fromUtf8(u8"😀 𝒳 𐍈 👩‍🏫");
        QTest::newRow("every character of the basic plane") << allPlaneZero();
        QTest::newRow("characters of all other planes") << someAboveThePlane();
        QTest::newRow("all alike, 1 Mi characters") << QString(1 << 20, QLatin1Char('x'));
        QTest::newRow("noise, 1 Mi characters")
            << QString::fromLatin1(pattern(QStringLiteral("noise"), 1 << 20).toBase64());
    }

    std::unique_ptr<LogRecorder> m_log;
};

QTEST_GUILESS_MAIN(tst_Lzma)
#include "tst_Lzma.moc"
