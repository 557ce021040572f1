#include "support/Rows.h"

#include "client/ServiceEnvelope.h"

#include <QTest>

/// The envelope around the service's replies, and bodies that have none.
class tst_ServiceEnvelope : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bodyIsReadAsAMap_data()
    {
        columns<QString, QVariantMap>();
        const QVariantMap data{{QStringLiteral("userLoginId"), QStringLiteral("teacher")}};
        QTest::newRow("data") << QStringLiteral(R"({"data":{"userLoginId":"teacher"}})")
                              << QVariantMap{{QStringLiteral("data"), data}};
        QTest::newRow("numbers and null") << QStringLiteral(R"({"n":1.5,"b":true,"z":null})")
                                          << QVariantMap{{QStringLiteral("n"), 1.5},
                                                         {QStringLiteral("b"), true},
                                                         {QStringLiteral("z"), QVariant::fromValue(nullptr)}};
        QTest::newRow("beyond ASCII") << QString::fromUtf8(u8R"({"ä":"😀"})")
                                      << QVariantMap{{QString::fromUtf8(u8"ä"), QString::fromUtf8(u8"😀")}};
        QTest::newRow("the last of several")
            << QStringLiteral(R"({"data":{"a":1},"data":{"b":2}})")
            << QVariantMap{{QStringLiteral("data"), QVariantMap{{QStringLiteral("b"), 2.0}}}};
        QTest::newRow("blanks") << QStringLiteral(" \r\n{ \"a\" : 1 }\n")
                                << QVariantMap{{QStringLiteral("a"), 1.0}};
        QTest::newRow("nothing inside") << QStringLiteral("{}") << QVariantMap();
    }

    void bodyIsReadAsAMap()
    {
        const auto [body, expected] = row<QString, QVariantMap>();
        bool ok = false;
        QCOMPARE(ServiceEnvelope::parse(body, &ok), expected);
        QVERIFY(ok);
        QCOMPARE(ServiceEnvelope::parse(body), expected);
        QCOMPARE(ServiceEnvelope::object(body).toVariantMap(), expected);
    }

    void bodyThatIsNoObjectIsEmpty_data()
    {
        rows<QString, bool>({
            {"list", R"([{"data":{}}])", true},
            {"empty list", "[]", true},
            {"null text", QString(), false},
            {"empty text", "", false},
            {"a page", "<html><body>502</body></html>", false},
            {"cut", R"({"data":{"a":1})", false},
            {"text behind it",
             QStringLiteral(R"({"data":{"a":1}} )"
                            "x"),
             false},
            {"bare text", R"("ok")", false},
            {"bare number", "7", false},
        });
    }

    void bodyThatIsNoObjectIsEmpty()
    {
        const auto [body, isJson] = row<QString, bool>();
        bool ok = !isJson;
        QCOMPARE(ServiceEnvelope::parse(body, &ok), QVariantMap());
        QCOMPARE(ok, isJson);
        QCOMPARE(ServiceEnvelope::parse(body), QVariantMap());
        QCOMPARE(ServiceEnvelope::object(body), QJsonObject());
    }

    void dataIsTheMapUnderData_data();

    void dataIsTheMapUnderData()
    {
        QFETCH(QString, body);
        QTEST(ServiceEnvelope::data(ServiceEnvelope::parse(body)), "expected");
    }
};

void tst_ServiceEnvelope::dataIsTheMapUnderData_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QVariantMap>("expected");
    QTest::newRow("a map") << QStringLiteral(R"({"data":{"url":"u"},"url":"v"})")
                           << QVariantMap{{QStringLiteral("url"), QStringLiteral("u")}};
    const QVariantMap nothing;
    QTest::newRow("absent") << QStringLiteral(R"({"url":"v"})") << nothing;
    QTest::newRow("null") << QStringLiteral(R"({"data":null})") << nothing;
    QTest::newRow("a text") << QStringLiteral(R"({"data":"{\"url\":\"u\"}"})") << nothing;
    QTest::newRow("a list") << QStringLiteral(R"({"data":[{"url":"u"}]})") << nothing;
    QTest::newRow("in another spelling") << QStringLiteral(R"({"Data":{"url":"u"}})") << nothing;
    QTest::newRow("one level down") << QStringLiteral(R"({"body":{"data":{"url":"u"}}})") << nothing;
    QTest::newRow("no envelope") << QString() << nothing;
}

QTEST_APPLESS_MAIN(tst_ServiceEnvelope)
#include "tst_ServiceEnvelope.moc"
