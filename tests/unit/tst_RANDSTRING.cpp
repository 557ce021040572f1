#include <CalyxClient/RANDSTRING>

#include <QObject>
#include <QTest>

#include <ctime>
#include <limits>
#include <random>

namespace {

const QString ALPHABET = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

// What is to come out in the second that seeds it: Qt 5's qrand() is this engine.
QString expectedIn(std::time_t second, int length)
{
    std::minstd_rand engine(static_cast<uint>(second));
    QString text;
    for (int i = 0; i < length; ++i)
        text.append(ALPHABET.at(int(engine() % 62)));
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

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // later, Qt has no such generator
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    void seedsTheGeneratorOfTheProcess()
    {
        for (const int length : {5, 0, -1}) {
            QTRY_VERIFY([length] {
                const std::time_t second = std::time(nullptr);
                qsrand(1);
                RANDSTRING::Generate(length);
                const int following = qrand();
                qsrand(static_cast<uint>(second));
                for (int i = 0; i < length; ++i)
                    qrand();
                return second == std::time(nullptr) && following == qrand();
            }());
        }
    }
    QT_WARNING_POP
#endif
};

QTEST_GUILESS_MAIN(tst_RANDSTRING)
#include "tst_RANDSTRING.moc"
