// Little that claims or becomes much: what comes from outside must not take the host's memory or time.

#include "support/ClientProbe.h"
#include "support/FakeService.h"
#include "support/Gzip.h"
#include "support/LzmaBlocks.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/gUncompress>

#include <QtTest>

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

} // namespace

class tst_HostileSizes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules("default.debug=false"); // megabytes of it
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
