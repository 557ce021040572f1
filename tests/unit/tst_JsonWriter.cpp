#include "base/JsonWriter.h"

#include "support/Rows.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <QUrl>
#include <QUuid>

#include <limits>

class tst_JsonWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesWhatQtWrites_data()
    {
        columns<QVariant>();
        QTest::newRow("invalid") << QVariant();
        QTest::newRow("null pointer") << QVariant::fromValue(nullptr);
        QTest::newRow("true") << QVariant(true);
        QTest::newRow("false") << QVariant(false);
        QTest::newRow("least int") << QVariant(std::numeric_limits<int>::min());
        QTest::newRow("beyond int") << QVariant(Q_INT64_C(1395358139515));
        QTest::newRow("beyond double") << QVariant(std::numeric_limits<qulonglong>::max());
        QTest::newRow("short") << QVariant::fromValue(short(-5));
        QTest::newRow("unsigned short") << QVariant::fromValue(ushort(6));
        QTest::newRow("char") << QVariant::fromValue(char(65));
        QTest::newRow("unsigned") << QVariant(7u);
        QTest::newRow("float") << QVariant(1.5f);
        QTest::newRow("fraction") << QVariant(0.1);
        QTest::newRow("large fraction") << QVariant(1e300);
        QTest::newRow("infinity") << QVariant(std::numeric_limits<double>::infinity());
        QTest::newRow("null text") << QVariant(QString());
        QTest::newRow("empty text") << QVariant(QStringLiteral(""));
        QTest::newRow("bytes") << QVariant(QByteArray("bytes"));
        QTest::newRow("bytes with a zero") << QVariant(QByteArray("a\0c", 3));
        QTest::newRow("character") << QVariant(QChar('c'));
        QTest::newRow("date") << QVariant(QDate(2026, 11, 21));
        QTest::newRow("address") << QVariant(QUrl(QStringLiteral("http://host/a b")));
        QTest::newRow("uuid") << QVariant(QUuid(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
        QTest::newRow("empty map") << QVariant(QVariantMap());
        QTest::newRow("empty list") << QVariant(QVariantList());
        QTest::newRow("list") << QVariant(
            QVariantList{1, QStringLiteral("two"), QVariantList{QVariantMap()}});
        QTest::newRow("texts") << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")});
        QTest::newRow("hash") << QVariant(QVariantHash{{QStringLiteral("key"), 1}});
        QTest::newRow("object") << QVariant(QJsonObject{{QStringLiteral("key"), QJsonArray{1, 2.5}}});
        const QVariantMap ordered{{QString(QChar(0xff61)), 1},   {QString::fromUcs4(U"\U0001f600"), 2},
                                  {QStringLiteral("\u00e4"), 3}, {QStringLiteral("z"), 4},
                                  {QStringLiteral(""), 5},       {QStringLiteral("a\"b\\"), 6}};
        QTest::newRow("order and spelling of keys") << QVariant(ordered);
        for (ushort unit = 0; unit < 0x101; ++unit)
            QTest::addRow("character %d", unit) << QVariant(QStringLiteral("<") + QChar(unit) + QChar('>'));
        QTest::newRow("pair") << QVariant(QString::fromUcs4(U"\U0001f600"));
        QTest::newRow("half a pair") << QVariant(QString(QChar(0xd83d)));
        QTest::newRow("long") << QVariant(QString(100000, QLatin1Char('"')));
    }

    void writesWhatQtWrites()
    {
        const auto [value] = row<QVariant>();
        const QVariantMap inner{{QStringLiteral("value"), value},
                                {QStringLiteral("list"), QVariantList{value}}};
        const QVariantMap map{{QStringLiteral("first"), value}, {QStringLiteral("inner"), inner}};
        QCOMPARE(JsonWriter::write(map), QJsonDocument::fromVariant(map).toJson());
    }

    void convertsMapsAndListsOfOtherTypes_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QVariant>("plain");
        const QString key = QStringLiteral("key");
        const QVariant map = QVariantMap{{key, 1}};
        QTest::newRow("map of numbers") << QVariant::fromValue(QMap<QString, int>{{key, 1}}) << map;
        QTest::newRow("hash of texts")
            << QVariant::fromValue(QHash<QString, QString>{{key, key}}) << QVariant(QVariantMap{{key, key}});
        QTest::newRow("keys that are numbers") << QVariant::fromValue(QMap<int, bool>{{7, true}})
                                               << QVariant(QVariantMap{{QStringLiteral("7"), true}});
        QTest::newRow("list of maps") << QVariant::fromValue(QList<QVariantMap>{{{key, 1}}, {}})
                                      << QVariant(QVariantList{map, QVariantMap()});
        QTest::newRow("list of numbers")
            << QVariant::fromValue(QVector<int>{3, 1}) << QVariant(QVariantList{3, 1});
        QTest::newRow("of another type within one of Qt's")
            << QVariant(QVariantHash{{key, QVariant::fromValue(QList<QVariantMap>{{{key, 1}}})}})
            << QVariant(QVariantMap{{key, QVariantList{map}}});
        QTest::newRow("list of objects is null")
            << QVariant::fromValue(QList<QObject*>{nullptr}) << QVariant();
    }

    void convertsMapsAndListsOfOtherTypes()
    {
        QFETCH(QVariant, value);
        QFETCH(QVariant, plain);
        const QString key = QStringLiteral("value");
        QCOMPARE(JsonWriter::write({{key, value}}), JsonWriter::write({{key, plain}}));
    }
};

QTEST_APPLESS_MAIN(tst_JsonWriter)
#include "tst_JsonWriter.moc"
