#include "text/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

class tst_JsonText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void escapedTextStandsInAJsonString_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text : {"", "plain", "a\"b", "a\\b", "line\nend", "Zoë 🌱", "\001"})
            QTest::newRow(text) << QString::fromUtf8(text);
    }

    void escapedTextStandsInAJsonString()
    {
        QFETCH(QString, text);
        const QString json = QStringLiteral("[\"%0\"]").arg(JsonText::escaped(text));
        QCOMPARE(QJsonDocument::fromJson(json.toUtf8()).array().at(0).toString(), text);
    }

    void theLeadingObjectIsFound_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QJsonObject>("object");
        const QJsonObject object = {{"a", 1}};
        QTest::newRow("alone") << "{\"a\":1}" << object;
        QTest::newRow("followed") << "{\"a\":1},\"infoMsgKeys\":[]" << object;
        QTest::newRow("brace in a string") << "{\"a\":\"}\"} rest" << QJsonObject{{"a", "}"}};
        QTest::newRow("beyond ASCII") << "{\"ä\":\"ö\"},x" << QJsonObject{{"ä", "ö"}};
        QTest::newRow("open") << "{\"a\":1" << QJsonObject();
        QTest::newRow("none") << "uccess\":true" << QJsonObject();
        QTest::newRow("empty") << "" << QJsonObject();
    }

    void theLeadingObjectIsFound()
    {
        QFETCH(QString, text);
        QTEST(JsonText::leadingObject(text), "object");
    }

    void theLastMemberIsAString_data()
    {
        QTest::addColumn<QJsonObject>("object");
        QTest::newRow("only strings") << QJsonObject{{"a", "x"}, {"b", "y"}};
        QTest::newRow("number last") << QJsonObject{{"a", "x"}, {"z", 5}};
        QTest::newRow("object last") << QJsonObject{{"a", "x"}, {"z", QJsonObject{{"q", "w"}}}};
        QTest::newRow("one") << QJsonObject{{"a", "x"}};
        QTest::newRow("quote in it") << QJsonObject{{"a", "x\"y"}, {"z", true}};
    }

    // As the client does it: a member goes behind the last double quote.
    void theLastMemberIsAString()
    {
        QFETCH(QJsonObject, object);
        QString text = JsonText::endingInString(object);
        QCOMPARE(QJsonDocument::fromJson(text.toUtf8()).object(), object);
        text.insert(text.lastIndexOf(QLatin1Char('"')) + 1, QStringLiteral(",\"new\":\"member\""));
        object.insert("new", "member");
        QCOMPARE(QJsonDocument::fromJson(text.toUtf8()).object(), object);
    }

    void withoutAStringThereIsNoText() { QCOMPARE(JsonText::endingInString({{"a", 1}}), QString()); }
};

QTEST_APPLESS_MAIN(tst_JsonText)
#include "tst_JsonText.moc"
