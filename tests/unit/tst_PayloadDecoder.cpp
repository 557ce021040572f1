#include "collab/PayloadDecoder.h"

#include "support/LogRecorder.h"

#include <CalyxClient/Lzma>

#include <QJsonArray>
#include <QTest>

namespace {

QString base64(const QString& text)
{
    QString out;
    return Lzma::compress64(text, &out) ? out : QString();
}

// What stands in the list of bytes that a text is compressed to.
QJsonArray numbers(const QString& text)
{
    QString out;
    return Lzma::compress(text, &out) ? QJsonDocument::fromJson(out.toLatin1()).array() : QJsonArray();
}

const QString OBJECT = R"({"a":[1,2],"b":"c"})";
const QString LIST = R"([{"a":1}])";

enum Holds { Nothing, AMap, AList, SomethingElse };

} // namespace

Q_DECLARE_METATYPE(Holds)

/// What a payload holds, and that data which was parsed is read as data in variants is. What becomes of each
/// kind of data is in tst_CollaborationMessageHandlerData, how much there may be of it in tst_HostileSizes.
class tst_PayloadDecoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void payloads_data()
    {
        QTest::addColumn<QJsonValue>("data");
        QTest::addColumn<Holds>("holds");
        const auto row = [](const char* name, const QJsonValue& data, Holds holds) {
            QTest::newRow(name) << data << holds;
        };
        const QString half = R"({"a":[1,)";
        const QString otherHalf = R"(2],"b":"c"})";
        row("map in a text", base64(OBJECT), AMap);
        row("empty map in a text", base64("{}"), AMap);
        row("list in a text", base64(LIST), Nothing);
        row("text that is not compressed", "hello", SomethingElse);
        row("number", 5, SomethingElse);
        row("fraction", 1.5, SomethingElse);
        row("true", true, SomethingElse);
        row("map in a list", QJsonArray{base64(OBJECT)}, AMap);
        row("list in a list", QJsonArray{base64(LIST)}, AList);
        row("empty list in a list", QJsonArray{base64("[]")}, AList);
        row("chunks", QJsonArray{base64(half), base64(otherHalf)}, AMap);
        row("a number among the chunks", QJsonArray{base64(half), 5, base64(otherHalf)}, AMap);
        row("a list and a null among the chunks",
            QJsonArray{base64(half), QJsonArray{base64(half)}, QJsonValue::Null, base64(otherHalf)}, AMap);
        row("no JSON in a list", QJsonArray{base64("hello")}, SomethingElse);
        row("texts that are not compressed", QJsonArray{"hello"}, Nothing);
        row("map in bytes", numbers(OBJECT), AMap);
        row("list in bytes", numbers(LIST), AList);
        row("no JSON in bytes", numbers("hello"), SomethingElse);
        row("bytes that are no block", QJsonArray{1, 2, 3}, Nothing);
        row("a null before a text", QJsonArray{QJsonValue::Null, base64(OBJECT)}, Nothing);
        row("empty list", QJsonArray(), Nothing);
        row("object", QJsonObject{{"a", 1}}, Nothing);
        row("null", QJsonValue::Null, Nothing);
    }

    void payloads()
    {
        QFETCH(QJsonValue, data);
        QFETCH(Holds, holds);
        const LogRecorder quiet;
        const PayloadDecoder::Payload payload = PayloadDecoder::read(data);
        const QVariant value = payload.value();
        const bool isJson = holds == AMap || holds == AList;
        QCOMPARE(value.isValid(), holds != Nothing);
        QCOMPARE(value.userType() == QMetaType::QVariantMap, holds == AMap);
        QCOMPARE(value.userType() == QMetaType::QVariantList, holds == AList);
        QCOMPARE(payload.document.isNull(), !isJson);
        QCOMPARE(payload.other.isValid(), holds == SomethingElse);
        QCOMPARE(payload.object().toVariantMap(), holds == AMap ? value.toMap() : QVariantMap());
        QCOMPARE(PayloadDecoder::decode(data.toVariant()), value);
    }

    void listsOfOtherTypesAreLists()
    {
        const LogRecorder quiet;
        const QStringList chunks{base64(R"({"a":)"), base64("1}")};
        const QVariant map = QVariantMap{{"a", 1}};
        QCOMPARE(PayloadDecoder::decode(chunks), map);
        QCOMPARE(PayloadDecoder::decode(QVariant::fromValue(chunks.toVector())), map);
        QCOMPARE(PayloadDecoder::decode(QVariant::fromValue(QList<QVariantMap>{{}})), QVariant());
    }

    void newPayloadHoldsNothing()
    {
        const PayloadDecoder::Payload payload;
        QVERIFY(!payload.value().isValid());
        QVERIFY(payload.object().isEmpty());
    }

    void dataThatIsNotThere()
    {
        const LogRecorder log;
        QVERIFY(!PayloadDecoder::read(QJsonObject().value("data")).value().isValid());
        QVERIFY(!PayloadDecoder::decode(QVariant()).isValid());
        QCOMPARE(log.debug(), QStringList());
    }

    void limitCountsCharactersAndNotBytes()
    {
        constexpr int half = 16 * 1024 * 1024;
        const LogRecorder quiet;
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
};

QTEST_APPLESS_MAIN(tst_PayloadDecoder)
#include "tst_PayloadDecoder.moc"
