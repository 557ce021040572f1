#include "base/JsonReader.h"

#include <QJsonObject>
#include <QtTest>

#include <malloc.h>

namespace {

QByteArray compact(const QString& text)
{
    return JsonReader::read(text).toJson(QJsonDocument::Compact);
}

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

class tst_JsonReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lastOfSeveralMembersCounts_data();

    void lastOfSeveralMembersCounts()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, expected);
        QJsonParseError error;
        QCOMPARE(JsonReader::read(text, &error).toJson(QJsonDocument::Compact), expected);
        QCOMPARE(error.error, QJsonParseError::NoError);
    }

    void replacedMembersTakeNoMemory_data() { lastOfSeveralMembersCounts_data(); }

    void replacedMembersTakeNoMemory()
    {
        QFETCH(QString, text);
        constexpr int times = 2000;
        constexpr int leastLeak = 80; // an object or a list with one value
        const auto readOften = [&] {
            for (int i = 0; i < times; ++i)
                compact(text);
            return mallinfo2().uordblks;
        };
        const size_t before = readOften(); // with what the allocator keeps at hand
        const size_t after = readOften();
        QVERIFY2(after < before + times * leastLeak / 2, qPrintable(QString::number(after - before)));
    }

    void whatIsNoJsonIsNull_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text :
             {"", "{", "}", "]", "[}", "{\"a\"", "{\"a\":{\"x\":1},\"a\":", "{\"a\":{\"x\":1},\"a\":2}}",
              "\"", "\"\\", "{\"a\":[1],\"\\u00", "{,\"a\":1}", "{\"a\":{}\"a\":2}", "null", "5"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }

    void whatIsNoJsonIsNull()
    {
        QFETCH(QString, text);
        QJsonParseError error;
        QVERIFY(JsonReader::read(text, &error).isNull());
        QVERIFY(error.error != QJsonParseError::NoError);
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

    // Each of these takes minutes where its time grows with the square of its size.
    void longNamesAreReadInOneGo_data()
    {
        QTest::addColumn<QString>("text");
        const QString escapes = QStringLiteral("\\u0061").repeated(1000000);
        QTest::newRow("many escapes") << QStringLiteral(R"({"%1":[],"b":[]})").arg(escapes);
        QTest::newRow("many names of one hash") << namesOfOneHash();
    }

    void longNamesAreReadInOneGo()
    {
        QFETCH(QString, text);
        QVERIFY(!JsonReader::read(text).object().isEmpty());
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
};

void tst_JsonReader::lastOfSeveralMembersCounts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char* name, const char* text, const char* expected) {
        QTest::newRow(name) << QString::fromUtf8(text) << QByteArray(expected);
    };
    row("none is repeated", R"({"a":{"x":1},"b":{"x":2}})", R"({"a":{"x":1},"b":{"x":2}})");
    row("two numbers", R"({"a":1,"a":2})", R"({"a":2})");
    row("object by object", R"({"a":{"x":1},"a":{"y":2}})", R"({"a":{"y":2}})");
    row("list by list", R"({"a":[1,2],"a":[3]})", R"({"a":[3]})");
    row("object by number", R"({"a":{"x":1},"a":2})", R"({"a":2})");
    row("number by object", R"({"a":2,"a":{"x":1}})", R"({"a":{"x":1}})");
    row("three times", R"({"a":{"x":1},"a":[2],"a":{"z":3}})", R"({"a":{"z":3}})");
    row("others between", R"({"a":{"x":1},"b":[2],"a":{"y":3}})", R"({"a":{"y":3},"b":[2]})");
    row("one level down", R"({"o":{"a":[1],"a":[2]}})", R"({"o":{"a":[2]}})");
    row("in a list", R"([{"a":[1],"a":[2]},{"a":[3]}])", R"([{"a":[2]},{"a":[3]}])");
    row("on two levels", R"({"a":{"a":[1],"a":[2]},"a":{"a":[3]}})", R"({"a":{"a":[3]}})");
    row("same name on two levels", R"({"a":{"a":{"a":[1]}}})", R"({"a":{"a":{"a":[1]}}})");
    row("name of escapes", R"({"a":[1],"\u0061":[2]})", R"({"a":[2]})");
    row("name of short escapes", R"({"\n\"":[1],"\u000a\u0022":[2]})", R"({"\n\"":[2]})");
    row("name of a surrogate pair", u8R"({"\ud83d\ude00":[1],"😀":[2]})", u8R"({"😀":[2]})");
    row("braces in a text", R"({"a":["}]"],"a":["\"}"]})", R"({"a":["\"}"]})");
    row("names that look alike", R"({"a":[1],"a ":[2],"A":[3]})", R"({"A":[3],"a":[1],"a ":[2]})");
    row("values that look like names", R"({"a":[1],"b":"a"})", R"({"a":[1],"b":"a"})");
    row("the empty name", R"({"":[1],"":[2]})", R"({"":[2]})");
    const QString others = QStringLiteral(R"("c":1,"b":2,"a":3,)").repeated(10);
    const auto longRow = [&](const char* name, const char* last, const char* expected) {
        row(name, qPrintable(QLatin1Char('{') + others + QLatin1String(last) + QLatin1Char('}')), expected);
    };
    longRow("many numbers", R"("a":4)", R"({"a":4,"b":2,"c":1})");
    longRow("many numbers by a list", R"("b":[0])", R"({"a":3,"b":[0],"c":1})");
    longRow("a list among many numbers", R"("k":0,"c":[5],"k":[6],"c":7)", R"({"a":3,"b":2,"c":7,"k":[6]})");
    row("blanks", " {\n\"a\" :\t[ 1 ] , \"a\"\r: [ 2 ]\n} ", R"({"a":[2]})");
}

QTEST_GUILESS_MAIN(tst_JsonReader)
#include "tst_JsonReader.moc"
