#include "base/RequestText.h"

#include <QTest>

/// Which characters may stand in which line of a raw request. What becomes of texts that hold others is in
/// tst_HeaderInjection.
class tst_RequestText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCharacterOfAFirstLine()
    {
        for (int character = 0; character <= 0xffff; ++character) {
            const bool isSafe = character > ' ' && character != 0x7f;
            if (RequestText::isSafeInFirstLine(QString(QChar(character))) != isSafe)
                QFAIL(qPrintable(QString::number(character, 16)));
        }
    }

    void everyByteOfALine()
    {
        for (int byte = 0; byte <= 0xff; ++byte) {
            const bool isSafe = byte != '\r' && byte != '\n' && byte != '\0';
            if (RequestText::isSafeInLine(QByteArray(1, char(byte))) != isSafe)
                QFAIL(qPrintable(QString::number(byte, 16)));
        }
    }

    void oneBadCharacterIsEnough()
    {
        const QString text = "/bus/119/abcdefgh";
        QVERIFY(RequestText::isSafeInFirstLine(text));
        QVERIFY(RequestText::isSafeInLine(text.toLatin1()));
        for (int at = 0; at <= text.size(); ++at) {
            const QString broken = QString(text).insert(at, QLatin1Char('\n'));
            QVERIFY2(!RequestText::isSafeInFirstLine(broken), qPrintable(QString::number(at)));
            QVERIFY2(!RequestText::isSafeInLine(broken.toLatin1()), qPrintable(QString::number(at)));
        }
    }

    void emptyTextIsSafe()
    {
        QVERIFY(RequestText::isSafeInFirstLine(QString()));
        QVERIFY(RequestText::isSafeInLine(QByteArray()));
    }
};

QTEST_APPLESS_MAIN(tst_RequestText)
#include "tst_RequestText.moc"
