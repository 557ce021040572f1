#include "collab/CalyxCollabMessage.h"
#include "collab/PresenterAssessment.h"
#include "model/AssessmentOptions.h"
#include "model/JsonSerializer.h"
#include "model/QuestionMultiChoice.h"
#include "support/Rows.h"
#include "support/SessionTest.h"

#include <QSignalSpy>
#include <QTest>
#include <QUuid>

#include <memory>
#include <type_traits>

namespace {

struct SendMessage
{
    template<typename... Arguments>
    auto operator()(Arguments... arguments)
        -> decltype(std::declval<PresenterAssessment>().sendMessage(arguments...));
};

void addAddresses()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("address");

    QTest::newRow("the whole session") << ""
                                       << "abc";
    QTest::newRow("null") << QString() << "abc";
    QTest::newRow("one learner") << "d1"
                                 << "abc.user.d1";
    QTest::newRow("a point in front") << ".d1"
                                      << "abc.user..d1";
    QTest::newRow("placeholder") << "%1"
                                 << "abc.user.%1";
}

} // namespace

/// Assessments: addresses, tokens, messages, and the requests of learners.
class TestPresenterAssessment : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void tokenIsAUuidWithoutBraces()
    {
        const PresenterAssessment one(nullptr, collab());
        const PresenterAssessment two(nullptr, collab());

        for (const auto& token : {one.assessmentToken(), two.assessmentToken()}) {
            QCOMPARE(token.size(), 36);
            QVERIFY2(!token.contains(QLatin1Char('{')) && !token.contains(QLatin1Char('}')),
                     qPrintable(token));
            QVERIFY(!QUuid::fromString(token).isNull());
        }
        QVERIFY(one.assessmentToken() != two.assessmentToken());
    }

    void startPublishesTheOptions_data() { addAddresses(); }

    void startPublishesTheOptions()
    {
        QFETCH(QString, id);
        QFETCH(QString, address);
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        Calyx::AssessmentOptions options;
        options.settitle(QStringLiteral("Fractions %1"));
        options.setquestionCount(12);

        QCOMPARE(assessment.start(id, &options), true);

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, address);
        QCOMPARE(publish.type, QStringLiteral("assessmentStart"));
        QCOMPARE(publish.from, QStringLiteral("teacher-7"));
        QCOMPARE(publish.data, Calyx::JsonSerializer::serializeToJson(&options));
        QCOMPARE(publish.map().value("title").toString(), QStringLiteral("Fractions %1"));
        QCOMPARE(publish.map().value("questionCount").toInt(), 12);
        QVERIFY(m_session->nothingWasSent());
    }

    void startSetsTheTokenInTheOptions()
    {
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        Calyx::AssessmentOptions options;
        options.setassessmentToken(QStringLiteral("another"));

        assessment.start(QString(), &options);

        QCOMPARE(options.assessmentToken(), assessment.assessmentToken());
        QCOMPARE(m_session->nextPublish().map().value("assessmentToken").toString(),
                 assessment.assessmentToken());
    }

    void theDefaultOptionsAsJson()
    {
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        Calyx::AssessmentOptions options;

        assessment.start(QString(), &options);

        QCOMPARE(m_session->nextPublish().data, QStringLiteral(R"({
    "allowNavigateQuestionSet": false,
    "allowResubmitResponse": true,
    "allowSkipQuestion": false,
    "allowedTime": 0,
    "assessmentSectionConfigurations": {
        "leveled": false
    },
    "assessmentToken": "%1",
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
)")
                                                    .arg(assessment.assessmentToken()));
    }

    void stopPublishesTheToken()
    {
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        Calyx::AssessmentOptions options;
        assessment.start(QStringLiteral("d1"), &options);
        QCOMPARE(m_session->nextPublish().type, QStringLiteral("assessmentStart"));

        assessment.stop();

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.type, QStringLiteral("assessmentStop"));
        QCOMPARE(publish.data,
                 QStringLiteral("{\n    \"assessmentToken\": \"%1\"\n}\n").arg(assessment.assessmentToken()));
    }

    void pauseAndResumeCarryTheCurrentPoll()
    {
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0);
        const QString quoted = QLatin1Char('"') + collab()->currentPollId() + QLatin1Char('"');

        assessment.pause();
        auto publish = m_session->nextPublish();
        QCOMPARE(publish.text,
                 LiveSession::compressedFrame(QStringLiteral("abc"), QStringLiteral("teacher-7"),
                                              QStringLiteral("pause"), publish.base64));
        QCOMPARE(publish.data, quoted);

        assessment.resume();
        publish = m_session->nextPublish();
        QCOMPARE(publish.text,
                 LiveSession::compressedFrame(QStringLiteral("abc"), QStringLiteral("teacher-7"),
                                              QStringLiteral("resume"), publish.base64));
        QCOMPARE(publish.data, quoted);
    }

    void sendQuestionGoesToItsAddress_data() { addAddresses(); }

    void sendQuestionGoesToItsAddress()
    {
        QFETCH(QString, id);
        QFETCH(QString, address);
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        Calyx::QuestionMultiChoice question;
        question.setquestionNumber(4);

        QCOMPARE(assessment.sendQuestion(id, &question), true);

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, address);
        QCOMPARE(publish.type, QStringLiteral("questionStart"));
        QCOMPARE(publish.data, Calyx::JsonSerializer::serializeToJson(&question));
        QCOMPARE(publish.map().value("questionNumber").toInt(), 4);
        QCOMPARE(publish.map().value("activityType").toMap().value("name").toString(),
                 QStringLiteral("multiple"));
        QCOMPARE(collab()->currentQuestionId(), question.id());
    }

    void sendQuestionInfersTheScheme_data()
    {
        rows<QString, QString, int>({
            {"A", "A", "alpha-upper", 0},
            {"a", "a", "alpha-lower", 0},
            {"0", "0", "number", 0},
            {"1", "1", "number", 0},
            {"B keeps what it had", "B", "agreement", 2},
            {"no options keep it too", "", "agreement", 2},
        });
    }

    void sendQuestionInfersTheScheme()
    {
        const auto [first, scheme, indices] = row<QString, QString, int>();
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        Calyx::QuestionMultiChoice question;
        question.setMetadata(Calyx::OrdinalType::AGREEMENT, 2);
        if (!first.isEmpty())
            question.addActivityOption(first, QString(), 1);

        assessment.sendQuestion(QString(), &question);

        const auto metadata = m_session->nextPublish().map().value("metadata").toMap();
        QCOMPARE(metadata.value("ordinalType").toString(), scheme);
        QCOMPARE(metadata.value("options").toList().size(), indices);
    }

    void sendQuestionSetsTheModeAndStaysTheCallers()
    {
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        QObject parent;
        const QPointer<Calyx::QuestionMultiChoice> question = new Calyx::QuestionMultiChoice(&parent);

        assessment.sendQuestion(QString(), question);

        QCOMPARE(m_session->nextPublish().map().value("questionSetMode").toString(),
                 QStringLiteral("Assessment"));
        QVERIFY(question);
        QCOMPARE(question->questionSetMode(), QStringLiteral("Assessment"));
        QCOMPARE(question->parent(), &parent);
    }

    void sendMessage_data()
    {
        rows<QString, QString, bool, bool, QString, QString, QVariantMap>({
            {"dialog to all", "", "Hi", true, false, "abc", "dialogShow",
             QVariantMap{{"text", "Hi"}, {"isDismissible", true}}},
            {"dialog that stays", "", "Hi", false, false, "abc", "dialogShow",
             QVariantMap{{"text", "Hi"}, {"isDismissible", false}}},
            {"dialog to one", "d2", "", true, false, "abc.user.d2", "dialogShow",
             QVariantMap{{"text", ""}, {"isDismissible", true}}},
            {"review to one", "d1", "Review", false, true, "abc.user.d1", "questionSetReview",
             QVariantMap{{"text", "Review"}, {"showNavigation", true}}},
            {"review to all", "", "Review", true, true, "abc", "questionSetReview",
             QVariantMap{{"text", "Review"}, {"showNavigation", true}}},
            {"text is escaped", "", "say \"hi\"\n%1", true, false, "abc", "dialogShow",
             QVariantMap{{"text", "say \"hi\"\n%1"}, {"isDismissible", true}}},
        });
    }

    void sendMessage()
    {
        const auto [id, text, isDismissible, review, address, type, data] =
            row<QString, QString, bool, bool, QString, QString, QVariantMap>();
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());

        assessment.sendMessage(id, text, isDismissible, review);

        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, address);
        QCOMPARE(publish.type, type);
        QCOMPARE(publish.data, Calyx::JsonSerializer::serializeToJson(data));
    }

    void sendMessageTakesNoLiteralForABool()
    {
        const auto canSend = [](auto... arguments) {
            return std::is_invocable_v<SendMessage, decltype(arguments)...>;
        };
        QVERIFY(canSend("Hi", true, false));
        QVERIFY(canSend("device-1", "Well done", true, false));
        QVERIFY(!canSend("device-1", "Well done", true));
        QVERIFY(!canSend("device-1", u8"Well done", true));
    }

    void sendMessageToTheWholeSession()
    {
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());

        assessment.sendMessage(QStringLiteral("Hi"), true, false);
        auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.type, QStringLiteral("dialogShow"));
        QCOMPARE(publish.map(), QVariantMap({{"text", "Hi"}, {"isDismissible", true}}));

        assessment.sendMessage(QStringLiteral("Look"), true, true);
        publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.type, QStringLiteral("questionSetReview"));
        QCOMPARE(publish.map(), QVariantMap({{"text", "Look"}, {"showNavigation", true}}));
    }

    void relaysRequestsForQuestions()
    {
        QVERIFY(m_session->open());
        PresenterAssessment one(nullptr, collab());
        PresenterAssessment two(nullptr, collab());
        QSignalSpy requests(&one, SIGNAL(learnerGetQuestion(QString, int)));
        QSignalSpy others(&two, SIGNAL(learnerGetQuestion(QString, int)));

        m_session->receive("questionGet", "d1", {{"questionNumber", 3}});
        m_session->receive("questionGet", "d2", {});
        QVERIFY(m_session->syncInbound());

        QCOMPARE(requests.size(), 2);
        QCOMPARE(requests.at(0), QVariantList({"d1", 3}));
        QCOMPARE(requests.at(1), QVariantList({"d2", 0}));
        QCOMPARE(others.size(), 2);
    }

    void operationsWhileDisconnected()
    {
        PresenterAssessment assessment(nullptr, collab());
        Calyx::AssessmentOptions options;
        Calyx::QuestionMultiChoice question;

        QCOMPARE(assessment.start(QString(), &options), true);
        QCOMPARE(assessment.sendQuestion(QString(), &question), true);
        assessment.stop();
        assessment.sendMessage(QStringLiteral("Hi"), true, false);
        QCOMPARE(log().debug(QStringLiteral("TRANSMIT: ")).size(), 4);
        QCOMPARE(dropped(), 0);
        QCOMPARE(options.assessmentToken(), assessment.assessmentToken());

        assessment.pause();
        assessment.resume();
        QCOMPARE(dropped(), 2);
        QVERIFY(m_session->open());
        QVERIFY(m_session->nothingWasSent());
    }

    void operationsAfterTheSessionHasGone()
    {
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        Calyx::AssessmentOptions options;
        Calyx::QuestionMultiChoice question;
        m_session->deleteCollab();

        QCOMPARE(assessment.start(QString(), &options), true);
        QCOMPARE(assessment.sendQuestion(QStringLiteral("d1"), &question), true);
        assessment.stop();
        assessment.pause();
        assessment.resume();
        assessment.sendMessage(QStringLiteral("Hi"), true, false);

        QTRY_COMPARE(server().openConnections(), 0);
        QVERIFY(server().unreadFrames().isEmpty());
    }

    void hostActsInTheSlot_data()
    {
        columns<QString>();
        for (const char* action : {"delete the assessment", "delete the session", "close the session"})
            QTest::newRow(action) << action;
    }

    void hostActsInTheSlot()
    {
        const auto [action] = row<QString>();
        QVERIFY(m_session->open());
        auto assessment = std::make_unique<PresenterAssessment>(nullptr, collab());
        int calls = 0;
        QObject host;
        connect(assessment.get(), &PresenterAssessment::learnerGetQuestion, &host, [&] {
            ++calls;
            if (action == QLatin1String("delete the assessment"))
                assessment.reset();
            else if (action == QLatin1String("delete the session"))
                m_session->deleteCollab();
            else
                collab()->close();
        });

        m_session->receive("questionGet", "d1", {{"questionNumber", 1}});
        QTRY_COMPARE(calls, 1);

        if (assessment) {
            QTRY_COMPARE(server().openConnections(), 0);
        } else {
            m_session->receive("questionGet", "d1", {{"questionNumber", 2}});
            QVERIFY(m_session->syncInbound());
            QCOMPARE(calls, 1);
        }
    }

    void messagesAreFreed()
    {
        QVERIFY(m_session->open());
        PresenterAssessment assessment(nullptr, collab());
        Calyx::AssessmentOptions options;

        assessment.start(QString(), &options);
        assessment.stop();
        assessment.sendMessage(QStringLiteral("Hi"), true, false);

        QTRY_VERIFY(assessment.children().isEmpty());
        QVERIFY(collab()->findChildren<Calyx::CalyxCollabMessage*>().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestPresenterAssessment)
#include "tst_PresenterAssessment.moc"
