#include "collab/CalyxCollabMessage.h"
#include "model/QuestionBaseWithOptions.h"
#include "model/QuestionMultiChoice.h"
#include "model/QuestionNumeric.h"
#include "support/Rows.h"
#include "support/SessionTest.h"

#include <QJsonDocument>
#include <QTest>

#include <limits>

using Calyx::OrdinalType::ORDINAL_TYPE;
using Calyx::PollType::POLL_TYPE;

namespace {

QStringList properties(const QVariantMap& question, const QString& key)
{
    QStringList values;
    const auto options = question.value(QStringLiteral("activityOptions")).toList();
    for (const auto& option : options)
        values.append(option.toMap().value(key).toString());
    return values;
}

} // namespace

/// Polls that go out as questions: class, options, labels, JSON.
class TestPresenterCollabPollQuestions : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void createsTheClassOfEachType_data()
    {
        rows<int, QString, QString>({
            {"0", 0, "Calyx::QuestionYesNo", "true-false"},
            {"1", 1, "Calyx::QuestionYesNo", "yes-no-other"},
            {"2", 2, "Calyx::QuestionMultiChoice", "multiple"},
            {"3", 3, "Calyx::QuestionScale", "scale"},
            {"4", 4, "Calyx::QuestionSort", "sort"},
            {"5", 5, "Calyx::QuestionText", "text"},
            {"7", 7, "Calyx::QuestionNumeric", "number"},
            {"9", 9, "Calyx::QuestionMathFormula", "math formula"},
        });
    }

    void createsTheClassOfEachType()
    {
        const auto [type, className, name] = row<int, QString, QString>();

        const auto* question =
            collab()->createPollQuestion(POLL_TYPE(type), Calyx::OrdinalType::ALPHA_UPPER, 3, 1);

        QVERIFY(question);
        QCOMPARE(QLatin1String(question->metaObject()->className()), className);
        QCOMPARE(question->getType(), name);
        QCOMPARE(question->parent(), collab());
        QCOMPARE(question->questionSetMode(), QStringLiteral("Poll"));
        const auto* withOptions = qobject_cast<const Calyx::QuestionBaseWithOptions*>(question);
        if (withOptions)
            QCOMPARE(withOptions->getactivityOptions().value<QList<QObject*>>().size(), 3);
        QCOMPARE(withOptions != nullptr, type <= 4);
    }

    void createsNoQuestionForOtherTypes_data()
    {
        columns<int>();
        for (int type : {6, 8, 10, 11, 15})
            QTest::addRow("%d", type) << type;
    }

    void createsNoQuestionForOtherTypes()
    {
        const auto [type] = row<int>();
        QVERIFY(!collab()->createPollQuestion(POLL_TYPE(type), Calyx::OrdinalType::ALPHA_UPPER, 3, 0));
        QVERIFY(collab()->findChildren<Calyx::QuestionBase*>().isEmpty());
    }

    void theExtraNumberCountsForMultipleOnly()
    {
        auto* question =
            collab()->createPollQuestion(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::NUMBER, 4, 3);
        QCOMPARE(qobject_cast<Calyx::QuestionMultiChoice*>(question)->numberOfCorrectOptions(), 3);
        question = collab()->createPollQuestion(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::NUMBER, 0, -1);
        QCOMPARE(qobject_cast<Calyx::QuestionMultiChoice*>(question)->numberOfCorrectOptions(), -1);

        QVERIFY(m_session->open());
        for (auto type : {Calyx::PollType::TRUE_FALSE, Calyx::PollType::SCALE, Calyx::PollType::SORT})
            QVERIFY(!startedQuestion(type, Calyx::OrdinalType::NUMBER, 2, 7).values().contains(7));
    }

    void theOptionCountIsTheNumberOfDecimals()
    {
        for (int count : {-1, 0, 2, 9}) {
            auto* question = collab()->createPollQuestion(Calyx::PollType::NUMBER,
                                                          Calyx::OrdinalType::ALPHA_UPPER, count, 5);
            QCOMPARE(qobject_cast<Calyx::QuestionNumeric*>(question)->noOfDecimals(), count);
        }
    }

    void labelsTheOptions_data()
    {
        rows<int, QString, QString>({
            {"true-false", 0, "A B ? ? ?", "TRUE FALSE DONTKNOW DONTKNOW DONTKNOW"},
            {"yes-no", 1, "A B ? ? ?", "YES NO DONTKNOW DONTKNOW DONTKNOW"},
            {"yes-no-maybe", 2, "A B ? ? ?", "YES NO DONTKNOW DONTKNOW DONTKNOW"},
            {"yes-no-unsure", 3, "A B ? ? ?", "YES NO DONTKNOW DONTKNOW DONTKNOW"},
            {"yes-no-other", 4, "A B ? ? ?", "YES NO DONTKNOW DONTKNOW DONTKNOW"},
            {"alpha-upper", 5, "A B C D E F G H I J K L M N O P Q R S T U V W X Y Z", ""},
            {"alpha-lower", 6, "a b c d e f g h i j k l m n o p q r s t u v w x y z", ""},
            {"number", 7, "0 1 2 3 4 5 6 7 8 9 10 11", ""},
            {"agreement", 8, "0 1 2 3 4", ""},
            {"confidence", 9, "0 1 2 3 4", ""},
            {"generic", 10, "0 1 2 3 4", ""},
            {"one only", 0, "A", "TRUE"},
        });
    }

    void labelsTheOptions()
    {
        const auto [ordinal, ids, texts] = row<int, QString, QString>();
        const auto expectedIds = ids.split(QLatin1Char(' '));
        auto expectedTexts = texts.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        while (expectedTexts.size() < expectedIds.size())
            expectedTexts.append(QString());
        QStringList numbers;
        for (int i = 1; i <= expectedIds.size(); ++i)
            numbers.append(QString::number(i));
        QVERIFY(m_session->open());

        for (int type = 0; type <= 4; ++type) {
            const auto question = startedQuestion(POLL_TYPE(type), ORDINAL_TYPE(ordinal), expectedIds.size());
            QCOMPARE(properties(question, QStringLiteral("id")), expectedIds);
            QCOMPARE(properties(question, QStringLiteral("optionText")), expectedTexts);
            QCOMPARE(properties(question, QStringLiteral("displaySeqNumber")), numbers);
        }
    }

    void anOptionCountBelowOneGivesNoOptions_data()
    {
        rows<int>({
            {"0", 0},
            {"-1", -1},
            {"the least", std::numeric_limits<int>::min()},
        });
    }

    void anOptionCountBelowOneGivesNoOptions()
    {
        const auto [count] = row<int>();
        QVERIFY(m_session->open());

        const auto question =
            startedQuestion(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, count);
        QVERIFY(question.contains(QStringLiteral("activityOptions")));
        QVERIFY(question.value(QStringLiteral("activityOptions")).toList().isEmpty());
        QCOMPARE(question.value(QStringLiteral("metadata")).toMap().value(QStringLiteral("ordinalType")),
                 QVariant(""));
    }

    void infersTheSchemeAndListsNoIndices_data()
    {
        columns<int, QString>();

        for (int ordinal = 0; ordinal <= 10; ++ordinal) {
            const char* inferred = ordinal <= 5 ? "alpha-upper" : ordinal == 6 ? "alpha-lower" : "number";
            QTest::addRow("%d", ordinal) << ordinal << inferred;
        }
    }

    void infersTheSchemeAndListsNoIndices()
    {
        const auto [ordinal, inferred] = row<int, QString>();
        QVERIFY(m_session->open());

        for (int type = 0; type <= 4; ++type) {
            const auto question = startedQuestion(POLL_TYPE(type), ORDINAL_TYPE(ordinal), 3);
            const auto metadata = question.value(QStringLiteral("metadata")).toMap();
            QCOMPARE(metadata.value(QStringLiteral("ordinalType")).toString(), inferred);
            QCOMPARE(metadata.value(QStringLiteral("options")), QVariant(QVariantList{}));
        }
    }

    void publishesAQuestionStart_data()
    {
        rows<int, QString, QString, QString, int>({
            {"true-false", 0, "true-false", "3c476afbcfce45eda0b44df4737c3d27", "", 0},
            {"yes-no-other", 1, "yes-no-other", "3c476afbcfce45eda0b44df4737c3d27", "", 0},
            {"multiple", 2, "multiple", "8755bfc923cb492094df5c842a30da5f", "numberOfCorrectOptions", 2},
            {"scale", 3, "scale", "c80eb89f2c7240fb83d53069bf4c1f2c", "", 0},
            {"sort", 4, "sort", "be8a3a7f5d624a798ec54900385a9eb8", "", 0},
            {"text", 5, "text", "6efc81c52cfe4502976de55df9af2f89", "maxChars", 0},
            {"number", 7, "number", "24e7bda40c4140f896648511a5782466", "noOfDecimals", 3},
            {"math formula", 9, "math formula", "9f31dd1a55374c49a3127b8f94a1f1a6", "", 0},
        });
    }

    void publishesAQuestionStart()
    {
        const auto [type, name, activity, ownKey, ownValue] = row<int, QString, QString, QString, int>();
        QVERIFY(m_session->open());

        collab()->startPoll(POLL_TYPE(type), Calyx::OrdinalType::ALPHA_UPPER, 3, 2);

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.type, QStringLiteral("questionStart"));
        QCOMPARE(publish.from, QStringLiteral("teacher-7"));
        QCOMPARE(publish.body.value("version").toString(), QStringLiteral("3.0.0"));
        QCOMPARE(publish.body.value("sourceSystem").toString(), QStringLiteral("Lumora"));
        const auto question = publish.map();
        QCOMPARE(question.value("type").toString(), name);
        QCOMPARE(question.value("activityType"), QVariant(QVariantMap{{"id", activity}, {"name", name}}));
        QCOMPARE(question.value("questionSetMode").toString(), QStringLiteral("Poll"));
        QCOMPARE(question.value("card"), QVariant(QVariantMap{}));
        if (!ownKey.isEmpty())
            QCOMPARE(question.value(ownKey), QVariant(ownValue));
        QCOMPARE(question.contains("activityOptions"), type <= 4);
        QCOMPARE(log().debug(QStringLiteral("TRANSMIT: ")).size(), 1);
        QVERIFY(m_session->nothingWasSent());
    }

    void theWholeJsonOfAMultipleChoice()
    {
        QVERIFY(m_session->open());

        const auto question =
            startedQuestion(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4, 1);

        QVariantList options;
        for (int i = 0; i < 4; ++i) {
            options.append(QVariantMap{{"displaySeqNumber", i + 1},
                                       {"id", QString(QLatin1Char(char('A' + i)))},
                                       {"math", false},
                                       {"optionText", ""}});
        }
        const QVariant null = QVariant::fromValue(nullptr);
        const QVariantList empty;
        const QVariantMap feedBack{{"activityResponseStatus", null},
                                   {"activityScoreStatus", null},
                                   {"allowResubmit", true},
                                   {"answer", null},
                                   {"correctAnswer", null},
                                   {"correctFeedback", null},
                                   {"correctOptions", empty},
                                   {"inCorrectFeedback", null},
                                   {"jsonAnswer", null},
                                   {"numberOfRetries", 0},
                                   {"numberOfRetriesRemaining", 0},
                                   {"optionAnswers", empty},
                                   {"optionFeedbacks", empty},
                                   {"remainingTime", null},
                                   {"showCorrectAnswer", false},
                                   {"showFeedback", false}};
        const QVariantMap expected{
            {"activityOptions", options},
            {"activityType", QVariantMap{{"id", "8755bfc923cb492094df5c842a30da5f"}, {"name", "multiple"}}},
            {"card", QVariantMap{}},
            {"feedBack", feedBack},
            {"hasNext", false},
            {"hint", ""},
            {"id", collab()->currentQuestionId()},
            {"instructions", ""},
            {"math", false},
            {"metadata", QVariantMap{{"options", empty}, {"ordinalType", "alpha-upper"}}},
            {"navigable", false},
            {"numberOfCorrectOptions", 1},
            {"passage", ""},
            {"questionNumber", 0},
            {"questionSetMode", "Poll"},
            {"type", "multiple"}};
        QCOMPARE(QJsonDocument::fromVariant(question).toJson(),
                 QJsonDocument::fromVariant(expected).toJson());
    }

    void aQuestionCarriesTheCardImage_data()
    {
        rows<QByteArray, QString, QVariant>({
            {"none", QByteArray(), QString(), QVariant()},
            {"reference", QByteArray(), "http://h/p.png", QVariant("url('http://h/p.png')")},
            {"empty reference", QByteArray(), "", QVariant("url('')")},
            {"bytes", "png", QString(), QVariant("data:image/png;base64,cG5n")},
            {"both", "png", "http://h/p.png", QVariant("data:image/png;base64,cG5n")},
        });
    }

    void aQuestionCarriesTheCardImage()
    {
        const auto [bytes, reference, background] = row<QByteArray, QString, QVariant>();
        QVERIFY(m_session->open());
        collab()->setCardImage(bytes);
        collab()->setCardImageRef(reference);

        for (int type : {1, 5}) {
            const auto question = startedQuestion(POLL_TYPE(type), Calyx::OrdinalType::YES_NO, 2);
            const auto card = question.value("card").toMap();
            if (background.isValid()) {
                QCOMPARE(card.value("styles").toMap(), QVariantMap({{"backgroundColor", ""},
                                                                    {"backgroundImage", background},
                                                                    {"backgroundSize", "100%"}}));
                QCOMPARE(card.value("id"), question.value("id"));
                QCOMPARE(card.value("type").toString(), QStringLiteral("TEACHER"));
            } else {
                QVERIFY(question.contains("card"));
                QVERIFY(card.isEmpty());
            }
        }
    }

    void theQuestionIsFreed()
    {
        QVERIFY(m_session->open());
        collab()->setCardImageRef(QStringLiteral("p.png"));
        const auto children = collab()->findChildren<QObject*>().size();

        startedQuestion(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4);
        startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::ALPHA_UPPER, 4);

        QTRY_VERIFY(collab()->findChildren<Calyx::QuestionBase*>().isEmpty());
        QVERIFY(collab()->findChildren<Calyx::CalyxCollabMessage*>().isEmpty());
        QCOMPARE(collab()->findChildren<QObject*>().size(), children);
    }
};

QTEST_GUILESS_MAIN(TestPresenterCollabPollQuestions)
#include "tst_PresenterCollabPollQuestions.moc"
