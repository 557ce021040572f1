#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/JsonSerializer>
#include <CalyxClient/QuestionFeedback>

#include <QObject>
#include <QTest>

using namespace Calyx;

class tst_QuestionFeedback : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyResubmittingIsAllowedAtFirst()
    {
        const QuestionFeedback feedback;
        QVERIFY(feedback.allowResubmit());
        QVERIFY(!feedback.showFeedback());
        QVERIFY(!feedback.showCorrectAnswer());
    }

    void gettersAreNamedAsTheProperties()
    {
        QuestionFeedback feedback;
        feedback.setshowFeedback(true);
        feedback.setshowCorrectAnswer(true);
        feedback.setcorrectAnswer(1);
        feedback.setactivityScoreStatus(2);
        feedback.setactivityResponseStatus(3);
        feedback.setcorrectOptions({4});
        feedback.setallowResubmit(false);
        feedback.setcorrectFeedback(5);
        feedback.setinCorrectFeedback(6);
        feedback.setanswer(7);
        feedback.setjsonAnswer(8);
        feedback.setoptionAnswers({9});
        feedback.setoptionFeedbacks({10});
        feedback.setnumberOfRetries(11);
        feedback.setnumberOfRetriesRemaining(12);
        feedback.setremainingTime(13);
        QVERIFY(feedback.showFeedback() && feedback.showCorrectAnswer() && !feedback.allowResubmit());
        const QVariantList values{feedback.correctAnswer(),
                                  feedback.activityScoreStatus(),
                                  feedback.activityResponseStatus(),
                                  feedback.correctOptions().value(0),
                                  feedback.correctFeedback(),
                                  feedback.inCorrectFeedback(),
                                  feedback.answer(),
                                  feedback.jsonAnswer(),
                                  feedback.optionAnswers().value(0),
                                  feedback.optionFeedbacks().value(0),
                                  feedback.numberOfRetries(),
                                  feedback.numberOfRetriesRemaining(),
                                  feedback.remainingTime()};
        QCOMPARE(values, QVariantList({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
    }

    void anyKindOfAnswerIsKept_data()
    {
        rows<QVariant>({
            {"text", QVariant(QStringLiteral("text"))},
            {"number", QVariant(2.5)},
            {"list", QVariant(QVariantList{1, QStringLiteral("two")})},
            {"map", QVariant(QVariantMap{{QStringLiteral("key"), true}})},
            {"nothing", QVariant()},
        });
    }

    void anyKindOfAnswerIsKept()
    {
        const auto [answer] = row<QVariant>();
        QuestionFeedback feedback;
        feedback.setanswer(QStringLiteral("before"));
        feedback.setanswer(answer);
        QCOMPARE(feedback.answer(), answer);
        QCOMPARE(feedback.answer().isValid(), answer.isValid());
    }

    void json()
    {
        QuestionFeedback feedback;
        feedback.setanswer(QStringLiteral("yes"));
        feedback.setoptionAnswers({QVariantMap{{QStringLiteral("activityOptionId"), QStringLiteral("B")}}});
        const LogRecorder log;
        QCOMPARE(JsonSerializer::serializeToJson(&feedback), QStringLiteral(R"({
    "activityResponseStatus": null,
    "activityScoreStatus": null,
    "allowResubmit": true,
    "answer": "yes",
    "correctAnswer": null,
    "correctFeedback": null,
    "correctOptions": [
    ],
    "inCorrectFeedback": null,
    "jsonAnswer": null,
    "numberOfRetries": 0,
    "numberOfRetriesRemaining": 0,
    "optionAnswers": [
        {
            "activityOptionId": "B"
        }
    ],
    "optionFeedbacks": [
    ],
    "remainingTime": null,
    "showCorrectAnswer": false,
    "showFeedback": false
}
)"));
        QCOMPARE(log.debug(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_QuestionFeedback)
#include "tst_QuestionFeedback.moc"
