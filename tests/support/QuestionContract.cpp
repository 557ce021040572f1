#include "support/QuestionContract.h"

#include "support/LogRecorder.h"

#include <CalyxClient/JsonSerializer>
#include <CalyxClient/PollType>
#include <CalyxClient/QuestionBaseWithOptions>
#include <CalyxClient/QuestionFeedback>

#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

using namespace Calyx;

QuestionContract::QuestionContract(const QVector<Kind>& kinds) : m_kinds(kinds) {}

QVariantMap QuestionContract::jsonOf(const QObject& object)
{
    const LogRecorder quiet;
    return QJsonDocument::fromJson(JsonSerializer::serializeToJson(&object).toUtf8()).toVariant().toMap();
}

QVariantList QuestionContract::chosen(const QStringList& ids)
{
    QVariantList list;
    for (const QString& id : ids)
        list.append(QVariantMap{{QStringLiteral("activityOptionId"), id}});
    return list;
}

void QuestionContract::kinds()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("hasOptions");
    QTest::addColumn<Prior>("prior");

    for (const Kind& kind : m_kinds)
        QTest::newRow(qPrintable(kind.type))
            << kind.make << kind.type << (kind.options == WithOptions) << kind.prior;
}

void QuestionContract::newQuestionIsReadyForAPoll()
{
    QFETCH(Make, make);
    const auto question = make();
    const QRegularExpression id(QStringLiteral("^[A-Za-z0-9]{8}$"));
    QVERIFY2(id.match(question->id()).hasMatch(), qPrintable(question->id()));
    const QVariantMap json = jsonOf(*question);
    QCOMPARE(json.value(QStringLiteral("id")).toString(), question->id());
    QCOMPARE(json.value(QStringLiteral("questionSetMode")).toString(), QStringLiteral("Poll"));
    QCOMPARE(json.value(QStringLiteral("card")), QVariant(QVariantMap()));
    QCOMPARE(json.value(QStringLiteral("feedBack")).toMap().value(QStringLiteral("allowResubmit")),
             QVariant(true));
}

void QuestionContract::typeIsTheNameOfThePollType()
{
    QFETCH(Make, make);
    QFETCH(QString, type);
    const auto question = make();
    QCOMPARE(question->getType(), type);
    QCOMPARE(question->property("type").toString(), type);
    QCOMPARE(jsonOf(*question).value(QStringLiteral("type")).toString(), type);
    QVERIFY(PollType::POLL_TYPE_STR().values().contains(type));
    QVERIFY(PollType::POLL_TYPE_ID().contains(type));
}

void QuestionContract::typeCannotBeChanged()
{
    QFETCH(Make, make);
    QFETCH(QString, type);
    const auto question = make();
    question->setType(QStringLiteral("other"));
    QCOMPARE(question->getType(), type);
    QCOMPARE(question->property("type").toString(), type);
}

void QuestionContract::hasOptionsWhereTheKindHasThem()
{
    QFETCH(Make, make);
    QFETCH(bool, hasOptions);
    const auto question = make();
    auto* withOptions = qobject_cast<QuestionBaseWithOptions*>(question.get());
    QCOMPARE(withOptions != nullptr, hasOptions);
    QCOMPARE(jsonOf(*question).contains(QStringLiteral("activityOptions")), hasOptions);
    QCOMPARE(jsonOf(*question).contains(QStringLiteral("metadata")), hasOptions);

    // The operation of the base finds the scheme of those that have one, and does no harm to the others.
    if (withOptions)
        withOptions->addActivityOption(QStringLiteral("a"), QString(), 1);
    question->inferOrdinalType();
    QCOMPARE(jsonOf(*question)
                 .value(QStringLiteral("metadata"))
                 .toMap()
                 .value(QStringLiteral("ordinalType"))
                 .toString(),
             hasOptions ? QStringLiteral("alpha-lower") : QString());
}

void QuestionContract::priorAnswer()
{
    QFETCH(Make, make);
    QFETCH(Prior, prior);
    const auto question = make();
    question->setPriorAnswer(QStringLiteral("CAB"));
    const auto* feedback = qobject_cast<QuestionFeedback*>(question->feedBack());
    QVERIFY(feedback);
    QCOMPARE(feedback->numberOfRetriesRemaining(), 99);
    switch (prior) {
    case Prior::Text:
        QCOMPARE(feedback->answer(), QVariant(QStringLiteral("CAB")));
        QCOMPARE(feedback->optionAnswers(), QVariantList());
        break;
    case Prior::OneOption:
        QVERIFY(!feedback->answer().isValid());
        QCOMPARE(feedback->optionAnswers(), chosen({QStringLiteral("CAB")}));
        break;
    case Prior::OptionForEachCharacter:
        QVERIFY(!feedback->answer().isValid());
        QCOMPARE(feedback->optionAnswers(),
                 chosen({QStringLiteral("C"), QStringLiteral("A"), QStringLiteral("B")}));
        break;
    }
}

void QuestionContract::emptyPriorAnswer()
{
    QFETCH(Make, make);
    QFETCH(Prior, prior);
    const auto question = make();
    auto* feedback = qobject_cast<QuestionFeedback*>(question->feedBack());
    QVERIFY(feedback);
    feedback->setoptionAnswers({1});
    question->setPriorAnswer(QStringLiteral(""));
    QCOMPARE(feedback->numberOfRetriesRemaining(), 99);
    switch (prior) {
    case Prior::Text:
        QCOMPARE(feedback->answer(), QVariant(QStringLiteral("")));
        QCOMPARE(feedback->optionAnswers(), QVariantList({1}));
        break;
    case Prior::OneOption:
        QCOMPARE(feedback->optionAnswers(), chosen({QStringLiteral("")}));
        break;
    case Prior::OptionForEachCharacter:
        QCOMPARE(feedback->optionAnswers(), QVariantList());
        break;
    }
}
