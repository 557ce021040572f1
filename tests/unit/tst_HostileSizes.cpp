// Little that claims or becomes much: what comes from outside must not take the host's memory or time. What a
// block claims takes no memory; only what really comes out of it does, and that has a limit.

#include "support/ClientProbe.h"
#include "support/FakeService.h"
#include "support/Gzip.h"
#include "support/LzmaBlocks.h"
#include "support/Rows.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Lzma>
#include <CalyxClient/gUncompress>

#include <QFile>
#include <QObject>
#include <QtEndian>
#include <QtTest>

#include <cstdlib>
#include <cstring>
#include <memory>

using namespace LzmaBlocks;
using Answer = FakeService::Answer;

namespace {

constexpr int MiB = 1024 * 1024;
constexpr int LARGEST_REPLY = 64 * MiB;
constexpr int LARGEST_PAYLOAD = 32 * MiB;

// A JSON object of so many characters.
QString objectOf(int size)
{
    const QString empty = R"({"a":""})";
    return QString(empty).insert(empty.size() - 2, QString(size - empty.size(), QLatin1Char('x')));
}

QVariant decoded(const QVariant& data)
{
    return CollaborationMessageHandler().getDataValue({{"data", data}});
}

using Buffer = std::unique_ptr<unsigned char, decltype(&std::free)>;

// Zeros, 256 MiB of them and one more: a block with an end marker, deflated.
const char ZEROS_256_MIB[] =
    "AACUMHja7c3fZxQAAMDx62G5lG65lxXNMtnamB3Zy5TsYT1kYlPtLC7W9tDPHVdK25SsiOkm44ya0VSnrR9KxGZxJLNsoyS2kYol"
    "k5Ld2eYq/Ruf78P39RMIFAb+9f+Bjq61/GhyaF94rKnm9rOi1pNDS/Hlr72Xutpy7yNdJanq4HS6NRENDVe++Tb36WKwc/7+QPOh"
    "HXdnEk+vd8fr48HSdafDR3YfLB4cH+2MbBt80Rs503HnXmnse/lkz0x/6kZ3Rd/PsnPLWyfWpxpSax8evUuGMjubsr/7aiIFw4+X"
    "zr7qaNi/aaZvS3rk2PaXb5+UFR2NXltsb2weXzz/MPr5S0tBMPf648jqSmNlYqq4paQuN9e0J7vr+Ibay5MVpxae1/7IjFXF0qG9"
    "B9rrkuHN+cJb2fiFaHbjVL6/vD70YLVzfmWguurwxM2eX1evTLSh0Wg0Go1Go9FoNBqNRqPRaDQajUaj0Wg0Go1Go9FoNBqNRqPR"
    "aDQajUaj0Wg0Go1Go9FoNBqNRqPRaDQajUaj0Wg0Go1Go9FoNBqNRqPRaDQajUaj0Wg0Go1Go9FoNBqNRqPRaDQajUaj0Wg0Go1G"
    "o9FoNBqNRqPRaDQajUaj0X/p2dSJzHQ+PxsLBP4AL/jrgQ==";
const char ZEROS_256_MIB_AND_ONE[] =
    "AACUMHja7c3NS9MBAIDhnwdjUTTDiwWJIaEpiIPwIkV4sENIoFQOgwmml742sChSKcKCQJqEMIQSQakk7YMiCBQDIUIMJxQRqBAV"
    "GCFRhBOVlf/H8x7e6xMEeUGQE2x+s3jnRnYsOXg4f7yh6t6LgpYzg8uJle89VztbVz9GOotSlaHZkZb2aHi4/N2P+S9XQh0LD/sb"
    "j+8dSrc/v9WVqE2EinPO5Z88cKxwYGKsI7J74FVP5Hz8/oPi2M/S6e50X+p2V1nv75KLK7smt6TqUhufnnxIhqf2NWT+9lZFcoef"
    "Ll94E687sj3du3NktHnP6/fPSgpORW8utdU3Tixdehz9+q0pN7T69vPo+lp9eftMYVNRzep8w8HM/tNbq69Nl51dfFn9a2q8IjYS"
    "PnS0rSaZvyObdzeTuBzNbJvJ9pXWhh+tdyys9VdWnJi80/3nxvXJVjQajUaj0Wg0Go1Go9FoNBqNRqPRaDQajUaj0Wg0Go1Go9Fo"
    "NBqNRqPRaDQajUaj0Wg0Go1Go9FoNBqNRqPRaDQajUaj0Wg0Go1Go9FoNBqNRqPRaDQajUaj0Wg0Go1Go9FoNBqNRqPRaDQajUaj"
    "0Wg0Go1Go9FoNBqNRqPRaDT6Pz03FGuezWbnYkHwD8EY6x8=";
constexpr size_t LIMIT = size_t(256) << 20U;
constexpr qint64 KIB_PER_MIB = 1024;

QByteArray inflated(const char* base64)
{
    return qUncompress(QByteArray::fromBase64(base64));
}

// In KiB. Address space, unlike resident memory, also shows what was reserved and never touched.
qint64 memory(const char* which)
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(which))
            return line.mid(static_cast<int>(qstrlen(which))).replace("kB", "").trimmed().toLongLong();
    }
    return -1;
}

bool decodes(const QByteArray& block, Buffer* buffer)
{
    unsigned char* dest = nullptr;
    const auto* bytes = reinterpret_cast<const unsigned char*>(block.constData());
    const bool ok = Lzma::decompress(bytes, static_cast<size_t>(block.size()), &dest);
    buffer->reset(dest);
    return ok;
}

} // namespace

class tst_HostileSizes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The peak of the memory never falls: the cheap ones come first.
    void initTestCase()
    {
        QLoggingCategory::setFilterRules("default.debug=false"); // megabytes of it
        // Memory that is reserved shows, even when it is not used.
        const qint64 before = memory("VmSize:");
        QVERIFY(before > 0);
        const Buffer reserved(static_cast<unsigned char*>(std::malloc(size_t(24) << 20U)), &std::free);
        QVERIFY(reserved);
        QVERIFY(memory("VmPeak:") - before >= 24 * KIB_PER_MIB);
    }

    void claimsTakeNoMemory_data()
    {
        QByteArray dictionary = marked();
        qToLittleEndian(0xFFFFFFFFU, dictionary.data() + 1);
        rows<QByteArray, bool>({
            {"200 MiB of output", withSize(marked(), 200U << 20U), true},
            {"2 GiB of output", withSize(marked(), 0x7FFFFFFFU), true},
            {"2 GiB of output, no marker", withSize(unmarked(), 0x7FFFFFFFU), false},
            {"4 GiB of output", withSize(marked(), 0xFFFFFFFFU), false},
            {"4 GiB of dictionary", dictionary, true},
            {"4 GiB of dictionary, 2 GiB of output", withSize(dictionary, 0x7FFFFFFFU), true},
        });
    }
    void claimsTakeNoMemory()
    {
        const auto [block, passes] = row<QByteArray, bool>();
        const QString base64 = QString::fromLatin1(block.toBase64());
        const qint64 before = memory("VmSize:");
        QString out = "before";
        QCOMPARE(Lzma::decompress64(base64, &out), passes);
        const qint64 growth = memory("VmPeak:") - before;
        QVERIFY2(growth < 64 * KIB_PER_MIB, qPrintable(QString::number(growth)));
        QCOMPARE(out, passes ? QString(HELLO) : QStringLiteral("before"));
    }

    void listTakesNoMoreMemoryThanItsText()
    {
        const QString list(2 * MiB, QLatin1Char(','));
        const qint64 before = memory("VmSize:");
        QString out = "before";
        QVERIFY(Lzma::decompress(list, &out)); // zeros, which hold no text
        const qint64 growth = memory("VmPeak:") - before;
        QVERIFY2(growth < 64 * KIB_PER_MIB, qPrintable(QString::number(growth)));
    }

    void memoryFollowsWhatIsDecoded()
    {
        // Cut off, the bomb gives some 3 MiB before it fails.
        const QByteArray block = inflated(ZEROS_256_MIB).left(500);
        const qint64 before = memory("VmSize:");
        Buffer buffer(nullptr, &std::free);
        QVERIFY(!decodes(block, &buffer));
        QVERIFY(!buffer);
        const qint64 growth = memory("VmPeak:") - before;
        QVERIFY2(growth < 64 * KIB_PER_MIB, qPrintable(QString::number(growth)));
    }

    void fullLimitPasses()
    {
        Buffer buffer(nullptr, &std::free);
        QVERIFY(decodes(inflated(ZEROS_256_MIB), &buffer));
        QVERIFY(buffer);
        // All zeros, the one behind the last included: each equals its neighbour.
        QCOMPARE(int(buffer.get()[0]), 0);
        QVERIFY(std::memcmp(buffer.get(), buffer.get() + 1, LIMIT) == 0);
    }

    void moreThanTheLimitFails_data()
    {
        rows<QByteArray>({
            {"exact size", inflated(ZEROS_256_MIB_AND_ONE)},
            {"size says 2 GiB", withSize(inflated(ZEROS_256_MIB_AND_ONE), 0x7FFFFFFFU)},
        });
    }
    void moreThanTheLimitFails()
    {
        const auto [block] = row<QByteArray>();
        QCOMPARE(block.size(), 37936);
        Buffer buffer(nullptr, &std::free);
        QVERIFY(!decodes(block, &buffer));
        QVERIFY(!buffer);
        QString out = "before";
        QVERIFY(!Lzma::decompress64(QString::fromLatin1(block.toBase64()), &out));
        QCOMPARE(out, QStringLiteral("before"));
    }

    void inflatedReplyIsBounded()
    {
        QCOMPARE(gUncompress(Gzip::gzip(QByteArray(LARGEST_REPLY, 'x'))).size(), LARGEST_REPLY);
        const QByteArray bomb = Gzip::gzip(QByteArray(LARGEST_REPLY + 1, 'x'));
        QVERIFY(bomb.size() < MiB);
        QCOMPARE(gUncompress(bomb), QByteArray());
    }

    void replyIsBounded()
    {
        FakeService service;
        ClientProbe client(service.url());
        service.expect("/large", Answer::json('"' + QByteArray(LARGEST_REPLY + MiB, 'x') + '"'));
        client.request("/large");
        QCOMPARE(client.successes, QStringList());
        QCOMPARE(client.failures, QStringList(QString()));
        QCOMPARE(client.errors, {QNetworkReply::OperationCanceledError});
        service.expect("/next", Answer::json("{}"));
        client.request("/next");
        QCOMPARE(client.successes, QStringList("{}"));
    }

    void payloadIsBounded()
    {
        const QByteArray most = blockOf(objectOf(LARGEST_PAYLOAD));
        const QByteArray more = blockOf(objectOf(LARGEST_PAYLOAD + 1));
        QVERIFY(more.size() < MiB);
        const QString text = QString::fromLatin1(most.toBase64());
        const QString largerText = QString::fromLatin1(more.toBase64());
        QCOMPARE(decoded(text).userType(), int(QMetaType::QVariantMap));
        QCOMPARE(decoded(numbers(most)).userType(), int(QMetaType::QVariantMap));
        QCOMPARE(decoded(largerText), QVariant(largerText)); // as any text that cannot be decoded
        QVERIFY(!decoded(numbers(more)).isValid());
        QVERIFY(!decoded(QVariantList{largerText}).isValid());
    }

    void chunksTogetherAreBounded()
    {
        const auto chunk = [](const QString& text) { return QString::fromLatin1(blockOf(text).toBase64()); };
        const QString object = objectOf(LARGEST_PAYLOAD);
        const QVariant first = chunk(object.left(MiB));
        const QVariant second = chunk(object.mid(MiB));
        QCOMPARE(decoded(QVariantList{first, second}).userType(), int(QMetaType::QVariantMap));
        QVERIFY(!decoded(QVariantList{first, second, chunk(" ")}).isValid());
        QVERIFY(!decoded(QVariantList{second, second, second, second, second}).isValid());
    }
};

QTEST_GUILESS_MAIN(tst_HostileSizes)
#include "tst_HostileSizes.moc"
