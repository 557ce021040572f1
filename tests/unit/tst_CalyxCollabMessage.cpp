#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/CalyxCollabMessage>
#include <CalyxClient/JsonSerializer>
#include <CalyxClient/Lzma>
#include <CalyxClient/MessageTemplates>
#include <CalyxClient/QuestionText>

#include <QObject>
#include <QTest>

#include <memory>

using namespace Calyx;

namespace {

const QString INVALID = "[CalyxCollabMessage] data object in message is invalid!";

// The text inside of the one element of the data.
QString decoded(const CalyxCollabMessage& message)
{
    const QVariantList list = message.data().toList();
    QString text;
    if (list.size() != 1 || list.first().userType() != QMetaType::QString)
        return QStringLiteral("not a list of one text");
    return Lzma::decompress64(list.first().toString(), &text) ? text : QStringLiteral("not compressed");
}

} // namespace

class tst_CalyxCollabMessage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }

    void cleanup() { m_log.reset(); }

    void dataobjectIsASlotAndNoProperty()
    {
        CalyxCollabMessage message;
        QObject object;
        QVERIFY(QMetaObject::invokeMethod(&message, "setdataobject", Q_ARG(QObject*, &object)));
        QCOMPARE(message.dataobject(), &object);
        QVERIFY(!object.parent());
        QCOMPARE(message.metaObject()->indexOfProperty("dataobject"), -1);
        message.setdataobject(nullptr);
        QVERIFY(!message.dataobject());
    }

    void objectIsSerialisedAndCompressed()
    {
        QuestionText question;
        question.sethint(QString::fromUtf8(u8"Größe 😀"));
        CalyxCollabMessage message;
        message.setdataobject(&question);
        message.compileData();
        QCOMPARE(decoded(message), JsonSerializer::serializeToJson(&question));
        QCOMPARE(m_log->debug(INVALID), QStringList());
        // The rest stays as it was.
        QCOMPARE(message.from() + message.type() + message.version() + message.sourceSystem(),
                 QStringLiteral("3.0.0Lumora"));
    }

    void mapIsSerialisedAndCompressed_data()
    {
        rows<QVariant, QString>({
            {"map", QVariant(QVariantMap{{"text", "Hi"}, {"isDismissible", true}}),
             "{\n    \"isDismissible\": true,\n    \"text\": \"Hi\"\n}\n"},
            {"empty map", QVariant(QVariantMap()), "{\n}\n"},
            {"hash, which converts to a map", QVariant(QVariantHash{{"a", 1}}), "{\n    \"a\": 1\n}\n"},
            {"map of another type, which converts to a map",
             QVariant::fromValue(QMap<QString, int>{{"a", 1}}), "{\n    \"a\": 1\n}\n"},
        });
    }

    void mapIsSerialisedAndCompressed()
    {
        const auto [data, json] = row<QVariant, QString>();
        CalyxCollabMessage message;
        message.setdata(data);
        message.compileData();
        QCOMPARE(decoded(message), json);
        QCOMPARE(m_log->debug(), QStringList());
    }

    void objectGoesBeforeTheMap()
    {
        QObject plain;
        CalyxCollabMessage message;
        message.setdata(QVariantMap{{"text", "Hi"}});
        message.setdataobject(&plain);
        message.compileData();
        QCOMPARE(decoded(message), QStringLiteral("{\n}\n"));
    }

    void dataThatIsNoMapStaysAndIsReported()
    {
        CalyxCollabMessage message;
        int reports = 0;
        for (const QVariant& data : {QVariant(), QVariant("{\"a\":1}"), QVariant(5),
                                     QVariant(QVariantList{QVariantMap()}), QVariant(QByteArray("{}"))}) {
            message.setdata(data);
            message.compileData();
            QCOMPARE(message.data(), data);
            QCOMPARE(message.data().isValid(), data.isValid());
            QCOMPARE(m_log->debug().size(), ++reports);
            QCOMPARE(m_log->debug(INVALID).size(), reports);
        }
    }

    void deletedObjectIsNoObject()
    {
        auto object = std::make_unique<QObject>();
        CalyxCollabMessage message;
        message.setdataobject(object.get());
        object.reset();
        QVERIFY(!message.dataobject());
        message.compileData();
        QVERIFY(!message.data().isValid());
        QCOMPARE(m_log->debug(INVALID).size(), 1);
        message.setdata(QVariantMap());
        message.compileData();
        QCOMPARE(decoded(message), QStringLiteral("{\n}\n"));
    }

    void compilingTwice()
    {
        QuestionText question;
        CalyxCollabMessage message;
        message.setdata(QVariantMap{{"a", 1}});
        message.compileData();
        const QVariant first = message.data();
        message.compileData(); // a list is no map
        QCOMPARE(message.data(), first);
        QCOMPARE(m_log->debug(INVALID).size(), 1);

        message.setdataobject(&question);
        message.compileData();
        question.sethint("changed");
        message.compileData();
        QCOMPARE(decoded(message), JsonSerializer::serializeToJson(&question));
    }

    void textsOfFormulas()
    {
        QCOMPARE(QString(CALYX_LATEX_START), QStringLiteral("<span class=\"mathquill-embedded-latex\">"));
        QCOMPARE(QString(CALYX_LATEX_END), QStringLiteral("</span>"));
    }

private:
    std::unique_ptr<LogRecorder> m_log;
};

QTEST_GUILESS_MAIN(tst_CalyxCollabMessage)
#include "tst_CalyxCollabMessage.moc"
