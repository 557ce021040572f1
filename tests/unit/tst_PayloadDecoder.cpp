#include "base/JsonVariant.h"
#include "collab/PayloadDecoder.h"
#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/Lzma>

#include <QJsonArray>
#include <QTest>

#include <memory>

namespace {

const QString RAW_FAILED = "[MessageHandler.Decompressed] FAILED to decompress, forwarding raw string!";
const QString LIST_FAILED = "[MessageHandler.Decompressed] FAILED to decompress List!";
const QString FROM_STRING = "[MessageHandler.Decompressed from String] ";
const QString FROM_LIST = "[MessageHandler.Decompressed from List] ";

QString base64(const QString& text)
{
    QString out;
    return Lzma::compress64(text, &out) ? out : QString();
}

QString byteList(const QString& text)
{
    QString out;
    return Lzma::compress(text, &out) ? out : QString();
}

QVariantList numbers(const QString& text)
{
    return QJsonDocument::fromJson(byteList(text).toLatin1()).toVariant().toList();
}

QVariantList signedNumbers(const QString& text)
{
    QVariantList list = numbers(text);
    for (QVariant& number : list)
        number = number.toInt() > 127 ? number.toInt() - 256 : number.toInt();
    return list;
}

QVariantList largerNumbers(const QString& text)
{
    QVariantList list = numbers(text);
    for (int i = 0; i < list.size(); ++i)
        list[i] = list.at(i).toInt() + 256 * (i % 4);
    return list;
}

QVariant json(const char* text)
{
    return QJsonDocument::fromJson(text).toVariant();
}

const QVariant INVALID;

QVariant decoded(const QVariant& data)
{
    const PayloadDecoder::Payload payload = PayloadDecoder::read(JsonVariant::toJson(data));
    const QVariant value = payload.value();
    const bool isMap = value.userType() == QMetaType::QVariantMap;
    const bool isJson = isMap || value.userType() == QMetaType::QVariantList;
    const QVariantMap map = isMap ? value.toMap() : QVariantMap();
    const bool isSound = payload.document.isNull() != isJson &&
                         payload.other.isValid() == (value.isValid() && !isJson) &&
                         payload.object().toVariantMap() == map;
    return isSound ? value : QVariant("a payload that contradicts itself");
}

} // namespace

/// What becomes of the data of a message body. How much there may be of it: tst_HostileSizes.
class tst_PayloadDecoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }

    void cleanup() { m_log.reset(); }

    void noData()
    {
        QVERIFY(!PayloadDecoder::read(QJsonObject().value("data")).value().isValid());
        for (const QVariant& data : {QVariant(), QVariant::fromValue(nullptr), QVariant(QVariantMap()),
                                     QVariant(QVariantMap{{"a", 1}}), QVariant(QVariantList())})
            QVERIFY(!decoded(data).isValid());
        QCOMPARE(m_log->debug(), QStringList());
    }

    void singleText_data()
    {
        rows<QString, QVariant>({
            {"object", R"({"b":[1,null],"a":"x"})", json(R"({"b":[1,null],"a":"x"})")},
            {"object outside ASCII", u8R"({"ä":"日本 😀"})", json(u8R"({"ä":"日本 😀"})")},
            {"object with blanks around", " {\n}\n ", QVariant(QVariantMap())},
            {"array", "[{}]", INVALID},
            {"bare number", "5", INVALID},
            {"bare null", "null", INVALID},
            {"no JSON", "hello", INVALID},
            {"cut off JSON", "{\"a\":", INVALID},
            {"nothing", "", INVALID},
        });
    }
    void singleText()
    {
        const auto [content, expected] = row<QString, QVariant>();
        QCOMPARE(decoded(base64(content)), expected);
        QCOMPARE(decoded(byteList(content)), expected);
        QCOMPARE(m_log->debug().size(), 2);
        QCOMPARE(m_log->debug(FROM_STRING).size(), 2);
        if (content == "hello")
            QVERIFY(m_log->debug().first().mid(FROM_STRING.size()).contains(content));
    }

    void singleTextThatIsNotCompressedIsForwarded_data()
    {
        const QString good = base64(R"({"a":1})");
        QByteArray block = QByteArray::fromBase64(good.toLatin1());
        block.replace(5, 8, QByteArray(8, '\xff')); // a negative size
        const QString hostile = block.toBase64();
        rows<QVariant, QString>({
            {"word", QVariant("hello"), "hello"},
            {"empty", QVariant(""), ""},
            {"JSON", QVariant(R"({"a":1})"), R"({"a":1})"},
            {"outside ASCII", QVariant(u8"ä😀"), u8"ä😀"},
            {"block cut off", QVariant(good.left(good.size() - 8)), good.left(good.size() - 8)},
            {"hostile block", QVariant(hostile), hostile},
            {"few numbers", QVariant("[93,0,0]"), "[93,0,0]"},
            {"number", QVariant(5.0), "5"},
            {"fraction", QVariant(1.5), "1.5"},
            {"true", QVariant(true), "true"},
            {"false", QVariant(false), "false"},
        });
    }
    void singleTextThatIsNotCompressedIsForwarded()
    {
        const auto [data, text] = row<QVariant, QString>();
        const QVariant result = decoded(data);
        QCOMPARE(result.userType(), int(QMetaType::QString));
        QCOMPARE(result.toString(), text);
        QCOMPARE(m_log->debug().size(), 1);
        QVERIFY2(m_log->debug().first().startsWith(RAW_FAILED), qPrintable(m_log->debug().first()));
        QVERIFY(!decoded(QVariantList{data}).isValid());
    }

    void listIsOneText_data()
    {
        const QVariant object = json(R"({"a":[1,2],"b":"c"})");
        const QString first = base64(R"({"a":[1,)");
        const QString second = base64(R"(2],"b)");
        const QString third = base64(R"(":"c"})");
        const QString whole = base64(R"({"a":[1,2],"b":"c"})");
        const auto bytes = [](const char* text) { return QVariant(QByteArray(text)); };
        const QString text = u8R"({"a":[1,2],"b":"ä😀"})";
        const QVariant map = QJsonDocument::fromJson(text.toUtf8()).toVariant();
        // Only the first element tells a list of numbers from one of texts.
        QVariantList mixed = numbers(text);
        for (int i = 1; i < mixed.size(); ++i)
            mixed[i] = mixed.at(i).toString();
        rows<QVariantList, QVariant>({
            {"one object", QVariantList{whole}, object},
            {"one array", QVariantList{base64("[1,{}]")}, json("[1,{}]")},
            {"empty array", QVariantList{base64("[]")}, QVariant(QVariantList())},
            {"chunks", QVariantList{first, second, third}, object},
            {"empty text among the chunks", QVariantList{first, "", second, third}, object},
            {"bad text among the chunks", QVariantList{first, "bad", second, third}, object},
            {"number among the chunks", QVariantList{first, 5, second, third}, object},
            {"null, list and object among the chunks",
             QVariantList{first, QVariant::fromValue(nullptr), second, QVariantList{third}, QVariantMap(),
                          third},
             object},
            {"empty text first", QVariantList{"", whole}, object},
            {"bad text first", QVariantList{"bad", whole}, object},
            {"bad text last", QVariantList{whole, "bad"}, object},
            {"chunk of nothing", QVariantList{first, base64(QString()), second, third}, object},
            {"no JSON", QVariantList{base64("hello ")}, bytes("hello ")},
            {"chunks of no JSON", QVariantList{base64("hel"), base64("lo")}, bytes("hello")},
            {"chunks in another order", QVariantList{second, first}, bytes("2],\"b{\"a\":[1,")},
            {"bare number", QVariantList{base64("5")}, bytes("5")},
            {"bare text", QVariantList{base64("\"p1\"")}, bytes("\"p1\"")},
            {"Latin text", QVariantList{base64(QString::fromUtf8(u8"Größe"))},
             bytes("Gr\xf6\xdf"
                   "e")},
            {"text beyond Latin", QVariantList{base64(QString::fromUtf8(u8"日本"))}, bytes("??")},
            {"two objects", QVariantList{whole, whole}, bytes(R"({"a":[1,2],"b":"c"}{"a":[1,2],"b":"c"})")},
            {"nothing", QVariantList{base64(QString())}, bytes("")},
            {"numbers: object", numbers(text), map},
            {"numbers: object, signed bytes", signedNumbers(text), map},
            {"numbers: object, numbers above 255", largerNumbers(text), map},
            {"numbers: array", numbers("[1,2]"), json("[1,2]")},
            {"numbers: no JSON", numbers("hello"), QVariant(QByteArray("hello"))},
            {"numbers: Latin text", numbers(QString::fromUtf8(u8"ä")), QVariant(QByteArray("\xe4"))},
            {"numbers: bare number", numbers("42"), QVariant(QByteArray("42"))},
            {"numbers: nothing", numbers(QString()), QVariant(QByteArray(""))},
            {"texts of numbers behind the first", mixed, map},
        });
    }
    void listIsOneText()
    {
        const auto [list, expected] = row<QVariantList, QVariant>();
        const QVariant data = decoded(list);
        QCOMPARE(data.userType(), expected.userType());
        QCOMPARE(data, expected);
        QCOMPARE(m_log->debug().size(), 1); // what failed is skipped without a word
        QCOMPARE(m_log->debug(FROM_LIST).size(), 1);
        if (expected == QByteArray("hello"))
            QVERIFY(m_log->debug().first().mid(FROM_LIST.size()).contains(QLatin1String("hello")));
    }

    void listThatHoldsNoBlockIsInvalid_data()
    {
        const QString whole = base64(R"({"a":1})");
        // Of texts that are not compressed, nothing is said.
        rows<QVariantList, int>({
            {"one", QVariantList{"hello"}, 0},
            {"several", QVariantList{"hello", "there", 5}, 0},
            {"empty texts", QVariantList{"", ""}, 0},
            {"list of numbers as a text", QVariantList{byteList("{}")}, 0},
            {"one block cut in two, which must not be joined",
             QVariantList{whole.left(whole.size() / 2), whole.mid(whole.size() / 2)}, 0},
            {"few numbers", json("[93,0,0]").toList(), 1},
            {"many numbers", json("[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20]").toList(), 1},
            {"block cut off", numbers("{}").mid(0, 18), 1},
            {"null", json("[null]").toList(), 1},
            {"true", json("[true]").toList(), 1},
            {"object", json("[{\"a\":1}]").toList(), 1},
            {"list", QVariantList{QVariant(numbers("{}"))}, 1},
            {"block behind a null", QVariantList{QVariant::fromValue(nullptr), base64("{}")}, 1},
        });
    }
    void listThatHoldsNoBlockIsInvalid()
    {
        const auto [list, lines] = row<QVariantList, int>();
        QVERIFY(!decoded(list).isValid());
        QCOMPARE(m_log->debug().size(), lines);
        QCOMPARE(m_log->debug(LIST_FAILED).size(), lines);
    }

    void chunksMayBeCutAnywhere()
    {
        const QString text = u8"{\"name\":\"Zoë\",\"note\":\"a \\\"quoted\\\" word\\n\"}";
        const QVariant expected = QJsonDocument::fromJson(text.toUtf8()).toVariant();
        QVERIFY(expected.isValid());
        for (int cut = 0; cut <= text.size(); ++cut) {
            const QVariant data = decoded(QVariantList{base64(text.left(cut)), base64(text.mid(cut))});
            QVERIFY2(data == expected, qPrintable(QString::number(cut)));
        }
    }

    void limitCountsCharactersAndNotBytes()
    {
        constexpr int half = 16 * 1024 * 1024;
        // Of two bytes each: more bytes than there may be characters.
        const QString text = QStringLiteral("{\"a\":\"") + QString(half, QChar(0xe4)) + QStringLiteral("\"}");
        const QJsonValue block = base64(text);
        QCOMPARE(PayloadDecoder::read(block).object().value("a").toString().size(), half);
        QVERIFY(!PayloadDecoder::read(QJsonValue(QJsonArray{block, block, block})).value().isValid());
        // What is counted is only what has come: it would take minutes to count all of it for each chunk.
        QJsonArray chunks{block};
        for (int i = 0; i < 20000; ++i)
            chunks.append(base64(" "));
        QCOMPARE(PayloadDecoder::read(chunks).object().size(), 1);
    }

    void listsOfOtherTypesAreLists()
    {
        const QStringList chunks{base64(R"({"a":)"), base64("1}")};
        const QVariant map = QVariantMap{{"a", 1}};
        QCOMPARE(PayloadDecoder::decode(chunks), map);
        QCOMPARE(PayloadDecoder::decode(QVariant::fromValue(chunks.toVector())), map);
        QCOMPARE(PayloadDecoder::decode(QVariant::fromValue(QList<QVariantMap>{{}})), QVariant());
    }

private:
    std::unique_ptr<LogRecorder> m_log;
};

QTEST_APPLESS_MAIN(tst_PayloadDecoder)
#include "tst_PayloadDecoder.moc"
