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
        const QVariantMap data{{"userLoginId", "teacher"}};
        rows<QString, QVariantMap>({
            {"data", R"({"data":{"userLoginId":"teacher"}})", QVariantMap{{"data", data}}},
            {"numbers and null", R"({"n":1.5,"b":true,"z":null})",
             QVariantMap{{"n", 1.5}, {"b", true}, {"z", QVariant::fromValue(nullptr)}}},
            {"beyond ASCII", "{\"ä\":\"😀\"}",
             QVariantMap{{QString::fromUtf8(u8"ä"), QString::fromUtf8(u8"😀")}}},
            {"the last of several", R"({"data":{"a":1},"data":{"b":2}})",
             QVariantMap{{"data", QVariantMap{{"b", 2.0}}}}},
            {"blanks", " \r\n{ \"a\" : 1 }\n", QVariantMap{{"a", 1.0}}},
            {"nothing inside", "{}", QVariantMap()},
        });
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
            {"text behind it", "{\"data\":{\"a\":1}} x", false},
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

    void dataIsTheMapUnderData_data()
    {
        const QVariantMap nothing;
        rows<QString, QVariantMap>({
            {"a map", R"({"data":{"url":"u"},"url":"v"})", QVariantMap{{"url", "u"}}},
            {"absent", R"({"url":"v"})", nothing},
            {"null", R"({"data":null})", nothing},
            {"a text", "{\"data\":\"{\\\"url\\\":\\\"u\\\"}\"}", nothing},
            {"a list", R"({"data":[{"url":"u"}]})", nothing},
            {"in another spelling", R"({"Data":{"url":"u"}})", nothing},
            {"one level down", R"({"body":{"data":{"url":"u"}}})", nothing},
            {"no envelope", QString(), nothing},
        });
    }

    void dataIsTheMapUnderData()
    {
        const auto [body, expected] = row<QString, QVariantMap>();
        QCOMPARE(ServiceEnvelope::data(ServiceEnvelope::parse(body)), expected);
    }
};

QTEST_APPLESS_MAIN(tst_ServiceEnvelope)
#include "tst_ServiceEnvelope.moc"
