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
    void texts()
    {
        QCOMPARE(QString(CALYX_LATEX_START), QStringLiteral("<span class=\"mathquill-embedded-latex\">"));
        QCOMPARE(QString(CALYX_LATEX_END), QStringLiteral("</span>"));
        QCOMPARE(QString(PING_MESSAGE), QStringLiteral("{\"type\":\"ping\"}"));
        QCOMPARE(QString(PLAIN_DATA), QStringLiteral("\"%0\""));
    }

    void filledTexts_data()
    {
        const QString a = "AA";
        const QString b = "BB";
        const QString c = "CC";
        const QString d = "DD";
        rows<QString, QString>({
            {"PUBLISH_MESSAGE_3", PUBLISH_MESSAGE_3.arg(a, "{\n}\n"),
             "{\"type\":\"publish\",\"address\":\"AA\",\"body\":{\n}\n}"},
            {"REGISTER_MESSAGE", REGISTER_MESSAGE.arg(a), R"({"type":"register","address":"AA"})"},
            {"PUBLISH_MESSAGE64", PUBLISH_MESSAGE64.arg(a, b, c, d),
             R"({"type":"publish","address":"AA","body":{"from":"BB","type":"CC","data":["DD"]}})"},
            {"START_POLL_DATA64", START_POLL_DATA64.arg(a, b, c, d, "1395358151638", "EE", "0,1,2", "FF"),
             R"({"type":"AA","expressionQuestionId":1,"metadata":{"ordinalType":"BB","options":[0,1,2]},"id":"EE","sessionToken":"CC","sessionCode":"DD","lessonId":null,"startTime":1395358151638,"lastUpdatedOn":1395358151638,"card":{"segment":"fake-id","tracks":[{"placeholder":true}],"visible":true,"ordinal":1395358139515,"styles":{"backgroundColor":"","backgroundImage":"FF","backgroundSize":"100%"},"components":[]},"unrespondedUsers":[]})"},
            {"SHOW_CARD_DATA", SHOW_CARD_DATA.arg(a, b),
             R"({"segment":{"id":"AA"},"isTeacherCard":true,"autoSend":true,"notes":null,"tracks":[],"visible":true,"ordinal":1,"styles":{"backgroundColor":"","backgroundImage":""},"components":[{"ordinal":1397148149039,"styles":{"anchor":false,"width":770,"left":15,"height":570,"top":15},"blob":{"url":"BB"},"type":"image"}],"trackSortSeq":0,"_tId":"DF8A71DA-3EF2-44E3-9B2F-F651C7A8B0F9","hasStudentCards":false})"},
            {"LESSON_DATA", LESSON_DATA.arg(a, b), R"({"lessonId":"AA", "name":"BB"})"},
            {"CURRENTCARD_DATA",
             CURRENTCARD_DATA.arg(
                 "1", CURRENTCARD_SUBDATA.arg(1) + QLatin1Char(',') + CURRENTCARD_SUBDATA.arg(2), "2"),
             R"({"currentCard":"1", "cards": [{"name":"1"},{"name":"2"}], "totalCards":"2"})"},
        });
    }

    void filledTexts()
    {
        const auto [filled, expected] = row<QString, QString>();
        QCOMPARE(filled, expected);
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
