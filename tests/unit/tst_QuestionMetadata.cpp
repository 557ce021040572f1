#include "support/LogRecorder.h"

#include <CalyxClient/JsonSerializer>
#include <CalyxClient/QuestionMetadata>

#include <QObject>
#include <QTest>

using namespace Calyx;

class tst_QuestionMetadata : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gettersAreNamedAsTheProperties()
    {
        QuestionMetadata metadata;
        QCOMPARE(metadata.ordinalType(), QString());
        QCOMPARE(metadata.options(), QVariantList());
        metadata.setordinalType(QStringLiteral("number"));
        metadata.setoptions({0, 1});
        QCOMPARE(metadata.ordinalType(), QStringLiteral("number"));
        QCOMPARE(metadata.options(), QVariantList({0, 1}));
    }

    void json()
    {
        QuestionMetadata metadata;
        metadata.setordinalType(QStringLiteral("alpha-upper"));
        metadata.setoptions({0, 1, 2});
        const LogRecorder log;
        QCOMPARE(JsonSerializer::serializeToJson(&metadata), QStringLiteral(R"({
    "options": [
        0,
        1,
        2
    ],
    "ordinalType": "alpha-upper"
}
)"));
        QCOMPARE(log.debug(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_QuestionMetadata)
#include "tst_QuestionMetadata.moc"
