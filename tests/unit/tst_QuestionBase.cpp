#include "support/LogRecorder.h"
#include "support/Rows.h"

#include <CalyxClient/Card>
#include <CalyxClient/JsonSerializer>
#include <CalyxClient/QuestionBase>
#include <CalyxClient/QuestionFeedback>
#include <CalyxClient/QuestionText>

#include <QJsonDocument>
#include <QMetaType>
#include <QObject>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Calyx;

namespace {

QVariantMap jsonOf(const QObject& object)
{
    return QJsonDocument::fromJson(JsonSerializer::serializeToJson(&object).toUtf8()).toVariant().toMap();
}

QVariant feedBackOf(const QuestionBase& question, const char* name)
{
    return question.feedBack()->property(name);
}

} // namespace

/// Tells which of the operations that a question class may override were called.
class Overriding : public QuestionBase
{
    Q_OBJECT

public:
    QString getType() const override { return QStringLiteral("own"); }
    void inferOrdinalType() override { calls.append(QStringLiteral("infer")); }
    void setPriorAnswer(QString answer) override { calls.append(answer); }

    QStringList calls;
};

class tst_QuestionBase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void idIsEightLettersAndDigits()
    {
        const QuestionBase question;
        const QRegularExpression id(QStringLiteral("^[A-Za-z0-9]{8}$"));
        QVERIFY2(id.match(question.id()).hasMatch(), qPrintable(question.id()));
        // Fresh: no longer the same once the second that seeds it is over.
        QTRY_VERIFY(QuestionBase().id() != question.id());
    }

    void typeIsWhatWasSet()
    {
        QuestionBase question;
        QCOMPARE(question.getType(), QString());
        question.setType(QStringLiteral("any text"));
        QCOMPARE(question.getType(), QStringLiteral("any text"));
        QCOMPARE(question.property("type").toString(), QStringLiteral("any text"));
    }

    void overridesAreReachedThroughTheBase()
    {
        Overriding overriding;
        QuestionBase& question = overriding;
        QCOMPARE(question.getType(), QStringLiteral("own"));
        question.inferOrdinalType();
        question.setPriorAnswer(QStringLiteral("A"));
        QCOMPARE(overriding.calls, QStringList({QStringLiteral("infer"), QStringLiteral("A")}));
    }

    void typePropertyReadsTheOverride()
    {
        Overriding question;
        question.setType(QStringLiteral("set"));
        QCOMPARE(question.property("type").toString(), QStringLiteral("own"));
        QCOMPARE(question.type(), QStringLiteral("own"));
        QCOMPARE(jsonOf(question).value(QStringLiteral("type")).toString(), QStringLiteral("own"));
    }

    void inferOrdinalTypeDoesNothing()
    {
        QuestionBase question;
        const QString before = JsonSerializer::serializeToJson(&question);
        question.inferOrdinalType();
        QCOMPARE(JsonSerializer::serializeToJson(&question), before);
    }

    void jsonOfANewQuestion()
    {
        QuestionText question;
        question.setID(QStringLiteral("abcd1234"));
        const LogRecorder log;
        QCOMPARE(JsonSerializer::serializeToJson(&question),
                 QStringLiteral("{\n"
                                "    \"activityType\": {\n"
                                "    },\n"
                                "    \"card\": {\n"
                                "    },\n"
                                "    \"feedBack\": {\n"
                                "        \"activityResponseStatus\": null,\n"
                                "        \"activityScoreStatus\": null,\n"
                                "        \"allowResubmit\": true,\n"
                                "        \"answer\": null,\n"
                                "        \"correctAnswer\": null,\n"
                                "        \"correctFeedback\": null,\n"
                                "        \"correctOptions\": [\n"
                                "        ],\n"
                                "        \"inCorrectFeedback\": null,\n"
                                "        \"jsonAnswer\": null,\n"
                                "        \"numberOfRetries\": 0,\n"
                                "        \"numberOfRetriesRemaining\": 0,\n"
                                "        \"optionAnswers\": [\n"
                                "        ],\n"
                                "        \"optionFeedbacks\": [\n"
                                "        ],\n"
                                "        \"remainingTime\": null,\n"
                                "        \"showCorrectAnswer\": false,\n"
                                "        \"showFeedback\": false\n"
                                "    },\n"
                                "    \"hasNext\": false,\n"
                                "    \"hint\": \"\",\n"
                                "    \"id\": \"abcd1234\",\n"
                                "    \"instructions\": \"\",\n"
                                "    \"math\": false,\n"
                                "    \"maxChars\": 0,\n"
                                "    \"navigable\": false,\n"
                                "    \"passage\": \"\",\n"
                                "    \"questionNumber\": 0,\n"
                                "    \"questionSetMode\": \"Poll\",\n"
                                "    \"type\": \"text\"\n"
                                "}\n"));
        QCOMPARE(log.debug(QStringLiteral("[JsonSerializer] ERROR")), QStringList());
    }

    void cardIsWrittenWithItsStyles()
    {
        QuestionBase question;
        Card card(&question);
        card.setid(question.id());
        card.setBackgroundImage(QStringLiteral("url('http://127.0.0.1/image')"));
        question.setcard(&card);
        const QVariantMap json = jsonOf(question).value(QStringLiteral("card")).toMap();
        QCOMPARE(json.value(QStringLiteral("id")).toString(), question.id());
        QCOMPARE(json.value(QStringLiteral("type")).toString(), QStringLiteral("TEACHER"));
        QCOMPARE(
            json.value(QStringLiteral("styles")).toMap().value(QStringLiteral("backgroundImage")).toString(),
            QStringLiteral("url('http://127.0.0.1/image')"));
    }

    void setactivityTypeReplacesTheWholeMap()
    {
        QuestionBase question;
        question.setactivityType({{QStringLiteral("id"), 1}, {QStringLiteral("name"), QStringLiteral("x")}});
        question.setactivityType({{QStringLiteral("other"), true}});
        QCOMPARE(question.activityType(), QVariantMap({{QStringLiteral("other"), true}}));
    }

    void feedBackSetterTakesBothPointerTypes()
    {
        QuestionBase question;
        QuestionFeedback feedback;
        question.setfeedBack(&feedback);
        QCOMPARE(question.feedBack(), &feedback);
        QObject plain;
        question.setfeedBack(&plain);
        QCOMPARE(question.feedBack(), &plain);

        QVERIFY(
            QMetaObject::invokeMethod(&question, "setfeedBack", Q_ARG(Calyx::QuestionFeedback*, &feedback)));
        QCOMPARE(question.feedBack(), &feedback);
        QVERIFY(QMetaObject::invokeMethod(&question, "setfeedBack", Q_ARG(QObject*, &plain)));
        QCOMPARE(question.feedBack(), &plain);
        question.setfeedBack(nullptr);
        QVERIFY(!question.feedBack());
    }

    void replacedObjectsStayUntilTheQuestionGoes()
    {
        auto question = std::make_unique<QuestionBase>();
        const QPointer<QObject> feedback = question->feedBack();
        const QPointer<QObject> card = question->card();
        QObject other;
        question->setfeedBack(&other);
        question->setcard(&other);
        QVERIFY(feedback && card);
        QCOMPARE(feedback->parent(), question.get());
        QCOMPARE(card->parent(), question.get());
        question.reset();
        QVERIFY(!feedback && !card);
    }

    void objectsThatAreSetAreNotTakenOver()
    {
        const QPointer<QObject> other = new QObject(this);
        {
            QuestionBase question;
            question.setfeedBack(other.data());
            question.setcard(other.data());
            QCOMPARE(other->parent(), this);
        }
        QVERIFY(other);
        delete other.data();
    }

    void deletedObjectsReadAsNull()
    {
        QuestionBase question;
        delete question.feedBack();
        delete question.card();
        QVERIFY(!question.feedBack());
        QVERIFY(!question.card());
        const LogRecorder log;
        const QVariantMap json = jsonOf(question);
        QVERIFY(json.contains(QStringLiteral("card")) && json.value(QStringLiteral("card")).isNull());
        QVERIFY(json.contains(QStringLiteral("feedBack")) && json.value(QStringLiteral("feedBack")).isNull());
        QCOMPARE(log.debug(QStringLiteral("[JsonSerializer] ERROR: Failed to map property: ")).size(), 2);
    }

    void nullObjectsAreWrittenAsNull()
    {
        QuestionBase question;
        question.setcard(nullptr);
        question.setfeedBack(static_cast<QObject*>(nullptr));
        QVERIFY(!question.card() && !question.feedBack());
        QVERIFY(JsonSerializer::serializeToJson(&question).contains(
            QLatin1String("    \"card\": null,\n    \"feedBack\": null,\n")));
    }

    void pointerTypesAreRegistered()
    {
        const QuestionBase question;
        const int type = QMetaType::type("Calyx::QuestionFeedback*");
        QVERIFY(type != QMetaType::UnknownType);
        QVERIFY(QMetaType(type).flags() & QMetaType::PointerToQObject);
    }

    void configurePriorAnswerLeavesTheAnswer()
    {
        QuestionBase question;
        question.configurePriorAnswer();
        QCOMPARE(feedBackOf(question, "numberOfRetriesRemaining"), QVariant(99));
        QVERIFY(!feedBackOf(question, "answer").isValid());
        QCOMPARE(feedBackOf(question, "optionAnswers").toList(), QVariantList());
    }

    void priorAnswerGoesToTheFeedbackThatWasSet()
    {
        QuestionBase question;
        const QPointer<QObject> first = question.feedBack();
        QuestionFeedback feedback;
        question.setfeedBack(&feedback);
        question.setPriorAnswer(QStringLiteral("new"));
        QCOMPARE(feedback.answer(), QVariant(QStringLiteral("new")));
        QCOMPARE(feedback.numberOfRetriesRemaining(), 99);
        QCOMPARE(first->property("numberOfRetriesRemaining"), QVariant(0));
    }

    void priorAnswerWithoutFeedbackIsDropped()
    {
        QuestionBase question;
        delete question.feedBack();
        question.setPriorAnswer(QStringLiteral("lost"));
        question.configurePriorAnswer();
        QVERIFY(!question.feedBack());
    }
};

QTEST_GUILESS_MAIN(tst_QuestionBase)
#include "tst_QuestionBase.moc"
