#include "support/LogRecorder.h"

#include <CalyxClient/AssessmentOptions>
#include <CalyxClient/JsonSerializer>

#include <QObject>
#include <QTest>

using namespace Calyx;

class tst_AssessmentOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void json()
    {
        const AssessmentOptions options;
        const LogRecorder log;
        QCOMPARE(JsonSerializer::serializeToJson(&options), QStringLiteral(R"({
    "allowNavigateQuestionSet": false,
    "allowResubmitResponse": true,
    "allowSkipQuestion": false,
    "allowedTime": 0,
    "assessmentSectionConfigurations": {
        "leveled": false
    },
    "assessmentToken": "",
    "currentAssessmentSectionId": "",
    "description": "",
    "questionCount": 1,
    "scored": false,
    "showAnswerOnIncorrectResponse": false,
    "showFeedback": false,
    "showSummaryOnAssessmentCompletion": false,
    "startingQuestionNumber": 0,
    "title": ""
}
)"));
        QCOMPARE(log.debug(), QStringList());
    }

    void gettersAreNamedAsTheProperties()
    {
        AssessmentOptions options;
        options.setassessmentToken(QStringLiteral("token"));
        options.setallowSkipQuestion(true);
        options.setallowNavigateQuestionSet(true);
        options.setallowResubmitResponse(false);
        options.setshowSummaryOnAssessmentCompletion(true);
        options.setshowAnswerOnIncorrectResponse(true);
        options.setshowFeedback(true);
        options.setquestionCount(12);
        options.setstartingQuestionNumber(3);
        options.setallowedTime(600);
        options.setcurrentAssessmentSectionId(QStringLiteral("section"));
        options.settitle(QStringLiteral("title"));
        options.setdescription(QStringLiteral("description"));
        options.setscored(true);
        options.setassessmentSectionConfigurations({{QStringLiteral("leveled"), true}});

        QVERIFY(options.allowSkipQuestion() && options.allowNavigateQuestionSet() &&
                !options.allowResubmitResponse());
        QVERIFY(options.showSummaryOnAssessmentCompletion() && options.showAnswerOnIncorrectResponse());
        QVERIFY(options.showFeedback() && options.scored());
        QCOMPARE(options.assessmentToken(), QStringLiteral("token"));
        QCOMPARE(options.questionCount(), 12);
        QCOMPARE(options.startingQuestionNumber(), 3);
        QCOMPARE(options.allowedTime(), 600);
        QCOMPARE(options.currentAssessmentSectionId(), QStringLiteral("section"));
        QCOMPARE(options.title(), QStringLiteral("title"));
        QCOMPARE(options.description(), QStringLiteral("description"));
        QCOMPARE(options.assessmentSectionConfigurations(), QVariantMap({{QStringLiteral("leveled"), true}}));
    }
};

QTEST_GUILESS_MAIN(tst_AssessmentOptions)
#include "tst_AssessmentOptions.moc"
