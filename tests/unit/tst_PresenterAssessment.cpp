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

} // namespace

/// Assessments: addresses, tokens, messages, and the requests of learners.
class TestPresenterAssessment : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_session = std::make_unique<LiveSession>();
        QVERIFY(m_session->open());
        m_assessment = std::make_unique<PresenterAssessment>(nullptr, collab());
    }

    void cleanup()
    {
        m_assessment.reset();
        m_session.reset();
    }

    void tokenIsAUuidWithoutBraces()
    {
        const QString token = m_assessment->assessmentToken();
        QCOMPARE(token, QUuid(token).toString(QUuid::WithoutBraces));
        QVERIFY(!QUuid(token).isNull());
        QVERIFY(PresenterAssessment(nullptr, collab()).assessmentToken() != token);
    }

    void addresses_data()
    {
        rows<QString, QString>({
            {"the whole session", "", "abc"},
            {"null", QString(), "abc"},
            {"one learner", "d1", "abc.user.d1"},
            {"a point in front", ".d1", "abc.user..d1"},
            {"placeholder", "%1", "abc.user.%1"},
        });
    }

    void addresses()
    {
        const auto [id, address] = row<QString, QString>();
        Calyx::AssessmentOptions options;
        options.settitle("Fractions %1");
        options.setassessmentToken("another");
        Calyx::QuestionMultiChoice question;
        question.setquestionNumber(4);

        QCOMPARE(m_assessment->start(id, &options), true);
        auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, address);
        QCOMPARE(publish.type, QStringLiteral("assessmentStart"));
        QCOMPARE(publish.from, QStringLiteral("teacher-7"));
        QCOMPARE(publish.data, Calyx::JsonSerializer::serializeToJson(&options));
        QCOMPARE(publish.map().value("assessmentToken").toString(), m_assessment->assessmentToken());

        QCOMPARE(m_assessment->sendQuestion(id, &question), true);
        publish = m_session->nextPublish();
        QCOMPARE(publish.address, address);
        QCOMPARE(publish.type, QStringLiteral("questionStart"));
        QCOMPARE(publish.data, Calyx::JsonSerializer::serializeToJson(&question));
        QCOMPARE(publish.map().value("activityType").toMap().value("name").toString(),
                 QStringLiteral("multiple"));
        QCOMPARE(publish.map().value("questionSetMode").toString(), QStringLiteral("Assessment"));
        QCOMPARE(question.questionSetMode(), QStringLiteral("Assessment"));
        QCOMPARE(collab()->currentQuestionId(), question.id());

        m_assessment->stop();
        publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.type, QStringLiteral("assessmentStop"));
        QCOMPARE(publish.map(), QVariantMap({{"assessmentToken", m_assessment->assessmentToken()}}));
        QVERIFY(m_session->nothingWasSent());
    }

    void pauseAndResumeCarryTheCurrentPoll()
    {
        startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0);
        const QString quoted = '"' + collab()->currentPollId() + '"';

        m_assessment->pause();
        QCOMPARE(nextPublish("abc", "pause").data, quoted);
        m_assessment->resume();
        QCOMPARE(nextPublish("abc", "resume").data, quoted);
    }

    void sendQuestionInfersTheScheme_data()
    {
        rows<QString, QString, int>({
            {"A", "A", "alpha-upper", 0},
            {"B keeps what it had", "B", "agreement", 2},
            {"no options keep it too", "", "agreement", 2},
        });
    }

    void sendQuestionInfersTheScheme()
    {
        const auto [first, scheme, indices] = row<QString, QString, int>();
        Calyx::QuestionMultiChoice question;
        question.setMetadata(Calyx::OrdinalType::AGREEMENT, 2);
        if (!first.isEmpty())
            question.addActivityOption(first, QString(), 1);

        m_assessment->sendQuestion(QString(), &question);

        const auto metadata = m_session->nextPublish().map().value("metadata").toMap();
        QCOMPARE(metadata.value("ordinalType").toString(), scheme);
        QCOMPARE(metadata.value("options").toList().size(), indices);
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

        m_assessment->sendMessage(id, text, isDismissible, review);
        if (id.isEmpty())
            m_assessment->sendMessage(text, isDismissible, review);

        for (int i = 0; i < (id.isEmpty() ? 2 : 1); ++i) {
            const auto publish = m_session->nextPublish();
            QCOMPARE(publish.address, address);
            QCOMPARE(publish.type, type);
            QCOMPARE(publish.data, Calyx::JsonSerializer::serializeToJson(data));
        }
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

    void relaysRequestsForQuestions()
    {
        PresenterAssessment two(nullptr, collab());
        QSignalSpy requests(m_assessment.get(), SIGNAL(learnerGetQuestion(QString, int)));
        QSignalSpy others(&two, SIGNAL(learnerGetQuestion(QString, int)));

        m_session->receive("questionGet", "d1", {{"questionNumber", 3}});
        m_session->receive("questionGet", "d2", {});
        QVERIFY(m_session->syncInbound());

        QCOMPARE(requests, QList<QVariantList>({{"d1", 3}, {"d2", 0}}));
        QCOMPARE(others.size(), 2);
    }

    void operationsWithoutAChannel_data()
    {
        rows<bool>({{"disconnected", false}, {"the session has gone", true}});
    }
    void operationsWithoutAChannel()
    {
        const auto [isGone] = row<bool>();
        cleanup();
        m_session = std::make_unique<LiveSession>();
        m_assessment = std::make_unique<PresenterAssessment>(nullptr, collab());
        Calyx::AssessmentOptions options;
        Calyx::QuestionMultiChoice question;
        if (isGone)
            m_session->deleteCollab();

        QCOMPARE(m_assessment->start(QString(), &options), true);
        QCOMPARE(m_assessment->sendQuestion("d1", &question), true);
        m_assessment->stop();
        m_assessment->sendMessage("Hi", true, false);
        QCOMPARE(log().debug("TRANSMIT: ").size(), isGone ? 0 : 4);
        QCOMPARE(dropped(), 0);
        m_assessment->pause();
        m_assessment->resume();
        QCOMPARE(dropped(), isGone ? 0 : 2);
        QCOMPARE(options.assessmentToken(), m_assessment->assessmentToken());
        QVERIFY(isGone || (m_session->open() && m_session->nothingWasSent()));
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
        int calls = 0;
        QObject host;
        connect(m_assessment.get(), &PresenterAssessment::learnerGetQuestion, &host, [&, action = action] {
            ++calls;
            if (action == QLatin1String("delete the assessment"))
                m_assessment.reset();
            else if (action == QLatin1String("delete the session"))
                m_session->deleteCollab();
            else
                collab()->close();
        });

        m_session->receive("questionGet", "d1", {{"questionNumber", 1}});
        QTRY_COMPARE(calls, 1);

        if (m_assessment) {
            QTRY_COMPARE(server().openConnections(), 0);
        } else {
            m_session->receive("questionGet", "d1", {{"questionNumber", 2}});
            QVERIFY(m_session->syncInbound());
            QCOMPARE(calls, 1);
        }
    }

    void messagesAreFreed()
    {
        Calyx::AssessmentOptions options;

        m_assessment->start(QString(), &options);
        m_assessment->stop();
        m_assessment->sendMessage("Hi", true, false);

        QTRY_VERIFY(m_assessment->children().isEmpty());
        QVERIFY(collab()->findChildren<Calyx::CalyxCollabMessage*>().isEmpty());
    }

private:
    std::unique_ptr<PresenterAssessment> m_assessment;
};

QTEST_GUILESS_MAIN(TestPresenterAssessment)
#include "tst_PresenterAssessment.moc"
