#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/Card>
#include <CalyxClient/JsonSerializer>

#include <QObject>
#include <QTest>

using namespace Calyx;

class tst_Card : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void json()
    {
        const Card card;
        const LogRecorder log;
        QCOMPARE(JsonSerializer::serializeToJson(&card), QStringLiteral(R"({
    "active": true,
    "autoSend": true,
    "components": [
    ],
    "hasRendered": true,
    "id": "",
    "isTeacherCard": true,
    "notes": "",
    "ordinal": 1,
    "primary": true,
    "pristine": true,
    "remoteId": "",
    "segment": {
    },
    "styles": {
        "backgroundColor": "",
        "backgroundImage": "",
        "backgroundSize": "100%"
    },
    "tracks": [
    ],
    "type": "TEACHER",
    "visible": true
}
)"));
        QCOMPARE(log.debug(), QStringList());
    }

    void gettersAreNamedAsTheProperties()
    {
        Card card;
        QVERIFY(card.active() && card.autoSend() && card.hasRendered() && card.isTeacherCard());
        QVERIFY(card.primary() && card.pristine() && card.visible());
        card.setactive(false);
        card.setautoSend(false);
        card.sethasRendered(false);
        card.setisTeacherCard(false);
        card.setprimary(false);
        card.setpristine(false);
        card.setvisible(false);
        QVERIFY(!card.active() && !card.autoSend() && !card.hasRendered() && !card.isTeacherCard());
        QVERIFY(!card.primary() && !card.pristine() && !card.visible());
        card.setcomponents({1});
        card.setid(QStringLiteral("id"));
        card.setnotes(QStringLiteral("notes"));
        card.setordinal(2);
        card.setremoteId(QStringLiteral("remote"));
        card.setsegment({{QStringLiteral("id"), 3}});
        card.settracks({4});
        card.settype(QStringLiteral("OTHER"));
        QCOMPARE(card.components(), QVariantList({1}));
        QCOMPARE(card.id(), QStringLiteral("id"));
        QCOMPARE(card.notes(), QStringLiteral("notes"));
        QCOMPARE(card.ordinal(), 2);
        QCOMPARE(card.remoteId(), QStringLiteral("remote"));
        QCOMPARE(card.segment(), QVariantMap({{QStringLiteral("id"), 3}}));
        QCOMPARE(card.tracks(), QVariantList({4}));
        QCOMPARE(card.type(), QStringLiteral("OTHER"));
    }

    void backgroundImageIsSetUnchanged_data()
    {
        rows<QString>({
            {"CSS", "url('http://127.0.0.1/a b?c=%20')"},
            {"bare", "http://127.0.0.1/image"},
            {"data URI", "data:image/png;base64,iVBORw0KGgo="},
        });
    }

    void backgroundImageIsSetUnchanged()
    {
        const auto [url] = row<QString>();
        Card card;
        card.setBackgroundImage(QStringLiteral("before"));
        card.setBackgroundImage(url);
        QCOMPARE(card.styles().value(QStringLiteral("backgroundImage")), QVariant(url));
        QCOMPARE(card.styles().size(), 3);
    }

    void backgroundImageLeavesTheOtherStyles()
    {
        Card card;
        card.setstyles(
            {{QStringLiteral("backgroundColor"), QStringLiteral("red")}, {QStringLiteral("own"), 1}});
        card.setBackgroundImage(QStringLiteral("x"));
        QCOMPARE(card.styles(), QVariantMap({{QStringLiteral("backgroundColor"), QStringLiteral("red")},
                                             {QStringLiteral("backgroundImage"), QStringLiteral("x")},
                                             {QStringLiteral("own"), 1}}));
    }

    void emptyBackgroundImageKeepsItsKey()
    {
        Card card;
        card.setBackgroundImage(QStringLiteral("x"));
        card.setBackgroundImage(QStringLiteral(""));
        QVERIFY(card.styles().contains(QStringLiteral("backgroundImage")));
        const LogRecorder log;
        QVERIFY(JsonSerializer::serializeToJson(&card).contains(
            QLatin1String("        \"backgroundImage\": \"\",\n")));
        card.setBackgroundImage(QString());
        QVERIFY(JsonSerializer::serializeToJson(&card).contains(
            QLatin1String("        \"backgroundImage\": \"\",\n")));
    }
};

QTEST_GUILESS_MAIN(tst_Card)
#include "tst_Card.moc"
