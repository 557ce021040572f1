#include <CalyxClient/RANDSTRING>

#include <QObject>
#include <QTest>

#include <ctime>
#include <limits>

namespace {

const QString ALPHABET = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
int nextRandom()
{
    return qrand();
}

void seedRandom(uint seed)
{
    qsrand(seed);
}
QT_WARNING_POP

// What is to come out in the second that seeds it.
QString expectedIn(std::time_t second, int length)
{
    seedRandom(static_cast<uint>(second));
    QString text;
    for (int i = 0; i < length; ++i)
        text.append(ALPHABET.at(nextRandom() % 62));
    return text;
}

} // namespace

class tst_RANDSTRING : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isOfTheGivenLength()
    {
        for (const int length : {1, 2, 8, 16, 62, 1000, 100000})
            QCOMPARE(RANDSTRING::Generate(length).size(), length);
        for (const int length : {0, -1, std::numeric_limits<int>::min()})
            QCOMPARE(RANDSTRING::Generate(length), QString());
    }

    void drawsFromLettersAndDigits()
    {
        // So long that every character comes up.
        const QString text = RANDSTRING::Generate(20000);
        for (const QChar character : text)
            QVERIFY2(ALPHABET.contains(character), qPrintable(QString(character)));
        for (const QChar character : ALPHABET)
            QVERIFY2(text.contains(character), qPrintable(QString(character)));
    }

    void isSeededWithTheSecond()
    {
        const std::time_t before = std::time(nullptr);
        const QString text = RANDSTRING::Generate(24);
        const std::time_t after = std::time(nullptr);
        QStringList expected;
        for (std::time_t second = before; second <= after; ++second)
            expected.append(expectedIn(second, 24));
        QVERIFY2(expected.contains(text), qPrintable(text));
    }

    void seedsTheGeneratorOfTheProcess()
    {
        for (const int length : {5, 0, -1}) {
            QTRY_VERIFY([length] {
                const std::time_t second = std::time(nullptr);
                seedRandom(1);
                RANDSTRING::Generate(length);
                const int following = nextRandom();
                expectedIn(second, length);
                return second == std::time(nullptr) && following == nextRandom();
            }());
        }
    }
};

QTEST_GUILESS_MAIN(tst_RANDSTRING)
#include "tst_RANDSTRING.moc"
