#include "compression/Base64.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

QString encoded(const QByteArray& bytes)
{
    return Base64::encode(reinterpret_cast<const unsigned char*>(bytes.constData()), size_t(bytes.size()));
}

QByteArray randomBytes(QRandomGenerator& random, int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = char(random.generate());
    return bytes;
}

} // namespace

/// Bytes as text and back, as Qt's own functions do it.
class tst_Base64 : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesAndTheirText_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << QByteArray("") << QStringLiteral("");
        QTest::newRow("one") << QByteArray("f") << QStringLiteral("Zg==");
        QTest::newRow("two") << QByteArray("fo") << QStringLiteral("Zm8=");
        QTest::newRow("three") << QByteArray("foo") << QStringLiteral("Zm9v");
        QTest::newRow("four") << QByteArray("foob") << QStringLiteral("Zm9vYg==");
        QTest::newRow("only zeros") << QByteArray(3, '\0') << QStringLiteral("AAAA");
        QTest::newRow("only ones") << QByteArray(3, '\xff') << QStringLiteral("////");
        QTest::newRow("the last digits") << QByteArray("\xfb\xef\xbe") << QStringLiteral("++++");
    }

    void bytesAndTheirText()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QCOMPARE(encoded(bytes), text);
        QCOMPARE(Base64::decode(text), bytes);
    }

    void resultsAreThoseOfQt()
    {
        QRandomGenerator random(11);
        for (int size = 0; size < 70; ++size) {
            const QByteArray bytes = randomBytes(random, size);
            const QString text = QString::fromLatin1(bytes.toBase64());
            QCOMPARE(encoded(bytes), text);
            QCOMPARE(Base64::decode(text), bytes);
        }
    }

    void everyByteAtEveryPlace()
    {
        for (int place = 0; place < 3; ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                QByteArray bytes("abc");
                bytes[place] = char(byte);
                QCOMPARE(encoded(bytes), QString::fromLatin1(bytes.toBase64()));
                QCOMPARE(Base64::decode(encoded(bytes)), bytes);
            }
        }
    }

    // The second 128 characters look like the first to who takes a character for seven or eight bits.
    void everyCharacterIsADigitOrSkipped()
    {
        const QByteArray alphabet("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
        for (int character = 0; character <= 0xffff; ++character) {
            const bool isDigit = character < 0x80 && alphabet.contains(char(character));
            const QString text = QStringLiteral("Zm9") + QChar(character);
            QCOMPARE(Base64::decode(text).size(), isDigit ? 3 : 2);
            QCOMPARE(Base64::decode(QChar(character) + QStringLiteral("Zm9v")).startsWith("foo"), !isDigit);
        }
    }

    void foreignCharactersAreSkippedAsQtSkipsThem()
    {
        QRandomGenerator random(13);
        static const QString foreign = QStringLiteral("=-_ \n\"äĀ漢\u0141\U0001f600");
        for (int i = 0; i < 2000; ++i) {
            QString text = QString::fromLatin1(randomBytes(random, random.bounded(30)).toBase64());
            for (int j = random.bounded(6); j > 0; --j)
                text.insert(random.bounded(text.size() + 1), foreign.at(random.bounded(foreign.size())));
            QCOMPARE(Base64::decode(text), QByteArray::fromBase64(text.toUtf8()));
        }
    }

    void bitsThatMakeNoByteAreDropped_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("one digit") << QStringLiteral("Z") << QByteArray("");
        QTest::newRow("two digits") << QStringLiteral("Zg") << QByteArray("f");
        QTest::newRow("five digits") << QStringLiteral("Zm9vZ") << QByteArray("foo");
        QTest::newRow("bits set behind the last byte") << QStringLiteral("Zh==") << QByteArray("f");
        QTest::newRow("padding alone") << QStringLiteral("====") << QByteArray("");
        QTest::newRow("more text behind the padding") << QStringLiteral("Zg==Zg==") << QByteArray("f\x06`");
        QTest::newRow("null") << QString() << QByteArray("");
    }

    void bitsThatMakeNoByteAreDropped()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, bytes);
        QCOMPARE(Base64::decode(text), bytes);
        QCOMPARE(QByteArray::fromBase64(text.toLatin1()), bytes);
    }
};

QTEST_APPLESS_MAIN(tst_Base64)
#include "tst_Base64.moc"
