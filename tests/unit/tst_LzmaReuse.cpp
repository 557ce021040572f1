#include <CalyxClient/Lzma>

#include <QRandomGenerator>
#include <QTest>

#include <thread>

namespace {

QString compressed(const QString& text)
{
    QString base64;
    return Lzma::compress64(text, &base64) ? base64 : QString();
}

// By a thread that has compressed nothing before.
QString compressedAfresh(const QString& text)
{
    QString base64;
    std::thread([&] { base64 = compressed(text); }).join();
    return base64;
}

QString decompressed(const QString& base64)
{
    QString text;
    return Lzma::decompress64(base64, &text) ? text : QString();
}

// Words that come again, near and far, within a text and from one text to the next.
QString randomText(QRandomGenerator& random)
{
    static const QStringList words = {QStringLiteral("question"), QStringLiteral("{\"id\":\""),
                                      QStringLiteral("漢字"),     QStringLiteral("aaaaaaaaaaaaaaaaaaaaaaaa"),
                                      QStringLiteral("\","),      QStringLiteral("0123456789")};
    QString text;
    const int size = random.bounded(random.bounded(2) ? 200 : 60000);
    while (text.size() < size)
        text +=
            random.bounded(4) ? words.at(random.bounded(words.size())) : QString::number(random.generate());
    return text;
}

} // namespace

/// The coders keep what they can from one text to the next of a thread: nobody can tell.
class tst_LzmaReuse : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blocksDoNotDependOnThoseBefore()
    {
        QRandomGenerator random(7);
        for (int i = 0; i < 200; ++i) {
            const QString text = randomText(random);
            const QString block = compressed(text);
            QVERIFY(!block.isEmpty());
            QCOMPARE(block, compressedAfresh(text));
            QCOMPARE(decompressed(block), text);
        }
    }

    void failedBlockLeavesNothingBehind()
    {
        const QString text = QStringLiteral("{\"pollId\":\"0b6c7e0e\",\"responseTime\":2500}");
        const QString block = compressed(text);
        QByteArray bytes = QByteArray::fromBase64(block.toLatin1());
        for (int at = 0; at < bytes.size(); ++at) {
            QByteArray broken = bytes;
            broken[at] = char(~broken.at(at));
            decompressed(QString::fromLatin1(broken.toBase64())); // whatever it is
            QCOMPARE(decompressed(block), text);
        }
        QCOMPARE(compressed(text), block);
    }
};

QTEST_APPLESS_MAIN(tst_LzmaReuse)
#include "tst_LzmaReuse.moc"
