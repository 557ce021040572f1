#include "support/Rows.h"

#include <CalyxClient/MessageTemplates>

#include <QJsonDocument>
#include <QObject>
#include <QTest>

using namespace Calyx;

class tst_MessageTemplates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts_data()
    {
        rows<QString, QString>({
            {"CALYX_LATEX_START", CALYX_LATEX_START, R"(<span class="mathquill-embedded-latex">)"},
            {"CALYX_LATEX_END", CALYX_LATEX_END, "</span>"},
            {"PING_MESSAGE", PING_MESSAGE, R"({"type":"ping"})"},
            {"PLAIN_DATA", PLAIN_DATA, "\"%0\""},
        });
    }

    void texts()
    {
        const auto [text, expected] = row<QString, QString>();
        QCOMPARE(text, expected);
    }

    void filledTexts_data()
    {
        columns<QString, QString>();

        const QString a = QStringLiteral("AA");
        const QString b = QStringLiteral("BB");
        const QString c = QStringLiteral("CC");
        const QString d = QStringLiteral("DD");
        QTest::newRow("PUBLISH_MESSAGE_3") << PUBLISH_MESSAGE_3.arg(a, QStringLiteral("{\n}\n"))
                                           << "{\"type\":\"publish\",\"address\":\"AA\",\"body\":{\n}\n}";
        QTest::newRow("REGISTER_MESSAGE")
            << REGISTER_MESSAGE.arg(a) << R"({"type":"register","address":"AA"})";
        QTest::newRow("PUBLISH_MESSAGE64")
            << PUBLISH_MESSAGE64.arg(a, b, c, d)
            << R"({"type":"publish","address":"AA","body":{"from":"BB","type":"CC","data":["DD"]}})";
        QTest::newRow("START_POLL_DATA64")
            << START_POLL_DATA64.arg(a, b, c, d, QStringLiteral("1395358151638"), QStringLiteral("EE"),
                                     QStringLiteral("0,1,2"), QStringLiteral("FF"))
            << R"({"type":"AA","expressionQuestionId":1,"metadata":{"ordinalType":"BB","options":[0,1,2]},"id":"EE","sessionToken":"CC","sessionCode":"DD","lessonId":null,"startTime":1395358151638,"lastUpdatedOn":1395358151638,"card":{"segment":"fake-id","tracks":[{"placeholder":true}],"visible":true,"ordinal":1395358139515,"styles":{"backgroundColor":"","backgroundImage":"FF","backgroundSize":"100%"},"components":[]},"unrespondedUsers":[]})";
        QTest::newRow("SHOW_CARD_DATA")
            << SHOW_CARD_DATA.arg(a, b)
            << R"({"segment":{"id":"AA"},"isTeacherCard":true,"autoSend":true,"notes":null,"tracks":[],"visible":true,"ordinal":1,"styles":{"backgroundColor":"","backgroundImage":""},"components":[{"ordinal":1397148149039,"styles":{"anchor":false,"width":770,"left":15,"height":570,"top":15},"blob":{"url":"BB"},"type":"image"}],"trackSortSeq":0,"_tId":"DF8A71DA-3EF2-44E3-9B2F-F651C7A8B0F9","hasStudentCards":false})";
        QTest::newRow("LESSON_DATA") << LESSON_DATA.arg(a, b) << R"({"lessonId":"AA", "name":"BB"})";
        QTest::newRow("CURRENTCARD_DATA")
            << CURRENTCARD_DATA.arg(QStringLiteral("1"),
                                    CURRENTCARD_SUBDATA.arg(1) + QLatin1Char(',') +
                                        CURRENTCARD_SUBDATA.arg(2),
                                    QStringLiteral("2"))
            << R"({"currentCard":"1", "cards": [{"name":"1"},{"name":"2"}], "totalCards":"2"})";
    }

    void filledTexts()
    {
        const auto [filled, expected] = row<QString, QString>();
        QCOMPARE(filled, expected);
    }

    void valuesThatLookLikePlaceholdersStay()
    {
        QCOMPARE(PUBLISH_MESSAGE64.arg(QStringLiteral("%1"), QStringLiteral("%3"), QStringLiteral("%0"),
                                       QStringLiteral("%2")),
                 QStringLiteral(
                     R"({"type":"publish","address":"%1","body":{"from":"%3","type":"%0","data":["%2"]}})"));
    }

    void valuesAreNotEscaped()
    {
        QCOMPARE(LESSON_DATA.arg(QStringLiteral("a\"b"), QStringLiteral("c\\d")),
                 QStringLiteral("{\"lessonId\":\"a\"b\", \"name\":\"c\\d\"}"));
    }

    void filledTextsAreJson_data() { filledTexts_data(); }

    void filledTextsAreJson()
    {
        const auto [filled, expected] = row<QString, QString>();
        QJsonParseError error;
        QJsonDocument::fromJson(filled.toUtf8(), &error);
        QCOMPARE(error.error, QJsonParseError::NoError);
    }
};

QTEST_GUILESS_MAIN(tst_MessageTemplates)
#include "tst_MessageTemplates.moc"
