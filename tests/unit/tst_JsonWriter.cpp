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
        const QVariantMap ordered{{QString(QChar(0xff61)), 1},
                                  {QString::fromUcs4(U"\U0001f600"), 2},
                                  {"\u00e4", 3},
                                  {"z", 4},
                                  {"", 5},
                                  {"a\"b\\", 6}};
        rows<QVariant>({
            {"invalid", QVariant()},
            {"null pointer", QVariant::fromValue(nullptr)},
            {"true", QVariant(true)},
            {"false", QVariant(false)},
            {"least int", QVariant(std::numeric_limits<int>::min())},
            {"beyond int", QVariant(Q_INT64_C(1395358139515))},
            {"beyond double", QVariant(std::numeric_limits<qulonglong>::max())},
            {"short", QVariant::fromValue(short(-5))},
            {"unsigned short", QVariant::fromValue(ushort(6))},
            {"char", QVariant::fromValue(char(65))},
            {"unsigned", QVariant(7u)},
            {"float", QVariant(1.5f)},
            {"fraction", QVariant(0.1)},
            {"large fraction", QVariant(1e300)},
            {"infinity", QVariant(std::numeric_limits<double>::infinity())},
            {"null text", QVariant(QString())},
            {"empty text", QVariant("")},
            {"bytes", QVariant(QByteArray("bytes"))},
            {"bytes with a zero", QVariant(QByteArray("a\0c", 3))},
            {"character", QVariant(QChar('c'))},
            {"date", QVariant(QDate(2026, 11, 21))},
            {"address", QVariant(QUrl("http://host/a b"))},
            {"uuid", QVariant(QUuid(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11))},
            {"empty map", QVariant(QVariantMap())},
            {"empty list", QVariant(QVariantList())},
            {"list", QVariant(QVariantList{1, "two", QVariantList{QVariantMap()}})},
            {"texts", QVariant(QStringList{"a", "b"})},
            {"hash", QVariant(QVariantHash{{"key", 1}})},
            {"object", QVariant(QJsonObject{{"key", QJsonArray{1, 2.5}}})},
            {"order and spelling of keys", QVariant(ordered)},
            {"pair", QVariant(QString::fromUcs4(U"\U0001f600"))},
            {"half a pair", QVariant(QString(QChar(0xd83d)))},
            {"long", QVariant(QString(100000, QLatin1Char('"')))},
        });
        for (ushort unit = 0; unit < 0x101; ++unit)
            QTest::addRow("character %d", unit) << QVariant(QStringLiteral("<") + QChar(unit) + QChar('>'));
    }

    void writesWhatQtWrites()
    {
        const auto [value] = row<QVariant>();
        const QVariantMap inner{{"value", value}, {"list", QVariantList{value}}};
        const QVariantMap map{{"first", value}, {"inner", inner}};
        QCOMPARE(JsonWriter::write(map), QJsonDocument::fromVariant(map).toJson());
    }

    void convertsMapsAndListsOfOtherTypes_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QVariant>("plain");
        const QString key = "key";
        const QVariant map = QVariantMap{{key, 1}};
        QTest::newRow("map of numbers") << QVariant::fromValue(QMap<QString, int>{{key, 1}}) << map;
        QTest::newRow("hash of texts")
            << QVariant::fromValue(QHash<QString, QString>{{key, key}}) << QVariant(QVariantMap{{key, key}});
        QTest::newRow("keys that are numbers")
            << QVariant::fromValue(QMap<int, bool>{{7, true}}) << QVariant(QVariantMap{{"7", true}});
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
        const QString key = "value";
        QCOMPARE(JsonWriter::write({{key, value}}), JsonWriter::write({{key, plain}}));
    }
};

QTEST_APPLESS_MAIN(tst_JsonWriter)
#include "tst_JsonWriter.moc"
