#include "base/JsonEscape.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

/// The short escapes, against those that Qt writes and reads.
class tst_JsonEscape : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCharacterAsQtWritesIt()
    {
        for (int character = 0; character <= 0xffff; ++character) {
            const ushort letter = jsonEscape(ushort(character));
            const QJsonArray list{QString(QChar(character))};
            const QByteArray json = QJsonDocument(list).toJson(QJsonDocument::Compact); // ["\n"]
            const bool isShort = json.size() == 6 && json.at(2) == '\\';
            QCOMPARE(letter, isShort ? ushort(json.at(3)) : ushort(0));
        }
    }

    void everyEscapeIsReadByQt()
    {
        int count = 0;
        for (int character = 0; character <= 0xffff; ++character) {
            const ushort letter = jsonEscape(ushort(character));
            if (letter == 0)
                continue;
            ++count;
            const QString json = QStringLiteral("[\"\\%1\"]").arg(QChar(letter));
            QCOMPARE(QJsonDocument::fromJson(json.toUtf8()).array().first().toString(),
                     QString(QChar(character)));
        }
        QCOMPARE(count, 7);
    }
};

QTEST_APPLESS_MAIN(tst_JsonEscape)
#include "tst_JsonEscape.moc"
