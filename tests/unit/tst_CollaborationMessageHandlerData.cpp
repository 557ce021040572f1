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

const QString RAW_FAILED =
    QStringLiteral("[MessageHandler.Decompressed] FAILED to decompress, forwarding raw string!");
const QString LIST_FAILED = QStringLiteral("[MessageHandler.Decompressed] FAILED to decompress List!");
const QString FROM_STRING = QStringLiteral("[MessageHandler.Decompressed from String] ");
const QString FROM_LIST = QStringLiteral("[MessageHandler.Decompressed from List] ");

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
            {"object outside ASCII", QString::fromUtf8(u8R"({"ä":"日本 😀"})"), json(u8R"({"ä":"日本 😀"})")},
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
        columns<QVariant, QString>();
        const QString good = base64(QStringLiteral(R"({"a":1})"));
        QTest::newRow("word") << QVariant(QStringLiteral("hello")) << QStringLiteral("hello");
        QTest::newRow("empty") << QVariant(QStringLiteral("")) << QStringLiteral("");
        QTest::newRow("sentence") << QVariant(
                                         QStringLiteral("Nothing but words, and more of them than fourteen."))
                                  << QStringLiteral("Nothing but words, and more of them than fourteen.");
        QTest::newRow("JSON") << QVariant(QStringLiteral(R"({"a":1})")) << QStringLiteral(R"({"a":1})");
        QTest::newRow("outside ASCII") << QVariant(QString::fromUtf8(u8"ä😀")) << QString::fromUtf8(u8"ä😀");
        QTest::newRow("block cut off") << QVariant(good.left(good.size() - 8)) << good.left(good.size() - 8);
        QTest::newRow("few numbers") << QVariant(QStringLiteral("[93,0,0]")) << QStringLiteral("[93,0,0]");
        QTest::newRow("number") << json("[5]").toList().first() << QStringLiteral("5");
        QTest::newRow("fraction") << json("[1.5]").toList().first() << QStringLiteral("1.5");
        QTest::newRow("true") << json("[true]").toList().first() << QStringLiteral("true");
        QTest::newRow("false") << json("[false]").toList().first() << QStringLiteral("false");
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
        columns<QVariantList, QVariant>();

        const QVariant object = json(R"({"a":[1,2],"b":"c"})");
        const QString first = base64(QStringLiteral(R"({"a":[1,)"));
        const QString second = base64(QStringLiteral(R"(2],"b)"));
        const QString third = base64(QStringLiteral(R"(":"c"})"));
        const QString whole = base64(QStringLiteral(R"({"a":[1,2],"b":"c"})"));
        QTest::newRow("one object") << QVariantList{whole} << object;
        QTest::newRow("one array") << QVariantList{base64(QStringLiteral("[1,{}]"))} << json("[1,{}]");
        QTest::newRow("empty array") << QVariantList{base64(QStringLiteral("[]"))}
                                     << QVariant(QVariantList());
        QTest::newRow("chunks") << QVariantList{first, second, third} << object;
        QTest::newRow("empty text among the chunks")
            << QVariantList{first, QStringLiteral(""), second, third} << object;
        QTest::newRow("bad text among the chunks")
            << QVariantList{first, QStringLiteral("bad"), second, third} << object;
        QTest::newRow("number among the chunks") << QVariantList{first, 5, second, third} << object;
        QTest::newRow("null, list and object among the chunks")
            << QVariantList{first, QVariant::fromValue(nullptr), second, QVariantList{third}, QVariantMap(),
                            third}
            << object;
        QTest::newRow("empty text first") << QVariantList{QStringLiteral(""), whole} << object;
        QTest::newRow("bad text first") << QVariantList{QStringLiteral("bad"), whole} << object;
        QTest::newRow("bad text last") << QVariantList{whole, QStringLiteral("bad")} << object;
        QTest::newRow("chunk of nothing") << QVariantList{first, base64(QString()), second, third} << object;

        const auto bytes = [](const char* text) { return QVariant(QByteArray(text)); };
        QTest::newRow("no JSON") << QVariantList{base64(QStringLiteral("hello "))} << bytes("hello ");
        QTest::newRow("chunks of no JSON")
            << QVariantList{base64(QStringLiteral("hel")), base64(QStringLiteral("lo"))} << bytes("hello");
        QTest::newRow("chunks in another order") << QVariantList{second, first} << bytes("2],\"b{\"a\":[1,");
        QTest::newRow("bare number") << QVariantList{base64(QStringLiteral("5"))} << bytes("5");
        QTest::newRow("bare text") << QVariantList{base64(QStringLiteral("\"p1\""))} << bytes("\"p1\"");
        QTest::newRow("Latin text") << QVariantList{base64(QString::fromUtf8(u8"Größe"))}
                                    << bytes("Gr\xf6\xdf"
                                             "e");
        QTest::newRow("text beyond Latin")
            << QVariantList{base64(QString::fromUtf8(u8"日本"))} << bytes("??");
        QTest::newRow("two objects") << QVariantList{whole, whole}
                                     << bytes(R"({"a":[1,2],"b":"c"}{"a":[1,2],"b":"c"})");
        QTest::newRow("nothing") << QVariantList{base64(QString())} << bytes("");
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
        columns<QVariantList>();
        QTest::newRow("one") << QVariantList{QStringLiteral("hello")};
        QTest::newRow("several") << QVariantList{QStringLiteral("hello"), QStringLiteral("there"), 5};
        QTest::newRow("empty texts") << QVariantList{QStringLiteral(""), QStringLiteral("")};
        QTest::newRow("list of numbers as a text") << QVariantList{byteList(QStringLiteral("{}"))};
        const QString whole = base64(QStringLiteral(R"({"a":1})"));
        QTest::newRow("one block cut in two, which must not be joined")
            << QVariantList{whole.left(whole.size() / 2), whole.mid(whole.size() / 2)};
    }

    void listOfTextsThatAreNotCompressedIsInvalid()
    {
        const auto [list] = row<QVariantList>();
        QVERIFY(!decoded(list).isValid());
        QCOMPARE(m_log->debug(), QStringList());
    }

    void listOfNumbers_data()
    {
        columns<QVariantList, QVariant>();

        const QString object = QString::fromUtf8(u8R"({"a":[1,2],"b":"ä😀"})");
        const QVariant expected = QJsonDocument::fromJson(object.toUtf8()).toVariant();
        QTest::newRow("object") << numbers(object) << expected;
        QTest::newRow("object, signed bytes") << signedNumbers(object) << expected;
        QTest::newRow("object, numbers above 255") << largerNumbers(object) << expected;
        QTest::newRow("array") << numbers(QStringLiteral("[1,2]")) << json("[1,2]");
        QTest::newRow("no JSON") << numbers(QStringLiteral("hello")) << QVariant(QByteArray("hello"));
        QTest::newRow("Latin text") << numbers(QString::fromUtf8(u8"ä")) << QVariant(QByteArray("\xe4"));
        QTest::newRow("bare number") << numbers(QStringLiteral("42")) << QVariant(QByteArray("42"));
        QTest::newRow("nothing") << numbers(QString()) << QVariant(QByteArray(""));
        // Only the first element tells a list of numbers from one of texts.
        QVariantList mixed = numbers(object);
        for (int i = 1; i < mixed.size(); ++i)
            mixed[i] = mixed.at(i).toString();
        QTest::newRow("texts of numbers behind the first") << mixed << expected;
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
            {"block cut off", numbers(QStringLiteral("{}")).mid(0, 18)},
            {"null", json("[null]").toList()},
            {"true", json("[true]").toList()},
            {"object", json("[{\"a\":1}]").toList()},
            {"list", QVariantList{QVariant(numbers(QStringLiteral("{}")))}},
            {"block behind a null", QVariantList{QVariant::fromValue(nullptr), base64(QStringLiteral("{}"))}},
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
        const QString array = base64(QStringLiteral(R"([{"a":1}])"));
        QVERIFY(!decoded(array).isValid());
        QCOMPARE(decoded(QVariantList{array}), json(R"([{"a":1}])"));
    }

    void chunksMayBeCutAnywhere();

    void hostileBlocksAreNoData()
    {
        QByteArray block = QByteArray::fromBase64(base64(QStringLiteral(R"({"a":1})")).toLatin1());
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
        const QString object = QStringLiteral(R"({"a":1})");
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
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        decoded(base64(QStringLiteral("{}")));
        decoded(QVariantList{base64(QStringLiteral("{}"))});
        decoded(QStringLiteral("raw"));
        decoded(QVariantList{1});
        const QStringList whileOff = m_log->debug();
        QLoggingCategory::setFilterRules(QString());
        QCOMPARE(whileOff, QStringList());
    }

private:
    QVariant decoded(const QVariant& data)
    {
        return m_handler->getDataValue(
            {{QStringLiteral("data"), data}, {QStringLiteral("type"), QStringLiteral("x")}});
    }

    std::unique_ptr<LogRecorder> m_log;
    std::unique_ptr<CollaborationMessageHandler> m_handler;
};

void tst_CollaborationMessageHandlerData::chunksMayBeCutAnywhere()
{
    const QString text =
        QString::fromUtf8(u8R"({"name":"Zoë","answers":["A","C"],"note":"a \"quoted\" word\n"})");
    const QVariant expected = QJsonDocument::fromJson(text.toUtf8()).toVariant();
    for (int cut = 0; cut <= text.size(); ++cut) {
        const QVariant data = decoded(QVariantList{base64(text.left(cut)), base64(text.mid(cut))});
        QVERIFY2(data == expected, qPrintable(QString::number(cut)));
    }
}

QTEST_GUILESS_MAIN(tst_CollaborationMessageHandlerData)
#include "tst_CollaborationMessageHandlerData.moc"
