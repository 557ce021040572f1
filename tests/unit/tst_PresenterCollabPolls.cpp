#include "collab/CalyxCollabMessage.h"
#include "model/QuestionYesNo.h"
#include "support/Rows.h"
#include "support/SessionTest.h"

#include <QTest>
#include <QUuid>

#include <limits>

using Calyx::OrdinalType::ORDINAL_TYPE;
using Calyx::PollType::POLL_TYPE;

namespace {

// What stands in the brackets "<" and ">" is filled in.
const char* const documentText =
    R"({"type":"<type>","expressionQuestionId":1,"metadata":{"ordinalType":"<ordinal>","options":[<options>]},)"
    R"("id":"<id>","sessionToken":"<token>","sessionCode":"123456","lessonId":null,"startTime":1395358151638,)"
    R"("lastUpdatedOn":1395358151638,"card":{"segment":"fake-id","tracks":[{"placeholder":true}],"visible":true,)"
    R"("ordinal":1395358139515,"styles":{"backgroundColor":"","backgroundImage":"<image>",)"
    R"("backgroundSize":"100%"},"components":[]},"unrespondedUsers":[]})";

QString document(const QString& type, const QString& ordinal, const QString& options, const QString& id,
                 const QString& token = "abc", const QString& image = QString())
{
    return QString::fromLatin1(documentText)
        .replace(QLatin1String("<type>"), type)
        .replace(QLatin1String("<ordinal>"), ordinal)
        .replace(QLatin1String("<options>"), options)
        .replace(QLatin1String("<id>"), id)
        .replace(QLatin1String("<token>"), token)
        .replace(QLatin1String("<image>"), image);
}

} // namespace

/// Polls that go out as questions or documents, the ids that answers come back under, and the steering of a
/// running poll.
class TestPresenterCollabPolls : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void publishesAQuestionStart_data()
    {
        rows<int, QString, QString, int>({
            {"true-false", 0, "true-false", "", 0},
            {"yes-no-other", 1, "yes-no-other", "", 0},
            {"multiple", 2, "multiple", "numberOfCorrectOptions", 2},
            {"scale", 3, "scale", "", 0},
            {"sort", 4, "sort", "", 0},
            {"text", 5, "text", "maxChars", 0},
            {"number", 7, "number", "noOfDecimals", 3},
            {"math formula", 9, "math formula", "", 0},
        });
    }

    void publishesAQuestionStart()
    {
        const auto [type, name, ownKey, ownValue] = row<int, QString, QString, int>();
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
        QCOMPARE(question.value("questionSetMode").toString(), QStringLiteral("Poll"));
        QCOMPARE(question.value("card"), QVariant(QVariantMap{}));
        if (!ownKey.isEmpty())
            QCOMPARE(question.value(ownKey), QVariant(ownValue));
        QCOMPARE(question.contains("activityOptions"), type <= 4);
        QCOMPARE(log().debug("TRANSMIT: ").size(), 1);
        QVERIFY(m_session->nothingWasSent());
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
        collab()->setCardImageRef("p.png");
        const auto children = collab()->findChildren<QObject*>().size();

        startedQuestion(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4);
        startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::ALPHA_UPPER, 4);

        QTRY_VERIFY(collab()->findChildren<Calyx::QuestionBase*>().isEmpty());
        QVERIFY(collab()->findChildren<Calyx::CalyxCollabMessage*>().isEmpty());
        QCOMPARE(collab()->findChildren<QObject*>().size(), children);
    }

    void publishesAPollDocument_data()
    {
        constexpr int least = std::numeric_limits<int>::min();
        rows<int, int, int, QString, QString, QString>({
            {"creative", 8, 7, 1, "creative", "number", "0"},
            {"no options", 6, 5, 0, "word-seed", "alpha-upper", ""},
            {"fewer than none", 8, 5, -3, "creative", "alpha-upper", ""},
            {"the least", 6, 5, least, "word-seed", "alpha-upper", ""},
            {"twelve", 6, 5, 12, "word-seed", "alpha-upper", "0,1,2,3,4,5,6,7,8,9,10,11"},
            {"unknown type", 12, 5, 2, "", "alpha-upper", "0,1"},
            {"unknown ordinal", 6, 14, 2, "word-seed", "", "0,1"},
            {"both unknown", 15, 15, 0, "", "", ""},
        });
    }

    void publishesAPollDocument()
    {
        const auto [type, ordinal, count, typeName, ordinalName, options] =
            row<int, int, int, QString, QString, QString>();
        QVERIFY(m_session->open());

        collab()->startPoll(POLL_TYPE(type), ORDINAL_TYPE(ordinal), count, 9);

        QCOMPARE(nextPublish("abc", "poll").data,
                 document(typeName, ordinalName, options, collab()->currentPollId()));
        QVERIFY(m_session->nothingWasSent());
    }

    void thePollDocumentCarriesTheCardImage_data()
    {
        rows<QByteArray, QString, QString>({
            {"reference", QByteArray(), "http://h/p.png", "url('http://h/p.png')"},
            {"empty reference", QByteArray(), "", "url('')"},
            {"bytes are not wrapped", "png", "unused", "data:image/png;base64,cG5n"},
            {"placeholders", QByteArray(), "%1%5%6%7", "url('%1%5%6%7')"},
        });
    }

    void thePollDocumentCarriesTheCardImage()
    {
        const auto [bytes, reference, image] = row<QByteArray, QString, QString>();
        m_session = std::make_unique<LiveSession>("t%4%7");
        QVERIFY(m_session->open());
        collab()->setCardImage(bytes);
        collab()->setCardImageRef(reference);

        collab()->startPoll(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::GENERIC, 0, 0);

        const QString id = collab()->currentPollId();
        QCOMPARE(nextPublish("t%4%7", "poll").data,
                 document("word-seed", "generic", QString(), id, "t%4%7", image));
    }

    void eachPollHasAnIdOfItsOwn_data() { rows<int>({{"question", 2}, {"document", 6}}); }

    void eachPollHasAnIdOfItsOwn()
    {
        const auto [type] = row<int>();
        QVERIFY(m_session->open());
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
        QVERIFY(m_session->open());
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
        QVERIFY(m_session->open());
        collab()->setCardImage("png");
        collab()->setCardImageRef("p.png");
        startedQuestion(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0);
        const QString id = collab()->currentPollId();
        const QString quoted = '"' + id + '"';

        collab()->pausePoll();
        QCOMPARE(nextPublish("abc", "pause").data, quoted);
        collab()->resumePoll();
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

    void pollsWhileDisconnectedAreDropped()
    {
        collab()->setCardImageRef("p.png");

        collab()->startPoll(Calyx::PollType::WORD_SEED, Calyx::OrdinalType::GENERIC, 0, 0);
        QCOMPARE(dropped(), 1);
        QCOMPARE(collab()->currentPollId().size(), 36);
        collab()->pausePoll();
        QCOMPARE(dropped(), 2);
        collab()->resumePoll();
        QCOMPARE(dropped(), 3);
        collab()->stopPoll();
        QCOMPARE(dropped(), 4);
        QVERIFY(collab()->currentPollId().isEmpty());
        QVERIFY(collab()->getCardImageRef(false).isEmpty());

        collab()->startPoll(Calyx::PollType::TEXT, Calyx::OrdinalType::GENERIC, 0, 0);
        QCOMPARE(dropped(), 4); // a question is handed on
        QCOMPARE(log().debug("TRANSMIT: ").size(), 1);
        QVERIFY(m_session->open());
        QVERIFY(m_session->nothingWasSent());
    }
};

QTEST_GUILESS_MAIN(TestPresenterCollabPolls)
#include "tst_PresenterCollabPolls.moc"
