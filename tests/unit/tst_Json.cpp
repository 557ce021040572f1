// JSON in and out: the reader, the writer, the escapes that both use; and SockJS frames as texts: what goes
// out is what Qt's own writer makes of them. What comes in, as Qt's reader reads it, is in tst_HostileJson.

#include "base/JsonEscape.h"
#include "base/JsonReader.h"
#include "base/JsonWriter.h"
#include "support/Rows.h"
#include "transport/SockJSFrame.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <QUrl>
#include <QUuid>

#include <limits>
#include <malloc.h>

namespace {

// To Qt's hash "Aa" and "BB" are the same, on a processor that does not help.
QString namesOfOneHash()
{
    constexpr int bits = 17;
    QString text = "{\"\":[]";
    for (int number = 0; number < 1 << bits; ++number) {
        text += ",\"";
        for (int bit = 0; bit < bits; ++bit)
            text += (number >> bit) & 1 ? QStringLiteral("Aa") : QStringLiteral("BB");
        text += "\":0";
    }
    return text + QLatin1Char('}');
}

} // namespace

class tst_Json : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCharacterAsQtWritesIt()
    {
        int count = 0;
        for (int character = 0; character <= 0xffff; ++character) {
            const ushort letter = jsonEscape(ushort(character));
            const QJsonArray list{QString(QChar(character))};
            const QByteArray json = QJsonDocument(list).toJson(QJsonDocument::Compact); // ["\n"]
            const bool isShort = json.size() == 6 && json.at(2) == '\\';
            QCOMPARE(letter, isShort ? ushort(json.at(3)) : ushort(0));
            count += isShort;
        }
        QCOMPARE(count, 7);
    }

    void writesWhatQtWrites_data()
    {
        const QVariantMap ordered{{QString(QChar(0xff61)), 1},
                                  {QString::fromUcs4(U"\U0001f600"), 2},
                                  {"\u00e4", 3},
                                  {"z", 4},
                                  {"", 5},
                                  {"a\"b\\", 6}};
        columns<QVariant>();
        QVariantList values;
        values << QVariant() << QVariant::fromValue(nullptr) << true << false
               << std::numeric_limits<int>::min() << Q_INT64_C(1395358139515)
               << std::numeric_limits<qulonglong>::max() << QVariant::fromValue(short(-5))
               << QVariant::fromValue(ushort(6)) << QVariant::fromValue(char(65)) << 7u << 1.5f << 0.1
               << 1e300 << std::numeric_limits<double>::infinity() << QString() << "" << QByteArray("bytes")
               << QByteArray("a\0c", 3) << QChar('c') << QDate(2026, 11, 21) << QUrl("http://host/a b")
               << QUuid(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11) << QVariant(QVariantMap())
               << QVariant(QVariantList()) << QVariant(QVariantList{1, "two", QVariantList{QVariantMap()}})
               << QStringList{"a", "b"} << QVariantHash{{"key", 1}}
               << QJsonObject{{"key", QJsonArray{1, 2.5}}} << ordered;
        // A pair of surrogates, and half of it.
        values << QString::fromUcs4(U"\U0001f600") << QString(QChar(0xd83d))
               << QString(100000, QLatin1Char('"'));
        for (int i = 0; i < values.size(); ++i) {
            const QVariant& value = values.at(i);
            QTest::addRow("%d, %s %s", i, value.typeName(), qPrintable(value.toString().left(20))) << value;
        }
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
        const QString key = "key";
        const QVariant map = QVariantMap{{key, 1}};
        const QVariant maps = QVariant::fromValue(QList<QVariantMap>{{{key, 1}}, {}});
        rows<QVariant, QVariant>({
            {"map of numbers", QVariant::fromValue(QMap<QString, int>{{key, 1}}), map},
            {"hash of texts", QVariant::fromValue(QHash<QString, QString>{{key, key}}),
             QVariant(QVariantMap{{key, key}})},
            {"keys that are numbers", QVariant::fromValue(QMap<int, bool>{{7, true}}),
             QVariant(QVariantMap{{"7", true}})},
            {"list of maps", maps, QVariant(QVariantList{map, QVariantMap()})},
            {"list of numbers", QVariant::fromValue(QVector<int>{3, 1}), QVariant(QVariantList{3, 1})},
            {"of another type within one of Qt's", QVariant(QVariantHash{{key, maps}}),
             QVariant(QVariantMap{{key, QVariantList{map, QVariantMap()}}})},
            {"list of objects is null", QVariant::fromValue(QList<QObject*>{nullptr}), QVariant()},
        });
    }
    void convertsMapsAndListsOfOtherTypes()
    {
        const auto [value, plain] = row<QVariant, QVariant>();
        QCOMPARE(JsonWriter::write({{"value", value}}), JsonWriter::write({{"value", plain}}));
    }

    void lastOfSeveralMembersCounts_data()
    {
        const QString others = "{" + QString(R"("c":1,"b":2,"a":3,)").repeated(10);
        rows<QString, QByteArray>({
            {"none is repeated", R"({"a":{"x":1},"b":{"x":2}})", R"({"a":{"x":1},"b":{"x":2}})"},
            {"two numbers", R"({"a":1,"a":2})", R"({"a":2})"},
            {"object by object", R"({"a":{"x":1},"a":{"y":2}})", R"({"a":{"y":2}})"},
            {"list by list", R"({"a":[1,2],"a":[3]})", R"({"a":[3]})"},
            {"object by number", R"({"a":{"x":1},"a":2})", R"({"a":2})"},
            {"number by object", R"({"a":2,"a":{"x":1}})", R"({"a":{"x":1}})"},
            {"three times", R"({"a":{"x":1},"a":[2],"a":{"z":3}})", R"({"a":{"z":3}})"},
            {"others between", R"({"a":{"x":1},"b":[2],"a":{"y":3}})", R"({"a":{"y":3},"b":[2]})"},
            {"one level down", R"({"o":{"a":[1],"a":[2]}})", R"({"o":{"a":[2]}})"},
            {"in a list", R"([{"a":[1],"a":[2]},{"a":[3]}])", R"([{"a":[2]},{"a":[3]}])"},
            {"on two levels", R"({"a":{"a":[1],"a":[2]},"a":{"a":[3]}})", R"({"a":{"a":[3]}})"},
            {"same name on two levels", R"({"a":{"a":{"a":[1]}}})", R"({"a":{"a":{"a":[1]}}})"},
            {"name of escapes", R"({"a":[1],"\u0061":[2]})", R"({"a":[2]})"},
            {"name of short escapes", "{\"\\n\\\"\":[1],\"\\u000a\\u0022\":[2]}", "{\"\\n\\\"\":[2]}"},
            {"name of a surrogate pair", u8R"({"\ud83d\ude00":[1],"😀":[2]})", u8R"({"😀":[2]})"},
            {"name of half a pair", "{\"\ufffd\":[1],\"\\ud800\":[2]}", R"({"\ud800":[2]})"},
            {"braces in a text", "{\"a\":[\"}]\"],\"a\":[\"\\\"}\"]}", "{\"a\":[\"\\\"}\"]}"},
            {"names that look alike", R"({"a":[1],"a ":[2],"A":[3]})", R"({"A":[3],"a":[1],"a ":[2]})"},
            {"values that look like names", R"({"a":[1],"b":"a"})", R"({"a":[1],"b":"a"})"},
            {"the empty name", R"({"":[1],"":[2]})", R"({"":[2]})"},
            {"blanks", " {\n\"a\" :\t[ 1 ] , \"a\"\r: [ 2 ]\n} ", R"({"a":[2]})"},
            {"many numbers", others + R"("a":4})", R"({"a":4,"b":2,"c":1})"},
            {"many numbers by a list", others + R"("b":[0]})", R"({"a":3,"b":[0],"c":1})"},
            {"a list among many numbers", others + R"("k":0,"c":[5],"k":[6],"c":7})",
             R"({"a":3,"b":2,"c":7,"k":[6]})"},
        });
    }
    void lastOfSeveralMembersCounts()
    {
        const auto [text, expected] = row<QString, QByteArray>();
        QJsonParseError error;
        QCOMPARE(JsonReader::read(text, &error).toJson(QJsonDocument::Compact), expected);
        QCOMPARE(error.error, QJsonParseError::NoError);
    }

    void replacedMembersTakeNoMemory_data() { lastOfSeveralMembersCounts_data(); }
    void replacedMembersTakeNoMemory()
    {
        const QString text = std::get<0>(row<QString, QByteArray>());
        constexpr int times = 2000;
        constexpr int leastLeak = 80; // an object or a list with one value
        const auto readOften = [&] {
            for (int i = 0; i < times; ++i)
                JsonReader::read(text);
            return mallinfo2().uordblks;
        };
        const size_t before = readOften(); // with what the allocator keeps at hand
        const size_t after = readOften();
        QVERIFY2(after < before + times * leastLeak / 2, qPrintable(QString::number(after - before)));
    }

    void whatIsNoJsonIsNull()
    {
        for (const char* text :
             {"", "{", "}", "]", "[}", "{\"a\"", "{\"a\":{\"x\":1},\"a\":", "{\"a\":{\"x\":1},\"a\":2}}",
              "\"", "\"\\", "{\"a\":[1],\"\\u00", "{,\"a\":1}", "{\"a\":{}\"a\":2}", "null", "5"}) {
            QJsonParseError error;
            QVERIFY2(JsonReader::read(QString::fromLatin1(text), &error).isNull(), text);
            QVERIFY2(error.error != QJsonParseError::NoError, text);
        }
    }

    void objectsDownToTheDeepestLevelAreRead()
    {
        constexpr int deepest = 1024;
        const auto nested = [](int depth) {
            const QString inner = R"({"a":[1],"a":2})";
            return QStringLiteral("[").repeated(depth - 2) + inner + QStringLiteral("]").repeated(depth - 2);
        };
        QVERIFY(JsonReader::read(nested(deepest)).isArray());
        QVERIFY(JsonReader::read(nested(deepest + 2)).isNull());
        QVERIFY(JsonReader::read(QString(1000000, QLatin1Char('['))).isNull());
        QVERIFY(JsonReader::read(QStringLiteral(R"({"a":)").repeated(1000000)).isNull());
    }

    void manyMembersAreReadInOneGo()
    {
        constexpr int count = 100000;
        QString text = "{";
        for (int i = 0; i < count; ++i)
            text += QStringLiteral("\"%1\":[%1],\"%1\":[],").arg(i);
        text += "\"\":0}";
        QCOMPARE(JsonReader::read(text).toVariant().toMap().size(), count + 1);
    }

    // Each of these takes minutes where its time grows with the square of its size.
    void longNamesAreReadInOneGo()
    {
        const QString escapes = QStringLiteral("\\u0061").repeated(1000000);
        QVERIFY(!JsonReader::read(QStringLiteral(R"({"%1":[],"b":[]})").arg(escapes)).object().isEmpty());
        QVERIFY(!JsonReader::read(namesOfOneHash()).object().isEmpty());
    }

    void messagesOfAnyLength()
    {
        for (const int length : {0, 1, 1023, 1024, 1025, 2048, 100000, 1000000}) {
            const QString text(length, QLatin1Char('x'));
            const QString escapes = QStringLiteral("\\n").repeated(length);
            QCOMPARE(SockJSFrame::messages(QStringLiteral("a[\"%1\"]").arg(text)), QStringList(text));
            QCOMPARE(SockJSFrame::messages(QStringLiteral("a[\"%1\",\"%2\"]").arg(text, escapes)),
                     QStringList({text, QString(length, QLatin1Char('\n'))}));
            QCOMPARE(SockJSFrame::messages(QStringLiteral("a[\"%1").arg(text)), QStringList());
        }
    }

    void manyMessagesInOneFrame()
    {
        constexpr int count = 20000; // in time and memory that grow with the text, not with its square
        QStringList sent;
        QJsonArray array;
        for (int i = 0; i < count; ++i) {
            sent.append(QStringLiteral("{\"number\":%1}").arg(i));
            array.append(sent.last());
        }
        const QString frame =
            QLatin1Char('a') + QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
        QCOMPARE(SockJSFrame::messages(frame), sent);
    }

    void frameIsThatOfQtsWriter()
    {
        for (const QString& message : QStringList{
                 QString(),
                 QStringLiteral("text"),
                 QStringLiteral(R"({"type":"ping"})"),
                 QStringLiteral("\"\\/\b\f\n\r\t"),
                 QStringLiteral("\u0001\u001f\u007f"),
                 QStringLiteral("\u00e4\u6f22\U0001f600\u2028<>&"),
                 QString(QChar(0xd800)),
                 QString(QChar(0xdc00)),
                 QChar(0xd83d) + QStringLiteral("x"),
                 QLatin1String("a") + QChar(0) + QLatin1String("b"),
             })
            QCOMPARE(SockJSFrame::encode(message),
                     QString::fromUtf8(QJsonDocument(QJsonArray{message}).toJson()));
    }

    void blanksAtBracketsAreDropped()
    {
        QCOMPARE(SockJSFrame::encode(QStringLiteral("x[ 1 ]y[  ] [ [ ] ] { }")),
                 QStringLiteral("[\n    \"x[1]y[] [[]] { }\"\n]\n"));
    }
};

QTEST_APPLESS_MAIN(tst_Json)
#include "tst_Json.moc"
