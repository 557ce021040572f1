// What becomes of the data of a message body.

#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/CollaborationMessageHandler>
#include <CalyxClient/Lzma>

#include <QJsonDocument>
#include <QLoggingCategory>
#include <QObject>
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

} // namespace

class tst_CollaborationMessageHandlerData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_log = std::make_unique<LogRecorder>();
        m_handler = std::make_unique<CollaborationMessageHandler>();
    }

    void cleanup()
    {
        m_handler.reset();
        m_log.reset();
    }

    void noData_data()
    {
        rows<QVariantMap>({
            {"absent", json(R"({"type":"x"})").toMap()},
            {"null", json(R"({"data":null})").toMap()},
            {"object", json(R"({"data":{"a":1}})").toMap()},
            {"empty object", json(R"({"data":{}})").toMap()},
            {"in another spelling", json(R"({"Data":"x"})").toMap()},
            {"empty body", QVariantMap()},
        });
    }

    void noData()
    {
        const auto [body] = row<QVariantMap>();
        QVERIFY(!m_handler->getDataValue(body).isValid());
        QCOMPARE(m_log->debug(), QStringList());
    }

    void singleText_data()
    {
        rows<QString, QVariant>({
            {"object", R"({"b":[1,null],"a":"x"})", json(R"({"b":[1,null],"a":"x"})")},
            {"empty object", "{}", QVariant(QVariantMap())},
            {"object outside ASCII", u8R"({"ä":"日本 😀"})", json(u8R"({"ä":"日本 😀"})")},
            {"object with blanks around", " {\n}\n ", QVariant(QVariantMap())},
            {"array", "[1,2]", INVALID},
            {"array of objects", "[{}]", INVALID},
            {"bare number", "5", INVALID},
            {"bare text", "\"poll-1\"", INVALID},
            {"bare null", "null", INVALID},
            {"no JSON", "hello", INVALID},
            {"cut off JSON", "{\"a\":", INVALID},
            {"nothing", "", INVALID},
        });
    }

    void singleText()
    {
        const auto [content, expected] = row<QString, QVariant>();
        for (const QString& text : {base64(content), byteList(content)}) {
            const QVariant data = decoded(text);
            QCOMPARE(data, expected);
            QCOMPARE(data.isValid(), expected.isValid());
        }
        QCOMPARE(m_log->debug().size(), 2);
        QCOMPARE(m_log->debug(FROM_STRING).size(), 2);
        if (content == QLatin1String("hello"))
            QVERIFY(m_log->debug().first().mid(FROM_STRING.size()).contains(content));
    }

    void singleTextThatIsNotCompressedIsForwarded_data()
    {
        const QString good = base64(R"({"a":1})");
        rows<QVariant, QString>({
            {"word", QVariant("hello"), "hello"},
            {"empty", QVariant(""), ""},
            {"sentence", QVariant("Nothing but words, and more of them than fourteen."),
             "Nothing but words, and more of them than fourteen."},
            {"JSON", QVariant(R"({"a":1})"), R"({"a":1})"},
            {"outside ASCII", QVariant(QString::fromUtf8(u8"ä😀")), u8"ä😀"},
            {"block cut off", QVariant(good.left(good.size() - 8)), good.left(good.size() - 8)},
            {"few numbers", QVariant("[93,0,0]"), "[93,0,0]"},
            {"number", json("[5]").toList().first(), "5"},
            {"fraction", json("[1.5]").toList().first(), "1.5"},
            {"true", json("[true]").toList().first(), "true"},
            {"false", json("[false]").toList().first(), "false"},
        });
    }

    void singleTextThatIsNotCompressedIsForwarded()
    {
        const auto [data, text] = row<QVariant, QString>();
        const QVariant result = decoded(data);
        QVERIFY(result.isValid());
        QCOMPARE(result.userType(), int(QMetaType::QString));
        QCOMPARE(result.toString(), text);
        QCOMPARE(m_log->debug().size(), 1);
        QVERIFY2(m_log->debug().first().startsWith(RAW_FAILED), qPrintable(m_log->debug().first()));
    }

    void listOfTexts_data()
    {
        const QVariant object = json(R"({"a":[1,2],"b":"c"})");
        const QString first = base64(R"({"a":[1,)");
        const QString second = base64(R"(2],"b)");
        const QString third = base64(R"(":"c"})");
        const QString whole = base64(R"({"a":[1,2],"b":"c"})");

        const auto bytes = [](const char* text) { return QVariant(QByteArray(text)); };
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
        });
    }

    void listOfTexts()
    {
        const auto [list, expected] = row<QVariantList, QVariant>();
        const QVariant data = decoded(list);
        QCOMPARE(data.userType(), expected.userType());
        QCOMPARE(data, expected);
        // Those that failed are skipped without a word.
        QCOMPARE(m_log->debug().size(), 1);
        QCOMPARE(m_log->debug(FROM_LIST).size(), 1);
        if (expected == QByteArray("hello"))
            QVERIFY(m_log->debug().first().mid(FROM_LIST.size()).contains(QLatin1String("hello")));
    }

    void listOfTextsThatAreNotCompressedIsInvalid_data()
    {
        const QString whole = base64(R"({"a":1})");
        rows<QVariantList>({
            {"one", QVariantList{"hello"}},
            {"several", QVariantList{"hello", "there", 5}},
            {"empty texts", QVariantList{"", ""}},
            {"list of numbers as a text", QVariantList{byteList("{}")}},
            {"one block cut in two, which must not be joined",
             QVariantList{whole.left(whole.size() / 2), whole.mid(whole.size() / 2)}},
        });
    }

    void listOfTextsThatAreNotCompressedIsInvalid()
    {
        const auto [list] = row<QVariantList>();
        QVERIFY(!decoded(list).isValid());
        QCOMPARE(m_log->debug(), QStringList());
    }

    void listOfNumbers_data()
    {
        const QString object = u8R"({"a":[1,2],"b":"ä😀"})";
        const QVariant expected = QJsonDocument::fromJson(object.toUtf8()).toVariant();
        // Only the first element tells a list of numbers from one of texts.
        QVariantList mixed = numbers(object);
        for (int i = 1; i < mixed.size(); ++i)
            mixed[i] = mixed.at(i).toString();
        rows<QVariantList, QVariant>({
            {"object", numbers(object), expected},
            {"object, signed bytes", signedNumbers(object), expected},
            {"object, numbers above 255", largerNumbers(object), expected},
            {"array", numbers("[1,2]"), json("[1,2]")},
            {"no JSON", numbers("hello"), QVariant(QByteArray("hello"))},
            {"Latin text", numbers(QString::fromUtf8(u8"ä")), QVariant(QByteArray("\xe4"))},
            {"bare number", numbers("42"), QVariant(QByteArray("42"))},
            {"nothing", numbers(QString()), QVariant(QByteArray(""))},
            {"texts of numbers behind the first", mixed, expected},
        });
    }

    void listOfNumbers()
    {
        const auto [list, expected] = row<QVariantList, QVariant>();
        const QVariant data = decoded(list);
        QCOMPARE(data.userType(), expected.userType());
        QCOMPARE(data, expected);
        QCOMPARE(m_log->debug().size(), 1);
        QCOMPARE(m_log->debug(FROM_LIST).size(), 1);
    }

    void listThatHoldsNoBlockIsInvalid_data()
    {
        rows<QVariantList>({
            {"few numbers", json("[93,0,0]").toList()},
            {"many numbers", json("[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20]").toList()},
            {"block cut off", numbers("{}").mid(0, 18)},
            {"null", json("[null]").toList()},
            {"true", json("[true]").toList()},
            {"object", json("[{\"a\":1}]").toList()},
            {"list", QVariantList{QVariant(numbers("{}"))}},
            {"block behind a null", QVariantList{QVariant::fromValue(nullptr), base64("{}")}},
        });
    }

    void listThatHoldsNoBlockIsInvalid()
    {
        const auto [list] = row<QVariantList>();
        QVERIFY(!decoded(list).isValid());
        QCOMPARE(m_log->debug().size(), 1);
        QCOMPARE(m_log->debug(LIST_FAILED).size(), 1);
    }

    void emptyListIsInvalid()
    {
        QVERIFY(!decoded(QVariantList()).isValid());
        QCOMPARE(m_log->debug(FROM_LIST), QStringList());
    }

    void arrayIsInvalidAsTextAndAListInAList()
    {
        const QString array = base64(R"([{"a":1}])");
        QVERIFY(!decoded(array).isValid());
        QCOMPARE(decoded(QVariantList{array}), json(R"([{"a":1}])"));
    }

    void chunksMayBeCutAnywhere();

    void hostileBlocksAreNoData()
    {
        QByteArray block = QByteArray::fromBase64(base64(R"({"a":1})").toLatin1());
        // A negative size.
        for (int i = 5; i < 13; ++i)
            block[i] = '\xff';
        const QString text = QString::fromLatin1(block.toBase64());
        QCOMPARE(decoded(text), QVariant(text));
        QVERIFY(!decoded(QVariantList{text}).isValid());
        QVariantList list;
        for (const char byte : qAsConst(block))
            list.append(int(byte));
        QVERIFY(!decoded(list).isValid());
    }

    void dataAsItComesInAFrame()
    {
        QVariantList heard;
        connect(m_handler.get(), &CollaborationMessageHandler::unhandledMessage, this,
                [&heard](const QVariantMap&, const QVariant& data) { heard.append(data); });
        const QString object = R"({"a":1})";
        for (const QString& data :
             {QStringLiteral("\"%1\"").arg(base64(object)), QStringLiteral("[\"%1\"]").arg(base64(object)),
              byteList(object), QStringLiteral("\"%1\"").arg(byteList(object))}) {
            const QString frame = QStringLiteral(R"({"body":{"type":"chat","data":%1}})").arg(data);
            QVERIFY(QMetaObject::invokeMethod(m_handler.get(), "onHandleMessage", Qt::DirectConnection,
                                              Q_ARG(QString, frame)));
        }
        const QVariant expected = json(R"({"a":1})");
        QCOMPARE(heard, QVariantList({expected, expected, expected, expected}));
    }

    void nothingIsLoggedWhileTheCategoryIsOff()
    {
        QLoggingCategory::setFilterRules("default.debug=false");
        decoded(base64("{}"));
        decoded(QVariantList{base64("{}")});
        decoded("raw");
        decoded(QVariantList{1});
        const QStringList whileOff = m_log->debug();
        QLoggingCategory::setFilterRules(QString());
        QCOMPARE(whileOff, QStringList());
    }

private:
    QVariant decoded(const QVariant& data)
    {
        return m_handler->getDataValue({{"data", data}, {"type", "x"}});
    }

    std::unique_ptr<LogRecorder> m_log;
    std::unique_ptr<CollaborationMessageHandler> m_handler;
};

void tst_CollaborationMessageHandlerData::chunksMayBeCutAnywhere()
{
    const QString text = u8R"({"name":"Zoë","answers":["A","C"],"note":"a \"quoted\" word\n"})";
    const QVariant expected = QJsonDocument::fromJson(text.toUtf8()).toVariant();
    for (int cut = 0; cut <= text.size(); ++cut) {
        const QVariant data = decoded(QVariantList{base64(text.left(cut)), base64(text.mid(cut))});
        QVERIFY2(data == expected, qPrintable(QString::number(cut)));
    }
}

QTEST_GUILESS_MAIN(tst_CollaborationMessageHandlerData)
#include "tst_CollaborationMessageHandlerData.moc"
