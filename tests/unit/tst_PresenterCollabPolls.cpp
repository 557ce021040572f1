#include "collab/CalyxCollabMessage.h"
#include "collab/PresenterAssessment.h"
#include "model/AssessmentOptions.h"
#include "model/JsonSerializer.h"
#include "model/QuestionMultiChoice.h"
#include "model/QuestionText.h"
#include "model/QuestionYesNo.h"
#include "support/Rows.h"
#include "support/SessionTest.h"

#include <QSignalSpy>
#include <QTest>
#include <QUuid>

#include <functional>
#include <limits>
#include <memory>
#include <type_traits>

using Calyx::OrdinalType::ORDINAL_TYPE;
using Calyx::PollType::POLL_TYPE;

using Call = std::function<void(PresenterCollab*)>;
Q_DECLARE_METATYPE(Call)

namespace {

const auto noReference = QStringLiteral("[PresenterCollab] No image reference has been set!");

// Here and below, what stands in the brackets "<" and ">" is filled in.
const char* const cardText =
    R"({"segment":{"id":"any"},"isTeacherCard":true,"autoSend":true,"notes":null,"tracks":[],"visible":true,)"
    R"("ordinal":1,"styles":{"backgroundColor":"","backgroundImage":""},"components":[{"ordinal":1397148149039,)"
    R"("styles":{"anchor":false,"width":770,"left":15,"height":570,"top":15},"blob":{"url":"<url>"},"type":"image"}],)"
    R"("trackSortSeq":0,"_tId":"DF8A71DA-3EF2-44E3-9B2F-F651C7A8B0F9","hasStudentCards":false})";

QString card(const QString& url)
{
    return QString::fromLatin1(cardText).replace(QLatin1String("<url>"), url);
}

const char* const documentText =
    R"({"type":"<type>","expressionQuestionId":1,"metadata":{"ordinalType":"<ordinal>","options":[<options>]},)"
    R"("id":"<id>","sessionToken":"<token>","sessionCode":"123456","lessonId":null,"startTime":1395358151638,)"
    R"("lastUpdatedOn":1395358151638,"card":{"segment":"fake-id","tracks":[{"placeholder":true}],"visible":true,)"
    R"("ordinal":1395358139515,"styles":{"backgroundColor":"","backgroundImage":"<image>",)"
    R"("backgroundSize":"100%"},"components":[]},"unrespondedUsers":[]})";

QString document(const QString& type, const QString& ordinal, const QString& options, const QString& id,
                 const QString& token, const QString& image)
{
    return QString::fromLatin1(documentText)
        .replace(QLatin1String("<type>"), type)
        .replace(QLatin1String("<ordinal>"), ordinal)
        .replace(QLatin1String("<options>"), options)
        .replace(QLatin1String("<id>"), id)
        .replace(QLatin1String("<token>"), token)
        .replace(QLatin1String("<image>"), image);
}

struct SendMessage
{
    template<typename... Arguments>
    auto operator()(Arguments... arguments)
        -> decltype(std::declval<PresenterAssessment>().sendMessage(arguments...));
};

} // namespace

/// Polls that go out as questions or documents, the ids that answers come back under, the steering of a
/// running poll; questions of the host, image cards, and what the remote control is told; assessments.
class TestPresenterCollabPolls : public SessionTest
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

    void publishesAQuestionStart_data()
    {
        constexpr int least = std::numeric_limits<int>::min();
        const QVariantMap none;
        const auto right = [](int count) { return QVariantMap{{"numberOfCorrectOptions", count}}; };
        // The scheme and the options, null where the kind has none, and what the kind alone has.
        rows<int, int, int, int, QString, QString, QString, QVariantMap>({
            {"true or false", 0, 0, 3, 0, "true-false", "alpha-upper", "A/TRUE/1 B/FALSE/2 ?/DONTKNOW/3",
             none},
            {"yes or no", 1, 1, 2, 0, "yes-no-other", "alpha-upper", "A/YES/1 B/NO/2", none},
            {"choice", 2, 5, 3, 2, "multiple", "alpha-upper", "A//1 B//2 C//3", right(2)},
            {"choice of small letters", 2, 6, 2, 0, "multiple", "alpha-lower", "a//1 b//2", right(0)},
            {"choice of numbers", 2, 7, 2, -1, "multiple", "number", "0//1 1//2", right(-1)},
            {"scale", 3, 8, 2, 1, "scale", "number", "0//1 1//2", none},
            {"sort", 4, 7, 2, 1, "sort", "number", "0//1 1//2", none},
            {"no options", 4, 5, 0, 1, "sort", "", "", none},
            {"fewer than none", 4, 5, -1, 1, "sort", "", "", none},
            {"the least", 4, 5, least, 1, "sort", "", "", none},
            {"text", 5, 5, 3, 2, "text", QString(), QString(), QVariantMap{{"maxChars", 0}}},
            {"number", 7, 7, 2, 5, "number", QString(), QString(), QVariantMap{{"noOfDecimals", 2}}},
            {"formula", 9, 5, 3, 2, "math formula", QString(), QString(), none},
        });
    }
    void publishesAQuestionStart()
    {
        const auto [type, ordinal, count, extra, name, scheme, options, own] =
            row<int, int, int, int, QString, QString, QString, QVariantMap>();
        collab()->startPoll(POLL_TYPE(type), ORDINAL_TYPE(ordinal), count, extra);
        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.type, QStringLiteral("questionStart"));
        QCOMPARE(publish.from, QStringLiteral("teacher-7"));
        QCOMPARE(publish.body.value("version").toString(), QStringLiteral("3.0.0"));
        QCOMPARE(publish.body.value("sourceSystem").toString(), QStringLiteral("Lumora"));
        const auto question = publish.map();
        QCOMPARE(question.value("type").toString(), name);
        QCOMPARE(question.value("questionSetMode").toString(), QStringLiteral("Poll"));
        QCOMPARE(question.value("card"), QVariant(QVariantMap{}));
        QCOMPARE(question.value("metadata").toMap().value("ordinalType").toString(), scheme);
        QCOMPARE(question.contains("activityOptions"), !options.isNull());
        QStringList sent;
        for (const QVariant& option : question.value("activityOptions").toList()) {
            const auto map = option.toMap();
            sent.append(map.value("id").toString() + '/' + map.value("optionText").toString() + '/' +
                        map.value("displaySeqNumber").toString());
        }
        QCOMPARE(sent.join(' '), options);
        for (const QString& key : own.keys())
            QCOMPARE(question.value(key), own.value(key));
        QCOMPARE(log().debug("TRANSMIT: ").size(), 1);
        QVERIFY(m_session->nothingWasSent());
    }

    void aQuestionCarriesTheCardImage_data()
    {
        rows<QByteArray, QString, QVariant>({
            {"none", QByteArray(), QString(), QVariant()},
            {"reference", QByteArray(), "http://h/p.png", QVariant("url('http://h/p.png')")},
            {"both", "png", "http://h/p.png", QVariant("data:image/png;base64,cG5n")},
        });
    }
    void aQuestionCarriesTheCardImage()
    {
        const auto [bytes, reference, background] = row<QByteArray, QString, QVariant>();
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

    void questionsAndMessagesAreFreed()
    {
        collab()->setCardImageRef("p.png");
        const auto children = collab()->findChildren<QObject*>().size();
        startedQuestion(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4);
        startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::ALPHA_UPPER, 4);
        Calyx::AssessmentOptions options;
        m_assessment->start(QString(), &options);
        m_assessment->stop();
        m_assessment->sendMessage("Hi", true, false);
        QTRY_VERIFY(m_assessment->children().isEmpty());
        QTRY_VERIFY(collab()->findChildren<Calyx::QuestionBase*>().isEmpty());
        QVERIFY(collab()->findChildren<Calyx::CalyxCollabMessage*>().isEmpty());
        QCOMPARE(collab()->findChildren<QObject*>().size(), children);
    }

    void publishesAPollDocument_data()
    {
        constexpr int least = std::numeric_limits<int>::min();
        const QByteArray none;
        const QString null;
        // The card's image, as bytes and by its reference, and what the document has of it.
        rows<int, int, int, QString, QString, QString, QByteArray, QString, QString>({
            {"creative", 8, 7, 1, "creative", "number", "0", none, null, ""},
            {"no options", 6, 5, 0, "word-seed", "alpha-upper", "", none, null, ""},
            {"fewer than none", 8, 5, -3, "creative", "alpha-upper", "", none, null, ""},
            {"the least", 6, 5, least, "word-seed", "alpha-upper", "", none, null, ""},
            {"twelve", 6, 5, 12, "word-seed", "alpha-upper", "0,1,2,3,4,5,6,7,8,9,10,11", none, null, ""},
            {"unknown type", 12, 5, 2, "", "alpha-upper", "0,1", none, null, ""},
            {"unknown ordinal", 6, 14, 2, "word-seed", "", "0,1", none, null, ""},
            {"both unknown", 15, 15, 0, "", "", "", none, null, ""},
            {"reference", 6, 10, 0, "word-seed", "generic", "", none, "h/p.png", "url('h/p.png')"},
            {"empty reference", 6, 10, 0, "word-seed", "generic", "", none, "", "url('')"},
            {"bytes", 6, 10, 0, "word-seed", "generic", "", "png", "unused", "data:image/png;base64,cG5n"},
            {"placeholders", 6, 10, 0, "word-seed", "generic", "", none, "%1%5%6%7", "url('%1%5%6%7')"},
        });
    }
    void publishesAPollDocument()
    {
        const auto [type, ordinal, count, typeName, ordinalName, options, bytes, reference, image] =
            row<int, int, int, QString, QString, QString, QByteArray, QString, QString>();
        const QString token = "t%4%7";
        m_session = std::make_unique<LiveSession>(token);
        QVERIFY(m_session->open());
        collab()->setCardImage(bytes);
        collab()->setCardImageRef(reference);
        collab()->startPoll(POLL_TYPE(type), ORDINAL_TYPE(ordinal), count, 9);
        QCOMPARE(nextPublish("t%4%7", "poll").data,
                 document(typeName, ordinalName, options, collab()->currentPollId(), token, image));
        QVERIFY(m_session->nothingWasSent());
    }

    void eachPollHasAnIdOfItsOwn_data() { rows<int>({{"question", 2}, {"document", 6}}); }
    void eachPollHasAnIdOfItsOwn()
    {
        const auto [type] = row<int>();
        QStringList ids;
        for (int i = 0; i < 5; ++i) {
            collab()->startPoll(POLL_TYPE(type), Calyx::OrdinalType::ALPHA_UPPER, 2, 1);
            const auto id = collab()->currentPollId();
            QCOMPARE(id, QUuid(id).toString(QUuid::WithoutBraces));
            QVERIFY(!QUuid(id).isNull());
            QVERIFY(!ids.contains(id));
            ids.append(id);
            // The one before is not stopped.
            QVERIFY(m_session->nextPublish().type != QLatin1String("pollStop"));
        }
        QVERIFY(m_session->nothingWasSent());
    }

    void theCurrentQuestionIdIsThatOfTheAnswers()
    {
        QVERIFY(collab()->currentQuestionId().isEmpty());
        auto question = startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0);
        QCOMPARE(collab()->currentQuestionId().size(), 8);
        QCOMPARE(collab()->currentQuestionId(), question.value("id").toString());
        QVERIFY(collab()->currentQuestionId() != collab()->currentPollId());
        collab()->startPoll(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::GENERIC, 0, 0);
        QVERIFY(collab()->currentQuestionId().isEmpty());
        QCOMPARE(m_session->nextPublish().type, QStringLiteral("poll"));
        Calyx::QuestionYesNo mine;
        mine.setID("mine");
        collab()->sendQuestion(&mine);
        collab()->pausePoll();
        collab()->resumePoll();
        collab()->sendHeavy();
        QCOMPARE(collab()->currentQuestionId(), QStringLiteral("mine"));
    }

    void pauseAndResumeKeepThePollAndStopForgetsIt()
    {
        collab()->setCardImage("png");
        collab()->setCardImageRef("p.png");
        startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0);
        const QString id = collab()->currentPollId();
        const QString quoted = '"' + id + '"';
        collab()->pausePoll();
        QCOMPARE(nextPublish("abc", "pause").data, quoted);
        collab()->resumePoll();
        QCOMPARE(nextPublish("abc", "resume").data, quoted);
        m_assessment->pause();
        QCOMPARE(nextPublish("abc", "pause").data, quoted);
        m_assessment->resume();
        QCOMPARE(nextPublish("abc", "resume").data, quoted);
        QCOMPARE(collab()->currentPollId(), id);
        collab()->setCardImage(QByteArray());
        QCOMPARE(collab()->getCardImageRef(false), QStringLiteral("p.png"));
        collab()->setCardImage("png");
        collab()->stopPoll();
        QCOMPARE(nextPublish("abc", "pollStop").data, quoted);
        QVERIFY(collab()->currentPollId().isEmpty());
        m_session->forgetLog();
        QCOMPARE(collab()->getCardImageRef(true), QString());
        QCOMPARE(log().debug("[PresenterCollab] No image reference has been set!").size(), 1);
        collab()->stopPoll();
        QCOMPARE(nextPublish("abc", "pollStop").data, QStringLiteral("\"\""));
        QVERIFY(collab()->currentPollId().isEmpty());
    }

    void sendsAQuestionToAnAddress()
    {
        Calyx::QuestionMultiChoice question;
        question.addActivityOption("A", "x [ 1 ]", 1);
        collab()->sendQuestion(".user.d1", &question);
        const auto publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc.user.d1"));
        QCOMPARE(publish.type, QStringLiteral("questionStart"));
        QCOMPARE(publish.from, QStringLiteral("teacher-7"));
        QCOMPARE(publish.data, Calyx::JsonSerializer::serializeToJson(&question));
        QVERIFY(publish.data.contains(QLatin1String("\"optionText\": \"x [ 1 ]\"")));
        QCOMPARE(log().debug("TRANSMIT: ").size(), 1);
    }

    // Of which kind each class is, and the id of each kind, is in tst_QuestionBase.
    void setsTheActivityType()
    {
        Calyx::QuestionYesNo question;
        question.setTrueFalse(true);
        Calyx::QuestionBase unknown;
        unknown.setType("riddle");
        const std::pair<Calyx::QuestionBase*, QVariantMap> sent[] = {
            {&question, {{"id", "3c476afbcfce45eda0b44df4737c3d27"}, {"name", "true-false"}}},
            {&unknown, {{"id", ""}, {"name", "riddle"}}},
        };
        for (const auto& [one, activityType] : sent) {
            one->setactivityType({{"id", "another"}, {"more", 1}});
            collab()->sendQuestion(one);
            QCOMPARE(one->activityType(), activityType);
            const auto publish = m_session->nextPublish();
            QCOMPARE(publish.address, QStringLiteral("abc"));
            QCOMPARE(publish.map().value("id").toString(), one->id());
            QCOMPARE(publish.map().value("activityType").toMap(), activityType);
        }
    }

    void aQuestionStaysTheCallers()
    {
        QObject parent;
        const QPointer<Calyx::QuestionText> question = new Calyx::QuestionText(&parent);
        collab()->sendQuestion(question);
        collab()->sendQuestion(question);
        QCOMPARE(m_session->nextPublish().type, QStringLiteral("questionStart"));
        QCOMPARE(m_session->nextPublish().type, QStringLiteral("questionStart"));
        m_session->deleteCollab();
        QVERIFY(question);
        QCOMPARE(question->parent(), &parent);
    }

    void cardImageReference_data()
    {
        const QByteArray none;
        const QString null;
        rows<QByteArray, QString, bool, QString, int>({
            {"nothing", none, null, false, "", 1},
            {"nothing, for CSS", none, null, true, "", 1},
            {"reference", none, "http://h/p.png", false, "http://h/p.png", 0},
            {"reference, for CSS", none, "http://h/p.png", true, "url('http://h/p.png')", 0},
            {"empty reference", none, "", false, "", 0},
            {"empty reference, for CSS", none, "", true, "url('')", 0},
            {"placeholder", none, "%0%1", true, "url('%0%1')", 0},
            {"bytes", "png", null, false, "data:image/png;base64,cG5n", 0},
            {"bytes, for CSS", "png", null, true, "data:image/png;base64,cG5n", 0},
            {"bytes win", "png", "p.png", true, "data:image/png;base64,cG5n", 0},
            {"empty bytes", "", "p.png", false, "p.png", 0},
            {"a zero byte", QByteArray("\0", 1), null, false, "data:image/png;base64,AA==", 0},
            {"plus and slash", QByteArray("\xfb\xff"), null, false, "data:image/png;base64,+/8=", 0},
        });
    }
    void cardImageReference()
    {
        const auto [bytes, reference, asCssUrl, expected, logged] =
            row<QByteArray, QString, bool, QString, int>();
        collab()->setCardImage(bytes);
        collab()->setCardImageRef(reference);
        QCOMPARE(collab()->getCardImageRef(asCssUrl), expected);
        QCOMPARE(log().debug(noReference).size(), logged);
    }

    void clearingTheCardImageForgetsBothForms()
    {
        int reports = 0;
        for (const bool byNull : {false, true}) {
            collab()->setCardImage("png");
            collab()->setCardImageRef("p.png");
            collab()->setCardImage(byNull ? QByteArray() : QByteArray("png"));
            collab()->setCardImageRef(byNull ? QString() : QString("p.png"));
            if (!byNull)
                collab()->clearCardImage();
            QCOMPARE(collab()->getCardImageRef(true), QString());
            QCOMPARE(log().debug(noReference).size(), ++reports);
        }
    }
    void showsAnImageCardOnce_data()
    {
        const QByteArray none;
        const auto reference = [](int length) { return QString(length, QLatin1Char('r')); };
        rows<QByteArray, QString, bool, bool>({
            {"reference", none, "http://h/p.png", false, false},
            {"bytes", "png", QString(), true, false},
            {"none", none, QString(), true, false},
            {"placeholders", none, "%0%1%2", true, false},
            {"524288", none, reference(524288), true, false},
            {"524289", none, reference(524289), true, true},
            {"a million", none, reference(1000000), true, true},
            {"524289, unchecked", none, reference(524289), false, false},
            // 22 characters in front of four for each three bytes.
            {"bytes of 524286 characters", QByteArray(393198, 'x'), QString(), true, false},
            {"bytes of 524290 characters", QByteArray(393199, 'x'), QString(), true, true},
        });
    }
    void showsAnImageCardOnce()
    {
        const auto [bytes, reference, checkHeavy, announced] = row<QByteArray, QString, bool, bool>();
        collab()->setCardImage(bytes);
        collab()->setCardImageRef(reference);
        const QString url = collab()->getCardImageRef(false);
        m_session->forgetLog();
        collab()->showImageCard(checkHeavy);
        QCOMPARE(log().debug(noReference).size(), url.isEmpty() ? 1 : 0);
        if (announced)
            QCOMPARE(nextPublish("abc.learner", "heavy").data, QStringLiteral("\"%0\""));
        QVERIFY(nextPublish("abc.learner", "showCard").data == card(url));
        m_session->forgetLog();
        collab()->showImageCard(checkHeavy); // the image has been forgotten
        QCOMPARE(log().debug(noReference).size(), 1);
        QCOMPARE(nextPublish("abc.learner", "showCard").data, card(QString()));
        QVERIFY(m_session->nothingWasSent());
    }

    void tellsTheOthers_data()
    {
        columns<Call, QByteArray, QByteArray, QString>();
        const auto row = [](const char* address, const char* type, const QString& data, const Call& call) {
            QTest::addRow("%s, %s", type, qPrintable(data))
                << call << QByteArray(address) << QByteArray(type) << data;
        };
        const auto lesson = [=](const char* id, const char* name, const char* data) {
            row("abc.controller", "currentLesson", data,
                [=](PresenterCollab* to) { to->sendCurrentLessonToRemote(id, name); });
        };
        const auto card = [=](int current, int total, const char* data) {
            row("abc.controller", "currentCard", data,
                [=](PresenterCollab* to) { to->sendCurrentCardToRemote(current, total); });
        };
        lesson("l1", "Fractions", R"({"lessonId":"l1", "name":"Fractions"})");
        lesson("", "", R"({"lessonId":"", "name":""})");
        lesson("%1", "%0%1", R"({"lessonId":"%1", "name":"%0%1"})");
        lesson("a\"b", "c\\d", "{\"lessonId\":\"a\"b\", \"name\":\"c\\d\"}"); // not escaped
        lesson("l2", "Übung", R"({"lessonId":"l2", "name":"Übung"})");
        card(3, 0, R"({"currentCard":"3", "cards": [], "totalCards":"0"})");
        card(1, 1, R"({"currentCard":"1", "cards": [{"name":"1"}], "totalCards":"1"})");
        card(2, 3,
             R"({"currentCard":"2", "cards": [{"name":"1"},{"name":"2"},{"name":"3"}], "totalCards":"3"})");
        card(-1, -2, R"({"currentCard":"-1", "cards": [], "totalCards":"-2"})");
        // What has no data goes out unfilled.
        row("abc.learner", "heavy", "\"%0\"", [](PresenterCollab* to) { to->sendHeavy(); });
        row("abc.controller", "presenterIsActive", "\"%0\"",
            [](PresenterCollab* to) { to->sendPresenterIsActiveToRemote(); });
    }
    void tellsTheOthers()
    {
        const auto [call, address, type, data] = row<Call, QByteArray, QByteArray, QString>();
        call(collab());
        QCOMPARE(nextPublish(address.constData(), type.constData()).data, data);
    }

    // A message as text is dropped; an object is handed on, to a transport that there is not.
    void nothingIsSentWithoutAChannel_data()
    {
        using C = PresenterCollab*;
        rows<Call, bool>({
            {"to the session", [](C to) { to->publishMessage("type", "1"); }, true},
            {"to an address", [](C to) { to->publishMessage(".learner", "type", "2"); }, true},
            {"compressed", [](C to) { to->publishMessage64(".learner", "type", "3"); }, true},
            {"document",
             [](C to) { to->startPoll(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::GENERIC, 0, 0); },
             true},
            {"question",
             [](C to) { to->startPoll(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0, 0); }, false},
            {"pause", [](C to) { to->pausePoll(); }, true},
            {"resume", [](C to) { to->resumePoll(); }, true},
            {"stop",
             [](C to) {
                 to->stopPoll();
                 QVERIFY(to->currentPollId().isEmpty());
             },
             true},
            {"removal", [](C to) { to->removeLearner("d1"); }, true},
            {"goodbye", [](C to) { to->close(); }, true},
        });
    }
    void nothingIsSentWithoutAChannel()
    {
        const auto [call, isDropped] = row<Call, bool>();
        m_session = std::make_unique<LiveSession>();
        collab()->startPoll(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0, 0);
        QCOMPARE(collab()->currentPollId().size(), 36);
        m_session->forgetLog();
        QSignalSpy closed(collab(), &PresenterCollab::connectionClosed);
        call(collab());
        QCOMPARE(dropped(), isDropped ? 1 : 0);
        QCOMPARE(log().debug("TRANSMIT: ").size(), isDropped ? 0 : 1);
        QVERIFY(m_session->open());
        QVERIFY(m_session->nothingWasSent());
        QVERIFY(m_session->syncInbound());
        QCOMPARE(closed.size(), 0);
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
        question.addActivityOption("A", QString(), 1);
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
        // Inferred from the option.
        QCOMPARE(publish.map().value("metadata").toMap().value("ordinalType").toString(),
                 QStringLiteral("alpha-upper"));
        QCOMPARE(collab()->currentQuestionId(), question.id());
        m_assessment->stop();
        publish = m_session->nextPublish();
        QCOMPARE(publish.address, QStringLiteral("abc"));
        QCOMPARE(publish.type, QStringLiteral("assessmentStop"));
        QCOMPARE(publish.map(), QVariantMap({{"assessmentToken", m_assessment->assessmentToken()}}));
        QVERIFY(m_session->nothingWasSent());
    }

    void sendMessage_data()
    {
        const auto dialog = [](const QString& text, bool isDismissible) {
            return QVariantMap{{"text", text}, {"isDismissible", isDismissible}};
        };
        const QVariantMap review{{"text", "Review"}, {"showNavigation", true}};
        rows<QString, QString, bool, QString, QString, QVariantMap>({
            {"dialog to all", "", "Hi", true, "abc", "dialogShow", dialog("Hi", true)},
            {"dialog that stays", "", "Hi", false, "abc", "dialogShow", dialog("Hi", false)},
            {"dialog to one", "d2", "", true, "abc.user.d2", "dialogShow", dialog("", true)},
            {"review to one", "d1", "Review", false, "abc.user.d1", "questionSetReview", review},
            {"review to all", "", "Review", true, "abc", "questionSetReview", review},
            {"text is escaped", "", "say \"hi\"\n%1", true, "abc", "dialogShow",
             dialog("say \"hi\"\n%1", true)},
        });
    }
    void sendMessage()
    {
        const auto [id, text, isDismissible, address, type, data] =
            row<QString, QString, bool, QString, QString, QVariantMap>();
        const bool review = type == QLatin1String("questionSetReview");
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

private:
    std::unique_ptr<PresenterAssessment> m_assessment;
};

QTEST_GUILESS_MAIN(TestPresenterCollabPolls)
#include "tst_PresenterCollabPolls.moc"
