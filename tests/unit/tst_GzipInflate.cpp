// Inflating the body of a reply.

#include "support/Gzip.h"
#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/gUncompress>

#include <QTest>

// The output is gathered 1024 bytes at a time: the sizes around its multiples are the ones to get wrong.
static const int sizes[] = {0, 1, 1023, 1024, 1025, 2047, 2048, 2049, 4096, 10240, 300000};

class tst_GzipInflate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void inflates_data()
    {
        columns<QByteArray, QByteArray>();
        for (const int size : sizes) {
            const QByteArray noise = Gzip::noise(size);
            const QByteArray same(size, 'x');
            QTest::addRow("gzip noise %d", size) << Gzip::gzip(noise) << noise;
            QTest::addRow("zlib noise %d", size) << Gzip::zlib(noise) << noise;
            QTest::addRow("gzip same %d", size) << Gzip::gzip(same) << same;
            QTest::addRow("zlib same %d", size) << Gzip::zlib(same) << same;
            QTest::addRow("garbage behind %d", size) << Gzip::gzip(noise) + "garbage" << noise;
            QTest::addRow("another member behind %d", size)
                << Gzip::gzip(noise) + Gzip::gzip("more") << noise;
        }
        const QByteArray bytes("a\0b\xff\r\n\0", 7);
        QTest::newRow("bytes that are no text") << Gzip::gzip(bytes) << bytes;
        // printf '{"success":true}' | gzip -n
        QTest::newRow("by the program gzip")
            << QByteArray::fromHex("1f8b0800000000000003ab562a2e4d4e4e2d2e56b22a292a4dad0500dff7f66610000000")
            << QByteArray(R"({"success":true})");
    }
    void inflates()
    {
        const auto [packed, data] = row<QByteArray, QByteArray>();
        const LogRecorder log;
        QVERIFY(gUncompress(packed) == data);
        QVERIFY(log.messages().isEmpty());
    }

    void fewerThanFiveBytesWarn()
    {
        for (int size = -1; size < 5; ++size) {
            const LogRecorder log;
            QVERIFY(gUncompress(size < 0 ? QByteArray() : Gzip::gzip("abc").left(size)).isEmpty());
            QCOMPARE(log.messages().size(), 1);
            QCOMPARE(log.warnings(), QStringList{"gUncompress: Input data is truncated"});
        }
    }

    void truncatedDataGivesWhatCameOutUntilThen_data()
    {
        const QByteArray noise = Gzip::noise(10000);
        const QByteArray packed = Gzip::gzip(noise);
        const QByteArray zlib = Gzip::zlib(noise);
        const QByteArray page = Gzip::noise(1024);
        const QByteArray packedPage = Gzip::gzip(page);
        rows<QByteArray, QByteArray, int>({
            {"half", packed.left(packed.size() / 2), noise, 4900},
            {"all but one byte", packed.left(packed.size() - 1), noise, 10000},
            {"without the trailer", packed.left(packed.size() - 8), noise, 10000},
            {"zlib, half", zlib.left(zlib.size() / 2), noise, 4900},
            {"five bytes, the fewest that are looked at", Gzip::zlib("abc").left(5), "abc", 0},
            {"a whole page without trailer", packedPage.left(packedPage.size() - 8), page, 1024},
        });
    }
    void truncatedDataGivesWhatCameOutUntilThen()
    {
        const auto [packed, data, atLeast] = row<QByteArray, QByteArray, int>();
        const LogRecorder log;
        const QByteArray inflated = gUncompress(packed);
        QVERIFY2(inflated.size() >= atLeast, qPrintable(QString::number(inflated.size())));
        QVERIFY(data.startsWith(inflated));
        QVERIFY(log.messages().isEmpty());
    }

    void corruptDataGivesNothing_data()
    {
        QByteArray middle = Gzip::gzip(Gzip::noise(300000));
        middle[middle.size() / 2] = char(middle.at(middle.size() / 2) ^ 1);
        rows<QByteArray>({
            {"text", R"({"success":true})"},
            {"zeros", QByteArray(64, '\0')},
            {"gzip header, then garbage", Gzip::gzip("abc").left(10) + QByteArray(64, '\xff')},
            {"header alone", Gzip::gzip("abc").left(10)},
            {"one bit in the middle", middle},
            // It asks for a preset dictionary, and names the dictionary's id.
            {"a dictionary is needed", QByteArray::fromHex("782012345678abcdef")},
        });
        for (const int size : sizes) {
            QByteArray checksum = Gzip::gzip(Gzip::noise(size));
            checksum[checksum.size() - 8] = char(checksum.at(checksum.size() - 8) ^ 1);
            QTest::addRow("checksum of %d", size) << checksum;
            QByteArray length = Gzip::gzip(Gzip::noise(size));
            length[length.size() - 1] = char(length.at(length.size() - 1) ^ 1);
            QTest::addRow("length of %d", size) << length;
        }
    }
    void corruptDataGivesNothing()
    {
        const auto [packed] = row<QByteArray>();
        const LogRecorder log;
        QVERIFY(gUncompress(packed).isEmpty());
        QVERIFY(log.messages().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_GzipInflate)
#include "tst_GzipInflate.moc"
