#include "support/LogRecorder.h"

#include <CalyxClient/ActivityOption>
#include <CalyxClient/JsonSerializer>

#include <QObject>
#include <QTest>

using namespace Calyx;

class tst_ActivityOption : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gettersAreNamedAsTheProperties()
    {
        ActivityOption option;
        QCOMPARE(option.id(), QString());
        QCOMPARE(option.optionText(), QString());
        QCOMPARE(option.displaySeqNumber(), 0);
        QVERIFY(!option.math());
        option.setoptionText(QStringLiteral("text"));
        option.setdisplaySeqNumber(5);
        option.setmath(true);
        QCOMPARE(option.optionText(), QStringLiteral("text"));
        QCOMPARE(option.displaySeqNumber(), 5);
        QVERIFY(option.math());
    }

    void idIsSetBySetID()
    {
        ActivityOption option;
        QVERIFY(QMetaObject::invokeMethod(&option, "setID", Q_ARG(QString, QStringLiteral("A"))));
        QCOMPARE(option.id(), QStringLiteral("A"));
        QCOMPARE(option.metaObject()->indexOfMethod("setid(QString)"), -1);
    }

    void json()
    {
        ActivityOption option;
        option.setID(QStringLiteral("A"));
        option.setoptionText(QStringLiteral("\\frac{1}{2}"));
        option.setdisplaySeqNumber(1);
        option.setmath(true);
        const LogRecorder log;
        QCOMPARE(JsonSerializer::serializeToJson(&option), QStringLiteral(R"({
    "displaySeqNumber": 1,
    "id": "A",
    "math": true,
    "optionText": "\\frac{1}{2}"
}
)"));
        QCOMPARE(log.debug(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_ActivityOption)
#include "tst_ActivityOption.moc"
